#include "softchip/Phase0.h"

#include <gtest/gtest.h>

#include <vector>

namespace SoftChip {
namespace {

TEST(Phase0, CarriesEveryDevicePort) {
    for (DevicePort port = 0; port <= maxDevicePort; ++port) {
        EXPECT_EQ(decodePhase0(encodePhase0(port)), port);
    }
}

TEST(Phase0, HasTheStatedLayout) {
    Phase0Bytes const expected{0xb7, 1, 0x01, 0x2c, 0, 0, 0x12, 0xbf};
    EXPECT_EQ(encodePhase0(300), expected);
}

TEST(Phase0, OfAPortThatThereIsNotDoesNotDecode) {
    EXPECT_FALSE(decodePhase0(encodePhase0(456)));
    EXPECT_FALSE(decodePhase0(encodePhase0(511)));
}

TEST(Phase0, IsRefusedAtEveryOtherLength) {
    auto const good = encodePhase0(5);
    std::vector<std::uint8_t> bytes(good.begin(), good.end());
    bytes.push_back(0);
    EXPECT_FALSE(decodePhase0(bytes));
    for (std::size_t size = 0; size < phase0Size; ++size) {
        EXPECT_FALSE(decodePhase0(std::span(bytes).first(size)));
    }
}

TEST(Phase0, IsRefusedWithAnyBitChanged) {
    for (unsigned bit = 0; bit < phase0Size * 8; ++bit) {
        auto bytes = encodePhase0(300);
        bytes[bit / 8] ^= static_cast<std::uint8_t>(1 << bit % 8);
        EXPECT_FALSE(decodePhase0(bytes)) << bit;
    }
}

}  // namespace
}  // namespace SoftChip
