#include "VynSystem/PortInfo.h"

#include <gtest/gtest.h>

namespace {

using VynPortTypes::PortIndex;
using VynSystem::PortInfo;

TEST(PortInfo, HasPipeZeroAndTheInvalidPortWhenFresh) {
    PortInfo const info;
    EXPECT_EQ(info.pipe(), 0);
    EXPECT_EQ(info.port().value(), PortIndex::invalid);
}

TEST(PortInfo, KeepsWhatItIsGiven) {
    PortInfo info(3, PortIndex(71));
    EXPECT_EQ(info.pipe(), 3);
    EXPECT_EQ(info.port(), PortIndex(71));
    info.pipeIs(255);
    info.portIs(PortIndex(456));
    EXPECT_EQ(info.pipe(), 255);
    EXPECT_EQ(info.port(), PortIndex(456));
}

TEST(PortInfo, IsEqualToOneWithTheSamePipeAndPort) {
    EXPECT_TRUE(PortInfo(1, PortIndex(2)).isEq(PortInfo(1, PortIndex(2))));
}

TEST(PortInfo, DiffersByItsPipeAsByItsPort) {
    EXPECT_FALSE(PortInfo(1, PortIndex(2)).isEq(PortInfo(2, PortIndex(2))));
    EXPECT_FALSE(PortInfo(1, PortIndex(2)).isEq(PortInfo(1, PortIndex(3))));
}

}  // namespace
