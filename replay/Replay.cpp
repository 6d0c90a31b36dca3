#include "replay/Replay.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iostream>

#include "replay/Dump.h"
#include "replay/Printer.h"
#include "scenario/Player.h"
#include "scenario/Reader.h"

namespace Replay {
namespace {

using Scenario::Event;
using Scenario::Refusal;

bool isSkipped(std::string_view line) noexcept {
    return line.empty() || line.front() == '#';
}

class Run {
  public:
    Run(std::ostream& out, std::ostream& err, Options const& options)
        : err_(err),
          options_(options),
          printer_(out),
          chip_(&printer_),
          player_(chip_),
          observation_(printer_) {}
    Run(Run const&) = delete;
    Run& operator=(Run const&) = delete;
    // The objects that are destroyed at the end of the run are not observed: that is no part of the
    // run.
    ~Run() { printer_.close(); }

    int lines(std::istream& in) {
        std::string line;
        for (std::uint64_t number = 1; std::getline(in, line); ++number) {
            if (isSkipped(line)) {
                continue;
            }
            if (int const status = carryOut(number, line); status != allRun) {
                return status;
            }
        }
        if (in.bad()) {
            err_ << options_.name << ": cannot be read: " << std::strerror(errno) << '\n';
            return badInput;
        }
        if (options_.dump) {
            printer_.lines(dump(player_.roots()));
        }
        return flush();
    }

  private:
    int carryOut(std::uint64_t number, std::string_view line) {
        try {
            Event const event = Scenario::readEvent(line);
            player_.check(event);
            printer_.event(number);
            play(event);
        } catch (Refusal const& refusal) {
            err_ << options_.name << ": line " << number << ": " << refusal.what() << '\n';
            return badInput;
        }
        return flush();
    }
    void play(Event const& event) {
        try {
            player_.carryOut(event);
        } catch (std::exception const& error) {
            printer_.error(error);
        }
        if (auto const state = player_.engineState()) {
            printer_.engine(*state);
        }
    }
    int flush() {
        if (printer_.flush()) {
            return allRun;
        }
        err_ << options_.name << ": the output cannot be written\n";
        return cannotWrite;
    }

    std::ostream& err_;
    Options const& options_;
    Printer printer_;
    ScriptChip::ScriptChip chip_;
    Scenario::Player player_;
    Observation observation_;
};

}  // namespace

int run(std::istream& in, std::ostream& out, std::ostream& err, Options const& options) {
    return Run(out, err, options).lines(in);
}

int runFile(std::string const& path, std::ostream& out, std::ostream& err, bool dump) {
    if (path == "-") {
        return run(std::cin, out, err, {"standard input", dump});
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        err << path << ": cannot be opened: " << std::strerror(errno) << '\n';
        return badInput;
    }
    return run(file, out, err, {path, dump});
}

}  // namespace Replay
