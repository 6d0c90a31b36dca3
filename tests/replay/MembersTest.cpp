#include "replay/Members.h"

#include <gtest/gtest.h>

namespace Replay {
namespace {

// Reads one member of a line; the line's members live as long as this.
struct Line {
    explicit Line(std::string_view text) : parsed(parseJsonLine(text)), members(parsed) {}

    JsonValue::Members parsed;
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

std::uint64_t number(std::string_view line) {
    return Line(line).members.number("a", 2, 5);
}

TEST(Members, GiveNumbersWithinTheirRange) {
    EXPECT_EQ(2U, number(R"({"a":2})"));
    EXPECT_EQ(5U, number(R"({"a":5})"));
}

TEST(Members, RefuseNumbersOutOfRangeWithNameAndRange) {
    EXPECT_THROW(number(R"({"a":1})"), Refusal);
    EXPECT_EQ("the member \"a\" must be a whole number from 2 to 5, not 6",
              refusal(R"({"a":6})", [](Members& m) { m.number("a", 2, 5); }));
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
    EXPECT_EQ(0U, Line(R"({"a":-0})").members.number("a", 0, 5));
    EXPECT_EQ(0, Line(R"({"a":-0})").members.signedNumber("a", -5, 5));
    EXPECT_THROW(number(R"({"a":-0})"), Refusal);
}

TEST(Members, GiveSignedNumbersWithinTheirRange) {
    auto const read = [](std::string_view line) {
        return Line(line).members.signedNumber("a", -3, 3);
    };
    EXPECT_EQ(-3, read(R"({"a":-3})"));
    EXPECT_EQ(3, read(R"({"a":3})"));
    EXPECT_THROW(read(R"({"a":-4})"), Refusal);
    EXPECT_THROW(read(R"({"a":4})"), Refusal);
    EXPECT_THROW(read(R"({"a":18446744073709551615})"), Refusal);
    EXPECT_THROW(read(R"({"a":0.0})"), Refusal);
}

TEST(Members, FallBackToADefault) {
    Line line("{}");
    EXPECT_EQ(9U, line.members.number("a", 0, 5, 9));
    EXPECT_TRUE(line.members.flag("a", true));
    EXPECT_EQ((std::vector<std::uint8_t>{1}), line.members.bytes("a", {1}));
    std::string_view const words[] = {"x", "y"};
    EXPECT_EQ(1U, line.members.word("a", words, 1));
}

TEST(Members, MustBeThereWithoutADefault) {
    EXPECT_EQ("the member \"a\" is missing", refusal("{}", [](Members& m) { m.text("a"); }));
    EXPECT_THROW(Line("{}").members.flag("a"), Refusal);
    EXPECT_THROW(Line("{}").members.intf("a"), Refusal);
    EXPECT_THROW(Line("{}").members.bytes("a"), Refusal);
}

TEST(Members, ThatAreThereAreNotReplacedByTheirDefault) {
    EXPECT_THROW(Line(R"({"a":null})").members.number("a", 0, 5, 1), Refusal);
    EXPECT_THROW(Line(R"({"a":null})").members.bytes("a", {1}), Refusal);
}

TEST(Members, GiveTruthValuesAndNothingElse) {
    EXPECT_FALSE(Line(R"({"a":false})").members.flag("a", true));
    EXPECT_THROW(Line(R"({"a":0})").members.flag("a"), Refusal);
    EXPECT_THROW(Line(R"({"a":"true"})").members.flag("a"), Refusal);
}

TEST(Members, GiveInterfacesByName) {
    EXPECT_EQ("Lag3.100", Line(R"({"a":"Lag3.100"})").members.intf("a").stringValue());
    EXPECT_TRUE(Line(R"({"a":""})").members.intf("a").empty());
    for (auto const* line :
         {R"({"a":"Ethernet"})", R"({"a":"Ethernet01"})", R"({"a":"ethernet1"})",
          R"({"a":"Ethernet65536"})", R"({"a":"Ethernet1/2/3/4"})", R"({"a":"Lag0"})",
          R"({"a":"Ethernet1.0"})", R"({"a":"Vlan4095"})", R"({"a":"cpu"})", R"({"a":" Cpu"})",
          R"({"a":"Cpu\u0000"})", R"({"a":1})"}) {
        EXPECT_THROW(Line(line).members.intf("a"), Refusal) << line;
    }
}

TEST(Members, GiveListsOfInterfaces) {
    EXPECT_TRUE(Line(R"({"a":[]})").members.intfs("a").empty());
    EXPECT_EQ(2U, Line(R"({"a":["Cpu",""]})").members.intfs("a").size());
    EXPECT_THROW(Line(R"({"a":"Cpu"})").members.intfs("a"), Refusal);
    EXPECT_THROW(Line(R"({"a":["cpu"]})").members.intfs("a"), Refusal);
}

TEST(Members, GiveListsOfNumbers) {
    EXPECT_EQ((std::vector<std::uint64_t>{1, 2}),
              Line(R"({"a":[1,2]})").members.numbers("a", 0, 2));
    EXPECT_THROW(Line(R"({"a":[3]})").members.numbers("a", 0, 2), Refusal);
    EXPECT_THROW(Line(R"({"a":[1.0]})").members.numbers("a", 0, 2), Refusal);
}

TEST(Members, GiveBytesOfHexadecimalDigitsInEitherCase) {
    EXPECT_EQ((std::vector<std::uint8_t>{0x0a, 0xfF}), Line(R"({"a":"0AfF"})").members.bytes("a"));
    EXPECT_TRUE(Line(R"({"a":""})").members.bytes("a").empty());
    for (auto const* line : {R"({"a":"0"})", R"({"a":"0g"})", R"({"a":"0x01"})", R"({"a":" 1"})",
                             R"({"a":"01 "})", R"({"a":10})"}) {
        EXPECT_THROW(Line(line).members.bytes("a"), Refusal) << line;
    }
}

TEST(Members, GiveThePositionOfAWord) {
    std::string_view const words[] = {"x", "y"};
    EXPECT_EQ(1U, Line(R"({"a":"y"})").members.word("a", words));
    EXPECT_EQ("the member \"a\" must be one of \"x\" \"y\", not \"z\"",
              refusal(R"({"a":"z"})", [&](Members& m) { m.word("a", words); }));
    EXPECT_THROW(Line(R"({"a":1})").members.word("a", words), Refusal);
}

TEST(Members, GiveObjectsOneByOne) {
    std::string names;
    Line(R"({"a":[{"n":"x"},{"n":"y"}]})").members.objects("a", 2, [&](Members& m) {
        names += m.text("n");
    });
    EXPECT_EQ("xy", names);
}

TEST(Members, RefuseListsThatAreNotOfObjects) {
    auto const nothing = [](Members&) {};
    EXPECT_THROW(Line(R"({"a":[{},{},{}]})").members.objects("a", 2, nothing), Refusal);
    EXPECT_THROW(Line(R"({"a":[1]})").members.objects("a", 2, nothing), Refusal);
    EXPECT_THROW(Line(R"({"a":{}})").members.objects("a", 2, nothing), Refusal);
    EXPECT_THROW(Line(R"({"a":[{"n":1}]})").members.objects("a", 2, nothing), Refusal);
}

TEST(Members, ThatNobodyTookAreUnknown) {
    Line line(R"({"a":1,"b":2})");
    line.members.number("a", 0, 5);
    EXPECT_THROW(line.members.end(), Refusal);
    line.members.number("b", 0, 5);
    EXPECT_NO_THROW(line.members.end());
}

TEST(Members, AreShownEscapedInMessages) {
    EXPECT_EQ(R"(unknown member "a\nb")", refusal(R"({"a\nb":1})", [](Members& m) { m.end(); }));
}

}  // namespace
}  // namespace Replay
