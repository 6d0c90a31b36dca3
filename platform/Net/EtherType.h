// EtherTypes: the numbers that the switch knows, and the texts in which people write any of them.
// Threads: any.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "VynExport.h"

namespace Net::EtherType {

// A smaller number in the position of an EtherType is a length (IEEE 802.3).
inline constexpr std::uint16_t least = 0x0600;

inline constexpr std::uint16_t ipv4 = 0x0800;
inline constexpr std::uint16_t arp = 0x0806;
inline constexpr std::uint16_t vlan = 0x8100;
inline constexpr std::uint16_t ipv6 = 0x86dd;
inline constexpr std::uint16_t mpls = 0x8847;
inline constexpr std::uint16_t mplsMulticast = 0x8848;
inline constexpr std::uint16_t serviceVlan = 0x88a8;

// Whether a VLAN tag follows.
constexpr bool isTag(std::uint16_t type) noexcept {
    return type == vlan || type == serviceVlan;
}
// Whether a label follows.
constexpr bool isMpls(std::uint16_t type) noexcept {
    return type == mpls || type == mplsMulticast;
}

// "ipv4", "ipv6", "arp", or "0x" and one to four hexadecimal digits; nothing for any other text.
VYN_EXPORT std::optional<std::uint16_t> fromText(std::string_view text) noexcept;
// "0x" and four lower-case digits.
VYN_EXPORT std::string text(std::uint16_t type);

}  // namespace Net::EtherType
