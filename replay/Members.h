// Taking an event's members out of a line's object, each with its type and range.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Plexa/IntfId.h"
#include "replay/JsonLine.h"

namespace Replay {

// The members of one object. Every operation takes a member by name; one without a default must be
// there. Errors, of all of them: Refusal with the member's name, what was expected, and what is
// there.
class Members {
  public:
    explicit Members(JsonValue::Members const& members);

    bool has(std::string_view name) const noexcept { return find(name) != nullptr; }

    std::string text(std::string_view name);
    bool flag(std::string_view name, std::optional<bool> byDefault = {});
    std::uint64_t number(std::string_view name, std::uint64_t min, std::uint64_t max,
                         std::optional<std::uint64_t> byDefault = {});
    std::int64_t signedNumber(std::string_view name, std::int64_t min, std::int64_t max);
    Plexa::IntfId intf(std::string_view name);
    std::vector<Plexa::IntfId> intfs(std::string_view name);
    std::vector<std::uint64_t> numbers(std::string_view name, std::uint64_t min, std::uint64_t max);
    std::vector<std::uint8_t> bytes(std::string_view name);
    std::vector<std::uint8_t> bytes(std::string_view name, std::vector<std::uint8_t> byDefault);
    // The position of the member's text in `words`.
    std::size_t word(std::string_view name, std::span<std::string_view const> words,
                     std::optional<std::size_t> byDefault = {});
    // A list of at most `limit` objects, each given to `each`.
    void objects(std::string_view name, std::size_t limit,
                 std::function<void(Members& members)> const& each);

    // Refuses members that nothing took.
    void end() const;

  private:
    // The member, which counts as taken; null if it is not there. `at` refuses that too.
    JsonValue const* take(std::string_view name);
    JsonValue const& at(std::string_view name);
    JsonValue const* find(std::string_view name) const noexcept;

    JsonValue::Members const& members_;
    std::vector<bool> taken_;
};

}  // namespace Replay
