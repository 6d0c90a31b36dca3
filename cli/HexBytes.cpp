#include "cli/HexBytes.h"

#include <optional>
#include <string>

#include "cli/UsageError.h"

namespace Cli {
namespace {

constexpr std::string_view separators = " \t\r\n:-.";

std::optional<unsigned> digit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    char const lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? std::optional<unsigned>(lower - 'a' + 10) : std::nullopt;
}

UsageError wrongAt(std::string_view text, std::string_view what, std::size_t at) {
    std::string const got = at < text.size() ? "'" + std::string(1, text[at]) + "'" : "the end";
    return UsageError(std::string(what) + ": character " + std::to_string(at + 1) +
                      ": expected two hexadecimal digits a byte, got " + got);
}

}  // namespace

std::vector<std::uint8_t> parseHexBytes(std::string_view text, std::string_view what) {
    auto const digitAt = [&](std::size_t at) {
        auto const value = at < text.size() ? digit(text[at]) : std::nullopt;
        return value ? *value : throw wrongAt(text, what, at);
    };
    std::vector<std::uint8_t> bytes;
    for (std::size_t at = 0; at < text.size();) {
        if (separators.find(text[at]) != std::string_view::npos) {
            ++at;
            continue;
        }
        unsigned const high = digitAt(at);
        bytes.push_back(static_cast<std::uint8_t>(high << 4 | digitAt(at + 1)));
        at += 2;
    }
    return bytes;
}

}  // namespace Cli
