// Carries out the events of a scenario on the objects that they are about: the clients'
// directories, forwarding state, the event loop, the scripted chip, and the tracer while there is
// one.
//
// The player holds the tracer's root and nothing of what the tracer owns, so that releasing the
// root takes everything down in the tracer's own order. Thread: one only.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "Kel/Dir.h"
#include "Orb/TaskSchedulerRoot.h"
#include "PacketTracer/ClientConfig.h"
#include "PacketTracer/ClientStatus.h"
#include "VynPacketTracer/VynPtSm.h"
#include "scenario/Event.h"
#include "scenario/ForwardingState.h"
#include "scriptchip/ScriptChip.h"

namespace Scenario {

// The objects that a scenario plays on. By default new ones; the objects that a chip provides for
// the tracer come from the chip.
struct Stage : ForwardingState {
    Vanta::Ptr<Kel::Dir> config = Kel::Dir::DirIs();
    Vanta::Ptr<Kel::Dir> status = Kel::Dir::DirIs();
    Vanta::Ptr<Orb::TaskSchedulerRoot> scheduler = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    Vanta::Ptr<VynSdk::Phase0DataIntf> phase0Data;
    Vanta::Ptr<VyPd::VyPdIntf> digestLayout;
    Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> learnQuanta;
};

class Player {
  public:
    // On a new stage with the scripted chip, which outlives the player.
    explicit Player(ScriptChip::ScriptChip& chip);
    // On a stage with a chip of its own kind, for events that are not the scripted chip's.
    explicit Player(Stage stage) : stage_(std::move(stage)) {}
    Player(Player const&) = delete;
    Player& operator=(Player const&) = delete;
    virtual ~Player() = default;

    // Refuses an event that makes no sense now, such as a second start. Errors: Refusal.
    void check(Event const& event) const;

    // Carries an event out. Errors: whatever the tracer throws.
    // Precondition: it makes sense now; an event of the scripted chip finds one.
    void carryOut(Event const& event);

    Stage const& stage() const noexcept { return stage_; }
    // The tracer's root, or null.
    Vanta::Ptr<VynPacketTracer::PacketTracerSm> const& tracer() const noexcept { return tracer_; }
    // The engine's state; nothing while there is no tracer.
    std::optional<VynPacketTracer::PktGenState> engineState() const;

    // One of the objects that the player works on, by name.
    struct Root {
        std::string_view name;
        Vanta::Node const* node;  // null for a tracer that is not there
    };
    // Where to start to find every object.
    std::vector<Root> roots() const;

  protected:
    // newConfig() and newStatus() give the object that goes into a directory as a client's own:
    // here a new one. The other two give the object that the client's requests or results concern,
    // null for none: here the one in the directory.
    virtual Vanta::Ptr<PacketTracer::ClientConfig> newConfig(Vanta::String const& client);
    virtual Vanta::Ptr<PacketTracer::ClientStatus> newStatus(Vanta::String const& client);
    virtual Vanta::Ptr<PacketTracer::ClientConfig> config(Vanta::String const& client) const;
    virtual Vanta::Ptr<PacketTracer::ClientStatus> status(Vanta::String const& client) const;

  private:
    struct Checking;
    struct Playing;

    Stage stage_;
    ScriptChip::ScriptChip* chip_ = nullptr;
    Vanta::Ptr<VynPacketTracer::PacketTracerSm> tracer_;
};

}  // namespace Scenario
