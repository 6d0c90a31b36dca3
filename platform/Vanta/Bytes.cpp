#include "Vanta/Bytes.h"

namespace Vanta {

std::string hexText(std::span<std::uint8_t const> bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (std::uint8_t const byte : bytes) {
        text.push_back(digits[byte >> 4]);
        text.push_back(digits[byte & 0xf]);
    }
    return text;
}

}  // namespace Vanta
