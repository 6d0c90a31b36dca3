#include "PacketTracer/Addresses.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>

namespace {

using PacketTracer::IpAddress;
using PacketTracer::MacAddress;

struct Form {
    char const* text;
    char const* shown;
};

struct MacForm : testing::TestWithParam<Form> {};

TEST_P(MacForm, IsReadAndShownInOneWay) {
    auto const address = MacAddress::fromText(GetParam().text);
    ASSERT_TRUE(address);
    EXPECT_EQ(address->text(), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(Forms, MacForm,
                         testing::Values(Form{"00:1c:73:00:00:01", "00:1c:73:00:00:01"},
                                         Form{"AA-BB-cc-dd-EE-ff", "aa:bb:cc:dd:ee:ff"},
                                         Form{"1:2:3:4:5:f", "01:02:03:04:05:0f"}));

struct NoMac : testing::TestWithParam<std::string_view> {};

TEST_P(NoMac, IsRefused) {
    EXPECT_FALSE(MacAddress::fromText(GetParam())) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Texts, NoMac,
                         testing::Values("", "00", "0:1:2:3:4", "0:1:2:3:4:5:6",
                                         "0:1:2:3:4:", ":1:2:3:4:5", "0:1:2:3:4:g", "0:1:2:3:4:555",
                                         "0:1:2:3:4:005", "0:1:2:3:4:-5", "0:1-2:3:4:5",
                                         "0:1:2:3:4:5 ", "0x0:1:2:3:4:5", "001c73000001",
                                         "::::::", std::string_view("0:1:2:3:4:5\0", 12)));

TEST(MacAddress, OfAllZerosIsTheDefault) {
    EXPECT_EQ(MacAddress().text(), "00:00:00:00:00:00");
}

TEST(MacAddress, IsAGroupByTheLowestBitOfTheFirstOctet) {
    EXPECT_TRUE(MacAddress::broadcast().isGroup());
    EXPECT_TRUE(MacAddress({0x01, 0, 0x5e, 0, 0, 1}).isGroup());
    EXPECT_FALSE(MacAddress({0xfe, 0xff, 0xff, 0xff, 0xff, 0xff}).isGroup());
}

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
                                         Form{"::ffff:10.0.0.1", "::ffff:10.0.0.1"}));

struct NoIp : testing::TestWithParam<std::string_view> {};

TEST_P(NoIp, IsRefused) {
    EXPECT_FALSE(IpAddress::fromText(GetParam())) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Texts, NoIp,
                         testing::Values("", "10.0.0", "10.0.0.256", "10.0.0.1.2", "010.0.0.1",
                                         "10.0.0.0/8", "10.0.0.1 ", " 10.0.0.1", "10.0.0.-1", ":",
                                         "1::2::3", "12345::", "fe80::1%eth0", "::1/64",
                                         std::string_view("10.0.0.1\0", 9)));

TEST(IpAddress, TellsItsVersion) {
    EXPECT_TRUE(IpAddress::fromText("0.0.0.0")->isV4());
    EXPECT_TRUE(IpAddress::fromText("::")->isV6());
    EXPECT_EQ(IpAddress::fromText("0.0.0.0")->octets().size(), 4U);
    EXPECT_EQ(IpAddress::fromText("::")->octets().size(), 16U);
}

TEST(IpAddress, OfOneVersionNeverEqualsOneOfTheOther) {
    EXPECT_NE(IpAddress::fromText("0.0.0.0"), IpAddress::fromText("::"));
    EXPECT_LT(IpAddress::fromText("255.0.0.0"), IpAddress::fromText("::"));
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
}

TEST(IpAddress, PrintsItsText) {
    std::ostringstream out;
    out << *IpAddress::fromText("2001:db8:0:0::1");
    EXPECT_EQ(out.str(), "2001:db8::1");
}

}  // namespace
