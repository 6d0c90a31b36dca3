// A run written down as a scenario, which `vynpt replay` carries out on the scripted chip
// (docs/scenario.md).
//
// The scripted chip is told beforehand what the software chip answered: counters, results of calls,
// phase-0 entries, digests. In the scenario the phase-0 entries of a turn come first. The scenario
// ends at the first thing that its format cannot express: a full digest socket, a client that comes
// back with its objects, or calls of one function that fail more than once within a turn, with
// successes between.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "simulate/Event.h"
#include "simulate/Model.h"
#include "simulate/Wire.h"

namespace Simulate {

class Transcript {
  public:
    // Adds an event with what the chip told the tracer while it happened. `before` is the model as
    // it was before the event.
    void add(Event const& event, Wire const& wire, Model const& before);

    // The lines, each with its end.
    std::string const& text() const { return text_; }
    // Why the scenario ends early; empty for a whole one.
    std::string const& endedBy() const { return endedBy_; }

  private:
    struct Adding;

    void put(Scenario::Event const& event);
    void turn();
    void answers(Wire const& wire);
    void announcements(Wire const& wire);
    void digests(Wire const& wire);

    std::string text_;
    std::string endedBy_;
    // The last line of turns.
    std::size_t turnsBegin_ = 0;
    std::size_t turnsEnd_ = 0;
    std::uint32_t turns_ = 0;
};

}  // namespace Simulate
