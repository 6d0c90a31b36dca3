#include "bench/Soak.h"

#include <cstdio>
#include <deque>
#include <memory>
#include <string>

#include "bench/Cost.h"
#include "bench/Host.h"

namespace Bench {
namespace {

constexpr std::uint64_t million = 1'000'000;
constexpr std::uint64_t tracesOfAClient = 1000;
constexpr unsigned clientsAtOnce = 4;

}  // namespace

int soak(std::uint64_t traces) {
    traceIntoRing();
    Host host;
    std::deque<std::unique_ptr<Load>> loads;
    std::uint64_t afterFirst = 0;
    std::uint64_t resident = 0;
    for (std::uint64_t done = 0; done < traces;) {
        // The oldest client is removed with its requests, a new one is added.
        loads.push_back(std::make_unique<Load>(host, 1, 16));
        if (loads.size() > clientsAtOnce) {
            loads.pop_front();
        }
        for (std::uint64_t i = 0; i < tracesOfAClient; ++i) {
            loads[i % loads.size()]->next();
        }
        done += tracesOfAClient;
        if (done % million == 0) {
            resident = residentBytes();
            afterFirst = afterFirst == 0 ? resident : afterFirst;
            std::printf("%3llu million traces: %7.2f MB resident\n",
                        static_cast<unsigned long long>(done / million),
                        static_cast<double>(resident) / 1e6);
            std::fflush(stdout);
        }
    }
    return resident > afterFirst + afterFirst / 10 ? 1 : 0;
}

}  // namespace Bench
