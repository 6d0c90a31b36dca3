// The tracer's root: the one object that the forwarding agent makes.
//
//   state                 entered by                    left by
//   constructed           PacketTracerSmIs              the end of PacketTracerSmIs
//   active                the end of PacketTracerSmIs   the last release
//   torn down             destruction                   the release of the memory
//
// Invariants while it is active: it has one engine, one PktGenConfig and one PktGenStatus; one
// PacketTracerClientSm for each client that has an entry of the right type in both directories; one
// watcher for each entry of PktGenStatus.
//
// Thread: the event thread, for everything here.
#pragma once

#include <cstdint>

#include "Bridging/Config.h"
#include "Fen/FenCommonSmData.h"
#include "Kel/Collection.h"
#include "Kel/Dir.h"
#include "Kel/NotifieeConst.h"
#include "Kel/Object.h"
#include "Orb/TaskSchedulerRoot.h"
#include "Vanta/Publisher.h"
#include "VyPd/VyPdIntf.h"
#include "VyResourceInfo/VyResourceInfoIntf.h"
#include "VynExport.h"
#include "VynId/VynDevId.h"
#include "VynPacketTracer/VynPtClientSm.h"
#include "VynPacketTracer/VynPtPktGenSm.h"
#include "VynPacketTracer/VynPtTypes.h"
#include "VynSdk/Phase0DataIntf.h"
#include "VynSlice/ChipStatus.h"
#include "VynSystem/SystemStatus.h"

namespace VynPacketTracer {

class PacketTracerSm;

// The watcher of one status entry: it has the entry relayed when its `ready` changes. Every other
// attribute is ignored.
class VYN_EXPORT NestedSm_LocalStatus final : public Kel::NotifieeConst<PktGenStatusData> {
  public:
    // Watches `status`, not yet registered, without reacting. The owner is not counted.
    NestedSm_LocalStatus(Vanta::Ptr<PktGenStatusData const> const& status, PacketTracerSm* owner);
    ~NestedSm_LocalStatus() override;

    void onAttribute(Vanta::AttributeNumber attribute, Vanta::ValueRef oldValue) override;

    // Watches another entry (a node of another type counts as null) and relays it at once, unless
    // it is null or the watcher is torn down.
    void notifierIs(Vanta::Ptr<Vanta::Node const> const& node);
    // Has the owner relay the entry; without an owner does nothing.
    void kel_handleLocalStatus_ready();
    void ownerDel() noexcept { owner_ = nullptr; }

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    PacketTracer::RequestId key() const;

    PacketTracerSm* owner_;
};

class VYN_EXPORT PacketTracerSm final : public Kel::Object {
  public:
    using LocalStatuses =
        Kel::Collection<PacketTracer::RequestId, Vanta::Ptr<NestedSm_LocalStatus>>;
    using ClientSms = Kel::Collection<Vanta::String, Vanta::Ptr<PacketTracerClientSm>>;

    // A running tracer; see packetTracerSmFactory().
    static Vanta::Ptr<PacketTracerSm> PacketTracerSmIs(
        Vanta::Ptr<Kel::Dir const> const& config, Vanta::Ptr<Kel::Dir> const& status,
        Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf, bool pktGenSupported,
        bool pktTracerSupported, std::uint32_t sessionHandle, VynId::VynDevId deviceId,
        Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
        Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
        Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler,
        Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
        Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
        Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
        Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus);

    // Connects (true) or disconnects all observations, those of watchers, engine and clients too.
    void hasNotificationActiveIs(bool on);
    // Marks this object and its watchers as being torn down: they then react to nothing.
    void kelDoZombieReactors(bool on);

    // ---- Clients

    // Handles every client that the configuration directory has an entity for.
    void handleClients();
    // Makes the client's state machine if both directories have its entry, removes it otherwise.
    void handleClient(Vanta::String const& name);

