#include "Bridging/VlanId.h"

#include <gtest/gtest.h>

#include <unordered_set>

#include "Kel/Error.h"

namespace {

using Bridging::VlanId;

std::string refusal(std::uint16_t value) {
    try {
        static_cast<void>(VlanId(value));
    } catch (Kel::RangeError const& error) {
        EXPECT_EQ(error.typeName(), "Bridging::VlanId");
        EXPECT_EQ(error.attribute(), "value");
        return error.what();
    }
    return "none";
}

TEST(VlanId, TakesTheNumbersOfVlans) {
    EXPECT_EQ(VlanId(1).value(), 1);
    EXPECT_EQ(VlanId(4094).value(), 4094);
}

TEST(VlanId, RefusesZero) {
    EXPECT_EQ(refusal(0), "Bridging::VlanId::value < 1 or > 4094 not allowed");
}

TEST(VlanId, RefusesTheReservedNumberAboveTheLastVlan) {
    EXPECT_EQ(refusal(4095), "Bridging::VlanId::value < 1 or > 4094 not allowed");
}

TEST(VlanId, RefusesTheLargestNumber) {
    EXPECT_EQ(refusal(65535), "Bridging::VlanId::value < 1 or > 4094 not allowed");
}

TEST(VlanId, IsOrderedByItsValue) {
    EXPECT_LT(VlanId(9), VlanId(10));
    EXPECT_EQ(VlanId(9), VlanId(9));
}

TEST(VlanId, IsAKeyOfHashedCollections) {
    std::unordered_set<VlanId> const vlans{VlanId(10), VlanId(10), VlanId(11)};
    EXPECT_EQ(vlans.size(), 2U);
    EXPECT_TRUE(vlans.contains(VlanId(11)));
}

}  // namespace
