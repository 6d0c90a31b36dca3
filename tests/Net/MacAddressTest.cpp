#include "Net/MacAddress.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>

namespace {

using Net::MacAddress;

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
                                         Form{"02:1A:0:0:0:ff", "02:1a:00:00:00:ff"},
                                         Form{"1:2:3:4:5:f", "01:02:03:04:05:0f"}));

struct NoMac : testing::TestWithParam<std::string_view> {};

TEST_P(NoMac, IsRefused) {
    EXPECT_FALSE(MacAddress::fromText(GetParam())) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Texts, NoMac,
                         testing::Values("", "00", "0:1:2:3:4", "0:1:2:3:4:5:6",
                                         "0:1:2:3:4:", ":1:2:3:4:5", "0:1:2:3:4:g", "0:1:2:3:4:555",
                                         "0:1:2:3:4:005", "0:1:2:3:4:-5", "0:1-2:3:4:5",
                                         "0:1:2:3:4:5 ", "0x0:1:2:3:4:5", "001c73000001", "::::::",
                                         ":::::", "02:00:00:00:00", "02:00:00:00:00:01:02",
                                         "02:00:00:00:00:1g", "002:00:00:00:00:01",
                                         "02:00:00:00:00:", std::string_view("0:1:2:3:4:5\0", 12)));

TEST(MacAddress, OfAllZerosIsTheDefault) {
    EXPECT_EQ(MacAddress().text(), "00:00:00:00:00:00");
}

TEST(MacAddress, HoldsTheOctetThatIsSentFirstInTheHighestBits) {
    EXPECT_EQ(MacAddress::fromText("02-00-00-00-00-01")->value, 0x020000000001U);
    EXPECT_EQ(MacAddress{0x0a0b0c0d0e0f}.octets(),
              (MacAddress::Octets{0x0a, 0x0b, 0x0c, 0x0d, 0x0e, 0x0f}));
}

TEST(MacAddress, IsMadeOfTheFirstSixOctets) {
    std::array<std::uint8_t, 7> const octets{1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(MacAddress::fromOctets(octets).text(), "01:02:03:04:05:06");
}

TEST(MacAddress, IsMulticastByTheLowestBitOfTheFirstOctet) {
    EXPECT_TRUE(MacAddress::broadcast().isMulticast());
    EXPECT_TRUE(MacAddress{0x01005e000001}.isMulticast());
    EXPECT_FALSE(MacAddress{0xfeffffffffff}.isMulticast());
    EXPECT_FALSE(MacAddress{0x020000000001}.isMulticast());
}

TEST(MacAddress, IsBroadcastWithEveryBitSet) {
    EXPECT_TRUE(MacAddress{0xffffffffffff}.isBroadcast());
    EXPECT_FALSE(MacAddress{0xffffffffffff - 1}.isBroadcast());
}

TEST(MacAddress, PrintsItsText) {
    std::ostringstream out;
    out << MacAddress{0x020000000001};
    EXPECT_EQ(out.str(), "02:00:00:00:00:01");
}

MacAddress anyMac() {
    return {*rc::gen::arbitrary<std::uint64_t>() >> 16};
}

RC_GTEST_PROP(MacAddress, IsTheSameBehindItsTextAndItsOctets, ()) {
    auto const address = anyMac();
    RC_ASSERT(MacAddress::fromText(address.text()) == address);
    RC_ASSERT(MacAddress::fromOctets(address.octets()) == address);
}

RC_GTEST_PROP(MacAddress, IsOrderedAsItsOctetsAre, ()) {
    auto const a = anyMac();
    auto const b = anyMac();
    RC_ASSERT((a < b) == (a.octets() < b.octets()));
}

}  // namespace
