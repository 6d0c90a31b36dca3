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
// Jobs and results outlive the state machine; whoever removes a client withdraws its requests
// first. Thread: the event thread, for everything here.
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
// the request object under its id is another one.
class VYN_EXPORT NestedSm_Request final : public Kel::NotifieeConst<PacketTracer::Request> {
  public:
    // Watches `request`, not yet registered, without reacting. The owner is not counted.
    NestedSm_Request(Vanta::Ptr<PacketTracer::Request const> const& request,
                     PacketTracerClientSm* owner);

    // The id of the request that is watched; the empty id if there is none.
    PacketTracer::RequestId key() const;

    // Watches another request object. Reacts at once if it is another one, not null, and the
    // reactor is not torn down.
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

class VYN_EXPORT PacketTracerClientSm final : public Kel::Object {
  public:
    using Requests = Kel::Collection<PacketTracer::RequestId, Vanta::Ptr<NestedSm_Request>>;

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
    // Marks this object and its reactors as being torn down: they then react to nothing.
    void kelDoZombieReactors(bool on);

    // ---- The reactors, one a request of the configuration.

    // Makes the reactor of a request, or points it at another request object, which is handled at
    // once. Errors: Kel::NullArgumentError.
    void requestIs(Vanta::Ptr<PacketTracer::Request const> const& packetRequest);
    // Silences and removes a reactor; absent ids are ignored.
    void requestDel(PacketTracer::RequestId const& requestId);
    void requestDelAll();
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
    // Whether the chip can trace such a packet at all: neither MPLS nor GRE.
    bool isValidRequest(Vanta::Ptr<PacketTracer::Request const> const& packetRequest) const;

    // ---- Results out

    // Removes every result whose request is not in the configuration.
    void handleResults();
    // Writes the result of a status entry that is ready; ignores one that is not. Errors:
    // Kel::RangeError for a VLAN above 4094 (or 0 of a routed packet); the result's state and
    // `valid` are then not set.
    void updateResult(Vanta::Ptr<PktGenStatusData const> const& status);
    // Adds the entries of one egress interface: a LAG, a sub-interface, a LAG's member, a port.
    void updatePortInfoResult(Plexa::IntfId intfId, Vanta::Ptr<PacketTracer::Result> const& result);
    // Adds the entries of a flood in the status entry's VLAN, but for the ingress interface, and
    // sets the state.
    void pktFlooded(Vanta::Ptr<PktGenStatusData const> const& status,
                    Vanta::Ptr<PacketTracer::Result> const& result, Plexa::IntfId ingIntf);
    // Pairs each physical interface of the result, those of sub-interfaces aside, with the VLAN's.
    void addVlanIntf(Vanta::Ptr<PacketTracer::Result> const& result, std::uint16_t vlanId);
    // The interface named "Cpu".
    static Plexa::IntfId cpuIntfId();

    Vanta::String const& name() const noexcept { return name_; }
    Vanta::Ptr<PacketTracer::ClientConfig const> const& clientConfig() const noexcept {
        return clientConfig_;
    }
    Vanta::Ptr<PacketTracer::ClientStatus> const& clientStatus() const noexcept {
        return clientStatus_;
    }
    Vanta::Ptr<PktGenConfig> const& pktGenConfig() const noexcept { return pktGenConfig_; }
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

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    PacketTracerClientSm(Vanta::String const& name,
                         Vanta::Ptr<PacketTracer::ClientConfig const> const& clientConfig,
                         Vanta::Ptr<PacketTracer::ClientStatus> const& clientStatus,
                         Vanta::Ptr<PktGenConfig> const& pktGenConfig,
                         Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
                         Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
                         Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
                         Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus);
    ~PacketTracerClientSm() override;

    void handleInitialized();
    void subscribe();
    void clientConfigDispatch(Vanta::Publisher const& publisher, Vanta::Subscriber& subscriber,
                              Vanta::AttributeNumber attribute, Vanta::ValueRef key,
                              Vanta::ValueRef oldValue);
    void finishResult(PacketTracer::RequestId const& requestId, PacketTracer::State state);
    void updateUnicastResult(PktGenStatusData const& status,
                             Vanta::Ptr<PacketTracer::Result> const& result);
    bool isRoutedVlanReported(std::uint16_t egrL2Domain) const;

    Requests const& allRequests() const noexcept { return request_; }

    Vanta::String const name_;
    Vanta::Ptr<PacketTracer::ClientConfig const> const clientConfig_;
    Vanta::Ptr<PacketTracer::ClientStatus> const clientStatus_;
    Vanta::Ptr<PktGenConfig> const pktGenConfig_;
    Vanta::Ptr<VynSystem::SystemStatus const> const systemStatus_;
    Vanta::Ptr<Fen::FenCommonSmData const> const fcsd_;
    Vanta::Ptr<Bridging::Config const> const bridgingConfig_;
    Vanta::Ptr<VynSlice::ChipStatus const> const chipStatus_;
    // The last go first: a beginning that fails leaves in the order of a destruction.
    Requests request_;
    Vanta::Subscriber clientConfigSubscriber_;
};

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
