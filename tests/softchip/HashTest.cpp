#include "softchip/Hash.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "softchip/Frame.h"
#include "tests/softchip/FrameBuilder.h"

namespace SoftChip {
namespace {

using namespace FrameBuilder;

ParsedFrame parsed(Bytes const& behindMacs) {
    return parseFrame(
        join({ethernet(mac("02:00:00:00:00:02"), mac("02:00:00:00:00:01")), behindMacs}));
}

// A thousand flows that differ in one port.
std::vector<ParsedFrame> flows() {
    std::vector<ParsedFrame> all;
    for (unsigned port = 0; port < 1000; ++port) {
        all.push_back(parsed(ipv4({}, udp(10000 + port))));
    }
    return all;
}

template <class Hash>
std::vector<int> spread(Hash hash, std::size_t count) {
    std::vector<int> picks(count);
    for (auto const& flow : flows()) {
        ++picks[pick(hash(flow), count)];
    }
    return picks;
}

// The values were computed from the header's description by a program of another language.
TEST(EcmpHash, HasTheStatedValues) {
    EXPECT_EQ(ecmpHash(parsed(ipv4({}, udp()))), 0x8388f524d61e0c00u);
    EXPECT_EQ(ecmpHash(parsed(ipv6({}, udp()))), 0x5d7fba5c1e33b06bu);
    EXPECT_EQ(ecmpHash(parsed(ipv4({.fragment = 0x2000}, udp()))), 0x1c1c1c38e1b0a1a3u);
}

TEST(EcmpHash, SpreadsFlowsOverTheNextHops) {
    for (int picks : spread(ecmpHash, 4)) {
        EXPECT_NEAR(picks, 250, 50);
    }
}

TEST(EcmpHash, KeepsAllFragmentsOfAPacketTogether) {
    auto const first = ecmpHash(parsed(ipv4({.fragment = 0x2000}, udp())));
    auto const later = ecmpHash(parsed(ipv4({.fragment = 0x0010}, Bytes(64, 9))));
    EXPECT_EQ(first, later);
}

TEST(EcmpHash, DoesNotLookAtTtlAndMacAddresses) {
    auto const other = parseFrame(join(
        {ethernet(mac("02:00:00:00:00:09"), mac("02:00:00:00:00:08")), ipv4({.ttl = 3}, udp())}));
    EXPECT_EQ(ecmpHash(other), ecmpHash(parsed(ipv4({}, udp()))));
}

TEST(LagHash, HasTheStatedValues) {
    EXPECT_EQ(lagHash(parsed(ipv4({}, udp()))), 0xfaea754c4214b99du);
    EXPECT_EQ(lagHash(parsed(ipv6({}, udp()))), 0x931f88750ce95905u);
    EXPECT_EQ(lagHash(parsed(arp("10.0.0.1", "10.0.0.2"))), 0x40ce282669093556u);
}

TEST(LagHash, SpreadsFlowsOverTheMembers) {
    for (int picks : spread(lagHash, 3)) {
        EXPECT_NEAR(picks, 333, 60);
    }
}

TEST(LagHash, SpreadsTheFlowsThatEcmpSentOneWay) {
    std::vector<int> picks(2);
    for (auto const& flow : flows()) {
        if (pick(ecmpHash(flow), 2) == 0) {
            ++picks[pick(lagHash(flow), 2)];
        }
    }
    EXPECT_NEAR(picks[0], picks[1], 100);
}

TEST(LagHash, LooksAtMacAddressesOfOtherFramesThanIp) {
    std::set<std::uint64_t> hashes;
    for (std::uint64_t host = 0; host < 10; ++host) {
        auto const src = MacAddress{0x020000000000u + host};
        hashes.insert(lagHash(parseFrame(
            join({ethernet(mac("02:00:00:00:00:02"), src), number(0x88cc, 2), Bytes(46)}))));
    }
    EXPECT_EQ(hashes.size(), 10u);
}

TEST(Pick, StaysBelowTheCountAndReachesItsEnds) {
    EXPECT_EQ(pick(0, 7), 0u);
    EXPECT_EQ(pick(~std::uint64_t{0}, 7), 6u);
    EXPECT_EQ(pick(~std::uint64_t{0}, 1), 0u);
}

}  // namespace
}  // namespace SoftChip
