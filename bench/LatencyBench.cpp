// One trace at a time: how long until its result is valid.
#include <algorithm>
#include <chrono>
#include <vector>

#include "bench/BareTracer.h"
#include "bench/Cost.h"
#include "bench/Host.h"

namespace Bench {
namespace {

using Clock = std::chrono::steady_clock;

// Where the event thread and the chip's run.
enum class Placement : std::int64_t { oneCore = 1, twoCores = 2 };

void report(benchmark::State& state, std::vector<double>& nanoseconds) {
    std::ranges::sort(nanoseconds);
    auto const at = [&](double part) {
        auto const last = static_cast<double>(nanoseconds.size() - 1);
        return nanoseconds[static_cast<std::size_t>(last * part)];
    };
    state.counters["p50"] = at(0.5);
    state.counters["p99"] = at(0.99);
    state.counters["p99.9"] = at(0.999);
}

// Makes a `Traced` whose thread runs where the placement says, and times its next() calls.
template <class Make>
void measure(benchmark::State& state, Make const& make) {
    auto const placement = static_cast<Placement>(state.range(0));
    if (!runOnProcessor(placement == Placement::twoCores ? 1 : 0)) {
        state.SkipWithError("there is but one processor");
        return;
    }
    auto const traced = make();
    runOnProcessor(0);
    for (int warmUp = 0; warmUp < 200; ++warmUp) {
        traced->next();
    }
    std::vector<double> nanoseconds;
    nanoseconds.reserve(static_cast<std::size_t>(state.max_iterations));
    for (auto _ : state) {
        auto const begin = Clock::now();
        traced->next();
        nanoseconds.push_back(
            std::chrono::duration<double, std::nano>(Clock::now() - begin).count());
    }
    report(state, nanoseconds);
}

struct OneTrace {
    Host host;
    Load load{host, 1, 1};

    void next() { load.next(); }
};

void latency(benchmark::State& state) {
    traceIntoRing();
    measure(state, [] { return std::make_unique<OneTrace>(); });
}
BENCHMARK(latency)->Name("trace/latency")->Arg(1)->Arg(2)->UseRealTime();

void latencyFloor(benchmark::State& state) {
    measure(state, [] { return std::make_unique<BareTracer>(BareTracer::Books::none, 1); });
}
BENCHMARK(latencyFloor)->Name("floor/trace/latency")->Arg(1)->Arg(2)->UseRealTime();

}  // namespace
}  // namespace Bench
