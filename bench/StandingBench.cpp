// One more whole trace while answered requests stand, and what each of them occupies.
#include <memory>

#include "Grist/Grist.h"
#include "bench/Cost.h"
#include "bench/Host.h"

namespace Bench {
namespace {

// The standing requests are kept for the next measurement with as many: making a million takes
// longer than measuring with them.
struct Standing {
    explicit Standing(std::uint64_t requests) : count(requests) {
        load.stand(warmUp);
        auto const before = residentBytes();
        load.stand(requests);
        bytesEach = static_cast<double>(residentBytes() - before) / static_cast<double>(requests);
        other.next();
    }

    // Makes what every process has once: threads' stacks, first slabs, first segments of tables.
    static constexpr std::uint64_t warmUp = 512;

    std::uint64_t count;
    Host host;
    Load load{host, 1, 64};
    double bytesEach = 0;
    Load other{host, 1, 1};
};

// How many entries the digests of the next packets will be written to besides their own: the mean
// over some packet ids.
double matches(Standing const& standing) {
    constexpr std::uint16_t ids = 1024;
    auto const first = standing.host.tracer->pktGenSm()->pktId();
    std::uint64_t found = 0;
    for (std::uint16_t i = 1; i <= ids; ++i) {
        VynPacketTracer::PktGenStatus::PktIdWalk walk(*standing.host.tracer->pktGenStatus(),
                                                      static_cast<std::uint16_t>(first + i));
        while (walk.next()) {
            ++found;
        }
    }
    return static_cast<double>(found) / ids;
}

void standing(benchmark::State& state) {
    static std::unique_ptr<Standing> made;
    auto const requests = static_cast<std::uint64_t>(state.range(0));
    traceIntoRing();
    if (!made || made->count != requests) {
        made.reset();
        made = std::make_unique<Standing>(requests);
    }
    for (auto _ : state) {
        made->other.next();
    }
    state.counters["matches"] = matches(*made);
    if (requests >= 100'000) {
        state.counters["bytes"] = made->bytesEach;
    }
}
BENCHMARK(standing)
    ->Name("trace/standing")
    ->Arg(1)
    ->Arg(1'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->UseRealTime();

}  // namespace
}  // namespace Bench
