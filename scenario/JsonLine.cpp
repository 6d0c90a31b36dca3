#include "scenario/JsonLine.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <utility>

#include "scenario/JsonText.h"

namespace Scenario {
namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
// A line's object, its list of digest entries, and an entry.
constexpr std::size_t deepest = 3;

// Builds the value while the parser reads.
class Builder final : public nlohmann::json_sax<nlohmann::json> {
  public:
    bool null() override { return put({}); }
    bool boolean(bool value) override { return put({value}); }
    bool number_integer(number_integer_t value) override { return put({value}); }
    bool number_unsigned(number_unsigned_t value) override { return put({value}); }
    bool number_float(number_float_t, string_t const& text) override {
        return put({LineValue::OtherNumber{text}});
    }
    bool string(string_t& text) override { return put({std::move(text)}); }
    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return start({LineValue::Members()}); }
    bool start_array(std::size_t) override { return start({LineValue::List()}); }
    bool end_object() override { return end(); }
    bool end_array() override { return end(); }

    bool key(string_t& name) override {
        auto& members = std::get<LineValue::Members>(open_.back()->value);
        if (std::ranges::find(members, name, &LineValue::Member::name) != members.end()) {
            throw Refusal("the member " + jsonText(name) + " is there twice");
        }
        members.push_back({std::move(name), {}});
        return true;
    }

    bool parse_error(std::size_t column, std::string const&,
                     nlohmann::detail::exception const& error) override {
        std::string_view text = error.what();
        // The parser's message gives the column, too, but says "line 1" for every line.
        if (std::size_t const at = text.find(": "); at != std::string_view::npos) {
            text.remove_prefix(at + 2);
        }
        throw Refusal("column " + std::to_string(column) + ": " + std::string(text));
    }

    LineValue& root() noexcept { return root_; }

  private:
    // Where the next value is stored.
    LineValue& nextValue() {
        if (open_.empty()) {
            return root_;
        }
        if (auto* const members = std::get_if<LineValue::Members>(&open_.back()->value)) {
            return members->back().value;
        }
        return std::get<LineValue::List>(open_.back()->value).emplace_back();
    }
    bool put(LineValue value) {
        nextValue() = std::move(value);
        return true;
    }
    bool start(LineValue value) {
        if (open_.size() == deepest) {
            throw Refusal("nothing is nested as deeply as this");
        }
        LineValue& started = nextValue();
        started = std::move(value);
        open_.push_back(&started);
        return true;
    }
    bool end() {
        open_.pop_back();
        return true;
    }

    LineValue root_;
    // The objects and lists around the next value. A list grows only while its last value is not
    // open, so these pointers stay valid.
    std::vector<LineValue*> open_;
};

}  // namespace

std::string_view kindOf(LineValue const& value) noexcept {
    static constexpr std::array<std::string_view, 8> kinds{
        "null",   "a truth value", "a negative number", "a number", "a number that is not whole",
        "a text", "a list",        "an object"};
    return kinds[value.value.index()];
}

LineValue::Members parseJsonLine(std::string_view line) {
    if (line.starts_with(byteOrderMark)) {
        throw Refusal("the line starts with a byte-order mark");
    }
    if (line.find('\0') != std::string_view::npos) {
        throw Refusal("there is a zero byte in the line");
    }
    Builder builder;
    static_cast<void>(nlohmann::json::sax_parse(line.begin(), line.end(), &builder));
    auto* const members = std::get_if<LineValue::Members>(&builder.root().value);
    if (members == nullptr) {
        throw Refusal("an object is expected, not " + std::string(kindOf(builder.root())));
    }
    return std::move(*members);
}

}  // namespace Scenario
