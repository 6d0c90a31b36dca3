#include "softchip/Addresses.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>

namespace SoftChip {
namespace {

TEST(MacAddress, ReadsAndWritesItsText) {
    EXPECT_EQ(MacAddress::fromText("02:1A:0:0:0:ff")->text(), "02:1a:00:00:00:ff");
    EXPECT_EQ(MacAddress::fromText("02-00-00-00-00-01")->value, 0x020000000001u);
}

TEST(MacAddress, RefusesOtherText) {
    for (auto const* text : {"", "02:00:00:00:00", "02:00:00:00:00:01:02", "02:00:00:00:00:1g",
                             "002:00:00:00:00:01", "02:00:00:00:00:", ":::::"}) {
        EXPECT_FALSE(MacAddress::fromText(text)) << text;
    }
}

TEST(MacAddress, KnowsMulticastAndBroadcast) {
    EXPECT_TRUE(MacAddress{0x01005e000001}.isMulticast());
    EXPECT_TRUE(MacAddress{0xffffffffffff}.isBroadcast());
    EXPECT_FALSE(MacAddress{0xffffffffffff - 1}.isBroadcast());
    EXPECT_FALSE(MacAddress{0x020000000001}.isMulticast());
}

TEST(MacAddress, IsMadeOfTheFirstSixBytes) {
    std::array<std::uint8_t, 7> const bytes{1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(MacAddress::fromBytes(bytes).text(), "01:02:03:04:05:06");
}

TEST(IpAddress, ReadsAndWritesBothFamilies) {
    EXPECT_EQ(IpAddress::fromText("10.1.2.3"), IpAddress::v4(0x0a010203));
    EXPECT_EQ(IpAddress::fromText("2001:db8::1"), IpAddress::v6(0x20010db800000000, 1));
    EXPECT_EQ(IpAddress::v4(0x0a010203).text(), "10.1.2.3");
    EXPECT_EQ(IpAddress::v6(0x20010db800000000, 1).text(), "2001:db8::1");
}

TEST(IpAddress, RefusesOtherText) {
    using namespace std::string_view_literals;
    for (auto text :
         {""sv, "10.1.2"sv, "10.1.2.256"sv, "2001:db8"sv, "10.1.2.3 "sv, "10.1.2.3\0"sv}) {
        EXPECT_FALSE(IpAddress::fromText(text)) << text;
    }
}

TEST(IpAddress, OfDifferentFamiliesAreNeverEqual) {
    EXPECT_NE(IpAddress::v4(0), IpAddress::v6(0, 0));
}

TEST(IpAddress, MasksAtEveryLength) {
    auto const all = IpAddress::v6(~std::uint64_t{0}, ~std::uint64_t{0});
    for (unsigned length = 0; length <= 128; ++length) {
        auto const masked = all.masked(length);
        EXPECT_EQ(std::popcount(masked.hi) + std::popcount(masked.lo), static_cast<int>(length));
        EXPECT_LE(std::countr_one(masked.hi), length >= 64 ? 64 : 0);
    }
}

TEST(IpAddress, KnowsMulticast) {
    EXPECT_TRUE(IpAddress::fromText("224.0.0.1")->isMulticast());
    EXPECT_TRUE(IpAddress::fromText("239.255.255.255")->isMulticast());
    EXPECT_FALSE(IpAddress::fromText("240.0.0.1")->isMulticast());
    EXPECT_TRUE(IpAddress::fromText("ff02::1")->isMulticast());
    EXPECT_FALSE(IpAddress::fromText("fe80::1")->isMulticast());
}

TEST(Prefix, ReadsAndWritesItsText) {
    EXPECT_EQ(Prefix::fromText("10.0.0.0/8")->text(), "10.0.0.0/8");
    EXPECT_EQ(Prefix::fromText("10.0.0.1")->text(), "10.0.0.1/32");
    EXPECT_EQ(Prefix::fromText("::/0")->text(), "::/0");
    EXPECT_EQ(Prefix::fromText("2001:db8::/127")->text(), "2001:db8::/127");
}

TEST(Prefix, RefusesOtherText) {
    for (auto const* text : {"10.0.0.0/33", "::/129", "10.0.0.1/8", "10.0.0.0/", "10.0.0.0/8 ",
                             "/8", "10.0.0.0/-1", "10.0.0.0/8/8"}) {
        EXPECT_FALSE(Prefix::fromText(text)) << text;
    }
}

TEST(Prefix, ContainsItsAddressesAndNoOthers) {
    auto const prefix = *Prefix::fromText("10.128.0.0/9");
    EXPECT_TRUE(prefix.contains(*IpAddress::fromText("10.255.255.255")));
    EXPECT_FALSE(prefix.contains(*IpAddress::fromText("10.127.255.255")));
    EXPECT_FALSE(Prefix::fromText("0.0.0.0/0")->contains(*IpAddress::fromText("::")));
}

}  // namespace
}  // namespace SoftChip
