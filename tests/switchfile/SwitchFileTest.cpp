#include "switchfile/SwitchFile.h"

#include <gtest/gtest.h>

namespace SwitchFile {
namespace {

Plexa::IntfId id(std::string_view name) {
    return Plexa::IntfId::fromName(name).value();
}

SoftChip::IpAddress ip(std::string_view text) {
    return SoftChip::IpAddress::fromText(text).value();
}

SwitchModel read(std::string_view text) {
    return parseSwitchFile(text, "switch.json");
}

// A model with VLANs 10 to 19 and 30, VRF blue, a router MAC and these interfaces.
SwitchModel withInterfaces(std::string const& interfaces, std::string const& more = "") {
    return read(R"({"routerMac": "02:00:00:00:00:01", "vrfs": ["blue"],
                    "vlans": {"10-19": {}, "30": {"name": "voice"}},
                    "interfaces": {)" +
                interfaces + "}" + more + "}");
}

Interface const& only(SwitchModel const& model, std::string_view name) {
    Interface const* const intf = model.interface(id(name));
    if (intf == nullptr) {
        throw std::runtime_error("no such interface");
    }
    return *intf;
}

TEST(SwitchFile, SmallestFileHasInterfacesAlone) {
    SwitchModel const model = read(R"({"interfaces": {}})");
    EXPECT_EQ(model.vrfs, std::vector<std::string>{"default"});
    EXPECT_TRUE(model.interfaces.empty());
}

TEST(SwitchFile, PortIsGivenByPipeAndIndexOrByDevicePort) {
    SwitchModel const model =
        withInterfaces(R"("Ethernet1": {"port": "1/5"}, "Ethernet2/1": {"port": 455},
                          "Ethernet3": {"port": "3/70"})");
    EXPECT_EQ(only(model, "Ethernet1").devicePort, 133);
    EXPECT_EQ(only(model, "Ethernet2/1").devicePort, 455);
    EXPECT_EQ(only(model, "Ethernet3").devicePort, 454);
}

TEST(SwitchFile, PortsAreUpUnlessTheFileSaysOtherwise) {
    SwitchModel const model =
        withInterfaces(R"("Ethernet1": {"port": 1}, "Ethernet2": {"port": 2, "up": false})");
    EXPECT_TRUE(only(model, "Ethernet1").up);
    EXPECT_FALSE(only(model, "Ethernet2").up);
}

TEST(SwitchFile, AccessPortCarriesItsVlanUntagged) {
    SwitchModel const model = withInterfaces(R"("Ethernet1": {"port": 1, "access": 12})");
    VlanMembership const& vlans = only(model, "Ethernet1").switching.value();
    EXPECT_EQ(vlans.untagged, 12);
    EXPECT_TRUE(vlans.tagged.none());
    EXPECT_TRUE(vlans.carries(12));
    EXPECT_FALSE(vlans.carries(13));
}

TEST(SwitchFile, TrunkTakesRangesAndANativeVlan) {
    SwitchModel const model =
        withInterfaces(R"("Ethernet1": {"port": 1, "trunk": "10-12, 15,30", "native": 19})");
    VlanMembership const& vlans = only(model, "Ethernet1").switching.value();
    EXPECT_EQ(vlans.untagged, 19);
    EXPECT_EQ(vlans.tagged.count(), 5U);
    for (std::uint16_t const vlan : {10, 11, 12, 15, 30, 19}) {
        EXPECT_TRUE(vlans.carries(vlan)) << vlan;
    }
    EXPECT_FALSE(vlans.carries(13));
}

TEST(SwitchFile, TrunkTakesOneNumberOrAllVlans) {
    SwitchModel const model = withInterfaces(
        R"("Ethernet1": {"port": 1, "trunk": 30}, "Ethernet2": {"port": 2, "trunk": "all"})");
    EXPECT_EQ(only(model, "Ethernet1").switching->tagged.count(), 1U);
    EXPECT_EQ(only(model, "Ethernet2").switching->tagged.count(), model.vlans.size());
}

TEST(SwitchFile, VlansComeAloneOrInRanges) {
    SwitchModel const model = withInterfaces("");
    ASSERT_EQ(model.vlans.size(), 11U);
    EXPECT_EQ(model.vlans.front().id, 10);
    EXPECT_EQ(model.vlans.back().id, 30);
    EXPECT_EQ(model.vlans.back().name, "voice");
}

TEST(SwitchFile, LagKnowsItsMembersAndTheyKnowTheirLag) {
    SwitchModel const model = withInterfaces(
        R"("Lag3": {"members": ["Ethernet2", "Ethernet1"], "trunk": "10"},
           "Ethernet1": {"port": 1}, "Ethernet2": {"port": 2})");
    EXPECT_EQ(only(model, "Lag3").members,
              (std::vector<Plexa::IntfId>{id("Ethernet2"), id("Ethernet1")}));
    EXPECT_EQ(only(model, "Ethernet1").lag, id("Lag3"));
    EXPECT_EQ(lagNumber(id("Lag3")), 3);
}

TEST(SwitchFile, AddressesMakeAPortRouted) {
    SwitchModel const model = withInterfaces(
        R"("Ethernet1": {"port": 1, "vrf": "blue", "addresses": ["10.0.0.1/31", "2001:db8::1/64"]},
           "Ethernet2": {"port": 2, "routed": true})");
    Routing const& routing = only(model, "Ethernet1").routing.value();
    EXPECT_EQ(model.vrfs[routing.vrf], "blue");
    ASSERT_EQ(routing.addresses.size(), 2U);
    EXPECT_EQ(routing.addresses[0].address, ip("10.0.0.1"));
    EXPECT_EQ(routing.addresses[0].network().text(), "10.0.0.0/31");
    EXPECT_EQ(routing.addresses[1].length, 64);
    EXPECT_TRUE(only(model, "Ethernet2").routing.has_value());
}

TEST(SwitchFile, AnAddressMayBeTheOnlyOneOfItsSubnetOrOneOfTwo) {
    SwitchModel const model = withInterfaces(
        R"("Ethernet1": {"port": 1, "addresses": ["172.16.0.1/32", "10.0.0.0/31", "10.0.0.3/31"]})");
    auto const& addresses = only(model, "Ethernet1").routing.value().addresses;
    ASSERT_EQ(addresses.size(), 3U);
    EXPECT_EQ(addresses[0].network().text(), "172.16.0.1/32");
    EXPECT_EQ(addresses[1].network().text(), "10.0.0.0/31");
    EXPECT_EQ(addresses[2].network().text(), "10.0.0.2/31");
}

TEST(SwitchFile, SubInterfaceTakesItsNumberForItsTag) {
    SwitchModel const model = withInterfaces(
        R"("Ethernet1": {"port": 1, "routed": true}, "Ethernet1.100": {},
           "Ethernet1.5000": {"tag": 7})");
    EXPECT_EQ(only(model, "Ethernet1.100").tag, 100);
    EXPECT_EQ(only(model, "Ethernet1.5000").tag, 7);
}

TEST(SwitchFile, SubInterfaceMayStandBeforeItsParent) {
    EXPECT_NO_THROW(withInterfaces(R"("Lag1.5": {}, "Lag1": {"members": [], "routed": true})"));
}

TEST(SwitchFile, BridgedSubInterfaceHasAVlanAndDoesNotRoute) {
    SwitchModel const model = withInterfaces(
        R"("Ethernet1": {"port": 1, "routed": true}, "Ethernet1.100": {"vlan": 30})");
    EXPECT_EQ(only(model, "Ethernet1.100").vlan, 30);
    EXPECT_FALSE(only(model, "Ethernet1.100").routing.has_value());
    EXPECT_EQ(only(model, "Ethernet1.100").internalVlan, 0);
}

TEST(SwitchFile, InternalVlansCountDownInFileOrder) {
    SwitchModel const model = withInterfaces(
        R"("Ethernet1": {"port": 1, "routed": true}, "Vlan10": {}, "Ethernet1.100": {},
           "Lag1": {"members": [], "addresses": []}, "Ethernet2": {"port": 2, "access": 10})");
    EXPECT_EQ(only(model, "Ethernet1").internalVlan, 4094);
    EXPECT_EQ(only(model, "Ethernet1.100").internalVlan, 4093);
    EXPECT_EQ(only(model, "Lag1").internalVlan, 4092);
    EXPECT_EQ(only(model, "Vlan10").internalVlan, 0);
    EXPECT_EQ(only(model, "Ethernet2").internalVlan, 0);
}

TEST(SwitchFile, InternalVlansLeaveOutConfiguredOnes) {
    SwitchModel const model = read(
        R"({"routerMac": "02:00:00:00:00:01", "vlans": {"4092-4093": {}, "4094": {}},
            "interfaces": {"Ethernet1": {"port": 1, "routed": true}}})");
    EXPECT_EQ(only(model, "Ethernet1").internalVlan, 4091);
}

TEST(SwitchFile, OneAddressMayStandInTwoVrfs) {
    EXPECT_NO_THROW(withInterfaces(R"("Vlan10": {"addresses": ["10.0.0.1/24"]},
                                      "Vlan11": {"addresses": ["10.0.0.1/24"], "vrf": "blue"})"));
}

TEST(SwitchFile, LinkLocalAddressesMayRepeat) {
    EXPECT_NO_THROW(withInterfaces(R"("Vlan10": {"addresses": ["fe80::1/64"]},
                                      "Vlan11": {"addresses": ["fe80::1/64"]})"));
}

TEST(SwitchFile, SubnetsMayNestAndTheLongestOneReaches) {
    SwitchModel const model = withInterfaces(
        R"("Vlan10": {"addresses": ["10.0.0.1/8"]}, "Vlan11": {"addresses": ["10.1.0.1/16"]})",
        R"(, "routes": {"default": {"192.0.2.0/24": "10.1.2.3"}})");
    EXPECT_EQ(model.nextHopSets.at(0).at(0).intf, id("Vlan11"));
}

TEST(SwitchFile, RoutesTakeOneNextHopSeveralOrNone) {
    SwitchModel const model = withInterfaces(
        R"("Vlan10": {"addresses": ["10.0.10.1/24", "2001:db8:10::1/64"]},
           "Vlan11": {"addresses": ["10.0.11.1/24"], "vrf": "blue"})",
        R"(, "routes": {"default": {"0.0.0.0/0": ["10.0.10.2", "10.0.10.3"],
                                    "10.7.0.0/16": "10.0.10.2", "10.8.0.0/16": "drop",
                                    "10.9.0.0/16": "cpu", "10.10.0.0/16": "Vlan10",
                                    "2001:db8:7::/48": "fe80::9%Vlan10"},
                        "blue": {"10.7.0.0/16": "10.0.11.9"}})");
    ASSERT_EQ(model.routes.size(), 7U);
    auto const& routes = model.routes;
    EXPECT_EQ(
        model.nextHopSets[routes[0].nextHopSet],
        (std::vector<NextHop>{{id("Vlan10"), ip("10.0.10.2")}, {id("Vlan10"), ip("10.0.10.3")}}));
    EXPECT_EQ(model.nextHopSets[routes[1].nextHopSet],
              (std::vector<NextHop>{{id("Vlan10"), ip("10.0.10.2")}}));
    EXPECT_EQ(routes[2].kind, Route::Kind::drop);
    EXPECT_EQ(routes[3].kind, Route::Kind::toCpu);
    EXPECT_EQ(routes[4].kind, Route::Kind::attached);
    EXPECT_EQ(routes[4].intf, id("Vlan10"));
    EXPECT_EQ(model.nextHopSets[routes[5].nextHopSet],
              (std::vector<NextHop>{{id("Vlan10"), ip("fe80::9")}}));
    EXPECT_EQ(routes[6].vrf, 1);
    EXPECT_EQ(model.nextHopSets[routes[6].nextHopSet],
              (std::vector<NextHop>{{id("Vlan11"), ip("10.0.11.9")}}));
}

