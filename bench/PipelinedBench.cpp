// Whole traces a second, and what each costs in allocations and turns of the loop.
#include <memory>

#include "bench/BareTracer.h"
#include "bench/Cost.h"
#include "bench/Host.h"

namespace Bench {
namespace {

constexpr unsigned inFlight = 64;

// The chip's thread, which `make` starts, has one core and the event thread another one: the
// system's scheduler may put both on one core for a while, and a run would then measure that.
template <class Make>
auto onTwoCores(Make const& make) {
    runOnProcessor(1);
    auto made = make();
    runOnProcessor(0);
    return made;
}

void pipelined(benchmark::State& state, SoftChip::Mode mode) {
    traceIntoRing();
    auto const host = onTwoCores([mode] { return std::make_unique<Host>(mode); });
    Load load(*host, static_cast<unsigned>(state.range(0)), inFlight);
    for (int warmUp = 0; warmUp < 2000; ++warmUp) {
        load.next();
    }
    Allocations const allocations;
    auto const turns = host->loop->turns();
    for (auto _ : state) {
        load.next();
    }
    auto const traces = static_cast<double>(state.iterations());
    allocations.report(state, traces);
    state.counters["turns"] = static_cast<double>(host->loop->turns() - turns) / traces;
}
BENCHMARK_CAPTURE(pipelined, threaded, SoftChip::Mode::threaded)
    ->Name("trace/pipelined")
    ->Arg(1)
    ->Arg(16)
    ->UseRealTime();
// The same work on one thread, so that no other load of the machine is measured.
BENCHMARK_CAPTURE(pipelined, stepwise, SoftChip::Mode::stepwise)->Name("trace/stepwise")->Arg(1);

void pipelinedFloor(benchmark::State& state, BareTracer::Chip chip) {
    auto const bare = onTwoCores(
        [chip] { return std::make_unique<BareTracer>(BareTracer::Books::kept, inFlight, chip); });
    for (int warmUp = 0; warmUp < 2000; ++warmUp) {
        bare->next();
    }
    for (auto _ : state) {
        bare->next();
    }
}
BENCHMARK_CAPTURE(pipelinedFloor, threaded, BareTracer::Chip::threaded)
    ->Name("floor/trace/pipelined")
    ->UseRealTime();
BENCHMARK_CAPTURE(pipelinedFloor, stepwise, BareTracer::Chip::stepwise)
    ->Name("floor/trace/stepwise");

}  // namespace
}  // namespace Bench
