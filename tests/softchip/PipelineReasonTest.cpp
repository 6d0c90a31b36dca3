#include "softchip/PipelineReason.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <set>
#include <string_view>
#include <vector>

#include "softchip/Pipeline.h"
#include "tests/softchip/PipelineFixture.h"

namespace SoftChip {
namespace {

using namespace FrameBuilder;

// An entry of an explanation with its details.
struct Taken {
    Step step;
    Reason reason;
    std::vector<Detail> details;
    bool operator==(Taken const&) const = default;
};

void PrintTo(Taken const& taken, std::ostream* out) {
    *out << code(taken.step) << ' ' << code(taken.reason) << ", details of kind";
    for (auto const& detail : taken.details) {
        *out << ' ' << detail.index();
    }
}

class PipelineReason : public PipelineFixture {
  protected:
    std::vector<Taken> taken() const {
        std::vector<Taken> road;
        for (auto const& entry : explanation.entries()) {
            auto const details = explanation.details(entry);
            road.push_back({entry.step, entry.reason, {details.begin(), details.end()}});
        }
        return road;
    }
    // Whether a frame's road has the reason; the last step's must be the decision's.
    bool has(Reason reason, DevicePort ingress, Bytes const& frame) {
        auto const last = decision(ingress, frame);
        EXPECT_EQ(explanation.entries().back().reason, last.reason);
        EXPECT_EQ(explanation.entries().back().step, last.step);
        return std::ranges::any_of(explanation.entries(),
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

TEST_F(PipelineReason, AllHaveACodeOfTheirOwn) {
    std::set<std::string_view> codes;
    for (unsigned reason = 0; reason < reasonCount; ++reason) {
        codes.insert(code(static_cast<Reason>(reason)));
    }
    EXPECT_EQ(codes.size(), reasonCount);
}

TEST_F(PipelineReason, StepsHaveACodeOfTheirOwn) {
    std::set<std::string_view> codes;
    for (unsigned step = 1; step <= stepCount; ++step) {
        codes.insert(code(static_cast<Step>(step)));
    }
    EXPECT_EQ(codes.size(), stepCount);
}

// Programs know the codes: one that was changed here is no longer the one that they look for.
TEST_F(PipelineReason, CodesAreWhatTheyAlwaysWere) {
    EXPECT_EQ(code(Step::parse), "parse");
    EXPECT_EQ(code(Step::vlanClassification), "vlanClassification");
    EXPECT_EQ(code(Step::egressPortUp), "egressPortUp");
    EXPECT_EQ(code(Reason::parsed), "parsed");
    EXPECT_EQ(code(Reason::aclDrop), "aclDrop");
    EXPECT_EQ(code(Reason::noCpuPort), "noCpuPort");
}

TEST_F(PipelineReason, ExplainARoadStepByStep) {
    auto const frame = routedTo("192.0.2.1");
    decision(1, frame);
    std::vector<Taken> const road{
        {Step::parse, Reason::parsed, {FrameItself()}},
        {Step::portUp, Reason::portIsUp, {port(1)}},
        {Step::vlanClassification, Reason::untaggedVlan, {InDomain{10}}},
        {Step::vlanAdmission, Reason::admitted, {InDomain{10}}},
        {Step::ingressAcl, Reason::noAclRule, {}},
        {Step::linkLocal, Reason::notControl, {}},
        {Step::routerMac, Reason::toRouter, {router}},
        {Step::ownAddress, Reason::transit, {IpInVrf{ip("192.0.2.1"), 0}, HopsLeft{64}}},
        {Step::route,
         Reason::neighbourFound,
         {prefix("192.0.2.0/24"), NextHopChoice{0, 1}, NextHop{4094, ip("10.9.0.2")}, peer}},
        {Step::egressInterface, Reason::outOfRoutedPort, {InDomain{4094}, port(5)}},
        {Step::lagMember, Reason::notLag, {}},
        {Step::egressPortUp, Reason::forwarded, {port(5)}},
    };
    EXPECT_EQ(taken(), road);
    EXPECT_EQ(explanation.frame().dstIp, ip("192.0.2.1"));
    EXPECT_EQ(explanation.frame().srcPort, parseFrame(frame).srcPort);
}

TEST_F(PipelineReason, ExplainABridgedFrameThroughALag) {
    auto const chosen = decision(4, to(hostL)).egressPort;
    auto const road = taken();
    ASSERT_GE(road.size(), 3U);
    std::vector<Taken> const end{
        {Step::fdb, Reason::fdbHit, {MacInDomain{hostL, 20}, LogicalPort::lag(1)}},
        {Step::lagMember, Reason::lagMember, {LogicalPort::lag(1), MembersUp{3}}},
        {Step::egressPortUp, Reason::forwarded, {port(chosen)}},
    };
    EXPECT_EQ(std::vector(road.end() - 3, road.end()), end);
}

TEST_F(PipelineReason, ExplainWhichRuleOfWhichListDecided) {
    rule(AclRule::Action::drop, false);
    decision(1, to(hostB));
    EXPECT_EQ(taken().back(), (Taken{Step::ingressAcl, Reason::aclDrop, {RuleOfList{7, 30}}}));
}

TEST_F(PipelineReason, ExplainWhatIsWrongWithAHeader) {
    decision(1, to(router, number(0x0800, 2)));
    EXPECT_EQ(taken().back(),
              (Taken{Step::ownAddress, Reason::ipHeaderBroken, {L3Fault::truncated}}));
}

TEST_F(PipelineReason, ExplainATagAndAnIngressLag) {
    decision(11, tagged(100, router));
    EXPECT_EQ(taken().at(1), (Taken{Step::portUp, Reason::portIsUp, {port(11), InLag{2}}}));
    EXPECT_EQ(taken().at(2),
              (Taken{Step::vlanClassification, Reason::tagRefused, {OuterTag{100}}}));
}

TEST_F(PipelineReason, ExplainWithoutAPortMetNothing) {
    decision(456, to(hostB));
    EXPECT_EQ(taken(), (std::vector<Taken>{{Step::parse, Reason::phase0Unknown, {}}}));
}

// In by a LAG's sub-interface that leads into a VLAN, by a rule, and out by a LAG.
TEST_F(PipelineReason, ExplainTheLongestRoadWithRoomToSpare) {
    tables.subIntfIs(LogicalPort::lag(2), 100, 10);
    tables.vlanMemberIs(10, LogicalPort::lag(2));
    rule(AclRule::Action::permit, true);
    tables.nextHopSetIs(1, {{20, ip("10.0.20.8")}});
    decision(11, to(router, join({tag(100), ipv4({.dst = "192.0.2.1"}, udp())})));
    std::size_t all = 0;
    for (auto const& each : taken()) {
        all += each.details.size();
    }
    EXPECT_EQ(taken().size(), stepCount);
    EXPECT_EQ(all, 20U);
    EXPECT_LE(all, Explanation::maxDetails);
}

TEST_F(PipelineReason, ForgetTheFrameBefore) {
    decision(1, to(hostB));
    decision(15, to(hostB));
    EXPECT_EQ(explanation.entries().size(), 2u);
}

}  // namespace
}  // namespace SoftChip
