#include "agent/DeriveTables.h"

#include <gtest/gtest.h>

#include "switchfile/SwitchFile.h"

namespace Agent {
namespace {

using SoftChip::LogicalPort;
using SoftChip::PortMode;

Plexa::IntfId id(std::string_view name) {
    return Plexa::IntfId::fromName(name).value();
}

SoftChip::IpAddress ip(std::string_view text) {
    return SoftChip::IpAddress::fromText(text).value();
}

SoftChip::MacAddress mac(std::string_view text) {
    return SoftChip::MacAddress::fromText(text).value();
}

class DeriveTables : public testing::Test {
  protected:
    std::vector<SoftChip::AclRule> rulesOfList(std::uint16_t list) const {
        std::vector<SoftChip::AclRule> rules;
        for (SoftChip::AclRule const& rule : tables.acl().rules()) {
            if (rule.list == list) {
                rules.push_back(rule);
            }
        }
        return rules;
    }

    SwitchFile::SwitchModel const model = SwitchFile::parseSwitchFile(R"({
        "routerMac": "02:00:00:00:00:01",
        "vrfs": ["blue"],
        "acls": {"edge": [{"action": "drop", "protocol": "tcp"}, {"action": "copy"}],
                 "core": [{"action": "permit"}]},
        "vlans": {"10": {"acl": "core"}, "20": {}},
        "interfaces": {
            "Ethernet1": {"port": 1, "access": 10, "acl": "edge"},
            "Ethernet2": {"port": 2, "trunk": "10,20"},
            "Ethernet3": {"port": 3, "trunk": "20", "native": 10, "up": false},
            "Ethernet4": {"port": 4},
            "Ethernet5": {"port": 5},
            "Ethernet6": {"port": 6, "addresses": ["10.0.6.1/24", "fe80::1/64"]},
            "Ethernet6.100": {"tag": 7, "vrf": "blue", "addresses": ["10.0.6.1/31"], "acl": "core"},
            "Ethernet6.200": {"vlan": 20, "acl": "edge"},
            "Ethernet7": {"port": 7},
            "Ethernet64": {"port": "1/64", "cpu": true},
            "Ethernet65": {"port": "1/65", "cpu": true},
            "Lag3": {"members": ["Ethernet5", "Ethernet4"], "access": 20},
            "Lag4": {"members": ["Ethernet7"], "routed": true},
            "Vlan10": {"addresses": ["10.0.10.1/24", "2001:db8::1/64"]}
        },
        "protocolCopies": ["arp"],
        "neighbours": {"Vlan10": {"10.0.10.2": "02:00:00:00:00:aa"},
                       "Ethernet6.100": {"10.0.6.0": "02:00:00:00:00:ab"}},
        "routes": {"default": {"0.0.0.0/0": ["10.0.10.2", "10.0.6.2"], "10.8.0.0/16": "drop",
                               "10.9.0.0/16": "cpu", "10.11.0.0/16": "Ethernet6"},
                   "blue": {"0.0.0.0/0": "10.0.6.0"}},
        "fdb": {"10": {"02:00:00:00:00:aa": "Ethernet1"},
                "20": {"02:00:00:00:00:aa": "Lag3", "02:00:00:00:00:bb": "Ethernet6.200"}}
        })",
                                                                      "switch.json");
    SoftChip::Tables const tables = deriveTables(model);
};

TEST_F(DeriveTables, PortsExistAndAreUpOrDown) {
    EXPECT_TRUE(tables.port(1)->up);
    EXPECT_FALSE(tables.port(3)->up);
    EXPECT_EQ(tables.port(8), nullptr);
}

TEST_F(DeriveTables, TheCpusFramesGoToTheLowestCpuPort) {
    EXPECT_TRUE(tables.port(192)->cpu);
    EXPECT_FALSE(tables.port(1)->cpu);
    EXPECT_EQ(tables.cpuPort(), 192);
}

TEST_F(DeriveTables, AccessPortTakesUntaggedFramesOfItsVlan) {
    EXPECT_EQ(tables.mode(LogicalPort::port(1)).kind, PortMode::Kind::bridged);
    EXPECT_EQ(tables.mode(LogicalPort::port(1)).untagged, 10);
}

TEST_F(DeriveTables, TrunkTakesUntaggedFramesOfItsNativeVlanOnly) {
    EXPECT_EQ(tables.mode(LogicalPort::port(2)).untagged, SoftChip::noDomain);
    EXPECT_EQ(tables.mode(LogicalPort::port(3)).untagged, 10);
}

