// Reads an object's attribute through its reflection table, as one line.
#pragma once

#include <string>

#include "Kel/Object.h"

class TableSink final : public Kel::AttributeSink {
  public:
    void number(std::int64_t value) override { add(std::to_string(value)); }
    void number(std::uint64_t value) override { add(std::to_string(value)); }
    void boolean(bool value) override { add(value ? "true" : "false"); }
    void text(std::string_view value) override { add(std::string(value)); }
    void object(Vanta::Node const* value) override { add(value != nullptr ? "object" : "null"); }
    void listStart() override { line_ += "["; }
    void listEnd() override { line_ += "]"; }
    std::string const& line() const { return line_; }

  private:
    void add(std::string const& word) {
        bool const first = line_.empty() || line_.back() == '[';
        line_ += (first ? "" : " ") + word;
    }
    std::string line_;
};

// "name=value" of the attribute with a number; "none" if the table has no such row.
inline std::string tableRow(Kel::Object const& object, unsigned number) {
    for (auto const& attribute : object.typeInfo().attributes) {
        if (attribute.number == number) {
            TableSink sink;
            attribute.read(object, sink);
            return std::string(attribute.name) + "=" + sink.line();
        }
    }
    return "none";
}
