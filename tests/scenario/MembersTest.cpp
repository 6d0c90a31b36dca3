#include "scenario/Members.h"

#include <gtest/gtest.h>

#include <array>

namespace Scenario {
namespace {

// Reads one member of a line; the line's members live as long as this.
struct Line {
    explicit Line(std::string_view text) : parsed(parseJsonLine(text)), members(parsed) {}

    LineValue::Members parsed;
    Members members;
};

template <class Read>
std::string refusal(std::string_view line, Read const& read) {
    Line held(line);
    try {
        read(held.members);
        return {};
    } catch (Refusal const& refused) {
        return refused.what();
    }
}

// A member "a" as a value of that type, which must be there.
template <class T>
T must(std::string_view line, auto... range) {
    T value{};
    Line(line).members.must("a", value, range...);
    return value;
}

std::uint64_t number(std::string_view line) {
    return must<std::uint64_t>(line, 2, 5);
}

enum class Word : std::uint8_t { x, y };
constexpr std::array<std::string_view, 2> words{"x", "y"};

Word word(std::string_view line) {
    Word value{};
    Line(line).members.mustWord("a", value, words);
    return value;
}

TEST(Members, GiveNumbersWithinTheirRange) {
    EXPECT_EQ(2U, number(R"({"a":2})"));
    EXPECT_EQ(5U, number(R"({"a":5})"));
}

TEST(Members, RefuseNumbersOutOfRangeWithNameAndRange) {
    EXPECT_THROW(number(R"({"a":1})"), Refusal);
    EXPECT_EQ("the member \"a\" must be a whole number from 2 to 5, not 6",
              refusal(R"({"a":6})", [](Members& m) {
                  std::uint64_t value = 0;
                  m.must("a", value, 2, 5);
              }));
}

TEST(Members, RefuseNumbersThatAreNotWhole) {
    EXPECT_THROW(number(R"({"a":3.0})"), Refusal);
    EXPECT_THROW(number(R"({"a":3e0})"), Refusal);
    EXPECT_THROW(number(R"({"a":99999999999999999999})"), Refusal);
}

TEST(Members, RefuseOtherTypesForANumber) {
    for (auto const* line : {R"({"a":"3"})", R"({"a":null})", R"({"a":true})", R"({"a":[3]})",
                             R"({"a":{}})", R"({"a":-3})"}) {
        EXPECT_THROW(number(line), Refusal) << line;
    }
}

TEST(Members, TakeMinusZeroForZero) {
    EXPECT_EQ(0U, must<std::uint64_t>(R"({"a":-0})", 0, 5));
    EXPECT_EQ(0, must<std::int32_t>(R"({"a":-0})"));
    EXPECT_THROW(number(R"({"a":-0})"), Refusal);
}

TEST(Members, GiveSignedNumbersWithinTheirRange) {
    EXPECT_EQ(-2147483648, must<std::int32_t>(R"({"a":-2147483648})"));
    EXPECT_EQ(2147483647, must<std::int32_t>(R"({"a":2147483647})"));
    for (auto const* line : {R"({"a":-2147483649})", R"({"a":2147483648})",
                             R"({"a":18446744073709551615})", R"({"a":0.0})"}) {
        EXPECT_THROW(must<std::int32_t>(line), Refusal) << line;
    }
}

TEST(Members, FallBackToADefault) {
    Line line("{}");
    std::uint64_t number = 9;
    bool flag = true;
    Vanta::Bytes bytes{1};
    Word word = Word::y;
    line.members.may("a", number, 0, 5);
    line.members.may("a", flag);
    line.members.may("a", bytes);
    line.members.mayWord("a", word, words);
    EXPECT_EQ(9U, number);
    EXPECT_TRUE(flag);
    EXPECT_EQ(Vanta::Bytes{1}, bytes);
    EXPECT_EQ(Word::y, word);
}

TEST(Members, MustBeThereWithoutADefault) {
    EXPECT_EQ("the member \"a\" is missing", refusal("{}", [](Members& m) {
                  Vanta::String value;
                  m.must("a", value);
              }));
    EXPECT_THROW(must<bool>("{}"), Refusal);
    EXPECT_THROW(must<Plexa::IntfId>("{}"), Refusal);
    EXPECT_THROW(must<Vanta::Bytes>("{}"), Refusal);
}

TEST(Members, ThatAreThereAreNotReplacedByTheirDefault) {
    std::uint64_t number = 1;
    EXPECT_THROW(Line(R"({"a":null})").members.may("a", number, 0, 5), Refusal);
    Vanta::Bytes bytes{1};
    EXPECT_THROW(Line(R"({"a":null})").members.may("a", bytes), Refusal);
}

TEST(Members, GiveTruthValuesAndNothingElse) {
    bool flag = true;
    Line(R"({"a":false})").members.may("a", flag);
    EXPECT_FALSE(flag);
    EXPECT_THROW(must<bool>(R"({"a":0})"), Refusal);
    EXPECT_THROW(must<bool>(R"({"a":"true"})"), Refusal);
}

TEST(Members, GiveInterfacesByName) {
    EXPECT_EQ("Lag3.100", must<Plexa::IntfId>(R"({"a":"Lag3.100"})").stringValue());
    EXPECT_TRUE(must<Plexa::IntfId>(R"({"a":""})").empty());
    for (auto const* line :
         {R"({"a":"Ethernet"})", R"({"a":"Ethernet01"})", R"({"a":"ethernet1"})",
          R"({"a":"Ethernet65536"})", R"({"a":"Ethernet1/2/3/4"})", R"({"a":"Lag0"})",
          R"({"a":"Ethernet1.0"})", R"({"a":"Vlan4095"})", R"({"a":"cpu"})", R"({"a":" Cpu"})",
          R"({"a":"Cpu\u0000"})", R"({"a":1})"}) {
        EXPECT_THROW(must<Plexa::IntfId>(line), Refusal) << line;
    }
}

TEST(Members, GiveListsOfInterfaces) {
    using Intfs = std::vector<Plexa::IntfId>;
    EXPECT_TRUE(must<Intfs>(R"({"a":[]})").empty());
    EXPECT_EQ(2U, must<Intfs>(R"({"a":["Cpu",""]})").size());
    EXPECT_THROW(must<Intfs>(R"({"a":"Cpu"})"), Refusal);
    EXPECT_THROW(must<Intfs>(R"({"a":["cpu"]})"), Refusal);
}

TEST(Members, GiveOneNumberOrAList) {
    auto const read = [](std::string_view line) {
        std::vector<std::uint64_t> values;
        Line(line).members.oneOrList("a", "b", values);
        return values;
    };
    EXPECT_EQ((std::vector<std::uint64_t>{1, 2}), read(R"({"b":[1,2]})"));
    EXPECT_EQ(std::vector<std::uint64_t>{3}, read(R"({"a":3})"));
    EXPECT_THROW(read(R"({"b":[-3]})"), Refusal);
    EXPECT_THROW(read(R"({"b":[1.0]})"), Refusal);
    EXPECT_THROW(read(R"({"a":[1]})"), Refusal);
    EXPECT_THROW(read("{}"), Refusal);
    EXPECT_THROW(read(R"({"a":1,"b":[1]})"), Refusal);
}

TEST(Members, GiveBytesOfHexadecimalDigitsInEitherCase) {
    EXPECT_EQ((Vanta::Bytes{0x0a, 0xfF}), must<Vanta::Bytes>(R"({"a":"0AfF"})"));
    EXPECT_TRUE(must<Vanta::Bytes>(R"({"a":""})").empty());
    for (auto const* line : {R"({"a":"0"})", R"({"a":"0g"})", R"({"a":"0x01"})", R"({"a":" 1"})",
                             R"({"a":"01 "})", R"({"a":10})"}) {
        EXPECT_THROW(must<Vanta::Bytes>(line), Refusal) << line;
    }
}

TEST(Members, GiveThePositionOfAWord) {
    EXPECT_EQ(Word::y, word(R"({"a":"y"})"));
    EXPECT_EQ("the member \"a\" must be one of \"x\" \"y\", not \"z\"",
              refusal(R"({"a":"z"})", [&](Members& m) {
                  Word value{};
                  m.mustWord("a", value, words);
              }));
    EXPECT_THROW(word(R"({"a":1})"), Refusal);
}

struct Named {
    Vanta::String name;
};
void members(auto& io, Named& named) {
    io.must("n", named.name);
}

std::vector<Named> named(std::string_view line) {
    std::vector<Named> values;
    Line(line).members.entries("a", values, 2);
    return values;
}

TEST(Members, GiveObjectsOneByOne) {
    auto const values = named(R"({"a":[{"n":"x"},{"n":"y"}]})");
    ASSERT_EQ(2U, values.size());
    EXPECT_EQ("x", values[0].name);
    EXPECT_EQ("y", values[1].name);
}

TEST(Members, RefuseListsThatAreNotOfObjects) {
    EXPECT_THROW(named(R"({"a":[{"n":""},{"n":""},{"n":""}]})"), Refusal);
    EXPECT_THROW(named(R"({"a":[1]})"), Refusal);
    EXPECT_THROW(named(R"({"a":{}})"), Refusal);
    EXPECT_THROW(named(R"({"a":[{"n":"","o":1}]})"), Refusal);
}

TEST(Members, ThatNobodyTookAreUnknown) {
    Line line(R"({"a":1,"b":2})");
    std::uint64_t value = 0;
    line.members.must("a", value);
    EXPECT_THROW(line.members.end(), Refusal);
    line.members.must("b", value);
    EXPECT_NO_THROW(line.members.end());
}

TEST(Members, AreShownEscapedInMessages) {
    EXPECT_EQ(R"(unknown member "a\nb")", refusal(R"({"a\nb":1})", [](Members& m) { m.end(); }));
}

}  // namespace
}  // namespace Scenario
