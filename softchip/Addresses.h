// MAC and IP addresses as the chip's tables hold them: plain values that compare by value, cost a
// register or three and belong to no thread. The text forms are for configuration and for people;
// the pipeline never makes one unless an explanation was asked for.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace SoftChip {

// The six bytes, the first one on the wire in bits 47..40; bits 63..48 are zero.
struct MacAddress {
    std::uint64_t value = 0;

    // Precondition: `bytes` has at least six.
    static MacAddress fromBytes(std::span<std::uint8_t const> bytes);
    // Six groups of one or two hexadecimal digits with ':' or '-' between; nothing for other text.
    static std::optional<MacAddress> fromText(std::string_view text);

    bool isMulticast() const { return (value >> 40) & 1; }  // broadcast included
    bool isBroadcast() const { return value == 0xffffffffffff; }
    std::string text() const;

    friend auto operator<=>(MacAddress const&, MacAddress const&) = default;
};

enum class Family : std::uint8_t { ipv4, ipv6 };

// 32 for IPv4, 128 for IPv6.
constexpr unsigned addressBits(Family family) {
    return family == Family::ipv4 ? 32 : 128;
}

// Both families are kept left-aligned in the same 128 bits, so that prefixes, masks and hashes need
// the same code for both: an IPv4 address is the upper half of `hi`, all else is zero.
struct IpAddress {
    std::uint64_t hi = 0;
    std::uint64_t lo = 0;
    Family family = Family::ipv4;

    static constexpr IpAddress v4(std::uint32_t address) {
        return {std::uint64_t{address} << 32, 0, Family::ipv4};
    }
    static constexpr IpAddress v6(std::uint64_t hi, std::uint64_t lo) {
        return {hi, lo, Family::ipv6};
    }
    // Precondition: `bytes`, in network order, has at least 4 (IPv4) or 16 (IPv6).
    static IpAddress fromBytes(Family family, std::span<std::uint8_t const> bytes);
    // Dotted quad or IPv6 text; nothing for other text.
    static std::optional<IpAddress> fromText(std::string_view text);

    // The first `length` bits, the others zero. Precondition: length <= addressBits(family).
    IpAddress masked(unsigned length) const;
    std::uint32_t asV4() const { return static_cast<std::uint32_t>(hi >> 32); }
    bool isMulticast() const;  // 224.0.0.0/4, ff00::/8
    std::string text() const;

    friend auto operator<=>(IpAddress const&, IpAddress const&) = default;
};

// Invariants of a prefix made by the factories: no bit beyond `length` is set; length <=
// addressBits.
struct Prefix {
    IpAddress address;
    std::uint8_t length = 0;

    // The prefix of `length` bits that `address` is in. Precondition as for IpAddress::masked.
    static Prefix of(IpAddress address, unsigned length);
    // "10.0.0.0/8" or a bare address, which is a host prefix; nothing for other text, host bits set
    // beyond the length included.
    static std::optional<Prefix> fromText(std::string_view text);

    bool contains(IpAddress other) const {
        return other.family == address.family && other.masked(length) == address;
    }
    std::string text() const;

    friend auto operator<=>(Prefix const&, Prefix const&) = default;
};

}  // namespace SoftChip
