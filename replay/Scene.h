// What a scenario plays on: the clients' directories, forwarding state, the scripted chip, the
// event loop, and the tracer while there is one.
//
// The scene holds the tracer's root and nothing of what the tracer owns, so that releasing the root
// takes everything down in the tracer's own order. Thread: one only.
#pragma once

#include <optional>

#include "Bridging/Config.h"
#include "Fen/FenCommonSmData.h"
#include "Kel/Dir.h"
#include "Orb/TaskSchedulerRoot.h"
#include "VynPacketTracer/VynPtSm.h"
#include "VynSlice/ChipStatus.h"
#include "VynSystem/SystemStatus.h"
#include "replay/Event.h"
#include "scriptchip/ScriptChip.h"

namespace Replay {

class Scene {
  public:
    // `listener` is told of the chip's calls; it outlives the scene.
    explicit Scene(ScriptChip::Listener& listener);
    Scene(Scene const&) = delete;
    Scene& operator=(Scene const&) = delete;
    ~Scene();

    // Refuses an event that makes no sense now, such as a second start. Errors: Refusal.
    void check(Event const& event) const;

    // Carries an event out. Errors: whatever the tracer throws.
    // Precondition: check() let the event pass.
    void carryOut(Event const& event);

    // The engine's state; nothing while there is no tracer.
    std::optional<VynPacketTracer::PktGenState> engineState() const;

    // One of the scene's objects, by the name of what it is for.
    struct Root {
        std::string_view name;
        Vanta::Node const* node;  // null for a tracer that is not there
    };
    // Where to start to find every object.
    std::vector<Root> roots() const;

  private:
    struct Checker;
    struct Player;

    Vanta::Ptr<PacketTracer::ClientConfig> config(Vanta::String const& client) const;
    Vanta::Ptr<PacketTracer::ClientStatus> status(Vanta::String const& client) const;

    Vanta::Ptr<Kel::Dir> config_ = Kel::Dir::DirIs();
    Vanta::Ptr<Kel::Dir> status_ = Kel::Dir::DirIs();
    Vanta::Ptr<VynSystem::SystemStatus> systemStatus_ = VynSystem::SystemStatus::SystemStatusIs();
    Vanta::Ptr<Fen::FenCommonSmData> fcsd_ = Fen::FenCommonSmData::FenCommonSmDataIs();
    Vanta::Ptr<Bridging::Config> bridgingConfig_ = Bridging::Config::ConfigIs();
    Vanta::Ptr<VynSlice::ChipStatus> chipStatus_ = VynSlice::ChipStatus::ChipStatusIs();
    Vanta::Ptr<Orb::TaskSchedulerRoot> scheduler_ = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    ScriptChip::ScriptChip chip_;
    Vanta::Ptr<VynPacketTracer::PacketTracerSm> tracer_;
};

}  // namespace Replay
