#include "PacketTracer/IcmpMessage.h"

#include "PacketTracer/IpPacket.h"

namespace PacketTracer {
namespace {

constexpr std::size_t udpSize = 8;
constexpr std::size_t quotedIpv4Size = 20 + udpSize;
constexpr std::size_t quotedIpv6Size = 40 + udpSize;

std::size_t leastIcmpv4BodySize(std::uint8_t type) {
    switch (type) {
        case 3:   // destination unreachable
        case 4:   // source quench
        case 5:   // redirect
        case 11:  // time exceeded
        case 12:  // parameter problem
            return quotedIpv4Size;
        case 13:  // timestamp
        case 14:
            return 12;
        case 17:  // address mask
        case 18:
            return 4;
        default:
            return 0;
    }
}

std::size_t leastIcmpv6BodySize(std::uint8_t type) {
    switch (type) {
        case 1:  // destination unreachable
        case 2:  // packet too big
        case 3:  // time exceeded
        case 4:  // parameter problem
            return quotedIpv6Size;
        case 130:  // multicast listener query, report, done
        case 131:
        case 132:
        case 135:  // neighbour solicitation, advertisement
        case 136:
            return 16;
        case 134:  // router advertisement
        case 138:  // router renumbering
        case 139:  // node information
        case 140:
            return 8;
        case 137:  // redirect
            return 32;
        case 149:  // certification path advertisement
            return 4;
        case 157:  // duplicate address request and confirmation
        case 158:
            return 24;
        default:
            return 0;
    }
}

// An error message goes to the sender of the datagram that it quotes, so the quoted datagram goes
// from the packet's destination to its source.
std::vector<std::uint8_t> quotedDatagram(PacketFields const& fields, std::size_t size) {
    PacketFields quoted;
    quoted.ipSrc = fields.ipDst;
    quoted.ipDst = fields.ipSrc;
    quoted.protocol = IpProtocol::udp;
    quoted.srcPort = 49152;
    quoted.dstPort = 49153;
    return ipPacket(quoted, size);
}

bool quotes(PacketFields const& fields) {
    std::size_t const size = leastIcmpBodySize(fields);
    return size == (fields.ipDst->isV6() ? quotedIpv6Size : quotedIpv4Size);
}

// Target, group and destination addresses, as far as the type has them.
std::vector<IpAddress> carriedAddresses(PacketFields const& fields) {
    if (fields.protocol != IpProtocol::icmpv6) {
        return {};
    }
    IpAddress const& destination = *fields.ipDst;
    switch (*fields.icmpType) {
        case 131:
        case 132:
            return {destination};
        case 135:
            return {destination.isMulticast() ? *fields.ipSrc : destination};
        case 136:
            return {*fields.ipSrc};
        case 137:
            return {*fields.ipSrc, destination};
        default:
            return {};
    }
}

}  // namespace

std::size_t leastIcmpBodySize(PacketFields const& fields) noexcept {
    std::uint8_t const type = fields.icmpType.value_or(0);
    return fields.protocol == IpProtocol::icmpv6 ? leastIcmpv6BodySize(type)
                                                 : leastIcmpv4BodySize(type);
}

std::vector<std::uint8_t> leastIcmpBody(PacketFields const& fields) {
    std::size_t const size = leastIcmpBodySize(fields);
    if (quotes(fields)) {
        return quotedDatagram(fields, size);
    }
    std::vector<std::uint8_t> body;
    for (IpAddress const& address : carriedAddresses(fields)) {
        Net::IpOctets const octets = address.octets();
        body.insert(body.end(), octets.begin(), octets.end());
    }
    body.resize(size);
    return body;
}

std::array<std::uint8_t, 4> icmpHeaderRest(PacketFields const& fields) noexcept {
    bool const isV6 = fields.protocol == IpProtocol::icmpv6;
    std::uint8_t const type = *fields.icmpType;
    if (isV6 ? type == 128 || type == 129 : type == 0 || type == 8) {
        return {0, 1, 0, 1};
    }
    if (isV6 && type == 2) {
        return {0, 0, 0x05, 0x00};
    }
    return {};
}

}  // namespace PacketTracer
