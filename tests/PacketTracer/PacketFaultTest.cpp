#include "PacketTracer/PacketFault.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

#include "PacketTracer/ConstructPacket.h"
#include "PacketTracer/SomeFields.h"

namespace {

using namespace SomeFields;

using Change = std::function<void(PacketFields&)>;

PacketFields changed(PacketFields fields, Change const& change) {
    change(fields);
    return fields;
}

// Fields that lack or contradict one thing, and what is said of it.
struct Refused {
    char const* name;
    PacketFields fields;
    char const* fault;
    std::uint16_t etherType = 0;
};

std::ostream& operator<<(std::ostream& out, Refused const& refused) {
    return out << refused.name;
}

struct RefusedFields : testing::TestWithParam<Refused> {};

TEST_P(RefusedFields, HaveTheirFaultNamedAndGiveNoBytes) {
    auto const& [name, fields, fault, etherType] = GetParam();
    EXPECT_EQ(packetFault(fields, etherType), fault);
    EXPECT_TRUE(constructFrame(fields, etherType, noLimit).empty());
}

auto const nameOf = [](auto const& test) { return std::string(test.param.name); };

INSTANTIATE_TEST_SUITE_P(
    Ethernet, RefusedFields,
    testing::Values(
        Refused{"NoDestination", changed(udp(ipv4()), [](auto& f) { f.ethDst.reset(); }),
                "no destination MAC address"},
        Refused{"NoSource", changed(udp(ipv4()), [](auto& f) { f.ethSrc.reset(); }),
                "no source MAC address"},
        Refused{"MulticastSource",
                changed(udp(ipv4()), [](auto& f) { f.ethSrc = mac("01:00:5e:00:00:01"); }),
                "a source MAC address that is a group"},
        Refused{"BroadcastSource",
                changed(udp(ipv4()), [](auto& f) { f.ethSrc = MacAddress::broadcast(); }),
                "a source MAC address that is a group"},
        Refused{"NothingAtAll", PacketFields(), "no destination MAC address"},
        Refused{"NothingBehindTheAddresses", ethernet(),
                "neither IP addresses nor ARP nor an EtherType"}),
    nameOf);

PacketFields tagged(std::vector<VlanTag> tags) {
    PacketFields fields = udp(ipv4());
    fields.tags = std::move(tags);
    return fields;
}

INSTANTIATE_TEST_SUITE_P(
    Tags, RefusedFields,
    testing::Values(
        Refused{"Three", tagged({{.vlan = 1}, {.vlan = 2}, {.vlan = 3}}), "more than two tags"},
        Refused{"OuterOfAnotherType", tagged({{.tpid = 0x9100, .vlan = 1}}),
                "an outer tag other than 0x8100 or 0x88a8"},
        Refused{"InnerServiceTag", tagged({{.vlan = 1}, {.tpid = 0x88a8, .vlan = 2}}),
                "an inner tag other than 0x8100"},
        Refused{"TwoServiceTags", tagged({{.tpid = 0x88a8}, {.tpid = 0x88a8}}),
                "an inner tag other than 0x8100"},
        Refused{"Vlan4095", tagged({{.vlan = 4095}}), "a VLAN beyond 4094"},
        Refused{"InnerVlanOf16Bits", tagged({{.vlan = 1}, {.vlan = 0xffff}}), "a VLAN beyond 4094"},
        Refused{"Priority8", tagged({{.vlan = 1, .priority = 8}}), "a tag's priority beyond 7"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    EtherType, RefusedFields,
    testing::Values(Refused{"Ipv4ForIpv6Addresses", udp(ipv6()),
                            "an EtherType that contradicts the addresses", 0x800},
                    Refused{"Ipv6ForIpv4Addresses", udp(ipv4()),
                            "an EtherType that contradicts the addresses", 0x86dd},
                    Refused{"AnotherForArp", arpRequest(),
                            "an EtherType that contradicts the addresses", 0x800},
                    Refused{"ArpForIpv4Addresses", udp(ipv4()),
                            "an EtherType that contradicts the addresses", 0x806},
                    Refused{"MplsForIpv4Addresses", udp(ipv4()),
                            "an EtherType that contradicts the addresses", 0x8847},
                    Refused{"ATagForIpv4Addresses", tagged({{.vlan = 1}}),
                            "an EtherType that contradicts the addresses", 0x8100},
                    Refused{"Ipv4WithoutAddresses", ethernet(),
                            "an EtherType of IP without IP addresses", 0x800},
                    Refused{"Ipv6WithoutAddresses", ethernet(),
                            "an EtherType of IP without IP addresses", 0x86dd},
                    Refused{"ArpWithoutArp", ethernet(), "the EtherType of ARP without ARP", 0x806},
                    Refused{"ATag", ethernet(), "an EtherType that is a tag", 0x8100},
                    Refused{"AServiceTag", ethernet(), "an EtherType that is a tag", 0x88a8},
                    Refused{"Mpls", ethernet(), "MPLS, which only a whole frame can carry", 0x8847},
                    Refused{"MplsMulticast", ethernet(), "MPLS, which only a whole frame can carry",
                            0x8848},
                    Refused{"ALength", ethernet(), "an EtherType that is a length", 0x5ff}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Arp, RefusedFields,
    testing::Values(
        Refused{"WithoutOperation",
                changed(arpRequest(), [](auto& f) { f.arp->operation.reset(); }),
                "ARP that is neither request nor reply"},
        Refused{
            "OfAnotherOperation",
            changed(arpRequest(), [](auto& f) { f.arp->operation = static_cast<ArpOperation>(3); }),
            "ARP that is neither request nor reply"},
        Refused{"WithoutSenderIp", changed(arpRequest(), [](auto& f) { f.arp->senderIp.reset(); }),
                "ARP without both IP addresses"},
        Refused{"WithoutTargetIp", changed(arpRequest(), [](auto& f) { f.arp->targetIp.reset(); }),
                "ARP without both IP addresses"},
        Refused{"WithAnIpv6Sender",
                changed(arpRequest(), [](auto& f) { f.arp->senderIp = ip("2001:db8::1"); }),
                "ARP with an IPv6 address"},
        Refused{"WithAnIpv6Target",
                changed(arpRequest(), [](auto& f) { f.arp->targetIp = ip("2001:db8::1"); }),
                "ARP with an IPv6 address"},
        Refused{"FromAMulticastAddress",
                changed(arpRequest(), [](auto& f) { f.arp->senderIp = ip("224.0.0.1"); }),
                "an ARP sender that is a group"},
        Refused{"FromAGroupMac",
                changed(arpRequest(), [](auto& f) { f.arp->senderMac = MacAddress::broadcast(); }),
                "an ARP sender that is a group"},
        Refused{"WithAPayload", changed(arpRequest(), [](auto& f) { f.payload = bytesOf("x"); }),
                "ARP with a payload"},
        Refused{"BesideAnIpDestination",
                changed(arpRequest(), [](auto& f) { f.ipDst = ip("10.0.0.1"); }),
                "ARP beside IP addresses"},
        Refused{"BesideAnIpSource",
                changed(arpRequest(), [](auto& f) { f.ipSrc = ip("10.0.0.1"); }),
                "ARP beside IP addresses"},
        Refused{"WithATtl", changed(arpRequest(), [](auto& f) { f.ttl = 1; }),
                "TTL, DSCP or don't-fragment without IP addresses"},
        Refused{"WithAPort", changed(arpRequest(), [](auto& f) { f.dstPort = 1; }),
                "a port without IP addresses"}),
    nameOf);

PacketFields otherType(Change const& change) {
    return changed(ethernet(), change);
}

INSTANTIATE_TEST_SUITE_P(
    WithoutIpAddresses, RefusedFields,
    testing::Values(Refused{"Ttl", otherType([](auto& f) { f.ttl = 64; }),
                            "TTL, DSCP or don't-fragment without IP addresses", 0x88b5},
                    Refused{"Dscp", otherType([](auto& f) { f.dscp = 0; }),
                            "TTL, DSCP or don't-fragment without IP addresses", 0x88b5},
                    Refused{"DontFragment", otherType([](auto& f) { f.dontFragment = true; }),
                            "TTL, DSCP or don't-fragment without IP addresses", 0x88b5},
                    Refused{"Protocol", otherType([](auto& f) { f.protocol = IpProtocol::udp; }),
                            "an IP protocol without IP addresses", 0x88b5},
                    Refused{"SourcePort", otherType([](auto& f) { f.srcPort = 0; }),
                            "a port without IP addresses", 0x88b5},
                    Refused{"DestinationPort", otherType([](auto& f) { f.dstPort = 0; }),
                            "a port without IP addresses", 0x88b5},
                    Refused{"TcpFlags", otherType([](auto& f) { f.tcpFlags = 0; }),
                            "an IP protocol without IP addresses", 0x88b5},
                    Refused{"IcmpType", otherType([](auto& f) { f.icmpType = 0; }),
                            "an IP protocol without IP addresses", 0x88b5},
                    Refused{"IcmpCode", otherType([](auto& f) { f.icmpCode = 0; }),
                            "an IP protocol without IP addresses", 0x88b5}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Ip, RefusedFields,
    testing::Values(
        Refused{"WithoutDestination", changed(udp(ipv4()), [](auto& f) { f.ipDst.reset(); }),
                "no destination IP address"},
        Refused{"WithoutSource", changed(udp(ipv4()), [](auto& f) { f.ipSrc.reset(); }),
                "no source IP address"},
        Refused{"Ipv6DestinationWithIpv4Source",
                changed(udp(ipv4()), [](auto& f) { f.ipDst = ip("2001:db8::1"); }),
                "IP addresses of two versions"},
        Refused{"Ipv4DestinationWithIpv6Source",
                changed(udp(ipv6()), [](auto& f) { f.ipDst = ip("10.0.0.1"); }),
                "IP addresses of two versions"},
        Refused{"FromAMulticastAddress",
                changed(udp(ipv4()), [](auto& f) { f.ipSrc = ip("224.0.0.1"); }),
                "a source IP address that is a group"},
        Refused{"FromTheBroadcastAddress",
                changed(udp(ipv4()), [](auto& f) { f.ipSrc = ip("255.255.255.255"); }),
                "a source IP address that is a group"},
        Refused{"FromAnIpv6MulticastAddress",
                changed(udp(ipv6()), [](auto& f) { f.ipSrc = ip("ff02::1"); }),
                "a source IP address that is a group"},
        Refused{"ToTheUnspecifiedAddress",
                changed(udp(ipv4()), [](auto& f) { f.ipDst = ip("0.0.0.0"); }),
                "a destination IP address that is unspecified"},
        Refused{"ToTheUnspecifiedIpv6Address",
                changed(udp(ipv6()), [](auto& f) { f.ipDst = ip("::"); }),
                "a destination IP address that is unspecified"},
        Refused{"Dscp64", changed(udp(ipv4()), [](auto& f) { f.dscp = 64; }), "a DSCP beyond 63"},
        Refused{"DontFragmentInIpv6", changed(udp(ipv6()), [](auto& f) { f.dontFragment = true; }),
                "don't-fragment with IPv6"},
        Refused{"WithoutProtocol", ipv4(), "no IP protocol"},
        Refused{"WithAnotherProtocol",
                changed(ipv4(), [](auto& f) { f.protocol = static_cast<IpProtocol>(47); }),
                "an IP protocol other than TCP, UDP, ICMP and ICMPv6"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Transport, RefusedFields,
    testing::Values(
        Refused{"PortWithoutProtocol", changed(ipv4(), [](auto& f) { f.dstPort = 53; }),
                "a port without TCP or UDP"},
        Refused{"DestinationPortWithIcmp", changed(echo(ipv4()), [](auto& f) { f.dstPort = 53; }),
                "a port without TCP or UDP"},
        Refused{"SourcePortWithIcmpv6", changed(echo(ipv6()), [](auto& f) { f.srcPort = 53; }),
                "a port without TCP or UDP"},
        Refused{"UdpWithoutSourcePort", changed(udp(ipv4()), [](auto& f) { f.srcPort.reset(); }),
                "TCP or UDP without both ports"},
        Refused{"TcpWithoutDestinationPort",
                changed(tcp(ipv6()), [](auto& f) { f.dstPort.reset(); }),
                "TCP or UDP without both ports"},
        Refused{"TcpFlagsWithUdp", changed(udp(ipv4()), [](auto& f) { f.tcpFlags = 0; }),
                "TCP flags without TCP"},
        Refused{"TcpFlagsWithIcmp", changed(echo(ipv6()), [](auto& f) { f.tcpFlags = 2; }),
                "TCP flags without TCP"},
        Refused{"IcmpTypeWithTcp", changed(tcp(ipv4()), [](auto& f) { f.icmpType = 8; }),
                "an ICMP type or code without ICMP"},
        Refused{"IcmpCodeWithUdp", changed(udp(ipv6()), [](auto& f) { f.icmpCode = 0; }),
                "an ICMP type or code without ICMP"},
        Refused{"IcmpTypeWithoutProtocol", changed(ipv4(), [](auto& f) { f.icmpType = 8; }),
                "an ICMP type or code without ICMP"},
        Refused{"IcmpWithIpv6",
                changed(echo(ipv6()), [](auto& f) { f.protocol = IpProtocol::icmp; }),
                "ICMP with IPv6"},
        Refused{"Icmpv6WithIpv4",
                changed(echo(ipv4()), [](auto& f) { f.protocol = IpProtocol::icmpv6; }),
                "ICMPv6 with IPv4"},
        Refused{"IcmpWithoutType", changed(echo(ipv4()), [](auto& f) { f.icmpType.reset(); }),
                "ICMP without a type"},
        Refused{"IcmpWithACodeAlone",
                changed(echo(ipv4()),
                        [](auto& f) {
                            f.icmpType.reset();
                            f.icmpCode = 0;
                        }),
                "ICMP without a type"},
        Refused{
            "UnreachableThatQuotesTooLittle",
            changed(icmp(ipv4(), 3), [](auto& f) { f.payload = std::vector<std::uint8_t>(27); }),
            "a payload shorter than its ICMP type demands"}),
    nameOf);

PacketFields ofLength(PacketFields fields, std::uint32_t length) {
    fields.length = length;
    return fields;
}
PacketFields withPayload(PacketFields fields, std::size_t size) {
    fields.payload = std::vector<std::uint8_t>(size);
    return fields;
}

INSTANTIATE_TEST_SUITE_P(
    Length, RefusedFields,
    testing::Values(
        Refused{"Zero", ofLength(ethernet(), 0), "a length shorter than the headers", 0x88b5},
        Refused{"ShorterThanUdp", ofLength(udp(ipv4()), 41), "a length shorter than the headers"},
        Refused{"ShorterThanTcp", ofLength(tcp(ipv4()), 53), "a length shorter than the headers"},
        Refused{"ShorterThanIcmp", ofLength(echo(ipv4()), 41), "a length shorter than the headers"},
        Refused{"ShorterThanIcmpv6", ofLength(echo(ipv6()), 61),
                "a length shorter than the headers"},
        Refused{"ShorterThanTcpInIpv6", ofLength(tcp(ipv6()), 73),
                "a length shorter than the headers"},
        Refused{"ShorterThanArp", ofLength(arpRequest(), 41), "a length shorter than the headers"},
        Refused{"ShorterThanTheTags", ofLength(tagged({{.vlan = 1}, {.vlan = 2}}), 49),
                "a length shorter than the headers"},
        Refused{"ShorterThanTheQuotedDatagram", ofLength(icmp(ipv4(), 3), 69),
                "a length shorter than the headers"},
        Refused{"ShorterThanTheEthernetHeader", ofLength(ethernet(), 13),
                "a length shorter than the headers", 0x88b5},
        Refused{"BeyondThePayload", ofLength(withPayload(udp(ipv4()), 100), 143),
                "a payload and a length that disagree"},
        Refused{"WithinThePayload", ofLength(withPayload(udp(ipv4()), 100), 141),
                "a payload and a length that disagree"},
        Refused{"BelowSixtyBeyondThePayload", ofLength(withPayload(udp(ipv4()), 5), 59),
                "a payload and a length that disagree"},
        Refused{"BeyondAPaddedFrame", ofLength(withPayload(udp(ipv4()), 5), 61),
                "a payload and a length that disagree"},
        Refused{"SixtyWithinThePayload", ofLength(withPayload(udp(ipv4()), 19), 60),
                "a payload and a length that disagree"},
        Refused{"BeyondAnIpv4Packet", ofLength(udp(ipv4()), 14 + 65536),
                "longer than an IP packet can be"},
        Refused{"BeyondAnIpv6Packet", ofLength(udp(ipv6()), 14 + 40 + 65536),
                "longer than an IP packet can be"},
        Refused{"PayloadBeyondAnIpv4Packet", withPayload(udp(ipv4()), 65536 - 28),
                "longer than an IP packet can be"},
        Refused{"OfFourGigabytes", ofLength(udp(ipv4()), 0xffffffff),
                "longer than an IP packet can be"}),
    nameOf);

// The limits from within.
struct Accepted {
    char const* name;
    PacketFields fields;
    std::uint16_t etherType = 0;
};

std::ostream& operator<<(std::ostream& out, Accepted const& accepted) {
    return out << accepted.name;
}

struct AcceptedFields : testing::TestWithParam<Accepted> {};

TEST_P(AcceptedFields, HaveNoFaultAndGiveBytes) {
    auto const& [name, fields, etherType] = GetParam();
    EXPECT_EQ(packetFault(fields, etherType), "");
    EXPECT_FALSE(constructFrame(fields, etherType, noLimit).empty());
}

INSTANTIATE_TEST_SUITE_P(
    Limits, AcceptedFields,
    testing::Values(
        Accepted{"PriorityTag", tagged({{.vlan = 0, .priority = 7, .dropEligible = true}})},
        Accepted{"Vlan4094", tagged({{.vlan = 4094}})},
        Accepted{"ServiceTagAlone", tagged({{.tpid = 0x88a8, .vlan = 1}})},
        Accepted{"TwoCustomerTags", tagged({{.vlan = 1}, {.vlan = 1}})},
        Accepted{"FirstEtherType", ethernet(), 0x600},
        Accepted{"LastEtherType", ethernet(), 0xffff},
        Accepted{"EtherTypeBesideMpls", ethernet(), 0x8846},
        Accepted{"EtherTypeBehindMpls", ethernet(), 0x8849},
        Accepted{"Ttl0", changed(udp(ipv4()), [](auto& f) { f.ttl = 0; })},
        Accepted{"Dscp63", changed(udp(ipv6()), [](auto& f) { f.dscp = 63; })},
        Accepted{"FromTheUnspecifiedAddress",
                 changed(udp(ipv4()), [](auto& f) { f.ipSrc = ip("0.0.0.0"); })},
        Accepted{"ToTheBroadcastAddress",
                 changed(udp(ipv4()), [](auto& f) { f.ipDst = ip("255.255.255.255"); })},
        Accepted{"ToAMulticastAddress",
                 changed(udp(ipv6()), [](auto& f) { f.ipDst = ip("ff02::1"); })},
        Accepted{"ArpProbe",
                 changed(arpRequest(), [](auto& f) { f.arp->senderIp = ip("0.0.0.0"); })},
        Accepted{"NoTcpFlags", changed(tcp(ipv4()), [](auto& f) { f.tcpFlags = 0; })},
        Accepted{"LengthOfTheHeaders", ofLength(udp(ipv4()), 42)},
        Accepted{"LengthOfArp", ofLength(arpRequest(), 42)},
        Accepted{"LengthOfThePayload", ofLength(withPayload(udp(ipv4()), 5), 47)},
        Accepted{"SixtyWithAPaddedPayload", ofLength(withPayload(udp(ipv4()), 5), 60)},
        Accepted{"QuotedDatagramOfTheLeastSize", withPayload(icmp(ipv4(), 3), 28)}),
    nameOf);

}  // namespace
