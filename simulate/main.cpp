// vynpt-simulate: drives the tracer through seeds of drawn events and faults, beside a model that
// foretells every step. Exit status: 0 when no seed failed, 1 when one did, 2 for bad arguments.
#include <CLI/CLI.hpp>
#include <iostream>
#include <thread>

#include "simulate/Sweep.h"

namespace {

// "17" or "1-2000".
bool readSeeds(std::string const& text, Simulate::SweepOptions& options) {
    try {
        std::size_t end = 0;
        options.first = options.last = std::stoull(text, &end);
        if (end < text.size() && text[end] == '-') {
            std::string const last = text.substr(end + 1);
            options.last = std::stoull(last, &end);
            return end == last.size() && options.first <= options.last;
        }
        return end == text.size();
    } catch (std::exception const&) {
        return false;
    }
}

}  // namespace

int main(int argc, char** argv) {
    Simulate::SweepOptions options;
    std::string seeds = "1-100";
    options.jobs = std::max(1U, std::thread::hardware_concurrency());
    CLI::App app(
        "Simulates the packet tracer, its chip, its clients and their faults, seed by seed.",
        "vynpt-simulate");
    app.add_option("--seeds", seeds, "the seeds to run, \"A-B\" or one")->capture_default_str();
    app.add_option("--steps", options.steps, "events a seed")->capture_default_str();
    app.add_option("--jobs", options.jobs, "seeds that run at the same time")
        ->check(CLI::Range(1, 1024));
    app.add_option("--failures", options.failures, "stop after so many failing seeds")
        ->capture_default_str();
    app.add_flag("!--no-shrink", options.shrink, "leave a failing seed's program as it is");
    app.add_option("--directory", options.directory, "where scenarios of failing seeds go")
        ->capture_default_str();
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    if (!readSeeds(seeds, options)) {
        std::cerr << "vynpt-simulate: --seeds: expected \"A-B\" with A <= B, or one number, got \""
                  << seeds << "\"\n";
        return 2;
    }
    return Simulate::sweep(options, std::cout) == 0 ? 0 : 1;
}
