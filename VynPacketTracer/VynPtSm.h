// The tracer's root: the one object that the forwarding agent makes.
//
//   state          entered by                       left by
//   constructed    PacketTracerSmIs                 the end of PacketTracerSmIs
//   active         the end of PacketTracerSmIs      the last release
//   switched off   hasNotificationActiveIs(false)   hasNotificationActiveIs(true), the last release
//   torn down      destruction                      the release of the memory
//
// Invariants while it is active, and was never switched off: it has one engine, one PktGenConfig
// and one PktGenStatus; one PacketTracerClientSm for each client that has an entry of the right
// type in both directories; one watcher for each entry of PktGenStatus.
//
// Switched off, it hears of nothing, and neither do its engine and its clients. Switched on again
// it does not catch up with what it missed:
//
//   meanwhile                        is noticed
//   a client's directory entry       when it changes again, or by handleClient()
//     came, changed or went
//   a request came, changed or went  when it changes again, or by its client's handleRequest()
//   an answer came or became ready   by handlePktGenStatus() alone: what came has no watcher
//   an answer went                   by localStatusDel() alone: it keeps its watcher
//
// What an operation publishes may release the object, so whoever calls one holds the object meanwhile;
// the reactors do. Thread: the event thread, for everything here.
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
// attribute is ignored. A watcher that is removed inside its own call stays removed: silent, torn
// down and without an owner.
class VYN_EXPORT NestedSm_LocalStatus final : public Kel::NotifieeConst<PktGenStatusData> {
  public:
    // Watches `status`, not yet registered, without reacting. The owner is not counted. Both may be
    // null.
    NestedSm_LocalStatus(Vanta::Ptr<PktGenStatusData const> const& status, PacketTracerSm* owner);
    ~NestedSm_LocalStatus() override;

    void onAttribute(Vanta::AttributeNumber attribute, Vanta::ValueRef oldValue) override;

    // Watches another entry (a node of another type counts as null) and relays it at once, unless
    // it is null or the watcher is torn down; then it is registered. Errors: those of updating the
    // client's result.
    void notifierIs(Vanta::Ptr<Vanta::Node const> const& node);
    // Has the owner relay the entry; without an owner does nothing.
    void kel_handleLocalStatus_ready();
    void ownerDel() noexcept { owner_ = nullptr; }

    // The id of the request whose entry is watched; the empty id if there is none.
    PacketTracer::RequestId key() const;

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    PacketTracerSm* owner_;
};

// The key of a watcher: the request of the entry that it watches.
struct LocalStatusKeyFunktor {
    PacketTracer::RequestId operator()(NestedSm_LocalStatus const& watcher) const {
        return watcher.key();
    }
};

class VYN_EXPORT PacketTracerSm final : public Kel::Object {
  public:
    using LocalStatuses =
        Kel::Collection<PacketTracer::RequestId, Vanta::Ptr<NestedSm_LocalStatus>>;
    using ClientSms = Kel::Collection<Vanta::String, Vanta::Ptr<PacketTracerClientSm>>;

    // What a tracer is made with. The references are released from the last to the first. A null
    // directory has no entries. The engine (PktGenSm) and the client state machines
    // (PacketTracerClientSm) get the others and say which of them may be null.
    struct Arguments {
        Vanta::Ptr<Kel::Dir const> config;
        Vanta::Ptr<Kel::Dir> status;
        Vanta::Ptr<VynSdk::Phase0DataIntf> phase0DataIntf;
        bool pktGenSupported;
        bool pktTracerSupported;
        std::uint32_t sessionHandle;
        VynId::VynDevId deviceId;
        Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> resourceInfoIntf;
        Vanta::Ptr<VyPd::VyPdIntf> vyPdIntf;
        Vanta::Ptr<Orb::TaskSchedulerRoot> rootScheduler;
        Vanta::Ptr<VynSystem::SystemStatus const> systemStatus;
        Vanta::Ptr<Fen::FenCommonSmData const> fcsd;
        Vanta::Ptr<Bridging::Config const> bridgingConfig;
        Vanta::Ptr<VynSlice::ChipStatus const> chipStatus;
    };

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
    // What was missed while they were disconnected stays missed; see above.
    void hasNotificationActiveIs(bool on);
    // Marks this object and its watchers as being torn down (true): they then react to nothing.
    // Clearing the mark switches the watchers' notifications on, also if this object's are off.
    void kelDoZombieReactors(bool on);

    // Makes the collections, the engine and a state machine for every client that is there. The
    // construction calls it once; called again it makes what is missing, keeps what is there, and
    // has every client handled once more. After pktGenCfgDel() or pktGenStatusDel() a new
    // collection is made, so the engine is replaced. Errors: those of handleClients(); after
    // pktGenCfgDel() a client that has a state machine raises Kel::ReinstantiationError for its
    // `pktGenConfig`.
    void handleInitialized();

    // React to a change that a directory published. Of the change only the attribute and the key, a
    // Vanta::String, are read: the client of that name is handled. Every attribute but
    // Kel::Dir::entryAttribute is ignored, and everything while torn down. Errors: those of
    // handleClient(), which end the process inside a delivery.
    void configDispatch(Vanta::Publisher const& publisher, Vanta::Subscriber& subscriber,
                        Vanta::AttributeNumber attribute, Vanta::ValueRef key,
                        Vanta::ValueRef oldValue);
    void statusDispatch(Vanta::Publisher const& publisher, Vanta::Subscriber& subscriber,
                        Vanta::AttributeNumber attribute, Vanta::ValueRef key,
                        Vanta::ValueRef oldValue);

    // ---- Clients

