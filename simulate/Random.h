// The one source of chance of a run: the same seed gives the same sequence of numbers everywhere,
// which the standard library's distributions do not promise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Simulate {

class Random {
  public:
    explicit Random(std::uint64_t seed) noexcept : state_(seed * 0xd1342543de82ef95ULL + 1) {}

    std::uint64_t next() noexcept {
        state_ += 0x9e3779b97f4a7c15ULL;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9ULL;
        mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111ebULL;
        return mixed ^ (mixed >> 31);
    }

    // A number from 0 to `limit` - 1. Precondition: limit > 0.
    std::uint64_t below(std::uint64_t limit) noexcept { return next() % limit; }
    // A number from `low` to `high`, both included.
    std::uint64_t between(std::uint64_t low, std::uint64_t high) noexcept {
        return low + below(high - low + 1);
    }
    // True in `percent` of a hundred cases.
    bool chance(unsigned percent) noexcept { return below(100) < percent; }

    template <class T>
    T const& pick(std::vector<T> const& from) noexcept {
        return from[static_cast<std::size_t>(below(from.size()))];
    }

  private:
    std::uint64_t state_;
};

}  // namespace Simulate
