#include "cli/FrameFacts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace Cli {
namespace {

using Bytes = std::vector<std::uint8_t>;

// A frame with these bytes behind its addresses, padded to 60 bytes.
Bytes frameWith(Bytes const& rest) {
    constexpr std::size_t addresses = 12;
    Bytes frame(std::max<std::size_t>(addresses + rest.size(), 60));
    std::fill_n(frame.begin(), addresses, std::uint8_t{0x02});
    std::copy(rest.begin(), rest.end(), frame.begin() + addresses);
    return frame;
}

Bytes ipv4Of(std::uint8_t protocol) {
    Bytes rest{0x08, 0x00, 0x45, 0, 0, 46, 0, 0, 0, 0, 64, protocol};
    rest.resize(2 + 20);
    rest[2 + 12] = rest[2 + 16] = 10;
    return rest;
}

TEST(FrameFacts, AnUntaggedFrameHasItsEtherType) {
    EXPECT_EQ(frameFacts(frameWith({0x08, 0x06})).etherType, 0x0806);
}

TEST(FrameFacts, TheInnermostEtherTypeCounts) {
    EXPECT_EQ(frameFacts(frameWith({0x81, 0, 0, 10, 0x08, 0x06})).etherType, 0x0806);
    EXPECT_EQ(frameFacts(frameWith({0x88, 0xa8, 0, 10, 0x81, 0, 0, 20, 0x86, 0xdd})).etherType,
              0x86dd);
    EXPECT_EQ(
        frameFacts(frameWith({0x81, 0, 0, 1, 0x81, 0, 0, 2, 0x81, 0, 0, 3, 0x88, 0xb5})).etherType,
        0x88b5);
}

TEST(FrameFacts, MplsIsSeenBehindTags) {
    EXPECT_TRUE(frameFacts(frameWith({0x88, 0x47})).mpls);
    EXPECT_TRUE(frameFacts(frameWith({0x81, 0, 0, 10, 0x88, 0x48})).mpls);
    EXPECT_FALSE(frameFacts(frameWith({0x88, 0x46})).mpls);
    EXPECT_FALSE(frameFacts(frameWith({0x88, 0x49})).mpls);
}

TEST(FrameFacts, GreIsProtocol47) {
    EXPECT_TRUE(frameFacts(frameWith(ipv4Of(47))).gre);
    EXPECT_FALSE(frameFacts(frameWith(ipv4Of(17))).gre);
}

TEST(FrameFacts, GreIsSeenBehindExtensionHeaders) {
    Bytes rest{0x86, 0xdd, 0x60, 0, 0, 0, 0, 8, 0, 64};  // next header: hop-by-hop options
    rest.resize(2 + 40);
    rest.insert(rest.end(), {47, 0, 1, 4, 0, 0, 0, 0});
    EXPECT_TRUE(frameFacts(frameWith(rest)).gre);
}

TEST(FrameFacts, AFrameThatEndsBeforeItsEtherTypeHasNone) {
    for (std::size_t size = 0; size < 14; ++size) {
        EXPECT_EQ(frameFacts(Bytes(size, 0x81)), FrameFacts()) << size;
    }
    Bytes const endsInTag{1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6, 0x81, 0, 0};
    EXPECT_EQ(frameFacts(endsInTag).etherType, 0);
}

}  // namespace
}  // namespace Cli