TEST(SwitchFile, RoutesWithTheSameNextHopsShareOneSet) {
    SwitchModel const model = withInterfaces(
        R"("Vlan10": {"addresses": ["10.0.10.1/24"]})",
        R"(, "routes": {"default": {"10.7.0.0/16": "10.0.10.2", "10.8.0.0/16": ["10.0.10.2"],
                                    "10.9.0.0/16": ["10.0.10.3", "10.0.10.2"]}})");
    EXPECT_EQ(model.nextHopSets.size(), 2U);
    EXPECT_EQ(model.routes[0].nextHopSet, model.routes[1].nextHopSet);
}

TEST(SwitchFile, NextHopsOfOneTextMayDifferByVrf) {
    SwitchModel const model = withInterfaces(
        R"("Vlan10": {"addresses": ["10.0.0.1/24"]},
           "Vlan11": {"addresses": ["10.0.0.1/24"], "vrf": "blue"})",
        R"(, "routes": {"default": {"10.7.0.0/16": "10.0.0.2"}, "blue": {"10.7.0.0/16": "10.0.0.2"}})");
    EXPECT_EQ(model.nextHopSets[model.routes[0].nextHopSet][0].intf, id("Vlan10"));
    EXPECT_EQ(model.nextHopSets[model.routes[1].nextHopSet][0].intf, id("Vlan11"));
}

