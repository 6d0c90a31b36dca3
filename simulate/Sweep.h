// A range of seeds: each in a process of its own, several at a time, and each failing one shrunk.
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>

#include "simulate/Program.h"
#include "simulate/Run.h"

namespace Simulate {

struct SweepOptions {
    std::uint64_t first = 1;
    std::uint64_t last = 1;
    unsigned steps = 200;
    unsigned jobs = 1;
    unsigned failures = 5;  // after so many failing seeds no new one is begun
    bool shrink = true;
    std::string directory = ".";  // for the scenarios of failing seeds
};

// Runs the seeds; prints each failing one with its seed, step, invariant and what is left of its
// program, and a last line of figures. Returns the number of failing seeds.
// Errors: std::system_error if no process can be started.
unsigned sweep(SweepOptions const& options, std::ostream& out);

// The program without the events that its failure does not need: events are left out as long as the
// rest still breaks the same invariant. Has `runProgram` run `budget` programs at most.
Program shrunken(Program program, Report const& report, unsigned budget,
                 std::function<Report(Program const&)> const& runProgram);

}  // namespace Simulate
