#include "softchip/Acl.h"

#include <gtest/gtest.h>

#include <vector>

#include "softchip/Frame.h"
#include "tests/softchip/FrameBuilder.h"

namespace SoftChip {
namespace {

using namespace FrameBuilder;

auto const here = LogicalPort::port(1);
constexpr DomainId vlan = 10;
auto const dstMac = MacAddress{0x020000000002};
auto const srcMac = MacAddress{0x020000000001};

ParsedFrame parsed(Bytes const& behindMacs) {
    return parseFrame(join({ethernet(dstMac, srcMac), behindMacs}));
}

bool matches(FrameMatch const& match, Bytes const& behindMacs) {
    return match.matches(parsed(behindMacs), here, vlan);
}

AclRule rule(std::uint16_t list, std::uint32_t sequence, AclRule::Action action, bool copy = false,
             FrameMatch const& match = {}) {
    return {list, sequence, match, action, copy};
}

constexpr auto permit = AclRule::Action::permit;
constexpr auto deny = AclRule::Action::drop;

AclVerdict check(std::vector<AclRule> const& rules) {
    static AclTable table;
    table = {};
    for (auto const& r : rules) {
        table.ruleIs(r);
    }
    return table.check(parsed(ipv4({}, udp())), here, vlan);
}

TEST(FrameMatch, WithoutFieldsMatchesEveryFrame) {
    EXPECT_TRUE(matches({}, ipv4({}, udp())));
    EXPECT_TRUE(matches({}, number(0x88cc, 2)));
}

TEST(FrameMatch, LooksAtWhereTheFrameCameIn) {
    EXPECT_TRUE(matches({.ingress = here, .domain = vlan}, number(0x88cc, 2)));
    EXPECT_FALSE(matches({.ingress = LogicalPort::port(2)}, number(0x88cc, 2)));
    EXPECT_FALSE(matches({.ingress = LogicalPort::lag(1)}, number(0x88cc, 2)));
    EXPECT_FALSE(matches({.domain = 11}, number(0x88cc, 2)));
}

TEST(FrameMatch, LooksAtMacAddressesUnderTheirMasks) {
    auto const lldp = number(0x88cc, 2);
    EXPECT_TRUE(matches({.srcMac = MacMatch{srcMac}, .dstMac = MacMatch{dstMac}}, lldp));
    EXPECT_FALSE(matches({.srcMac = MacMatch{dstMac}}, lldp));
    EXPECT_FALSE(matches({.dstMac = MacMatch{srcMac}}, lldp));
    EXPECT_TRUE(matches({.srcMac = MacMatch{dstMac, mac("ff:ff:ff:ff:ff:00")}}, lldp));
}

TEST(FrameMatch, LooksAtTheInnermostEtherType) {
    EXPECT_TRUE(matches({.etherType = 0x0800}, join({tag(10), ipv4({})})));
    EXPECT_FALSE(matches({.etherType = 0x8100}, join({tag(10), ipv4({})})));
}

TEST(FrameMatch, LooksAtThePriorityOfATag) {
    EXPECT_TRUE(matches({.vlanPriority = 5}, join({tag(10, 0x8100, 5), ipv4({})})));
    EXPECT_FALSE(matches({.vlanPriority = 5}, join({tag(10, 0x8100, 4), ipv4({})})));
    EXPECT_FALSE(matches({.vlanPriority = 0}, ipv4({})));
}

TEST(FrameMatch, LooksAtPrefixesOfBothFamilies) {
    auto const v4 = IpMatch::prefix(prefix("10.0.10.0/24"));
    auto const v6 = IpMatch::prefix(prefix("2001:db8:10::/48"));
    EXPECT_TRUE(matches({.srcIp = v4}, ipv4({})));
    EXPECT_FALSE(matches({.dstIp = v4}, ipv4({})));
    EXPECT_TRUE(matches({.srcIp = v6}, ipv6({})));
    EXPECT_FALSE(matches({.dstIp = v6}, ipv6({})));
}

TEST(FrameMatch, NeverTakesAnAddressOfTheOtherFamily) {
    EXPECT_FALSE(matches({.srcIp = IpMatch::prefix(prefix("0.0.0.0/0"))}, ipv6({})));
    EXPECT_FALSE(matches({.srcIp = IpMatch::prefix(prefix("::/0"))}, ipv4({})));
    EXPECT_FALSE(
        matches({.srcIp = IpMatch::prefix(prefix("0.0.0.0/0"))}, arp("10.0.0.1", "10.0.0.2")));
}

TEST(FrameMatch, LooksAtTheAddressesOfArpOnlyIfItIsForArp) {
    auto const sender = IpMatch::prefix(prefix("10.0.0.1"));
    auto const request = arp("10.0.0.1", "10.0.0.2");
    EXPECT_TRUE(matches({.etherType = 0x0806, .srcIp = sender}, request));
    EXPECT_FALSE(matches({.etherType = 0x0806, .dstIp = sender}, request));
    EXPECT_FALSE(matches({.srcIp = sender}, request));
    EXPECT_FALSE(matches({.etherType = 0x0806, .srcIp = sender}, number(0x0806, 2)));
}

TEST(FrameMatch, TakesAnyMaskOfAnIpAddress) {
    auto const odd = IpMatch{ip("0.0.0.7"), ip("0.0.0.255")};
    EXPECT_TRUE(matches({.srcIp = odd}, ipv4({.src = "192.0.2.7"})));
    EXPECT_FALSE(matches({.srcIp = odd}, ipv4({.src = "192.0.2.8"})));
}

TEST(FrameMatch, LooksAtTheIpHeader) {
    auto const packet = ipv4({.ttl = 9, .dscp = 46}, udp());
    EXPECT_TRUE(
        matches({.ipProtocol = 17, .dscp = 46, .ttl = Range{9, 9}, .fragment = false}, packet));
    EXPECT_FALSE(matches({.ipProtocol = 6}, packet));
    EXPECT_FALSE(matches({.dscp = 0}, packet));
    EXPECT_FALSE(matches({.ttl = Range{10, 255}}, packet));
    EXPECT_FALSE(matches({.fragment = true}, packet));
    EXPECT_TRUE(matches({.fragment = true}, ipv4({.fragment = 1}, udp())));
    EXPECT_FALSE(matches({.fragment = false}, number(0x88cc, 2)));
}

TEST(FrameMatch, LooksAtPorts) {
    EXPECT_TRUE(matches({.srcPort = Range{1000, 1024}}, ipv4({}, udp(1024))));
    EXPECT_FALSE(matches({.srcPort = Range{1000, 1023}}, ipv4({}, udp(1024))));
    EXPECT_TRUE(matches({.dstPort = Range{80, 80}}, ipv4({.protocol = 6}, tcp(1, 80))));
    EXPECT_FALSE(matches({.dstPort = Range{0, 79}}, ipv4({.protocol = 6}, tcp(1, 80))));
}

TEST(FrameMatch, FindsNoPortsWhereThereAreNone) {
    EXPECT_FALSE(matches({.dstPort = Range{}}, ipv4({.fragment = 1}, udp())));
    EXPECT_FALSE(matches({.srcPort = Range{}}, ipv4({.protocol = 1}, icmp())));
    EXPECT_FALSE(matches({.dstPort = Range{}}, arp("10.0.0.1", "10.0.0.2")));
}

TEST(FrameMatch, LooksAtTcpFlagsUnderTheirMask) {
    auto const synAck = ipv4({.protocol = 6}, tcp(1, 2, 0x12));
    EXPECT_TRUE(matches({.tcpFlags = TcpFlagsMatch{0x12, 0x12}}, synAck));
    EXPECT_FALSE(matches({.tcpFlags = TcpFlagsMatch{0x02, 0x12}}, synAck));
    EXPECT_FALSE(matches({.tcpFlags = TcpFlagsMatch{}}, ipv4({}, udp())));
}

TEST(FrameMatch, LooksAtIcmpOfBothFamilies) {
    EXPECT_TRUE(matches({.icmpType = 8, .icmpCode = 0}, ipv4({.protocol = 1}, icmp(8, 0))));
    EXPECT_FALSE(matches({.icmpType = 8, .icmpCode = 1}, ipv4({.protocol = 1}, icmp(8, 0))));
    EXPECT_TRUE(matches({.icmpType = 135}, ipv6({.nextHeader = 58}, icmp(135))));
    EXPECT_FALSE(matches({.icmpType = 0}, ipv4({}, udp())));
}

TEST(AclTable, PermitsWithoutAMatchingRule) {
    EXPECT_EQ(check({}).decided, nullptr);
    auto const elsewhere = rule(1, 10, deny, true, {.domain = 99});
    auto const verdict = check({elsewhere});
    EXPECT_EQ(verdict.decided, nullptr);
    EXPECT_FALSE(verdict.drop || verdict.copyToCpu);
}

TEST(AclTable, LetsTheLowestSequenceOfAListDecideWhateverTheOrderOfLoading) {
    auto const verdict = check({rule(1, 20, deny), rule(1, 10, permit), rule(1, 30, deny, true)});
    EXPECT_EQ(verdict.decided->sequence, 10u);
    EXPECT_FALSE(verdict.drop || verdict.copyToCpu);
}

TEST(AclTable, DropsIfAnyListDropsAndCopiesIfAnyCopies) {
    auto const verdict = check({rule(1, 10, permit, true), rule(2, 10, deny), rule(3, 1, permit)});
    EXPECT_TRUE(verdict.drop);
    EXPECT_TRUE(verdict.copyToCpu);
    EXPECT_EQ(verdict.decided->list, 2);
}

TEST(AclTable, NamesTheFirstOfTwoDroppingRules) {
    EXPECT_EQ(check({rule(1, 10, deny), rule(2, 10, deny)}).decided->list, 1);
}

TEST(AclTable, ReplacesTheRuleOfAListAndSequence) {
    EXPECT_FALSE(check({rule(1, 10, deny), rule(1, 10, permit)}).drop);
}

TEST(AclTable, ForgetsARuleOnce) {
    AclTable table;
    table.ruleIs(rule(1, 10, deny));
    table.ruleIs(rule(1, 20, deny));
    EXPECT_FALSE(table.ruleDel(1, 15));
    EXPECT_FALSE(table.ruleDel(1, 99));
    EXPECT_TRUE(table.ruleDel(1, 10));
    EXPECT_FALSE(table.ruleDel(1, 10));
    EXPECT_EQ(table.rules().size(), 1u);
}

}  // namespace
}  // namespace SoftChip
