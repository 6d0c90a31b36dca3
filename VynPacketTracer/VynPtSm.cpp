#include "VynPacketTracer/VynPtSm.h"

#include <utility>

#include "Kel/Error.h"
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
    auto tracer = Vanta::makeNode<PacketTracerSm>(config, status, phase0DataIntf, pktGenSupported,
                                                  pktTracerSupported, sessionHandle, deviceId,
                                                  resourceInfoIntf, vyPdIntf, rootScheduler,
                                                  systemStatus, fcsd, bridgingConfig, chipStatus);
    tracer->hasNotificationActiveIs(true);
    return tracer;
}

PacketTracerSm::PacketTracerSm(
    Vanta::Ptr<Kel::Dir const> const& config, Vanta::Ptr<Kel::Dir> const& status,
    Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf, bool pktGenSupported,
    bool pktTracerSupported, std::uint32_t sessionHandle, VynId::VynDevId deviceId,
    Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
    Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
    Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler,
    Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
    Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
    Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
    Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus)
    : config_(config),
      status_(status),
      phase0DataIntf_(phase0DataIntf),
      pktGenSupported_(pktGenSupported),
      pktTracerSupported_(pktTracerSupported),
      sessionHandle_(sessionHandle),
      deviceId_(deviceId),
      resourceInfoIntf_(resourceInfoIntf),
      vyPdIntf_(vyPdIntf),
      rootScheduler_(rootScheduler),
      systemStatus_(systemStatus),
      fcsd_(fcsd),
      bridgingConfig_(bridgingConfig),
      chipStatus_(chipStatus) {
    try {
        subscribe();
        handleInitialized();
    } catch (...) {
        unsubscribe();
        throw;
    }
}

// The order is what an observer sees of a shut-down: engine before clients, and the collections
// with whoever holds them last.
PacketTracerSm::~PacketTracerSm() {
    hasNotificationActiveIs(false);
    kelDoZombieReactors(true);
    unsubscribe();
    for (auto const& entry : localStatus_) {
        entry.value->ownerDel();
    }
    pktGenCfgDel();
    pktGenStatusDel();
    pktGenSmDel();
    clientSmDelAll();
}

void PacketTracerSm::handleInitialized() {
    Trace::twinlog(trace, 7, "handleInitialized:pktTracerSupported:%s pktGenSupported%s",
                   pktTracerSupported_, pktGenSupported_);
    initialized_ = true;
    pktGenCfgIs();
    pktGenStatusIs();
    pktGenSmIs(pktGenCfg_, phase0DataIntf_, pktGenStatus_, sessionHandle_, deviceId_,
               pktTracerSupported_, resourceInfoIntf_, vyPdIntf_, rootScheduler_);
    handleClients();
}

// ---- Observations

// Connects what has a source and is not connected.
void PacketTracerSm::subscribe() {
    if (config_ && !configSubscriber_.subscribed()) {
        configSubscriber_.subscribe<&PacketTracerSm::configDispatch>(config_->publisher(), this);
    }
    if (status_ && !statusSubscriber_.subscribed()) {
        statusSubscriber_.subscribe<&PacketTracerSm::statusDispatch>(status_->publisher(), this);
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
        // Whoever hears of a result may let the tracer go.
        Vanta::Ptr<PacketTracerSm> const alive(this);
        handleClient(key.get<Vanta::String>());
    }
}

// ---- Clients

void PacketTracerSm::handleClients() {
    Trace::twinlog(trace, 7, "handleClients:");
    if (!config_) {
        return;
    }
    for (auto const& entry : config_->entry()) {
        if (entry.value) {
            handleClient(Vanta::String(entry.key));
        }
    }
}

