// One client's state machine: its requests become jobs of the engine, the engine's answers become
// its results.
//
// What handleRequest() leaves behind, by what it finds:
//
//   the request                          its job                   its result
//   absent                               removed                   removed
//   not valid yet                        unchanged                 unchanged
//   MPLS or GRE, or not buildable        unchanged                 state 2, valid
//   on an interface without port info    unchanged                 state 3, valid
//   fine                                 made, or kept if equal    unchanged
//
// The result of an accepted request is written when the engine reports.
//
// Jobs and results outlive the state machine, so a client's requests are withdrawn before the
// client is removed.
//
//   state          entered by                         left by
//   made           PacketTracerClientSmIs             its end
//   active         the end of PacketTracerClientSmIs  the last release
//   switched off   hasNotificationActiveIs(false)     hasNotificationActiveIs(true), the last release
//   torn down      destruction                        the release of the memory
//
// Switched off it hears of nothing, and switched on again it does not catch up: what changed
// meanwhile is handled when it changes again, or by handleRequests().
//
// What an operation publishes may release the object, so whoever calls one holds the object meanwhile;
// the reactors do. Thread: the event thread, for everything here.
#pragma once

#include <cstdint>

#include "Bridging/Config.h"
#include "Fen/FenCommonSmData.h"
#include "Kel/Collection.h"
#include "Kel/NotifieeConst.h"
#include "Kel/Object.h"
#include "PacketTracer/ClientConfig.h"
#include "PacketTracer/ClientStatus.h"
#include "Plexa/IntfId.h"
#include "Vanta/Publisher.h"
#include "VynExport.h"
#include "VynPacketTracer/VynPtTypes.h"
#include "VynSlice/ChipStatus.h"
#include "VynSystem/SystemStatus.h"

namespace VynPacketTracer {

class PacketTracerClientSm;

// The reactor on one request: it has the request handled again when its `valid` changes, or when
// another request object is put under its id. A reactor that is removed inside its own call stays
// removed: silent, torn down and without an owner.
class VYN_EXPORT NestedSm_Request final : public Kel::NotifieeConst<PacketTracer::Request> {
  public:
    // Watches `request`, not yet registered, without reacting. The owner is not counted. Both may
    // be null.
    NestedSm_Request(Vanta::Ptr<PacketTracer::Request const> const& request,
                     PacketTracerClientSm* owner);

    // The id of the request that is watched; the empty id if there is none.
    PacketTracer::RequestId key() const;

    // Watches another request object. Reacts at once if it is another one, not null, and the
    // reactor is not torn down; then it is registered. Errors: those of handling the request.
    void notifierIs(Vanta::Ptr<PacketTracer::Request const> const& request);
    // Has the owner handle the request; without an owner does nothing.
    void kel_handleRequest_valid();
    void ownerDel() noexcept { owner_ = nullptr; }

    void onAttribute(Vanta::AttributeNumber attribute, Vanta::ValueRef oldValue) override;
    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    ~NestedSm_Request() override = default;

    PacketTracerClientSm* owner_;
};

// The key of a reactor: the id of the request that it watches.
struct RequestKeyFunktor {
    PacketTracer::RequestId operator()(NestedSm_Request const& reactor) const {
        return reactor.key();
    }
};

class VYN_EXPORT PacketTracerClientSm final : public Kel::Object {
  public:
    using Requests = Kel::Collection<PacketTracer::RequestId, Vanta::Ptr<NestedSm_Request>>;

    // What a state machine is made with. Its references are released from the last to the first.
    //
    // Without a `clientConfig` there are no requests, and without a `pktGenConfig` every answer
    // counts as one without a job. Preconditions: `clientStatus` is never null, which the
    // construction checks; `pktGenConfig` and `systemStatus` are not null where a request is
    // handled; `systemStatus`, `fcsd`, `bridgingConfig` and `chipStatus` are not null where an
    // egress is resolved. An operation checks the ones that it uses.
    struct Arguments {
        Vanta::String name;
        Vanta::Ptr<PacketTracer::ClientConfig const> clientConfig;
        Vanta::Ptr<PacketTracer::ClientStatus> clientStatus;
        Vanta::Ptr<PktGenConfig> pktGenConfig;
        Vanta::Ptr<VynSystem::SystemStatus const> systemStatus;
        Vanta::Ptr<Fen::FenCommonSmData const> fcsd;
        Vanta::Ptr<Bridging::Config const> bridgingConfig;
        Vanta::Ptr<VynSlice::ChipStatus const> chipStatus;
    };

    // A running state machine: stale results are removed and every request is handled once before
    // it is returned. Errors: what handling a request raises; no subscription is then left behind.
    static Vanta::Ptr<PacketTracerClientSm> PacketTracerClientSmIs(
        Vanta::String const& name, Vanta::Ptr<PacketTracer::ClientConfig const> const& clientConfig,
        Vanta::Ptr<PacketTracer::ClientStatus> const& clientStatus,
        Vanta::Ptr<PktGenConfig> const& pktGenConfig,
        Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
        Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
        Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
        Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus);

    // Connects (true) or disconnects the observation of the client's configuration and requests.
    void hasNotificationActiveIs(bool on);
    // Marks this object and its reactors as being torn down (true): they then react to nothing.
    // Clearing the mark switches the reactors' notifications on, also if this object's are off.
    void kelDoZombieReactors(bool on);

