#include "scenario/JsonText.h"

#include <gtest/gtest.h>

#include <limits>

namespace Scenario {
namespace {

using namespace std::string_view_literals;

TEST(JsonText, EscapesWithTwoCharactersWhereJsonHasThem) {
    EXPECT_EQ(R"("\b\f\n\r\t\"\\")", jsonText("\b\f\n\r\t\"\\"));
}

TEST(JsonText, EscapesOtherControlCharactersInLowerCase) {
    EXPECT_EQ(R"("\u0000\u0001\u000b\u001f")", jsonText("\0\x01\x0b\x1f"sv));
}

TEST(JsonText, LeavesEverythingElseAsItIs) {
    EXPECT_EQ("\"/<>&'\x7f\xc3\xa9\xf0\x9f\x98\x80\"",
              jsonText("/<>&'\x7f\xc3\xa9\xf0\x9f\x98\x80"));
}

TEST(JsonWriter, SeparatesMembersAndEntriesWithoutBlanks) {
    std::string out;
    JsonWriter json(out);
    json.beginObject().member("a", 1).name("b").beginList().number(2).text("x").beginList();
    json.endList().endList().member("c", true).name("d").beginObject().endObject();
    json.name("e").null().member("f", "g").endObject();
    EXPECT_EQ(R"({"a":1,"b":[2,"x",[]],"c":true,"d":{},"e":null,"f":"g"})", out);
}

TEST(JsonWriter, WritesNumbersOfEveryWidthInDecimal) {
    std::string out;
    JsonWriter json(out);
    json.beginList()
        .number(std::uint8_t{200})
        .number(std::numeric_limits<std::uint64_t>::max())
        .number(std::numeric_limits<std::int32_t>::min())
        .endList();
    EXPECT_EQ("[200,18446744073709551615,-2147483648]", out);
}

TEST(JsonWriter, WritesBytesInLowerCase) {
    std::string out;
    std::uint8_t const bytes[] = {0x00, 0xab, 0x1f};
    JsonWriter(out).hex(bytes);
    EXPECT_EQ(R"("00ab1f")", out);
}

}  // namespace
}  // namespace Scenario
