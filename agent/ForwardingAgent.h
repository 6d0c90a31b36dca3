// The forwarding agent: one switch, its software chip, its event loop and its packet tracer, in one
// process.
//
// It derives the chip's tables and the forwarding state from the switch's model, mounts the
// clients' two directories in the state database, and loads the tracer with both. To have something
// traced, put a PacketTracer::ClientConfig and a PacketTracer::ClientStatus under the client's name
// into these directories and turn the loop.
//
// Everything is destroyed in the reverse order: the tracer first, so the chip is still there when
// the engine cleans up. Thread: the event thread, which is the one that made it.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "Hivedb/Database.h"
#include "Kel/Dir.h"
#include "Orb/TaskSchedulerRoot.h"
#include "VynPacketTracer/VynPtMounts.h"
#include "VynPacketTracer/VynPtSm.h"
#include "agent/DeriveState.h"
#include "scenario/RecordingFile.h"
#include "softchip/Phase0Data.h"
#include "softchip/SoftChip.h"
#include "switchfile/SwitchFile.h"

namespace Agent {

struct AgentOptions {
    SoftChip::Mode mode = SoftChip::Mode::threaded;
    VynId::VynDevId device = 0;
    p4_pd_sess_hdl_t session = 1;
    bool pktTracerSupported = true;
    // The file that the run is recorded to as a scenario, or null; it outlives the agent.
    Scenario::RecordingFile* recording = nullptr;
};

class RunRecorder;

class ForwardingAgent {
  public:
    // Where the clients' directories are mounted.
    static constexpr std::string_view configPath = "/packetTracer/config";
    static constexpr std::string_view statusPath = "/packetTracer/status";

    // A running agent. The chip's thread loads the tables; packets that are injected meanwhile wait
    // for them. Errors: std::logic_error if the device id is taken, std::system_error for want of
    // resources.
    explicit ForwardingAgent(SwitchFile::SwitchModel const& model,
                             AgentOptions const& options = {});
    ForwardingAgent(ForwardingAgent const&) = delete;
    ForwardingAgent& operator=(ForwardingAgent const&) = delete;
    ~ForwardingAgent();

    // Releases the tracer and loads it anew. Everything else stays: the clients with their requests
    // and results, forwarding state, the chip. Precondition: not inside the loop.
    void restartTracer();

    // Changes forwarding state. While the run is recorded, forwarding state is changed only through
    // this.
    void changeForwardingState(std::function<void(ForwardingState const&)> const& change);

    Orb::TaskSchedulerRoot& loop() const noexcept { return *loop_; }
    Hivedb::Database& database() const noexcept { return *database_; }
    Kel::Dir& clientConfigs() const noexcept { return *clientConfigs_; }
    Kel::Dir& clientStatuses() const noexcept { return *clientStatuses_; }
    ForwardingState const& forwardingState() const noexcept { return state_; }
    SoftChip::SoftChip& chip() noexcept { return chip_; }
    SoftChip::Phase0Data& phase0Data() const noexcept { return *phase0Data_; }
    VynPacketTracer::PacketTracerSm const& tracer() const noexcept { return *tracer_; }

  private:
    void loadChip(SwitchFile::SwitchModel const& model);
    void loadTracer();
    void releaseTracer();

    AgentOptions const options_;
    Vanta::Ptr<Orb::TaskSchedulerRoot> loop_;
    Vanta::Ptr<Hivedb::Database> database_;
    Vanta::Ptr<Kel::Dir> clientConfigs_;
    Vanta::Ptr<Kel::Dir> clientStatuses_;
    Vanta::Ptr<VynPacketTracer::VynPacketTracerMounts> mounts_;
    ForwardingState state_;
    SoftChip::SoftChip chip_;
    Vanta::Ptr<SoftChip::Phase0Data> phase0Data_;
    std::unique_ptr<RunRecorder> recorder_;
    Vanta::Ptr<VynPacketTracer::PacketTracerSm> tracer_;
};

}  // namespace Agent
