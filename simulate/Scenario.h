// A run written down as a scenario, which `vynpt replay` carries out on the scripted chip
// (docs/scenario.md).
//
// The scripted chip is told beforehand what the software chip answered: counters, results of calls,
// phase-0 entries, digests. Within a turn the phase-0 entries come first there. What the format has
// no words for ends the scenario: a full digest socket, a client that comes back with its objects,
// and calls of one function that fail more than once within a turn, with successes between.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "simulate/Event.h"
#include "simulate/Model.h"
#include "simulate/Wire.h"

namespace Simulate {

class Scenario {
  public:
    // Adds an event with what was written down while it happened. `before` is the model as it was
    // before the event.
    void add(Event const& event, std::vector<std::string> const& log, Wire const& wire,
             Model const& before);

    // The lines, each with its end.
    std::string const& text() const { return text_; }
    // Why nothing was added any more; empty for a whole scenario.
    std::string const& endedBy() const { return endedBy_; }

  private:
    void begin(char const* what);
    void member(char const* name, std::string const& value);
    void member(char const* name, std::uint64_t value);
    void flag(char const* name, bool value);
    void client(Event const& event);
    void end();

    void turn();
    void forwarding(Event const& event);
    void directory(Event const& event);
    void request(Event const& event, Model const& before);
    void requestSet(Event const& event);
    void withdraw(std::string const& client, std::uint32_t req);
    void calls(std::vector<std::string> const& log);
    void failures(std::string const& call, std::vector<long> const& results);
    void announcements(Wire const& wire);
    void digests(Wire const& wire);

    std::string text_;
    std::string endedBy_;
    // The last line of turns.
    std::size_t turnsBegin_ = 0;
    std::size_t turnsEnd_ = 0;
    std::uint64_t turns_ = 0;
};

}  // namespace Simulate
