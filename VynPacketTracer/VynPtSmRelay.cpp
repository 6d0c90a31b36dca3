// The relay: each outcome that the engine writes goes to the client state machine that owns the
// request.
#include <utility>

#include "Kel/Error.h"
#include "Trace/Trace.h"
#include "VynPacketTracer/VynPtSm.h"

namespace VynPacketTracer {

using PacketTracer::RequestId;

namespace {

Trace::Handle& trace = Trace::handle("VynPtSm");

}  // namespace

// ---- NestedSm_LocalStatus

NestedSm_LocalStatus::NestedSm_LocalStatus(Vanta::Ptr<PktGenStatusData const> const& status,
                                           PacketTracerSm* owner)
    : owner_(owner) {
    plainNotifierIs(status);
}

NestedSm_LocalStatus::~NestedSm_LocalStatus() {
    hasNotificationActiveIs(false);
    zombieFlagIs(true);
}

RequestId NestedSm_LocalStatus::key() const {
    return notifier() ? notifier()->req() : RequestId();
}

void NestedSm_LocalStatus::onAttribute(Vanta::AttributeNumber attribute, Vanta::ValueRef) {
    if (attribute == PktGenStatusData::readyAttribute && !isZombie()) {
        kel_handleLocalStatus_ready();
    }
}

void NestedSm_LocalStatus::notifierIs(Vanta::Ptr<Vanta::Node const> const& node) {
    auto const status = Vanta::dynamicCast<PktGenStatusData const>(node);
    if (status == notifier()) {
        return;
    }
    Vanta::Ptr<NestedSm_LocalStatus> const alive(this);
    bool const owned = owner_ != nullptr;
    plainNotifierIs(status);
    if (status && !isZombie()) {
        kel_handleLocalStatus_ready();
    }
    bool const removed = owned && owner_ == nullptr;
    if (!removed) {
        registeredIs(true);
    }
}

void NestedSm_LocalStatus::kel_handleLocalStatus_ready() {
    if (owner_ != nullptr) {
        // A subscriber that hears of a result may release the tracer.
        Vanta::Ptr<PacketTracerSm> const alive(owner_);
        alive->handlePktGenStatus(key());
    }
}

// ---- PacketTracerSm

Vanta::Ptr<PktGenStatus> PacketTracerSm::pktGenStatusIs() {
    if (pktGenStatus_) {
        return pktGenStatus_;
    }
    pktGenStatus_ = pktGenStatusFactory();
    subscribeToPktGenStatus();
    // A new collection is empty: no watcher has an entry there.
    localStatusDelAll();
    return pktGenStatus_;
}

Vanta::Ptr<PktGenStatus> PacketTracerSm::pktGenStatusDel() {
    auto taken = std::exchange(pktGenStatus_, nullptr);
    pktGenStatusSubscriber_.unsubscribe();
    localStatusDelAll();
    return taken;
}

// The relay runs before the watcher of a new entry is made, and before the watcher of a removed one
// is removed, so the arrival of an entry relays it once.
void PacketTracerSm::pktGenStatusDispatch(Vanta::Publisher const&, Vanta::Subscriber&,
                                          Vanta::AttributeNumber attribute, Vanta::ValueRef key,
                                          Vanta::ValueRef) {
    if (attribute != PktGenStatus::statusAttribute) {
        return;
    }
    Vanta::Ptr<PacketTracerSm> const alive(this);
    auto const& req = key.get<RequestId>();
    if (!isZombie()) {
        handlePktGenStatus(req);
    }
    if (!pktGenStatus_) {
        return;
    }
    if (auto const entry = pktGenStatus_->status(req)) {
        localStatusIs(entry);
    } else {
        localStatusDel(req);
    }
}

void PacketTracerSm::handlePktGenStatus(RequestId const& key) {
    auto const entry = pktGenStatus_ ? pktGenStatus_->status(key) : nullptr;
    Trace::twinlog(trace, 7, "handlePktGenStatus:client:%s reqId:%s del:%s", key.clientName(),
                   key.number(), !entry);
    if (!entry) {
        return;
    }
    auto const client = clientSm(key.clientName());
    if (!client) {
        Trace::twinlog(trace, 9, "handlePktGenStatus:Couldn't find ClientSm for:%s",
                       key.clientName());
        return;
    }
    client->updateResult(entry);
}

void PacketTracerSm::localStatusIs(Vanta::Ptr<PktGenStatusData const> const& entry) {
    if (!entry) {
        throw Kel::NullArgumentError("PacketTracerSm", "localStatus");
    }
    // A subscriber that hears of a result may release the tracer, or the watcher.
    Vanta::Ptr<PacketTracerSm> const alive(this);
    RequestId const req = entry->req();
    Vanta::Ptr<NestedSm_LocalStatus> watcher = localStatus(req);
    if (!watcher) {
        watcher = Vanta::makeNode<NestedSm_LocalStatus>(entry, this);
        watcher->registeredIs(true);
        watcher->hasNotificationActiveIs(true);
        localStatus_.insert(LocalStatusKeyFunktor()(*watcher), watcher);
        watcher->kelDoZombieReactors(isZombie());
    } else if (!(watcher->notifier() == entry)) {
        watcher->notifierIs(entry);
        if (localStatus(req) == watcher) {
            watcher->kelDoZombieReactors(isZombie());
        }
    }
}

Vanta::Ptr<PktGenStatusData const> PacketTracerSm::localStatusDel(RequestId const& key) {
    auto const watcher = localStatus_.remove(key).value_or(nullptr);
    if (!watcher) {
        return nullptr;
    }
    watcher->kelDoZombieReactors(true);
    watcher->ownerDel();
    watcher->hasNotificationActiveIs(false);
    return watcher->notifier();
}

void PacketTracerSm::localStatusDelAll() {
    localStatus_.eachKeyUntilLast([this](RequestId const& req) { localStatusDel(req); });
}

}  // namespace VynPacketTracer
