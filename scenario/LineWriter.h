// Putting an event's members into a line's object: an Io of EventMembers.h that writes.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Bridging/VlanId.h"
#include "Plexa/IntfId.h"
#include "Vanta/Bytes.h"
#include "Vanta/String.h"

namespace Scenario {

class LineWriter {
  public:
    void must(std::string_view name, auto const& value, auto...) { add(name, json(value)); }
    void may(std::string_view name, auto const& value, auto...) { must(name, value); }
    template <class T>
    void mayOmit(T omitted, std::string_view name, T const& value, auto...) {
        if (value != omitted) {
            must(name, value);
        }
    }
    void mustWord(std::string_view name, auto value, std::span<std::string_view const> words) {
        add(name, words[static_cast<std::size_t>(value)]);
    }
    void mayWord(std::string_view name, auto value, std::span<std::string_view const> words) {
        mustWord(name, value, words);
    }
    template <class T>
    void entries(std::string_view name, std::vector<T>& values, std::size_t) {
        Json list = Json::array();
        for (T& value : values) {
            LineWriter entry;
            members(entry, value);
            list.push_back(std::move(entry.line_));
        }
        add(name, std::move(list));
    }
    void oneOrList(std::string_view one, std::string_view list,
                   std::vector<std::uint64_t> const& values) {
        values.size() == 1 ? add(one, values.front()) : add(list, values);
    }

    // The whole line, without its end.
    std::string text() const { return line_.dump(-1, ' ', false, Json::error_handler_t::replace); }

  private:
    using Json = nlohmann::ordered_json;

    void add(std::string_view name, Json value) {
        line_.push_back({std::string(name), std::move(value)});
    }

    static Json json(std::integral auto value) { return value; }
    static Json json(std::string_view text) { return text; }
    static Json json(Vanta::String const& text) { return text.view(); }
    static Json json(Vanta::Bytes const& bytes) { return Vanta::hexText(bytes.view()); }
    static Json json(Bridging::VlanId id) { return id.value(); }
    static Json json(Plexa::IntfId const& intf) { return intf.stringValue(); }
    static Json json(std::vector<Plexa::IntfId> const& intfs) {
        Json list = Json::array();
        for (Plexa::IntfId const& intf : intfs) {
            list.push_back(json(intf));
        }
        return list;
    }

    Json line_ = Json::object();
};

}  // namespace Scenario
