#include "VynPacketTracer/VynPtSm.h"

#include <utility>

#include "Trace/Trace.h"

namespace VynPacketTracer {
namespace {

Trace::Handle& trace = Trace::handle("VynPtSm");

}  // namespace

Vanta::Ptr<PacketTracerSm> packetTracerSmFactory(
    Vanta::Ptr<Kel::Dir const> const& config, Vanta::Ptr<Kel::Dir> const& status,
    Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf, bool pktGenSupported,
    bool pktTracerSupported, unsigned sessionHandle, VynId::VynDevId deviceId,
    Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
    Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
    Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler,
    Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
    Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
    Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
    Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus) {
    return PacketTracerSm::PacketTracerSmIs(config, status, phase0DataIntf, pktGenSupported,
                                            pktTracerSupported, sessionHandle, deviceId,
                                            resourceInfoIntf, vyPdIntf, rootScheduler, systemStatus,
                                            fcsd, bridgingConfig, chipStatus);
}

Vanta::Ptr<PacketTracerSm> PacketTracerSm::PacketTracerSmIs(
    Vanta::Ptr<Kel::Dir const> const& config, Vanta::Ptr<Kel::Dir> const& status,
    Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf, bool pktGenSupported,
    bool pktTracerSupported, std::uint32_t sessionHandle, VynId::VynDevId deviceId,
    Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
    Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
    Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler,
    Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
    Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
    Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
    Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus) {
    auto tracer = Vanta::makeNode<PacketTracerSm>(
        Arguments{config, status, phase0DataIntf, pktGenSupported, pktTracerSupported,
                  sessionHandle, deviceId, resourceInfoIntf, vyPdIntf, rootScheduler, systemStatus,
                  fcsd, bridgingConfig, chipStatus});
    tracer->hasNotificationActiveIs(true);
    return tracer;
}

PacketTracerSm::PacketTracerSm(Arguments arguments) : made_(std::move(arguments)) {
    try {
        subscribe();
        handleInitialized();
    } catch (...) {
        unsubscribe();
        throw;
    }
}

// An observer of a shut-down sees this order: the engine goes before the clients, and a collection
// goes when its last holder releases it.
PacketTracerSm::~PacketTracerSm() {
    hasNotificationActiveIs(false);
    kelDoZombieReactors(true);
    unsubscribe();
    for (auto const& entry : localStatus_) {
        entry.value->ownerDel();
    }
    pktGenCfg_ = nullptr;
    pktGenStatusDel();
    if (auto const engine = std::exchange(pktGenSm_, nullptr)) {
        engine->hasNotificationActiveIs(false);
    }
    clientSm_.eachKeyUntilLast([this](Vanta::String const& name) { clientSmDel(name); });
}

void PacketTracerSm::handleInitialized() {
    Trace::twinlog(trace, 7, "handleInitialized:pktTracerSupported:%s pktGenSupported%s",
                   made_.pktTracerSupported, made_.pktGenSupported);
    initialized_ = true;
    pktGenCfgIs();
    pktGenStatusIs();
    pktGenSmIs(pktGenCfg_, made_.phase0DataIntf, pktGenStatus_, made_.sessionHandle, made_.deviceId,
               made_.pktTracerSupported, made_.resourceInfoIntf, made_.vyPdIntf,
               made_.rootScheduler);
    handleClients();
}

// ---- Observations

// Connects what has a source and is not connected.
void PacketTracerSm::subscribe() {
    if (made_.config && !configSubscriber_.subscribed()) {
        configSubscriber_.subscribe<&PacketTracerSm::configDispatch>(made_.config->publisher(),
                                                                     this);
    }
    if (made_.status && !statusSubscriber_.subscribed()) {
        statusSubscriber_.subscribe<&PacketTracerSm::statusDispatch>(made_.status->publisher(),
                                                                     this);
    }
    subscribeToPktGenStatus();
}

void PacketTracerSm::subscribeToPktGenStatus() {
    if (pktGenStatus_ && !pktGenStatusSubscriber_.subscribed()) {
        pktGenStatusSubscriber_.subscribe<&PacketTracerSm::pktGenStatusDispatch>(
            pktGenStatus_->publisher(), this);
    }
}

void PacketTracerSm::unsubscribe() noexcept {
    pktGenStatusSubscriber_.unsubscribe();
    statusSubscriber_.unsubscribe();
    configSubscriber_.unsubscribe();
}

void PacketTracerSm::hasNotificationActiveIs(bool on) {
    if (on == hasNotificationActive()) {
        return;
    }
    notificationActiveFlagIs(on);
    if (on) {
        subscribe();
    } else {
        unsubscribe();
    }
    for (auto const& entry : localStatus_) {
        entry.value->hasNotificationActiveIs(on);
    }
    if (pktGenSm_) {
        pktGenSm_->hasNotificationActiveIs(on);
    }
    for (auto const& entry : clientSm_) {
        entry.value->hasNotificationActiveIs(on);
    }
}

void PacketTracerSm::kelDoZombieReactors(bool on) {
    if (on == isZombie()) {
        return;
    }
    for (auto const& entry : localStatus_) {
        entry.value->kelDoZombieReactors(on);
    }
    zombieFlagIs(on);
}

void PacketTracerSm::configDispatch(Vanta::Publisher const&, Vanta::Subscriber&,
                                    Vanta::AttributeNumber attribute, Vanta::ValueRef key,
                                    Vanta::ValueRef) {
    dirEntryChanged(attribute, key);
}

void PacketTracerSm::statusDispatch(Vanta::Publisher const&, Vanta::Subscriber&,
                                    Vanta::AttributeNumber attribute, Vanta::ValueRef key,
                                    Vanta::ValueRef) {
    dirEntryChanged(attribute, key);
}

void PacketTracerSm::dirEntryChanged(Vanta::AttributeNumber attribute, Vanta::ValueRef key) {
    if (attribute == Kel::Dir::entryAttribute && !isZombie()) {
        handleClient(key.get<Vanta::String>());
    }
}

// ---- The engine and its collections

Vanta::Ptr<PktGenConfig> PacketTracerSm::pktGenCfgIs() {
    if (!pktGenCfg_) {
        pktGenCfg_ = pktGenConfigFactory();
    }
    return pktGenCfg_;
}

Vanta::Ptr<PktGenConfig> PacketTracerSm::pktGenCfgDel() {
    return std::exchange(pktGenCfg_, nullptr);
}

Vanta::Ptr<PktGenSm> PacketTracerSm::pktGenSmIs(
    Vanta::Ptr<PktGenConfig> const& pktGenConfig,
    Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf,
    Vanta::Ptr<PktGenStatus> const& pktGenStatus, std::uint32_t sessionHandle,
    VynId::VynDevId deviceId, bool pktTracerSupported,
    Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
    Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
    Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler) {
    PktGenSm::Arguments const args{pktGenConfig,     phase0DataIntf, pktGenStatus,
                                   sessionHandle,    deviceId,       pktTracerSupported,
                                   resourceInfoIntf, vyPdIntf,       rootScheduler};
    if (pktGenSm_ && pktGenSm_->arguments() == args) {
        return pktGenSm_;
    }
    auto const engine = PktGenSm::PktGenSmIs(args);
    // The engine before it may take the last reference to its jobs and answers along: a subscriber
    // that hears of their removal may remove the new one.
    pktGenSm_ = engine;
    engine->hasNotificationActiveIs(true);
    return engine;
}

Vanta::Ptr<PktGenSm> PacketTracerSm::pktGenSmDel() {
    auto engine = std::exchange(pktGenSm_, nullptr);
    if (engine) {
        engine->hasNotificationActiveIs(false);
    }
    return engine;
}

}  // namespace VynPacketTracer
