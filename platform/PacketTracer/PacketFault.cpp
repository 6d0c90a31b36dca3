#include "PacketTracer/PacketFault.h"

#include <initializer_list>

#include "PacketTracer/IcmpMessage.h"
#include "PacketTracer/PacketSize.h"

namespace PacketTracer {
namespace {

using Fault = std::string_view;
constexpr Fault none;

using Rule = Fault (*)(PacketFields const& fields);

// Each rule may rely on the rules before it.
Fault firstFault(PacketFields const& fields, std::initializer_list<Rule> rules) {
    for (Rule const rule : rules) {
        if (Fault const fault = rule(fields); !fault.empty()) {
            return fault;
        }
    }
    return none;
}

constexpr std::uint64_t maximumIpSize = 65535;

bool isTcpOrUdp(PacketFields const& fields) {
    return fields.protocol == IpProtocol::tcp || fields.protocol == IpProtocol::udp;
}
bool isIcmp(PacketFields const& fields) {
    return fields.protocol == IpProtocol::icmp || fields.protocol == IpProtocol::icmpv6;
}
bool hasPort(PacketFields const& fields) {
    return fields.srcPort || fields.dstPort;
}
bool hasIcmpField(PacketFields const& fields) {
    return fields.icmpType || fields.icmpCode;
}
bool isIp(PacketFields const& fields) {
    return fields.ipDst || fields.ipSrc;
}
bool isGroup(IpAddress const& address) {
    return address.isMulticast() || address.isBroadcast();
}

Fault tagsFault(std::vector<VlanTag> const& tags) {
    if (tags.size() > 2) {
        return "more than two tags";
    }
    for (VlanTag const& tag : tags) {
        bool const isOuter = &tag == &tags.front();
        if (tag.tpid != Net::EtherType::vlan &&
            !(isOuter && tag.tpid == Net::EtherType::serviceVlan)) {
            return isOuter ? "an outer tag other than 0x8100 or 0x88a8"
                           : "an inner tag other than 0x8100";
        }
        if (tag.vlan > Net::maxVlan) {
            return "a VLAN beyond 4094";
        }
        if (tag.priority > 7) {
            return "a tag's priority beyond 7";
        }
    }
    return none;
}

Fault ethernetFault(PacketFields const& fields) {
    if (!fields.ethDst) {
        return "no destination MAC address";
    }
    if (!fields.ethSrc) {
        return "no source MAC address";
    }
    if (fields.ethSrc->isMulticast()) {
        return "a source MAC address that is a group";
    }
    return tagsFault(fields.tags);
}

Fault lonelyEtherTypeFault(std::uint16_t etherType) {
    switch (etherType) {
        case 0:
            return "neither IP addresses nor ARP nor an EtherType";
        case Net::EtherType::ipv4:
        case Net::EtherType::ipv6:
            return "an EtherType of IP without IP addresses";
        case Net::EtherType::arp:
            return "the EtherType of ARP without ARP";
        case Net::EtherType::vlan:
        case Net::EtherType::serviceVlan:
            return "an EtherType that is a tag";
        case Net::EtherType::mpls:
        case Net::EtherType::mplsMulticast:
            return "MPLS, which only a whole frame can carry";
        default:
            return etherType < Net::EtherType::least ? Fault("an EtherType that is a length")
                                                     : none;
    }
}

Fault etherTypeFault(PacketFields const& fields, std::uint16_t etherType) {
    std::uint16_t const implied = impliedEtherType(fields);
    if (implied == 0) {
        return lonelyEtherTypeFault(etherType);
    }
    return etherType == 0 || etherType == implied
               ? none
               : Fault("an EtherType that contradicts the addresses");
}

Fault noIpFault(PacketFields const& fields) {
    if (hasPort(fields)) {
        return "a port without IP addresses";
    }
    if (fields.ttl || fields.dscp || fields.dontFragment) {
        return "TTL, DSCP or don't-fragment without IP addresses";
    }
    if (fields.protocol || fields.tcpFlags || hasIcmpField(fields)) {
        return "an IP protocol without IP addresses";
    }
    return none;
}

Fault arpFault(PacketFields const& fields) {
    ArpFields const& arp = *fields.arp;
    if (isIp(fields)) {
        return "ARP beside IP addresses";
    }
    if (arp.operation != ArpOperation::request && arp.operation != ArpOperation::reply) {
        return "ARP that is neither request nor reply";
    }
    if (!arp.senderIp || !arp.targetIp) {
        return "ARP without both IP addresses";
    }
    if (!arp.senderIp->isV4() || !arp.targetIp->isV4()) {
        return "ARP with an IPv6 address";
    }
    if (isGroup(*arp.senderIp) || (arp.senderMac && arp.senderMac->isMulticast())) {
        return "an ARP sender that is a group";
    }
    return fields.payload.empty() ? none : Fault("ARP with a payload");
}

Fault addressesFault(PacketFields const& fields) {
    if (!fields.ipDst || !fields.ipSrc) {
        return fields.ipSrc ? "no destination IP address" : "no source IP address";
    }
    if (fields.ipDst->isV4() != fields.ipSrc->isV4()) {
        return "IP addresses of two versions";
    }
    if (isGroup(*fields.ipSrc)) {
        return "a source IP address that is a group";
    }
    return fields.ipDst->isUnspecified() ? Fault("a destination IP address that is unspecified")
                                         : none;
}

Fault portsFault(PacketFields const& fields) {
    if (isTcpOrUdp(fields)) {
        return fields.srcPort && fields.dstPort ? none : Fault("TCP or UDP without both ports");
    }
    return hasPort(fields) ? Fault("a port without TCP or UDP") : none;
}

Fault icmpFault(PacketFields const& fields) {
    if (!isIcmp(fields)) {
        return hasIcmpField(fields) ? Fault("an ICMP type or code without ICMP") : none;
    }
    if (fields.ipDst->isV6() != (fields.protocol == IpProtocol::icmpv6)) {
        return fields.ipDst->isV6() ? "ICMP with IPv6" : "ICMPv6 with IPv4";
    }
    if (!fields.icmpType) {
        return "ICMP without a type";
    }
    bool const isTooShort =
        !fields.payload.empty() && fields.payload.size() < leastIcmpBodySize(fields);
    return isTooShort ? Fault("a payload shorter than its ICMP type demands") : none;
}

Fault protocolFault(PacketFields const& fields) {
    if (fields.tcpFlags && fields.protocol != IpProtocol::tcp) {
        return "TCP flags without TCP";
    }
    if (!fields.protocol) {
        return "no IP protocol";
    }
    return isTcpOrUdp(fields) || isIcmp(fields)
               ? none
               : Fault("an IP protocol other than TCP, UDP, ICMP and ICMPv6");
}

Fault ipHeaderFault(PacketFields const& fields) {
    if (fields.dscp && *fields.dscp > 63) {
        return "a DSCP beyond 63";
    }
    if (fields.dontFragment && fields.ipDst->isV6()) {
        return "don't-fragment with IPv6";
    }
    return none;
}

Fault lengthFault(PacketFields const& fields) {
    std::uint64_t const headers = headerSize(fields);
    if (fields.length && *fields.length < headers) {
        return "a length shorter than the headers";
    }
    if (fields.length && !fields.payload.empty()) {
        std::uint64_t const size = headers + fields.payload.size();
        bool const isPadded = size < minimumFrameSize && *fields.length == minimumFrameSize;
        if (size != *fields.length && !isPadded) {
            return "a payload and a length that disagree";
        }
    }
    if (isIp(fields)) {
        std::uint64_t const before = ethernetSize(fields) + (fields.ipDst->isV6() ? 40 : 0);
        return contentSize(fields) - before > maximumIpSize
                   ? Fault("longer than an IP packet can be")
                   : none;
    }
    return none;
}

Fault networkFault(PacketFields const& fields) {
    if (isIp(fields) && !fields.arp) {
        return firstFault(fields,
                          {addressesFault, ipHeaderFault, portsFault, icmpFault, protocolFault});
    }
    return fields.arp ? firstFault(fields, {arpFault, noIpFault}) : noIpFault(fields);
}

}  // namespace

std::string_view packetFault(PacketFields const& fields, std::uint16_t etherType) {
    if (Fault const fault = firstFault(fields, {ethernetFault, networkFault}); !fault.empty()) {
        return fault;
    }
    Fault const fault = etherTypeFault(fields, etherType);
    return fault.empty() ? lengthFault(fields) : fault;
}

}  // namespace PacketTracer
