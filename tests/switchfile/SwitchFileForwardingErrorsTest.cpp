#include "SwitchFileRefuses.h"

namespace SwitchFile {
namespace {

INSTANTIATE_TEST_SUITE_P(
    Forwarding, SwitchFileRefuses,
    testing::Values(
        RefusedFile{"NeighboursThatAreNoObject", R"("neighbours": [])",
                    "/neighbours: expected an object, got a list"},
        RefusedFile{"NeighboursOfAnUnknownInterface", R"("neighbours": {"Vlan13": {}})",
                    "/neighbours/Vlan13: expected an interface of the member interfaces, "
                    R"(got "Vlan13")"},
        RefusedFile{"NeighboursOfWhatIsNoInterfaceName", R"("neighbours": {"vlan 10": {}})",
                    "/neighbours/vlan 10: expected an interface of the member interfaces, "
                    R"(got "vlan 10")"},
        RefusedFile{"NeighboursOfWhatDoesNotRoute", R"("neighbours": {"Ethernet1": {}})",
                    "/neighbours/Ethernet1: expected an interface that routes, "
                    R"(got "Ethernet1")"},
        RefusedFile{"NeighbourTableThatIsNoObject", R"("neighbours": {"Vlan10": []})",
                    "/neighbours/Vlan10: expected an object, got a list"},
        RefusedFile{"NeighbourThatIsNoAddress",
                    R"("neighbours": {"Vlan10": {"10.0.10": "02:00:00:00:00:aa"}})",
                    R"(/neighbours/Vlan10/10.0.10: expected an IP address, got "10.0.10")"},
        RefusedFile{"NeighbourOutsideTheSubnets",
                    R"("neighbours": {"Vlan10": {"10.0.11.2": "02:00:00:00:00:aa"}})",
                    "/neighbours/Vlan10/10.0.11.2: expected an address in a subnet of "
                    R"(Vlan10, got "10.0.11.2")"},
        RefusedFile{"LinkLocalNeighbourWithoutIpv6",
                    R"("neighbours": {"Vlan10": {"fe80::2": "02:00:00:00:00:aa"}})",
                    "/neighbours/Vlan10/fe80::2: expected an address in a subnet of Vlan10, "
                    R"(got "fe80::2")"},
        RefusedFile{"NeighbourWithTheSwitchesOwnAddress",
                    R"("neighbours": {"Vlan10": {"10.0.10.1": "02:00:00:00:00:aa"}})",
                    "/neighbours/Vlan10/10.0.10.1: expected an address that is not the "
                    R"(switch's own, got "10.0.10.1")"},
        RefusedFile{"NeighbourTwice",
                    R"("neighbours": {"Vlan11": {"2001:db8::2": "02:00:00:00:00:aa", )"
                    R"("2001:db8:0::2": "02:00:00:00:00:ab"}})",
                    "/neighbours/Vlan11/2001:db8:0::2: expected each address once, "
                    R"(got "2001:db8:0::2" again)"},
        RefusedFile{"NeighbourMacThatIsNone", R"("neighbours": {"Vlan10": {"10.0.10.2": "02:00"}})",
                    "/neighbours/Vlan10/10.0.10.2: expected a MAC address such as "
                    R"(02:1c:73:aa:00:01, got "02:00")"},
        RefusedFile{"NeighbourMacOfAGroup",
                    R"("neighbours": {"Vlan10": {"10.0.10.2": "ff:ff:ff:ff:ff:ff"}})",
                    "/neighbours/Vlan10/10.0.10.2: expected the MAC address of one station, "
                    R"(got "ff:ff:ff:ff:ff:ff")"},
        RefusedFile{"NeighbourMacOfAnotherType", R"("neighbours": {"Vlan10": {"10.0.10.2": {}}})",
                    "/neighbours/Vlan10/10.0.10.2: expected a MAC address, got an object"},
        RefusedFile{"RoutesThatAreNoObject",
                    R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
                    R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
                    R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
                    R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
                    R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, "routes": [])",
                    "/routes: expected an object, got a list"},
        RefusedFile{"RoutesOfAnUnknownVrf", R"("routes": {"red": {}})",
                    R"(/routes/red: expected default or a VRF of the list vrfs, got "red")"},
        RefusedFile{"RouteTableThatIsNoObject", R"("routes": {"blue": []})",
                    "/routes/blue: expected an object, got a list"},
        RefusedFile{"RoutePrefixThatIsNone", R"("routes": {"default": {"10.7.0/16": "10.0.10.2"}})",
                    "/routes/default/10.7.0~116: expected a prefix without host bits such "
                    R"(as 10.1.0.0/16, got "10.7.0/16")"},
        RefusedFile{"RoutePrefixWithoutLength",
                    R"("routes": {"default": {"10.7.0.0": "10.0.10.2"}})",
                    "/routes/default/10.7.0.0: expected a prefix without host bits such as "
                    R"(10.1.0.0/16, got "10.7.0.0")"},
        RefusedFile{"RoutePrefixWithHostBits",
                    R"("routes": {"default": {"10.7.0.1/16": "10.0.10.2"}})",
                    "/routes/default/10.7.0.1~116: expected a prefix without host bits such "
                    R"(as 10.1.0.0/16, got "10.7.0.1/16")"},
        RefusedFile{"RouteTwice",
                    R"("routes": {"default": {"2001:db8:7::/48": "drop", )"
                    R"("2001:DB8:7::/48": "drop"}})",
                    "/routes/default/2001:DB8:7::~148: expected each prefix once, "
                    R"(got "2001:DB8:7::/48" again)"},
        RefusedFile{"RouteToMulticast", R"("routes": {"default": {"224.0.0.0/4": "drop"}})",
                    "/routes/default/224.0.0.0~14: expected a prefix of unicast addresses, "
                    R"(got "224.0.0.0/4")"},
        RefusedFile{"RouteToAConnectedSubnet",
                    R"("routes": {"default": {"10.0.11.0/24": "10.0.10.2"}})",
                    "/routes/default/10.0.11.0~124: expected no route to a connected "
                    R"(subnet, got "10.0.11.0/24", which is on Vlan11)"},
        RefusedFile{"NextHopThatIsNone", R"("routes": {"default": {"10.7.0.0/16": "nowhere"}})",
                    "/routes/default/10.7.0.0~116: expected a next hop's address, "
                    R"(a list of them, an interface, drop or cpu, got "nowhere")"},
        RefusedFile{"NextHopOfAnotherType", R"("routes": {"default": {"10.7.0.0/16": 10}})",
                    "/routes/default/10.7.0.0~116: expected a next hop's address, "
                    "a list of them, an interface, drop or cpu, got 10"},
        RefusedFile{"NextHopListElementOfAnotherType",
                    R"("routes": {"default": {"10.7.0.0/16": ["10.0.10.2", null]}})",
                    "/routes/default/10.7.0.0~116/1: expected a next hop's address, "
                    "a list of them, an interface, drop or cpu, got null"},
        RefusedFile{"NextHopListWithDrop",
                    R"("routes": {"default": {"10.7.0.0/16": ["10.0.10.2", "drop"]}})",
                    "/routes/default/10.7.0.0~116/1: expected a next hop's address, "
                    R"(a list of them, an interface, drop or cpu, got "drop")"},
        RefusedFile{"NextHopListWithoutNextHops", R"("routes": {"default": {"10.7.0.0/16": []}})",
                    "/routes/default/10.7.0.0~116: expected at least one next hop, got none"},
        RefusedFile{"NextHopTwice",
                    R"("routes": {"default": {"10.7.0.0/16": ["10.0.10.2", "10.0.10.2"]}})",
                    "/routes/default/10.7.0.0~116/1: expected each next hop once, "
                    R"(got "10.0.10.2" again)"},
        RefusedFile{"NextHopThatNoInterfaceReaches",
                    R"("routes": {"default": {"10.7.0.0/16": "10.0.13.2"}})",
                    "/routes/default/10.7.0.0~116: expected a next hop in a connected "
                    R"(subnet of VRF default, got "10.0.13.2")"},
        RefusedFile{"NextHopThatAnotherVrfReaches",
                    R"("routes": {"default": {"10.7.0.0/16": "10.0.12.2"}})",
                    "/routes/default/10.7.0.0~116: expected a next hop in a connected "
                    R"(subnet of VRF default, got "10.0.12.2")"},
        RefusedFile{"NextHopOfTheOtherFamily",
                    R"("routes": {"default": {"10.7.0.0/16": "2001:db8::2"}})",
                    "/routes/default/10.7.0.0~116: expected an IPv4 address, "
                    R"(as the prefix is, got "2001:db8::2")"},
        RefusedFile{"NextHopOfTheOtherFamilyAfterItsOwn",
                    R"("interfaces": {"Vlan10": {"addresses": ["10.0.10.1/24"]}}, "routes": )"
                    R"({"default": {"10.7.0.0/16": "10.0.10.2", "2001:db8:7::/48": "10.0.10.2"}})",
                    "/routes/default/2001:db8:7::~148: expected an IPv6 address, as the prefix is, "
                    R"(got "10.0.10.2")"},
        RefusedFile{"NextHopThatIsTheSwitchItself",
                    R"("routes": {"default": {"10.7.0.0/16": "10.0.10.1"}})",
                    "/routes/default/10.7.0.0~116: expected a next hop that is not the "
                    R"(switch itself, got "10.0.10.1")"},
        RefusedFile{"LinkLocalNextHopWithoutInterface",
                    R"("routes": {"default": {"2001:db8:7::/48": "fe80::2"}})",
                    "/routes/default/2001:db8:7::~148: expected an interface behind a "
                    R"(link-local next hop, as in "fe80::1%Vlan10", got "fe80::2")"},
        RefusedFile{"LinkLocalNextHopOnAnInterfaceWithoutIpv6",
                    R"("routes": {"default": {"2001:db8:7::/48": "fe80::2%Vlan10"}})",
                    "/routes/default/2001:db8:7::~148: expected a next hop that Vlan10 "
                    R"(reaches in VRF default, got "fe80::2%Vlan10")"},
        RefusedFile{"NextHopOnAnUnknownInterface",
                    R"("routes": {"default": {"2001:db8:7::/48": "fe80::2%Vlan13"}})",
                    "/routes/default/2001:db8:7::~148: expected an interface of the member "
                    R"(interfaces, got "fe80::2%Vlan13")"},
        RefusedFile{"NextHopOnAnotherInterfaceThanItsSubnets",
                    R"("routes": {"default": {"10.7.0.0/16": "10.0.10.2%Vlan11"}})",
                    "/routes/default/10.7.0.0~116: expected a next hop that Vlan11 reaches "
                    R"(in VRF default, got "10.0.10.2%Vlan11")"},
        RefusedFile{"RouteToAnUnknownInterface",
                    R"("routes": {"default": {"10.7.0.0/16": "Vlan13"}})",
                    "/routes/default/10.7.0.0~116: expected an interface of the member "
                    R"(interfaces, got "Vlan13")"},
        RefusedFile{"RouteToAnInterfaceOfAnotherVrf",
                    R"("routes": {"default": {"10.7.0.0/16": "Vlan12"}})",
                    "/routes/default/10.7.0.0~116: expected an interface that routes in VRF "
                    R"(default, got "Vlan12")"},
        RefusedFile{"RouteToAnInterfaceThatDoesNotRoute",
                    R"("routes": {"default": {"10.7.0.0/16": "Ethernet1"}})",
                    "/routes/default/10.7.0.0~116: expected an interface that routes in VRF "
                    R"(default, got "Ethernet1")"},
        RefusedFile{"FdbThatIsNoObject",
                    R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, )"
                    R"("Ethernet2": {"port": 2}, "Lag1": {"members": ["Ethernet2"], )"
                    R"("trunk": "10"}, "Vlan10": {"addresses": ["10.0.10.1/24"]}, )"
                    R"("Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]}, )"
                    R"("Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, "fdb": [])",
                    "/fdb: expected an object, got a list"},
        RefusedFile{"FdbOfAnUnknownVlan", R"("fdb": {"20": {}})",
                    R"(/fdb/20: expected a VLAN of the member vlans, got "20")"},
        RefusedFile{"FdbOfWhatIsNoVlan", R"("fdb": {"10-11": {}})",
                    R"(/fdb/10-11: expected a VLAN of the member vlans, got "10-11")"},
        RefusedFile{"FdbTableThatIsNoObject", R"("fdb": {"10": []})",
                    "/fdb/10: expected an object, got a list"},
        RefusedFile{"FdbMacThatIsNone", R"("fdb": {"10": {"02:00": "Ethernet1"}})",
                    "/fdb/10/02:00: expected a MAC address such as 02:1c:73:aa:00:01, "
                    R"(got "02:00")"},
        RefusedFile{"FdbMacOfAGroup", R"("fdb": {"10": {"01:00:5e:00:00:01": "Ethernet1"}})",
                    "/fdb/10/01:00:5e:00:00:01: expected the MAC address of one station, "
                    R"(got "01:00:5e:00:00:01")"},
        RefusedFile{"FdbMacTwice",
                    R"("fdb": {"10": {"02:00:00:00:00:aa": "Ethernet1", )"
                    R"("02:00:00:00:00:AA": "Lag1"}})",
                    "/fdb/10/02:00:00:00:00:AA: expected each MAC address once, "
                    R"(got "02:00:00:00:00:AA" again)"},
        RefusedFile{"FdbEntryOfAnotherType", R"("fdb": {"10": {"02:00:00:00:00:aa": 1}})",
                    "/fdb/10/02:00:00:00:00:aa: expected the name of an interface, got 1"},
        RefusedFile{"FdbEntryOfAnUnknownInterface",
                    R"("fdb": {"10": {"02:00:00:00:00:aa": "Ethernet9"}})",
                    "/fdb/10/02:00:00:00:00:aa: expected an interface of the member "
                    R"(interfaces, got "Ethernet9")"},
        RefusedFile{"FdbEntryForAPortOutsideTheVlan",
                    R"("fdb": {"11": {"02:00:00:00:00:aa": "Ethernet1"}})",
                    "/fdb/11/02:00:00:00:00:aa: expected an interface that is a member of "
                    R"(VLAN 11, got "Ethernet1")"},
        RefusedFile{"FdbEntryForALagMember", R"("fdb": {"10": {"02:00:00:00:00:aa": "Ethernet2"}})",
                    "/fdb/10/02:00:00:00:00:aa: expected an interface that is a member of "
                    R"(VLAN 10, got "Ethernet2")"},
        RefusedFile{"FdbEntryForAVlanInterface",
                    R"("fdb": {"10": {"02:00:00:00:00:aa": "Vlan10"}})",
                    "/fdb/10/02:00:00:00:00:aa: expected an interface that is a member of "
                    R"(VLAN 10, got "Vlan10")"},
        RefusedFile{"FdbEntryForTheRouterMac",
                    R"("fdb": {"10": {"02:00:00:00:00:01": "Ethernet1"}})",
                    "/fdb/10/02:00:00:00:00:01: expected a MAC address that is not the "
                    R"(router's own, got "02:00:00:00:00:01")"}),
    nameOf);

}  // namespace
}  // namespace SwitchFile