    Vanta::Ptr<PacketTracerClientSm> clientSm(Vanta::String const& name) const {
        return clientSm_.get(name);
    }
    // The client's state machine, made if there is none. Errors: Kel::ReinstantiationError at the
    // first argument that differs from the existing one's.
    Vanta::Ptr<PacketTracerClientSm> clientSmIs(
        Vanta::String const& name, Vanta::Ptr<PacketTracer::ClientConfig const> const& clientConfig,
        Vanta::Ptr<PacketTracer::ClientStatus> const& clientStatus,
        Vanta::Ptr<PktGenConfig> const& pktGenConfig,
        Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
        Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
        Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
        Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus);
    // Removes and returns a client's state machine, or null.
    Vanta::Ptr<PacketTracerClientSm> clientSmDel(Vanta::String const& name);
    void clientSmDelAll();

    // ---- The engine and its collections

    Vanta::Ptr<PktGenConfig> const& pktGenCfg() const noexcept { return pktGenCfg_; }
    Vanta::Ptr<PktGenConfig> pktGenCfgIs();
    Vanta::Ptr<PktGenConfig> pktGenCfgDel();

    Vanta::Ptr<PktGenStatus> const& pktGenStatus() const noexcept { return pktGenStatus_; }
    // The answers, made, observed and watched entry by entry if there are none.
    Vanta::Ptr<PktGenStatus> pktGenStatusIs();
    // Gives the answers up, with every watcher.
    Vanta::Ptr<PktGenStatus> pktGenStatusDel();

    Vanta::Ptr<PktGenSm> const& pktGenSm() const noexcept { return pktGenSm_; }
    // The engine of these arguments; one with others is replaced, after the new one was made.
    Vanta::Ptr<PktGenSm> pktGenSmIs(
        Vanta::Ptr<PktGenConfig> const& pktGenConfig,
        Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf,
        Vanta::Ptr<PktGenStatus> const& pktGenStatus, std::uint32_t sessionHandle,
        VynId::VynDevId deviceId, bool pktTracerSupported,
        Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
        Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
        Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler);
    // Takes the engine out, with its notifications off.
    Vanta::Ptr<PktGenSm> pktGenSmDel();

    // ---- The relay from status entries to clients

    // Has the client of a status entry update its result. Nothing is relayed for an entry that is
    // gone or whose client has no state machine.
    void handlePktGenStatus(PacketTracer::RequestId const& key);

    // Makes the watcher of an entry, or points it at another record. Errors:
    // Kel::NullArgumentError.
    void localStatusIs(Vanta::Ptr<PktGenStatusData const> const& entry);
    // Silences and removes a watcher; returns the record that it watched, or null.
    Vanta::Ptr<PktGenStatusData const> localStatusDel(PacketTracer::RequestId const& key);
    void localStatusDelAll();
    bool localStatusHas(PacketTracer::RequestId const& key) const { return localStatus_.has(key); }
    Vanta::Ptr<NestedSm_LocalStatus> localStatus(PacketTracer::RequestId const& key) const {
        return localStatus_.get(key);
    }

    // ---- What the agent handed over

    Vanta::Ptr<Kel::Dir const> const& config() const noexcept { return config_; }
    Vanta::Ptr<Kel::Dir> const& status() const noexcept { return status_; }
    Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf() const noexcept {
        return phase0DataIntf_;
    }
    bool pktGenSupported() const noexcept { return pktGenSupported_; }
    bool pktTracerSupported() const noexcept { return pktTracerSupported_; }
    std::uint32_t sessionHandle() const noexcept { return sessionHandle_; }
    VynId::VynDevId deviceId() const noexcept { return deviceId_; }
    Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf() const noexcept {
        return resourceInfoIntf_;
    }
    Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf() const noexcept { return vyPdIntf_; }
    Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler() const noexcept {
        return rootScheduler_;
    }
    Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus() const noexcept {
        return systemStatus_;
    }
    Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd() const noexcept { return fcsd_; }
    Vanta::Ptr<Bridging::Config const> const& bridgingConfig() const noexcept {
        return bridgingConfig_;
    }
    Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus() const noexcept {
        return chipStatus_;
    }
    bool initialized() const noexcept { return initialized_; }

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    PacketTracerSm(Vanta::Ptr<Kel::Dir const> const& config, Vanta::Ptr<Kel::Dir> const& status,
                   Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf, bool pktGenSupported,
                   bool pktTracerSupported, std::uint32_t sessionHandle, VynId::VynDevId deviceId,
                   Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
                   Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
                   Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler,
                   Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
                   Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
                   Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
                   Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus);
    ~PacketTracerSm() override;

