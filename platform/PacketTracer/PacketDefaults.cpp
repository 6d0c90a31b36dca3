#include "PacketTracer/PacketDefaults.h"

#include <algorithm>

#include "Net/Prefix.h"

namespace PacketTracer {
namespace {

constexpr MacAddress someHostMac{0x020000000001};
constexpr MacAddress someRouterMac{0x020000000002};
constexpr std::uint16_t someSrcPort = 49152;
constexpr std::uint16_t someDstPort = 49153;
constexpr std::uint8_t echoRequest = 8;
constexpr std::uint8_t echoRequestV6 = 128;

// Addresses that are set apart for documentation.
constexpr IpAddress ipv4Host(std::uint8_t last) {
    return IpAddress::v4(0xc0000200 | last);  // 192.0.2.0/24
}
constexpr IpAddress ipv6Host(std::uint8_t last) {
    return IpAddress::v6(0x20010db800000000, last);  // 2001:db8::/64
}
constexpr IpAddress farIpv4 = IpAddress::v4(0xc6336401);             // 198.51.100.1
constexpr IpAddress farIpv6 = IpAddress::v6(0x20010db800010000, 1);  // 2001:db8:1::1

enum class Kind : std::uint8_t { arp, ipv4, ipv6, other };

template <class T>
void fill(std::optional<T>& field, std::optional<T> const& value) {
    if (!field) {
        field = value;
    }
}
template <class T>
void fill(std::optional<T>& field, T const& value) {
    if (!field) {
        field = value;
    }
}

bool saysSomethingOfIp(PacketFields const& fields) {
    return fields.ipDst || fields.ipSrc || fields.ttl || fields.dscp || fields.dontFragment ||
           fields.protocol || fields.srcPort || fields.dstPort || fields.tcpFlags ||
           fields.icmpType || fields.icmpCode;
}

Kind kindOf(PacketFields const& fields, std::uint16_t etherType) {
    std::uint16_t const implied = impliedEtherType(fields);
    std::uint16_t const type = implied != 0 ? implied : etherType;
    if (type == Net::EtherType::arp) {
        return Kind::arp;
    }
    if (type == Net::EtherType::ipv6 || (type == 0 && fields.protocol == IpProtocol::icmpv6)) {
        return Kind::ipv6;
    }
    return type == 0 || type == Net::EtherType::ipv4 || saysSomethingOfIp(fields) ? Kind::ipv4
                                                                                  : Kind::other;
}

// The first candidate that is not the other end's address.
IpAddress otherThan(std::optional<IpAddress> const& otherEnd, std::optional<IpAddress> const& hint,
                    IpAddress const& first, IpAddress const& second) {
    if (hint && hint != otherEnd) {
        return *hint;
    }
    return first != otherEnd ? first : second;
}

std::optional<IpProtocol> impliedProtocol(PacketFields const& fields, Kind kind) {
    if (fields.icmpType || fields.icmpCode) {
        return kind == Kind::ipv6 ? IpProtocol::icmpv6 : IpProtocol::icmp;
    }
    if (fields.tcpFlags) {
        return IpProtocol::tcp;
    }
    if (fields.srcPort || fields.dstPort) {
        return std::nullopt;  // TCP or UDP: guessing would answer another question
    }
    return IpProtocol::udp;
}

void fillTransport(PacketFields& fields) {
    if (fields.protocol == IpProtocol::tcp || fields.protocol == IpProtocol::udp) {
        fill(fields.srcPort, someSrcPort);
        fill(fields.dstPort, someDstPort);
    }
    if (fields.protocol == IpProtocol::tcp) {
        fill(fields.tcpFlags, defaultTcpFlags);
    }
    if (fields.protocol == IpProtocol::icmp || fields.protocol == IpProtocol::icmpv6) {
        fill(fields.icmpType, fields.protocol == IpProtocol::icmp ? echoRequest : echoRequestV6);
        fill(fields.icmpCode, std::uint8_t{0});
    }
}

// The Ethernet group that a multicast or broadcast destination is sent to.
std::optional<MacAddress> groupMac(IpAddress const& destination) {
    if (destination.isBroadcast()) {
        return MacAddress::broadcast();
    }
    if (!destination.isMulticast()) {
        return std::nullopt;
    }
    if (destination.isV6()) {
        return MacAddress{0x333300000000U | (destination.lo & 0xffffffff)};
    }
    return MacAddress{0x01005e000000U | (destination.asV4() & 0x7fffff)};
}

void fillIp(PacketFields& fields, Kind kind, PacketHints const& hints) {
    if (kind == Kind::ipv6) {
        fill(fields.ipSrc, otherThan(fields.ipDst, hints.hostIpv6, ipv6Host(1), ipv6Host(2)));
        fill(fields.ipDst, otherThan(fields.ipSrc, farIpv6, farIpv6, ipv6Host(1)));
    } else {
        fill(fields.ipSrc, otherThan(fields.ipDst, hints.hostIpv4, ipv4Host(1), ipv4Host(2)));
        fill(fields.ipDst, otherThan(fields.ipSrc, farIpv4, farIpv4, ipv4Host(1)));
    }
    fill(fields.protocol, impliedProtocol(fields, kind));
    fillTransport(fields);
    fill(fields.ttl, defaultTtl(fields));
    fill(fields.ethDst, groupMac(*fields.ipDst));
    fill(fields.ethDst, hints.routerMac.value_or(someRouterMac));
}

void fillArp(PacketFields& fields, PacketHints const& hints) {
    if (!fields.arp) {
        fields.arp.emplace();
    }
    ArpFields& arp = *fields.arp;
    fill(arp.operation, ArpOperation::request);
    if (arp.operation == ArpOperation::reply) {
        fill(fields.ethDst, arp.targetMac);
        fill(fields.ethDst, hints.routerMac.value_or(someRouterMac));
    }
    fill(fields.ethDst, MacAddress::broadcast());
    fill(arp.senderIp, otherThan(arp.targetIp, hints.hostIpv4, ipv4Host(1), ipv4Host(2)));
    fill(arp.targetIp, otherThan(arp.senderIp, hints.routerIpv4, ipv4Host(2), ipv4Host(1)));
    fill(arp.senderMac, defaultArpSenderMac(fields));
    fill(arp.targetMac, defaultArpTargetMac(fields));
}

}  // namespace

std::uint8_t defaultTtl(PacketFields const& fields) noexcept {
    if (fields.protocol == IpProtocol::icmpv6 && fields.icmpType) {
        std::uint8_t const type = *fields.icmpType;
        if (type >= 133 && type <= 137) {
            return 255;  // on the link: a receiver believes no other value
        }
        if ((type >= 130 && type <= 132) || type == 143) {
            return 1;
        }
    }
    constexpr Net::Prefix linkLocalGroups{IpAddress::v4(0xe0000000), 24};  // 224.0.0.0/24
    if (fields.ipDst && linkLocalGroups.contains(*fields.ipDst)) {
        return 1;
    }
    return 64;
}

std::optional<MacAddress> defaultArpSenderMac(PacketFields const& fields) noexcept {
    return fields.ethSrc;
}

std::optional<MacAddress> defaultArpTargetMac(PacketFields const& fields) noexcept {
    bool const isReply = fields.arp && fields.arp->operation == ArpOperation::reply;
    return isReply ? fields.ethDst : MacAddress();
}

std::vector<NamedField> fillDefaults(PacketFields& fields, std::uint16_t etherType,
                                     PacketHints const& hints) {
    std::vector<NamedField> const given = namedFields(fields);
    fill(fields.ethSrc, hints.hostMac.value_or(someHostMac));
    switch (Kind const kind = kindOf(fields, etherType)) {
        case Kind::arp:
            fillArp(fields, hints);
            break;
        case Kind::ipv4:
        case Kind::ipv6:
            fillIp(fields, kind, hints);
            break;
        case Kind::other:
            fill(fields.ethDst, MacAddress::broadcast());
            break;
    }
    std::vector<NamedField> filled = namedFields(fields);
    std::erase_if(filled, [&](NamedField const& field) {
        return std::find(given.begin(), given.end(), field) != given.end();
    });
    return filled;
}

}  // namespace PacketTracer
