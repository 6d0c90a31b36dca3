// Records a live run as a scenario: everything that came to the tracer from outside, in an order in
// which `vynpt replay` makes the tracer do the same again. docs/replay.md says how recording is
// used and what a scenario cannot say.
//
// The recorder hears every publication, and stands in front of the chip and of the phase-0 data. It
// changes nothing of the run, except that phase-0 answers that come in the turn of a digest are
// delayed (RecordedPhase0.h). If the process ends, the event that ended it is written too.
//
// Thread: the event thread.
#pragma once

#include <cstdint>
#include <string>

#include "Kel/Dir.h"
#include "Orb/TaskSchedulerRoot.h"
#include "PacketTracer/Request.h"
#include "Vanta/Assert.h"
#include "Vanta/Tap.h"
#include "agent/DeriveState.h"
#include "agent/LockedWriter.h"
#include "agent/RecordedChip.h"
#include "agent/RecordedPhase0.h"
#include "scenario/ForwardingState.h"

namespace Agent {

class RunRecorder {
  public:
    // What is recorded. It outlives the recorder.
    struct Subject {
        Vanta::Ptr<Orb::TaskSchedulerRoot> loop;
        Vanta::Ptr<Kel::Dir> clientConfigs;
        Vanta::Ptr<Kel::Dir> clientStatuses;
        ForwardingState const& forwardingState;
        Vanta::Ptr<VynSdk::Phase0DataIntf> phase0Data;
        VynId::VynDevId device;
    };

    // Begins with the state that is there. Errors: std::logic_error if there is no chip.
    // Preconditions: there is no tracer yet; `file` outlives the recorder.
    RunRecorder(Subject const& subject, Scenario::RecordingFile& file);
    RunRecorder(RunRecorder const&) = delete;
    RunRecorder& operator=(RunRecorder const&) = delete;
    // Precondition: there is no tracer any more.
    ~RunRecorder();

    // The phase-0 data that the tracer is to be given.
    Vanta::Ptr<VynSdk::Phase0DataIntf> phase0Data() const { return phase0_; }

    // To be called before the tracer is made, and before it is released.
    void starting(bool pktTracerSupported, bool pktGenSupported, std::uint32_t session);
    void stopping();
    // To be called after forwarding state has changed.
    void forwardingStateChanged();

  private:
    void published(Vanta::Change const& change);
    void processEnds(std::string_view errorClass, std::string_view text);

    void record(Vanta::Change const& change);
    void configEntry(Vanta::String const& name);
    void statusEntry(Vanta::String const& name);
    void requestEntry(Vanta::Node const& config, PacketTracer::RequestId const& id);
    void requestAttribute(PacketTracer::Request const& request, Vanta::AttributeNumber attribute);
    void event(Scenario::Event event);
    void content(std::string_view what, Vanta::String const& client, std::size_t count);

    Subject const subject_;
    LockedWriter writer_;
    Scenario::ToldState state_;
    RecordedChip chip_;
    Vanta::Ptr<RecordedPhase0> phase0_;
    std::uint64_t digestTurn_ = 0;  // the latest turn that read a digest
    bool running_ = false;          // there is a tracer
    Vanta::LastStep const lastStep_ = Vanta::LastStep::to<&RunRecorder::processEnds>(this);
    Vanta::Tap const tap_ = Vanta::Tap::to<&RunRecorder::published>(this);
};

}  // namespace Agent