void PacketTracerSm::handleClient(Vanta::String const& name) {
    Trace::twinlog(trace, 7, "handleClient:client %s", name);
    auto const clientConfig =
        config_ ? config_->entity<PacketTracer::ClientConfig const>(name) : nullptr;
    auto const clientStatus = status_ ? status_->entity<PacketTracer::ClientStatus>(name) : nullptr;
    if (clientConfig && clientStatus) {
        clientSmIs(name, clientConfig, clientStatus, pktGenCfg_, systemStatus_, fcsd_,
                   bridgingConfig_, chipStatus_);
    } else {
        clientSmDel(name);
    }
}

namespace {

// A client's state machine is made once; whoever replaces what it stands on removes it first.
template <class T>
void checkSameObject(PacketTracerClientSm const& client, std::string_view attribute,
                     Vanta::Ptr<T> const& stored, Vanta::Ptr<T> const& given) {
    if (!(stored == given)) {
        std::string const entry = "client " + std::string(client.name().view());
        throw Kel::ReinstantiationError(client.typeInfo(), attribute, entry, stored, given);
    }
}

}  // namespace

Vanta::Ptr<PacketTracerClientSm> PacketTracerSm::clientSmIs(
    Vanta::String const& name, Vanta::Ptr<PacketTracer::ClientConfig const> const& clientConfig,
    Vanta::Ptr<PacketTracer::ClientStatus> const& clientStatus,
    Vanta::Ptr<PktGenConfig> const& pktGenConfig,
    Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
    Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
    Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
    Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus) {
    if (auto const existing = clientSm(name)) {
        checkSameObject(*existing, "clientConfig", existing->clientConfig(), clientConfig);
        checkSameObject(*existing, "clientStatus", existing->clientStatus(), clientStatus);
        checkSameObject(*existing, "pktGenConfig", existing->pktGenConfig(), pktGenConfig);
        checkSameObject(*existing, "systemStatus", existing->systemStatus(), systemStatus);
        checkSameObject(*existing, "fcsd", existing->fcsd(), fcsd);
        checkSameObject(*existing, "bridgingConfig", existing->bridgingConfig(), bridgingConfig);
        checkSameObject(*existing, "chipStatus", existing->chipStatus(), chipStatus);
        return existing;
    }
    auto const made = packetTracerClientSmFactory(name, clientConfig, clientStatus, pktGenConfig,
                                                  systemStatus, fcsd, bridgingConfig, chipStatus);
    // Its requests were handled meanwhile: whoever heard of that may have come here already.
    clientSm_.findOrInsert(name).value = made;
    return made;
}

Vanta::Ptr<PacketTracerClientSm> PacketTracerSm::clientSmDel(Vanta::String const& name) {
    return clientSm_.remove(name).value_or(nullptr);
}

void PacketTracerSm::clientSmDelAll() {
    clientSm_.eachKeyUntilLast([this](Vanta::String const& name) { clientSmDel(name); });
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
    if (pktGenSm_ && pktGenSm_->config() == pktGenConfig &&
        pktGenSm_->phase0DataIntf() == phase0DataIntf && pktGenSm_->status() == pktGenStatus &&
        pktGenSm_->sessionHandle() == sessionHandle && pktGenSm_->deviceId() == deviceId &&
        pktGenSm_->pktTracerSupported() == pktTracerSupported &&
        pktGenSm_->resourceInfoIntf() == resourceInfoIntf && pktGenSm_->vyPdIntf() == vyPdIntf &&
        pktGenSm_->rootScheduler() == rootScheduler) {
        return pktGenSm_;
    }
    pktGenSm_ =
        PktGenSm::PktGenSmIs(pktGenConfig, phase0DataIntf, pktGenStatus, sessionHandle, deviceId,
                             pktTracerSupported, resourceInfoIntf, vyPdIntf, rootScheduler);
    pktGenSm_->hasNotificationActiveIs(true);
    return pktGenSm_;
}

Vanta::Ptr<PktGenSm> PacketTracerSm::pktGenSmDel() {
    auto engine = std::exchange(pktGenSm_, nullptr);
    if (engine) {
        engine->hasNotificationActiveIs(false);
    }
    return engine;
}

}  // namespace VynPacketTracer
