#include "VynPortTypes/PortIndex.h"

#include <gtest/gtest.h>

#include "Kel/Error.h"

namespace {

using VynPortTypes::PortIndex;

std::string refusal(std::uint16_t value) {
    try {
        static_cast<void>(PortIndex(value));
    } catch (Kel::RangeError const& error) {
        return error.what();
    }
    return "none";
}

constexpr char const* rangeText =
    "VynPortTypes::PortIndex::value < VynPortTypes::PortIndex::min or > "
    "VynPortTypes::PortIndex::invalid not allowed";

TEST(PortIndex, IsInvalidWhenFresh) {
    EXPECT_EQ(PortIndex().value(), 456);
    EXPECT_EQ(PortIndex(), PortIndex(PortIndex::invalid));
}

TEST(PortIndex, TakesEveryValueUpToTheInvalidOne) {
    EXPECT_EQ(PortIndex(0).value(), 0);
    EXPECT_EQ(PortIndex(455).value(), 455);
    EXPECT_EQ(PortIndex(456).value(), 456);
}

TEST(PortIndex, RefusesTheValueAboveTheInvalidOne) {
    EXPECT_EQ(refusal(457), rangeText);
}

TEST(PortIndex, RefusesTheLargestNumber) {
    EXPECT_EQ(refusal(65535), rangeText);
}

TEST(PortIndex, NamesItselfInTheErrorOfItsRange) {
    try {
        static_cast<void>(PortIndex(511));
        FAIL();
    } catch (Kel::RangeError const& error) {
        EXPECT_EQ(error.typeName(), "VynPortTypes::PortIndex");
        EXPECT_EQ(error.attribute(), "value");
    }
}

TEST(PortIndex, IsOrderedByItsValue) {
    EXPECT_LT(PortIndex(9), PortIndex(10));
    EXPECT_LT(PortIndex(455), PortIndex());
}

}  // namespace