    // Removes stale results, then handles every request. The construction calls it once; called
    // again it does the same again, which changes nothing for accepted requests that are as they
    // were. Errors: those of handleRequest().
    void handleInitialized();
    // Reacts to a change that the configuration published. Of the change only the attribute and the
    // key are read: the request of that id is handled, then its reactor is made or removed. Every
    // attribute but `request` is ignored. Errors: those of handleRequest().
    void clientConfigDispatch(Vanta::Publisher const& publisher, Vanta::Subscriber& subscriber,
                              Vanta::AttributeNumber attribute, Vanta::ValueRef key,
                              Vanta::ValueRef oldValue);

    // ---- The reactors, one a request of the configuration.

    // Makes the reactor of a request, or points it at another request object, which is handled at
    // once. Errors: Kel::NullArgumentError; those of handling the request.
    void requestIs(Vanta::Ptr<PacketTracer::Request const> const& packetRequest);
    // Silences and removes a reactor; absent ids are ignored.
    void requestDel(PacketTracer::RequestId const& requestId);
    void requestDelAll();
    Requests const& request() const noexcept { return request_; }
    // The reactor of a request, or null.
    Vanta::Ptr<NestedSm_Request> request(PacketTracer::RequestId const& requestId) const {
        return request_.get(requestId);
    }
    bool requestHas(PacketTracer::RequestId const& requestId) const {
        return request_.has(requestId);
    }

    // ---- Requests in

    // Handles every request of the configuration.
    void handleRequests();
    // Accepts, refuses or withdraws one request; see the table above. Errors: an accepted request
    // whose packet, port or interface changed while its job exists raises the reinstantiation
    // errors of PktGenConfig::cfgIs.
    void handleRequest(PacketTracer::RequestId const& requestId);
    // Whether the chip can trace such a packet at all: neither MPLS nor GRE. Precondition: the
    // request is not null.
    bool isValidRequest(Vanta::Ptr<PacketTracer::Request const> const& packetRequest) const;

    // ---- Results out

    // Removes every result whose request is not in the configuration.
    void handleResults();
    // Writes the result of a status entry that is ready; ignores one that is not. Errors:
    // Kel::RangeError for a flood in a domain above 4094, and for a packet that was routed to a
    // known port in domain 0 or a domain above 4094. The result then exists, but neither its state
    // nor `valid` is set; for a routed packet it has the port's entries. Precondition: the entry is
    // not null.
    void updateResult(Vanta::Ptr<PktGenStatusData const> const& status);
    // Adds the entries of one egress interface: a LAG, a sub-interface, a LAG's member, a port.
    // Precondition, here and below: the result is not null.
    void updatePortInfoResult(Plexa::IntfId intfId, Vanta::Ptr<PacketTracer::Result> const& result);
    // Adds the entries of a flood in the status entry's VLAN, except the ingress interface, and
    // sets the state. Errors: Kel::RangeError for a domain above 4094; the result is then
    // unchanged. Precondition: the entry is not null.
    void pktFlooded(Vanta::Ptr<PktGenStatusData const> const& status,
                    Vanta::Ptr<PacketTracer::Result> const& result, Plexa::IntfId ingIntf);
    // Pairs each physical interface of the result, except those of sub-interfaces, with the VLAN's
    // interface.
    void addVlanIntf(Vanta::Ptr<PacketTracer::Result> const& result, std::uint16_t vlanId);
    // The interface named "Cpu".
    static Plexa::IntfId cpuIntfId();

    Arguments const& arguments() const noexcept { return made_; }
    Vanta::String const& name() const noexcept { return made_.name; }
    Vanta::Ptr<PacketTracer::ClientConfig const> const& clientConfig() const noexcept {
        return made_.clientConfig;
    }
    Vanta::Ptr<PacketTracer::ClientStatus> const& clientStatus() const noexcept {
        return made_.clientStatus;
    }
    Vanta::Ptr<PktGenConfig> const& pktGenConfig() const noexcept { return made_.pktGenConfig; }
    Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus() const noexcept {
        return made_.systemStatus;
    }
    Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd() const noexcept { return made_.fcsd; }
    Vanta::Ptr<Bridging::Config const> const& bridgingConfig() const noexcept {
        return made_.bridgingConfig;
    }
    Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus() const noexcept {
        return made_.chipStatus;
    }

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    explicit PacketTracerClientSm(Arguments arguments);
    ~PacketTracerClientSm() override;

    void subscribe();
    void finishResult(PacketTracer::RequestId const& requestId, PacketTracer::State state);
    void updateUnicastResult(PktGenStatusData const& status,
                             Vanta::Ptr<PacketTracer::Result> const& result);
    bool isRoutedVlanReported(std::uint16_t egrL2Domain) const;

    Requests const& allRequests() const noexcept { return request_; }

    Arguments const made_;
    // Members are destroyed from the last to the first. So a construction that fails ends the
    // subscription, then destroys the reactors, then releases the references, as the destructor
    // does.
    Requests request_;
    Vanta::Subscriber clientConfigSubscriber_;
};

// An entry of the collection of reactors.
using HN_NestedSm_Request = PacketTracerClientSm::Requests::Entry;

// The same as PacketTracerClientSm::PacketTracerClientSmIs.
VYN_EXPORT Vanta::Ptr<PacketTracerClientSm> packetTracerClientSmFactory(
    Vanta::String const& name, Vanta::Ptr<PacketTracer::ClientConfig const> const& clientConfig,
    Vanta::Ptr<PacketTracer::ClientStatus> const& clientStatus,
    Vanta::Ptr<PktGenConfig> const& pktGenConfig,
    Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
    Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
    Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
    Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus);

}  // namespace VynPacketTracer
