#include "VynSlice/ChipStatus.h"

#include <gtest/gtest.h>

#include "VynSystem/Table.h"

namespace {

struct ChipStatus : testing::Test {
    Vanta::Ptr<VynSlice::ChipStatus> status = VynSlice::ChipStatus::ChipStatusIs();
};

TEST_F(ChipStatus, KnowsTheChipsPortsToTheCpu) {
    status->cpuIntfIs(intf("Ethernet33"));
    EXPECT_TRUE(status->isCpuIntf(intf("Ethernet33")));
    EXPECT_FALSE(status->isCpuIntf(intf("Ethernet1")));
}

TEST_F(ChipStatus, DoesNotTakeTheCpusOwnInterfaceForAPort) {
    EXPECT_FALSE(status->isCpuIntf(intf("Cpu")));
}

TEST_F(ChipStatus, ForgetsAPortOnce) {
    status->cpuIntfIs(intf("Ethernet33"));
    status->cpuIntfIs(intf("Ethernet33"));
    EXPECT_EQ(tableRow(*status, 130), "cpuIntf=[Ethernet33]");
    EXPECT_TRUE(status->cpuIntfDel(intf("Ethernet33")));
    EXPECT_FALSE(status->cpuIntfDel(intf("Ethernet33")));
    EXPECT_FALSE(status->isCpuIntf(intf("Ethernet33")));
}

}  // namespace
