// Runs that are recorded and replayed: what both show, side by side.
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
#include "scriptchip/SdkCall.h"
#include "sdkseam/Interposition.h"

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

// Takes away the agent's first registration and its last deregistration: nobody can stand in front
// of the recorder so early and so late.
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

// Prints a live run as a replay prints its own: taps and, in front of the chip, its calls.
class LiveObservation final : public SdkSeam::Chip {
  public:
    LiveObservation() = default;
    LiveObservation(LiveObservation const&) = delete;
    LiveObservation& operator=(LiveObservation const&) = delete;

    // Stands in front of whoever has the device's place.
    void calls(VynId::VynDevId device) {
        device_ = device;
        front_.emplace(device, *this);
    }
    void callsNoMore() { front_.reset(); }

    Observed take() {
        std::scoped_lock const lock(mutex_);
        printer_.flush();
        return sorted(out_.str());
    }

    p4_pd_status_t getPktCounters(p4_pd_sess_hdl_t session, std::uint32_t pipe, std::uint32_t appId,
                                  std::uint64_t& count) override {
        auto const rc = front_->behind().getPktCounters(session, pipe, appId, count);
        return called({.function = ScriptChip::SdkFunction::getPktCounters,
                       .session = session,
                       .pipe = pipe,
                       .appId = appId,
                       .rc = rc,
                       .count = count});
    }
    p4_pd_status_t genOnePkt(p4_pd_sess_hdl_t session, std::uint32_t pipe, std::uint32_t genPort,
                             std::uint8_t portIndex, std::uint32_t appId,
                             std::span<std::uint8_t const> pkt,
                             std::span<std::uint8_t const> phase0, std::uint16_t pktId) override {
        auto const rc = front_->behind().genOnePkt(session, pipe, genPort, portIndex, appId, pkt,
                                                   phase0, pktId);
        return called({.function = ScriptChip::SdkFunction::genOnePkt,
                       .session = session,
                       .pipe = pipe,
                       .genPort = genPort,
                       .portIndex = portIndex,
                       .appId = appId,
                       .pkt = {pkt.begin(), pkt.end()},
                       .phase0 = {phase0.begin(), phase0.end()},
                       .pktId = pktId,
                       .rc = rc});
    }
    p4_pd_status_t disableAppId(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                std::uint32_t appId) override {
        auto const rc = front_->behind().disableAppId(session, pipe, appId);
        return called({.function = ScriptChip::SdkFunction::disableAppId,
                       .session = session,
                       .pipe = pipe,
                       .appId = appId,
                       .rc = rc});
    }
    p4_pd_status_t disablePktGen(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                 std::uint32_t genPort) override {
        auto const rc = front_->behind().disablePktGen(session, pipe, genPort);
        return called({.function = ScriptChip::SdkFunction::disablePktGen,
                       .session = session,
                       .pipe = pipe,
                       .genPort = genPort,
                       .rc = rc});
    }
    p4_pd_status_t digestRegister(p4_pd_sess_hdl_t session, std::uint32_t handle,
                                  pipe_flow_lrn_notify_cb callback, void* cookie) override {
        auto const rc = front_->behind().digestRegister(session, handle, callback, cookie);
        return called({.function = ScriptChip::SdkFunction::digestRegister,
                       .session = session,
                       .handle = handle,
                       .rc = rc});
    }
    p4_pd_status_t digestDeregister(p4_pd_sess_hdl_t session, std::uint32_t handle) override {
        auto const rc = front_->behind().digestDeregister(session, handle);
        return called({.function = ScriptChip::SdkFunction::digestDeregister,
                       .session = session,
                       .handle = handle,
                       .rc = rc});
    }
    p4_pd_status_t notifyAck(p4_pd_sess_hdl_t session, std::uint32_t handle,
                             pipe_flow_lrn_msg_t* message) override {
        auto const rc = front_->behind().notifyAck(session, handle, message);
        return called({.function = ScriptChip::SdkFunction::notifyAck,
                       .session = session,
                       .handle = handle,
                       .rc = rc});
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
    p4_pd_status_t called(ScriptChip::SdkCall call) {
        call.device = device_;
        print([&](Replay::Printer& printer) { printer.sdkCalled(call); });
        return call.rc;
    }

    std::mutex mutex_;
    std::ostringstream out_;
    Replay::Printer printer_{out_};
    VynId::VynDevId device_ = 0;
    std::optional<SdkSeam::Interposition> front_;
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
        RecordingFile recording(path.string());
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