    void handleInitialized();
    void subscribe();
    void subscribeToPktGenStatus();
    void unsubscribe() noexcept;
    void configDispatch(Vanta::Publisher const& publisher, Vanta::Subscriber& subscriber,
                        Vanta::AttributeNumber attribute, Vanta::ValueRef key,
                        Vanta::ValueRef oldValue);
    void statusDispatch(Vanta::Publisher const& publisher, Vanta::Subscriber& subscriber,
                        Vanta::AttributeNumber attribute, Vanta::ValueRef key,
                        Vanta::ValueRef oldValue);
    void pktGenStatusDispatch(Vanta::Publisher const& publisher, Vanta::Subscriber& subscriber,
                              Vanta::AttributeNumber attribute, Vanta::ValueRef key,
                              Vanta::ValueRef oldValue);
    void dirEntryChanged(Vanta::AttributeNumber attribute, Vanta::ValueRef key);

    LocalStatuses const& allLocalStatuses() const noexcept { return localStatus_; }
    ClientSms const& allClientSms() const noexcept { return clientSm_; }

    Vanta::Ptr<Kel::Dir const> const config_;
    Vanta::Ptr<Kel::Dir> const status_;
    Vanta::Ptr<VynSdk::Phase0DataIntf> const phase0DataIntf_;
    bool const pktGenSupported_;
    bool const pktTracerSupported_;
    std::uint32_t const sessionHandle_;
    VynId::VynDevId const deviceId_;
    Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const resourceInfoIntf_;
    Vanta::Ptr<VyPd::VyPdIntf> const vyPdIntf_;
    Vanta::Ptr<Orb::TaskSchedulerRoot> const rootScheduler_;
    Vanta::Ptr<VynSystem::SystemStatus const> const systemStatus_;
    Vanta::Ptr<Fen::FenCommonSmData const> const fcsd_;
    Vanta::Ptr<Bridging::Config const> const bridgingConfig_;
    Vanta::Ptr<VynSlice::ChipStatus const> const chipStatus_;
    Vanta::Ptr<PktGenConfig> pktGenCfg_;
    Vanta::Ptr<PktGenStatus> pktGenStatus_;
    LocalStatuses localStatus_;
    Vanta::Ptr<PktGenSm> pktGenSm_;
    ClientSms clientSm_;
    bool initialized_ = false;

    Vanta::Subscriber configSubscriber_;
    Vanta::Subscriber statusSubscriber_;
    Vanta::Subscriber pktGenStatusSubscriber_;
};

// The agent's entry point: a tracer that answers the requests in the clients' configuration
// directory, of those clients that have an entry in the status directory too, until it is released.
//
// The directories hold a PacketTracer::ClientConfig and a PacketTracer::ClientStatus a client name;
// an entry of a client with a state machine is removed before another takes its place. The
// forwarding state is read whenever it is needed. Ends the process where the digest channel cannot
// be set up. Errors: what the first pass over the clients raises; nothing is then left behind.
VYN_EXPORT Vanta::Ptr<PacketTracerSm> packetTracerSmFactory(
    Vanta::Ptr<Kel::Dir const> const& config, Vanta::Ptr<Kel::Dir> const& status,
    Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf, bool pktGenSupported,
    bool pktTracerSupported, unsigned sessionHandle, VynId::VynDevId deviceId,
    Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
    Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
    Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler,
    Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
    Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
    Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
    Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus);

}  // namespace VynPacketTracer
