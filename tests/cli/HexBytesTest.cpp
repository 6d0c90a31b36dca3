#include "cli/HexBytes.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/UsageError.h"

namespace Cli {
namespace {

std::string problem(std::string_view text) {
    try {
        parseHexBytes(text, "--hex");
    } catch (UsageError const& error) {
        return error.what();
    }
    return "";
}

using Bytes = std::vector<std::uint8_t>;

TEST(HexBytes, TwoDigitsAreAByteInEitherCase) {
    EXPECT_EQ(parseHexBytes("00ffAb9f", "--hex"), (Bytes{0x00, 0xff, 0xab, 0x9f}));
}

TEST(HexBytes, SeparatorsMayStandBetweenBytes) {
    EXPECT_EQ(parseHexBytes(" 01:02-03.04 05\n06 ", "--hex"), (Bytes{1, 2, 3, 4, 5, 6}));
}

TEST(HexBytes, NoTextIsNoBytes) {
    EXPECT_TRUE(parseHexBytes("", "--hex").empty());
}

TEST(HexBytes, HalfAByteIsNamedByItsPlace) {
    EXPECT_EQ(problem("010"),
              "--hex: character 4: expected two hexadecimal digits a byte, got the end");
    EXPECT_EQ(problem("0 1"),
              "--hex: character 2: expected two hexadecimal digits a byte, got ' '");
}

TEST(HexBytes, AnyOtherCharacterIsNamedByItsPlace) {
    EXPECT_EQ(problem("01g2"),
              "--hex: character 3: expected two hexadecimal digits a byte, got 'g'");
    EXPECT_EQ(problem("0x01"),
              "--hex: character 2: expected two hexadecimal digits a byte, got 'x'");
}

}  // namespace
}  // namespace Cli
