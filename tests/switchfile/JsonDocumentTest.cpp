#include "switchfile/JsonDocument.h"

#include <gtest/gtest.h>

namespace SwitchFile {
namespace {

std::string problemOf(std::string_view text) {
    try {
        JsonDocument const document(text, "f.json");
    } catch (InputError const& error) {
        return error.what();
    }
    return "no error";
}

TEST(JsonDocument, KeepsMembersInTheOrderOfTheFile) {
    JsonDocument const document(R"({"b": 1, "a": [true, null, "x"], "c": {}})", "f.json");
    std::string names;
    for (JsonNode const member : document.root()) {
        names += member.name();
    }
    EXPECT_EQ(names, "bac");
    EXPECT_EQ(document.root().member("a").size(), 3U);
    EXPECT_EQ(document.root().member("b").integer(0, 9, "n"), 1);
    EXPECT_EQ(document.root().member("c").size(), 0U);
    EXPECT_FALSE(document.root().member("d"));
}

TEST(JsonDocument, NamesEveryValueByItsPointer) {
    JsonDocument const document(R"({"a/b~": [{}, {"x": [7, 8]}], "c": 1})", "f.json");
    JsonNode const outer = document.root().member("a/b~");
    JsonNode const inner = (++outer.begin())->member("x");
    EXPECT_EQ(document.root().path(), "/");
    EXPECT_EQ((++inner.begin())->path(), "/a~1b~0/1/x/1");
    EXPECT_EQ(document.root().member("c").path(), "/c");
}

TEST(JsonDocument, SyntaxErrorsNameFileLineAndColumn) {
    EXPECT_EQ(problemOf("{\n  \"a\": 1,\n  \"b\" 2\n}").substr(0, 12), "f.json:3:7: ");
    EXPECT_EQ(problemOf("{\n  \"a\": nul}").substr(0, 13), "f.json:2:11: ");
    EXPECT_EQ(problemOf("[\n  \"a\" \"b\\\"c\"]").substr(0, 12), "f.json:2:7: ");
    EXPECT_EQ(problemOf("[1,\n1e999]").substr(0, 12), "f.json:2:1: ");
    EXPECT_EQ(problemOf("").substr(0, 12), "f.json:1:1: ");
    EXPECT_EQ(problemOf("{\"a\": 1}\n]").substr(0, 12), "f.json:2:1: ");
    EXPECT_EQ(problemOf("{\"a\": 1").substr(0, 12), "f.json:1:8: ");
}

TEST(JsonDocument, SyntaxErrorsSayWhatWasExpected) {
    for (char const* text : {"{\"a\" 2}", "[1,]", "[1", "", "{\"a\": nul}", "[\"ab\ncd\"]", "[1] x",
                             "[\"abc", "\xff", "[1e999]"}) {
        EXPECT_NE(problemOf(text).find("expected"), std::string::npos) << problemOf(text);
        EXPECT_EQ(problemOf(text).find("last read"), std::string::npos) << problemOf(text);
        EXPECT_EQ(problemOf(text).find("json.exception"), std::string::npos) << problemOf(text);
    }
    EXPECT_EQ(
        problemOf("{\"a\" 2}"),
        "f.json:1:6: syntax error while parsing object separator - unexpected number literal; "
        "expected ':'");
}

TEST(JsonDocument, SyntaxErrorsAreOneLine) {
    for (char const* text : {"{\"a\n\": 1}", "\n\n", "{\"\x01\": 1}", "[1 \n 2]", "\xff"}) {
        EXPECT_EQ(problemOf(text).find('\n'), std::string::npos) << problemOf(text);
        EXPECT_EQ(problemOf(text).substr(0, 7), "f.json:") << problemOf(text);
    }
}

TEST(JsonDocument, RefusesNumbersBeyondAnyRange) {
    EXPECT_EQ(problemOf("[\n 1e999]").substr(0, 9), "f.json:2:") << problemOf("[\n 1e999]");
}

TEST(JsonDocument, RefusesARepeatedMemberAndNamesIt) {
    EXPECT_EQ(problemOf(R"({"x": [1, {"a": 1, "b": 2, "a": 3}]})"),
              "f.json: /x/1/a: repeated member: expected each name once, got \"a\" again");
}

TEST(JsonDocument, FindsTheOneRepeatedMemberAmongMany) {
    std::string text = "{";
    for (int i = 0; i < 300; ++i) {
        text += "\"" + std::to_string(i) + "\":0,";
    }
    EXPECT_EQ(problemOf(text + "\"x\":0}"), "no error");
    for (int i = 0; i < 300; ++i) {
        std::string const name = std::to_string(i);
        EXPECT_EQ(problemOf(text + "\"" + name + "\":0}"),
                  "f.json: /" + name + ": repeated member: expected each name once, got \"" + name +
                      "\" again");
    }
}

TEST(JsonDocument, SameNameInDifferentObjectsIsNoRepetition) {
    EXPECT_EQ(problemOf(R"({"a": {"a": 1}, "b": {"a": 1}})"), "no error");
}

TEST(JsonDocument, WrongTypesSayWhatWasExpectedAndWhatIsThere) {
    JsonDocument const document(R"({"n": 1.5, "big": 18446744073709551615, "s": "a\nb", "l": []})",
                                "f.json");
    JsonNode const root = document.root();
    auto const what = [](auto&& read) {
        try {
            read();
        } catch (InputError const& error) {
            return std::string(error.what());
        }
        return std::string("no error");
    };
    EXPECT_EQ(what([&] { root.member("n").integer(1, 9, "a number"); }),
              "f.json: /n: expected a number from 1 to 9, got 1.5");
    EXPECT_EQ(what([&] { root.member("big").integer(1, 9, "a number"); }),
              "f.json: /big: expected a number from 1 to 9, got 18446744073709551615");
    EXPECT_EQ(what([&] { root.member("s").boolean(); }),
              "f.json: /s: expected true or false, got \"a\\u000ab\"");
    EXPECT_EQ(what([&] { root.member("l").text(); }), "f.json: /l: expected a text, got a list");
    EXPECT_EQ(what([&] { root.list(); }), "f.json: /: expected a list, got an object");
    EXPECT_EQ(what([&] { root.member("l").object(); }),
              "f.json: /l: expected an object, got a list");
}

TEST(JsonDocument, DeepNestingIsReadWithoutRecursion) {
    std::string const deep(1000000, '[');
    EXPECT_EQ(problemOf(deep + std::string(1000000, ']')), "no error");
    EXPECT_EQ(problemOf(deep).substr(0, 7), "f.json:");
}

TEST(JsonDocument, LongTextsAreShownShortened) {
    JsonDocument const document("[\"" + std::string(59, 'x') + "\xc3\xa9 and more\"]", "f.json");
    EXPECT_EQ(document.root().begin()->shown(), "\"" + std::string(59, 'x') + "...\"");
}

TEST(JsonDocument, ShorteningNeverCutsACharacter) {
    JsonDocument const document("[\"" + std::string(58, 'x') + "\xe2\x82\xac and more\"]",
                                "f.json");
    EXPECT_EQ(document.root().begin()->shown(), "\"" + std::string(58, 'x') + "...\"");
}

TEST(JsonDocument, MissingFileIsNamed) {
    EXPECT_THROW(readWholeFile("/nonexistent/switch.json"), InputError);
    EXPECT_THROW(readWholeFile("/"), InputError);
}

}  // namespace
}  // namespace SwitchFile
