// The real system of a run: the agent's directories and forwarding state, the software chip
// stepwise, the event loop, and the tracer while there is one. All on one thread; the clock is the
// count of the loop's turns.
//
// It carries events out and says what there is then, in the words of the model. The objects of
// clients stay in hand when their directory entries go. Thread: one only, one world a process.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Bridging/Config.h"
#include "Fen/FenCommonSmData.h"
#include "Kel/Dir.h"
#include "Orb/TaskSchedulerRoot.h"
#include "PacketTracer/ClientConfig.h"
#include "PacketTracer/ClientStatus.h"
#include "VynPacketTracer/VynPtSm.h"
#include "VynSlice/ChipStatus.h"
#include "VynSystem/SystemStatus.h"
#include "sdkseam/DigestLayout.h"
#include "simulate/Board.h"
#include "simulate/Event.h"
#include "simulate/Packets.h"
#include "simulate/Program.h"
#include "simulate/Recorder.h"
#include "softchip/SoftChip.h"

namespace Simulate {

class World {
  public:
    // A world without a tracer and without forwarding state; the chip has the switch's tables.
    explicit World(Switch const& drawn);
    World(World const&) = delete;
    World& operator=(World const&) = delete;
    ~World();

    // Carries an event out; a `turn` is one turn. Precondition: the model says that it applies.
    void carryOut(Event const& event);

    Recorder& recorder() { return recorder_; }
    Packets& packets() { return packets_; }
    SoftChip::SoftChip& chip() { return chip_; }
    Board const& board() const { return board_; }
    // Whether the engine's job is one that cannot go on for good reason: the phase-0 answer that it
    // waits for is not coming, the chip's counter stands where it stood before the injection, or
    // the chip refused the last injection or the answer before it.
    bool isHeldUp();

    // Everything that there is, line by line, as Model::content().
    std::vector<std::string> content() const;
    // Live nodes beyond those that are always there.
    std::size_t nodes() const { return Vanta::Node::liveCount() - base_; }
    // Changes that nobody published.
    std::optional<Breach> unpublished() const;
    // Entries of results that are gone although their result is not; remembers what is there.
    // Precondition: called after every event, with what was written down during it.
    std::optional<Breach> shrunkenResults(std::vector<std::string> const& log);

  private:
    struct Hand {
        Vanta::Ptr<PacketTracer::ClientConfig> config;
        Vanta::Ptr<PacketTracer::ClientStatus> status;
    };

    void changeForwarding(Event const& event);
    void setVlan(Event const& event);
    void changeDirectory(Event const& event);
    void changeRequest(Event const& event);
    void setRequest(Event const& event);
    void changeChip(Event const& event);
    void start(bool supported);
    void stop();
    void limitSocket();
    void forge(Event const& event);
    void addEngine(std::vector<std::string>& lines) const;

    Recorder recorder_;
    Packets packets_{recorder_};
    Vanta::Ptr<Kel::Dir> configs_ = Kel::Dir::DirIs();
    Vanta::Ptr<Kel::Dir> statuses_ = Kel::Dir::DirIs();
    Vanta::Ptr<VynSystem::SystemStatus> systemStatus_ = VynSystem::SystemStatus::SystemStatusIs();
    Vanta::Ptr<Fen::FenCommonSmData> fcsd_ = Fen::FenCommonSmData::FenCommonSmDataIs();
    Vanta::Ptr<Bridging::Config> bridging_ = Bridging::Config::ConfigIs();
    Vanta::Ptr<VynSlice::ChipStatus> chipStatus_ = VynSlice::ChipStatus::ChipStatusIs();
    Vanta::Ptr<Orb::TaskSchedulerRoot> loop_ = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    SoftChip::SoftChip chip_;
    Vanta::Ptr<SoftChip::Phase0Data> phase0_ = SoftChip::Phase0Data::Phase0DataIs(loop_);
    Board board_{recorder_, packets_};
    Vanta::Ptr<Phase0Desk> desk_ = Phase0Desk::Phase0DeskIs(phase0_, recorder_, packets_);
    Vanta::Ptr<SdkSeam::DigestLayout> layout_ = SdkSeam::DigestLayout::DigestLayoutIs();
    Vanta::Ptr<SdkSeam::LearnQuanta> quanta_ = SdkSeam::LearnQuanta::LearnQuantaIs();
    std::vector<Hand> hands_;
    std::size_t room_;
    Vanta::Ptr<VynPacketTracer::PacketTracerSm> tracer_;
    std::map<std::string, std::set<std::string>> seen_;  // entries, by result
    std::size_t base_ = 0;
};

}  // namespace Simulate
