// The costs of a run besides time: allocations and memory; and where its threads run.
//
// This program replaces the general allocator's operators by counting ones, for figures and floors
// alike. Threads: any for the counting itself, the event thread for everything here.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

namespace Bench {

// Counts allocations from its beginning on.
class Allocations {
  public:
    Allocations();

    // Writes two counters, each a mean over `events`: `slab`, blocks from the object framework's
    // allocator, and `malloc`, blocks from the general one.
    void report(benchmark::State& state, double events) const;

  private:
    std::uint64_t slab_;
    std::uint64_t general_;
};

// Memory of this process that is resident, in bytes.
std::uint64_t residentBytes();

// Has the calling thread run on one processor only: the `number`-th of those that the program may
// run on when it starts; false if there are fewer. Threads made afterwards inherit it.
bool runOnProcessor(unsigned number);

// The path of a file for a trace ring, in memory if the system has a file system there.
std::string ringPath();

// Has everything that is traced go to a ring from now on.
void traceIntoRing();

}  // namespace Bench
