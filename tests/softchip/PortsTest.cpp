#include "softchip/Ports.h"

#include <gtest/gtest.h>

namespace SoftChip {
namespace {

TEST(Ports, BelongToThePipeOfTheirUpperBits) {
    EXPECT_EQ(pipeOf(0), 0u);
    EXPECT_EQ(pipeOf(127), 0u);
    EXPECT_EQ(pipeOf(128), 1u);
    EXPECT_EQ(pipeOf(maxDevicePort), 3u);
}

TEST(Ports, HaveAnIndexInTheirPipe) {
    EXPECT_EQ(indexInPipe(127), 127);
    EXPECT_EQ(indexInPipe(128), 0);
    EXPECT_EQ(indexInPipe(maxDevicePort), 71);
}

TEST(LogicalPort, TellsPortsLagsAndNothingApart) {
    EXPECT_TRUE(LogicalPort().isNone());
    EXPECT_NE(LogicalPort::port(0), LogicalPort());
    EXPECT_NE(LogicalPort::port(1), LogicalPort::lag(1));
    EXPECT_EQ(LogicalPort::lag(1).number(), 1);
    EXPECT_TRUE(LogicalPort::lag(1).isLag());
    EXPECT_TRUE(LogicalPort::port(1).isPort());
}

}  // namespace
}  // namespace SoftChip
