// MAC addresses: in frames, in the chip's tables, and in the texts in which people write them.
//
// A plain value of one word: tables hash that word and the pipeline compares it. It belongs to no
// thread. The order is that of the octets.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "Net/BigEndian.h"
#include "VynExport.h"

namespace Net {

// 00:00:00:00:00:00 by default.
struct VYN_EXPORT MacAddress {
    using Octets = std::array<std::uint8_t, 6>;

    // The octet that is sent first in bits 47 to 40; bits 63 to 48 are zero.
    std::uint64_t value = 0;

    // Precondition: `octets`, in the order in which they are sent, has at least six.
    static constexpr MacAddress fromOctets(std::span<std::uint8_t const> octets) noexcept {
        return {fromBigEndian(octets.first(6))};
    }
    // Six groups of one or two hexadecimal digits, all separated by ':' or all by '-'; nothing for
    // any other text.
    static std::optional<MacAddress> fromText(std::string_view text) noexcept;

    static constexpr MacAddress broadcast() noexcept { return {0xffffffffffff}; }

    // In the order in which they are sent.
    constexpr Octets octets() const noexcept {
        auto const word = toBigEndian(value);
        return {word[2], word[3], word[4], word[5], word[6], word[7]};
    }
    // Lower-case digits, two a group, separated by ':'.
    std::string text() const;

    // The broadcast address is a multicast address too.
    constexpr bool isMulticast() const noexcept { return (value >> 40 & 1) != 0; }
    constexpr bool isBroadcast() const noexcept { return *this == broadcast(); }

    friend constexpr auto operator<=>(MacAddress const&, MacAddress const&) noexcept = default;
};

inline std::ostream& operator<<(std::ostream& out, MacAddress const& address) {
    return out << address.text();
}

}  // namespace Net
