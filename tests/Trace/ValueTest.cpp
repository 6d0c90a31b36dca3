#include "Trace/Value.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "Vanta/String.h"

namespace Fruit {

enum class Kind { apple, pear };

Trace::Value traceValue(Kind kind) {
    return Trace::Value::text(kind == Kind::apple ? "apple" : "pear");
}

struct Named {
    std::string name;
};

Trace::Value traceValue(Named const& named) {
    return Trace::Value::written(&named, [](void const* object, char* to, std::size_t room) {
        auto const& text = static_cast<Named const*>(object)->name;
        auto const length = std::min(room, text.size());
        std::memcpy(to, text.data(), length);
        return length;
    });
}

}  // namespace Fruit

namespace Trace {
namespace {

template <class T>
std::string textOf(T const& value) {
    std::string text;
    traceValue(value).appendTo(text);
    return text;
}

TEST(Value, PrintsTruthValuesAsWords) {
    EXPECT_EQ("true", textOf(true));
    EXPECT_EQ("false", textOf(false));
}

TEST(Value, PrintsEveryIntegerTypeInDecimal) {
    EXPECT_EQ("65", textOf(std::uint8_t{65}));
    EXPECT_EQ("-65", textOf(std::int8_t{-65}));
    EXPECT_EQ("65", textOf('A'));
    EXPECT_EQ("65535", textOf(std::uint16_t{65535}));
    EXPECT_EQ("-1", textOf(std::int32_t{-1}));
    EXPECT_EQ("4294967295", textOf(std::uint32_t{4294967295}));
}

TEST(Value, PrintsTheLimitsOfTheLargestIntegers) {
    EXPECT_EQ("18446744073709551615", textOf(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_EQ("-9223372036854775808", textOf(std::numeric_limits<std::int64_t>::min()));
}

TEST(Value, PrintsTextsOfEveryKind) {
    EXPECT_EQ("literal", textOf("literal"));
    EXPECT_EQ("view", textOf(std::string_view("view")));
    EXPECT_EQ("string", textOf(std::string("string")));
    EXPECT_EQ("shared", textOf(Vanta::String("shared")));
    EXPECT_EQ("", textOf(Vanta::String()));
}

TEST(Value, PrintsANullTextAsNothing) {
    char const* const none = nullptr;
    EXPECT_EQ("", textOf(none));
}

TEST(Value, KeepsANulInsideAText) {
    EXPECT_EQ(std::string("a\0b", 3), textOf(std::string_view("a\0b", 3)));
}

TEST(Value, PrintsAnInterfaceByItsName) {
    EXPECT_EQ("Ethernet1/2.7", textOf(*Plexa::IntfId::fromName("Ethernet1/2.7")));
    EXPECT_EQ("", textOf(Plexa::IntfId()));
}

TEST(Value, TakesOtherTypesByAFunctionBesideThem) {
    EXPECT_EQ("pear", textOf(Fruit::Kind::pear));
}

TEST(Value, RunsAWriterWhenItIsAppended) {
    EXPECT_EQ("Ethernet1/2", textOf(Fruit::Named{"Ethernet1/2"}));
}

TEST(Value, GivesAWriterTheStatedRoom) {
    EXPECT_EQ(Value::writtenRoom, textOf(Fruit::Named{std::string(1000, 'x')}).size());
}

TEST(Value, DoesNotTrustAWritersLength) {
    auto const boastful = Value::written(nullptr, [](void const*, char* to, std::size_t room) {
        std::memset(to, 'x', room);
        return room + 1000;
    });
    EXPECT_EQ(Value::writtenRoom, textOf(boastful).size());
}

}  // namespace
}  // namespace Trace
