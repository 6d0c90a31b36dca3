// MAC and IP addresses as a packet's fields hold them, with the texts in which people write them.
//
// Plain values: they copy, compare byte by byte in network order, and belong to no thread.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "VynExport.h"

namespace PacketTracer {

class VYN_EXPORT MacAddress {
  public:
    using Octets = std::array<std::uint8_t, 6>;

    // 00:00:00:00:00:00.
    constexpr MacAddress() noexcept = default;
    constexpr explicit MacAddress(Octets const& octets) noexcept : octets_(octets) {}

    // Six groups of one or two hexadecimal digits, all separated by ':' or all by '-'; nothing for
    // any other text.
    static std::optional<MacAddress> fromText(std::string_view text);
    // Lower-case digits, two a group, separated by ':'.
    std::string text() const;

    // In the order in which they are sent.
    constexpr Octets const& octets() const noexcept { return octets_; }
    // A multicast address or the broadcast address.
    constexpr bool isGroup() const noexcept { return (octets_[0] & 1) != 0; }

    static constexpr MacAddress broadcast() noexcept {
        return MacAddress({0xff, 0xff, 0xff, 0xff, 0xff, 0xff});
    }

    friend constexpr auto operator<=>(MacAddress const&, MacAddress const&) noexcept = default;

  private:
    Octets octets_{};
};

// An IPv4 or IPv6 address. Every IPv4 address is less than every IPv6 address.
class VYN_EXPORT IpAddress {
  public:
    using V4Octets = std::array<std::uint8_t, 4>;
    using V6Octets = std::array<std::uint8_t, 16>;

    // 0.0.0.0.
    constexpr IpAddress() noexcept = default;
    constexpr explicit IpAddress(V4Octets const& octets) noexcept
        : octets_{octets[0], octets[1], octets[2], octets[3]} {}
    constexpr explicit IpAddress(V6Octets const& octets) noexcept : isV6_(true), octets_(octets) {}

    // Four decimal numbers without leading zeros ("10.0.0.1"), or any of IPv6's text forms;
    // nothing for any other text, a prefix length or a zone included.
    static std::optional<IpAddress> fromText(std::string_view text);
    // The shortest form.
    std::string text() const;

    constexpr bool isV4() const noexcept { return !isV6_; }
    constexpr bool isV6() const noexcept { return isV6_; }
    // In the order in which they are sent: 4 or 16, valid as long as the address.
    constexpr std::span<std::uint8_t const> octets() const noexcept {
        return std::span(octets_).first(isV6_ ? 16 : 4);
    }

    // 224.0.0.0/4, ff00::/8.
    constexpr bool isMulticast() const noexcept {
        return isV6_ ? octets_[0] == 0xff : (octets_[0] & 0xf0) == 0xe0;
    }
    // 255.255.255.255.
    constexpr bool isBroadcast() const noexcept {
        return *this == IpAddress(V4Octets{0xff, 0xff, 0xff, 0xff});
    }
    // 0.0.0.0, ::.
    constexpr bool isUnspecified() const noexcept { return octets_ == V6Octets{}; }

    friend constexpr auto operator<=>(IpAddress const&, IpAddress const&) noexcept = default;

  private:
    bool isV6_ = false;
    V6Octets octets_{};  // of an IPv4 address the first four, the others are zero
};

inline std::ostream& operator<<(std::ostream& out, MacAddress const& address) {
    return out << address.text();
}
inline std::ostream& operator<<(std::ostream& out, IpAddress const& address) {
    return out << address.text();
}

}  // namespace PacketTracer
