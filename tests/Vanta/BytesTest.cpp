#include "Vanta/Bytes.h"

#include <gtest/gtest.h>

namespace {

using Vanta::Bytes;

TEST(Bytes, SharesItsContentsWithItsCopies) {
    Bytes const packet{1, 2, 3};
    Bytes const copy = packet;
    EXPECT_EQ(copy.data(), packet.data());
}

TEST(Bytes, ComparesByteByByte) {
    EXPECT_EQ((Bytes{1, 2}), (Bytes{1, 2}));
    EXPECT_FALSE((Bytes{1, 2}) == (Bytes{1, 3}));
    EXPECT_FALSE((Bytes{1, 2}) == (Bytes{1, 2, 0}));
}

TEST(Bytes, PrintsAsLowerCaseHex) {
    EXPECT_EQ(Vanta::hexText(Bytes{0x0a, 0xFF, 0x00}.view()), "0aff00");
}

}  // namespace
