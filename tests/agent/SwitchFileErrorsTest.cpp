#include <gtest/gtest.h>

#include <ostream>

#include "agent/SwitchFile.h"

namespace Agent {
namespace {

// One thing that is wrong, and the whole message, without the file's name. A text that does not
// start with "{" is the end of a file that has VLANs 10 to 19, VRF blue, a router MAC, an access
// list "edge" and nothing else.
struct Case {
    char const* name;
    char const* text;
    char const* message;
};

std::ostream& operator<<(std::ostream& out, Case const& wrong) {
    return out << wrong.text;
}

std::string whole(std::string const& text) {
    return text[0] == '{' || text[0] == '['
               ? text
               : R"({"routerMac": "02:00:00:00:00:01", "vrfs": ["blue"],
                                "vlans": {"10-19": {}}, "acls": {"edge": [{"action": "drop"}]}, )" +
                     text + "}";
}

std::string problem(std::string const& text) {
    try {
        parseSwitchFile(whole(text), "f");
    } catch (InputError const& error) {
        return error.what();
    }
    return "no error";
}

class SwitchFileRefuses : public testing::TestWithParam<Case> {};

TEST_P(SwitchFileRefuses, WithAMessageThatNamesPlaceAndExpectation) {
    EXPECT_EQ(problem(GetParam().text), std::string("f: ") + GetParam().message);
}

std::string nameOf(testing::TestParamInfo<Case> const& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Document, SwitchFileRefuses,
    testing::Values(
        Case{"DocumentThatIsNoObject", "[]", "/: expected an object, got a list"},
        Case{"UnknownMember", R"({"interfaces": {}, "interface": {}})",
             "/interface: expected one of the members $schema, description, "
             "routerMac, vrfs, acls, vlans, interfaces, protocolCopies, neighbours, "
             R"(routes, fdb, got "interface")"},
        Case{"RepeatedMember", R"({"interfaces": {}, "vrfs": [], "interfaces": {}})",
             "/interfaces: repeated member: expected each name once, "
             R"(got "interfaces" again)"},
        Case{"RepeatedInterface",
             R"("interfaces": {"Ethernet1": {"port": 1}, "Ethernet1": {"port": 2}})",
             "/interfaces/Ethernet1: repeated member: expected each name once, "
             R"(got "Ethernet1" again)"},
        Case{"MissingInterfaces", R"({"vlans": {}})", "/: expected a member interfaces, got none"},
        Case{"SchemaThatIsNoText", R"({"$schema": 1, "interfaces": {}})",
             "/$schema: expected a text, got 1"},
        Case{"DescriptionThatIsNoText", R"({"description": [], "interfaces": {}})",
             "/description: expected a text, got a list"},
        Case{"RouterMacThatIsNoText", R"({"routerMac": 1, "interfaces": {}})",
             "/routerMac: expected a MAC address, got 1"},
        Case{"RouterMacThatIsNoMac", R"({"routerMac": "02:00", "interfaces": {}})",
             "/routerMac: expected a MAC address such as 02:1c:73:aa:00:01, "
             R"(got "02:00")"},
        Case{"RouterMacOfAGroup", R"({"routerMac": "01:00:5e:00:00:01", "interfaces": {}})",
             "/routerMac: expected the MAC address of one station, "
             R"(got "01:00:5e:00:00:01")"},
        Case{"RouterMacOfZeros", R"({"routerMac": "00:00:00:00:00:00", "interfaces": {}})",
             "/routerMac: expected the MAC address of one station, "
             R"(got "00:00:00:00:00:00")"},
        Case{"RoutingWithoutRouterMac", R"({"vlans": {"10": {}}, "interfaces": {"Vlan10": {}}})",
             "/: expected a member routerMac, because Vlan10 routes, got none"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Names, SwitchFileRefuses,
    testing::Values(
        Case{"VrfsThatAreNoList", R"({"vrfs": {}, "interfaces": {}})",
             "/vrfs: expected a list, got an object"},
        Case{"VrfThatIsNoText", R"({"vrfs": ["a", 1], "interfaces": {}})",
             "/vrfs/1: expected the name of a VRF, got 1"},
        Case{"VrfWithoutName", R"({"vrfs": [""], "interfaces": {}})",
             R"(/vrfs/0: expected a name, and at most 65535 of them, got "")"},
        Case{"VrfTwice", R"({"vrfs": ["a", "b", "a"], "interfaces": {}})",
             R"(/vrfs/2: expected each VRF once, got "a")"},
        Case{"DefaultAsAVrfOfTheList", R"({"vrfs": ["default"], "interfaces": {}})",
             "/vrfs/0: expected a VRF besides default, which is always there, "
             R"(got "default")"},
        Case{"VlansThatAreNoObject", R"({"vlans": [10], "interfaces": {}})",
             "/vlans: expected an object, got a list"},
        Case{"VlanOutOfRange", R"({"vlans": {"4095": {}}, "interfaces": {}})",
             "/vlans/4095: expected a VLAN from 1 to 4094, "
             R"(or a range such as 100-199, got "4095")"},
        Case{"VlanThatIsNoNumber", R"({"vlans": {"red": {}}, "interfaces": {}})",
             "/vlans/red: expected a VLAN from 1 to 4094, "
             R"(or a range such as 100-199, got "red")"},
        Case{"VlanRangeThatDescends", R"({"vlans": {"20-10": {}}, "interfaces": {}})",
             "/vlans/20-10: expected a VLAN from 1 to 4094, "
             R"(or a range such as 100-199, got "20-10")"},
        Case{"VlanInTwoRanges", R"({"vlans": {"10-20": {}, "15": {}}, "interfaces": {}})",
             "/vlans/15: expected each VLAN once, got 15 again"},
        Case{"VlanThatIsNoObject", R"({"vlans": {"10": "web"}, "interfaces": {}})",
             R"(/vlans/10: expected an object, got "web")"},
        Case{"UnknownMemberOfAVlan", R"({"vlans": {"10": {"nmae": "web"}}, "interfaces": {}})",
             R"(/vlans/10/nmae: expected one of the members name, acl, got "nmae")"},
        Case{"VlanNameThatIsNoText", R"({"vlans": {"10": {"name": 1}}, "interfaces": {}})",
             "/vlans/10/name: expected the VLAN's name, got 1"},
        Case{"VlanWithUnknownAccessList", R"({"vlans": {"10": {"acl": "egde"}}, "interfaces": {}})",
             R"(/vlans/10/acl: expected an access list of the member acls, got "egde")"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Ports, SwitchFileRefuses,
    testing::Values(
        Case{"InterfacesThatAreNoObject", R"({"interfaces": []})",
             "/interfaces: expected an object, got a list"},
        Case{"InterfaceNameThatIsNone", R"("interfaces": {"Eth1": {"port": 1}})",
             "/interfaces/Eth1: expected an interface name: Ethernet<n>, "
             "Ethernet<n>/<n>, Lag<n>, Vlan<n>, "
             R"(or a port or LAG with .<n> for a sub-interface, got "Eth1")"},
        Case{"InterfaceWithoutName", R"("interfaces": {"": {"port": 1}})",
             "/interfaces/: expected an interface name: Ethernet<n>, "
             "Ethernet<n>/<n>, Lag<n>, Vlan<n>, "
             R"(or a port or LAG with .<n> for a sub-interface, got "")"},
        Case{"CpuAsAnInterface", R"("interfaces": {"Cpu": {"port": 1}})",
             "/interfaces/Cpu: expected an interface name: Ethernet<n>, "
             "Ethernet<n>/<n>, Lag<n>, Vlan<n>, "
             R"(or a port or LAG with .<n> for a sub-interface, got "Cpu")"},
        Case{"InterfaceThatIsNoObject", R"("interfaces": {"Ethernet1": 1})",
             "/interfaces/Ethernet1: expected an object, got 1"},
        Case{"UnknownMemberOfAPort", R"("interfaces": {"Ethernet49/1": {"port": 1, "acess": 10}})",
             "/interfaces/Ethernet49~11/acess: expected one of the members "
             "description, port, up, cpu, access, trunk, native, routed, vrf, "
             R"(addresses, acl, got "acess")"},
        Case{"PortWithoutDevicePort", R"("interfaces": {"Ethernet1": {}})",
             "/interfaces/Ethernet1: expected a member port, got none"},
        Case{"DevicePortBeyondTheLast", R"("interfaces": {"Ethernet1": {"port": 456}})",
             "/interfaces/Ethernet1/port: expected a device port from 0 to 455, "
             "got 456"},
        Case{"DevicePortOfAnotherType", R"("interfaces": {"Ethernet1": {"port": true}})",
             "/interfaces/Ethernet1/port: expected a chip port: pipe/index such as "
             R"("1/5" (pipe 0 to 3, index 0 to 127, )"
             "0 to 71 in pipe 3) or a device port from 0 to 455, got true"},
        Case{"DevicePortWithAFraction", R"("interfaces": {"Ethernet1": {"port": 1.0}})",
             "/interfaces/Ethernet1/port: expected a chip port: pipe/index such as "
             R"("1/5" (pipe 0 to 3, index 0 to 127, )"
             "0 to 71 in pipe 3) or a device port from 0 to 455, got 1.0"},
        Case{"PipeBeyondTheLast", R"("interfaces": {"Ethernet1": {"port": "4/0"}})",
             "/interfaces/Ethernet1/port: expected a chip port: pipe/index such as "
             R"("1/5" (pipe 0 to 3, index 0 to 127, )"
             R"(0 to 71 in pipe 3) or a device port from 0 to 455, got "4/0")"},
        Case{"IndexBeyondThePipe", R"("interfaces": {"Ethernet1": {"port": "0/128"}})",
             "/interfaces/Ethernet1/port: expected a chip port: pipe/index such as "
             R"("1/5" (pipe 0 to 3, index 0 to 127, )"
             R"(0 to 71 in pipe 3) or a device port from 0 to 455, got "0/128")"},
        Case{"IndexBeyondTheLastPipe", R"("interfaces": {"Ethernet1": {"port": "3/72"}})",
             "/interfaces/Ethernet1/port: expected a chip port: pipe/index such as "
             R"("1/5" (pipe 0 to 3, index 0 to 127, )"
             R"(0 to 71 in pipe 3) or a device port from 0 to 455, got "3/72")"},
        Case{"DevicePortThatIsNoPair", R"("interfaces": {"Ethernet1": {"port": "12"}})",
             "/interfaces/Ethernet1/port: expected a chip port: pipe/index such as "
             R"("1/5" (pipe 0 to 3, index 0 to 127, )"
             R"(0 to 71 in pipe 3) or a device port from 0 to 455, got "12")"},
        Case{"TwoPortsWithOneDevicePort",
             R"("interfaces": {"Ethernet1": {"port": 133}, )"
             R"("Ethernet2": {"port": "1/5"}})",
             "/interfaces/Ethernet2/port: expected a device port of its own, "
             "got device port 133, which is Ethernet1's"},
        Case{"UpThatIsNoTruthValue", R"("interfaces": {"Ethernet1": {"port": 1, "up": "no"}})",
             R"(/interfaces/Ethernet1/up: expected true or false, got "no")"},
        Case{"CpuThatIsNoTruthValue", R"("interfaces": {"Ethernet1": {"port": 1, "cpu": 1}})",
             "/interfaces/Ethernet1/cpu: expected true or false, got 1"},
        Case{"CpuPortInAVlan",
             R"("interfaces": {"Ethernet1": {"port": 1, "cpu": true, "access": 10}})",
             "/interfaces/Ethernet1/access: expected no VLAN, "
             "address or access list on a CPU port, got 10"},
        Case{"CpuPortThatIsRouted",
             R"("interfaces": {"Ethernet1": {"port": 1, "cpu": true, )"
             R"("addresses": ["10.0.0.1/24"]}})",
             "/interfaces/Ethernet1/addresses: expected no VLAN, "
             "address or access list on a CPU port, got a list"},
        Case{"CpuPortWithAccessList",
             R"("interfaces": {"Ethernet1": {"port": 1, "cpu": true, "acl": "edge"}})",
             "/interfaces/Ethernet1/acl: expected no VLAN, "
             R"(address or access list on a CPU port, got "edge")"},
        Case{"UnknownAccessList", R"("interfaces": {"Ethernet1": {"port": 1, "acl": "core"}})",
             "/interfaces/Ethernet1/acl: expected an access list of the member acls, "
             R"(got "core")"},
        Case{"AccessListThatIsNoText", R"("interfaces": {"Ethernet1": {"port": 1, "acl": 1}})",
             "/interfaces/Ethernet1/acl: expected the name of an access list, got 1"},
        Case{"InterfaceDescriptionThatIsNoText",
             R"("interfaces": {"Ethernet1": {"port": 1, "description": 1}})",
             "/interfaces/Ethernet1/description: expected a text, got 1"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Switching, SwitchFileRefuses,
    testing::Values(
        Case{"AccessVlanOutOfRange", R"("interfaces": {"Ethernet1": {"port": 1, "access": 0}})",
             "/interfaces/Ethernet1/access: expected a VLAN from 1 to 4094, got 0"},
        Case{"AccessVlanOfAnotherType",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": "10"}})",
             R"(/interfaces/Ethernet1/access: expected a VLAN from 1 to 4094, got "10")"},
        Case{"AccessVlanThatIsNotConfigured",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 99}})",
             "/interfaces/Ethernet1/access: expected a VLAN of the member vlans, "
             "got 99"},
        Case{"AccessBesideTrunk",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10, "trunk": "11"}})",
             R"(/interfaces/Ethernet1/trunk: expected no trunk beside access, got "11")"},
        Case{"AccessBesideNative",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10, "native": 11}})",
             "/interfaces/Ethernet1/native: expected no trunk beside access, got 11"},
        Case{"NativeWithoutTrunk", R"("interfaces": {"Ethernet1": {"port": 1, "native": 10}})",
             "/interfaces/Ethernet1/native: expected a member trunk beside native, "
             "got none"},
        Case{"NativeVlanThatIsNotConfigured",
             R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10", "native": 20}})",
             "/interfaces/Ethernet1/native: expected a VLAN of the member vlans, "
             "got 20"},
        Case{"TrunkOfAnotherType", R"("interfaces": {"Ethernet1": {"port": 1, "trunk": [10]}})",
             R"(/interfaces/Ethernet1/trunk: expected VLANs such as "10-20,30", )"
             R"(one number, or "all", got a list)"},
        Case{"TrunkThatIsNoList", R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10;11"}})",
             R"(/interfaces/Ethernet1/trunk: expected VLANs such as "10-20,30", )"
             R"(one number, or "all", got "10;11")"},
        Case{"TrunkWithoutVlans", R"("interfaces": {"Ethernet1": {"port": 1, "trunk": ""}})",
             R"(/interfaces/Ethernet1/trunk: expected VLANs such as "10-20,30", )"
             R"(one number, or "all", got "")"},
        Case{"TrunkVlanThatIsNotConfigured",
             R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10-12,18-21"}})",
             "/interfaces/Ethernet1/trunk: expected VLANs of the member vlans, "
             "got VLAN 20"},
        Case{"TrunkNumberThatIsNotConfigured",
             R"("interfaces": {"Ethernet1": {"port": 1, "trunk": 20}})",
             "/interfaces/Ethernet1/trunk: expected a VLAN of the member vlans, "
             "got 20"},
        Case{"TrunkVlanTwice", R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10-12,12"}})",
             "/interfaces/Ethernet1/trunk: expected each VLAN once, got VLAN 12 again"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Lags, SwitchFileRefuses,
    testing::Values(
        Case{"UnknownMemberOfALag", R"("interfaces": {"Lag1": {"members": [], "port": 1}})",
             "/interfaces/Lag1/port: expected one of the members description, "
             R"(members, access, trunk, native, routed, vrf, addresses, acl, got "port")"},
        Case{"LagWithoutMembers", R"("interfaces": {"Lag1": {}})",
             "/interfaces/Lag1: expected a member members, got none"},
        Case{"LagMembersThatAreNoList", R"("interfaces": {"Lag1": {"members": "Ethernet1"}})",
             R"(/interfaces/Lag1/members: expected a list, got "Ethernet1")"},
        Case{"LagMemberThatIsNoText", R"("interfaces": {"Lag1": {"members": [1]}})",
             "/interfaces/Lag1/members/0: expected the name of a physical port, got 1"},
        Case{"LagMemberThatIsNoInterface", R"("interfaces": {"Lag1": {"members": ["Ethernet1"]}})",
             "/interfaces/Lag1/members/0: expected an interface of the member "
             R"(interfaces, got "Ethernet1")"},
        Case{"LagMemberThatIsNoPort",
             R"("interfaces": {"Lag1": {"members": ["Vlan10"]}, "Vlan10": {}})",
             "/interfaces/Lag1/members/0: expected the name of a physical port, "
             R"(got "Vlan10")"},
        Case{"LagMemberInTwoLags",
             R"("interfaces": {"Ethernet1": {"port": 1}, )"
             R"("Lag1": {"members": ["Ethernet1"]}, "Lag2": {"members": ["Ethernet1"]}})",
             "/interfaces/Lag2/members/0: expected a port that is in no other LAG, "
             "got Ethernet1, which is in Lag1"},
        Case{"LagMemberTwice",
             R"("interfaces": {"Ethernet1": {"port": 1}, )"
             R"("Lag1": {"members": ["Ethernet1", "Ethernet1"]}})",
             "/interfaces/Lag1/members/1: expected a port that is in no other LAG, "
             "got Ethernet1, which is in Lag1"},
        Case{"LagMemberInAVlan",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Lag1": {"members": ["Ethernet1"]}})",
             "/interfaces/Ethernet1/access: expected no VLAN, "
             "address or access list on Ethernet1, because it is a member of Lag1, "
             "got 10"},
        Case{"LagMemberWithATrunk",
             R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10"}, )"
             R"("Lag1": {"members": ["Ethernet1"]}})",
             "/interfaces/Ethernet1/trunk: expected no VLAN, "
             "address or access list on Ethernet1, because it is a member of Lag1, "
             R"(got "10")"},
        Case{"LagMemberThatIsRouted",
             R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
             R"("Lag1": {"members": ["Ethernet1"]}})",
             "/interfaces/Ethernet1/routed: expected no VLAN, "
             "address or access list on Ethernet1, because it is a member of Lag1, "
             "got true"},
        Case{"LagMemberWithAnAddress",
             R"("interfaces": {"Ethernet1": {"port": 1, "addresses": ["10.0.0.1/24"]}, )"
             R"("Lag1": {"members": ["Ethernet1"]}})",
             "/interfaces/Ethernet1/addresses: expected no VLAN, "
             "address or access list on Ethernet1, because it is a member of Lag1, "
             "got a list"},
        Case{"LagMemberWithAnAccessList",
             R"("interfaces": {"Ethernet1": {"port": 1, "acl": "edge"}, )"
             R"("Lag1": {"members": ["Ethernet1"]}})",
             "/interfaces/Ethernet1/acl: expected no VLAN, "
             "address or access list on Ethernet1, because it is a member of Lag1, "
             R"(got "edge")"},
        Case{"CpuPortInALag",
             R"("interfaces": {"Ethernet1": {"port": 1, "cpu": true}, )"
             R"("Lag1": {"members": ["Ethernet1"]}})",
             "/interfaces/Lag1/members/0: expected no CPU port in a LAG, "
             "got Ethernet1"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Routing, SwitchFileRefuses,
    testing::Values(
        Case{"RoutedThatIsNoTruthValue", R"("interfaces": {"Ethernet1": {"port": 1, "routed": 1}})",
             "/interfaces/Ethernet1/routed: expected true or false, got 1"},
        Case{"RoutedBesideAccess",
             R"("interfaces": {"Ethernet1": {"port": 1, "routed": true, "access": 10}})",
             "/interfaces/Ethernet1/routed: expected no routing beside a VLAN, "
             "got true"},
        Case{"AddressesBesideATrunk",
             R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10", )"
             R"("addresses": ["10.0.0.1/24"]}})",
             "/interfaces/Ethernet1/addresses: expected no routing beside a VLAN, "
             "got a list"},
        Case{"AddressesOfWhatIsNotRouted",
             R"("interfaces": {"Ethernet1": {"port": 1, "routed": false, )"
             R"("addresses": ["10.0.0.1/24"]}})",
             "/interfaces/Ethernet1/addresses: expected no VRF or address beside "
             R"("routed": false, got a list)"},
        Case{"VrfOfWhatDoesNotRoute", R"("interfaces": {"Ethernet1": {"port": 1, "vrf": "blue"}})",
             R"(/interfaces/Ethernet1/vrf: expected "routed": true or addresses beside )"
             "vrf, got neither"},
        Case{"UnknownVrf", R"("interfaces": {"Vlan10": {"vrf": "red"}})",
             "/interfaces/Vlan10/vrf: expected default or a VRF of the list vrfs, "
             R"(got "red")"},
        Case{"VrfOfAnotherType", R"("interfaces": {"Vlan10": {"vrf": 1}})",
             "/interfaces/Vlan10/vrf: expected the name of a VRF, got 1"},
        Case{"AddressesThatAreNoList", R"("interfaces": {"Vlan10": {"addresses": "10.0.0.1/24"}})",
             R"(/interfaces/Vlan10/addresses: expected a list, got "10.0.0.1/24")"},
        Case{"AddressOfAnotherType", R"("interfaces": {"Vlan10": {"addresses": [10]}})",
             "/interfaces/Vlan10/addresses/0: expected an address and length such as "
             "10.0.10.1/24 or 2001:db8::1/64, got 10"},
        Case{"AddressWithoutLength", R"("interfaces": {"Vlan10": {"addresses": ["10.0.0.1"]}})",
             "/interfaces/Vlan10/addresses/0: expected an address and length such as "
             R"(10.0.10.1/24 or 2001:db8::1/64, got "10.0.0.1")"},
        Case{"AddressWithLengthBeyondItsBits",
             R"("interfaces": {"Vlan10": {"addresses": ["10.0.0.1/33"]}})",
             "/interfaces/Vlan10/addresses/0: expected an address and length such as "
             R"(10.0.10.1/24 or 2001:db8::1/64, got "10.0.0.1/33")"},
        Case{"AddressThatIsNone", R"("interfaces": {"Vlan10": {"addresses": ["10.0.0/24"]}})",
             "/interfaces/Vlan10/addresses/0: expected an address and length such as "
             R"(10.0.10.1/24 or 2001:db8::1/64, got "10.0.0/24")"},
        Case{"AddressOfTheSubnetItself",
             R"("interfaces": {"Vlan10": {"addresses": ["10.0.0.0/24"]}})",
             "/interfaces/Vlan10/addresses/0: expected an address that a host in the "
             R"(subnet can have, got "10.0.0.0/24")"},
        Case{"BroadcastAddress", R"("interfaces": {"Vlan10": {"addresses": ["10.0.0.255/24"]}})",
             "/interfaces/Vlan10/addresses/0: expected an address that a host in the "
             R"(subnet can have, got "10.0.0.255/24")"},
        Case{"MulticastAddress", R"("interfaces": {"Vlan10": {"addresses": ["ff02::1/64"]}})",
             "/interfaces/Vlan10/addresses/0: expected an address that a host in the "
             R"(subnet can have, got "ff02::1/64")"},
        Case{"LoopbackAddress", R"("interfaces": {"Vlan10": {"addresses": ["::1/128"]}})",
             "/interfaces/Vlan10/addresses/0: expected an address that a host in the "
             R"(subnet can have, got "::1/128")"},
        Case{"LoopbackAddressOfIpv4", R"("interfaces": {"Vlan10": {"addresses": ["127.0.0.1/8"]}})",
             "/interfaces/Vlan10/addresses/0: expected an address that a host in the subnet can "
             R"(have, got "127.0.0.1/8")"},
        Case{"AddressOnTwoInterfacesOfOneVrf",
             R"("interfaces": {"Vlan10": {"addresses": ["10.0.0.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.0.1/25"]}})",
             "/interfaces/Vlan11/addresses/0: expected an address of its own, "
             R"(got "10.0.0.1/25", which is also on Vlan10 of VRF default)"},
        Case{"AddressTwiceOnOneInterface",
             R"("interfaces": {"Vlan10": {"addresses": ["2001:db8::1/64", )"
             R"("2001:DB8:0::1/64"]}})",
             "/interfaces/Vlan10/addresses/1: expected an address of its own, "
             R"(got "2001:DB8:0::1/64", which is also on Vlan10 of VRF default)"},
        Case{"SubnetOnTwoInterfacesOfOneVrf",
             R"("interfaces": {"Vlan10": {"addresses": ["10.0.0.1/24"], )"
             R"("vrf": "blue"}, "Vlan11": {"addresses": ["10.0.0.2/24"], )"
             R"("vrf": "blue"}})",
             "/interfaces/Vlan11/addresses/0: expected a subnet of its own, "
             "got 10.0.0.0/24, which is also on Vlan10 of VRF blue"},
        Case{"UnknownMemberOfAVlanInterface",
             R"("interfaces": {"Vlan10": {"address": "10.0.0.1/24"}})",
             "/interfaces/Vlan10/address: expected one of the members description, "
             R"(vrf, addresses, got "address")"},
        Case{"VlanInterfaceWithoutItsVlan", R"("interfaces": {"Vlan20": {}})",
             "/interfaces/Vlan20: expected a VLAN of the member vlans, got 20"},
        Case{"MoreInternalVlansThanThereAre",
             R"({"routerMac": "02:00:00:00:00:01", "vlans": {"1-4093": {}}, )"
             R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
             R"("Ethernet2": {"port": 2, "routed": true}}})",
             "/interfaces/Ethernet2: expected a VLAN left for the internal use of "
             "what routes, got none"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    SubInterfaces, SwitchFileRefuses,
    testing::Values(Case{"UnknownMemberOfASubInterface",
                         R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                         R"("Ethernet1.5": {"port": 1}})",
                         "/interfaces/Ethernet1.5/port: expected one of the members description, "
                         R"(tag, vlan, vrf, addresses, acl, got "port")"},
                    Case{"TagOutOfRange",
                         R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                         R"("Ethernet1.5": {"tag": 4095}})",
                         "/interfaces/Ethernet1.5/tag: expected a VLAN tag from 1 to 4094, "
                         "got 4095"},
                    Case{"NumberThatIsNoTagWithoutTag",
                         R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                         R"("Ethernet1.5000": {}})",
                         "/interfaces/Ethernet1.5000: expected a member tag, "
                         "because 5000 is no tag, got none"},
                    Case{"ParentThatIsNotThere", R"("interfaces": {"Ethernet1.5": {}})",
                         "/interfaces/Ethernet1.5: expected its parent Ethernet1 among the "
                         "interfaces, got none"},
                    Case{"ParentThatIsNotRouted",
                         R"("interfaces": {"Ethernet1": {"port": 1}, "Ethernet1.5": {}})",
                         "/interfaces/Ethernet1.5: expected a parent that is routed, "
                         "got Ethernet1, which is not"},
                    Case{"ParentThatIsAVlanMember",
                         R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10"}, )"
                         R"("Ethernet1.5": {}})",
                         "/interfaces/Ethernet1.5: expected a parent that is routed, "
                         "got Ethernet1, which is a member of a VLAN"},
                    Case{"ParentThatIsACpuPort",
                         R"("interfaces": {"Ethernet1": {"port": 1, "cpu": true}, )"
                         R"("Ethernet1.5": {}})",
                         "/interfaces/Ethernet1.5: expected a parent that is routed, "
                         "got Ethernet1, which is a CPU port"},
                    Case{
                        "ParentThatIsALagMember",
                        R"("interfaces": {"Ethernet1": {"port": 1}, )"
                        R"("Lag1": {"members": ["Ethernet1"], "routed": true}, "Ethernet1.5": {}})",
                        "/interfaces/Ethernet1.5: expected a parent that is in no LAG, "
                        "got Ethernet1, which is a member of Lag1"},
                    Case{"TagOfTwoSubInterfaces",
                         R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                         R"("Ethernet1.5": {}, "Ethernet1.6": {"tag": 5}})",
                         "/interfaces/Ethernet1.6: expected a tag that no other sub-interface of "
                         "Ethernet1 has, got 5 again"},
                    Case{"BridgedSubInterfaceWithAnAddress",
                         R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                         R"("Ethernet1.5": {"vlan": 10, "addresses": ["10.0.0.1/24"]}})",
                         "/interfaces/Ethernet1.5/addresses: expected no VRF or address on a "
                         "sub-interface that is bridged, got a list"},
                    Case{"BridgedSubInterfaceWithAVrf",
                         R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                         R"("Ethernet1.5": {"vlan": 10, "vrf": "blue"}})",
                         "/interfaces/Ethernet1.5/vrf: expected no VRF or address on a "
                         R"(sub-interface that is bridged, got "blue")"},
                    Case{"BridgedSubInterfaceOfUnknownVlan",
                         R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                         R"("Ethernet1.5": {"vlan": 20}})",
                         "/interfaces/Ethernet1.5/vlan: expected a VLAN of the member vlans, "
                         "got 20"},
                    Case{"VlanOfTwoBridgedSubInterfacesOfAPort",
                         R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                         R"("Ethernet1.5": {"vlan": 10}, "Ethernet1.6": {"vlan": 10}})",
                         "/interfaces/Ethernet1.6/vlan: expected a VLAN that no other "
                         "sub-interface of Ethernet1 is bridged into, got 10 again"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    AccessLists, SwitchFileRefuses,
    testing::Values(
        Case{"AccessListsThatAreNoObject", R"({"acls": [], "interfaces": {}})",
             "/acls: expected an object, got a list"},
        Case{"AccessListWithoutName", R"({"acls": {"": []}, "interfaces": {}})",
             "/acls/: expected a name for the access list, "
             R"(and at most 65536 of them, got "")"},
        Case{"AccessListThatIsNoList", R"({"acls": {"edge": {}}, "interfaces": {}})",
             "/acls/edge: expected a list, got an object"},
        Case{"RuleThatIsNoObject", R"({"acls": {"edge": ["drop"]}, "interfaces": {}})",
             R"(/acls/edge/0: expected an object, got "drop")"},
        Case{"UnknownMemberOfARule",
             R"({"acls": {"edge": [{"action": "drop", "dport": 23}]}, "interfaces": {}})",
             "/acls/edge/0/dport: expected one of the members sequence, action, "
             "copyToCpu, remark, sourceMac, destinationMac, etherType, vlanPriority, "
             "source, destination, protocol, dscp, ttl, fragment, sourcePort, "
             R"(destinationPort, tcpFlags, icmpType, icmpCode, got "dport")"},
        Case{"RuleWithoutAction", R"({"acls": {"edge": [{"protocol": "tcp"}]}, "interfaces": {}})",
             "/acls/edge/0: expected a member action, got none"},
        Case{"UnknownAction", R"({"acls": {"edge": [{"action": "deny"}]}, "interfaces": {}})",
             R"(/acls/edge/0/action: expected permit, drop or copy, got "deny")"},
        Case{"ActionOfAnotherType", R"({"acls": {"edge": [{"action": true}]}, "interfaces": {}})",
             "/acls/edge/0/action: expected permit, drop or copy, got true"},
        Case{"SequenceOutOfRange",
             R"({"acls": {"edge": [{"sequence": 0, "action": "drop"}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/sequence: expected a sequence number from 1 to "
             "4294967295, got 0"},
        Case{"SequenceTwice",
             R"({"acls": {"edge": [{"sequence": 5, "action": "drop"}, {"sequence": 5, )"
             R"("action": "permit"}]}, "interfaces": {}})",
             "/acls/edge/1/sequence: expected a sequence number that no other rule "
             "of the list has, got 5 again"},
        Case{"DefaultSequenceThatIsTaken",
             R"({"acls": {"edge": [{"sequence": 20, "action": "drop"}, )"
             R"({"sequence": 10, "action": "permit"}, {"action": "permit"}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/2: expected a sequence number that no other rule of the "
             "list has, got 20 again"},
        Case{"RemarkThatIsNoText",
             R"({"acls": {"edge": [{"action": "drop", "remark": 1}]}, "interfaces": {}})",
             "/acls/edge/0/remark: expected a text, got 1"},
        Case{"CopyToCpuThatIsNoTruthValue",
             R"({"acls": {"edge": [{"action": "drop", "copyToCpu": 1}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/copyToCpu: expected true or false, got 1"},
        Case{"MacMatchThatIsNone",
             R"({"acls": {"edge": [{"action": "drop", "sourceMac": "02:00/ff:ff"}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/sourceMac: expected a MAC address such as "
             R"(02:1c:73:aa:00:01, got "02:00/ff:ff")"},
        Case{"MacMatchOfAnotherType",
             R"({"acls": {"edge": [{"action": "drop", "destinationMac": 1}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/destinationMac: expected a MAC address, or address/mask, "
             "got 1"},
        Case{"EtherTypeBelowTheLeast",
             R"({"acls": {"edge": [{"action": "drop", "etherType": 1535}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/etherType: expected an EtherType from 1536 to 65535, "
             "got 1535"},
        Case{"EtherTypeThatIsNone",
             R"({"acls": {"edge": [{"action": "drop", "etherType": "0x88zz"}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/etherType: expected an EtherType: ipv4, ipv6, arp, "
             R"(a number or a text such as 0x88cc, got "0x88zz")"},
        Case{"EtherTypeOfAnotherType",
             R"({"acls": {"edge": [{"action": "drop", "etherType": null}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/etherType: expected an EtherType: ipv4, ipv6, arp, "
             "a number or a text such as 0x88cc, got null"},
        Case{"VlanPriorityOutOfRange",
             R"({"acls": {"edge": [{"action": "drop", "vlanPriority": 8}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/vlanPriority: expected a VLAN priority from 0 to 7, got 8"},
        Case{"PrefixWithHostBits",
             R"({"acls": {"edge": [{"action": "drop", "source": "10.0.0.1/8"}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/source: expected an address, "
             R"(or a prefix without host bits such as 10.1.0.0/16, got "10.0.0.1/8")"},
        Case{"PrefixOfAnotherType",
             R"({"acls": {"edge": [{"action": "drop", "destination": 10}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/destination: expected an IP prefix, got 10"},
        Case{"ProtocolOutOfRange",
             R"({"acls": {"edge": [{"action": "drop", "protocol": 256}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/protocol: expected an IP protocol from 0 to 255, got 256"},
        Case{"UnknownProtocol",
             R"({"acls": {"edge": [{"action": "drop", "protocol": "ip"}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/protocol: expected an IP protocol: icmp, igmp, tcp, udp, "
             R"(gre, icmpv6, ospf, pim, vrrp or a number, got "ip")"},
        Case{"DscpOutOfRange",
             R"({"acls": {"edge": [{"action": "drop", "dscp": 64}]}, "interfaces": {}})",
             "/acls/edge/0/dscp: expected a DSCP from 0 to 63, got 64"},
        Case{"TtlOutOfRange",
             R"({"acls": {"edge": [{"action": "drop", "ttl": "0-256"}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/ttl: expected a TTL from 0 to 255, "
             R"(or a range such as "8000-8099", got "0-256")"},
        Case{"FragmentThatIsNoTruthValue",
             R"({"acls": {"edge": [{"action": "drop", "fragment": "yes"}]}, )"
             R"("interfaces": {}})",
             R"(/acls/edge/0/fragment: expected true or false, got "yes")"},
        Case{"PortOutOfRange",
             R"({"acls": {"edge": [{"action": "drop", "sourcePort": 65536}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/sourcePort: expected a port from 0 to 65535, got 65536"},
        Case{"PortRangeThatDescends",
             R"({"acls": {"edge": [{"action": "drop", "destinationPort": "80-70"}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/destinationPort: expected a port from 0 to 65535, "
             R"(or a range such as "8000-8099", got "80-70")"},
        Case{"PortOfAnotherType",
             R"({"acls": {"edge": [{"action": "drop", "destinationPort": []}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/destinationPort: expected a port from 0 to 65535, "
             R"(or a range such as "8000-8099", got a list)"},
        Case{"UnknownTcpFlag",
             R"({"acls": {"edge": [{"action": "drop", "tcpFlags": "syn,nak"}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/tcpFlags: expected fin, syn, rst, psh, ack, urg, "
             "ece and cwr, each at most once, with ! for a flag that is not set, "
             R"(as in "syn,!ack", got "syn,nak")"},
        Case{"TcpFlagTwice",
             R"({"acls": {"edge": [{"action": "drop", "tcpFlags": "syn,!syn"}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/tcpFlags: expected fin, syn, rst, psh, ack, urg, "
             "ece and cwr, each at most once, with ! for a flag that is not set, "
             R"(as in "syn,!ack", got "syn,!syn")"},
        Case{"IcmpTypeOutOfRange",
             R"({"acls": {"edge": [{"action": "drop", "icmpType": 256}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/icmpType: expected an ICMP type from 0 to 255, got 256"},
        Case{"IcmpCodeOutOfRange",
             R"({"acls": {"edge": [{"action": "drop", "icmpCode": -1}]}, )"
             R"("interfaces": {}})",
             "/acls/edge/0/icmpCode: expected an ICMP code from 0 to 255, got -1"},
        Case{"AddressesOfTwoFamilies",
             R"({"acls": {"edge": [{"action": "drop", "source": "10.0.0.0/8", )"
             R"("destination": "2001:db8::/32"}]}, "interfaces": {}})",
             "/acls/edge/0/destination: expected an address of the same family as "
             R"(source, got "2001:db8::/32")"},
        Case{"FieldsOfIpOfAnotherEtherType",
             R"({"acls": {"edge": [{"action": "drop", "etherType": "arp", )"
             R"("protocol": "udp"}]}, "interfaces": {}})",
             "/acls/edge/0/etherType: expected ipv4 or ipv6 beside fields of IP, "
             R"(got "arp")"},
        Case{
            "AddressesOfAnotherEtherType",
            R"({"acls": {"edge": [{"action": "drop", "etherType": "0x88cc", "source": "10.0.0.0/8"}]}, )"
            R"("interfaces": {}})",
            "/acls/edge/0/etherType: expected ipv4 or ipv6 beside fields of IP, "
            R"(got "0x88cc")"},
        Case{"PortsOfAProtocolWithoutPorts",
             R"({"acls": {"edge": [{"action": "drop", "protocol": "icmp", )"
             R"("destinationPort": 23}]}, "interfaces": {}})",
             "/acls/edge/0/protocol: expected tcp or udp beside destinationPort, "
             R"(got "icmp")"},
        Case{"TcpFlagsOfAnotherProtocol",
             R"({"acls": {"edge": [{"action": "drop", "protocol": "udp", )"
             R"("tcpFlags": "syn"}]}, "interfaces": {}})",
             R"(/acls/edge/0/protocol: expected tcp beside tcpFlags, got "udp")"},
        Case{"IcmpTypeOfAnotherProtocol",
             R"({"acls": {"edge": [{"action": "drop", "protocol": "tcp", )"
             R"("icmpType": 8}]}, "interfaces": {}})",
             "/acls/edge/0/protocol: expected icmp or icmpv6 beside icmpType, "
             R"(got "tcp")"},
        Case{"ProtocolCopiesThatAreNoList", R"({"protocolCopies": "arp", "interfaces": {}})",
             R"(/protocolCopies: expected a list, got "arp")"},
        Case{"UnknownProtocolToCopy", R"({"protocolCopies": ["arp", "lldp2"], "interfaces": {}})",
             "/protocolCopies/1: expected arp, nd, dhcp, dhcpv6, igmp, ospf, pim, "
             R"(vrrp, bfd or an object of fields, got "lldp2")"},
        Case{"ProtocolToCopyTwice", R"({"protocolCopies": ["arp", "arp"], "interfaces": {}})",
             R"(/protocolCopies/1: expected each protocol once, got "arp" again)"},
        Case{"ProtocolToCopyOfAnotherType", R"({"protocolCopies": [1], "interfaces": {}})",
             "/protocolCopies/0: expected arp, nd, dhcp, dhcpv6, igmp, ospf, pim, "
             "vrrp, bfd or an object of fields, got 1"},
        Case{"UnknownFieldOfAProtocolToCopy",
             R"({"protocolCopies": [{"etherType": 35063, "action": "copy"}], )"
             R"("interfaces": {}})",
             "/protocolCopies/0/action: expected one of the members trap, sourceMac, "
             "destinationMac, etherType, vlanPriority, source, destination, "
             "protocol, dscp, ttl, fragment, sourcePort, destinationPort, tcpFlags, "
             R"(icmpType, icmpCode, got "action")"},
        Case{"ProtocolToCopyWithoutAField",
             R"({"protocolCopies": [{"trap": true}], "interfaces": {}})",
             "/protocolCopies/0: expected at least one field of a frame, got none"},
        Case{"TrapThatIsNoTruthValue",
             R"({"protocolCopies": [{"etherType": "ipv4", "trap": 1}], )"
             R"("interfaces": {}})",
             "/protocolCopies/0/trap: expected true or false, got 1"},
        Case{"ProtocolToCopyThatCannotBe",
             R"({"protocolCopies": [{"protocol": "udp", "tcpFlags": "syn"}], )"
             R"("interfaces": {}})",
             R"(/protocolCopies/0/protocol: expected tcp beside tcpFlags, got "udp")"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Forwarding, SwitchFileRefuses,
    testing::Values(
        Case{"NeighboursThatAreNoObject",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": [])",
             "/neighbours: expected an object, got a list"},
        Case{"NeighboursOfAnUnknownInterface",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": {"Vlan13": {}})",
             "/neighbours/Vlan13: expected an interface of the member interfaces, "
             R"(got "Vlan13")"},
        Case{"NeighboursOfWhatIsNoInterfaceName",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": {"vlan 10": {}})",
             "/neighbours/vlan 10: expected an interface of the member interfaces, "
             R"(got "vlan 10")"},
        Case{"NeighboursOfWhatDoesNotRoute",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": {"Ethernet1": {}})",
             "/neighbours/Ethernet1: expected an interface that routes, "
             R"(got "Ethernet1")"},
        Case{"NeighbourTableThatIsNoObject",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": {"Vlan10": []})",
             "/neighbours/Vlan10: expected an object, got a list"},
        Case{"NeighbourThatIsNoAddress",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": {"Vlan10": {"10.0.10": "02:00:00:00:00:aa"}})",
             R"(/neighbours/Vlan10/10.0.10: expected an IP address, got "10.0.10")"},
        Case{"NeighbourOutsideTheSubnets",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": {"Vlan10": {"10.0.11.2": "02:00:00:00:00:aa"}})",
             "/neighbours/Vlan10/10.0.11.2: expected an address in a subnet of "
             R"(Vlan10, got "10.0.11.2")"},
        Case{"LinkLocalNeighbourWithoutIpv6",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": {"Vlan10": {"fe80::2": "02:00:00:00:00:aa"}})",
             "/neighbours/Vlan10/fe80::2: expected an address in a subnet of Vlan10, "
             R"(got "fe80::2")"},
        Case{"NeighbourWithTheSwitchesOwnAddress",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": {"Vlan10": {"10.0.10.1": "02:00:00:00:00:aa"}})",
             "/neighbours/Vlan10/10.0.10.1: expected an address that is not the "
             R"(switch's own, got "10.0.10.1")"},
        Case{"NeighbourTwice",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": {"Vlan11": {"2001:db8::2": "02:00:00:00:00:aa", )"
             R"("2001:db8:0::2": "02:00:00:00:00:ab"}})",
             "/neighbours/Vlan11/2001:db8:0::2: expected each address once, "
             R"(got "2001:db8:0::2" again)"},
        Case{"NeighbourMacThatIsNone",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": {"Vlan10": {"10.0.10.2": "02:00"}})",
             "/neighbours/Vlan10/10.0.10.2: expected a MAC address such as "
             R"(02:1c:73:aa:00:01, got "02:00")"},
        Case{"NeighbourMacOfAGroup",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": {"Vlan10": {"10.0.10.2": "ff:ff:ff:ff:ff:ff"}})",
             "/neighbours/Vlan10/10.0.10.2: expected the MAC address of one station, "
             R"(got "ff:ff:ff:ff:ff:ff")"},
        Case{"NeighbourMacOfAnotherType",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("neighbours": {"Vlan10": {"10.0.10.2": {}}})",
             "/neighbours/Vlan10/10.0.10.2: expected a MAC address, got an object"},
        Case{"RoutesThatAreNoObject",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, "routes": [])",
             "/routes: expected an object, got a list"},
        Case{"RoutesOfAnUnknownVrf",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"red": {}})",
             R"(/routes/red: expected default or a VRF of the list vrfs, got "red")"},
        Case{"RouteTableThatIsNoObject",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"blue": []})",
             "/routes/blue: expected an object, got a list"},
        Case{"RoutePrefixThatIsNone",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0/16": "10.0.10.2"}})",
             "/routes/default/10.7.0~116: expected a prefix without host bits such "
             R"(as 10.1.0.0/16, got "10.7.0/16")"},
        Case{"RoutePrefixWithoutLength",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0": "10.0.10.2"}})",
             "/routes/default/10.7.0.0: expected a prefix without host bits such as "
             R"(10.1.0.0/16, got "10.7.0.0")"},
        Case{"RoutePrefixWithHostBits",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.1/16": "10.0.10.2"}})",
             "/routes/default/10.7.0.1~116: expected a prefix without host bits such "
             R"(as 10.1.0.0/16, got "10.7.0.1/16")"},
        Case{"RouteTwice",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"2001:db8:7::/48": "drop", )"
             R"("2001:DB8:7::/48": "drop"}})",
             "/routes/default/2001:DB8:7::~148: expected each prefix once, "
             R"(got "2001:DB8:7::/48" again)"},
        Case{"RouteToMulticast",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"224.0.0.0/4": "drop"}})",
             "/routes/default/224.0.0.0~14: expected a prefix of unicast addresses, "
             R"(got "224.0.0.0/4")"},
        Case{"RouteToAConnectedSubnet",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.0.11.0/24": "10.0.10.2"}})",
             "/routes/default/10.0.11.0~124: expected no route to a connected "
             R"(subnet, got "10.0.11.0/24", which is on Vlan11)"},
        Case{"NextHopThatIsNone",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": "nowhere"}})",
             "/routes/default/10.7.0.0~116: expected a next hop's address, "
             R"(a list of them, an interface, drop or cpu, got "nowhere")"},
        Case{"NextHopOfAnotherType",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": 10}})",
             "/routes/default/10.7.0.0~116: expected a next hop's address, "
             "a list of them, an interface, drop or cpu, got 10"},
        Case{"NextHopListElementOfAnotherType",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": ["10.0.10.2", null]}})",
             "/routes/default/10.7.0.0~116/1: expected a next hop's address, "
             "a list of them, an interface, drop or cpu, got null"},
        Case{"NextHopListWithDrop",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": ["10.0.10.2", "drop"]}})",
             "/routes/default/10.7.0.0~116/1: expected a next hop's address, "
             R"(a list of them, an interface, drop or cpu, got "drop")"},
        Case{"NextHopListWithoutNextHops",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": []}})",
             "/routes/default/10.7.0.0~116: expected at least one next hop, got none"},
        Case{"NextHopTwice",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": ["10.0.10.2", "10.0.10.2"]}})",
             "/routes/default/10.7.0.0~116/1: expected each next hop once, "
             R"(got "10.0.10.2" again)"},
        Case{"NextHopThatNoInterfaceReaches",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": "10.0.13.2"}})",
             "/routes/default/10.7.0.0~116: expected a next hop in a connected "
             R"(subnet of VRF default, got "10.0.13.2")"},
        Case{"NextHopThatAnotherVrfReaches",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": "10.0.12.2"}})",
             "/routes/default/10.7.0.0~116: expected a next hop in a connected "
             R"(subnet of VRF default, got "10.0.12.2")"},
        Case{"NextHopOfTheOtherFamily",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": "2001:db8::2"}})",
             "/routes/default/10.7.0.0~116: expected an IPv4 address, "
             R"(as the prefix is, got "2001:db8::2")"},
        Case{"NextHopOfTheOtherFamilyAfterItsOwn",
             R"("interfaces": {"Vlan10": {"addresses": ["10.0.10.1/24"]}}, "routes": )"
             R"({"default": {"10.7.0.0/16": "10.0.10.2", "2001:db8:7::/48": "10.0.10.2"}})",
             "/routes/default/2001:db8:7::~148: expected an IPv6 address, as the prefix is, "
             R"(got "10.0.10.2")"},
        Case{"NextHopThatIsTheSwitchItself",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": "10.0.10.1"}})",
             "/routes/default/10.7.0.0~116: expected a next hop that is not the "
             R"(switch itself, got "10.0.10.1")"},
        Case{"LinkLocalNextHopWithoutInterface",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"2001:db8:7::/48": "fe80::2"}})",
             "/routes/default/2001:db8:7::~148: expected an interface behind a "
             R"(link-local next hop, as in "fe80::1%Vlan10", got "fe80::2")"},
        Case{"LinkLocalNextHopOnAnInterfaceWithoutIpv6",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"2001:db8:7::/48": "fe80::2%Vlan10"}})",
             "/routes/default/2001:db8:7::~148: expected a next hop that Vlan10 "
             R"(reaches in VRF default, got "fe80::2%Vlan10")"},
        Case{"NextHopOnAnUnknownInterface",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"2001:db8:7::/48": "fe80::2%Vlan13"}})",
             "/routes/default/2001:db8:7::~148: expected an interface of the member "
             R"(interfaces, got "fe80::2%Vlan13")"},
        Case{"NextHopOnAnotherInterfaceThanItsSubnets",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": "10.0.10.2%Vlan11"}})",
             "/routes/default/10.7.0.0~116: expected a next hop that Vlan11 reaches "
             R"(in VRF default, got "10.0.10.2%Vlan11")"},
        Case{"RouteToAnUnknownInterface",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": "Vlan13"}})",
             "/routes/default/10.7.0.0~116: expected an interface of the member "
             R"(interfaces, got "Vlan13")"},
        Case{"RouteToAnInterfaceOfAnotherVrf",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": "Vlan12"}})",
             "/routes/default/10.7.0.0~116: expected an interface that routes in VRF "
             R"(default, got "Vlan12")"},
        Case{"RouteToAnInterfaceThatDoesNotRoute",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("routes": {"default": {"10.7.0.0/16": "Ethernet1"}})",
             "/routes/default/10.7.0.0~116: expected an interface that routes in VRF "
             R"(default, got "Ethernet1")"},
        Case{"FdbThatIsNoObject",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, "fdb": [])",
             "/fdb: expected an object, got a list"},
        Case{"FdbOfAnUnknownVlan",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("fdb": {"20": {}})",
             R"(/fdb/20: expected a VLAN of the member vlans, got "20")"},
        Case{"FdbOfWhatIsNoVlan",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("fdb": {"10-11": {}})",
             R"(/fdb/10-11: expected a VLAN of the member vlans, got "10-11")"},
        Case{"FdbTableThatIsNoObject",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("fdb": {"10": []})",
             "/fdb/10: expected an object, got a list"},
        Case{"FdbMacThatIsNone",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("fdb": {"10": {"02:00": "Ethernet1"}})",
             "/fdb/10/02:00: expected a MAC address such as 02:1c:73:aa:00:01, "
             R"(got "02:00")"},
        Case{"FdbMacOfAGroup",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("fdb": {"10": {"01:00:5e:00:00:01": "Ethernet1"}})",
             "/fdb/10/01:00:5e:00:00:01: expected the MAC address of one station, "
             R"(got "01:00:5e:00:00:01")"},
        Case{"FdbMacTwice",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("fdb": {"10": {"02:00:00:00:00:aa": "Ethernet1", )"
             R"("02:00:00:00:00:AA": "Lag1"}})",
             "/fdb/10/02:00:00:00:00:AA: expected each MAC address once, "
             R"(got "02:00:00:00:00:AA" again)"},
        Case{"FdbEntryOfAnotherType",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("fdb": {"10": {"02:00:00:00:00:aa": 1}})",
             "/fdb/10/02:00:00:00:00:aa: expected the name of an interface, got 1"},
        Case{"FdbEntryOfAnUnknownInterface",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("fdb": {"10": {"02:00:00:00:00:aa": "Ethernet9"}})",
             "/fdb/10/02:00:00:00:00:aa: expected an interface of the member "
             R"(interfaces, got "Ethernet9")"},
        Case{"FdbEntryForAPortOutsideTheVlan",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("fdb": {"11": {"02:00:00:00:00:aa": "Ethernet1"}})",
             "/fdb/11/02:00:00:00:00:aa: expected an interface that is a member of "
             R"(VLAN 11, got "Ethernet1")"},
        Case{"FdbEntryForALagMember",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("fdb": {"10": {"02:00:00:00:00:aa": "Ethernet2"}})",
             "/fdb/10/02:00:00:00:00:aa: expected an interface that is a member of "
             R"(VLAN 10, got "Ethernet2")"},
        Case{"FdbEntryForAVlanInterface",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("fdb": {"10": {"02:00:00:00:00:aa": "Vlan10"}})",
             "/fdb/10/02:00:00:00:00:aa: expected an interface that is a member of "
             R"(VLAN 10, got "Vlan10")"},
        Case{"FdbEntryForTheRouterMac",
             R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
             R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
             R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
             R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
             R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )"
             R"("fdb": {"10": {"02:00:00:00:00:01": "Ethernet1"}})",
             "/fdb/10/02:00:00:00:00:01: expected a MAC address that is not the "
             R"(router's own, got "02:00:00:00:00:01")"}),
    nameOf);

}  // namespace
}  // namespace Agent
