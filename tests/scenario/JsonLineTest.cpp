#include "scenario/JsonLine.h"

#include <gtest/gtest.h>

namespace Scenario {
namespace {

using namespace std::string_literals;

// The reason for which a line is refused; empty if it is not.
std::string refusal(std::string_view line) {
    try {
        parseJsonLine(line);
        return {};
    } catch (Refusal const& refused) {
        EXPECT_FALSE(std::string_view(refused.what()).empty());
        return refused.what();
    }
}

LineValue valueOf(std::string const& text) {
    return parseJsonLine(R"({"a":)" + text + "}").at(0).value;
}

TEST(JsonLine, GivesTheMembersInTheirOrder) {
    auto const members = parseJsonLine(R"( {"b":true,"a":"x"} )");
    ASSERT_EQ(2U, members.size());
    EXPECT_EQ("b", members[0].name);
    EXPECT_TRUE(std::get<bool>(members[0].value.value));
    EXPECT_EQ("x", std::get<std::string>(members[1].value.value));
}

TEST(JsonLine, MayBeEmptyOfMembers) {
    EXPECT_TRUE(parseJsonLine("{}").empty());
}

TEST(JsonLine, TakesTabsAndACarriageReturnForBlanks) {
    EXPECT_EQ("", refusal("\t{\"a\" : 1}\r"));
}

TEST(JsonLine, MustBeAnObject) {
    EXPECT_NE("", refusal("[]"));
    EXPECT_NE("", refusal("1"));
    EXPECT_NE("", refusal(R"("do")"));
    EXPECT_NE("", refusal("null"));
}

TEST(JsonLine, MustNotBeOfBlanksAlone) {
    EXPECT_NE("", refusal(" "));
    EXPECT_NE("", refusal("\r"));
    EXPECT_NE("", refusal("\t"));
}

TEST(JsonLine, EndsWithItsObject) {
    EXPECT_NE("", refusal("{} {}"));
    EXPECT_NE("", refusal("{},"));
    EXPECT_NE("", refusal("{}#"));
    EXPECT_NE("", refusal("{}\0"s));
    EXPECT_NE("", refusal("{}\0x"s));
}

TEST(JsonLine, FollowsTheGrammarToTheLetter) {
    for (auto const* line :
         {"{",           "{\"a\"}",         "{\"a\":}",          "{\"a\":1,}",
          "{,}",         "{a:1}",           "{'a':1}",           "{\"a\":01}",
          "{\"a\":+1}",  "{\"a\":.5}",      "{\"a\":1.}",        "{\"a\":0x1}",
          "{\"a\":NaN}", "{\"a\":True}",    "{\"a\":[1,]}",      "{\"a\":1}// x",
          "/**/{}",      "{\"a\":\"\\x\"}", "{\"a\":\"\\u12\"}", "{\"a\":\"\t\"}"}) {
        EXPECT_NE("", refusal(line)) << line;
    }
}

TEST(JsonLine, RefusesARepeatedMember) {
    EXPECT_NE("", refusal(R"({"a":1,"a":1})"));
    EXPECT_NE("", refusal(R"({"a":1,"\u0061":1})"));
    EXPECT_NE("", refusal(R"({"l":[{"a":1,"a":1}]})"));
}

TEST(JsonLine, TakesTheSameMemberInDifferentObjects) {
    EXPECT_EQ("", refusal(R"({"a":[{"a":1},{"a":1}]})"));
}

TEST(JsonLine, RefusesAByteOrderMark) {
    EXPECT_NE("", refusal("\xef\xbb\xbf{}"));
}

TEST(JsonLine, RefusesInvalidUtf8) {
    for (auto const* text : {"\x80", "\xff", "\xc3", "\xc0\x80", "\xe0\x80\x80", "\xed\xa0\x80",
                             "\xf4\x90\x80\x80", "\xf8\x88\x80\x80\x80", "\xe2\x82"}) {
        EXPECT_NE("", refusal("{\"a\":\""s + text + "\"}"));
        EXPECT_NE("", refusal("{\""s + text + "\":1}"));
    }
    EXPECT_NE("", refusal("{}\xc3\xa9"));
}

TEST(JsonLine, TakesEveryValidUtf8) {
    for (auto const* text : {"\x7f", "\xc2\x80", "\xed\x9f\xbf", "\xee\x80\x80", "\xef\xbb\xbf",
                             "\xef\xbf\xbf", "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf"}) {
        EXPECT_EQ(text, std::get<std::string>(valueOf("\""s + text + '"').value));
    }
}

TEST(JsonLine, RefusesUnpairedSurrogates) {
    for (auto const* text : {R"("\ud800")", R"("\udc00")", R"("\ud800x")", R"("\ud800\n")",
                             R"("\ud800\ud800")", R"("\udc00\ud800")"}) {
        EXPECT_NE("", refusal(R"({"a":)"s + text + "}")) << text;
    }
    EXPECT_NE("", refusal(R"({"\ud800":1})"));
}

TEST(JsonLine, JoinsPairedSurrogates) {
    EXPECT_EQ("\xf0\x9f\x98\x80", std::get<std::string>(valueOf(R"("\ud83d\uDE00")").value));
}

TEST(JsonLine, KeepsAZeroCharacterThatIsEscaped) {
    EXPECT_EQ("a\0b"s, std::get<std::string>(valueOf(R"("a\u0000b")").value));
}

TEST(JsonLine, KeepsWholeNumbersExactly) {
    EXPECT_EQ(18446744073709551615U,
              std::get<std::uint64_t>(valueOf("18446744073709551615").value));
    EXPECT_EQ(-1, std::get<std::int64_t>(valueOf("-1").value));
    EXPECT_EQ(0, std::get<std::int64_t>(valueOf("-0").value));
}

TEST(JsonLine, TellsOtherNumbersFromWholeOnes) {
    for (auto const* number : {"1.0", "1e2", "1E2", "-0.0", "18446744073709551616",
                               "-9223372036854775809", "100000000000000000000000000"}) {
        EXPECT_EQ(number, std::get<LineValue::OtherNumber>(valueOf(number).value).text);
    }
}

TEST(JsonLine, RefusesANumberBeyondEveryRange) {
    EXPECT_NE("", refusal(R"({"a":1e999})"));
}

TEST(JsonLine, ReadsObjectsInAList) {
    auto const list = std::get<LineValue::List>(valueOf(R"([{"b":1},{},2])").value);
    ASSERT_EQ(3U, list.size());
    EXPECT_EQ(1U, std::get<LineValue::Members>(list[0].value).size());
    EXPECT_EQ(2U, std::get<std::uint64_t>(list[2].value));
}

TEST(JsonLine, IsNeverDeep) {
    EXPECT_NE("", refusal(R"({"a":[[[1]]]})"));
    EXPECT_NE("", refusal(R"({"a":)"s + std::string(1'000'000, '[')));
}

TEST(JsonLine, NamesTheColumnOfASyntaxError) {
    EXPECT_EQ(0U, refusal(R"({"do":tru})").find("column 10: syntax error"))
        << refusal(R"({"do":tru})");
}

}  // namespace
}  // namespace Scenario
