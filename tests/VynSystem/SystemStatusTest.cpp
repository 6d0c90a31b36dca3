#include "VynSystem/SystemStatus.h"

#include <gtest/gtest.h>

#include "VynSystem/Table.h"

namespace {

using VynPortTypes::PortIndex;
using VynSystem::PortInfo;

struct SystemStatus : testing::Test {
    Vanta::Ptr<VynSystem::SystemStatus> status = VynSystem::SystemStatus::SystemStatusIs();
};

TEST_F(SystemStatus, TellsWhereAnInterfaceEntersTheChip) {
    status->portInfoIs(intf("Ethernet1"), PortInfo(1, PortIndex(5)));
    auto const* const found = status->portInfo().find(intf("Ethernet1"));
    ASSERT_NE(found, nullptr);
    EXPECT_TRUE(found->value.isEq(PortInfo(1, PortIndex(5))));
    EXPECT_EQ(status->portInfo().find(intf("Ethernet2")), nullptr);
}

TEST_F(SystemStatus, KeepsAPortsPlaceWhenItsInformationChanges) {
    status->portInfoIs(intf("Ethernet1"), PortInfo(0, PortIndex(1)));
    status->portInfoIs(intf("Ethernet2"), PortInfo(0, PortIndex(2)));
    status->portInfoIs(intf("Ethernet1"), PortInfo(0, PortIndex(9)));
    EXPECT_EQ(tableRow(*status, 130), "portInfo=[[Ethernet1[0 9]][Ethernet2[0 2]]]");
}

TEST_F(SystemStatus, ForgetsAPortsInformationOnce) {
    status->portInfoIs(intf("Ethernet1"), PortInfo());
    EXPECT_TRUE(status->portInfoDel(intf("Ethernet1")));
    EXPECT_FALSE(status->portInfoDel(intf("Ethernet1")));
    EXPECT_TRUE(status->portInfo().empty());
}

TEST_F(SystemStatus, TellsTheInterfaceOfAPortIndex) {
    status->portToIntfIdIs(PortIndex(128), intf("Ethernet7"));
    EXPECT_EQ(status->portToIntfId().get(PortIndex(128)), intf("Ethernet7"));
    EXPECT_FALSE(status->portToIntfId().has(PortIndex(127)));
}

TEST_F(SystemStatus, ReplacesTheInterfaceOfAPortIndex) {
    status->portToIntfIdIs(PortIndex(0), intf("Ethernet1"));
    status->portToIntfIdIs(PortIndex(0), intf("Ethernet2"));
    EXPECT_EQ(tableRow(*status, 131), "portToIntfId=[[0 Ethernet2]]");
}

TEST_F(SystemStatus, ForgetsAPortIndexOnce) {
    status->portToIntfIdIs(PortIndex(0), intf("Ethernet1"));
    EXPECT_TRUE(status->portToIntfIdDel(PortIndex(0)));
    EXPECT_FALSE(status->portToIntfIdDel(PortIndex(0)));
}

}  // namespace