TEST(SwitchFile, NeighboursBelongToTheirInterface) {
    SwitchModel const model =
        withInterfaces(R"("Vlan10": {"addresses": ["10.0.10.1/24", "2001:db8::1/64"]})",
                       R"(, "neighbours": {"Vlan10": {"10.0.10.2": "02:00:00:00:00:aa",
                                       "fe80::2": "02:00:00:00:00:ab"}})");
    ASSERT_EQ(model.neighbours.size(), 2U);
    EXPECT_EQ(model.neighbours[0].intf, id("Vlan10"));
    EXPECT_EQ(model.neighbours[0].mac.text(), "02:00:00:00:00:aa");
    EXPECT_EQ(model.neighbours[1].address, ip("fe80::2"));
}

TEST(SwitchFile, FdbEntriesPointAtPortsLagsAndBridgedSubInterfaces) {
    SwitchModel const model = withInterfaces(
        R"("Ethernet1": {"port": 1, "access": 10}, "Lag1": {"members": [], "trunk": "10,30"},
           "Ethernet2": {"port": 2, "routed": true}, "Ethernet2.5": {"vlan": 10})",
        R"(, "fdb": {"10": {"02:00:00:00:00:01": "Ethernet1", "02:00:00:00:00:02": "Lag1",
                            "02:00:00:00:00:03": "Ethernet2.5"},
                     "30": {"02:00:00:00:00:01": "Lag1"}})");
    ASSERT_EQ(model.fdb.size(), 4U);
    EXPECT_EQ(model.fdb[2].intf, id("Ethernet2.5"));
    EXPECT_EQ(model.fdb[3].vlan, 30);
}

