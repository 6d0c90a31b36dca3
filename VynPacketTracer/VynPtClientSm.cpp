#include "VynPacketTracer/VynPtClientSm.h"

#include <utility>

#include "Kel/Error.h"
#include "Net/EtherType.h"
#include "PacketTracer/ConstructPacket.h"
#include "PacketTracer/PacketSize.h"
#include "Trace/Trace.h"
#include "Vanta/Assert.h"

namespace VynPacketTracer {

using PacketTracer::RequestId;

namespace {

Trace::Handle& trace = Trace::handle("VynPtClientSm");

}  // namespace

// ---- NestedSm_Request

NestedSm_Request::NestedSm_Request(Vanta::Ptr<PacketTracer::Request const> const& request,
                                   PacketTracerClientSm* owner)
    : owner_(owner) {
    plainNotifierIs(request);
}

RequestId NestedSm_Request::key() const {
    return notifier() ? notifier()->id() : RequestId();
}

void NestedSm_Request::notifierIs(Vanta::Ptr<PacketTracer::Request const> const& request) {
    if (request == notifier()) {
        return;
    }
    Vanta::Ptr<NestedSm_Request> const alive(this);
    bool const owned = owner_ != nullptr;
    plainNotifierIs(request);
    if (request && !isZombie()) {
        kel_handleRequest_valid();
    }
    bool const removed = owned && owner_ == nullptr;
    if (!removed) {
        registeredIs(true);
    }
}

void NestedSm_Request::kel_handleRequest_valid() {
    if (owner_ != nullptr) {
        // A subscriber that hears of a job or result may remove the client.
        Vanta::Ptr<PacketTracerClientSm> const alive(owner_);
        alive->handleRequest(key());
    }
}

void NestedSm_Request::onAttribute(Vanta::AttributeNumber attribute, Vanta::ValueRef) {
    if (attribute == PacketTracer::Request::validAttribute && !isZombie()) {
        kel_handleRequest_valid();
    }
}

// ---- Life of the state machine

Vanta::Ptr<PacketTracerClientSm> PacketTracerClientSm::PacketTracerClientSmIs(
    Vanta::String const& name, Vanta::Ptr<PacketTracer::ClientConfig const> const& clientConfig,
    Vanta::Ptr<PacketTracer::ClientStatus> const& clientStatus,
    Vanta::Ptr<PktGenConfig> const& pktGenConfig,
    Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
    Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
    Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
    Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus) {
    auto client = Vanta::makeNode<PacketTracerClientSm>(Arguments{name, clientConfig, clientStatus,
                                                                  pktGenConfig, systemStatus, fcsd,
                                                                  bridgingConfig, chipStatus});
    client->hasNotificationActiveIs(true);
    return client;
}

Vanta::Ptr<PacketTracerClientSm> packetTracerClientSmFactory(
    Vanta::String const& name, Vanta::Ptr<PacketTracer::ClientConfig const> const& clientConfig,
    Vanta::Ptr<PacketTracer::ClientStatus> const& clientStatus,
    Vanta::Ptr<PktGenConfig> const& pktGenConfig,
    Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
    Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
    Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
    Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus) {
    return PacketTracerClientSm::PacketTracerClientSmIs(name, clientConfig, clientStatus,
                                                        pktGenConfig, systemStatus, fcsd,
                                                        bridgingConfig, chipStatus);
}

PacketTracerClientSm::PacketTracerClientSm(Arguments arguments) : made_(std::move(arguments)) {
    subscribe();
    if (made_.clientConfig) {
        for (auto const& entry : made_.clientConfig->request()) {
            requestIs(entry.value);
        }
    }
    handleInitialized();
}

PacketTracerClientSm::~PacketTracerClientSm() {
    hasNotificationActiveIs(false);
    kelDoZombieReactors(true);
    clientConfigSubscriber_.unsubscribe();
    for (auto const& entry : request_) {
        entry.value->ownerDel();
    }
    request_.clear();
}

void PacketTracerClientSm::handleInitialized() {
    Trace::twinlog(trace, 7, "handleInitialized:client %s", made_.name);
    handleResults();
    handleRequests();
}

void PacketTracerClientSm::subscribe() {
    if (made_.clientConfig && !clientConfigSubscriber_.subscribed()) {
        clientConfigSubscriber_.subscribe<&PacketTracerClientSm::clientConfigDispatch>(
            made_.clientConfig->publisher(), this);
    }
}

void PacketTracerClientSm::hasNotificationActiveIs(bool on) {
    notificationActiveFlagIs(on);
    if (on) {
        subscribe();
    } else {
        clientConfigSubscriber_.unsubscribe();
    }
    for (auto const& entry : request_) {
        entry.value->hasNotificationActiveIs(on);
    }
}

void PacketTracerClientSm::kelDoZombieReactors(bool on) {
    zombieFlagIs(on);
    for (auto const& entry : request_) {
        entry.value->kelDoZombieReactors(on);
    }
}

// The request is handled before its reactor is made or removed, and a new reactor does not react.
// So the arrival of a request handles it exactly once.
void PacketTracerClientSm::clientConfigDispatch(Vanta::Publisher const&, Vanta::Subscriber&,
                                                Vanta::AttributeNumber attribute,
                                                Vanta::ValueRef key, Vanta::ValueRef) {
    if (attribute != PacketTracer::ClientConfig::requestAttribute) {
        return;
    }
    Vanta::Ptr<PacketTracerClientSm> const alive(this);
    auto const& requestId = key.get<RequestId>();
    if (!isZombie()) {
        handleRequest(requestId);
    }
    Vanta::Ptr<PacketTracer::Request const> const packetRequest =
        made_.clientConfig ? made_.clientConfig->request(requestId) : nullptr;
    if (packetRequest) {
        requestIs(packetRequest);
    } else {
        requestDel(requestId);
    }
}

// ---- The reactors

void PacketTracerClientSm::requestIs(Vanta::Ptr<PacketTracer::Request const> const& packetRequest) {
    if (!packetRequest) {
        throw Kel::NullArgumentError("PacketTracerClientSm", "request");
    }
    // A subscriber that hears of a job or result may remove the client, or the reactor.
    Vanta::Ptr<PacketTracerClientSm> const alive(this);
    RequestId const requestId = packetRequest->id();
    Vanta::Ptr<NestedSm_Request> reactor = request(requestId);
    if (!reactor) {
        reactor = Vanta::makeNode<NestedSm_Request>(packetRequest, this);
        reactor->registeredIs(true);
        reactor->hasNotificationActiveIs(hasNotificationActive());
        request_.insert(RequestKeyFunktor()(*reactor), reactor);
    } else {
        reactor->notifierIs(packetRequest);
        if (!(request(requestId) == reactor)) {
            return;
        }
    }
    reactor->kelDoZombieReactors(isZombie());
}

void PacketTracerClientSm::requestDel(RequestId const& requestId) {
    if (auto const reactor = request(requestId)) {
        reactor->hasNotificationActiveIs(false);
        reactor->kelDoZombieReactors(true);
        // Another holder of the reactor may call it after the owner was destroyed.
        reactor->ownerDel();
        request_.remove(requestId);
    }
}

void PacketTracerClientSm::requestDelAll() {
    request_.eachKeyUntilLast([this](RequestId const& requestId) { requestDel(requestId); });
}

// ---- Requests in

void PacketTracerClientSm::handleRequests() {
    std::size_t const requests = made_.clientConfig ? made_.clientConfig->request().size() : 0;
    Trace::twinlog(trace, 7, "handleRequests:client %s #request:%s", made_.name, requests);
    if (made_.clientConfig) {
        for (auto const& entry : made_.clientConfig->request()) {
            handleRequest(RequestId(entry.key));
        }
    }
}

bool PacketTracerClientSm::isValidRequest(
    Vanta::Ptr<PacketTracer::Request const> const& packetRequest) const {
    Vanta::assertThat(packetRequest != nullptr, "packetRequest != nullptr");
    Trace::twinlog(trace, 7, "isValidRequest:client:%s reqId:%s", packetRequest->id().clientName(),
                   packetRequest->id().number());
    std::uint16_t const etherType = packetRequest->etherType();
    if (Net::EtherType::isMpls(etherType) || packetRequest->mpls()) {
        Trace::twinlog(trace, 9, "isValidRequest:MPLS request cannot be fulfilled");
        return false;
    }
    if (packetRequest->gre()) {
        Trace::twinlog(trace, 9, "isValidRequest:Vyn doesn't support GRE packets");
        return false;
    }
    return true;
}

// A refusal: the result is complete at once.
void PacketTracerClientSm::finishResult(RequestId const& requestId, PacketTracer::State state) {
    auto const result = made_.clientStatus->resultIs(requestId);
    result->stateIs(state);
    result->validIs(true);
}

void PacketTracerClientSm::handleRequest(RequestId const& requestId) {
    Vanta::String const& client = requestId.clientName();
    std::uint32_t const number = requestId.number();
    Trace::twinlog(trace, 7, "handleRequest:client:%s reqId:%s", client, number);
    Vanta::Ptr<PacketTracer::Request const> const request =
        made_.clientConfig ? made_.clientConfig->request(requestId) : nullptr;
    if (!request) {
        Trace::twinlog(trace, 7, "handleRequest:del client:%s reqId:%s", client, number);
        Vanta::assertThat(made_.pktGenConfig != nullptr, "pktGenConfig != nullptr");
        made_.pktGenConfig->cfgDel(requestId);
        made_.clientStatus->resultDel(requestId);
        return;
    }
    if (!request->valid()) {
        Trace::twinlog(trace, 7, "handleRequest:client:%s reqId:%s not valid yet", client, number);
        return;
    }
    if (!isValidRequest(request)) {
        Trace::twinlog(trace, 7, "handleRequest:client:%s reqId:%s is not a valid request", client,
                       number);
        finishResult(requestId, PacketTracer::State::notTraceable);
        return;
    }
    Vanta::assertThat(made_.systemStatus != nullptr, "systemStatus != nullptr");
    if (!made_.systemStatus->portInfo().has(request->intf())) {
        Trace::twinlog(trace, 9, "handleRequest:Invalid interface:%s", request->intf());
        finishResult(requestId, PacketTracer::State::noEgress);
        return;
    }
    Vanta::Bytes const pkt =
        PacketTracer::constructPacket(requestId, request, PacketTracer::maximumFrameSize);
    if (pkt.empty()) {
        Trace::twinlog(trace, 9, "handleRequest:Unable to construct packet from the request");
        finishResult(requestId, PacketTracer::State::notTraceable);
        return;
    }
    VynSystem::PortInfo const ingPortInfo = made_.systemStatus->portInfo().get(request->intf());
    Vanta::assertThat(made_.pktGenConfig != nullptr, "pktGenConfig != nullptr");
    made_.pktGenConfig->cfgIs(requestId, pkt, ingPortInfo, request->intf());
}

}  // namespace VynPacketTracer
