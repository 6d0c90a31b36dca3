#include "softchip/Frame.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

#include "tests/softchip/FrameBuilder.h"

namespace SoftChip {
namespace {

using namespace FrameBuilder;

Bytes header() {
    return ethernet(mac("02:00:00:00:00:02"), mac("02:00:00:00:00:01"));
}

ParsedFrame parsed(std::initializer_list<Bytes> parts) {
    return parseFrame(join({header(), join(parts)}));
}

// One of everything that the parser knows.
std::map<std::string, Bytes> samples() {
    auto const with = [](std::initializer_list<Bytes> parts) {
        return join({header(), join(parts)});
    };
    return {
        {"ARP", with({arp("10.0.0.1", "10.0.0.2")})},
        {"two tags", with({tag(10, 0x88a8), tag(20), ipv4({}, udp())})},
        {"UDP", with({ipv4({}, udp())})},
        {"TCP with options", with({ipv4({.protocol = 6, .options = Bytes(8, 1)}, tcp())})},
        {"ICMP", with({ipv4({.protocol = 1}, icmp())})},
        {"IPv6 UDP", with({ipv6({}, udp())})},
        {"IPv6 chain", with({ipv6({.nextHeader = 0},
                                  join({extension(43, 1), extension(60), extension(44),
                                        fragmentHeader(51, 0, true), extension(6, 0), tcp()}))})},
        {"ICMPv6", with({ipv6({.nextHeader = 58}, icmp(128))})},
    };
}

TEST(Frame, ReadsEthernet) {
    auto const frame = parsed({number(0x88cc, 2), Bytes(46)});
    EXPECT_EQ(frame.dst, mac("02:00:00:00:00:02"));
    EXPECT_EQ(frame.src, mac("02:00:00:00:00:01"));
    EXPECT_EQ(frame.etherType, 0x88cc);
    EXPECT_EQ(frame.tagCount, 0);
    EXPECT_EQ(frame.l3, L3::none);
}

TEST(Frame, TakesALengthForNoEtherType) {
    EXPECT_EQ(parsed({number(38, 2), Bytes(46)}).l3, L3::none);
}

TEST(Frame, ReadsOneTag) {
    auto const frame = parsed({tag(10, 0x8100, 5), ipv4({}, udp())});
    EXPECT_EQ(frame.tagCount, 1);
    EXPECT_EQ(frame.tags[0].vlan, 10);
    EXPECT_EQ(frame.tags[0].priority, 5);
    EXPECT_EQ(frame.etherType, 0x0800);
}

TEST(Frame, ReadsTwoTagsTheOuterOneAlsoAServiceTag) {
    for (unsigned outer : {0x8100u, 0x88a8u}) {
        auto const frame = parsed({tag(10, outer), tag(20), ipv4({}, udp())});
        EXPECT_EQ(frame.tagCount, 2);
        EXPECT_EQ(frame.tags[0].tpid, outer);
        EXPECT_EQ(frame.tags[1].vlan, 20);
        EXPECT_EQ(frame.dstPort, 4791);
    }
}

TEST(Frame, TakesAnInnerServiceTagForAnEtherType) {
    auto const frame = parsed({tag(10), tag(20, 0x88a8), ipv4({}, udp())});
    EXPECT_EQ(frame.tagCount, 1);
    EXPECT_EQ(frame.etherType, 0x88a8);
    EXPECT_EQ(frame.l3, L3::none);
}

TEST(Frame, LeavesAThirdTagAlone) {
    auto const frame = parsed({tag(10), tag(20), tag(30), ipv4({}, udp())});
    EXPECT_EQ(frame.tagCount, 2);
    EXPECT_EQ(frame.etherType, 0x8100);
    EXPECT_EQ(frame.l3, L3::none);
}

TEST(Frame, ReadsArp) {
    auto const frame = parsed({arp("10.0.0.1", "10.0.0.2", 2)});
    EXPECT_EQ(frame.l3, L3::arp);
    EXPECT_EQ(frame.l3Fault, L3Fault::none);
    EXPECT_EQ(frame.arpOperation, 2);
    EXPECT_EQ(frame.srcIp, ip("10.0.0.1"));
    EXPECT_EQ(frame.dstIp, ip("10.0.0.2"));
    EXPECT_FALSE(frame.hasIp);
}

TEST(Frame, KnowsArpOfAnotherForm) {
    auto bytes = join({header(), arp("10.0.0.1", "10.0.0.2")});
    bytes[14 + 4] = 8;
    EXPECT_EQ(parseFrame(bytes).l3Fault, L3Fault::arpForm);
}

TEST(Frame, ReadsIpv4) {
    auto const frame = parsed({ipv4({.ttl = 9, .dscp = 46}, udp(7, 8))});
    EXPECT_EQ(frame.l3, L3::ipv4);
    EXPECT_EQ(frame.l3Fault, L3Fault::none);
    EXPECT_TRUE(frame.hasIp);
    EXPECT_EQ(frame.srcIp, ip("10.0.10.7"));
    EXPECT_EQ(frame.dstIp, ip("10.0.20.7"));
    EXPECT_EQ(frame.ttl, 9);
    EXPECT_EQ(frame.dscp, 46);
    EXPECT_EQ(frame.protocol, 17);
    EXPECT_EQ(frame.l4, L4::udp);
    EXPECT_EQ(frame.srcPort, 7);
    EXPECT_EQ(frame.dstPort, 8);
    EXPECT_FALSE(frame.options);
}

TEST(Frame, SkipsIpv4Options) {
    auto const frame = parsed({ipv4({.protocol = 6, .options = Bytes(40, 1)}, tcp(5, 6, 0x12))});
    EXPECT_EQ(frame.l3Fault, L3Fault::none);
    EXPECT_TRUE(frame.options);
    EXPECT_EQ(frame.l4, L4::tcp);
    EXPECT_EQ(frame.dstPort, 6);
    EXPECT_EQ(frame.tcpFlags, 0x12);
}

TEST(Frame, FindsNoPortsInALaterFragment) {
    auto const first = parsed({ipv4({.fragment = 0x2000}, udp())});
    EXPECT_TRUE(first.fragment);
    EXPECT_FALSE(first.laterFragment);
    EXPECT_EQ(first.l4, L4::udp);
    auto const later = parsed({ipv4({.fragment = 0x0001}, udp())});
    EXPECT_TRUE(later.fragment);
    EXPECT_TRUE(later.laterFragment);
    EXPECT_EQ(later.l4, L4::none);
}

TEST(Frame, TakesDontFragmentForNoFragment) {
    EXPECT_FALSE(parsed({ipv4({.fragment = 0x4000}, udp())}).fragment);
}

TEST(Frame, TellsWhatIsWrongWithAnIpv4Header) {
    auto const good = join({header(), ipv4({}, udp())});
    auto const with = [&](std::size_t at, std::uint8_t value) {
        auto bytes = good;
        bytes[14 + at] = value;
        bytes[14 + 10] = bytes[14 + 11] = 0;
        auto const sum = internetChecksum({bytes.begin() + 14, bytes.begin() + 34});
        bytes[14 + 10] = static_cast<std::uint8_t>(sum >> 8);
        bytes[14 + 11] = static_cast<std::uint8_t>(sum);
        return parseFrame(bytes);
    };
    EXPECT_EQ(with(0, 0x65).l3Fault, L3Fault::version);
    EXPECT_EQ(with(0, 0x44).l3Fault, L3Fault::headerLength);
    EXPECT_EQ(with(3, 19).l3Fault, L3Fault::totalLength);
    EXPECT_EQ(with(3, 29).l3Fault, L3Fault::truncated);
    EXPECT_EQ(with(3, 28).l3Fault, L3Fault::none);
}

TEST(Frame, StillReadsTheFieldsBehindAWrongChecksum) {
    auto bytes = join({header(), ipv4({}, udp())});
    bytes[14 + 10] ^= 1;
    auto const frame = parseFrame(bytes);
    EXPECT_EQ(frame.l3Fault, L3Fault::checksum);
    EXPECT_TRUE(frame.hasIp);
    EXPECT_EQ(frame.dstPort, 4791);
}

TEST(Frame, TakesPaddingForNoPayload) {
    auto const frame = parsed({ipv4({}, Bytes{}), Bytes(26, 0xff)});
    EXPECT_EQ(frame.l3Fault, L3Fault::none);
    EXPECT_EQ(frame.l4, L4::none);
}

TEST(Frame, ReadsIpv6) {
    auto const frame = parsed({ipv6({.ttl = 3, .dscp = 10}, udp(7, 8))});
    EXPECT_EQ(frame.l3, L3::ipv6);
    EXPECT_EQ(frame.srcIp, ip("2001:db8:10::7"));
    EXPECT_EQ(frame.dstIp, ip("2001:db8:20::7"));
    EXPECT_EQ(frame.ttl, 3);
    EXPECT_EQ(frame.dscp, 10);
    EXPECT_EQ(frame.dstPort, 8);
    EXPECT_FALSE(frame.options);
}

TEST(Frame, FollowsEveryIpv6ExtensionHeader) {
    for (unsigned kind : {0u, 43u, 60u}) {
        auto const frame =
            parsed({ipv6({.nextHeader = kind}, join({extension(17, 2), udp(7, 8)}))});
        EXPECT_EQ(frame.protocol, 17) << kind;
        EXPECT_EQ(frame.dstPort, 8) << kind;
        EXPECT_TRUE(frame.options) << kind;
    }
    // Authentication counts words of four bytes, less two.
    auto const authenticated = join({number(17, 1), number(4, 1), Bytes(22), udp(7, 8)});
    EXPECT_EQ(parsed({ipv6({.nextHeader = 51}, authenticated)}).dstPort, 8);
}

TEST(Frame, ReadsIpv6Fragments) {
    auto const first =
        parsed({ipv6({.nextHeader = 44}, join({fragmentHeader(17, 0, true), udp(7, 8)}))});
    EXPECT_TRUE(first.fragment);
    EXPECT_EQ(first.dstPort, 8);
    auto const later =
        parsed({ipv6({.nextHeader = 44}, join({fragmentHeader(17, 185, false), udp(7, 8)}))});
    EXPECT_TRUE(later.laterFragment);
    EXPECT_EQ(later.protocol, 17);
    EXPECT_EQ(later.l4, L4::none);
}

TEST(Frame, StopsAtAnIpv6HeaderThatIsNotAllThere) {
    auto const frame = parsed({ipv6({.nextHeader = 0}, Bytes{17, 9, 0, 0, 0, 0, 0, 0})});
    EXPECT_EQ(frame.protocol, 0);
    EXPECT_EQ(frame.l4, L4::none);
    EXPECT_EQ(frame.l3Fault, L3Fault::none);
}

TEST(Frame, TellsWhatIsWrongWithAnIpv6Header) {
    auto bytes = join({header(), ipv6({}, udp())});
    bytes.pop_back();
    EXPECT_EQ(parseFrame(bytes).l3Fault, L3Fault::truncated);
    bytes[14] = 0x50;
    EXPECT_EQ(parseFrame(bytes).l3Fault, L3Fault::version);
}

TEST(Frame, ReadsIcmpOfTheFamilyAlone) {
    EXPECT_EQ(parsed({ipv4({.protocol = 1}, icmp(3, 4))}).icmpCode, 4);
    EXPECT_EQ(parsed({ipv6({.nextHeader = 58}, icmp(135))}).icmpType, 135);
    EXPECT_EQ(parsed({ipv4({.protocol = 58}, icmp())}).l4, L4::none);
    EXPECT_EQ(parsed({ipv6({.nextHeader = 1}, icmp())}).l4, L4::none);
}

// Below what the whole headers take, the deepest of them is missing, and so on upwards. Vectors of
// exactly the length let the sanitizers see any read beyond the end.
TEST(Frame, HasAnAnswerHoweverShort) {
    for (auto const& [name, whole] : samples()) {
        auto const tagBytes = parseFrame(whole).tagCount * std::size_t{4};
        for (std::size_t size = 0; size < whole.size(); ++size) {
            Bytes const cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            auto const frame = parseFrame(cut);
            if (size < 14) {
                EXPECT_EQ(frame.l2Fault, L2Fault::tooShort) << name << size;
            } else if (size < 14 + tagBytes) {
                EXPECT_EQ(frame.l2Fault, L2Fault::tagTooShort) << name << size;
            } else {
                EXPECT_EQ(frame.l2Fault, L2Fault::none) << name << size;
                EXPECT_EQ(frame.l3Fault, L3Fault::truncated) << name << size;
            }
        }
        EXPECT_EQ(parseFrame(whole).l3Fault, L3Fault::none) << name;
    }
}

TEST(Frame, HasAnAnswerWhateverTheBytes) {
    std::mt19937 random(3);
    auto const all = samples();
    for (int i = 0; i < 20000; ++i) {
        auto bytes = std::next(all.begin(), static_cast<int>(random() % all.size()))->second;
        for (unsigned changes = random() % 8; changes > 0; --changes) {
            bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        }
        bytes.resize(random() % (bytes.size() + 1));
        bytes.shrink_to_fit();
        EXPECT_LE(parseFrame(bytes).tagCount, 2);
    }
}

}  // namespace
}  // namespace SoftChip
