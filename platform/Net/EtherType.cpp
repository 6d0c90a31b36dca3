#include "Net/EtherType.h"

#include <array>
#include <cstdio>

#include "Net/Number.h"

namespace Net::EtherType {
namespace {

struct Name {
    std::string_view name;
    std::uint16_t type;
};
constexpr std::array names{Name{"ipv4", ipv4}, Name{"ipv6", ipv6}, Name{"arp", arp}};

}  // namespace

std::optional<std::uint16_t> fromText(std::string_view text) noexcept {
    for (Name const& known : names) {
        if (known.name == text) {
            return known.type;
        }
    }
    auto const number = text.starts_with("0x") && text.size() <= 6
                            ? numberOfDigits(text.substr(2), 0xffff, 16)
                            : std::nullopt;
    return number ? std::optional(static_cast<std::uint16_t>(*number)) : std::nullopt;
}

std::string text(std::uint16_t type) {
    std::array<char, 8> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "0x%04x", unsigned{type});
    return buffer.data();
}

}  // namespace Net::EtherType
