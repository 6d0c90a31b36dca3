// Descriptions of packets that are complete and legal, for tests to change one thing at a time.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "PacketTracer/PacketFields.h"

namespace SomeFields {

using namespace PacketTracer;

inline MacAddress mac(std::string_view text) {
    return MacAddress::fromText(text).value();
}
inline IpAddress ip(std::string_view text) {
    return IpAddress::fromText(text).value();
}

inline constexpr std::uint32_t noLimit = 0xffffffff;

// From 02:00:00:00:00:01 to ...:02; without an EtherType nothing can be built from it.
inline PacketFields ethernet() {
    PacketFields fields;
    fields.ethDst = mac("02:00:00:00:00:02");
    fields.ethSrc = mac("02:00:00:00:00:01");
    return fields;
}

// An IP packet that lacks its protocol.
inline PacketFields ipv4() {
    PacketFields fields = ethernet();
    fields.ipSrc = ip("192.0.2.1");
    fields.ipDst = ip("198.51.100.1");
    return fields;
}
inline PacketFields ipv6() {
    PacketFields fields = ethernet();
    fields.ipSrc = ip("2001:db8::1");
    fields.ipDst = ip("2001:db8:1::1");
    return fields;
}

inline PacketFields udp(PacketFields fields) {
    fields.protocol = IpProtocol::udp;
    fields.srcPort = 1000;
    fields.dstPort = 2000;
    return fields;
}
inline PacketFields tcp(PacketFields fields) {
    fields.protocol = IpProtocol::tcp;
    fields.srcPort = 49152;
    fields.dstPort = 443;
    return fields;
}
// ICMP or ICMPv6, as the addresses say.
inline PacketFields icmp(PacketFields fields, std::uint8_t type) {
    fields.protocol = fields.ipDst->isV6() ? IpProtocol::icmpv6 : IpProtocol::icmp;
    fields.icmpType = type;
    return fields;
}
inline PacketFields echo(PacketFields fields) {
    bool const isV6 = fields.ipDst->isV6();
    return icmp(std::move(fields), isV6 ? 128 : 8);
}

inline PacketFields arpRequest() {
    PacketFields fields = ethernet();
    fields.ethDst = MacAddress::broadcast();
    fields.arp.emplace();
    fields.arp->operation = ArpOperation::request;
    fields.arp->senderIp = ip("192.0.2.1");
    fields.arp->targetIp = ip("192.0.2.2");
    return fields;
}
inline PacketFields arpReply() {
    PacketFields fields = arpRequest();
    fields.ethDst = mac("02:00:00:00:00:02");
    fields.arp->operation = ArpOperation::reply;
    return fields;
}

inline Vanta::Bytes bytesOf(std::string_view text) {
    return std::vector<std::uint8_t>(text.begin(), text.end());
}

}  // namespace SomeFields
