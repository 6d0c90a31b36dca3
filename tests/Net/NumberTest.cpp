#include "Net/Number.h"

#include <gtest/gtest.h>

namespace {

using Net::numberFromText;
using Net::numberOfDigits;

TEST(Number, HasDigitsOfItsBaseAlone) {
    EXPECT_EQ(numberOfDigits("0", 9), 0U);
    EXPECT_EQ(numberOfDigits("007", 9), 7U);
    EXPECT_EQ(numberOfDigits("Ff", 0xff, 16), 0xffU);
    for (auto const* text : {"", "-1", "+1", " 1", "1 ", "1a", "0x1"}) {
        EXPECT_FALSE(numberOfDigits(text, 100)) << text;
    }
}

TEST(Number, StaysWithinItsLimit) {
    EXPECT_EQ(numberOfDigits("4294967295", 4294967295), 4294967295U);
    EXPECT_FALSE(numberOfDigits("4294967296", 4294967295));
    EXPECT_EQ(numberOfDigits("7", 7), 7U);
    EXPECT_FALSE(numberOfDigits("8", 7));
}

TEST(Number, IsHexadecimalBehind0x) {
    EXPECT_EQ(numberFromText("20", 100), 20U);
    EXPECT_EQ(numberFromText("0x20", 100), 32U);
    EXPECT_EQ(numberFromText("0xFf", 255), 255U);
    for (auto const* text : {"", "0x", "0X20", "0xg", "x20", "ff", "0x0x1"}) {
        EXPECT_FALSE(numberFromText(text, 100)) << text;
    }
}

}  // namespace
