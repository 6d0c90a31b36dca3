#include "switchfile/NumberText.h"

#include <charconv>

namespace SwitchFile {

std::optional<std::uint32_t> parseNumber(std::string_view text, std::uint32_t least,
                                         std::uint32_t most) {
    std::uint32_t value = 0;
    char const* const end = text.data() + text.size();
    auto const [stop, problem] = std::from_chars(text.data(), end, value);
    if (text.empty() || problem != std::errc{} || stop != end ||
        (text.size() > 1 && text[0] == '0') || value < least || value > most) {
        return std::nullopt;
    }
    return value;
}

std::optional<NumberRange> parseRange(std::string_view text, std::uint32_t least,
                                      std::uint32_t most) {
    std::size_t const dash = text.find('-');
    auto const first = parseNumber(text.substr(0, dash), least, most);
    if (!first) {
        return std::nullopt;
    }
    if (dash == std::string_view::npos) {
        return NumberRange{*first, *first};
    }
    auto const last = parseNumber(text.substr(dash + 1), *first, most);
    return last ? std::optional(NumberRange{*first, *last}) : std::nullopt;
}

}  // namespace SwitchFile
