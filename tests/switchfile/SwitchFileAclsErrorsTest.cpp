#include "SwitchFileRefuses.h"

namespace SwitchFile {
namespace {

INSTANTIATE_TEST_SUITE_P(
    AccessLists, SwitchFileRefuses,
    testing::Values(
        RefusedFile{"AccessListsThatAreNoObject", R"({"acls": [], "interfaces": {}})",
                    "/acls: expected an object, got a list"},
        RefusedFile{"AccessListWithoutName", R"({"acls": {"": []}, "interfaces": {}})",
                    "/acls/: expected a name for the access list, "
                    R"(and at most 65536 of them, got "")"},
        RefusedFile{"AccessListThatIsNoList", R"({"acls": {"edge": {}}, "interfaces": {}})",
                    "/acls/edge: expected a list, got an object"},
        RefusedFile{"RuleThatIsNoObject", R"({"acls": {"edge": ["drop"]}, "interfaces": {}})",
                    R"(/acls/edge/0: expected an object, got "drop")"},
        RefusedFile{"UnknownMemberOfARule",
                    R"({"acls": {"edge": [{"action": "drop", "dport": 23}]}, "interfaces": {}})",
                    "/acls/edge/0/dport: expected one of the members sequence, action, "
                    "copyToCpu, remark, sourceMac, destinationMac, etherType, vlanPriority, "
                    "source, destination, protocol, dscp, ttl, fragment, sourcePort, "
                    R"(destinationPort, tcpFlags, icmpType, icmpCode, got "dport")"},
        RefusedFile{"RuleWithoutAction",
                    R"({"acls": {"edge": [{"protocol": "tcp"}]}, "interfaces": {}})",
                    "/acls/edge/0: expected a member action, got none"},
        RefusedFile{"UnknownAction",
                    R"({"acls": {"edge": [{"action": "deny"}]}, "interfaces": {}})",
                    R"(/acls/edge/0/action: expected permit, drop or copy, got "deny")"},
        RefusedFile{"ActionOfAnotherType",
                    R"({"acls": {"edge": [{"action": true}]}, "interfaces": {}})",
                    "/acls/edge/0/action: expected permit, drop or copy, got true"},
        RefusedFile{"SequenceOutOfRange",
                    R"({"acls": {"edge": [{"sequence": 0, "action": "drop"}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/sequence: expected a sequence number from 1 to "
                    "4294967295, got 0"},
        RefusedFile{"SequenceTwice",
                    R"({"acls": {"edge": [{"sequence": 5, "action": "drop"}, {"sequence": 5, )"
                    R"("action": "permit"}]}, "interfaces": {}})",
                    "/acls/edge/1/sequence: expected a sequence number that no other rule "
                    "of the list has, got 5 again"},
        RefusedFile{"DefaultSequenceThatIsTaken",
                    R"({"acls": {"edge": [{"sequence": 20, "action": "drop"}, )"
                    R"({"sequence": 10, "action": "permit"}, {"action": "permit"}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/2: expected a sequence number that no other rule of the "
                    "list has, got 20 again"},
        RefusedFile{"RemarkThatIsNoText",
                    R"({"acls": {"edge": [{"action": "drop", "remark": 1}]}, "interfaces": {}})",
                    "/acls/edge/0/remark: expected a text, got 1"},
        RefusedFile{"CopyToCpuThatIsNoTruthValue",
                    R"({"acls": {"edge": [{"action": "drop", "copyToCpu": 1}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/copyToCpu: expected true or false, got 1"},
        RefusedFile{"MacMatchThatIsNone",
                    R"({"acls": {"edge": [{"action": "drop", "sourceMac": "02:00/ff:ff"}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/sourceMac: expected a MAC address such as "
                    R"(02:1c:73:aa:00:01, got "02:00/ff:ff")"},
        RefusedFile{"MacMatchOfAnotherType",
                    R"({"acls": {"edge": [{"action": "drop", "destinationMac": 1}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/destinationMac: expected a MAC address, or address/mask, "
                    "got 1"},
        RefusedFile{"EtherTypeBelowTheLeast",
                    R"({"acls": {"edge": [{"action": "drop", "etherType": 1535}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/etherType: expected an EtherType from 1536 to 65535, "
                    "got 1535"},
        RefusedFile{"EtherTypeThatIsNone",
                    R"({"acls": {"edge": [{"action": "drop", "etherType": "0x88zz"}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/etherType: expected an EtherType: ipv4, ipv6, arp, "
                    R"(a number or a text such as 0x88cc, got "0x88zz")"},
        RefusedFile{"EtherTypeOfAnotherType",
                    R"({"acls": {"edge": [{"action": "drop", "etherType": null}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/etherType: expected an EtherType: ipv4, ipv6, arp, "
                    "a number or a text such as 0x88cc, got null"},
        RefusedFile{"VlanPriorityOutOfRange",
                    R"({"acls": {"edge": [{"action": "drop", "vlanPriority": 8}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/vlanPriority: expected a VLAN priority from 0 to 7, got 8"},
        RefusedFile{"PrefixWithHostBits",
                    R"({"acls": {"edge": [{"action": "drop", "source": "10.0.0.1/8"}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/source: expected an address, "
                    R"(or a prefix without host bits such as 10.1.0.0/16, got "10.0.0.1/8")"},
        RefusedFile{"PrefixOfAnotherType",
                    R"({"acls": {"edge": [{"action": "drop", "destination": 10}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/destination: expected an IP prefix, got 10"},
        RefusedFile{"ProtocolOutOfRange",
                    R"({"acls": {"edge": [{"action": "drop", "protocol": 256}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/protocol: expected an IP protocol from 0 to 255, got 256"},
        RefusedFile{"UnknownProtocol",
                    R"({"acls": {"edge": [{"action": "drop", "protocol": "ip"}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/protocol: expected an IP protocol: icmp, igmp, tcp, udp, "
                    R"(gre, icmpv6, ospf, pim, vrrp or a number, got "ip")"},
        RefusedFile{"DscpOutOfRange",
                    R"({"acls": {"edge": [{"action": "drop", "dscp": 64}]}, "interfaces": {}})",
                    "/acls/edge/0/dscp: expected a DSCP from 0 to 63, got 64"},
        RefusedFile{"TtlOutOfRange",
                    R"({"acls": {"edge": [{"action": "drop", "ttl": "0-256"}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/ttl: expected a TTL from 0 to 255, "
                    R"(or a range such as "8000-8099", got "0-256")"},
        RefusedFile{"FragmentThatIsNoTruthValue",
                    R"({"acls": {"edge": [{"action": "drop", "fragment": "yes"}]}, )"
                    R"("interfaces": {}})",
                    R"(/acls/edge/0/fragment: expected true or false, got "yes")"},
        RefusedFile{"PortOutOfRange",
                    R"({"acls": {"edge": [{"action": "drop", "sourcePort": 65536}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/sourcePort: expected a port from 0 to 65535, got 65536"},
        RefusedFile{"PortRangeThatDescends",
                    R"({"acls": {"edge": [{"action": "drop", "destinationPort": "80-70"}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/destinationPort: expected a port from 0 to 65535, "
                    R"(or a range such as "8000-8099", got "80-70")"},
        RefusedFile{"PortOfAnotherType",
                    R"({"acls": {"edge": [{"action": "drop", "destinationPort": []}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/destinationPort: expected a port from 0 to 65535, "
                    R"(or a range such as "8000-8099", got a list)"},
        RefusedFile{"UnknownTcpFlag",
                    R"({"acls": {"edge": [{"action": "drop", "tcpFlags": "syn,nak"}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/tcpFlags: expected fin, syn, rst, psh, ack, urg, "
                    "ece and cwr, each at most once, with ! for a flag that is not set, "
                    R"(as in "syn,!ack", got "syn,nak")"},
        RefusedFile{"TcpFlagTwice",
                    R"({"acls": {"edge": [{"action": "drop", "tcpFlags": "syn,!syn"}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/tcpFlags: expected fin, syn, rst, psh, ack, urg, "
                    "ece and cwr, each at most once, with ! for a flag that is not set, "
                    R"(as in "syn,!ack", got "syn,!syn")"},
        RefusedFile{"IcmpTypeOutOfRange",
                    R"({"acls": {"edge": [{"action": "drop", "icmpType": 256}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/icmpType: expected an ICMP type from 0 to 255, got 256"},
        RefusedFile{"IcmpCodeOutOfRange",
                    R"({"acls": {"edge": [{"action": "drop", "icmpCode": -1}]}, )"
                    R"("interfaces": {}})",
                    "/acls/edge/0/icmpCode: expected an ICMP code from 0 to 255, got -1"},
        RefusedFile{"AddressesOfTwoFamilies",
                    R"({"acls": {"edge": [{"action": "drop", "source": "10.0.0.0/8", )"
                    R"("destination": "2001:db8::/32"}]}, "interfaces": {}})",
                    "/acls/edge/0/destination: expected an address of the same family as "
                    R"(source, got "2001:db8::/32")"},
        RefusedFile{"FieldsOfIpOfAnotherEtherType",
                    R"({"acls": {"edge": [{"action": "drop", "etherType": "arp", )"
                    R"("protocol": "udp"}]}, "interfaces": {}})",
                    "/acls/edge/0/etherType: expected ipv4 or ipv6 beside fields of IP, "
                    R"(got "arp")"},
        RefusedFile{
            "AddressesOfAnotherEtherType",
            R"({"acls": {"edge": [{"action": "drop", "etherType": "0x88cc", "source": "10.0.0.0/8"}]}, )"
            R"("interfaces": {}})",
            "/acls/edge/0/etherType: expected ipv4 or ipv6 beside fields of IP, "
            R"(got "0x88cc")"},
        RefusedFile{"PortsOfAProtocolWithoutPorts",
                    R"({"acls": {"edge": [{"action": "drop", "protocol": "icmp", )"
                    R"("destinationPort": 23}]}, "interfaces": {}})",
                    "/acls/edge/0/protocol: expected tcp or udp beside destinationPort, "
                    R"(got "icmp")"},
        RefusedFile{"TcpFlagsOfAnotherProtocol",
                    R"({"acls": {"edge": [{"action": "drop", "protocol": "udp", )"
                    R"("tcpFlags": "syn"}]}, "interfaces": {}})",
                    R"(/acls/edge/0/protocol: expected tcp beside tcpFlags, got "udp")"},
        RefusedFile{"IcmpTypeOfAnotherProtocol",
                    R"({"acls": {"edge": [{"action": "drop", "protocol": "tcp", )"
                    R"("icmpType": 8}]}, "interfaces": {}})",
                    "/acls/edge/0/protocol: expected icmp or icmpv6 beside icmpType, "
                    R"(got "tcp")"},
        RefusedFile{"ProtocolCopiesThatAreNoList", R"({"protocolCopies": "arp", "interfaces": {}})",
                    R"(/protocolCopies: expected a list, got "arp")"},
        RefusedFile{"UnknownProtocolToCopy",
                    R"({"protocolCopies": ["arp", "lldp2"], "interfaces": {}})",
                    "/protocolCopies/1: expected arp, nd, dhcp, dhcpv6, igmp, ospf, pim, "
                    R"(vrrp, bfd or an object of fields, got "lldp2")"},
        RefusedFile{"ProtocolToCopyTwice",
                    R"({"protocolCopies": ["arp", "arp"], "interfaces": {}})",
                    R"(/protocolCopies/1: expected each protocol once, got "arp" again)"},
        RefusedFile{"ProtocolToCopyOfAnotherType", R"({"protocolCopies": [1], "interfaces": {}})",
                    "/protocolCopies/0: expected arp, nd, dhcp, dhcpv6, igmp, ospf, pim, "
                    "vrrp, bfd or an object of fields, got 1"},
        RefusedFile{"UnknownFieldOfAProtocolToCopy",
                    R"({"protocolCopies": [{"etherType": 35063, "action": "copy"}], )"
                    R"("interfaces": {}})",
                    "/protocolCopies/0/action: expected one of the members trap, sourceMac, "
                    "destinationMac, etherType, vlanPriority, source, destination, "
                    "protocol, dscp, ttl, fragment, sourcePort, destinationPort, tcpFlags, "
                    R"(icmpType, icmpCode, got "action")"},
        RefusedFile{"ProtocolToCopyWithoutAField",
                    R"({"protocolCopies": [{"trap": true}], "interfaces": {}})",
                    "/protocolCopies/0: expected at least one field of a frame, got none"},
        RefusedFile{"TrapThatIsNoTruthValue",
                    R"({"protocolCopies": [{"etherType": "ipv4", "trap": 1}], )"
                    R"("interfaces": {}})",
                    "/protocolCopies/0/trap: expected true or false, got 1"},
        RefusedFile{"ProtocolToCopyThatCannotBe",
                    R"({"protocolCopies": [{"protocol": "udp", "tcpFlags": "syn"}], )"
                    R"("interfaces": {}})",
                    R"(/protocolCopies/0/protocol: expected tcp beside tcpFlags, got "udp")"}),
    nameOf);

}  // namespace
}  // namespace SwitchFile
