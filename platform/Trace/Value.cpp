#include "Trace/Value.h"

#include <array>
#include <charconv>

namespace Trace {
namespace {

template <class Number>
void appendNumber(std::string& text, Number number) {
    std::array<char, 24> digits;
    auto const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text.append(digits.data(), end);
}

}  // namespace

void Value::appendTo(std::string& text) const {
    switch (kind_) {
        case Kind::boolean:
            text += number() ? "true" : "false";
            return;
        case Kind::signedNumber:
            return appendNumber(text, static_cast<std::int64_t>(number()));
        case Kind::unsignedNumber:
            return appendNumber(text, number());
        case Kind::text:
            text += characters();
            return;
        case Kind::written: {
            std::array<char, writtenRoom> room;
            text.append(room.data(), writeTo(room.data(), room.size()));
            return;
        }
    }
}

}  // namespace Trace
