// One value of a trace statement, on its way from the statement to its readers.
//
// `traceValue(x)` makes a Value of x: truth values, integers of every width (in decimal), texts and
// interfaces (by name) are covered here. Another type joins by a function traceValue(T const&) in
// its own namespace, which is found by the argument's type:
//
//     Trace::Value traceValue(MacAddr const& address) {
//         return Trace::Value::written(&address, [](void const* object, char* to, std::size_t room)
//         {
//             return static_cast<MacAddr const*>(object)->textTo(to, room);
//         });
//     }
//
// A Value borrows: a text's characters and a written object must outlive the statement, and need
// not live longer. Nothing is formatted until a Value is appended to a text.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Plexa/IntfId.h"
#include "VynExport.h"

namespace Trace {

class Value {
  public:
    // Writes the object's text to `to`, at most `room` characters, and returns how many.
    using Writer = std::size_t (*)(void const* object, char* to, std::size_t room);

    // The room that a Writer is given.
    static constexpr std::size_t writtenRoom = 256;

    enum class Kind : std::uint8_t { boolean = 1, signedNumber, unsignedNumber, text, written };

    static constexpr Value boolean(bool value) noexcept {
        return Value(Kind::boolean, Content{.number = value}, Extent{.length = 0});
    }
    static constexpr Value signedNumber(std::int64_t value) noexcept {
        return Value(Kind::signedNumber, Content{.number = static_cast<std::uint64_t>(value)},
                     Extent{.length = 0});
    }
    static constexpr Value unsignedNumber(std::uint64_t value) noexcept {
        return Value(Kind::unsignedNumber, Content{.number = value}, Extent{.length = 0});
    }
    static constexpr Value text(std::string_view value) noexcept {
        return Value(Kind::text, Content{.characters = value.data()},
                     Extent{.length = value.size()});
    }
    static constexpr Value written(void const* object, Writer writer) noexcept {
        return Value(Kind::written, Content{.object = object}, Extent{.writer = writer});
    }

    constexpr Kind kind() const noexcept { return kind_; }

    // The value of a truth value (0 or 1) or number; of a signed one, its two's complement.
    // Precondition: kind() is boolean, signedNumber or unsignedNumber.
    constexpr std::uint64_t number() const noexcept { return content_.number; }

    // The characters of a text. Precondition: kind() is text.
    constexpr std::string_view characters() const noexcept {
        return {content_.characters, extent_.length};
    }

    // Runs the writer; the result is never more than `room`. Precondition: kind() is written.
    std::size_t writeTo(char* to, std::size_t room) const {
        std::size_t const length = extent_.writer(content_.object, to, room);
        return length < room ? length : room;
    }

    // Appends the value as people read it: "true", "-3", the text itself.
    // Errors: std::bad_alloc, and what a writer throws.
    VYN_EXPORT void appendTo(std::string& text) const;

  private:
    union Content {
        std::uint64_t number;
        char const* characters;
        void const* object;
    };
    union Extent {
        std::size_t length;
        Writer writer;
    };

    constexpr Value(Kind kind, Content content, Extent extent) noexcept
        : content_(content), extent_(extent), kind_(kind) {}

    Content content_;
    Extent extent_;
    Kind kind_;
};

constexpr Value traceValue(Value value) noexcept {
    return value;
}

template <std::same_as<bool> T>
constexpr Value traceValue(T value) noexcept {
    return Value::boolean(value);
}

template <std::integral T>
requires(!std::same_as<T, bool>) constexpr Value traceValue(T value) noexcept {
    if constexpr (std::signed_integral<T>) {
        return Value::signedNumber(value);
    } else {
        return Value::unsignedNumber(value);
    }
}

// A null pointer is the empty text.
constexpr Value traceValue(char const* text) noexcept {
    return Value::text(text ? std::string_view(text) : std::string_view());
}

constexpr Value traceValue(std::string_view text) noexcept {
    return Value::text(text);
}

// A type that gives its characters through view(), such as Vanta::String, is a text.
template <class T>
requires requires(T const& value) {
    { value.view() } -> std::same_as<std::string_view>;
}
constexpr Value traceValue(T const& value) noexcept {
    return Value::text(value.view());
}

// An interface by its name, which is written only for a reader.
inline Value traceValue(Plexa::IntfId const& intf) noexcept {
    return Value::written(&intf, [](void const* object, char* to, std::size_t room) {
        std::array<char, Plexa::IntfId::maxNameSize> name;
        std::size_t const size = static_cast<Plexa::IntfId const*>(object)->nameTo(name.data());
        return std::string_view(name.data(), size).copy(to, room);
    });
}

}  // namespace Trace
