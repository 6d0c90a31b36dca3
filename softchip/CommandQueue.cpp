#include "softchip/CommandQueue.h"

#include <thread>
#include <utility>

namespace SoftChip {
namespace {

constexpr unsigned longestSpin = 2000;

unsigned spins() {
    static unsigned const checks = std::thread::hardware_concurrency() > 1 ? longestSpin : 0;
    return checks;
}

// Tells the processor that this is a loop that waits.
void relax() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

}  // namespace

template <class Fill>
void CommandQueue::push(Fill&& fill) {
    bool sleeping = false;
    {
        std::lock_guard const lock(mutex_);
        if (pushed_.used == pushed_.slots.size()) {
            pushed_.slots.emplace_back();
        }
        fill(pushed_.slots[pushed_.used]);
        ++pushed_.used;
        ++pushes_;
        sleeping = std::exchange(sleeping_, false);
    }
    wakeSleeper(sleeping);
}

void CommandQueue::wakeSleeper(bool sleeping) {
    hint_.store(true, std::memory_order_release);
    if (sleeping) {
        toDo_.notify_one();
    }
}

void CommandQueue::pushInjection(Injection const& injection) {
    push([&](Command& command) {
        command.kind = Command::Kind::inject;
        command.pipe = injection.pipe;
        command.portIndex = injection.portIndex;
        command.pktId = injection.pktId;
        command.registration = injection.registration;
        command.phase0Size = static_cast<std::uint32_t>(injection.phase0.size());
        command.bytes.assign(injection.phase0.begin(), injection.phase0.end());
        command.bytes.insert(command.bytes.end(), injection.pkt.begin(), injection.pkt.end());
    });
}

void CommandQueue::pushChange(std::function<void(Tables&)> change) {
    push([&](Command& command) {
        command.kind = Command::Kind::change;
        command.change = std::move(change);
    });
}

void CommandQueue::pushReleaseHeld() {
    push([](Command& command) { command.kind = Command::Kind::releaseHeld; });
}

void CommandQueue::wake() {
    bool sleeping = false;
    {
        std::lock_guard const lock(mutex_);
        woken_ = true;
        sleeping = std::exchange(sleeping_, false);
    }
    wakeSleeper(sleeping);
}

void CommandQueue::stop() {
    {
        std::lock_guard const lock(mutex_);
        stopped_ = true;
    }
    wake();
}

void CommandQueue::waitUntilDone() {
    std::unique_lock lock(mutex_);
    auto const last = pushes_;
    someoneWaits_ = true;
    doneChanged_.wait(lock, [&] { return done_ >= last; });
    someoneWaits_ = false;
}

bool CommandQueue::pending() const {
    std::lock_guard const lock(mutex_);
    return somethingToDo();
}

bool CommandQueue::asleep() const {
    std::lock_guard const lock(mutex_);
    return sleeping_;
}

bool CommandQueue::spin() const {
    for (unsigned checks = spins(); checks > 0; --checks) {
        if (hint_.load(std::memory_order_acquire)) {
            return true;
        }
        relax();
    }
    return false;
}

void CommandQueue::sleep(std::unique_lock<std::mutex>& lock) {
    while (!somethingToDo()) {
        sleeping_ = true;
        toDo_.wait(lock);
    }
    sleeping_ = false;
}

std::optional<std::span<Command>> CommandQueue::waitAndTake() {
    for (;;) {
        bool const hinted = spin();
        std::unique_lock lock(mutex_);
        if (!hinted) {
            sleep(lock);
        }
        if (stopped_) {
            return std::nullopt;
        }
        if (somethingToDo()) {
            return takeLocked();
        }
        // The hint was set for a command that is done already.
        hint_.store(false, std::memory_order_relaxed);
    }
}

std::span<Command> CommandQueue::take() {
    std::lock_guard const lock(mutex_);
    return takeLocked();
}

std::span<Command> CommandQueue::takeLocked() {
    taken_.used = 0;
    std::swap(pushed_, taken_);
    takes_ += taken_.used;
    woken_ = false;
    hint_.store(false, std::memory_order_relaxed);
    return std::span(taken_.slots).first(taken_.used);
}

void CommandQueue::done() {
    done_ = takes_;
    // A waiting thread sets someoneWaits_ before it looks at done_.
    if (someoneWaits_) {
        std::lock_guard const lock(mutex_);
        doneChanged_.notify_all();
    }
}

}  // namespace SoftChip
