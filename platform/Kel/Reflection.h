// Reflection: one table a type, written beside the class, through which generic code reads an
// object's attributes and walks its collections.
#pragma once

#include <concepts>
#include <cstdint>
#include <ranges>
#include <span>
#include <string_view>
#include <type_traits>

#include "Kel/Collection.h"
#include "Plexa/IntfId.h"
#include "Vanta/Bytes.h"
#include "Vanta/Node.h"
#include "Vanta/String.h"
#include "VynExport.h"

namespace Kel {

class Object;

// Receives the values of an object's attributes.
class VYN_EXPORT AttributeSink {
  public:
    virtual void number(std::int64_t value) = 0;
    virtual void number(std::uint64_t value) = 0;
    virtual void boolean(bool value) = 0;
    virtual void text(std::string_view value) = 0;
    // An object that the attribute points to, or null.
    virtual void object(Vanta::Node const* value) = 0;
    // The parts of a value that has several, and the entries of a collection.
    virtual void listStart() = 0;
    virtual void listEnd() = 0;

  protected:
    ~AttributeSink() = default;
};

enum class AttributeKind : std::uint8_t { value, pointer, collection };

struct AttributeInfo {
    unsigned number;  // 0 for an attribute without one
    std::string_view name;
    AttributeKind kind;
    std::string_view type;
    void (*read)(Object const& object, AttributeSink& sink);
};

struct TypeInfo {
    std::string_view name;
    std::span<AttributeInfo const> attributes;
    std::span<std::string_view const> operations;
};

// Sends a value to a sink. Types of other namespaces bring a reflectValue() of their own.
// For bool alone: a pointer is not converted to it.
template <std::same_as<bool> T>
void reflectValue(AttributeSink& sink, T value) {
    sink.boolean(value);
}
template <std::signed_integral T>
void reflectValue(AttributeSink& sink, T value) {
    sink.number(static_cast<std::int64_t>(value));
}
template <std::unsigned_integral T>
requires(!std::same_as<T, bool>) void reflectValue(AttributeSink& sink, T value) {
    sink.number(static_cast<std::uint64_t>(value));
}
inline void reflectValue(AttributeSink& sink, std::string_view value) {
    sink.text(value);
}
inline void reflectValue(AttributeSink& sink, Vanta::String const& value) {
    sink.text(value.view());
}
inline void reflectValue(AttributeSink& sink, Vanta::Bytes const& value) {
    sink.text(Vanta::hexText(value.view()));
}
inline void reflectValue(AttributeSink& sink, Plexa::IntfId const& value) {
    sink.text(value.stringValue());
}
template <class T>
void reflectValue(AttributeSink& sink, Vanta::Ptr<T> const& value) {
    sink.object(value.get());
}
// A collection: a list of pairs of key and value, or of keys for a set.
template <class Key, class Value, class Hash>
void reflectValue(AttributeSink& sink, Collection<Key, Value, Hash> const& collection) {
    sink.listStart();
    for (auto const& entry : collection) {
        if constexpr (std::is_empty_v<Value>) {
            reflectValue(sink, entry.key);
        } else {
            sink.listStart();
            reflectValue(sink, entry.key);
            reflectValue(sink, entry.value);
            sink.listEnd();
        }
    }
    sink.listEnd();
}

namespace Detail {
template <class Class, class Result>
Class classOfMember(Result (Class::*)() const);
template <class Class, class Result>
Class classOfMember(Result (Class::*)() const noexcept);
}  // namespace Detail

// A row of a type's table, read through a const accessor:
//     Kel::attribute<&PktGenCfgData::req>(130, "req", "PacketTracer::RequestId")
template <auto accessor>
constexpr AttributeInfo attribute(unsigned number, std::string_view name, std::string_view type,
                                  AttributeKind kind = AttributeKind::value) {
    return {number, name, kind, type, [](Object const& object, AttributeSink& sink) {
                using Class = decltype(Detail::classOfMember(accessor));
                reflectValue(sink, (static_cast<Class const&>(object).*accessor)());
            }};
}

}  // namespace Kel
