#include "Net/Prefix.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <sstream>

namespace {

using Net::IpAddress;
using Net::Prefix;

TEST(Prefix, ReadsAndWritesItsText) {
    EXPECT_EQ(Prefix::fromText("10.0.0.0/8")->text(), "10.0.0.0/8");
    EXPECT_EQ(Prefix::fromText("10.0.0.1")->text(), "10.0.0.1/32");
    EXPECT_EQ(Prefix::fromText("2001:db8::1")->text(), "2001:db8::1/128");
    EXPECT_EQ(Prefix::fromText("::/0")->text(), "::/0");
    EXPECT_EQ(Prefix::fromText("2001:db8::/127")->text(), "2001:db8::/127");
}

TEST(Prefix, RefusesOtherText) {
    for (auto const* text : {"10.0.0.0/33", "::/129", "10.0.0.1/8", "10.0.0.0/", "10.0.0.0/8 ",
                             "/8", "10.0.0.0/-1", "10.0.0.0/8/8", "", "10.0.0.0/4294967304"}) {
        EXPECT_FALSE(Prefix::fromText(text)) << text;
    }
}

TEST(Prefix, ContainsItsAddressesAndNoOthers) {
    auto const prefix = *Prefix::fromText("10.128.0.0/9");
    EXPECT_TRUE(prefix.contains(*IpAddress::fromText("10.255.255.255")));
    EXPECT_FALSE(prefix.contains(*IpAddress::fromText("10.127.255.255")));
    EXPECT_FALSE(Prefix::fromText("0.0.0.0/0")->contains(*IpAddress::fromText("::")));
}

TEST(Prefix, PrintsItsText) {
    std::ostringstream out;
    out << *Prefix::fromText("10.0.0.0/8");
    EXPECT_EQ(out.str(), "10.0.0.0/8");
}

RC_GTEST_PROP(Prefix, OfAnAddressContainsItAndIsTheSameBehindItsText, ()) {
    auto const address = *rc::gen::arbitrary<bool>()
                             ? IpAddress::v4(*rc::gen::arbitrary<std::uint32_t>())
                             : IpAddress::v6(*rc::gen::arbitrary<std::uint64_t>(),
                                             *rc::gen::arbitrary<std::uint64_t>());
    auto const length = *rc::gen::inRange(0U, addressBits(address.family) + 1);
    auto const prefix = Prefix::of(address, length);
    RC_ASSERT(prefix.contains(address));
    RC_ASSERT(prefix.length == length);
    RC_ASSERT(Prefix::fromText(prefix.text()) == prefix);
}

}  // namespace
