// Replaying a scenario: its events drive one tracer on a scripted chip, and everything that can be
// seen from outside is printed. docs/scenario.md describes both formats.
#pragma once

#include <istream>
#include <ostream>
#include <string>

namespace Replay {

struct Options {
    std::string name = "-";  // what messages call the input
    bool dump = false;       // print every object when the whole input was run
};

// The exit statuses. If an event ends the process, it is fatalStatus (Printer.h).
inline constexpr int allRun = 0;
inline constexpr int cannotWrite = 1;
inline constexpr int badInput = 2;

// Runs a scenario and returns the exit status. Each line is carried out, and its observations are
// handed to `out`, before the next one is read, so a person may type the lines. A line that is
// refused ends the run with one line on `err` that names it. An event that would end the process
// does end it, with fatalStatus, after everything has been printed.
//
// It uses the process's taps, its last step and, in the SDK seam, the scenario's device: one run at
// a time. Thread: one only.
int run(std::istream& in, std::ostream& out, std::ostream& err, Options const& options = {});

// The same for a file, or for standard input if the path is "-". A file that cannot be read is bad
// input.
int runFile(std::string const& path, std::ostream& out, std::ostream& err, bool dump = false);

}  // namespace Replay