TEST_F(DeriveTables, RoutedPortTakesUntaggedFramesInItsInternalVlan) {
    EXPECT_EQ(tables.mode(LogicalPort::port(6)).kind, PortMode::Kind::routed);
    EXPECT_EQ(tables.mode(LogicalPort::port(6)).untagged, 4094);
}

TEST_F(DeriveTables, PortWithoutUseTakesNothing) {
    EXPECT_EQ(tables.mode(LogicalPort::port(192)).kind, PortMode::Kind::none);
}

TEST_F(DeriveTables, LagsHaveTheirMembersAndMode) {
    ASSERT_NE(tables.lag(3), nullptr);
    ASSERT_EQ(tables.lag(3)->members.size(), 2U);
    EXPECT_EQ(tables.lag(3)->members[0].port, 4);
    EXPECT_EQ(tables.logicalPort(5), LogicalPort::lag(3));
    EXPECT_EQ(tables.mode(LogicalPort::lag(3)).untagged, 20);
    EXPECT_EQ(tables.mode(LogicalPort::lag(4)).kind, PortMode::Kind::routed);
}

TEST_F(DeriveTables, VlansHavePortsAndLagsAsMembers) {
    auto const* const ten = tables.vlan(10);
    EXPECT_EQ(ten->members,
              (std::vector{LogicalPort::port(1), LogicalPort::port(2), LogicalPort::port(3)}));
    EXPECT_TRUE(tables.vlan(20)->has(LogicalPort::lag(3)));
    EXPECT_FALSE(tables.vlan(20)->has(LogicalPort::port(4)));
}

TEST_F(DeriveTables, BridgedSubInterfaceMakesItsParentAMember) {
    EXPECT_TRUE(tables.vlan(20)->has(LogicalPort::port(6)));
    EXPECT_EQ(tables.subIntf(LogicalPort::port(6), 200), 20);
}

TEST_F(DeriveTables, InternalVlansAreNoVlansOfTheChip) {
    EXPECT_EQ(tables.vlan(4094), nullptr);
}

TEST_F(DeriveTables, SubInterfaceTakesItsTagIntoItsInternalVlan) {
    EXPECT_EQ(tables.subIntf(LogicalPort::port(6), 7), 4093);
    EXPECT_EQ(tables.subIntf(LogicalPort::port(6), 100), SoftChip::noDomain);
}

TEST_F(DeriveTables, VlanInterfaceRoutesInItsVlan) {
    auto const* const intf = tables.l3Intf(10);
    ASSERT_NE(intf, nullptr);
    EXPECT_TRUE(intf->isVlan());
    EXPECT_EQ(intf->routerMac, mac("02:00:00:00:00:01"));
    EXPECT_EQ(tables.l3Intf(20), nullptr);
}

TEST_F(DeriveTables, RoutedPortsAndSubInterfacesRouteOutOfTheirPort) {
    EXPECT_EQ(tables.l3Intf(4094)->out, LogicalPort::port(6));
    EXPECT_EQ(tables.l3Intf(4094)->tag, 0);
    EXPECT_EQ(tables.l3Intf(4093)->out, LogicalPort::port(6));
    EXPECT_EQ(tables.l3Intf(4093)->tag, 7);
    EXPECT_EQ(tables.l3Intf(4093)->vrf, 1);
    EXPECT_EQ(tables.l3Intf(4092)->out, LogicalPort::lag(4));
}

TEST_F(DeriveTables, AddressesAreTheSwitchsOwnInTheirVrf) {
    EXPECT_TRUE(tables.isOwnAddress(0, ip("10.0.10.1")));
    EXPECT_TRUE(tables.isOwnAddress(0, ip("fe80::1")));
    EXPECT_TRUE(tables.isOwnAddress(1, ip("10.0.6.1")));
    EXPECT_FALSE(tables.isOwnAddress(1, ip("10.0.10.1")));
    EXPECT_FALSE(tables.isOwnAddress(0, ip("10.0.10.2")));
}

TEST_F(DeriveTables, SubnetsAreConnectedRoutes) {
    auto const match = tables.route(0, ip("2001:db8::77"));
    ASSERT_TRUE(match);
    EXPECT_EQ(*match->value, SoftChip::Route::connected(10));
    EXPECT_EQ(*tables.route(1, ip("10.0.6.0"))->value, SoftChip::Route::connected(4093));
}

