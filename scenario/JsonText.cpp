#include "scenario/JsonText.h"

namespace Scenario {
namespace {

constexpr std::uint8_t firstPrintable = 0x20;

// The letter of a two-character escape, or 0.
char shortEscape(char c) noexcept {
    constexpr std::string_view escaped = "\b\f\n\r\t\"\\";
    constexpr std::string_view letters = "bfnrt\"\\";
    auto const found = escaped.find(c);
    return found != std::string_view::npos ? letters[found] : 0;
}

}  // namespace

void appendJsonText(std::string& out, std::string_view text) {
    out.push_back('"');
    for (char const c : text) {
        auto const code = static_cast<std::uint8_t>(c);
        if (code >= firstPrintable && c != '"' && c != '\\') {
            out.push_back(c);
        } else if (char const letter = shortEscape(c)) {
            out.append({'\\', letter});
        } else {
            out.append("\\u00").append(Vanta::hexText({&code, 1}));
        }
    }
    out.push_back('"');
}

std::string jsonText(std::string_view text) {
    std::string out;
    appendJsonText(out, text);
    return out;
}

}  // namespace Scenario
