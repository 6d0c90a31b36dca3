// One run of `vynpt trace`: every packet of a source goes in on one interface, and its report comes
// out, in the order of the packets.
//
// Bad input ends the source, not what was read before it: those packets are answered and reported
// first. Thread: the event thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "agent/ForwardingAgent.h"
#include "agent/TraceClient.h"
#include "cli/ChipNames.h"
#include "cli/FrameReport.h"
#include "cli/FrameSource.h"
#include "cli/Road.h"

namespace Cli {

struct TraceRunOptions {
    Plexa::IntfId ingress;
    std::chrono::nanoseconds timeout{};
    std::optional<Expectation> expectation = std::nullopt;
    Road* road = nullptr;              // to explain, one request at a time
    ChipNames const* names = nullptr;  // to explain
};

class TraceRun {
  public:
    // The most requests that are under way, or answered and not yet reported.
    static constexpr std::size_t window = 256;

    // The result of a run.
    struct Result {
        std::uint64_t frames = 0;
        bool unanswered = false;  // some request had no answer
        bool unexpected = false;  // some answer was not as expected
        std::string badInput;     // the message about bad input; empty if there was none
    };

    using Report = std::function<void(FrameReport const&)>;
    // Called when there is nothing to report for the moment.
    using Pause = std::function<void()>;

    // Precondition: the arguments outlive the run.
    TraceRun(Agent::ForwardingAgent& agent, FrameSource& source, TraceRunOptions options,
             Report report, Pause pause);
    TraceRun(TraceRun const&) = delete;
    TraceRun& operator=(TraceRun const&) = delete;

    // Runs until the source has ended and all is reported, or `stopped` says so.
    Result run(std::function<bool()> const& stopped);

  private:
    // A packet under way, or answered but not yet its turn.
    struct Pending {
        Packet packet;
        std::optional<Agent::Answer> answer;
        std::vector<Passage> road;
        std::vector<ChipStep> steps;
    };

    bool wantsMore() const;
    void addNext();
    void add(Packet packet);
    void take(Agent::Answer answer);
    void explain(Pending& pending);
    void reportAnswered();
    FrameReport reportOf(Pending pending);

    Agent::ForwardingAgent& agent_;
    FrameSource& source_;
    TraceRunOptions const options_;
    Report const report_;
    Pause const pause_;
    Agent::TraceClient client_;
    std::deque<Pending> pending_;    // in the order of the packets
    std::uint32_t firstNumber_ = 1;  // the request's of the first one
    bool ended_ = false;
    Result result_;
};

}  // namespace Cli