TEST(SwitchFile, AccessListsKeepTheirRulesBySequence) {
    SwitchModel const model = read(R"({"acls": {"edge": [
        {"action": "drop", "protocol": "tcp", "destinationPort": 23},
        {"sequence": 5, "action": "permit", "source": "10.0.0.0/8"},
        {"action": "copy", "etherType": "0x88cc"},
        {"action": "drop", "copyToCpu": true, "remark": "the rest"}]},
        "vlans": {"10": {"acl": "edge"}},
        "interfaces": {"Ethernet1": {"port": 1, "acl": "edge", "access": 10}}})");
    ASSERT_EQ(model.acls.size(), 1U);
    auto const& rules = model.acls[0].rules;
    ASSERT_EQ(rules.size(), 4U);
    EXPECT_EQ(rules[0].sequence, 5U);
    EXPECT_EQ(rules[1].sequence, 10U);
    EXPECT_EQ(rules[1].action, SoftChip::AclRule::Action::drop);
    EXPECT_EQ(rules[1].match.ipProtocol, 6);
    EXPECT_EQ(rules[1].match.dstPort, (SoftChip::Range{23, 23}));
    EXPECT_EQ(rules[2].sequence, 15U);
    EXPECT_EQ(rules[2].action, SoftChip::AclRule::Action::permit);
    EXPECT_TRUE(rules[2].copyToCpu);
    EXPECT_EQ(rules[2].match.etherType, 0x88cc);
    EXPECT_EQ(rules[3].action, SoftChip::AclRule::Action::drop);
    EXPECT_TRUE(rules[3].copyToCpu);
    EXPECT_EQ(model.vlans[0].acl, 0);
    EXPECT_EQ(only(model, "Ethernet1").acl, 0);
}

