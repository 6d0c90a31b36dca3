#include "scenario/Members.h"

#include <algorithm>
#include <optional>

#include "scenario/JsonText.h"

namespace Scenario {
namespace {

// Describes the value that is there instead of the expected one, with its text where that helps.
std::string described(LineValue const& value) {
    if (auto const* number = std::get_if<std::int64_t>(&value.value)) {
        return std::to_string(*number);
    }
    if (auto const* number = std::get_if<std::uint64_t>(&value.value)) {
        return std::to_string(*number);
    }
    if (auto const* number = std::get_if<LineValue::OtherNumber>(&value.value)) {
        return number->text;
    }
    if (auto const* text = std::get_if<std::string>(&value.value)) {
        return jsonText(*text);
    }
    return std::string(kindOf(value));
}

[[noreturn]] void refuse(std::string_view name, std::string const& expected,
                         LineValue const& value) {
    throw Refusal("the member " + jsonText(name) + " must be " + expected + ", not " +
                  described(value));
}

std::string rangeText(std::string const& min, std::string const& max) {
    return "a whole number from " + min + " to " + max;
}

std::string const& toText(std::string_view name, LineValue const& value) {
    auto const* const text = std::get_if<std::string>(&value.value);
    if (text == nullptr) {
        refuse(name, "a text", value);
    }
    return *text;
}

int hexDigit(char c) noexcept {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

}  // namespace

Members::Members(LineValue::Members const& members)
    : members_(members), taken_(members.size(), false) {}

LineValue const* Members::take(std::string_view name) {
    auto const found = std::ranges::find(members_, name, &LineValue::Member::name);
    if (found == members_.end()) {
        return nullptr;
    }
    taken_[static_cast<std::size_t>(found - members_.begin())] = true;
    return &found->value;
}

LineValue const& Members::at(std::string_view name) {
    LineValue const* const value = take(name);
    if (value == nullptr) {
        throw Refusal("the member " + jsonText(name) + " is missing");
    }
    return *value;
}

void Members::oneOrList(std::string_view one, std::string_view list,
                        std::vector<std::uint64_t>& values) {
    LineValue const* const single = take(one);
    LineValue const* const several = take(list);
    if ((single != nullptr) == (several != nullptr)) {
        throw Refusal("exactly one of the members " + jsonText(one) + " and " + jsonText(list) +
                      " must be there");
    }
    if (single != nullptr) {
        return read(one, *single, values.emplace_back());
    }
    for (LineValue const& value : Members::list(list, *several)) {
        read(list, value, values.emplace_back());
    }
    if (values.empty()) {
        throw Refusal("the member " + jsonText(list) + " must have one number or more");
    }
}

void Members::end() const {
    auto const untaken = std::ranges::find(taken_, false);
    if (untaken != taken_.end()) {
        auto const index = static_cast<std::size_t>(untaken - taken_.begin());
        throw Refusal("unknown member " + jsonText(members_[index].name));
    }
}

// ---- Values

void Members::read(std::string_view name, LineValue const& value, bool& to) {
    auto const* const flag = std::get_if<bool>(&value.value);
    if (flag == nullptr) {
        refuse(name, "true or false", value);
    }
    to = *flag;
}

void Members::read(std::string_view name, LineValue const& value, std::int32_t& to) {
    using Limits = std::numeric_limits<std::int32_t>;
    auto const* const any = std::get_if<std::int64_t>(&value.value);
    auto const* const positive = std::get_if<std::uint64_t>(&value.value);
    bool const fits = (any != nullptr && *any >= Limits::min() && *any <= Limits::max()) ||
                      (positive != nullptr && *positive <= std::uint64_t{Limits::max()});
    if (!fits) {
        refuse(name, rangeText(std::to_string(Limits::min()), std::to_string(Limits::max())),
               value);
    }
    to = static_cast<std::int32_t>(any != nullptr ? *any : static_cast<std::int64_t>(*positive));
}

void Members::read(std::string_view name, LineValue const& value, Vanta::String& to) {
    to = toText(name, value);
}

void Members::read(std::string_view name, LineValue const& value, Vanta::Bytes& to) {
    std::string const& text = toText(name, value);
    if (text.size() % 2 != 0 || std::ranges::any_of(text, [](char c) { return hexDigit(c) < 0; })) {
        refuse(name, "bytes in hexadecimal, two digits each", value);
    }
    std::vector<std::uint8_t> bytes(text.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] =
            static_cast<std::uint8_t>(hexDigit(text[2 * i]) << 4 | hexDigit(text[2 * i + 1]));
    }
    to = bytes;
}

void Members::read(std::string_view name, LineValue const& value, Bridging::VlanId& to) {
    using Bridging::VlanId;
    to = VlanId(static_cast<std::uint16_t>(number(name, value, VlanId::min, VlanId::max)));
}

void Members::read(std::string_view name, LineValue const& value, Plexa::IntfId& to) {
    auto const intf = Plexa::IntfId::fromName(toText(name, value));
    if (!intf) {
        refuse(name, "an interface's name", value);
    }
    to = *intf;
}

void Members::read(std::string_view name, LineValue const& value, std::vector<Plexa::IntfId>& to) {
    for (LineValue const& intf : list(name, value)) {
        read(name, intf, to.emplace_back());
    }
}

std::uint64_t Members::number(std::string_view name, LineValue const& value, std::uint64_t min,
                              std::uint64_t max) {
    std::optional<std::uint64_t> number;
    if (auto const* positive = std::get_if<std::uint64_t>(&value.value)) {
        number = *positive;
    } else if (auto const* any = std::get_if<std::int64_t>(&value.value); any && *any == 0) {
        number = 0;  // written "-0"
    }
    if (!number || *number < min || *number > max) {
        refuse(name, rangeText(std::to_string(min), std::to_string(max)), value);
    }
    return *number;
}

std::size_t Members::position(std::string_view name, LineValue const& value,
                              std::span<std::string_view const> words) {
    auto const found = std::ranges::find(words, std::string_view(toText(name, value)));
    if (found == words.end()) {
        std::string expected = "one of";
        for (std::string_view const word : words) {
            expected += ' ' + jsonText(word);
        }
        refuse(name, expected, value);
    }
    return static_cast<std::size_t>(found - words.begin());
}

LineValue::List const& Members::list(std::string_view name, LineValue const& value,
                                     std::size_t limit) {
    auto const* const list = std::get_if<LineValue::List>(&value.value);
    if (list == nullptr) {
        refuse(name, "a list", value);
    }
    if (list->size() > limit) {
        throw Refusal("the member " + jsonText(name) + " has " + std::to_string(list->size()) +
                      " objects, more than " + std::to_string(limit));
    }
    return *list;
}

LineValue::Members const& Members::membersOf(std::string_view name, LineValue const& object) {
    auto const* const members = std::get_if<LineValue::Members>(&object.value);
    if (members == nullptr) {
        refuse(name, "a list of objects", object);
    }
    return *members;
}

}  // namespace Scenario
