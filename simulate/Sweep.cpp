#include "simulate/Sweep.h"

#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <ostream>

#include "simulate/Child.h"

namespace Simulate {
namespace {

constexpr unsigned shrinkBudget = 600;

// What all seeds did together.
struct Figures {
    std::uint64_t seeds = 0;
    std::uint64_t failing = 0;
    std::uint64_t steps = 0;
    std::uint64_t turns = 0;
    std::uint64_t injections = 0;
    std::uint64_t messages = 0;
    std::map<std::string, std::uint64_t> ends;

    void add(Report const& report) {
        ++seeds;
        failing += report.failed ? 1 : 0;
        steps += report.step;
        turns += report.turns;
        injections += report.injections;
        messages += report.messages;
        if (!report.end.empty()) {
            ++ends[report.end];
        }
    }

    void print(std::ostream& out) const {
        out << seeds << " seeds, " << failing << " failing: " << steps << " steps, " << turns
            << " turns, " << injections << " injections, " << messages << " digest messages";
        std::string separator = "; foretold ends of the process: ";
        for (auto const& [type, count] : ends) {
            out << separator << count << ' ' << type;
            separator = ", ";
        }
        out << std::endl;
    }
};

void printFailure(std::ostream& out, Program const& program, Report const& report) {
    out << "seed " << program.seed << " step " << report.step << " invariant " << report.invariant
        << ": " << report.detail << "\n  event: " << report.event << '\n';
}

// Shrinks the program, prints what is left of it and leaves its scenario.
void reduce(std::ostream& out, Program const& whole, Report const& report,
            std::string const& directory) {
    Program const program = shrunken(whole, report, shrinkBudget, [](Program const& candidate) {
        return runInChild(candidate);
    });
    out << "  shrunk to " << program.events.size() << " events:\n";
    for (auto const& event : program.events) {
        out << "    " << text(event) << '\n';
    }
    std::string const file = joined(directory, "/simulate-", program.seed, ".jsonl");
    auto const again = runInChild(program, file);
    out << "  fails with: " << again.detail << "\n  scenario: " << file << '\n';
}

struct Running {
    Program program;
    std::unique_ptr<Child> child;
};

}  // namespace

Program shrunken(Program program, Report const& report, unsigned budget,
                 std::function<Report(Program const&)> const& runProgram) {
    auto const stillFails = [&](Program const& candidate) {
        auto const again = runProgram(candidate);
        return again.failed && again.invariant == report.invariant;
    };
    if (report.position > 0 && report.position < program.events.size()) {
        program.events.resize(report.position);
    }
    for (std::size_t chunk = std::max<std::size_t>(program.events.size() / 2, 1);;) {
        bool dropped = false;
        for (std::size_t at = 0; at < program.events.size() && budget > 0;) {
            Program candidate = program;
            auto const begin = candidate.events.begin() + static_cast<std::ptrdiff_t>(at);
            auto const size = std::min(chunk, candidate.events.size() - at);
            candidate.events.erase(begin, begin + static_cast<std::ptrdiff_t>(size));
            --budget;
            if (stillFails(candidate)) {
                program = std::move(candidate);
                dropped = true;
            } else {
                at += size;
            }
        }
        if (budget == 0 || (chunk == 1 && !dropped)) {
            return program;
        }
        chunk = std::max<std::size_t>(chunk / 2, 1);
    }
}

unsigned sweep(SweepOptions const& options, std::ostream& out) {
    Figures figures;
    std::deque<Running> running;
    std::uint64_t next = options.first;
    auto const mayBegin = [&] {
        return next <= options.last && figures.failing < options.failures;
    };
    while (mayBegin() || !running.empty()) {
        while (mayBegin() && running.size() < options.jobs) {
            Program program = drawProgram(next++, options.steps);
            auto child = std::make_unique<Child>(program);
            running.push_back({std::move(program), std::move(child)});
        }
        auto const finished = std::move(running.front());
        running.pop_front();
        Report const report = finished.child->wait();
        figures.add(report);
        if (report.failed) {
            printFailure(out, finished.program, report);
            if (options.shrink) {
                reduce(out, finished.program, report, options.directory);
            }
        }
    }
    figures.print(out);
    return static_cast<unsigned>(figures.failing);
}

}  // namespace Simulate
