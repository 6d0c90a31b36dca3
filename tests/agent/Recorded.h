// Runs that are recorded and replayed: the observations of both, compared.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>

#include "ScratchPath.h"
#include "Trace/Tap.h"
#include "Vanta/Tap.h"
#include "agent/ForwardingAgent.h"
#include "replay/Printer.h"
#include "replay/Replay.h"
#include "sdkseam/ForwardingChip.h"

namespace Agent {

// The lines of one thread's observations.
struct Observed {
    std::string eventThread;
    std::string sdkThread;
};

// Leaves out what has no counterpart in a live run, and sorts by thread.
inline Observed sorted(std::string const& lines) {
    Observed observed;
    std::istringstream in(lines);
    for (std::string line; std::getline(in, line);) {
        bool const isReplaysOwn = line.starts_with(R"({"event":)") ||
                                  line.starts_with(R"({"engine":)") ||
                                  line.starts_with(R"({"phase0":)");
        if (isReplaysOwn) {
            continue;
        }
        bool const isSdkThreads =
            line.find("rcvPktTracerLearningDigest:") != std::string::npos ||
            line.find(R"("sdk":"pipe_mgr_flow_lrn_notify_ack")") != std::string::npos;
        (isSdkThreads ? observed.sdkThread : observed.eventThread) += line + '\n';
    }
    return observed;
}

// Removes the agent's first registration and its last deregistration, because the observer is put
// in front of the recorder after the first and taken away before the last.
inline void dropEnds(std::string& eventThread) {
    auto const drop = [&](std::size_t at) {
        if (at != std::string::npos) {
            auto const begin = eventThread.rfind('\n', at) + 1;
            eventThread.erase(begin, eventThread.find('\n', at) + 1 - begin);
        }
    };
    drop(eventThread.find(R"("sdk":"pipe_mgr_lrn_digest_notification_register")"));
    drop(eventThread.rfind(R"("sdk":"pipe_mgr_lrn_digest_notification_deregister")"));
}

// Prints a live run as a replay prints its own: through taps and, for the chip's calls, in front of
// the chip.
class LiveObservation final : public SdkSeam::CallHook {
  public:
    LiveObservation() = default;
    LiveObservation(LiveObservation const&) = delete;
    LiveObservation& operator=(LiveObservation const&) = delete;

    // Observes the calls of the device, in front of everything that is already in front of its
    // chip.
    void calls(VynId::VynDevId device) { front_.emplace(device, *this); }
    void callsNoMore() { front_.reset(); }

    Observed take() {
        std::scoped_lock const lock(mutex_);
        printer_.flush();
        return sorted(out_.str());
    }

  private:
    void published(Vanta::Change const& change) {
        print([&](Replay::Printer& printer) { printer.published(change); });
    }
    void traced(std::string_view handle, unsigned level, std::string_view text) {
        print([&](Replay::Printer& printer) { printer.trace(handle, level, text); });
    }
    template <class Print>
    void print(Print const& print) {
        std::scoped_lock const lock(mutex_);
        print(printer_);
    }
    void called(SdkSeam::SdkCall& call, SdkSeam::Chip& behind) override {
        behind.call(call);
        print([&](Replay::Printer& printer) { printer.sdkCalled(call); });
    }

    std::mutex mutex_;
    std::ostringstream out_;
    Replay::Printer printer_{out_};
    std::optional<SdkSeam::ForwardingChip> front_;
    Vanta::Tap const publications_ = Vanta::Tap::to<&LiveObservation::published>(this);
    Trace::Tap const traces_ = Trace::Tap::to<&LiveObservation::traced>(this);
};

// Runs `live` with an agent that is recorded; then replays the recording and compares what both
// showed. Returns the recording.
inline std::string expectReplayed(SwitchFile::SwitchModel const& model, AgentOptions options,
                                  std::function<void(ForwardingAgent&)> const& live) {
    ScratchPath const path("recorded.jsonl");
    Observed observed;
    {
        LiveObservation observation;
        Scenario::RecordingFile recording(path.string());
        options.recording = &recording;
        {
            ForwardingAgent agent(model, options);
            observation.calls(options.device);
            live(agent);
            agent.chip().drain();
            observation.callsNoMore();
        }
        EXPECT_EQ(recording.error(), "");
        observed = observation.take();
    }
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(Replay::runFile(path.string(), out, err), Replay::allRun) << err.str();
    Observed replayed = sorted(out.str());
    dropEnds(replayed.eventThread);
    EXPECT_EQ(observed.eventThread, replayed.eventThread) << path.content();
    EXPECT_EQ(observed.sdkThread, replayed.sdkThread) << path.content();
    return path.content();
}

}  // namespace Agent
