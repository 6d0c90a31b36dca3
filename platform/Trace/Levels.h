// Trace levels and sets of them.
//
// A level is 0 to 9. The modules use 1 for chip errors, 2 for an abandoned request, 4 for notable
// engine events, 5 for reception on the chip's thread, 7 for the normal flow, 9 for refusals,
// anomalies and frequent polling; a higher level is used more often.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "VynExport.h"

namespace Trace {

inline constexpr unsigned highestLevel = 9;

// Not constexpr on purpose: see Format.h.
inline void levelIsBeyondTheHighest() {}

// The level of a statement: a number that is checked when the statement is compiled.
class Level {
  public:
    consteval Level(unsigned number) : number_(number) {
        if (number > highestLevel) {
            levelIsBeyondTheHighest();
        }
    }

    constexpr unsigned number() const noexcept { return number_; }

  private:
    unsigned number_;
};

class LevelSet {
  public:
    constexpr LevelSet() noexcept = default;

    static constexpr LevelSet all() noexcept { return range(0, highestLevel); }

    // The levels from `first` to `last`, both included; levels beyond the highest are left out.
    static constexpr LevelSet range(unsigned first, unsigned last) noexcept {
        LevelSet set;
        for (unsigned level = first; level <= last && level <= highestLevel; ++level) {
            set.bits_ |= 1u << level;
        }
        return set;
    }
    static constexpr LevelSet only(unsigned level) noexcept { return range(level, level); }

    // Reads "*", or digits and ranges joined by "+", such as "0-4+7". Nothing for any other text.
    VYN_EXPORT static std::optional<LevelSet> parse(std::string_view text) noexcept;

    constexpr bool has(unsigned level) const noexcept {
        return level <= highestLevel && (bits_ >> level & 1u);
    }
    constexpr LevelSet with(LevelSet other) const noexcept { return LevelSet(bits_ | other.bits_); }
    constexpr LevelSet without(LevelSet other) const noexcept {
        return LevelSet(bits_ & ~other.bits_);
    }

    // One bit a level, level 0 the lowest.
    constexpr std::uint32_t bits() const noexcept { return bits_; }
    static constexpr LevelSet fromBits(std::uint32_t bits) noexcept {
        return LevelSet(bits & all().bits_);
    }

    friend constexpr bool operator==(LevelSet, LevelSet) noexcept = default;

  private:
    constexpr explicit LevelSet(std::uint32_t bits) noexcept : bits_(bits) {}

    std::uint32_t bits_ = 0;
};

}  // namespace Trace
