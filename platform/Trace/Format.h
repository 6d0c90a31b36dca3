// The fixed text of a trace statement, in which each "%s" stands for one value.
//
// The number of "%s" is compared with the number of values when the statement is compiled; a
// mismatch is a compile error in the constructor below. No other sequence has a meaning, and a
// value's own "%s" prints as it is.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "Trace/Value.h"
#include "VynExport.h"

namespace Trace {

// The most values that one statement takes; a ring record has room for them all.
inline constexpr std::size_t mostValues = 12;

constexpr std::size_t countPlaces(std::string_view text) noexcept {
    std::size_t count = 0;
    for (auto at = text.find("%s"); at != text.npos; at = text.find("%s", at + 2)) {
        ++count;
    }
    return count;
}

// Not constexpr on purpose: a format whose "%s" do not match its values calls this function at
// compile time. The compiler refuses that, and its message names the function.
inline void formatDoesNotMatchItsValues() {}

template <std::size_t valueCount>
class Format {
    static_assert(valueCount <= mostValues, "a trace statement takes at most 12 values");

  public:
    // Only what lives as long as the program, such as a string literal, can be given here.
    consteval Format(char const* text) : text_(text) {
        if (countPlaces(text) != valueCount) {
            formatDoesNotMatchItsValues();
        }
    }

    constexpr char const* text() const noexcept { return text_; }

  private:
    char const* text_;
};

// Appends `format` with each "%s" replaced in order by `values`; a "%s" without a value becomes
// nothing; values without a "%s" follow at the end, separated by blanks.
// Errors: std::bad_alloc, and what a value's writer throws.
VYN_EXPORT void appendFormatted(std::string& text, std::string_view format,
                                std::span<Value const> values);

}  // namespace Trace
