// The time of ring records: the processor's time counter where it runs at one rate whatever the
// processor does, the monotonic clock elsewhere. Internal to Trace.
#pragma once

#include <cstdint>

#if defined(__x86_64__)
#include <x86intrin.h>
#endif

namespace Trace::RingClock {

// The monotonic clock and the wall clock, in nanoseconds.
std::int64_t monotonic() noexcept;
std::int64_t wall() noexcept;

// Whether the processor has a time counter of constant rate.
bool hasCounter() noexcept;

// The present time in ticks: of the counter, or nanoseconds of the monotonic clock.
inline std::uint64_t ticks(bool byCounter) noexcept {
#if defined(__x86_64__)
    if (byCounter) [[likely]] {
        return __rdtsc();
    }
#endif
    return static_cast<std::uint64_t>(monotonic());
}

// One moment on the record's clock and on the monotonic one, as close together as can be had.
struct Moment {
    std::uint64_t ticks;
    std::int64_t monotonic;
};
Moment moment(bool byCounter) noexcept;

// Nanoseconds a tick between two moments; 1 if no tick lies between them.
double nanosecondsPerTick(Moment from, Moment to) noexcept;

}  // namespace Trace::RingClock
