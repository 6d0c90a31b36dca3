// IP prefixes. Plain values that belong to no thread.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "Net/IpAddress.h"
#include "VynExport.h"

namespace Net {

// Invariants of a prefix made by the factories: no bit beyond `length` is set; length <=
// addressBits.
struct VYN_EXPORT Prefix {
    IpAddress address;
    std::uint8_t length = 0;

    // The prefix of `length` bits that `address` is in. Precondition as for IpAddress::masked().
    static constexpr Prefix of(IpAddress const& address, unsigned length) noexcept {
        return {address.masked(length), static_cast<std::uint8_t>(length)};
    }
    // "10.0.0.0/8", or a bare address, which is a host prefix; nothing for other text, host bits
    // set beyond the length included.
    static std::optional<Prefix> fromText(std::string_view text);
    std::string text() const;

    // Whether the address lies in it; one of the other family never does.
    constexpr bool contains(IpAddress const& other) const noexcept {
        return other.family == address.family && other.masked(length) == address;
    }

    friend constexpr auto operator<=>(Prefix const&, Prefix const&) noexcept = default;
};

inline std::ostream& operator<<(std::ostream& out, Prefix const& prefix) {
    return out << prefix.text();
}

}  // namespace Net
