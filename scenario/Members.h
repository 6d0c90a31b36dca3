// Taking an event's members out of a line's object, each with its type and range.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

#include "Bridging/VlanId.h"
#include "Plexa/IntfId.h"
#include "Vanta/Bytes.h"
#include "Vanta/String.h"
#include "scenario/JsonLine.h"

namespace Scenario {

// The members of one object: an Io of EventMembers.h that reads. Errors, of all operations: Refusal
// with the member's name, what was expected, and what is there.
class Members {
  public:
    explicit Members(LineValue::Members const& members);

    // Takes a member that must be there, or one that may be missing, as the value's type.
    template <class T>
    void must(std::string_view name, T& value, auto... range) {
        read(name, at(name), value, range...);
    }
    template <class T>
    void may(std::string_view name, T& value, auto... range) {
        if (LineValue const* const there = take(name)) {
            read(name, *there, value, range...);
        }
    }
    template <class T>
    void mayOmit(T, std::string_view name, T& value, auto... range) {
        may(name, value, range...);
    }

    // The same for an enumeration, or a number: the value is the text's position in `words`.
    template <class Enum>
    void mustWord(std::string_view name, Enum& value, std::span<std::string_view const> words) {
        value = static_cast<Enum>(position(name, at(name), words));
    }
    template <class Enum>
    void mayWord(std::string_view name, Enum& value, std::span<std::string_view const> words) {
        if (LineValue const* const there = take(name)) {
            value = static_cast<Enum>(position(name, *there, words));
        }
    }

    // A list of at most `limit` objects, added to `values`.
    template <class T>
    void entries(std::string_view name, std::vector<T>& values, std::size_t limit) {
        for (LineValue const& object : list(name, at(name), limit)) {
            Members entry(membersOf(name, object));
            members(entry, values.emplace_back());
            entry.end();
        }
    }

    // One number, or under the other name a list of one or more.
    void oneOrList(std::string_view one, std::string_view list, std::vector<std::uint64_t>& values);

    // Refuses members that nothing took.
    void end() const;

  private:
    // The member, which then counts as taken; null if it is not there. `at` refuses a missing one.
    LineValue const* take(std::string_view name);
    LineValue const& at(std::string_view name);

    // Converts a value to the type that it must have; the name is that of its member.
    static void read(std::string_view name, LineValue const& value, bool& to);
    static void read(std::string_view name, LineValue const& value, std::int32_t& to);
    static void read(std::string_view name, LineValue const& value, Vanta::String& to);
    static void read(std::string_view name, LineValue const& value, Vanta::Bytes& to);
    static void read(std::string_view name, LineValue const& value, Bridging::VlanId& to);
    static void read(std::string_view name, LineValue const& value, Plexa::IntfId& to);
    static void read(std::string_view name, LineValue const& value, std::vector<Plexa::IntfId>& to);
    template <std::unsigned_integral T>
    static void read(std::string_view name, LineValue const& value, T& to, std::uint64_t min = 0,
                     std::uint64_t max = std::numeric_limits<T>::max()) {
        to = static_cast<T>(number(name, value, min, max));
    }
    static std::uint64_t number(std::string_view name, LineValue const& value, std::uint64_t min,
                                std::uint64_t max);
    static std::size_t position(std::string_view name, LineValue const& value,
                                std::span<std::string_view const> words);
    static LineValue::List const& list(std::string_view name, LineValue const& value,
                                       std::size_t limit = std::numeric_limits<std::size_t>::max());
    static LineValue::Members const& membersOf(std::string_view name, LineValue const& object);

    LineValue::Members const& members_;
    std::vector<bool> taken_;
};

}  // namespace Scenario
