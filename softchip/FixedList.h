// A list inside its object: at most `capacity` values, and no allocation.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "Vanta/Assert.h"

namespace SoftChip {

// Copying copies the values in the list, not the unused capacity. Threads: any, one at a time.
template <class T, std::size_t capacity>
class FixedList {
  public:
    FixedList() = default;
    FixedList(FixedList const& other) { *this = other; }
    FixedList& operator=(FixedList const& other) {
        std::copy_n(other.items_.begin(), other.size_, items_.begin());
        size_ = other.size_;
        return *this;
    }

    void clear() { size_ = 0; }
    // Precondition, which is checked: there is room.
    void add(T const& item) {
        Vanta::assertThat(size_ < capacity, "size_ < capacity");
        items_[size_++] = item;
    }

    std::size_t size() const { return size_; }
    std::span<T const> items() const { return {items_.data(), size_}; }

  private:
    std::array<T, capacity> items_{};
    std::size_t size_ = 0;
};

}  // namespace SoftChip
