// One program, carried out on the real system and foretold by the model, with every invariant
// checked after every step.
//
// After the program comes the closing: the faults end, late requests are withdrawn, every job must
// go through, every client leaves, the tracer stops. So every seed is also checked for progress and
// leaks.
//
// Where the tracer ends the process, the run ends with it: the process's last step compares the end
// with the model's and then leaves. So a run needs a process of its own, see Child.h. One run at a
// time; thread: one only.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "simulate/Model.h"
#include "simulate/Program.h"
#include "simulate/Transcript.h"
#include "simulate/World.h"

namespace Simulate {

struct Report {
    bool failed = false;
    std::string invariant;  // that does not hold
    std::string detail;
    std::string event;           // of the program, that failed
    std::uint64_t step = 0;      // events that were carried out, the failing one included
    std::uint64_t position = 0;  // of the event in the program
    std::uint64_t turns = 0;
    std::uint64_t injections = 0;
    std::uint64_t messages = 0;
    std::string end;  // the error that ended the process, as foretold; empty for none
};

class Run {
  public:
    // Turns within which each job goes through, once those before it are out of the way, nothing
    // fails and the chip does its work after each turn.
    static constexpr unsigned turnsPerJob = 4;
    // Turns within which the engine is free of a job that was withdrawn.
    static constexpr unsigned turnsToBeFree = 4;

    // `finish` is called with the report if the process ends during the run; it must not return.
    Run(Program const& program, std::function<void(Report const&)> finish);
    Run(Run const&) = delete;
    Run& operator=(Run const&) = delete;

    // For tests of the invariants: is called after each event, before what happened is judged.
    void interfereIs(std::function<void(World&, Event const&)> interfere) {
        interfere_ = std::move(interfere);
    }

    // Has the run written down as a scenario, up to its end or its failure.
    void transcriptIs(Transcript& transcript) { transcript_ = &transcript; }

    Report go();
    // How far the run is.
    Report const& report() const { return report_; }

  private:
    void ended(std::string_view type, std::string_view text);

    void carryOut(Event const& event);
    bool step(Event const& event);
    void writeDown(Event const& event);
    std::optional<Breach> check();
    std::optional<Breach> compareLogs(std::vector<std::string> const& happened);
    bool fail(Breach const& breach);

    bool failed() const { return report_.failed; }
    void closing();
    void turns(unsigned count);
    bool settle();
    bool pushThrough();
    bool withdraw(Id const& id);
    bool checkLeft(std::vector<Id> const& orphans);
    bool isAsked(Id const& id) const;

    Program const& program_;
    std::function<void(Report const&)> const finish_;
    std::function<void(World&, Event const&)> interfere_;
    Report report_;
    Vanta::LastStep const lastStep_ = Vanta::LastStep::to<&Run::ended>(this);
    std::optional<World> world_;
    Model model_;
    Event const* event_ = nullptr;  // of the step under way
    std::optional<Event> carried_;  // of the program, the latest one that applied
    Transcript* transcript_ = nullptr;
    bool wasOrderly_ = true;  // every phase-0 answer of this tracer's life was awaited
    std::uint64_t nodesBefore_;
    std::size_t descriptorsBefore_;
};

}  // namespace Simulate
