#include "Net/Number.h"

#include <charconv>

namespace Net {

std::optional<std::uint32_t> numberOfDigits(std::string_view text, std::uint32_t most,
                                            int base) noexcept {
    std::uint32_t number = 0;
    auto const* const end = text.data() + text.size();
    auto const [stopped, error] = std::from_chars(text.data(), end, number, base);
    bool const isWhole = error == std::errc() && stopped == end;
    return isWhole && number <= most ? std::optional(number) : std::nullopt;
}

std::optional<std::uint32_t> numberFromText(std::string_view text, std::uint32_t most) noexcept {
    bool const isHex = text.starts_with("0x");
    return numberOfDigits(text.substr(isHex ? 2 : 0), most, isHex ? 16 : 10);
}

}  // namespace Net
