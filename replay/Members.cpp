#include "replay/Members.h"

#include <algorithm>

#include "replay/JsonText.h"

namespace Replay {
namespace {

// Quoted and escaped, so that a message stays one line.
std::string quoted(std::string_view text) {
    return jsonText(text);
}

// What is there instead of what was expected, with the value where it helps.
std::string described(JsonValue const& value) {
    if (auto const* number = std::get_if<std::int64_t>(&value.value)) {
        return std::to_string(*number);
    }
    if (auto const* number = std::get_if<std::uint64_t>(&value.value)) {
        return std::to_string(*number);
    }
    if (auto const* number = std::get_if<JsonValue::OtherNumber>(&value.value)) {
        return number->text;
    }
    if (auto const* text = std::get_if<std::string>(&value.value)) {
        return quoted(*text);
    }
    return std::string(kindOf(value));
}

[[noreturn]] void refuse(std::string_view name, std::string const& expected,
                         JsonValue const& value) {
    throw Refusal("the member " + quoted(name) + " must be " + expected + ", not " +
                  described(value));
}

std::string rangeText(std::string const& min, std::string const& max) {
    return "a whole number from " + min + " to " + max;
}

std::uint64_t toNumber(std::string_view name, JsonValue const& value, std::uint64_t min,
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

std::string const& toText(std::string_view name, JsonValue const& value) {
    auto const* const text = std::get_if<std::string>(&value.value);
    if (text == nullptr) {
        refuse(name, "a text", value);
    }
    return *text;
}

JsonValue::List const& toList(std::string_view name, JsonValue const& value) {
    auto const* const list = std::get_if<JsonValue::List>(&value.value);
    if (list == nullptr) {
        refuse(name, "a list", value);
    }
    return *list;
}

Plexa::IntfId toIntf(std::string_view name, JsonValue const& value) {
    auto const intf = Plexa::IntfId::fromName(toText(name, value));
    if (!intf) {
        refuse(name, "an interface's name", value);
    }
    return *intf;
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

std::vector<std::uint8_t> toBytes(std::string_view name, JsonValue const& value) {
    std::string const& text = toText(name, value);
    if (text.size() % 2 != 0 || std::ranges::any_of(text, [](char c) { return hexDigit(c) < 0; })) {
        refuse(name, "bytes in hexadecimal, two digits each", value);
    }
    std::vector<std::uint8_t> bytes(text.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] =
            static_cast<std::uint8_t>(hexDigit(text[2 * i]) << 4 | hexDigit(text[2 * i + 1]));
    }
    return bytes;
}

}  // namespace

Members::Members(JsonValue::Members const& members)
    : members_(members), taken_(members.size(), false) {}

JsonValue const* Members::find(std::string_view name) const noexcept {
    auto const found = std::ranges::find(members_, name, &JsonValue::Member::name);
    return found != members_.end() ? &found->value : nullptr;
}

JsonValue const* Members::take(std::string_view name) {
    auto const found = std::ranges::find(members_, name, &JsonValue::Member::name);
    if (found == members_.end()) {
        return nullptr;
    }
    taken_[static_cast<std::size_t>(found - members_.begin())] = true;
    return &found->value;
}

JsonValue const& Members::at(std::string_view name) {
    JsonValue const* const value = take(name);
    if (value == nullptr) {
        throw Refusal("the member " + quoted(name) + " is missing");
    }
    return *value;
}

std::string Members::text(std::string_view name) {
    return toText(name, at(name));
}

bool Members::flag(std::string_view name, std::optional<bool> byDefault) {
    if (byDefault && !has(name)) {
        return *byDefault;
    }
    JsonValue const& value = at(name);
    auto const* const flag = std::get_if<bool>(&value.value);
    if (flag == nullptr) {
        refuse(name, "true or false", value);
    }
    return *flag;
}

std::uint64_t Members::number(std::string_view name, std::uint64_t min, std::uint64_t max,
                              std::optional<std::uint64_t> byDefault) {
    if (byDefault && !has(name)) {
        return *byDefault;
    }
    return toNumber(name, at(name), min, max);
}

std::int64_t Members::signedNumber(std::string_view name, std::int64_t min, std::int64_t max) {
    JsonValue const& value = at(name);
    auto const* const negative = std::get_if<std::int64_t>(&value.value);
    auto const* const positive = std::get_if<std::uint64_t>(&value.value);
    bool const fits = (negative != nullptr && *negative >= min && *negative <= max) ||
                      (positive != nullptr && *positive <= static_cast<std::uint64_t>(max));
    if (!fits) {
        refuse(name, rangeText(std::to_string(min), std::to_string(max)), value);
    }
    return negative != nullptr ? *negative : static_cast<std::int64_t>(*positive);
}

Plexa::IntfId Members::intf(std::string_view name) {
    return toIntf(name, at(name));
}

std::vector<Plexa::IntfId> Members::intfs(std::string_view name) {
    std::vector<Plexa::IntfId> intfs;
    for (JsonValue const& value : toList(name, at(name))) {
        intfs.push_back(toIntf(name, value));
    }
    return intfs;
}

std::vector<std::uint64_t> Members::numbers(std::string_view name, std::uint64_t min,
                                            std::uint64_t max) {
    std::vector<std::uint64_t> numbers;
    for (JsonValue const& value : toList(name, at(name))) {
        numbers.push_back(toNumber(name, value, min, max));
    }
    return numbers;
}

std::vector<std::uint8_t> Members::bytes(std::string_view name) {
    return toBytes(name, at(name));
}

std::vector<std::uint8_t> Members::bytes(std::string_view name,
                                         std::vector<std::uint8_t> byDefault) {
    JsonValue const* const value = take(name);
    return value != nullptr ? toBytes(name, *value) : std::move(byDefault);
}

std::size_t Members::word(std::string_view name, std::span<std::string_view const> words,
                          std::optional<std::size_t> byDefault) {
    if (byDefault && !has(name)) {
        return *byDefault;
    }
    JsonValue const& value = at(name);
    auto const found = std::ranges::find(words, std::string_view(toText(name, value)));
    if (found == words.end()) {
        std::string expected = "one of";
        for (std::string_view const word : words) {
            expected += ' ' + quoted(word);
        }
        refuse(name, expected, value);
    }
    return static_cast<std::size_t>(found - words.begin());
}

void Members::objects(std::string_view name, std::size_t limit,
                      std::function<void(Members& members)> const& each) {
    JsonValue const& value = at(name);
    JsonValue::List const& list = toList(name, value);
    if (list.size() > limit) {
        throw Refusal("the member " + quoted(name) + " has " + std::to_string(list.size()) +
                      " objects, more than " + std::to_string(limit));
    }
    for (JsonValue const& object : list) {
        auto const* const members = std::get_if<JsonValue::Members>(&object.value);
        if (members == nullptr) {
            refuse(name, "a list of objects", object);
        }
        Members reader(*members);
        each(reader);
        reader.end();
    }
}

void Members::end() const {
    auto const untaken = std::ranges::find(taken_, false);
    if (untaken != taken_.end()) {
        auto const index = static_cast<std::size_t>(untaken - taken_.begin());
        throw Refusal("unknown member " + quoted(members_[index].name));
    }
}

}  // namespace Replay
