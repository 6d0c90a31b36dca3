#include "Net/VlanTag.h"

#include <gtest/gtest.h>

namespace {

using Net::VlanTag;

TEST(VlanTag, IsReadWithWhatStandsBehindTheVlan) {
    EXPECT_EQ(VlanTag::fromText("20"), (VlanTag{0x8100, 20, 0, false}));
    EXPECT_EQ(VlanTag::fromText("0"), (VlanTag{0x8100, 0, 0, false}));
    EXPECT_EQ(VlanTag::fromText("4094,dei"), (VlanTag{0x8100, 4094, 0, true}));
    EXPECT_EQ(VlanTag::fromText("100,priority=5,tpid=0x88a8,dei"), (VlanTag{0x88a8, 100, 5, true}));
    EXPECT_EQ(VlanTag::fromText("0x64,tpid=37120,priority=7"), (VlanTag{0x9100, 100, 7, false}));
}

TEST(VlanTag, RefusesOtherText) {
    for (auto const* text : {"", "none", "4095", "-1", "20,", ",20", "20,,dei", "20,dei,",
                             "20,priority=8", "20,priority", "20,priority=", "20,tpid=0x10000",
                             "20,tpid", "20,dei=1", "20,de", "20, dei", "20,vlan=30", "20 "}) {
        EXPECT_FALSE(VlanTag::fromText(text)) << text;
    }
}

TEST(VlanTag, IsToldWithNothingLeftOut) {
    EXPECT_EQ((VlanTag{.vlan = 20}).text(), "20 tpid 0x8100 priority 0");
    EXPECT_EQ((VlanTag{0x88a8, 4094, 7, true}).text(), "4094 tpid 0x88a8 priority 7 drop-eligible");
}

TEST(VlanTag, LaysItsControlInformationOutAsInAFrame) {
    EXPECT_EQ((VlanTag{.vlan = 0x123}).control(), 0x0123);
    EXPECT_EQ((VlanTag{.vlan = 1, .priority = 5}).control(), 0xa001);
    EXPECT_EQ((VlanTag{.vlan = 1, .dropEligible = true}).control(), 0x1001);
}

TEST(VlanTag, IsTheSameBehindItsWords) {
    for (unsigned control = 0; control <= 0xffff; ++control) {
        auto const word = static_cast<std::uint16_t>(control);
        auto const tag = VlanTag::fromWords(0x88a8, word);
        ASSERT_EQ(tag.control(), word);
        ASSERT_EQ(tag.tpid, 0x88a8);
        ASSERT_EQ(tag.vlan, control % 4096);
    }
}

}  // namespace
