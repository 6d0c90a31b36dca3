#include "switchfile/NumberText.h"

#include <gtest/gtest.h>

namespace SwitchFile {
namespace {

TEST(NumberText, NumbersStayWithinTheirLimits) {
    EXPECT_EQ(parseNumber("1", 1, 4094), 1U);
    EXPECT_EQ(parseNumber("4094", 1, 4094), 4094U);
    EXPECT_FALSE(parseNumber("0", 1, 4094));
    EXPECT_FALSE(parseNumber("4095", 1, 4094));
}

TEST(NumberText, NumbersHaveNoSignBlankOrLeadingZero) {
    for (char const* text : {"", "+7", "-7", " 7", "7 ", "07", "7x", "0x7", "99999999999"}) {
        EXPECT_FALSE(parseNumber(text, 0, 4294967295U)) << text;
    }
    EXPECT_EQ(parseNumber("0", 0, 9), 0U);
}

TEST(NumberText, RangesAscend) {
    EXPECT_EQ(parseRange("17", 1, 4094), (NumberRange{17, 17}));
    EXPECT_EQ(parseRange("17-23", 1, 4094), (NumberRange{17, 23}));
    EXPECT_EQ(parseRange("5-5", 1, 4094), (NumberRange{5, 5}));
    for (char const* text : {"", "0-3", "1-4095", "23-17", "-3", "3-", "1-2-3"}) {
        EXPECT_FALSE(parseRange(text, 1, 4094)) << text;
    }
}

}  // namespace
}  // namespace SwitchFile
