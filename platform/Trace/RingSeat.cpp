#include "Trace/RingSeat.h"

#include <bit>

namespace Trace {

using namespace RingFile;

constinit thread_local RingSeat RingSeat::ofThread;

namespace {

struct EndOfThread {
    ~EndOfThread() {
        // First: a signal handler that traces from here on must take no ring any more.
        RingSeat::ofThread.hasEnded = true;
        RingSeats::giveBack();
    }
    // Makes sure that the destructor will run.
    void expect() const noexcept { std::atomic_signal_fence(std::memory_order_relaxed); }
};

thread_local EndOfThread endOfThread;

// The first ring in `free` that is not before `from`, round the end. Precondition: there is one.
unsigned freeFrom(std::uint32_t free, unsigned from) noexcept {
    return (static_cast<unsigned>(std::countr_zero(std::rotr(free, static_cast<int>(from)))) +
            from) %
           32;
}

}  // namespace

RingSeats::RingSeats(Mapping const& file) noexcept
    : file_(file), free_((std::uint32_t{1} << file.header().ownCount) - 1) {}

bool RingSeats::take() noexcept {
    auto& seat = RingSeat::ofThread;
    auto free = free_.load(std::memory_order_relaxed);
    if (free == 0 || seat.hasEnded) {
        return false;
    }
    auto const from = taken_.load(std::memory_order_relaxed);
    unsigned ring = 0;
    do {
        if (free == 0) {
            return false;
        }
        ring = freeFrom(free, from);
    } while (!free_.compare_exchange_weak(free, free & ~(std::uint32_t{1} << ring),
                                          std::memory_order_acquire, std::memory_order_relaxed));
    taken_.store((ring + 1) % static_cast<unsigned>(file_.header().ownCount),
                 std::memory_order_relaxed);
    giveBack();
    endOfThread.expect();
    seat.head = &file_.header().own[ring];
    seat.lines = file_.own(ring);
    seat.ring = ring;
    seat.seats = this;
    return true;
}

void RingSeats::giveBack() noexcept {
    auto& seat = RingSeat::ofThread;
    if (seat.seats) {
        auto& seats = *seat.seats;
        seat.seats = nullptr;
        seats.free_.fetch_or(std::uint32_t{1} << seat.ring, std::memory_order_release);
    }
}

void RingSeats::inherited() noexcept {
    free_.store(0, std::memory_order_relaxed);
    RingSeat::ofThread.seats = nullptr;
}

}  // namespace Trace
