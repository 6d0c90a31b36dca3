#include "Trace/Format.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Trace::Value;

std::string formatted(std::string_view format, std::vector<Value> values) {
    std::string text;
    Trace::appendFormatted(text, format, values);
    return text;
}

template <std::size_t places>
constexpr bool counts(std::string_view text) {
    return Trace::countPlaces(text) == places;
}

// What the constructor of Format compares with the number of values while a statement is compiled.
static_assert(counts<0>(""));
static_assert(counts<0>("getPktCounters: 100% sure %d %"));
static_assert(counts<1>("handleClient:client %s"));
static_assert(counts<3>("%s%%s:%s"));

TEST(Format, PutsTheValuesInOrder) {
    EXPECT_EQ("handleRequest:client:leaf reqId:7 not valid yet",
              formatted("handleRequest:client:%s reqId:%s not valid yet",
                        {Value::text("leaf"), Value::unsignedNumber(7)}));
}

TEST(Format, PrintsAValueThatContainsAPlaceAsItIs) {
    EXPECT_EQ("%s then 1", formatted("%s then %s", {Value::text("%s"), Value::unsignedNumber(1)}));
}

TEST(Format, KeepsAPercentSignThatIsNoPlace) {
    EXPECT_EQ("50% of 3 %", formatted("50% of %s %", {Value::signedNumber(3)}));
}

TEST(Format, AppendsValuesThatHaveNoPlace) {
    EXPECT_EQ("a 1 2", formatted("a", {Value::unsignedNumber(1), Value::unsignedNumber(2)}));
}

TEST(Format, LeavesPlacesWithoutAValueEmpty) {
    EXPECT_EQ("a 1 b ", formatted("a %s b %s", {Value::unsignedNumber(1)}));
}

TEST(Format, AppendsToWhatTheTextHolds) {
    std::string text = "head ";
    Trace::appendFormatted(text, "tail", {});
    EXPECT_EQ("head tail", text);
}

}  // namespace
