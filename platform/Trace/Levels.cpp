#include "Trace/Levels.h"

namespace Trace {
namespace {

std::optional<unsigned> digit(std::string_view text) noexcept {
    if (text.size() != 1 || text[0] < '0' || text[0] > '9') {
        return std::nullopt;
    }
    return static_cast<unsigned>(text[0] - '0');
}

// "3" or "0-4".
std::optional<LevelSet> parseRange(std::string_view text) noexcept {
    auto const first = digit(text.substr(0, 1));
    if (text.size() == 1 && first) {
        return LevelSet::only(*first);
    }
    if (text.size() != 3 || !first || text[1] != '-') {
        return std::nullopt;
    }
    auto const last = digit(text.substr(2));
    return last && *first <= *last ? std::optional(LevelSet::range(*first, *last)) : std::nullopt;
}

}  // namespace

std::optional<LevelSet> LevelSet::parse(std::string_view text) noexcept {
    if (text == "*") {
        return all();
    }
    LevelSet set;
    while (true) {
        auto const plus = text.find('+');
        auto const part = parseRange(text.substr(0, plus));
        if (!part) {
            return std::nullopt;
        }
        set = set.with(*part);
        if (plus == text.npos) {
            return set;
        }
        text.remove_prefix(plus + 1);
    }
}

}  // namespace Trace
