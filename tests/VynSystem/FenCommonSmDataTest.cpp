#include "Fen/FenCommonSmData.h"

#include <gtest/gtest.h>

#include "VynSystem/Table.h"

namespace {

struct FenCommonSmData : testing::Test {
    Vanta::Ptr<Fen::FenCommonSmData> lags = Fen::FenCommonSmData::FenCommonSmDataIs();
};

TEST_F(FenCommonSmData, KnowsWhichInterfacesAreLags) {
    lags->lagToPortIs(intf("Lag1"));
    EXPECT_TRUE(lags->lagToPort().has(intf("Lag1")));
    EXPECT_FALSE(lags->lagToPort().has(intf("Lag2")));
}

TEST_F(FenCommonSmData, CountsALagOnce) {
    lags->lagToPortIs(intf("Lag1"));
    lags->lagToPortIs(intf("Lag1"));
    EXPECT_EQ(tableRow(*lags, 130), "lagToPort=[Lag1]");
    EXPECT_TRUE(lags->lagToPortDel(intf("Lag1")));
    EXPECT_FALSE(lags->lagToPortDel(intf("Lag1")));
}

TEST_F(FenCommonSmData, TellsTheLagOfAMember) {
    lags->portToLagIs(intf("Ethernet1"), intf("Lag1"));
    lags->portToLagIs(intf("Ethernet2"), intf("Lag1"));
    lags->portToLagIs(intf("Ethernet1"), intf("Lag2"));
    EXPECT_EQ(tableRow(*lags, 131), "portToLag=[[Ethernet1 Lag2][Ethernet2 Lag1]]");
}

TEST_F(FenCommonSmData, ForgetsAMemberOnce) {
    lags->portToLagIs(intf("Ethernet1"), intf("Lag1"));
    EXPECT_TRUE(lags->portToLagDel(intf("Ethernet1")));
    EXPECT_FALSE(lags->portToLagDel(intf("Ethernet1")));
}

TEST_F(FenCommonSmData, KeepsItsMembersWhenTheirLagGoes) {
    lags->lagToPortIs(intf("Lag1"));
    lags->portToLagIs(intf("Ethernet1"), intf("Lag1"));
    lags->lagToPortDel(intf("Lag1"));
    EXPECT_EQ(lags->portToLag().get(intf("Ethernet1")), intf("Lag1"));
}

}  // namespace
