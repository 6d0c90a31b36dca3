// What generic code reads of an object: its attributes with their values, as one text.
#pragma once

#include <string>
#include <string_view>

#include "Kel/Object.h"

namespace Detail {

struct TextSink final : Kel::AttributeSink {
    void number(std::int64_t value) override { add(std::to_string(value)); }
    void number(std::uint64_t value) override { add(std::to_string(value)); }
    void boolean(bool value) override { add(value ? "true" : "false"); }
    void text(std::string_view value) override { add("'" + std::string(value) + "'"); }
    void object(Vanta::Node const* value) override { add(value != nullptr ? "object" : "null"); }
    void listStart() override { add("("); }
    void listEnd() override { add(")"); }
    void add(std::string const& word) { all += " " + word; }
    std::string all;
};

}  // namespace Detail

// The attribute's value; "absent" if the type has none of that name.
inline std::string reflected(Kel::Object const& object, std::string_view name) {
    Detail::TextSink sink;
    for (auto const& attribute : object.typeInfo().attributes) {
        if (attribute.name == name) {
            attribute.read(object, sink);
            return sink.all.substr(1);
        }
    }
    return "absent";
}
