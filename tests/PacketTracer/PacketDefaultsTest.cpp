#include "PacketTracer/PacketDefaults.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "PacketTracer/ConstructPacket.h"
#include "PacketTracer/PacketFault.h"
#include "PacketTracer/SomeFields.h"

namespace {

using namespace SomeFields;

using Filled = std::map<std::string, std::string>;

Filled filled(PacketFields& fields, std::uint16_t etherType = 0, PacketHints const& hints = {}) {
    Filled found;
    for (auto const& [name, value] : fillDefaults(fields, etherType, hints)) {
        EXPECT_TRUE(found.emplace(name, value).second) << name;
    }
    return found;
}

PacketHints allHints() {
    PacketHints hints;
    hints.routerMac = mac("00:1c:73:00:00:01");
    hints.hostMac = mac("00:1c:73:00:00:99");
    hints.hostIpv4 = ip("10.1.0.50");
    hints.hostIpv6 = ip("2001:db8:10::50");
    hints.routerIpv4 = ip("10.1.0.1");
    return hints;
}

TEST(PacketDefaults, MakeAnAddressAloneAUdpPacketToBeRouted) {
    PacketFields fields;
    fields.ipDst = ip("10.0.0.1");
    EXPECT_EQ(filled(fields), (Filled{{"eth-dst", "02:00:00:00:00:02"},
                                      {"eth-src", "02:00:00:00:00:01"},
                                      {"ip-src", "192.0.2.1"},
                                      {"proto", "udp"},
                                      {"sport", "49152"},
                                      {"dport", "49153"},
                                      {"ttl", "64"}}));
    EXPECT_EQ(packetFault(fields, 0), "");
}

TEST(PacketDefaults, MakeAnIpv6AddressAloneAUdpPacketToBeRouted) {
    PacketFields fields;
    fields.ipDst = ip("2001:db8:7::1");
    EXPECT_EQ(filled(fields), (Filled{{"eth-dst", "02:00:00:00:00:02"},
                                      {"eth-src", "02:00:00:00:00:01"},
                                      {"ip-src", "2001:db8::1"},
                                      {"proto", "udp"},
                                      {"sport", "49152"},
                                      {"dport", "49153"},
                                      {"ttl", "64"}}));
    EXPECT_EQ(packetFault(fields, 0), "");
}

TEST(PacketDefaults, MakeAPacketOfNothing) {
    PacketFields fields;
    filled(fields);
    EXPECT_EQ(packetFault(fields, 0), "");
    EXPECT_EQ(fields.ipDst, ip("198.51.100.1"));
}

TEST(PacketDefaults, TakeTheHints) {
    PacketFields fields;
    fields.ipDst = ip("10.0.0.1");
    auto const found = filled(fields, 0, allHints());
    EXPECT_EQ(found.at("eth-dst"), "00:1c:73:00:00:01");
    EXPECT_EQ(found.at("eth-src"), "00:1c:73:00:00:99");
    EXPECT_EQ(found.at("ip-src"), "10.1.0.50");
}

TEST(PacketDefaults, TakeTheHintOfTheDestinationsVersion) {
    PacketFields fields;
    fields.ipDst = ip("2001:db8:7::1");
    EXPECT_EQ(filled(fields, 0, allHints()).at("ip-src"), "2001:db8:10::50");
}

TEST(PacketDefaults, SendNoPacketToItsOwnSource) {
    PacketFields fields;
    fields.ipDst = ip("192.0.2.1");
    EXPECT_EQ(filled(fields).at("ip-src"), "192.0.2.2");
    fields = PacketFields();
    fields.ipDst = ip("10.1.0.50");
    EXPECT_EQ(filled(fields, 0, allHints()).at("ip-src"), "192.0.2.1");
    fields = PacketFields();
    fields.ipSrc = ip("198.51.100.1");
    EXPECT_EQ(filled(fields).at("ip-dst"), "192.0.2.1");
}

TEST(PacketDefaults, LeaveWhatIsGiven) {
    PacketFields fields = tcp(ipv4());
    fields.ttl = 1;
    fields.tcpFlags = TcpFlag::rst;
    PacketFields const given = fields;
    EXPECT_EQ(filled(fields, 0, allHints()), Filled());
    EXPECT_EQ(fields, given);
}

TEST(PacketDefaults, AreTheValuesThatConstructionTakesByItself) {
    for (auto const& given : {tcp(ipv4()), echo(ipv6()), icmp(ipv6(), 135), arpReply()}) {
        PacketFields fields = given;
        EXPECT_FALSE(filled(fields).empty());
        EXPECT_EQ(constructFrame(fields, 0, noLimit), constructFrame(given, 0, noLimit));
    }
}

TEST(PacketDefaults, SendMulticastToItsGroup) {
    PacketFields fields;
    fields.ipDst = ip("239.129.2.3");
    EXPECT_EQ(filled(fields, 0, allHints()).at("eth-dst"), "01:00:5e:01:02:03");
    fields = PacketFields();
    fields.ipDst = ip("ff02::1:ff00:17");
    EXPECT_EQ(filled(fields, 0, allHints()).at("eth-dst"), "33:33:ff:00:00:17");
}

TEST(PacketDefaults, SendBroadcastToAll) {
    PacketFields fields;
    fields.ipDst = ip("255.255.255.255");
    EXPECT_EQ(filled(fields, 0, allHints()).at("eth-dst"), "ff:ff:ff:ff:ff:ff");
}

TEST(PacketDefaults, GuessNoProtocolForAPort) {
    PacketFields fields;
    fields.ipDst = ip("10.0.0.1");
    fields.dstPort = 443;
    EXPECT_EQ(filled(fields).count("proto"), 0U);
    EXPECT_EQ(packetFault(fields, 0), "a port without TCP or UDP");
}

TEST(PacketDefaults, CompleteTcp) {
    PacketFields fields;
    fields.ipDst = ip("10.0.0.1");
    fields.protocol = IpProtocol::tcp;
    fields.dstPort = 443;
    auto const found = filled(fields);
    EXPECT_EQ(found.at("sport"), "49152");
    EXPECT_EQ(found.at("tcp-flags"), "syn");
    EXPECT_EQ(packetFault(fields, 0), "");
}

TEST(PacketDefaults, TakeTcpFlagsForTcp) {
    PacketFields fields;
    fields.tcpFlags = TcpFlag::ack;
    EXPECT_EQ(filled(fields).at("proto"), "tcp");
}

TEST(PacketDefaults, MakeIcmpAnEchoRequest) {
    PacketFields fields;
    fields.protocol = IpProtocol::icmp;
    auto const found = filled(fields);
    EXPECT_EQ(found.at("icmp-type"), "8");
    EXPECT_EQ(found.at("icmp-code"), "0");
    EXPECT_EQ(packetFault(fields, 0), "");
}

TEST(PacketDefaults, MakeIcmpv6AnEchoRequestInIpv6) {
    PacketFields fields;
    fields.protocol = IpProtocol::icmpv6;
    auto const found = filled(fields);
    EXPECT_EQ(found.at("icmp-type"), "128");
    EXPECT_EQ(found.at("ip-src"), "2001:db8::1");
    EXPECT_EQ(packetFault(fields, 0), "");
}

TEST(PacketDefaults, TakeAnIcmpTypeForTheIcmpOfTheVersion) {
    PacketFields fields;
    fields.ipDst = ip("10.0.0.1");
    fields.icmpType = 3;
    EXPECT_EQ(filled(fields).at("proto"), "icmp");
    fields = PacketFields();
    fields.ipDst = ip("::1");
    fields.icmpType = 1;
    EXPECT_EQ(filled(fields).at("proto"), "icmpv6");
}

TEST(PacketDefaults, GiveNeighbourDiscoveryTheHopLimitThatReceiversDemand) {
    for (std::uint8_t type = 133; type <= 137; ++type) {
        EXPECT_EQ(defaultTtl(icmp(ipv6(), type)), 255) << int{type};
    }
    EXPECT_EQ(defaultTtl(icmp(ipv6(), 138)), 64);
    EXPECT_EQ(defaultTtl(icmp(ipv4(), 133)), 64);
}

TEST(PacketDefaults, KeepMulticastListenersOnTheLink) {
    for (std::uint8_t const type : {130, 131, 132, 143}) {
        EXPECT_EQ(defaultTtl(icmp(ipv6(), type)), 1) << int{type};
    }
}

TEST(PacketDefaults, KeepLocalControlGroupsOnTheLink) {
    PacketFields fields = udp(ipv4());
    fields.ipDst = ip("224.0.0.5");
    EXPECT_EQ(defaultTtl(fields), 1);
    fields.ipDst = ip("224.0.1.5");
    EXPECT_EQ(defaultTtl(fields), 64);
}

TEST(PacketDefaults, MakeTheEtherTypeOfArpARequestForTheRouter) {
    PacketFields fields;
    EXPECT_EQ(filled(fields, Net::EtherType::arp, allHints()),
              (Filled{{"eth-dst", "ff:ff:ff:ff:ff:ff"},
                      {"eth-src", "00:1c:73:00:00:99"},
                      {"arp-op", "request"},
                      {"arp-sender-mac", "00:1c:73:00:00:99"},
                      {"arp-sender-ip", "10.1.0.50"},
                      {"arp-target-mac", "00:00:00:00:00:00"},
                      {"arp-target-ip", "10.1.0.1"}}));
    EXPECT_EQ(packetFault(fields, Net::EtherType::arp), "");
}

TEST(PacketDefaults, NeedNoHintForArp) {
    PacketFields fields;
    auto const found = filled(fields, Net::EtherType::arp);
    EXPECT_EQ(found.at("arp-sender-ip"), "192.0.2.1");
    EXPECT_EQ(found.at("arp-target-ip"), "192.0.2.2");
    EXPECT_EQ(packetFault(fields, Net::EtherType::arp), "");
}

TEST(PacketDefaults, AskForAnotherAddressThanTheSenders) {
    PacketFields fields;
    fields.arp.emplace();
    fields.arp->senderIp = ip("10.1.0.1");
    EXPECT_EQ(filled(fields, 0, allHints()).at("arp-target-ip"), "192.0.2.2");
}

TEST(PacketDefaults, SendAnArpReplyToItsTarget) {
    PacketFields fields;
    fields.arp.emplace();
    fields.arp->operation = ArpOperation::reply;
    fields.arp->targetMac = mac("02:00:00:00:00:0b");
    auto const found = filled(fields);
    EXPECT_EQ(found.at("eth-dst"), "02:00:00:00:00:0b");
    EXPECT_EQ(found.count("arp-target-mac"), 0U);
    EXPECT_EQ(packetFault(fields, 0), "");
}

TEST(PacketDefaults, SendAnArpReplyWithoutTargetToTheRouter) {
    PacketFields fields;
    fields.arp.emplace();
    fields.arp->operation = ArpOperation::reply;
    auto const found = filled(fields, 0, allHints());
    EXPECT_EQ(found.at("eth-dst"), "00:1c:73:00:00:01");
    EXPECT_EQ(found.at("arp-target-mac"), "00:1c:73:00:00:01");
}

TEST(PacketDefaults, SendAnyOtherEtherTypeToAll) {
    PacketFields fields;
    EXPECT_EQ(filled(fields, 0x88b5),
              (Filled{{"eth-dst", "ff:ff:ff:ff:ff:ff"}, {"eth-src", "02:00:00:00:00:01"}}));
    EXPECT_EQ(packetFault(fields, 0x88b5), "");
}

TEST(PacketDefaults, TakeTheEtherTypeForTheVersion) {
    PacketFields fields;
    filled(fields, Net::EtherType::ipv6);
    EXPECT_EQ(packetFault(fields, Net::EtherType::ipv6), "");
    fields = PacketFields();
    filled(fields, Net::EtherType::ipv4);
    EXPECT_EQ(packetFault(fields, Net::EtherType::ipv4), "");
}

TEST(PacketDefaults, HideNoContradiction) {
    PacketFields fields;
    fields.ipDst = ip("2001:db8::1");
    fields.ipSrc = ip("10.0.0.1");
    filled(fields);
    EXPECT_EQ(packetFault(fields, 0), "IP addresses of two versions");
    fields = PacketFields();
    fields.ipDst = ip("10.0.0.1");
    fields.protocol = IpProtocol::icmpv6;
    filled(fields);
    EXPECT_EQ(packetFault(fields, 0), "ICMPv6 with IPv4");
    fields = PacketFields();
    fields.dstPort = 80;
    filled(fields, 0x88b5);
    EXPECT_EQ(packetFault(fields, 0x88b5), "a port without TCP or UDP");
    fields = PacketFields();
    fields.ttl = 80;
    filled(fields, 0x88b5);
    EXPECT_EQ(packetFault(fields, 0x88b5), "an EtherType that contradicts the addresses");
}

}  // namespace
