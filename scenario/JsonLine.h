// One line of a scenario as a JSON value, read strictly.
//
// Refused are, besides what JSON itself forbids: a repeated member (names are compared after
// unescaping), invalid UTF-8, a byte-order mark, an unpaired surrogate, and deeper nesting than a
// scenario ever has.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Scenario {

// Why a line is refused, for people.
class Refusal : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A JSON value. Whole numbers within 64 bits are exact; of any other number (a fraction, an
// exponent, a huge one) only the text is kept, since no scenario accepts one.
struct LineValue {
    struct Member;
    using List = std::vector<LineValue>;
    using Members = std::vector<Member>;
    struct OtherNumber {
        std::string text;
    };

    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, OtherNumber, std::string, List,
                 Members>
        value;
};

struct LineValue::Member {
    std::string name;
    LineValue value;
};

// What a value is, in words: "a text", "a number that is not whole".
std::string_view kindOf(LineValue const& value) noexcept;

// The members of the one object that the line is. Errors: Refusal.
LineValue::Members parseJsonLine(std::string_view line);

}  // namespace Scenario
