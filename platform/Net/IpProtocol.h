// The protocols that an IP header names: the numbers that the switch knows, and their texts.
// Threads: any.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Net::IpProtocol {

inline constexpr std::uint8_t icmp = 1;
inline constexpr std::uint8_t igmp = 2;
inline constexpr std::uint8_t tcp = 6;
inline constexpr std::uint8_t udp = 17;
inline constexpr std::uint8_t gre = 47;
inline constexpr std::uint8_t icmpv6 = 58;
inline constexpr std::uint8_t ospf = 89;
inline constexpr std::uint8_t pim = 103;
inline constexpr std::uint8_t vrrp = 112;

struct Name {
    std::string_view name;
    std::uint8_t number;
};
inline constexpr std::array names{Name{"icmp", icmp}, Name{"igmp", igmp}, Name{"tcp", tcp},
                                  Name{"udp", udp},   Name{"gre", gre},   Name{"icmpv6", icmpv6},
                                  Name{"ospf", ospf}, Name{"pim", pim},   Name{"vrrp", vrrp}};

// The number of one of these names; nothing for any other text.
constexpr std::optional<std::uint8_t> fromText(std::string_view text) noexcept {
    for (Name const& known : names) {
        if (known.name == text) {
            return known.number;
        }
    }
    return std::nullopt;
}

// The name, or "other".
constexpr std::string_view text(std::uint8_t number) noexcept {
    for (Name const& known : names) {
        if (known.number == number) {
            return known.name;
        }
    }
    return "other";
}

}  // namespace Net::IpProtocol
