// The real system of a run: the agent's directories and forwarding state, the software chip
// stepwise, the event loop, and the tracer while there is one. All on one thread; the clock is the
// count of the loop's turns.
//
// The events of scenarios are carried out by the player, with the objects that clients have in
// hand; those stay in hand when their directory entries are removed. After an event the world says
// what there is, in the words of the model. Thread: one only, one world a process.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Orb/TaskSchedulerRoot.h"
#include "PacketTracer/ClientConfig.h"
#include "PacketTracer/ClientStatus.h"
#include "scenario/Player.h"
#include "simulate/Board.h"
#include "simulate/Event.h"
#include "simulate/Logbook.h"
#include "simulate/Packets.h"
#include "simulate/Program.h"
#include "simulate/Socket.h"
#include "softchip/SoftChip.h"

namespace Simulate {

class World {
  public:
    // A world without a tracer and without forwarding state; the chip has the switch's tables.
    explicit World(Switch const& drawn);
    World(World const&) = delete;
    World& operator=(World const&) = delete;
    ~World();

    // Carries an event out. Preconditions: the model says that it applies; `Turns` come one by one,
    // as a scenario's.
    void carryOut(Event const& event);

    Logbook& logbook() { return logbook_; }
    Packets& packets() { return packets_; }
    SoftChip::SoftChip& chip() { return chip_; }
    Board const& board() const { return board_; }
    // Whether there is a good reason why the engine's job does not go on: the phase-0 answer that
    // it waits for is not coming, the chip's counter has not moved since the injection, or, in any
    // other state, the chip refused the last injection.
    bool isHeldUp();

    // Everything that there is, line by line, as Model::content().
    std::vector<std::string> content() const;
    // Live nodes beyond those that are always there.
    std::size_t nodes() const { return Vanta::Node::liveCount() - base_; }
    // Changes that nobody published.
    std::optional<Breach> unpublished() const;
    // Finds entries that were removed from a result that is still there; remembers what is there.
    // Precondition: called after every event, with the results that were added during it.
    std::optional<Breach> shrunkenResults(std::set<PacketTracer::RequestId> const& added);

  private:
    struct Hand {
        Vanta::Ptr<PacketTracer::ClientConfig> config;
        Vanta::Ptr<PacketTracer::ClientStatus> status;
    };

    // Plays with the objects in hand, in the directories or not.
    class HandPlayer final : public Scenario::Player {
      public:
        HandPlayer(Scenario::Stage stage, World& world) : Player(std::move(stage)), world_(world) {}

      private:
        Vanta::Ptr<PacketTracer::ClientConfig> newConfig(Vanta::String const& client) override;
        Vanta::Ptr<PacketTracer::ClientStatus> newStatus(Vanta::String const& client) override;
        Vanta::Ptr<PacketTracer::ClientConfig> config(Vanta::String const& client) const override {
            return world_.hands_[client].config;
        }
        Vanta::Ptr<PacketTracer::ClientStatus> status(Vanta::String const& client) const override {
            return world_.hands_[client].status;
        }

        World& world_;
    };
    struct Doing;

    Vanta::Ptr<VynPacketTracer::PacketTracerSm> const& tracer() const { return player_.tracer(); }
    void start(Scenario::Event const& event);
    void stop(Scenario::Event const& event);
    void limitSocket();
    void forge(Forge const& forged);
    void addEngine(std::vector<std::string>& lines) const;

    Logbook logbook_;
    Packets packets_{logbook_};
    Vanta::Ptr<Orb::TaskSchedulerRoot> loop_ = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    SoftChip::SoftChip chip_;
    Vanta::Ptr<SoftChip::Phase0Data> phase0_ = SoftChip::Phase0Data::Phase0DataIs(loop_);
    Board board_{logbook_, packets_};
    Vanta::Ptr<Phase0Desk> desk_ = Phase0Desk::Phase0DeskIs(phase0_, logbook_, packets_);
    std::map<Vanta::String, Hand> hands_;
    std::size_t room_ = DigestSocket::plenty;
    std::map<std::string, std::set<std::string>> seen_;  // entries, by result
    std::size_t base_ = 0;
    HandPlayer player_;
};

}  // namespace Simulate