TEST_F(DeriveTables, LinkLocalSubnetsAreNoRoutes) {
    EXPECT_FALSE(tables.route(0, ip("fe80::77")));
}

TEST_F(DeriveTables, RoutesLeadToNextHopsByDomain) {
    auto const match = tables.route(0, ip("192.0.2.1"));
    ASSERT_EQ(match->value->kind, SoftChip::Route::Kind::nextHops);
    EXPECT_EQ(*tables.nextHopSet(match->value->nextHopSet),
              (std::vector<SoftChip::NextHop>{{10, ip("10.0.10.2")}, {4094, ip("10.0.6.2")}}));
    auto const blue = tables.route(1, ip("192.0.2.1"));
    EXPECT_EQ(*tables.nextHopSet(blue->value->nextHopSet),
              (std::vector<SoftChip::NextHop>{{4093, ip("10.0.6.0")}}));
}

TEST_F(DeriveTables, RoutesDropTrapOrAttach) {
    EXPECT_EQ(*tables.route(0, ip("10.8.0.1"))->value, SoftChip::Route::drop());
    EXPECT_EQ(*tables.route(0, ip("10.9.0.1"))->value, SoftChip::Route::toCpu());
    EXPECT_EQ(*tables.route(0, ip("10.11.0.1"))->value, SoftChip::Route::connected(4094));
}

TEST_F(DeriveTables, NeighboursStandInTheDomainOfTheirInterface) {
    EXPECT_EQ(tables.neighbour(10, ip("10.0.10.2")), mac("02:00:00:00:00:aa"));
    EXPECT_EQ(tables.neighbour(4093, ip("10.0.6.0")), mac("02:00:00:00:00:ab"));
    EXPECT_FALSE(tables.neighbour(4094, ip("10.0.6.0")));
}

TEST_F(DeriveTables, FdbPointsAtPortsLagsAndParents) {
    EXPECT_EQ(tables.fdb(10, mac("02:00:00:00:00:aa")), LogicalPort::port(1));
    EXPECT_EQ(tables.fdb(20, mac("02:00:00:00:00:aa")), LogicalPort::lag(3));
    EXPECT_EQ(tables.fdb(20, mac("02:00:00:00:00:bb")), LogicalPort::port(6));
    EXPECT_TRUE(tables.fdb(10, mac("02:00:00:00:00:bb")).isNone());
}

TEST_F(DeriveTables, EachBindingOfAnAccessListGetsAListOfItsOwn) {
    EXPECT_EQ(aclBindingNames(model),
              (std::vector<std::string>{"core on VLAN 10", "edge on Ethernet1",
                                        "core on Ethernet6.100", "edge on Ethernet6.200"}));
    EXPECT_EQ(rulesOfList(1).size(), 1U);
    EXPECT_EQ(rulesOfList(2).size(), 2U);
    EXPECT_EQ(tables.acl().rules().size(), 6U);
}

TEST_F(DeriveTables, AccessListsMatchWhatTheyAreBoundToOnly) {
    EXPECT_EQ(rulesOfList(1)[0].match.domain, 10);
    EXPECT_TRUE(rulesOfList(1)[0].match.ingress.isNone());
    EXPECT_EQ(rulesOfList(2)[0].match.ingress, LogicalPort::port(1));
    EXPECT_EQ(rulesOfList(2)[0].match.domain, SoftChip::noDomain);
    EXPECT_EQ(rulesOfList(2)[0].match.ipProtocol, 6);
    EXPECT_EQ(rulesOfList(3)[0].match.domain, 4093);
    EXPECT_EQ(rulesOfList(4)[0].match.ingress, LogicalPort::port(6));
    EXPECT_EQ(rulesOfList(4)[0].match.domain, 20);
}

TEST_F(DeriveTables, ProtocolCopiesAreTheModels) {
    ASSERT_EQ(tables.protocolRules().size(), 1U);
    EXPECT_EQ(tables.protocolRules()[0].match.etherType, 0x0806);
}

TEST_F(DeriveTables, LogicalPortOfASubInterfaceIsItsParents) {
    EXPECT_EQ(logicalPort(model, id("Ethernet6.200")), LogicalPort::port(6));
    EXPECT_EQ(logicalPort(model, id("Lag3")), LogicalPort::lag(3));
}

}  // namespace
}  // namespace Agent