    // Handles every client that the configuration directory has an entity for.
    void handleClients();
    // Makes the client's state machine if both directories have an entry of the client, removes it
    // otherwise. If the client changes while its state machine is being made, the one that no
    // longer fits is removed and another is made, until it fits. Errors: those of clientSmIs().
    void handleClient(Vanta::String const& name);

    ClientSms const& clientSm() const noexcept { return clientSm_; }
    bool clientSmHas(Vanta::String const& name) const { return clientSm_.has(name); }
    // The state machine of a client, or null.
    Vanta::Ptr<PacketTracerClientSm> clientSm(Vanta::String const& name) const {
        return clientSm_.get(name);
    }
    // The client's state machine, made if there is none. A new one replaces one that was made under
    // the client's name meanwhile. Errors: Kel::ReinstantiationError at the first argument that
    // differs from the existing one's; what making one raises.
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
    // Removes every state machine that is there when this begins. For generic access, as
    // pktGenCfgDel() and pktGenSmDel(): the tracer itself does not call them.
    void clientSmDelAll();

    // ---- The engine and its collections

    Vanta::Ptr<PktGenConfig> const& pktGenCfg() const noexcept { return pktGenCfg_; }
    Vanta::Ptr<PktGenConfig> pktGenCfgIs();
    Vanta::Ptr<PktGenConfig> pktGenCfgDel();

    Vanta::Ptr<PktGenStatus> const& pktGenStatus() const noexcept { return pktGenStatus_; }
    // The collection of answers. If there is none, an empty one is made and observed, and watchers
    // of an earlier one's entries are removed.
    Vanta::Ptr<PktGenStatus> pktGenStatusIs();
    // Releases the collection of answers and removes every watcher.
    Vanta::Ptr<PktGenStatus> pktGenStatusDel();
    // Reacts to a change that the collection of answers published. Of the change only the attribute
    // and the key, a PacketTracer::RequestId, are read: the entry is relayed (unless torn down),
    // then its watcher is made or removed. Every attribute but `status` is ignored. Errors: those
    // of the client's updateResult(), which end the process inside a delivery.
    void pktGenStatusDispatch(Vanta::Publisher const& publisher, Vanta::Subscriber& subscriber,
                              Vanta::AttributeNumber attribute, Vanta::ValueRef key,
                              Vanta::ValueRef oldValue);

    Vanta::Ptr<PktGenSm> const& pktGenSm() const noexcept { return pktGenSm_; }
    // The engine of these arguments. An engine made with others is replaced, after the new one was
    // made.
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
    // gone or whose client has no state machine. Errors: those of updateResult().
    void handlePktGenStatus(PacketTracer::RequestId const& key);

    // Makes the watcher of an entry, or points it at another record, which is relayed at once.
    // Errors: Kel::NullArgumentError; those of the relay.
    void localStatusIs(Vanta::Ptr<PktGenStatusData const> const& entry);
    // Silences and removes a watcher; returns the record that it watched, or null.
    Vanta::Ptr<PktGenStatusData const> localStatusDel(PacketTracer::RequestId const& key);
    void localStatusDelAll();
    LocalStatuses const& localStatus() const noexcept { return localStatus_; }
    bool localStatusHas(PacketTracer::RequestId const& key) const { return localStatus_.has(key); }
    // The watcher of a request's entry, or null.
    Vanta::Ptr<NestedSm_LocalStatus> localStatus(PacketTracer::RequestId const& key) const {
        return localStatus_.get(key);
    }

    // ---- What the agent handed over

    Arguments const& arguments() const noexcept { return made_; }
    Vanta::Ptr<Kel::Dir const> const& config() const noexcept { return made_.config; }
    Vanta::Ptr<Kel::Dir> const& status() const noexcept { return made_.status; }
    Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf() const noexcept {
        return made_.phase0DataIntf;
    }
    bool pktGenSupported() const noexcept { return made_.pktGenSupported; }
    bool pktTracerSupported() const noexcept { return made_.pktTracerSupported; }
    std::uint32_t sessionHandle() const noexcept { return made_.sessionHandle; }
    VynId::VynDevId deviceId() const noexcept { return made_.deviceId; }
    Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf() const noexcept {
        return made_.resourceInfoIntf;
    }
    Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf() const noexcept { return made_.vyPdIntf; }
    Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler() const noexcept {
        return made_.rootScheduler;
    }
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
    bool initialized() const noexcept { return initialized_; }

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    explicit PacketTracerSm(Arguments arguments);
    ~PacketTracerSm() override;

    // The entities that the two directories have for a client.
    struct Entities;
    // A client whose state machine handleClient() is making.
    class Making;

    void subscribe();
    void subscribeToPktGenStatus();
    void unsubscribe() noexcept;
    void dirEntryChanged(Vanta::AttributeNumber attribute, Vanta::ValueRef key);
    Entities entitiesOf(Vanta::String const& name) const;
    bool isBeingMade(Vanta::String const& name) const noexcept;
    void clientSmIs(Vanta::String const& name, Entities const& entities);
    void clientSmUntilItFits(Vanta::String const& name);

    LocalStatuses const& allLocalStatuses() const noexcept { return localStatus_; }
    ClientSms const& allClientSms() const noexcept { return clientSm_; }

    Arguments const made_;
    Vanta::Ptr<PktGenConfig> pktGenCfg_;
    Vanta::Ptr<PktGenStatus> pktGenStatus_;
    LocalStatuses localStatus_;
    Vanta::Ptr<PktGenSm> pktGenSm_;
    ClientSms clientSm_;
    bool initialized_ = false;
    Making* makings_ = nullptr;

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
