// Whole traces a second, and what each costs in allocations and turns of the loop.
#include "bench/BareTracer.h"
#include "bench/Cost.h"
#include "bench/Host.h"

namespace Bench {
namespace {

constexpr unsigned inFlight = 64;

void pipelined(benchmark::State& state) {
    traceIntoRing();
    Host host;
    Load load(host, static_cast<unsigned>(state.range(0)), inFlight);
    for (int warmUp = 0; warmUp < 2000; ++warmUp) {
        load.next();
    }
    Allocations const allocations;
    auto const turns = host.loop->turns();
    for (auto _ : state) {
        load.next();
    }
    auto const traces = static_cast<double>(state.iterations());
    allocations.report(state, traces);
    state.counters["turns"] = static_cast<double>(host.loop->turns() - turns) / traces;
}
BENCHMARK(pipelined)->Name("trace/pipelined")->Arg(1)->Arg(16)->UseRealTime();

void pipelinedFloor(benchmark::State& state) {
    BareTracer bare(BareTracer::Books::kept, inFlight);
    for (int warmUp = 0; warmUp < 2000; ++warmUp) {
        bare.next();
    }
    for (auto _ : state) {
        bare.next();
    }
}
BENCHMARK(pipelinedFloor)->Name("floor/trace/pipelined")->UseRealTime();

}  // namespace
}  // namespace Bench
