// Which number a ring gave to a statement's format: found without a lock. Internal to Trace.
//
// A statement is told by its format's address, its handle and its level. Formats live as long as
// the program (Format.h sees to it), so their addresses identify them.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "Trace/Handle.h"

namespace Trace {

class FormatNumbers {
  public:
    // The number given to a statement, 0 if it has none. Any thread.
    unsigned find(Handle const& handle, unsigned level, char const* format) const noexcept {
        for (auto at = slotOf(handle, level, format);; at = (at + 1) % slotCount) {
            auto const& slot = slots_[at];
            auto const* const found = slot.format.load(std::memory_order_acquire);
            if (found == format && slot.handle == &handle && slot.level == level) [[likely]] {
                return slot.number;
            }
            if (!found) {
                return 0;
            }
        }
    }

    // Gives a statement a number. One thread at a time.
    // Preconditions: it has none; the number is not 0; fewer than half the slots are used.
    void add(Handle const& handle, unsigned level, char const* format, unsigned number) noexcept;

  private:
    struct Slot {
        std::atomic<char const*> format = nullptr;  // set last
        Handle const* handle = nullptr;
        unsigned level = 0;
        unsigned number = 0;
    };
    static constexpr std::size_t slotCount = 2048;

    static std::size_t slotOf(Handle const& handle, unsigned level, char const* format) noexcept {
        auto const mixed = (reinterpret_cast<std::uintptr_t>(format) ^
                            reinterpret_cast<std::uintptr_t>(&handle) << 7) +
                           level;
        return (mixed * std::uint64_t{0x9e3779b97f4a7c15}) >> 53;
    }
    static_assert(std::uint64_t{1} << (64 - 53) == slotCount);

    std::array<Slot, slotCount> slots_;
};

}  // namespace Trace
