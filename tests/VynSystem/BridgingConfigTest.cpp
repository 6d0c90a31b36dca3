#include "Bridging/Config.h"

#include <gtest/gtest.h>

#include "VynSystem/Table.h"

namespace {

using Bridging::VlanConfig;
using Bridging::VlanId;

struct BridgingConfig : testing::Test {
    Vanta::Ptr<Bridging::Config> config = Bridging::Config::ConfigIs();
};

TEST_F(BridgingConfig, GivesAVlanThatIsNotConfiguredAsNull) {
    EXPECT_EQ(config->vlanConfig(VlanId(10)), nullptr);
}

TEST_F(BridgingConfig, MakesAVlanWithoutMembersOnce) {
    auto const vlan = config->vlanConfigIs(VlanId(10));
    EXPECT_EQ(vlan->vlanId(), VlanId(10));
    EXPECT_TRUE(vlan->intf().empty());
    EXPECT_FALSE(vlan->internal());
    EXPECT_EQ(config->vlanConfigIs(VlanId(10)), vlan);
    EXPECT_EQ(config->vlanConfig(VlanId(10)), vlan);
}

TEST_F(BridgingConfig, ForgetsAVlanOnceAndLeavesItToItsHolders) {
    auto const vlan = config->vlanConfigIs(VlanId(10));
    EXPECT_TRUE(config->vlanConfigDel(VlanId(10)));
    EXPECT_FALSE(config->vlanConfigDel(VlanId(10)));
    EXPECT_EQ(vlan->refCount(), 1U);
}

TEST_F(BridgingConfig, KeepsVlansInTheOrderInWhichTheyCame) {
    config->vlanConfigIs(VlanId(20));
    config->vlanConfigIs(VlanId(10));
    EXPECT_EQ(tableRow(*config, 130), "vlanConfig=[[20 object][10 object]]");
}

TEST(VlanConfig, CountsAMemberThatIsNamedTwiceOnce) {
    auto const vlan = VlanConfig::VlanConfigIs(VlanId(10));
    vlan->intfIs(intf("Ethernet2"));
    vlan->intfIs(intf("Lag1"));
    vlan->intfIs(intf("Ethernet2"));
    EXPECT_EQ(tableRow(*vlan, 131), "intf=[Ethernet2 Lag1]");
}

TEST(VlanConfig, ForgetsAMemberOnce) {
    auto const vlan = VlanConfig::VlanConfigIs(VlanId(10));
    vlan->intfIs(intf("Ethernet2"));
    EXPECT_TRUE(vlan->intfDel(intf("Ethernet2")));
    EXPECT_FALSE(vlan->intfDel(intf("Ethernet2")));
}

TEST(VlanConfig, IsInternalWhenItIsMarked) {
    auto const vlan = VlanConfig::VlanConfigIs(VlanId(4094));
    vlan->internalIs(true);
    EXPECT_EQ(tableRow(*vlan, 130), "vlanId=4094");
    EXPECT_EQ(tableRow(*vlan, 132), "internal=true");
}

}  // namespace
