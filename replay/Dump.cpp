#include "replay/Dump.h"

#include <unordered_map>
#include <vector>

#include "Kel/Object.h"
#include "replay/ClassName.h"
#include "scenario/JsonText.h"

namespace Replay {
namespace {

using Scenario::JsonWriter;

// The objects met so far, by number.
class Numbering {
  public:
    std::size_t numberOf(Vanta::Node const* node) {
        auto const [place, added] = numbers_.try_emplace(node, nodes_.size() + 1);
        if (added) {
            nodes_.push_back(node);
        }
        return place->second;
    }
    // The object of a number, or null.
    Vanta::Node const* node(std::size_t number) const noexcept {
        return number <= nodes_.size() ? nodes_[number - 1] : nullptr;
    }

  private:
    std::vector<Vanta::Node const*> nodes_;
    std::unordered_map<Vanta::Node const*, std::size_t> numbers_;
};

// Writes the values of one object.
class ValueWriter final : public Kel::AttributeSink {
  public:
    ValueWriter(JsonWriter& json, Numbering& numbering) : json_(json), numbering_(numbering) {}

    void number(std::int64_t value) override { json_.number(value); }
    void number(std::uint64_t value) override { json_.number(value); }
    void boolean(bool value) override { json_.flag(value); }
    void text(std::string_view value) override { json_.text(value); }
    void object(Vanta::Node const* value) override {
        if (value == nullptr) {
            json_.null();
        } else {
            json_.beginObject().member("object", numbering_.numberOf(value)).endObject();
        }
    }
    void listStart() override { json_.beginList(); }
    void listEnd() override { json_.endList(); }

  private:
    JsonWriter& json_;
    Numbering& numbering_;
};

void writeRoots(JsonWriter& json, std::span<Scenario::Player::Root const> roots,
                Numbering& numbering) {
    json.beginObject().name("roots").beginObject();
    for (Scenario::Player::Root const& root : roots) {
        json.name(root.name);
        if (root.node != nullptr) {
            json.number(numbering.numberOf(root.node));
        } else {
            json.null();
        }
    }
    json.endObject().endObject();
}

void writeAttributes(JsonWriter& json, Kel::Object const& object, Numbering& numbering) {
    ValueWriter values(json, numbering);
    for (Kel::AttributeInfo const& attribute : object.typeInfo().attributes) {
        std::string name(attribute.name);
        if (attribute.number != 0) {
            name.insert(0, std::to_string(attribute.number) + ' ');
        }
        json.name(name);
        attribute.read(object, values);
    }
}

void writeObject(JsonWriter& json, std::size_t number, Vanta::Node const& node,
                 Numbering& numbering) {
    auto const* const object = dynamic_cast<Kel::Object const*>(&node);
    json.beginObject().member("object", number);
    if (object != nullptr) {
        json.member("type", object->typeInfo().name);
        writeAttributes(json, *object, numbering);
    } else {
        json.member("type", classNameOf(typeid(node)));
    }
    json.endObject();
}

}  // namespace

std::string dump(std::span<Scenario::Player::Root const> roots) {
    std::string lines;
    Numbering numbering;
    JsonWriter rootsLine(lines);
    writeRoots(rootsLine, roots, numbering);
    lines.push_back('\n');
    std::size_t number = 1;
    while (auto const* const node = numbering.node(number)) {
        JsonWriter line(lines);
        writeObject(line, number, *node, numbering);
        lines.push_back('\n');
        ++number;
    }
    return lines;
}

}  // namespace Replay
