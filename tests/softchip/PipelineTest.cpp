#include "softchip/Pipeline.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "softchip/Frame.h"
#include "softchip/Hash.h"
#include "tests/softchip/PipelineFixture.h"

namespace SoftChip {
namespace {

using namespace FrameBuilder;

// What the digest says, decision by decision.
using Digest = PipelineFixture;

constexpr bool routed = true;
constexpr bool copied = true;
constexpr bool dropped = true;

TEST_F(Digest, BridgedToAPortSaysThePortAndTheVlan) {
    EXPECT_EQ(in(1, to(hostB)), (Says{2, 10}));
}

TEST_F(Digest, BridgedToALagSaysAMemberAndTheVlan) {
    auto const says = in(4, to(hostL));
    EXPECT_TRUE(says.egressPort >= 8 && says.egressPort <= 10) << says;
    EXPECT_EQ(says, (Says{says.egressPort, 20}));
}

TEST_F(Digest, FloodedSaysNoPortAndTheVlan) {
    EXPECT_EQ(in(1, to(stranger)), (Says{none, 10}));
    EXPECT_EQ(in(1, to(everyone)), (Says{none, 10}));
    EXPECT_EQ(in(1, to(mac("01:00:5e:01:01:01"))), (Says{none, 10}));
}

TEST_F(Digest, RoutedIntoAVlanSaysThePortOfTheNeighboursMac) {
    EXPECT_EQ(in(1, routedTo("10.0.20.7")), (Says{4, 20, routed}));
    EXPECT_EQ(in(1, routedTo6("2001:db8:20::7")), (Says{4, 20, routed}));
}

TEST_F(Digest, RoutedIntoAVlanSaysNoPortIfTheMacIsNotInTheFdb) {
    EXPECT_EQ(in(1, routedTo("10.0.20.9")), (Says{none, 20, routed}));
}

TEST_F(Digest, RoutedOutOfARoutedPortSaysItsInternalVlan) {
    EXPECT_EQ(in(1, routedTo("192.0.2.1")), (Says{5, 4094, routed}));
    EXPECT_EQ(in(1, routedTo6("2001:db8:6::1")), (Says{5, 4094, routed}));
}

TEST_F(Digest, RoutedOutOfASubInterfaceSaysItsParentAndItsInternalVlan) {
    EXPECT_EQ(in(7, tagged(100, router)), (Says{7, 4093, routed}));
}

TEST_F(Digest, BridgedSubInterfaceForwardsAndFloodsInItsVlan) {
    tables.subIntfIs(port(7), 200, 20);
    tables.vlanMemberIs(20, port(7));
    EXPECT_EQ(in(7, tagged(200, hostC)), (Says{4, 20}));
    EXPECT_EQ(in(7, tagged(200, stranger)), (Says{none, 20}));
}

TEST_F(Digest, BridgedSubInterfaceNeedsItsVlanToAdmitThePort) {
    tables.subIntfIs(port(7), 200, 20);
    EXPECT_EQ(in(7, tagged(200, hostC)), (Says{none, 20, !routed, !copied, dropped}));
    EXPECT_EQ(explanation.entries().back().reason, Reason::vlanNotOnPort);
}

TEST_F(Digest, RoutedOutOfARoutedLagSaysAMemberAndItsInternalVlan) {
    auto const says = in(1, routedTo("172.16.8.1"));
    EXPECT_TRUE(says.egressPort == 11 || says.egressPort == 12) << says;
    EXPECT_EQ(says, (Says{says.egressPort, 4092, routed}));
}

TEST_F(Digest, ToTheCpuSaysItsPortAndTheIngressDomain) {
    EXPECT_EQ(in(1, routedTo("10.0.20.1")), (Says{cpu, 10})) << "own address";
    EXPECT_EQ(in(1, routedTo("10.0.20.10")), (Says{cpu, 10})) << "glean";
    EXPECT_EQ(in(1, to(mac("01:80:c2:00:00:0e"))), (Says{cpu, 10})) << "trap";
    EXPECT_EQ(in(1, routedTo("10.0.20.7", 1)), (Says{cpu, 10})) << "TTL";
    EXPECT_EQ(in(5, routedTo("10.0.10.1")), (Says{cpu, 4094})) << "from a routed port";
}

TEST_F(Digest, ACopyToTheCpuLeavesTheRestAsDecided) {
    EXPECT_EQ(in(1, to(everyone, arp("10.0.10.7", "10.0.10.1"))),
              (Says{none, 10, !routed, copied}));
    tables.acl().ruleIs({.list = 1, .sequence = 1, .copyToCpu = true});
    EXPECT_EQ(in(1, to(hostB)), (Says{2, 10, !routed, copied}));
    EXPECT_EQ(in(1, routedTo("10.0.20.7")), (Says{4, 20, routed, copied}));
    EXPECT_EQ(in(1, routedTo("10.0.20.1")), (Says{cpu, 10, !routed, copied}));
    EXPECT_EQ(in(1, routedTo("203.0.113.1")), (Says{none, 10, !routed, copied, dropped}));
}

TEST_F(Digest, ADropWithoutADomainSaysNone) {
    EXPECT_EQ(in(13, to(hostB)), (Says{none, 0, !routed, !copied, dropped})) << "no VLAN";
    EXPECT_EQ(in(15, to(hostB)), (Says{none, 0, !routed, !copied, dropped})) << "port down";
    EXPECT_EQ(in(3, tagged(99, hostB)), (Says{none, 0, !routed, !copied, dropped}))
        << "no such VLAN";
}

TEST_F(Digest, AnyOtherDropSaysTheIngressDomain) {
    Says const drop10{none, 10, !routed, !copied, dropped};
    EXPECT_EQ(in(1, tagged(20, hostC)), (Says{none, 20, !routed, !copied, dropped}))
        << "not admitted";
    EXPECT_EQ(in(1, to(hostA)), drop10) << "hairpin";
    EXPECT_EQ(in(1, routedTo("8.8.8.8")), drop10) << "no route";
    tables.portUpIs(2, false);
    EXPECT_EQ(in(1, to(hostB)), drop10) << "port down";
    tables.portUpIs(4, false);
    EXPECT_EQ(in(1, routedTo("10.0.20.7")), drop10) << "port down behind a route";
    for (DevicePort member : {8, 9, 10}) {
        tables.portUpIs(member, false);
    }
    EXPECT_EQ(in(1, routedTo("10.0.20.8")), drop10) << "all members down";
    tables.acl().ruleIs({.list = 1, .sequence = 1, .action = AclRule::Action::drop});
    EXPECT_EQ(in(1, to(stranger)), drop10) << "ACL";
}

// How the steps work together.
using Pipeline = PipelineFixture;

TEST_F(Pipeline, TakesTheIngressPortFromThePhase0Bytes) {
    EXPECT_EQ(in(1, to(hostC)), (Says{none, 10}));
    EXPECT_EQ(in(3, tagged(20, hostC)), (Says{4, 20}));
    auto garbage = encodePhase0(1);
    garbage[3] = 2;
    EXPECT_EQ(decide(tables, garbage, to(hostB)).reason, Reason::phase0Unknown);
    EXPECT_EQ(decide(tables, {}, to(hostB)).reason, Reason::phase0Unknown);
}

TEST_F(Pipeline, TakesUntaggedFramesOfATrunkForItsNativeVlan) {
    EXPECT_EQ(in(3, to(hostB)), (Says{2, 10}));
    EXPECT_EQ(in(3, tagged(0, hostB)), (Says{2, 10})) << "a tag that only has a priority";
    EXPECT_EQ(in(3, tagged(10, hostB)), (Says{2, 10})) << "the native VLAN's own tag";
}

TEST_F(Pipeline, TakesATagOfItsOwnVlanOnAnAccessPort) {
    EXPECT_EQ(in(1, tagged(10, hostB)), (Says{2, 10}));
}

TEST_F(Pipeline, ClassifiesByTheOuterTag) {
    EXPECT_EQ(in(3, to(hostC, join({tag(20, 0x88a8), tag(10), ipv4({}, udp())}))), (Says{4, 20}));
}

TEST_F(Pipeline, BridgesASubInterfaceOfAVlan) {
    tables.subIntfIs(port(7), 200, 10);
    tables.vlanMemberIs(10, port(7));
    tables.fdbIs(10, stranger, port(7));
    EXPECT_EQ(in(7, tagged(200, hostB)), (Says{2, 10}));
    EXPECT_EQ(in(7, tagged(200, router)), (Says{4, 20, routed})) << "through its VLAN interface";
    EXPECT_EQ(in(7, tagged(200, everyone)), (Says{none, 10}));
    EXPECT_EQ(in(1, to(stranger)), (Says{7, 10}));
    EXPECT_EQ(why(7, tagged(200, stranger)), Reason::hairpin);
    EXPECT_EQ(why(7, tagged(10, hostB)), Reason::tagRefused) << "the VLAN's number is no tag here";
}

TEST_F(Pipeline, TakesALagMemberForItsLag) {
    EXPECT_EQ(in(9, to(hostC)), (Says{4, 20}));
    EXPECT_EQ(why(9, to(hostL)), Reason::hairpin);
}

TEST_F(Pipeline, MatchesAclRulesOnTheLagOfAMember) {
    tables.acl().ruleIs({.list = 1,
                         .sequence = 1,
                         .match = {.ingress = LogicalPort::lag(1)},
                         .action = AclRule::Action::drop});
    EXPECT_EQ(why(9, to(hostC)), Reason::aclDrop);
    EXPECT_EQ(in(3, tagged(20, hostC)), (Says{4, 20}));
}

TEST_F(Pipeline, TrapsEveryReservedGroupAddressAndNoOther) {
    for (unsigned last = 0; last < 16; ++last) {
        EXPECT_EQ(why(1, to(MacAddress{0x0180c2000000u + std::uint64_t{last}})),
                  Reason::linkLocalTrap);
    }
    EXPECT_EQ(why(1, to(mac("01:80:c2:00:00:10"))), Reason::multicastFlood);
    EXPECT_EQ(why(1, to(mac("01:80:c1:ff:ff:ff"))), Reason::multicastFlood);
}

TEST_F(Pipeline, CopiesArpBroadcastsOnlyWhereTheVlanRoutes) {
    auto const request = to(everyone, arp("10.0.30.7", "10.0.30.1"));
    EXPECT_EQ(in(6, request), (Says{none, 30}));
    EXPECT_EQ(in(5, request), (Says{none, 4094, !routed, copied}));
}

TEST_F(Pipeline, CopiesIpLinkLocalMulticastOnlyWhereTheVlanRoutes) {
    auto const ospf = to(mac("01:00:5e:00:00:05"), ipv4({.dst = "224.0.0.5", .protocol = 89}));
    auto const solicitation =
        to(mac("33:33:ff:00:00:01"), ipv6({.dst = "ff02::1:ff00:1", .nextHeader = 58}, icmp(135)));
    EXPECT_EQ(in(1, ospf), (Says{none, 10, !routed, copied}));
    EXPECT_EQ(in(1, solicitation), (Says{none, 10, !routed, copied}));
    EXPECT_EQ(in(6, ospf), (Says{none, 30}));
    EXPECT_EQ(in(1, to(mac("01:00:5e:00:01:05"), ipv4({.dst = "224.0.1.5"}))), (Says{none, 10}));
}

TEST_F(Pipeline, LetsTheFirstMatchingProtocolRuleDecide) {
    FrameMatch const bgp{.ipProtocol = 6, .dstPort = Range{179, 179}};
    tables.protocolRules() = {{bgp, true}, {{.ipProtocol = 6}, false}};
    EXPECT_EQ(in(1, to(hostB, ipv4({.protocol = 6}, tcp(9, 179)))), (Says{cpu, 10}));
    EXPECT_EQ(in(1, to(hostB, ipv4({.protocol = 6}, tcp(9, 80)))), (Says{2, 10, !routed, copied}));
    EXPECT_EQ(in(1, to(hostB)), (Says{2, 10}));
}

TEST_F(Pipeline, FloodsAFrameToTheRouterOfAnotherVlan) {
    EXPECT_EQ(in(1, to(router20)), (Says{none, 10}));
    EXPECT_EQ(in(6, to(router)), (Says{none, 30})) << "a VLAN that does not route";
}

TEST_F(Pipeline, RoutesWhatIsForAVirtualRouter) {
    auto const virtualMac = mac("00:00:5e:00:01:01");
    tables.virtualMacIs(10, virtualMac);
    EXPECT_EQ(in(1, to(virtualMac)), (Says{4, 20, routed}));
}

TEST_F(Pipeline, SendsToTheCpuWhatIsForTheRouterButNotIp) {
    EXPECT_EQ(in(1, to(router, arp("10.0.10.7", "10.0.10.1", 2))), (Says{cpu, 10}));
    EXPECT_EQ(why(1, to(router, join({number(0x88cc, 2), Bytes(46)}))), Reason::nonIpToRouter);
    EXPECT_EQ(why(3, to(router, join({tag(10), tag(20), ipv4({}, udp())}))), Reason::nonIpToRouter);
}

TEST_F(Pipeline, RoutesTaggedPackets) {
    EXPECT_EQ(in(3, tagged(10, router)), (Says{4, 20, routed}));
}

TEST_F(Pipeline, DropsUnicastToOthersOnARoutedPortAndFloodsGroupsToNobody) {
    EXPECT_EQ(in(5, to(stranger)), (Says{none, 4094, !routed, !copied, dropped}));
    EXPECT_EQ(in(5, to(everyone)), (Says{none, 4094}));
}

TEST_F(Pipeline, BridgesNothingOnARoutedPortEvenIfItsInternalVlanIsListedAsAVlan) {
    tables.vlanMemberIs(4094, port(5));
    EXPECT_EQ(why(5, to(stranger)), Reason::notForRoutedPort);
    EXPECT_EQ(in(5, routedTo("10.0.20.7")), (Says{4, 20, routed}));
}

TEST_F(Pipeline, DropsPacketsWithABrokenHeaderThatAreToBeRouted) {
    auto frame = routedTo("10.0.20.7");
    frame[14 + 10] ^= 1;
    EXPECT_EQ(why(1, frame), Reason::ipHeaderBroken);
    frame = routedTo6("2001:db8:20::7");
    frame.pop_back();
    EXPECT_EQ(why(1, frame), Reason::ipHeaderBroken);
}

TEST_F(Pipeline, BridgesPacketsWithABrokenHeader) {
    auto frame = to(hostB);
    frame[14 + 10] ^= 1;
    EXPECT_EQ(in(1, frame), (Says{2, 10}));
}

TEST_F(Pipeline, DropsPacketsThatNoRouterForwards) {
    auto const packet = [&](std::string_view src, std::string_view dst) {
        return dst.find(':') == dst.npos ? to(router, ipv4({.src = src, .dst = dst}, udp()))
                                         : to(router, ipv6({.src = src, .dst = dst}, udp()));
    };
    tables.routeIs(0, prefix("0.0.0.0/0"), Route::via(1));
    tables.routeIs(0, prefix("::/0"), Route::via(6));
    for (auto const* src : {"224.0.0.1", "127.0.0.1", "255.255.255.255", "0.0.0.0"}) {
        EXPECT_EQ(why(1, packet(src, "8.8.8.8")), Reason::addressNotRouted) << src;
    }
    for (auto const* dst : {"224.0.1.1", "127.0.0.1", "255.255.255.255", "0.1.2.3"}) {
        EXPECT_EQ(why(1, packet("10.0.10.7", dst)), Reason::addressNotRouted) << dst;
    }
    for (auto const* src : {"ff02::1", "::1", "::", "fe80::7"}) {
        EXPECT_EQ(why(1, packet(src, "2001:db8:6::1")), Reason::addressNotRouted) << src;
    }
    for (auto const* dst : {"ff05::1", "::1", "::", "fe80::7"}) {
        EXPECT_EQ(why(1, packet("2001:db8:10::7", dst)), Reason::addressNotRouted) << dst;
    }
    EXPECT_EQ(why(1, packet("10.0.10.7", "169.254.1.1")), Reason::forwarded);
}

TEST_F(Pipeline, KeepsWhatIsForTheSwitchWhateverItsTtl) {
    EXPECT_EQ(why(1, routedTo("10.0.10.1", 1)), Reason::ownAddress);
    EXPECT_EQ(why(1, routedTo6("2001:db8:10::1", 0)), Reason::ownAddress);
    EXPECT_EQ(why(1, to(router, ipv6({.src = "fe80::7", .dst = "fe80::1"}, udp()))),
              Reason::ownAddress);
}

TEST_F(Pipeline, ForwardsATtlOfTwoButNotOfOneOrZero) {
    EXPECT_EQ(why(1, routedTo("10.0.20.7", 2)), Reason::forwarded);
    EXPECT_EQ(why(1, routedTo("10.0.20.7", 1)), Reason::ttlExpired);
    EXPECT_EQ(why(1, routedTo("10.0.20.7", 0)), Reason::ttlExpired);
    EXPECT_EQ(why(1, routedTo6("2001:db8:20::7", 1)), Reason::ttlExpired);
}

TEST_F(Pipeline, RoutesInTheVrfOfTheIngressDomain) {
    EXPECT_EQ(in(7, to(router, join({tag(100), ipv4({.dst = "10.0.10.1"}, udp())}))),
              (Says{7, 4093, routed}))
        << "another VRF's own address is none here";
    EXPECT_EQ(why(7, to(router, join({tag(100), ipv4({.dst = "10.8.0.1"}, udp())}))),
              Reason::ownAddress);
}

TEST_F(Pipeline, TakesTheLongestOfTheRoutes) {
    EXPECT_EQ(why(1, routedTo("203.0.113.127")), Reason::routeDrops);
    EXPECT_EQ(why(1, routedTo("203.0.113.128")), Reason::routeToCpu);
}

TEST_F(Pipeline, GleansBehindRoutedPortsToo) {
    EXPECT_EQ(in(1, routedTo("172.16.5.1")), (Says{cpu, 10}));
}

TEST_F(Pipeline, RoutesOutOfThePortThatThePacketCameFrom) {
    EXPECT_EQ(in(4, to(router20, ipv4({.dst = "10.0.20.7"}, udp()))), (Says{4, 20, routed}));
}

TEST_F(Pipeline, SendsEachFlowThroughTheNextHopThatTheHashPicks) {
    std::map<unsigned, int> seen;
    for (unsigned flow = 0; flow < 200; ++flow) {
        auto const frame = to(router, ipv4({.dst = "198.51.100.1"}, udp(20000 + flow)));
        auto const says = in(1, frame);
        auto const expected = pick(ecmpHash(parseFrame(frame)), 2) == 0 ? 4094u : 4092u;
        EXPECT_EQ(says.domain, expected);
        EXPECT_EQ(says, in(1, frame)) << "a flow stays where it is";
        ++seen[says.domain];
    }
    EXPECT_GT(seen[4094], 60);
    EXPECT_GT(seen[4092], 60);
}

TEST_F(Pipeline, SpreadsALagOverTheMembersThatAreUp) {
    tables.portUpIs(9, false);
    std::set<unsigned> seen;
    for (unsigned flow = 0; flow < 100; ++flow) {
        auto const frame = to(hostL, ipv4({}, udp(20000 + flow)));
        auto const expected = pick(lagHash(parseFrame(frame)), 2) == 0 ? 8u : 10u;
        EXPECT_EQ(in(4, frame), (Says{expected, 20}));
        seen.insert(expected);
    }
    EXPECT_EQ(seen.size(), 2u);
}

TEST_F(Pipeline, LeavesOutMembersThatDoNotDistribute) {
    tables.lagIs(1, {{8, false}, {9}, {10, false}});
    for (unsigned flow = 0; flow < 20; ++flow) {
        EXPECT_EQ(in(4, to(hostL, ipv4({}, udp(20000 + flow)))), (Says{9, 20}));
    }
}

TEST_F(Pipeline, LetsAnFdbEntryLeadToTheCpu) {
    tables.fdbIs(30, stranger, port(cpu));
    EXPECT_EQ(in(6, to(stranger)), (Says{cpu, 30}));
}

TEST_F(Pipeline, FloodsWhatIsRoutedToAMulticastMac) {
    tables.neighbourIs(20, ip("10.0.20.50"), mac("03:bf:00:00:00:01"));
    EXPECT_EQ(in(1, routedTo("10.0.20.50")), (Says{none, 20, routed}));
}

TEST_F(Pipeline, AnswersEveryFrameHoweverShort) {
    auto const whole = routedTo("10.0.20.7");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        Bytes const cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(why(1, cut), size < 14 ? Reason::frameTooShort : Reason::ipHeaderBroken);
    }
    EXPECT_EQ(in(1, whole), (Says{4, 20, routed}));
}

}  // namespace
}  // namespace SoftChip
