// The packet generator of one pipe: what is enabled, and how many packets it has made.
//
//   state         application   generator   left by
//   off           disabled      disabled    genOnePkt -> on
//   on            enabled       enabled     disableAppId -> portOn; disablePktGen -> appOn
//   portOn        disabled      enabled     genOnePkt -> on; disablePktGen -> off
//   appOn         enabled       disabled    genOnePkt -> on; disableAppId -> off
//
// A packet that was accepted is generated, whatever is disabled afterwards. Disabling what is not
// enabled changes nothing.
//
// The counter has 64 bits. It rises on the chip's thread, by one a packet, before the packet enters
// the pipeline. The value that a read returns can be made to stall or to start anew; the generated
// packets are counted all the same.
// Threads: generated() any, noteGenerated() the chip's, everything else the event thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

namespace SoftChip {

enum class GeneratorState : std::uint8_t { off, on, portOn, appOn };

class Generator {
  public:
    Generator() = default;
    Generator(Generator const&) = delete;
    Generator& operator=(Generator const&) = delete;

    GeneratorState state() const noexcept { return state_; }
    void enable() noexcept { state_ = GeneratorState::on; }
    void disableApp() noexcept;
    void disablePort() noexcept;

    // Packets generated, faults or not.
    std::uint64_t generated() const noexcept { return generated_.load(std::memory_order_acquire); }
    void noteGenerated() noexcept { generated_.fetch_add(1, std::memory_order_release); }

    // The counter as it is read.
    std::uint64_t counter() const noexcept;
    // A stalled counter reads the same from now on; when it stalls no longer, it reads as if it had
    // never stalled.
    void stalledIs(bool stalled) noexcept;
    // The counter reads `value` now and counts on from there; a stalled one stays stalled.
    void counterIs(std::uint64_t value) noexcept;

  private:
    GeneratorState state_ = GeneratorState::off;
    // On another cache line than what the event thread changes for every packet.
    alignas(64) std::atomic<std::uint64_t> generated_ = 0;
    std::uint64_t offset_ = 0;  // counter minus generated, modulo 2^64
    std::optional<std::uint64_t> stalledAt_;
};

char const* text(GeneratorState state);

}  // namespace SoftChip
