// IPv4 and IPv6 addresses: in packets, in the chip's tables, and in the texts in which people write
// them.
//
// A plain value that belongs to no thread. Both families are kept left-aligned in the same 128
// bits, so that prefixes, masks and hashes need the same code for both.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "Net/BigEndian.h"
#include "VynExport.h"

namespace Net {

enum class Family : std::uint8_t { ipv4, ipv6 };

// 32 for IPv4, 128 for IPv6.
constexpr unsigned addressBits(Family family) noexcept {
    return family == Family::ipv4 ? 32 : 128;
}

// An address's octets in the order in which they are sent: 4 or 16, by value.
class IpOctets {
  public:
    constexpr IpOctets(std::uint64_t hi, std::uint64_t lo, Family family) noexcept
        : words_{toBigEndian(hi), toBigEndian(lo)}, size_(addressBits(family) / 8) {}

    constexpr std::uint8_t const* data() const noexcept { return words_[0].data(); }
    constexpr std::size_t size() const noexcept { return size_; }
    constexpr std::uint8_t const* begin() const noexcept { return data(); }
    constexpr std::uint8_t const* end() const noexcept { return data() + size_; }
    constexpr std::uint8_t operator[](std::size_t place) const noexcept { return data()[place]; }

  private:
    std::array<std::array<std::uint8_t, 8>, 2> words_;
    std::size_t size_;
};

// 0.0.0.0 by default. Every IPv4 address is less than every IPv6 address; within a family the order
// is that of the octets.
struct VYN_EXPORT IpAddress {
    // An IPv4 address is the upper half of `hi`; the other bits are then zero.
    std::uint64_t hi = 0;
    std::uint64_t lo = 0;
    Family family = Family::ipv4;

    static constexpr IpAddress v4(std::uint32_t address) noexcept {
        return {std::uint64_t{address} << 32, 0, Family::ipv4};
    }
    static constexpr IpAddress v6(std::uint64_t hi, std::uint64_t lo) noexcept {
        return {hi, lo, Family::ipv6};
    }
    // Precondition: `octets`, in the order in which they are sent, has at least 4 (IPv4) or 16.
    static constexpr IpAddress fromOctets(Family family,
                                          std::span<std::uint8_t const> octets) noexcept {
        return family == Family::ipv4
                   ? v4(static_cast<std::uint32_t>(fromBigEndian(octets.first(4))))
                   : v6(fromBigEndian(octets.first(8)), fromBigEndian(octets.subspan(8, 8)));
    }
    // Four decimal numbers without leading zeros ("10.0.0.1"), or any of IPv6's text forms;
    // nothing for any other text, a prefix length or a zone included.
    static std::optional<IpAddress> fromText(std::string_view text);

    constexpr IpOctets octets() const noexcept { return {hi, lo, family}; }
    // The shortest form.
    std::string text() const;

    constexpr bool isV4() const noexcept { return family == Family::ipv4; }
    constexpr bool isV6() const noexcept { return family == Family::ipv6; }
    // Of an IPv4 address.
    constexpr std::uint32_t asV4() const noexcept { return static_cast<std::uint32_t>(hi >> 32); }

    // The first `length` bits, the others zero. Precondition: length <= addressBits(family).
    constexpr IpAddress masked(unsigned length) const noexcept {
        return length <= 64 ? IpAddress{hi & upperBits(length), 0, family}
                            : IpAddress{hi, lo & upperBits(length - 64), family};
    }

    // 224.0.0.0/4, ff00::/8.
    constexpr bool isMulticast() const noexcept {
        return isV4() ? hi >> 60 == 0xe : hi >> 56 == 0xff;
    }
    // 255.255.255.255.
    constexpr bool isBroadcast() const noexcept { return *this == v4(0xffffffff); }
    // 127.0.0.0/8, ::1.
    constexpr bool isLoopback() const noexcept {
        return isV4() ? hi >> 56 == 127 : hi == 0 && lo == 1;
    }
    // 0.0.0.0, ::.
    constexpr bool isUnspecified() const noexcept { return hi == 0 && lo == 0; }
    // fe80::/10: such an address is valid on its own link only.
    constexpr bool isLinkLocalV6() const noexcept { return isV6() && hi >> 54 == 0xfe80 >> 6; }

    friend constexpr bool operator==(IpAddress const&, IpAddress const&) noexcept = default;
    friend constexpr std::strong_ordering operator<=>(IpAddress const& a,
                                                      IpAddress const& b) noexcept {
        if (auto const order = a.family <=> b.family; order != 0) {
            return order;
        }
        auto const order = a.hi <=> b.hi;
        return order != 0 ? order : a.lo <=> b.lo;
    }

  private:
    static constexpr std::uint64_t upperBits(unsigned length) noexcept {
        return length == 0 ? 0 : ~std::uint64_t{0} << (64 - length);
    }
};

inline std::ostream& operator<<(std::ostream& out, IpAddress const& address) {
    return out << address.text();
}

}  // namespace Net
