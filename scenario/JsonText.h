// Writing JSON, byte for byte as a scenario's output promises: members in the order in which they
// are given, no blanks, texts escaped only where JSON demands it.
#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

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

    JsonWriter& beginObject();
    JsonWriter& endObject();
    JsonWriter& beginList();
    JsonWriter& endList();
    JsonWriter& name(std::string_view name);

    JsonWriter& text(std::string_view value);
    JsonWriter& flag(bool value);
    template <std::integral T>
    JsonWriter& number(T value) {
        if constexpr (std::signed_integral<T>) {
            return signedNumber(value);
        } else {
            return unsignedNumber(value);
        }
    }
    // Lower-case hexadecimal digits, two a byte.
    JsonWriter& hex(std::span<std::uint8_t const> bytes);
    JsonWriter& null();

    // A member: its name and its value.
    JsonWriter& member(std::string_view memberName, std::string_view value) {
        return name(memberName).text(value);
    }
    JsonWriter& member(std::string_view memberName, char const* value) {
        return name(memberName).text(value);
    }
    template <std::same_as<bool> T>
    JsonWriter& member(std::string_view memberName, T value) {
        return name(memberName).flag(value);
    }
    template <std::integral T>
    requires(!std::same_as<T, bool>) JsonWriter& member(std::string_view memberName, T value) {
        return name(memberName).number(value);
    }

  private:
    JsonWriter& signedNumber(std::int64_t value);
    JsonWriter& unsignedNumber(std::uint64_t value);
    // Adds a comma if the next value is not the first.
    void separate();

    std::string& out_;
    bool first_ = true;
};

}  // namespace Scenario
