#include "PacketTracer/PacketSize.h"

#include <algorithm>

#include "PacketTracer/IcmpMessage.h"

namespace PacketTracer {
namespace {

std::uint64_t transportSize(PacketFields const& fields) {
    switch (fields.protocol.value_or(IpProtocol::udp)) {
        case IpProtocol::tcp:
            return 20;
        case IpProtocol::udp:
            return 8;
        case IpProtocol::icmp:
        case IpProtocol::icmpv6:
            return 8 + (fields.payload.empty() ? leastIcmpBodySize(fields) : 0);
    }
    return 0;
}

}  // namespace

std::uint64_t ethernetSize(PacketFields const& fields) noexcept {
    return 14 + 4 * std::uint64_t{fields.tags.size()};
}

std::uint64_t headerSize(PacketFields const& fields) noexcept {
    switch (impliedEtherType(fields)) {
        case Net::EtherType::arp:
            return ethernetSize(fields) + 28;
        case Net::EtherType::ipv4:
            return ethernetSize(fields) + 20 + transportSize(fields);
        case Net::EtherType::ipv6:
            return ethernetSize(fields) + 40 + transportSize(fields);
        default:
            return ethernetSize(fields);
    }
}

std::uint64_t contentSize(PacketFields const& fields) noexcept {
    std::uint64_t const headers = headerSize(fields);
    if (fields.arp) {
        return headers;  // ARP has a fixed size: the rest is padding
    }
    return fields.payload.empty() ? std::max<std::uint64_t>(headers, fields.length.value_or(0))
                                  : headers + fields.payload.size();
}

std::uint64_t frameSize(PacketFields const& fields) noexcept {
    return std::max<std::uint64_t>(
        {contentSize(fields), fields.length.value_or(0), minimumFrameSize});
}

}  // namespace PacketTracer
