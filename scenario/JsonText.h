// Writing JSON, byte for byte as a scenario's output promises: members in the order in which they
// are given, no blanks, texts escaped only where JSON demands it.
#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "Vanta/Bytes.h"

namespace Scenario {

// Appends a text with its quotes: \b \f \n \r \t \" \\, other control characters as \u00xx in
// lower case, everything else as it is.
void appendJsonText(std::string& out, std::string_view text);

// The same as a text of its own.
std::string jsonText(std::string_view text);

// Appends one value after the other to a text. The caller opens and closes objects and lists in
// pairs and gives every member of an object its name; the commas are added.
class JsonWriter {
  public:
    explicit JsonWriter(std::string& out) noexcept : out_(out) {}

    JsonWriter& beginObject() { return open('{'); }
    JsonWriter& endObject() { return close('}'); }
    JsonWriter& beginList() { return open('['); }
    JsonWriter& endList() { return close(']'); }
    JsonWriter& name(std::string_view name) {
        text(name);
        out_.push_back(':');
        first_ = true;  // the value follows without a comma
        return *this;
    }

    JsonWriter& text(std::string_view value) {
        appendJsonText(next(), value);
        return *this;
    }
    JsonWriter& flag(bool value) { return plain(value ? "true" : "false"); }
    JsonWriter& number(std::integral auto value) { return plain(std::to_string(value)); }
    // Lower-case hexadecimal digits, two a byte.
    JsonWriter& hex(std::span<std::uint8_t const> bytes) { return text(Vanta::hexText(bytes)); }
    JsonWriter& null() { return plain("null"); }

    // A member: its name and its value.
    template <class T>
    JsonWriter& member(std::string_view memberName, T const& value) {
        name(memberName);
        if constexpr (std::same_as<T, bool>) {
            return flag(value);
        } else if constexpr (std::integral<T>) {
            return number(value);
        } else {
            return text(value);
        }
    }

  private:
    // Where the next value belongs, behind a comma if something stands before it.
    std::string& next() {
        if (!first_) {
            out_.push_back(',');
        }
        first_ = false;
        return out_;
    }
    JsonWriter& open(char bracket) {
        next().push_back(bracket);
        first_ = true;
        return *this;
    }
    JsonWriter& close(char bracket) {
        out_.push_back(bracket);
        first_ = false;
        return *this;
    }
    JsonWriter& plain(std::string_view value) {
        next().append(value);
        return *this;
    }

    std::string& out_;
    bool first_ = true;
};

}  // namespace Scenario
