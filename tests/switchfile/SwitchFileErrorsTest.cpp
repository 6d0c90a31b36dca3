#include "SwitchFileRefuses.h"

namespace SwitchFile {
namespace {

TEST_P(SwitchFileRefuses, WithAMessageThatNamesPlaceAndExpectation) {
    EXPECT_EQ(problem(GetParam().text), std::string("f: ") + GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Document, SwitchFileRefuses,
    testing::Values(
        RefusedFile{"DocumentThatIsNoObject", "[]", "/: expected an object, got a list"},
        RefusedFile{"UnknownMember", R"({"interfaces": {}, "interface": {}})",
                    "/interface: expected one of the members $schema, description, "
                    "routerMac, vrfs, acls, vlans, interfaces, protocolCopies, neighbours, "
                    R"(routes, fdb, got "interface")"},
        RefusedFile{"RepeatedMember", R"({"interfaces": {}, "vrfs": [], "interfaces": {}})",
                    "/interfaces: repeated member: expected each name once, "
                    R"(got "interfaces" again)"},
        RefusedFile{"RepeatedInterface",
                    R"("interfaces": {"Ethernet1": {"port": 1}, "Ethernet1": {"port": 2}})",
                    "/interfaces/Ethernet1: repeated member: expected each name once, "
                    R"(got "Ethernet1" again)"},
        RefusedFile{"MissingInterfaces", R"({"vlans": {}})",
                    "/: expected a member interfaces, got none"},
        RefusedFile{"SchemaThatIsNoText", R"({"$schema": 1, "interfaces": {}})",
                    "/$schema: expected a text, got 1"},
        RefusedFile{"DescriptionThatIsNoText", R"({"description": [], "interfaces": {}})",
                    "/description: expected a text, got a list"},
        RefusedFile{"RouterMacThatIsNoText", R"({"routerMac": 1, "interfaces": {}})",
                    "/routerMac: expected a MAC address, got 1"},
        RefusedFile{"RouterMacThatIsNoMac", R"({"routerMac": "02:00", "interfaces": {}})",
                    "/routerMac: expected a MAC address such as 02:1c:73:aa:00:01, "
                    R"(got "02:00")"},
        RefusedFile{"RouterMacOfAGroup", R"({"routerMac": "01:00:5e:00:00:01", "interfaces": {}})",
                    "/routerMac: expected the MAC address of one station, "
                    R"(got "01:00:5e:00:00:01")"},
        RefusedFile{"RouterMacOfZeros", R"({"routerMac": "00:00:00:00:00:00", "interfaces": {}})",
                    "/routerMac: expected the MAC address of one station, "
                    R"(got "00:00:00:00:00:00")"},
        RefusedFile{"RoutingWithoutRouterMac",
                    R"({"vlans": {"10": {}}, "interfaces": {"Vlan10": {}}})",
                    "/: expected a member routerMac, because Vlan10 routes, got none"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Names, SwitchFileRefuses,
    testing::Values(
        RefusedFile{"VrfsThatAreNoList", R"({"vrfs": {}, "interfaces": {}})",
                    "/vrfs: expected a list, got an object"},
        RefusedFile{"VrfThatIsNoText", R"({"vrfs": ["a", 1], "interfaces": {}})",
                    "/vrfs/1: expected the name of a VRF, got 1"},
        RefusedFile{"VrfWithoutName", R"({"vrfs": [""], "interfaces": {}})",
                    R"(/vrfs/0: expected a name, and at most 65535 of them, got "")"},
        RefusedFile{"VrfTwice", R"({"vrfs": ["a", "b", "a"], "interfaces": {}})",
                    R"(/vrfs/2: expected each VRF once, got "a")"},
        RefusedFile{"DefaultAsAVrfOfTheList", R"({"vrfs": ["default"], "interfaces": {}})",
                    "/vrfs/0: expected a VRF besides default, which is always there, "
                    R"(got "default")"},
        RefusedFile{"VlansThatAreNoObject", R"({"vlans": [10], "interfaces": {}})",
                    "/vlans: expected an object, got a list"},
        RefusedFile{"VlanOutOfRange", R"({"vlans": {"4095": {}}, "interfaces": {}})",
                    "/vlans/4095: expected a VLAN from 1 to 4094, "
                    R"(or a range such as 100-199, got "4095")"},
        RefusedFile{"VlanThatIsNoNumber", R"({"vlans": {"red": {}}, "interfaces": {}})",
                    "/vlans/red: expected a VLAN from 1 to 4094, "
                    R"(or a range such as 100-199, got "red")"},
        RefusedFile{"VlanRangeThatDescends", R"({"vlans": {"20-10": {}}, "interfaces": {}})",
                    "/vlans/20-10: expected a VLAN from 1 to 4094, "
                    R"(or a range such as 100-199, got "20-10")"},
        RefusedFile{"VlanInTwoRanges", R"({"vlans": {"10-20": {}, "15": {}}, "interfaces": {}})",
                    "/vlans/15: expected each VLAN once, got 15 again"},
        RefusedFile{"VlanThatIsNoObject", R"({"vlans": {"10": "web"}, "interfaces": {}})",
                    R"(/vlans/10: expected an object, got "web")"},
        RefusedFile{"UnknownMemberOfAVlan",
                    R"({"vlans": {"10": {"nmae": "web"}}, "interfaces": {}})",
                    R"(/vlans/10/nmae: expected one of the members name, acl, got "nmae")"},
        RefusedFile{"VlanNameThatIsNoText", R"({"vlans": {"10": {"name": 1}}, "interfaces": {}})",
                    "/vlans/10/name: expected the VLAN's name, got 1"},
        RefusedFile{"VlanWithUnknownAccessList",
                    R"({"vlans": {"10": {"acl": "egde"}}, "interfaces": {}})",
                    R"(/vlans/10/acl: expected an access list of the member acls, got "egde")"}),
    nameOf);

}  // namespace
}  // namespace SwitchFile
