#include "softchip/PipelineReason.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "softchip/Pipeline.h"
#include "tests/softchip/PipelineFixture.h"

namespace SoftChip {
namespace {

using namespace FrameBuilder;

class PipelineReason : public PipelineFixture {
  protected:
    // Whether a frame's road has the reason; the last step's must be the decision's.
    bool has(Reason reason, DevicePort ingress, Bytes const& frame) {
        auto const last = decision(ingress, frame);
        EXPECT_EQ(explanation.entries.back().reason, last.reason);
        EXPECT_EQ(explanation.entries.back().step, last.step);
        return std::ranges::any_of(explanation.entries,
                                   [&](auto const& entry) { return entry.reason == reason; });
    }
    void rule(AclRule::Action action, bool copy) {
        tables.acl().ruleIs({.list = 7, .sequence = 30, .action = action, .copyToCpu = copy});
    }
};

TEST_F(PipelineReason, OfParsing) {
    EXPECT_TRUE(has(Reason::parsed, 1, to(hostB)));
    EXPECT_EQ(why(456, to(hostB)), Reason::phase0Unknown);
    EXPECT_EQ(why(1, Bytes(13)), Reason::frameTooShort);
    EXPECT_EQ(why(1, join({ethernet(hostB, hostA), number(0x8100, 2), Bytes(3)})),
              Reason::tagTooShort);
    EXPECT_EQ(why(1, join({ethernet(hostB, everyone), ipv4({}, udp())})), Reason::sourceMulticast);
}

TEST_F(PipelineReason, OfTheIngressPort) {
    EXPECT_TRUE(has(Reason::portIsUp, 1, to(hostB)));
    EXPECT_EQ(why(100, to(hostB)), Reason::portUnknown);
    EXPECT_EQ(why(15, to(hostB)), Reason::portDown);
}

TEST_F(PipelineReason, OfClassification) {
    EXPECT_TRUE(has(Reason::untaggedVlan, 1, to(hostB)));
    EXPECT_TRUE(has(Reason::taggedVlan, 3, tagged(20, hostC)));
    EXPECT_TRUE(has(Reason::subInterface, 7, tagged(100, router)));
    EXPECT_TRUE(has(Reason::routedPort, 5, to(router)));
    EXPECT_EQ(why(13, to(hostB)), Reason::noVlanOnPort);
    EXPECT_EQ(why(14, to(hostB)), Reason::untaggedRefused);
    EXPECT_EQ(why(7, to(router)), Reason::untaggedRefused);
    EXPECT_EQ(why(7, tagged(101, router)), Reason::tagRefused);
    EXPECT_EQ(why(3, tagged(4095, hostB)), Reason::tagReserved);
}

TEST_F(PipelineReason, OfAdmission) {
    EXPECT_TRUE(has(Reason::admitted, 1, to(hostB)));
    EXPECT_TRUE(has(Reason::internalDomain, 5, to(router)));
    EXPECT_EQ(why(3, tagged(99, hostB)), Reason::vlanUnknown);
    EXPECT_EQ(why(3, tagged(40, hostB)), Reason::vlanNotOnPort);
}

TEST_F(PipelineReason, OfTheAcl) {
    EXPECT_TRUE(has(Reason::noAclRule, 1, to(hostB)));
    rule(AclRule::Action::permit, false);
    EXPECT_TRUE(has(Reason::aclPermit, 1, to(hostB)));
    rule(AclRule::Action::permit, true);
    EXPECT_TRUE(has(Reason::aclCopy, 1, to(hostB)));
    rule(AclRule::Action::drop, false);
    EXPECT_EQ(why(1, to(hostB)), Reason::aclDrop);
}

TEST_F(PipelineReason, OfControlTraffic) {
    EXPECT_TRUE(has(Reason::notControl, 1, to(hostB)));
    EXPECT_TRUE(has(Reason::arpBroadcastCopy, 1, to(everyone, arp("10.0.10.7", "10.0.10.1"))));
    EXPECT_TRUE(has(Reason::ipLinkLocalCopy, 1,
                    to(mac("01:00:5e:00:00:12"), ipv4({.dst = "224.0.0.18", .protocol = 112}))));
    EXPECT_EQ(why(1, to(mac("01:80:c2:00:00:00"))), Reason::linkLocalTrap);
    tables.protocolRules() = {{{.etherType = 0x0806}, true}, {{.ipProtocol = 17}, false}};
    EXPECT_TRUE(has(Reason::protocolCopy, 1, to(hostB)));
    EXPECT_EQ(why(1, to(everyone, arp("10.0.10.7", "10.0.10.1"))), Reason::protocolTrap);
}

TEST_F(PipelineReason, OfTheRouterMac) {
    EXPECT_TRUE(has(Reason::toRouter, 1, routedTo("10.0.20.7")));
    EXPECT_TRUE(has(Reason::groupAddress, 1, to(everyone)));
    EXPECT_TRUE(has(Reason::notRouterMac, 1, to(hostB)));
    EXPECT_EQ(why(1, to(router, arp("10.0.10.7", "10.0.10.1"))), Reason::nonIpToRouter);
    EXPECT_EQ(why(5, to(stranger)), Reason::notForRoutedPort);
}

TEST_F(PipelineReason, OfOwnAddressAndTtl) {
    EXPECT_TRUE(has(Reason::transit, 1, routedTo("10.0.20.7")));
    EXPECT_EQ(why(1, to(router, number(0x0800, 2))), Reason::ipHeaderBroken);
    EXPECT_EQ(why(1, routedTo("127.0.0.1")), Reason::addressNotRouted);
    EXPECT_EQ(why(1, routedTo("10.0.10.1")), Reason::ownAddress);
    EXPECT_EQ(why(1, routedTo("10.0.20.7", 1)), Reason::ttlExpired);
}

TEST_F(PipelineReason, OfTheRoute) {
    EXPECT_TRUE(has(Reason::neighbourFound, 1, routedTo("10.0.20.7")));
    EXPECT_EQ(why(1, routedTo("8.8.8.8")), Reason::noRoute);
    EXPECT_EQ(why(1, routedTo("203.0.113.1")), Reason::routeDrops);
    EXPECT_EQ(why(1, routedTo("203.0.113.200")), Reason::routeToCpu);
    EXPECT_EQ(why(1, routedTo("172.16.3.1")), Reason::noNextHop) << "an empty set";
    EXPECT_EQ(why(1, routedTo("172.16.9.1")), Reason::noNextHop) << "no such set";
    EXPECT_EQ(why(1, routedTo("172.16.4.1")), Reason::noNextHop) << "no such interface";
    EXPECT_EQ(why(1, routedTo("10.0.20.10")), Reason::glean);
}

TEST_F(PipelineReason, OfTheEgressInterface) {
    EXPECT_TRUE(has(Reason::intoVlan, 1, routedTo("10.0.20.7")));
    EXPECT_TRUE(has(Reason::outOfRoutedPort, 1, routedTo("192.0.2.1")));
    EXPECT_TRUE(has(Reason::outOfSubInterface, 7, tagged(100, router)));
}

TEST_F(PipelineReason, OfTheFdb) {
    EXPECT_TRUE(has(Reason::fdbHit, 1, to(hostB)));
    EXPECT_EQ(why(1, to(hostA)), Reason::hairpin);
    EXPECT_EQ(why(1, to(everyone)), Reason::broadcastFlood);
    EXPECT_EQ(why(1, to(mac("33:33:00:01:00:01"))), Reason::multicastFlood);
    EXPECT_EQ(why(1, to(stranger)), Reason::unknownUnicastFlood);
    EXPECT_EQ(why(1, routedTo("10.0.20.9")), Reason::neighbourMacFlood);
    tables.fdbIs(10, stranger, port(4));
    EXPECT_EQ(why(1, to(stranger)), Reason::fdbPortNotInVlan);
}

TEST_F(PipelineReason, OfTheLagMember) {
    EXPECT_TRUE(has(Reason::notLag, 1, to(hostB)));
    EXPECT_TRUE(has(Reason::lagMember, 4, to(hostL)));
    tables.lagIs(1, {});
    EXPECT_EQ(why(4, to(hostL)), Reason::allMembersDown);
    tables.lagDel(1);
    EXPECT_EQ(why(4, to(hostL)), Reason::allMembersDown);
}

TEST_F(PipelineReason, OfTheEgressPort) {
    EXPECT_EQ(why(1, to(hostB)), Reason::forwarded);
    tables.portUpIs(2, false);
    EXPECT_EQ(why(1, to(hostB)), Reason::egressPortDown);
    tables.portDel(2);
    EXPECT_EQ(why(1, to(hostB)), Reason::egressPortDown);
}

TEST_F(PipelineReason, OfAMissingCpuPort) {
    tables.portDel(cpu);
    EXPECT_EQ(in(1, routedTo("10.0.10.1")), (Says{none, 10, false, false, true}));
    EXPECT_TRUE(has(Reason::noCpuPort, 1, routedTo("10.0.10.1")));
    EXPECT_TRUE(has(Reason::ownAddress, 1, routedTo("10.0.10.1")));
}

TEST_F(PipelineReason, AllHaveATextOfTheirOwn) {
    std::set<std::string> texts;
    for (unsigned reason = 0; reason < reasonCount; ++reason) {
        texts.insert(text(static_cast<Reason>(reason)));
    }
    EXPECT_EQ(texts.size(), reasonCount);
    EXPECT_FALSE(texts.contains("unknown reason"));
}

TEST_F(PipelineReason, ExplainARoadStepByStep) {
    decision(1, routedTo("192.0.2.1"));
    EXPECT_EQ(
        explanation.text(),
        "1 parse: parsed (02:00:00:00:00:0a to 02:00:00:00:ff:01, IPv4 10.0.10.7 to 192.0.2.1 "
        "TTL 64, UDP port 1024 to 4791)\n"
        "2 port up: the ingress port is up (port 1)\n"
        "3 VLAN classification: access or native VLAN of the port (VLAN 10)\n"
        "4 VLAN admission: the VLAN has the port as a member (VLAN 10)\n"
        "5 ingress ACL: no rule matches\n"
        "6 link-local multicast: nothing of the CPU's\n"
        "7 router MAC: to the router (02:00:00:00:ff:01)\n"
        "8 own address, TTL: to be forwarded (192.0.2.1 in VRF 0, TTL 64)\n"
        "9 route: next hop found (192.0.2.0/24, next hop 1 of 1, 10.9.0.2 on VLAN 4094, "
        "02:00:00:00:00:99)\n"
        "10 egress interface: out of a routed port (VLAN 4094, port 5)\n"
        "12 LAG member: not a LAG\n"
        "13 egress port up: sent (port 5)");
}

TEST_F(PipelineReason, ExplainABridgedFrameThroughALag) {
    decision(4, to(hostL));
    auto const text = explanation.text();
    EXPECT_NE(text.find("11 FDB: MAC address known (02:00:00:00:00:10 in VLAN 20, LAG 1)\n"
                        "12 LAG member: member chosen (LAG 1, members up: 3)\n"
                        "13 egress port up: sent (port "),
              text.npos)
        << text;
}

TEST_F(PipelineReason, ForgetTheFrameBefore) {
    decision(1, to(hostB));
    decision(15, to(hostB));
    EXPECT_EQ(explanation.entries.size(), 2u);
}

}  // namespace
}  // namespace SoftChip
