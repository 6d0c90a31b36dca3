#include "Net/EtherType.h"

#include <gtest/gtest.h>

namespace {

namespace EtherType = Net::EtherType;

TEST(EtherType, IsReadByItsName) {
    EXPECT_EQ(EtherType::fromText("ipv4"), 0x0800);
    EXPECT_EQ(EtherType::fromText("ipv6"), 0x86dd);
    EXPECT_EQ(EtherType::fromText("arp"), 0x0806);
}

TEST(EtherType, IsReadAsUpToFourHexadecimalDigits) {
    EXPECT_EQ(EtherType::fromText("0x88cc"), 0x88cc);
    EXPECT_EQ(EtherType::fromText("0x88CC"), 0x88cc);
    EXPECT_EQ(EtherType::fromText("0xffff"), 0xffff);
    EXPECT_EQ(EtherType::fromText("0x0"), 0);
}

TEST(EtherType, RefusesOtherText) {
    for (auto const* text : {"", "0x", "88cc", "2048", "0x10000", "0x00800", "0X88cc", "0x88cg",
                             "0x-1", "0x88cc ", "IPv4", "ipv", "vlan"}) {
        EXPECT_FALSE(EtherType::fromText(text)) << text;
    }
}

TEST(EtherType, IsShownWithFourDigits) {
    EXPECT_EQ(EtherType::text(0x88cc), "0x88cc");
    EXPECT_EQ(EtherType::text(0x0800), "0x0800");
    EXPECT_EQ(EtherType::text(0), "0x0000");
}

TEST(EtherType, KnowsTags) {
    EXPECT_TRUE(EtherType::isTag(0x8100));
    EXPECT_TRUE(EtherType::isTag(0x88a8));
    EXPECT_FALSE(EtherType::isTag(0x0800));
    EXPECT_FALSE(EtherType::isTag(0x9100));
}

TEST(EtherType, KnowsMpls) {
    EXPECT_TRUE(EtherType::isMpls(0x8847));
    EXPECT_TRUE(EtherType::isMpls(0x8848));
    EXPECT_FALSE(EtherType::isMpls(0x8846));
    EXPECT_FALSE(EtherType::isMpls(0x8849));
}

TEST(EtherType, IsTheSameBehindItsText) {
    for (unsigned type = 0; type <= 0xffff; ++type) {
        auto const value = static_cast<std::uint16_t>(type);
        ASSERT_EQ(EtherType::fromText(EtherType::text(value)), value);
    }
}

}  // namespace
