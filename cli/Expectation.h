// --expect: the physical interfaces that every frame is to leave by.
#pragma once

#include <set>
#include <string_view>
#include <vector>

#include "PacketTracer/ResultEntry.h"
#include "Plexa/IntfId.h"

namespace Cli {

// How an answer differs from what was expected, each in the interfaces' own order.
struct Difference {
    std::vector<Plexa::IntfId> missing;
    std::vector<Plexa::IntfId> unexpected;

    bool none() const { return missing.empty() && unexpected.empty(); }
};

// A plain value. Threads: any.
class Expectation {
  public:
    // "Ethernet2,Ethernet3"; the empty text expects that a frame leaves nowhere.
    // Errors: UsageError naming the part that is no interface name.
    static Expectation parse(std::string_view text);

    // Holds the non-empty physical interfaces of the entries against those expected, as sets.
    Difference differenceTo(std::vector<PacketTracer::ResultEntry> const& egress) const;

  private:
    std::set<Plexa::IntfId> expected_;
};

}  // namespace Cli
