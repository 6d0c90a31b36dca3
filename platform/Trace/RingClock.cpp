#include "Trace/RingClock.h"

#include <time.h>

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace Trace::RingClock {
namespace {

std::int64_t clockNow(clockid_t clock) noexcept {
    timespec now{};
    ::clock_gettime(clock, &now);
    return now.tv_sec * std::int64_t{1'000'000'000} + now.tv_nsec;
}

}  // namespace

std::int64_t monotonic() noexcept {
    return clockNow(CLOCK_MONOTONIC);
}
std::int64_t wall() noexcept {
    return clockNow(CLOCK_REALTIME);
}

bool hasCounter() noexcept {
#if defined(__x86_64__)
    constexpr unsigned powerLeaf = 0x80000007;
    constexpr unsigned invariantCounter = 1u << 8;
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    return __get_cpuid(powerLeaf, &a, &b, &c, &d) != 0 && (d & invariantCounter) != 0;
#else
    return false;
#endif
}

// Of a few tries the one that was least disturbed.
Moment moment(bool byCounter) noexcept {
    Moment best{};
    std::uint64_t narrowest = UINT64_MAX;
    for (int attempt = 0; attempt < 3; ++attempt) {
        auto const before = ticks(byCounter);
        auto const time = monotonic();
        auto const width = ticks(byCounter) - before;
        if (width < narrowest) {
            narrowest = width;
            best = {before + width / 2, time};
        }
    }
    return best;
}

double nanosecondsPerTick(Moment from, Moment to) noexcept {
    if (to.ticks <= from.ticks || to.monotonic <= from.monotonic) {
        return 1;
    }
    return static_cast<double>(to.monotonic - from.monotonic) /
           static_cast<double>(to.ticks - from.ticks);
}

}  // namespace Trace::RingClock
