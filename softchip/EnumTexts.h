// A text for each value of an enumeration: one row each, in the enumeration's order.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace SoftChip {

template <class Key>
struct EnumText {
    Key key;
    std::string_view text;
};

// Whether each row stands where its key's number says, counted from `first`: for a static_assert
// beside the table, which then misses nothing and can be read by number.
template <class Key, std::size_t count>
constexpr bool inOrder(std::array<EnumText<Key>, count> const& rows, unsigned first) {
    for (auto const& row : rows) {
        if (static_cast<unsigned>(row.key) != first++) {
            return false;
        }
    }
    return true;
}

}  // namespace SoftChip
