#include "SwitchFileRefuses.h"

namespace SwitchFile {
namespace {

INSTANTIATE_TEST_SUITE_P(
    Ports, SwitchFileRefuses,
    testing::Values(
        RefusedFile{"InterfacesThatAreNoObject", R"({"interfaces": []})",
                    "/interfaces: expected an object, got a list"},
        RefusedFile{"InterfaceNameThatIsNone", R"("interfaces": {"Eth1": {"port": 1}})",
                    "/interfaces/Eth1: expected an interface name: Ethernet<n>, "
                    "Ethernet<n>/<n>, Lag<n>, Vlan<n>, "
                    R"(or a port or LAG with .<n> for a sub-interface, got "Eth1")"},
        RefusedFile{"InterfaceWithoutName", R"("interfaces": {"": {"port": 1}})",
                    "/interfaces/: expected an interface name: Ethernet<n>, "
                    "Ethernet<n>/<n>, Lag<n>, Vlan<n>, "
                    R"(or a port or LAG with .<n> for a sub-interface, got "")"},
        RefusedFile{"CpuAsAnInterface", R"("interfaces": {"Cpu": {"port": 1}})",
                    "/interfaces/Cpu: expected an interface name: Ethernet<n>, "
                    "Ethernet<n>/<n>, Lag<n>, Vlan<n>, "
                    R"(or a port or LAG with .<n> for a sub-interface, got "Cpu")"},
        RefusedFile{"InterfaceThatIsNoObject", R"("interfaces": {"Ethernet1": 1})",
                    "/interfaces/Ethernet1: expected an object, got 1"},
        RefusedFile{"UnknownMemberOfAPort",
                    R"("interfaces": {"Ethernet49/1": {"port": 1, "acess": 10}})",
                    "/interfaces/Ethernet49~11/acess: expected one of the members "
                    "description, port, up, cpu, access, trunk, native, routed, vrf, "
                    R"(addresses, acl, got "acess")"},
        RefusedFile{"PortWithoutDevicePort", R"("interfaces": {"Ethernet1": {}})",
                    "/interfaces/Ethernet1: expected a member port, got none"},
        RefusedFile{"DevicePortBeyondTheLast", R"("interfaces": {"Ethernet1": {"port": 456}})",
                    "/interfaces/Ethernet1/port: expected a device port from 0 to 455, "
                    "got 456"},
        RefusedFile{"DevicePortOfAnotherType", R"("interfaces": {"Ethernet1": {"port": true}})",
                    "/interfaces/Ethernet1/port: expected a chip port: pipe/index such as "
                    R"("1/5" (pipe 0 to 3, index 0 to 127, )"
                    "0 to 71 in pipe 3) or a device port from 0 to 455, got true"},
        RefusedFile{"DevicePortWithAFraction", R"("interfaces": {"Ethernet1": {"port": 1.0}})",
                    "/interfaces/Ethernet1/port: expected a chip port: pipe/index such as "
                    R"("1/5" (pipe 0 to 3, index 0 to 127, )"
                    "0 to 71 in pipe 3) or a device port from 0 to 455, got 1.0"},
        RefusedFile{"PipeBeyondTheLast", R"("interfaces": {"Ethernet1": {"port": "4/0"}})",
                    "/interfaces/Ethernet1/port: expected a chip port: pipe/index such as "
                    R"("1/5" (pipe 0 to 3, index 0 to 127, )"
                    R"(0 to 71 in pipe 3) or a device port from 0 to 455, got "4/0")"},
        RefusedFile{"IndexBeyondThePipe", R"("interfaces": {"Ethernet1": {"port": "0/128"}})",
                    "/interfaces/Ethernet1/port: expected a chip port: pipe/index such as "
                    R"("1/5" (pipe 0 to 3, index 0 to 127, )"
                    R"(0 to 71 in pipe 3) or a device port from 0 to 455, got "0/128")"},
        RefusedFile{"IndexBeyondTheLastPipe", R"("interfaces": {"Ethernet1": {"port": "3/72"}})",
                    "/interfaces/Ethernet1/port: expected a chip port: pipe/index such as "
                    R"("1/5" (pipe 0 to 3, index 0 to 127, )"
                    R"(0 to 71 in pipe 3) or a device port from 0 to 455, got "3/72")"},
        RefusedFile{"DevicePortThatIsNoPair", R"("interfaces": {"Ethernet1": {"port": "12"}})",
                    "/interfaces/Ethernet1/port: expected a chip port: pipe/index such as "
                    R"("1/5" (pipe 0 to 3, index 0 to 127, )"
                    R"(0 to 71 in pipe 3) or a device port from 0 to 455, got "12")"},
        RefusedFile{"TwoPortsWithOneDevicePort",
                    R"("interfaces": {"Ethernet1": {"port": 133}, )"
                    R"("Ethernet2": {"port": "1/5"}})",
                    "/interfaces/Ethernet2/port: expected a device port of its own, "
                    "got device port 133, which is Ethernet1's"},
        RefusedFile{"UpThatIsNoTruthValue",
                    R"("interfaces": {"Ethernet1": {"port": 1, "up": "no"}})",
                    R"(/interfaces/Ethernet1/up: expected true or false, got "no")"},
        RefusedFile{"CpuThatIsNoTruthValue",
                    R"("interfaces": {"Ethernet1": {"port": 1, "cpu": 1}})",
                    "/interfaces/Ethernet1/cpu: expected true or false, got 1"},
        RefusedFile{"CpuPortInAVlan",
                    R"("interfaces": {"Ethernet1": {"port": 1, "cpu": true, "access": 10}})",
                    "/interfaces/Ethernet1/access: expected no VLAN, "
                    "address or access list on a CPU port, got 10"},
        RefusedFile{"CpuPortThatIsRouted",
                    R"("interfaces": {"Ethernet1": {"port": 1, "cpu": true, )"
                    R"("addresses": ["10.0.0.1/24"]}})",
                    "/interfaces/Ethernet1/addresses: expected no VLAN, "
                    "address or access list on a CPU port, got a list"},
        RefusedFile{"CpuPortWithAccessList",
                    R"("interfaces": {"Ethernet1": {"port": 1, "cpu": true, "acl": "edge"}})",
                    "/interfaces/Ethernet1/acl: expected no VLAN, "
                    R"(address or access list on a CPU port, got "edge")"},
        RefusedFile{"UnknownAccessList",
                    R"("interfaces": {"Ethernet1": {"port": 1, "acl": "core"}})",
                    "/interfaces/Ethernet1/acl: expected an access list of the member acls, "
                    R"(got "core")"},
        RefusedFile{"AccessListThatIsNoText",
                    R"("interfaces": {"Ethernet1": {"port": 1, "acl": 1}})",
                    "/interfaces/Ethernet1/acl: expected the name of an access list, got 1"},
        RefusedFile{"InterfaceDescriptionThatIsNoText",
                    R"("interfaces": {"Ethernet1": {"port": 1, "description": 1}})",
                    "/interfaces/Ethernet1/description: expected a text, got 1"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Switching, SwitchFileRefuses,
    testing::Values(
        RefusedFile{"AccessVlanOutOfRange",
                    R"("interfaces": {"Ethernet1": {"port": 1, "access": 0}})",
                    "/interfaces/Ethernet1/access: expected a VLAN from 1 to 4094, got 0"},
        RefusedFile{"AccessVlanOfAnotherType",
                    R"("interfaces": {"Ethernet1": {"port": 1, "access": "10"}})",
                    R"(/interfaces/Ethernet1/access: expected a VLAN from 1 to 4094, got "10")"},
        RefusedFile{"AccessVlanThatIsNotConfigured",
                    R"("interfaces": {"Ethernet1": {"port": 1, "access": 99}})",
                    "/interfaces/Ethernet1/access: expected a VLAN of the member vlans, "
                    "got 99"},
        RefusedFile{"AccessBesideTrunk",
                    R"("interfaces": {"Ethernet1": {"port": 1, "access": 10, "trunk": "11"}})",
                    R"(/interfaces/Ethernet1/trunk: expected no trunk beside access, got "11")"},
        RefusedFile{"AccessBesideNative",
                    R"("interfaces": {"Ethernet1": {"port": 1, "access": 10, "native": 11}})",
                    "/interfaces/Ethernet1/native: expected no trunk beside access, got 11"},
        RefusedFile{"NativeWithoutTrunk",
                    R"("interfaces": {"Ethernet1": {"port": 1, "native": 10}})",
                    "/interfaces/Ethernet1/native: expected a member trunk beside native, "
                    "got none"},
        RefusedFile{"NativeVlanThatIsNotConfigured",
                    R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10", "native": 20}})",
                    "/interfaces/Ethernet1/native: expected a VLAN of the member vlans, "
                    "got 20"},
        RefusedFile{"TrunkOfAnotherType",
                    R"("interfaces": {"Ethernet1": {"port": 1, "trunk": [10]}})",
                    R"(/interfaces/Ethernet1/trunk: expected VLANs such as "10-20,30", )"
                    R"(one number, or "all", got a list)"},
        RefusedFile{"TrunkThatIsNoList",
                    R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10;11"}})",
                    R"(/interfaces/Ethernet1/trunk: expected VLANs such as "10-20,30", )"
                    R"(one number, or "all", got "10;11")"},
        RefusedFile{"TrunkWithoutVlans", R"("interfaces": {"Ethernet1": {"port": 1, "trunk": ""}})",
                    R"(/interfaces/Ethernet1/trunk: expected VLANs such as "10-20,30", )"
                    R"(one number, or "all", got "")"},
        RefusedFile{"TrunkVlanThatIsNotConfigured",
                    R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10-12,18-21"}})",
                    "/interfaces/Ethernet1/trunk: expected VLANs of the member vlans, "
                    "got VLAN 20"},
        RefusedFile{"TrunkNumberThatIsNotConfigured",
                    R"("interfaces": {"Ethernet1": {"port": 1, "trunk": 20}})",
                    "/interfaces/Ethernet1/trunk: expected a VLAN of the member vlans, "
                    "got 20"},
        RefusedFile{"TrunkVlanTwice",
                    R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10-12,12"}})",
                    "/interfaces/Ethernet1/trunk: expected each VLAN once, got VLAN 12 again"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Lags, SwitchFileRefuses,
    testing::Values(
        RefusedFile{"UnknownMemberOfALag", R"("interfaces": {"Lag1": {"members": [], "port": 1}})",
                    "/interfaces/Lag1/port: expected one of the members description, "
                    R"(members, access, trunk, native, routed, vrf, addresses, acl, got "port")"},
        RefusedFile{"LagWithoutMembers", R"("interfaces": {"Lag1": {}})",
                    "/interfaces/Lag1: expected a member members, got none"},
        RefusedFile{"LagMembersThatAreNoList",
                    R"("interfaces": {"Lag1": {"members": "Ethernet1"}})",
                    R"(/interfaces/Lag1/members: expected a list, got "Ethernet1")"},
        RefusedFile{"LagMemberThatIsNoText", R"("interfaces": {"Lag1": {"members": [1]}})",
                    "/interfaces/Lag1/members/0: expected the name of a physical port, got 1"},
        RefusedFile{"LagMemberThatIsNoInterface",
                    R"("interfaces": {"Lag1": {"members": ["Ethernet1"]}})",
                    "/interfaces/Lag1/members/0: expected an interface of the member "
                    R"(interfaces, got "Ethernet1")"},
        RefusedFile{"LagMemberThatIsNoPort",
                    R"("interfaces": {"Lag1": {"members": ["Vlan10"]}, "Vlan10": {}})",
                    "/interfaces/Lag1/members/0: expected the name of a physical port, "
                    R"(got "Vlan10")"},
        RefusedFile{"LagMemberInTwoLags",
                    R"("interfaces": {"Ethernet1": {"port": 1}, )"
                    R"("Lag1": {"members": ["Ethernet1"]}, "Lag2": {"members": ["Ethernet1"]}})",
                    "/interfaces/Lag2/members/0: expected a port that is in no other LAG, "
                    "got Ethernet1, which is in Lag1"},
        RefusedFile{"LagMemberTwice",
                    R"("interfaces": {"Ethernet1": {"port": 1}, )"
                    R"("Lag1": {"members": ["Ethernet1", "Ethernet1"]}})",
                    "/interfaces/Lag1/members/1: expected a port that is in no other LAG, "
                    "got Ethernet1, which is in Lag1"},
        RefusedFile{"LagMemberInAVlan",
                    R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
                    R"("Lag1": {"members": ["Ethernet1"]}})",
                    "/interfaces/Ethernet1/access: expected no VLAN, "
                    "address or access list on Ethernet1, because it is a member of Lag1, "
                    "got 10"},
        RefusedFile{"LagMemberWithATrunk",
                    R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10"}, )"
                    R"("Lag1": {"members": ["Ethernet1"]}})",
                    "/interfaces/Ethernet1/trunk: expected no VLAN, "
                    "address or access list on Ethernet1, because it is a member of Lag1, "
                    R"(got "10")"},
        RefusedFile{"LagMemberThatIsRouted",
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                    R"("Lag1": {"members": ["Ethernet1"]}})",
                    "/interfaces/Ethernet1/routed: expected no VLAN, "
                    "address or access list on Ethernet1, because it is a member of Lag1, "
                    "got true"},
        RefusedFile{"LagMemberWithAnAddress",
                    R"("interfaces": {"Ethernet1": {"port": 1, "addresses": ["10.0.0.1/24"]}, )"
                    R"("Lag1": {"members": ["Ethernet1"]}})",
                    "/interfaces/Ethernet1/addresses: expected no VLAN, "
                    "address or access list on Ethernet1, because it is a member of Lag1, "
                    "got a list"},
        RefusedFile{"LagMemberWithAnAccessList",
                    R"("interfaces": {"Ethernet1": {"port": 1, "acl": "edge"}, )"
                    R"("Lag1": {"members": ["Ethernet1"]}})",
                    "/interfaces/Ethernet1/acl: expected no VLAN, "
                    "address or access list on Ethernet1, because it is a member of Lag1, "
                    R"(got "edge")"},
        RefusedFile{"CpuPortInALag",
                    R"("interfaces": {"Ethernet1": {"port": 1, "cpu": true}, )"
                    R"("Lag1": {"members": ["Ethernet1"]}})",
                    "/interfaces/Lag1/members/0: expected no CPU port in a LAG, "
                    "got Ethernet1"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Routing, SwitchFileRefuses,
    testing::Values(
        RefusedFile{"RoutedThatIsNoTruthValue",
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": 1}})",
                    "/interfaces/Ethernet1/routed: expected true or false, got 1"},
        RefusedFile{"RoutedBesideAccess",
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": true, "access": 10}})",
                    "/interfaces/Ethernet1/routed: expected no routing beside a VLAN, "
                    "got true"},
        RefusedFile{"AddressesBesideATrunk",
                    R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10", )"
                    R"("addresses": ["10.0.0.1/24"]}})",
                    "/interfaces/Ethernet1/addresses: expected no routing beside a VLAN, "
                    "got a list"},
        RefusedFile{"AddressesOfWhatIsNotRouted",
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": false, )"
                    R"("addresses": ["10.0.0.1/24"]}})",
                    "/interfaces/Ethernet1/addresses: expected no VRF or address beside "
                    R"("routed": false, got a list)"},
        RefusedFile{"VrfOfWhatDoesNotRoute",
                    R"("interfaces": {"Ethernet1": {"port": 1, "vrf": "blue"}})",
                    R"(/interfaces/Ethernet1/vrf: expected "routed": true or addresses beside )"
                    "vrf, got neither"},
        RefusedFile{"UnknownVrf", R"("interfaces": {"Vlan10": {"vrf": "red"}})",
                    "/interfaces/Vlan10/vrf: expected default or a VRF of the list vrfs, "
                    R"(got "red")"},
        RefusedFile{"VrfOfAnotherType", R"("interfaces": {"Vlan10": {"vrf": 1}})",
                    "/interfaces/Vlan10/vrf: expected the name of a VRF, got 1"},
        RefusedFile{"AddressesThatAreNoList",
                    R"("interfaces": {"Vlan10": {"addresses": "10.0.0.1/24"}})",
                    R"(/interfaces/Vlan10/addresses: expected a list, got "10.0.0.1/24")"},
        RefusedFile{"AddressOfAnotherType", R"("interfaces": {"Vlan10": {"addresses": [10]}})",
                    "/interfaces/Vlan10/addresses/0: expected an address and length such as "
                    "10.0.10.1/24 or 2001:db8::1/64, got 10"},
        RefusedFile{"AddressWithoutLength",
                    R"("interfaces": {"Vlan10": {"addresses": ["10.0.0.1"]}})",
                    "/interfaces/Vlan10/addresses/0: expected an address and length such as "
                    R"(10.0.10.1/24 or 2001:db8::1/64, got "10.0.0.1")"},
        RefusedFile{"AddressWithLengthBeyondItsBits",
                    R"("interfaces": {"Vlan10": {"addresses": ["10.0.0.1/33"]}})",
                    "/interfaces/Vlan10/addresses/0: expected an address and length such as "
                    R"(10.0.10.1/24 or 2001:db8::1/64, got "10.0.0.1/33")"},
        RefusedFile{"AddressThatIsNone",
                    R"("interfaces": {"Vlan10": {"addresses": ["10.0.0/24"]}})",
                    "/interfaces/Vlan10/addresses/0: expected an address and length such as "
                    R"(10.0.10.1/24 or 2001:db8::1/64, got "10.0.0/24")"},
        RefusedFile{"AddressOfTheSubnetItself",
                    R"("interfaces": {"Vlan10": {"addresses": ["10.0.0.0/24"]}})",
                    "/interfaces/Vlan10/addresses/0: expected an address that a host in the "
                    R"(subnet can have, got "10.0.0.0/24")"},
        RefusedFile{"BroadcastAddress",
                    R"("interfaces": {"Vlan10": {"addresses": ["10.0.0.255/24"]}})",
                    "/interfaces/Vlan10/addresses/0: expected an address that a host in the "
                    R"(subnet can have, got "10.0.0.255/24")"},
        RefusedFile{"MulticastAddress",
                    R"("interfaces": {"Vlan10": {"addresses": ["ff02::1/64"]}})",
                    "/interfaces/Vlan10/addresses/0: expected an address that a host in the "
                    R"(subnet can have, got "ff02::1/64")"},
        RefusedFile{"LoopbackAddress", R"("interfaces": {"Vlan10": {"addresses": ["::1/128"]}})",
                    "/interfaces/Vlan10/addresses/0: expected an address that a host in the "
                    R"(subnet can have, got "::1/128")"},
        RefusedFile{
            "LoopbackAddressOfIpv4", R"("interfaces": {"Vlan10": {"addresses": ["127.0.0.1/8"]}})",
            "/interfaces/Vlan10/addresses/0: expected an address that a host in the subnet can "
            R"(have, got "127.0.0.1/8")"},
        RefusedFile{"AddressOnTwoInterfacesOfOneVrf",
                    R"("interfaces": {"Vlan10": {"addresses": ["10.0.0.1/24"]}, )"
                    R"("Vlan11": {"addresses": ["10.0.0.1/25"]}})",
                    "/interfaces/Vlan11/addresses/0: expected an address of its own, "
                    R"(got "10.0.0.1/25", which is also on Vlan10 of VRF default)"},
        RefusedFile{"AddressTwiceOnOneInterface",
                    R"("interfaces": {"Vlan10": {"addresses": ["2001:db8::1/64", )"
                    R"("2001:DB8:0::1/64"]}})",
                    "/interfaces/Vlan10/addresses/1: expected an address of its own, "
                    R"(got "2001:DB8:0::1/64", which is also on Vlan10 of VRF default)"},
        RefusedFile{"SubnetOnTwoInterfacesOfOneVrf",
                    R"("interfaces": {"Vlan10": {"addresses": ["10.0.0.1/24"], )"
                    R"("vrf": "blue"}, "Vlan11": {"addresses": ["10.0.0.2/24"], )"
                    R"("vrf": "blue"}})",
                    "/interfaces/Vlan11/addresses/0: expected a subnet of its own, "
                    "got 10.0.0.0/24, which is also on Vlan10 of VRF blue"},
        RefusedFile{"UnknownMemberOfAVlanInterface",
                    R"("interfaces": {"Vlan10": {"address": "10.0.0.1/24"}})",
                    "/interfaces/Vlan10/address: expected one of the members description, "
                    R"(vrf, addresses, got "address")"},
        RefusedFile{"VlanInterfaceWithoutItsVlan", R"("interfaces": {"Vlan20": {}})",
                    "/interfaces/Vlan20: expected a VLAN of the member vlans, got 20"},
        RefusedFile{"MoreInternalVlansThanThereAre",
                    R"({"routerMac": "02:00:00:00:00:01", "vlans": {"1-4093": {}}, )"
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                    R"("Ethernet2": {"port": 2, "routed": true}}})",
                    "/interfaces/Ethernet2: expected a VLAN left for the internal use of "
                    "what routes, got none"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    SubInterfaces, SwitchFileRefuses,
    testing::Values(
        RefusedFile{"UnknownMemberOfASubInterface",
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                    R"("Ethernet1.5": {"port": 1}})",
                    "/interfaces/Ethernet1.5/port: expected one of the members description, "
                    R"(tag, vlan, vrf, addresses, acl, got "port")"},
        RefusedFile{"TagOutOfRange",
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                    R"("Ethernet1.5": {"tag": 4095}})",
                    "/interfaces/Ethernet1.5/tag: expected a VLAN tag from 1 to 4094, "
                    "got 4095"},
        RefusedFile{"NumberThatIsNoTagWithoutTag",
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                    R"("Ethernet1.5000": {}})",
                    "/interfaces/Ethernet1.5000: expected a member tag, "
                    "because 5000 is no tag, got none"},
        RefusedFile{"ParentThatIsNotThere", R"("interfaces": {"Ethernet1.5": {}})",
                    "/interfaces/Ethernet1.5: expected its parent Ethernet1 among the "
                    "interfaces, got none"},
        RefusedFile{"ParentThatIsNotRouted",
                    R"("interfaces": {"Ethernet1": {"port": 1}, "Ethernet1.5": {}})",
                    "/interfaces/Ethernet1.5: expected a parent that is routed, "
                    "got Ethernet1, which is not"},
        RefusedFile{"ParentThatIsAVlanMember",
                    R"("interfaces": {"Ethernet1": {"port": 1, "trunk": "10"}, )"
                    R"("Ethernet1.5": {}})",
                    "/interfaces/Ethernet1.5: expected a parent that is routed, "
                    "got Ethernet1, which is a member of a VLAN"},
        RefusedFile{"ParentThatIsACpuPort",
                    R"("interfaces": {"Ethernet1": {"port": 1, "cpu": true}, )"
                    R"("Ethernet1.5": {}})",
                    "/interfaces/Ethernet1.5: expected a parent that is routed, "
                    "got Ethernet1, which is a CPU port"},
        RefusedFile{"ParentThatIsALagMember",
                    R"("interfaces": {"Ethernet1": {"port": 1}, )"
                    R"("Lag1": {"members": ["Ethernet1"], "routed": true}, "Ethernet1.5": {}})",
                    "/interfaces/Ethernet1.5: expected a parent that is in no LAG, "
                    "got Ethernet1, which is a member of Lag1"},
        RefusedFile{"TagOfTwoSubInterfaces",
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                    R"("Ethernet1.5": {}, "Ethernet1.6": {"tag": 5}})",
                    "/interfaces/Ethernet1.6: expected a tag that no other sub-interface of "
                    "Ethernet1 has, got 5 again"},
        RefusedFile{"BridgedSubInterfaceWithAnAddress",
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                    R"("Ethernet1.5": {"vlan": 10, "addresses": ["10.0.0.1/24"]}})",
                    "/interfaces/Ethernet1.5/addresses: expected no VRF or address on a "
                    "sub-interface that is bridged, got a list"},
        RefusedFile{"BridgedSubInterfaceWithAVrf",
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                    R"("Ethernet1.5": {"vlan": 10, "vrf": "blue"}})",
                    "/interfaces/Ethernet1.5/vrf: expected no VRF or address on a "
                    R"(sub-interface that is bridged, got "blue")"},
        RefusedFile{"BridgedSubInterfaceOfUnknownVlan",
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                    R"("Ethernet1.5": {"vlan": 20}})",
                    "/interfaces/Ethernet1.5/vlan: expected a VLAN of the member vlans, "
                    "got 20"},
        RefusedFile{"VlanOfTwoBridgedSubInterfacesOfAPort",
                    R"("interfaces": {"Ethernet1": {"port": 1, "routed": true}, )"
                    R"("Ethernet1.5": {"vlan": 10}, "Ethernet1.6": {"vlan": 10}})",
                    "/interfaces/Ethernet1.6/vlan: expected a VLAN that no other "
                    "sub-interface of Ethernet1 is bridged into, got 10 again"}),
    nameOf);

}  // namespace
}  // namespace SwitchFile
