// Numbers and ranges of numbers as the switch file writes them: decimal, without sign, blanks or
// leading zeros. Each function takes a whole text and answers nothing for any other. Threads: any.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace SwitchFile {

struct NumberRange {
    std::uint32_t first = 0;
    std::uint32_t last = 0;

    friend bool operator==(NumberRange const&, NumberRange const&) = default;
};

// A number within [least, most].
std::optional<std::uint32_t> parseNumber(std::string_view text, std::uint32_t least,
                                         std::uint32_t most);

// "17" or "17-23", ascending, both ends within [least, most].
std::optional<NumberRange> parseRange(std::string_view text, std::uint32_t least,
                                      std::uint32_t most);

}  // namespace SwitchFile
