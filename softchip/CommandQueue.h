// The one way to the chip's thread: what it is to do, in order.
//
// Table changes and packets stand in the same queue, so a packet meets the tables as they were when
// it was injected. Slots are used again together with their buffers for packets' bytes, so a queue
// that has reached its greatest length, with its longest packets, does not allocate any more.
//
// The thread that waits looks for work a bounded number of times (some tens of microseconds) before
// it sleeps: the engine injects its next packet within that time when it is busy, and waking a
// thread costs more than the packet. Where there is but one processor it sleeps at once. Asleep it
// takes no processor time; only a push to a sleeping thread costs a system call.
//
// Threads: waitAndTake(), take() and done() belong to the chip's thread, wake() and asleep() to
// any, the rest to the event thread.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace SoftChip {

class Tables;

// A packet to be injected, and the registration that its digest is for (DigestChannel.h).
struct Injection {
    std::uint8_t pipe = 0;
    std::uint8_t portIndex = 0;
    std::uint16_t pktId = 0;
    std::uint32_t registration = 0;
    std::span<std::uint8_t const> phase0;
    std::span<std::uint8_t const> pkt;
};

// One thing to do. What a change refers to is used and destroyed on the chip's thread: no counted
// pointers, texts or bytes of the object framework.
struct Command {
    enum class Kind : std::uint8_t { inject, change, releaseHeld };

    Kind kind = Kind::inject;
    std::uint8_t pipe = 0;
    std::uint8_t portIndex = 0;
    std::uint16_t pktId = 0;
    std::uint32_t registration = 0;
    std::uint32_t phase0Size = 0;
    std::vector<std::uint8_t> bytes;  // phase-0 bytes, then the packet
    std::function<void(Tables&)> change;

    std::span<std::uint8_t const> phase0() const { return std::span(bytes).first(phase0Size); }
    std::span<std::uint8_t const> pkt() const { return std::span(bytes).subspan(phase0Size); }
};

class CommandQueue {
  public:
    // Commands are numbered from 1 in the order of the pushes.
    void pushInjection(Injection const& injection);  // copies the bytes
    void pushChange(std::function<void(Tables&)> change);
    void pushReleaseHeld();

    // Has waitAndTake() return although nothing was pushed.
    void wake();
    // Has waitAndTake() return nothing from now on.
    void stop();

    // Returns when everything that was pushed has been done.
    void waitUntilDone();
    // Whether there is something to do.
    bool pending() const;
    // Whether the chip's thread sleeps because it has nothing to do.
    bool asleep() const;

    // Everything pushed and not taken yet; valid until the next call of take() or waitAndTake().
    std::span<Command> take();
    // The same, once something was pushed or wake() called; nothing when stopped.
    std::optional<std::span<Command>> waitAndTake();
    // To be called when the commands that were taken have been done.
    void done();

  private:
    // Slots, of which the first `used` hold commands.
    struct Row {
        std::vector<Command> slots;
        std::size_t used = 0;
    };

    template <class Fill>
    void push(Fill&& fill);
    void wakeSleeper(bool sleeping);
    bool spin() const;
    void sleep(std::unique_lock<std::mutex>& lock);
    bool somethingToDo() const { return pushed_.used > 0 || woken_ || stopped_; }
    std::span<Command> takeLocked();

    // The members that a push changes, in as few cache lines as possible.
    alignas(64) mutable std::mutex mutex_;
    std::uint64_t pushes_ = 0;
    bool woken_ = false;
    bool stopped_ = false;
    bool sleeping_ = false;
    Row pushed_;
    std::condition_variable toDo_;
    // The members that the chip's thread changes whenever it has done something.
    alignas(64) Row taken_;    // its own
    std::uint64_t takes_ = 0;  // commands handed out
    std::atomic<std::uint64_t> done_ = 0;
    std::atomic<bool> someoneWaits_ = false;
    std::condition_variable doneChanged_;
    // Set after the lock is released, so that a thread that spins on it does not run into the lock.
    alignas(64) std::atomic<bool> hint_ = false;
};

}  // namespace SoftChip
