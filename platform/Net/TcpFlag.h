// The flags of a TCP header: their bits, and their names. Threads: any.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Net::TcpFlag {

inline constexpr std::uint8_t fin = 0x01;
inline constexpr std::uint8_t syn = 0x02;
inline constexpr std::uint8_t rst = 0x04;
inline constexpr std::uint8_t psh = 0x08;
inline constexpr std::uint8_t ack = 0x10;
inline constexpr std::uint8_t urg = 0x20;
inline constexpr std::uint8_t ece = 0x40;
inline constexpr std::uint8_t cwr = 0x80;

struct Name {
    std::string_view name;
    std::uint8_t bit;
};
// By ascending bit.
inline constexpr std::array names{Name{"fin", fin}, Name{"syn", syn}, Name{"rst", rst},
                                  Name{"psh", psh}, Name{"ack", ack}, Name{"urg", urg},
                                  Name{"ece", ece}, Name{"cwr", cwr}};

// The bit of one of these names; nothing for any other text.
constexpr std::optional<std::uint8_t> fromText(std::string_view text) noexcept {
    for (Name const& known : names) {
        if (known.name == text) {
            return known.bit;
        }
    }
    return std::nullopt;
}

}  // namespace Net::TcpFlag
