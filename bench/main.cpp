// The program that script/bench runs: the benchmarks, with the library's own options, or
// "--soak TRACES".
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string_view>

#include "bench/Soak.h"

int main(int argc, char** argv) {
    if (argc == 3 && std::string_view(argv[1]) == "--soak") {
        return Bench::soak(std::strtoull(argv[2], nullptr, 10));
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
