#include "softchip/Faults.h"

#include <gtest/gtest.h>

namespace SoftChip {
namespace {

TEST(FaultWindow, MeetsTheNthEventAndThoseBehindIt) {
    FaultWindow window(3, 2);
    std::vector<bool> met;
    for (int i = 0; i < 6; ++i) {
        met.push_back(window.meets());
    }
    EXPECT_EQ(met, (std::vector<bool>{false, false, true, true, false, false}));
    EXPECT_TRUE(window.over());
}

TEST(FaultWindow, OfNoTimesMeetsNothing) {
    EXPECT_FALSE(FaultWindow(1, 0).meets());
}

TEST(Faults, LeaveEveryCallAloneAtFirst) {
    Faults faults;
    EXPECT_FALSE(faults.failure(SdkFunction::genOnePkt));
    EXPECT_FALSE(faults.digest(1));
}

TEST(Faults, CountTheCallsOfTheirFunctionAlone) {
    Faults faults;
    faults.failIs(SdkFunction::genOnePkt, 7, 2);
    EXPECT_FALSE(faults.failure(SdkFunction::genOnePkt));
    EXPECT_FALSE(faults.failure(SdkFunction::disableAppId));
    EXPECT_EQ(faults.failure(SdkFunction::genOnePkt), 7);
}

TEST(Faults, OfAFunctionTakeThePlaceOfEarlierOnes) {
    Faults faults;
    faults.failIs(SdkFunction::genOnePkt, 7, 1, 5);
    faults.failIs(SdkFunction::genOnePkt, 8, 2, 1);
    EXPECT_FALSE(faults.failure(SdkFunction::genOnePkt));
    EXPECT_EQ(faults.failure(SdkFunction::genOnePkt), 8);
    EXPECT_FALSE(faults.failure(SdkFunction::genOnePkt));
}

TEST(Faults, OfDigestsCountTheirPacketIdAlone) {
    Faults faults;
    faults.digestIs({.fate = DigestFate::lost, .pktId = 5, .nth = 2});
    EXPECT_FALSE(faults.digest(5));
    EXPECT_FALSE(faults.digest(6));
    EXPECT_EQ(faults.digest(5)->fate, DigestFate::lost);
    EXPECT_FALSE(faults.digest(5));
}

TEST(Faults, OfDigestsStandBesideEachOtherAndTheFirstDecides) {
    Faults faults;
    faults.digestIs({.fate = DigestFate::lost, .nth = 2});
    faults.digestIs({.fate = DigestFate::doubled, .nth = 1, .times = 3});
    EXPECT_EQ(faults.digest(1)->fate, DigestFate::doubled);
    EXPECT_EQ(faults.digest(2)->fate, DigestFate::lost);
    EXPECT_EQ(faults.digest(3)->fate, DigestFate::doubled);
    EXPECT_FALSE(faults.digest(4));
}

TEST(Faults, AreCleared) {
    Faults faults;
    faults.failIs(SdkFunction::notifyAck, 7);
    faults.digestIs({.fate = DigestFate::lost});
    faults.clear();
    EXPECT_FALSE(faults.failure(SdkFunction::notifyAck));
    EXPECT_FALSE(faults.digest(1));
}

}  // namespace
}  // namespace SoftChip
