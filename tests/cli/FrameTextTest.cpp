#include "cli/FrameText.h"

#include <gtest/gtest.h>

#include "tests/softchip/FrameBuilder.h"

namespace Cli {
namespace {

using namespace SoftChip::FrameBuilder;
using SoftChip::L3Fault;

std::string textOf(std::initializer_list<Bytes> parts) {
    Bytes all = ethernet(mac("02:00:00:00:00:02"), mac("02:00:00:00:00:01"));
    for (Bytes const& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return frameText(SoftChip::parseFrame(all));
}

std::string const addresses = "02:00:00:00:00:01 to 02:00:00:00:00:02";

TEST(FrameText, HasAddressesTagsAndPorts) {
    EXPECT_EQ(textOf({tag(10), ipv4({}, udp(7, 8))}),
              addresses + ", tag 10, IPv4 10.0.10.7 to 10.0.20.7 TTL 64, UDP port 7 to 8");
}

TEST(FrameText, OfOtherProtocolsHasTheEtherType) {
    EXPECT_EQ(textOf({number(0x88cc, 2)}), addresses + ", EtherType 0x88cc");
}

TEST(FrameText, SaysWhatIsWrongWithAHeader) {
    EXPECT_EQ(textOf({number(0x0800, 2)}), addresses + ", IPv4 (truncated)");
    EXPECT_EQ(words(L3Fault::arpForm), "not for Ethernet and IPv4");
}

TEST(FrameText, OfWhatIsNoFrameSaysSo) {
    EXPECT_EQ(frameText(SoftChip::parseFrame(Bytes(13))), "no whole Ethernet header");
    EXPECT_EQ(textOf({number(0x8100, 2), Bytes(3)}), "no whole tag");
}

}  // namespace
}  // namespace Cli