TEST(SwitchFile, AccessListRulesMatchEveryFieldOfLayersTwoToFour) {
    SwitchModel const model = read(R"({"acls": {"all": [
        {"action": "drop", "sourceMac": "02:00:00:00:00:00/ff:00:00:00:00:00",
         "destinationMac": "01:80:c2:00:00:0e", "vlanPriority": 7, "source": "10.0.0.0/8",
         "destination": "10.1.1.1", "protocol": 6, "dscp": 46, "ttl": "0-1", "fragment": false,
         "sourcePort": "1024-65535", "destinationPort": "80", "tcpFlags": "syn,!ack"},
        {"action": "drop", "protocol": "icmpv6", "icmpType": 135, "icmpCode": 0}]},
        "interfaces": {}})");
    SoftChip::FrameMatch const& first = model.acls[0].rules[0].match;
    EXPECT_EQ(first.srcMac->mask.value, 0xff0000000000U);
    EXPECT_EQ(first.dstMac->mask.value, 0xffffffffffffU);
    EXPECT_EQ(first.vlanPriority, 7);
    EXPECT_TRUE(first.srcIp->matches(ip("10.200.0.1")));
    EXPECT_FALSE(first.dstIp->matches(ip("10.1.1.2")));
    EXPECT_EQ(first.ipProtocol, 6);
    EXPECT_EQ(first.dscp, 46);
    EXPECT_EQ(first.ttl, (SoftChip::Range{0, 1}));
    EXPECT_EQ(first.fragment, false);
    EXPECT_EQ(first.srcPort, (SoftChip::Range{1024, 65535}));
    EXPECT_EQ(first.dstPort, (SoftChip::Range{80, 80}));
    EXPECT_EQ(first.tcpFlags->value, 0x02);
    EXPECT_EQ(first.tcpFlags->mask, 0x12);
    SoftChip::FrameMatch const& second = model.acls[0].rules[1].match;
    EXPECT_EQ(second.ipProtocol, 58);
    EXPECT_EQ(second.icmpType, 135);
    EXPECT_EQ(second.icmpCode, 0);
}

TEST(SwitchFile, ProtocolCopiesComeByNameOrByFields) {
    SwitchModel const model = read(
        R"({"protocolCopies": ["arp", "nd", {"etherType": "0x88f7", "trap": true}],
            "interfaces": {}})");
    ASSERT_EQ(model.protocolRules.size(), 7U);
    EXPECT_EQ(model.protocolRules[0].match.etherType, 0x0806);
    EXPECT_FALSE(model.protocolRules[0].trap);
    EXPECT_EQ(model.protocolRules[1].match.icmpType, 133);
    EXPECT_TRUE(model.protocolRules[6].trap);
}

TEST(SwitchFile, EveryProtocolNameStandsForFrames) {
    SwitchModel const model = read(
        R"({"protocolCopies": ["dhcp", "dhcpv6", "bfd", "igmp", "ospf", "pim", "vrrp"],
            "interfaces": {}})");
    ASSERT_EQ(model.protocolRules.size(), 7U);
    EXPECT_EQ(model.protocolRules[0].match.dstPort, (SoftChip::Range{67, 68}));
    EXPECT_EQ(model.protocolRules[1].match.dstPort, (SoftChip::Range{546, 547}));
    EXPECT_EQ(model.protocolRules[2].match.dstPort, (SoftChip::Range{3784, 3785}));
    std::vector<int> protocols;
    for (SoftChip::ProtocolRule const& rule : model.protocolRules) {
        protocols.push_back(rule.match.ipProtocol.value());
    }
    EXPECT_EQ(protocols, (std::vector<int>{17, 17, 17, 2, 89, 103, 112}));
}

TEST(SwitchFile, CpuPortIsMarked) {
    SwitchModel const model = withInterfaces(R"("Ethernet65": {"port": "1/64", "cpu": true})");
    EXPECT_TRUE(only(model, "Ethernet65").cpu);
}

TEST(SwitchFile, AccessListsHaveAtMostAsManyPlacesAsTheChipHasNumbers) {
    std::string text = R"({"acls": {"edge": []}, "vlans": {"1": {"acl": "edge"}}, "interfaces": {)";
    for (int number = 1; number <= 65535; ++number) {
        text += (number == 1 ? "\"Lag" : ",\"Lag") + std::to_string(number) +
                R"(": {"members": [], "acl": "edge"})";
    }
    try {
        read(text + "}}");
        FAIL();
    } catch (InputError const& error) {
        EXPECT_STREQ(error.what(),
                     "switch.json: /interfaces/Lag65535/acl: expected at most 65535 places with an "
                     "access list, got \"edge\"");
    }
}

TEST(SwitchFile, UnreadableFileIsNamed) {
    try {
        readSwitchFile("/nonexistent/leaf.json");
        FAIL();
    } catch (InputError const& error) {
        EXPECT_EQ(std::string(error.what()).substr(0, 24), "/nonexistent/leaf.json: ");
    }
}

}  // namespace
}  // namespace SwitchFile
