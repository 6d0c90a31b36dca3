#include "Net/IpAddress.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <bit>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Net::Family;
using Net::IpAddress;

struct Form {
    char const* text;
    char const* shown;
};

struct IpForm : testing::TestWithParam<Form> {};

TEST_P(IpForm, IsReadAndShownInOneWay) {
    auto const address = IpAddress::fromText(GetParam().text);
    ASSERT_TRUE(address);
    EXPECT_EQ(address->text(), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(Forms, IpForm,
                         testing::Values(Form{"10.0.0.1", "10.0.0.1"},
                                         Form{"255.255.255.255", "255.255.255.255"},
                                         Form{"2001:DB8:0:0::1", "2001:db8::1"}, Form{"::", "::"},
                                         Form{"::ffff:10.0.0.1", "::ffff:10.0.0.1"},
                                         Form{"0000:0000:0000:0000:0000:ffff:255.255.255.255",
                                              "::ffff:255.255.255.255"}));

struct NoIp : testing::TestWithParam<std::string_view> {};

TEST_P(NoIp, IsRefused) {
    EXPECT_FALSE(IpAddress::fromText(GetParam())) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Texts, NoIp,
                         testing::Values("", "10.0.0", "10.0.0.256", "10.0.0.1.2", "010.0.0.1",
                                         "10.0.0.0/8", "10.0.0.1 ", " 10.0.0.1", "10.0.0.-1", ":",
                                         "1::2::3", "12345::", "fe80::1%eth0", "::1/64", "2001:db8",
                                         "10.0.0.1.10.0.0.1.10.0.0.1.10.0.0.1.10.0.0.1.10.0.0.1",
                                         std::string_view("10.0.0.1\0", 9)));

TEST(IpAddress, HoldsAnIpv4AddressInTheUpperHalfOfTheFirstWord) {
    EXPECT_EQ(IpAddress::fromText("10.1.2.3"), IpAddress::v4(0x0a010203));
    EXPECT_EQ(IpAddress::v4(0x0a010203).hi, 0x0a01020300000000U);
    EXPECT_EQ(IpAddress::v4(0x0a010203).lo, 0U);
    EXPECT_EQ(IpAddress::v4(0x0a010203).asV4(), 0x0a010203U);
    EXPECT_EQ(IpAddress::v4(0x0a010203).text(), "10.1.2.3");
}

TEST(IpAddress, HoldsAnIpv6AddressInTwoWords) {
    EXPECT_EQ(IpAddress::fromText("2001:db8::1"), IpAddress::v6(0x20010db800000000, 1));
    EXPECT_EQ(IpAddress::v6(0x20010db800000000, 1).text(), "2001:db8::1");
}

TEST(IpAddress, TellsItsFamily) {
    EXPECT_TRUE(IpAddress::fromText("0.0.0.0")->isV4());
    EXPECT_TRUE(IpAddress::fromText("::")->isV6());
    EXPECT_EQ(IpAddress::fromText("0.0.0.0")->octets().size(), 4U);
    EXPECT_EQ(IpAddress::fromText("::")->octets().size(), 16U);
}

TEST(IpAddress, OfOneFamilyNeverEqualsOneOfTheOther) {
    EXPECT_NE(IpAddress::fromText("0.0.0.0"), IpAddress::fromText("::"));
    EXPECT_LT(IpAddress::fromText("255.0.0.0"), IpAddress::fromText("::"));
}

TEST(IpAddress, MasksAtEveryLength) {
    auto const all = IpAddress::v6(~std::uint64_t{0}, ~std::uint64_t{0});
    for (unsigned length = 0; length <= 128; ++length) {
        auto const masked = all.masked(length);
        EXPECT_EQ(std::popcount(masked.hi) + std::popcount(masked.lo), static_cast<int>(length));
        EXPECT_LE(std::countr_one(masked.hi), length >= 64 ? 64 : 0);
    }
}

TEST(IpAddress, KnowsGroups) {
    EXPECT_TRUE(IpAddress::fromText("224.0.0.1")->isMulticast());
    EXPECT_TRUE(IpAddress::fromText("239.255.255.255")->isMulticast());
    EXPECT_FALSE(IpAddress::fromText("223.255.255.255")->isMulticast());
    EXPECT_FALSE(IpAddress::fromText("240.0.0.0")->isMulticast());
    EXPECT_TRUE(IpAddress::fromText("ff02::1")->isMulticast());
    EXPECT_FALSE(IpAddress::fromText("fe80::1")->isMulticast());
}

TEST(IpAddress, KnowsTheBroadcastAddress) {
    EXPECT_TRUE(IpAddress::fromText("255.255.255.255")->isBroadcast());
    EXPECT_FALSE(IpAddress::fromText("10.255.255.255")->isBroadcast());
    EXPECT_FALSE(IpAddress::fromText("ffff:ffff::")->isBroadcast());
}

TEST(IpAddress, KnowsTheUnspecifiedAddresses) {
    EXPECT_TRUE(IpAddress::fromText("0.0.0.0")->isUnspecified());
    EXPECT_TRUE(IpAddress::fromText("::")->isUnspecified());
    EXPECT_FALSE(IpAddress::fromText("::1")->isUnspecified());
    EXPECT_FALSE(IpAddress::fromText("1::")->isUnspecified());
}

TEST(IpAddress, KnowsLoopbackAddresses) {
    EXPECT_TRUE(IpAddress::fromText("127.0.0.0")->isLoopback());
    EXPECT_TRUE(IpAddress::fromText("127.255.255.255")->isLoopback());
    EXPECT_FALSE(IpAddress::fromText("126.255.255.255")->isLoopback());
    EXPECT_FALSE(IpAddress::fromText("128.0.0.0")->isLoopback());
    EXPECT_TRUE(IpAddress::fromText("::1")->isLoopback());
    EXPECT_FALSE(IpAddress::fromText("::2")->isLoopback());
    EXPECT_FALSE(IpAddress::fromText("1::1")->isLoopback());
    EXPECT_FALSE(IpAddress::fromText("7f00::")->isLoopback());
}

TEST(IpAddress, KnowsIpv6sLinkLocalAddressesAlone) {
    EXPECT_TRUE(IpAddress::fromText("fe80::1")->isLinkLocalV6());
    EXPECT_TRUE(IpAddress::fromText("febf:ffff::")->isLinkLocalV6());
    EXPECT_FALSE(IpAddress::fromText("fe7f:ffff::")->isLinkLocalV6());
    EXPECT_FALSE(IpAddress::fromText("fec0::")->isLinkLocalV6());
    EXPECT_FALSE(IpAddress::fromText("169.254.0.1")->isLinkLocalV6());
    EXPECT_FALSE(IpAddress::fromText("254.128.0.0")->isLinkLocalV6());
}

TEST(IpAddress, PrintsItsText) {
    std::ostringstream out;
    out << *IpAddress::fromText("2001:db8:0:0::1");
    EXPECT_EQ(out.str(), "2001:db8::1");
}

IpAddress anyAddress() {
    // Runs of zeros are what IPv6's text form leaves out.
    auto const anyWord = [] {
        return *rc::gen::arbitrary<std::uint64_t>() & *rc::gen::arbitrary<std::uint64_t>();
    };
    auto const hi = anyWord();
    return *rc::gen::arbitrary<bool>() ? IpAddress::v4(static_cast<std::uint32_t>(hi))
                                       : IpAddress::v6(hi, anyWord());
}

RC_GTEST_PROP(IpAddress, IsTheSameBehindItsTextAndItsOctets, ()) {
    auto const address = anyAddress();
    RC_ASSERT(IpAddress::fromText(address.text()) == address);
    auto const octets = address.octets();
    RC_ASSERT(IpAddress::fromOctets(address.family, octets) == address);
    RC_ASSERT(octets[octets.size() - 1] ==
              static_cast<std::uint8_t>(address.isV4() ? address.asV4() : address.lo));
}

RC_GTEST_PROP(IpAddress, IsOrderedByFamilyAndThenAsItsOctetsAre, ()) {
    auto const a = anyAddress();
    auto const b = anyAddress();
    auto const key = [](IpAddress const& address) {
        auto const octets = address.octets();
        return std::pair(address.isV6(), std::vector(octets.begin(), octets.end()));
    };
    RC_ASSERT((a < b) == (key(a) < key(b)));
    RC_ASSERT((a == b) == (key(a) == key(b)));
}

}  // namespace
