#include "softchip/Frame.h"

#include <algorithm>

#include "Net/IpProtocol.h"

namespace SoftChip {
namespace {

using Bytes = std::span<std::uint8_t const>;

constexpr std::uint8_t extHopByHop = 0;
constexpr std::uint8_t extRouting = 43;
constexpr std::uint8_t extFragment = 44;
constexpr std::uint8_t extAuthentication = 51;
constexpr std::uint8_t extDestination = 60;

// Precondition of all reads: the bytes are there.
std::uint16_t u16(Bytes bytes, std::size_t at) {
    return static_cast<std::uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

// The part from `at` on; empty beyond the end.
Bytes from(Bytes bytes, std::size_t at) {
    return bytes.subspan(std::min(at, bytes.size()));
}

bool isTag(std::uint16_t etherType, unsigned tagsBefore) {
    return etherType == Net::EtherType::vlan ||
           (etherType == Net::EtherType::serviceVlan && tagsBefore == 0);
}

// Takes addresses, tags and EtherType; returns what follows them, or nothing with l2Fault set.
Bytes parseEthernet(Bytes bytes, ParsedFrame& frame) {
    if (bytes.size() < 14) {
        frame.l2Fault = L2Fault::tooShort;
        return {};
    }
    frame.dst = MacAddress::fromOctets(bytes);
    frame.src = MacAddress::fromOctets(bytes.subspan(6));
    frame.etherType = u16(bytes, 12);
    bytes = bytes.subspan(14);
    while (frame.tagCount < 2 && isTag(frame.etherType, frame.tagCount)) {
        if (bytes.size() < 4) {
            frame.l2Fault = L2Fault::tagTooShort;
            return {};
        }
        frame.tags[frame.tagCount++] = Net::VlanTag::fromWords(frame.etherType, u16(bytes, 0));
        frame.etherType = u16(bytes, 2);
        bytes = bytes.subspan(4);
    }
    return bytes;
}

void parseArp(Bytes bytes, ParsedFrame& frame) {
    frame.l3 = L3::arp;
    if (bytes.size() < 28) {
        frame.l3Fault = L3Fault::truncated;
        return;
    }
    if (u16(bytes, 0) != 1 || u16(bytes, 2) != Net::EtherType::ipv4 || bytes[4] != 6 ||
        bytes[5] != 4) {
        frame.l3Fault = L3Fault::arpForm;
        return;
    }
    frame.arpOperation = u16(bytes, 6);
    frame.srcIp = IpAddress::fromOctets(Family::ipv4, bytes.subspan(14));
    frame.dstIp = IpAddress::fromOctets(Family::ipv4, bytes.subspan(24));
}

// The ones' complement sum of the header, folded; 0xffff if the checksum in it is right.
unsigned headerSum(Bytes header) {
    unsigned sum = 0;
    for (std::size_t i = 0; i + 1 < header.size(); i += 2) {
        sum += u16(header, i);
    }
    sum = (sum & 0xffff) + (sum >> 16);
    return (sum & 0xffff) + (sum >> 16);
}

std::size_t ipv4HeaderLength(Bytes bytes) {
    return (bytes[0] & 15) * std::size_t{4};
}

// The fault that keeps an IPv4 header from being read at all.
L3Fault ipv4Unreadable(Bytes bytes) {
    if (bytes.size() < 20) {
        return L3Fault::truncated;
    }
    if (bytes[0] >> 4 != 4) {
        return L3Fault::version;
    }
    if (ipv4HeaderLength(bytes) < 20) {
        return L3Fault::headerLength;
    }
    return ipv4HeaderLength(bytes) > bytes.size() ? L3Fault::truncated : L3Fault::none;
}

// What is wrong with a header that can be read.
L3Fault ipv4Fault(Bytes bytes) {
    if (headerSum(bytes.first(ipv4HeaderLength(bytes))) != 0xffff) {
        return L3Fault::checksum;
    }
    if (u16(bytes, 2) < ipv4HeaderLength(bytes)) {
        return L3Fault::totalLength;
    }
    return u16(bytes, 2) > bytes.size() ? L3Fault::truncated : L3Fault::none;
}

// `bytes` without the padding beyond the packet's own length.
Bytes trimmed(Bytes bytes, std::size_t length) {
    return bytes.first(std::min(length, bytes.size()));
}

// Takes the header; returns the packet's payload, empty if the header cannot be read.
Bytes parseIpv4(Bytes bytes, ParsedFrame& frame) {
    frame.l3 = L3::ipv4;
    frame.l3Fault = ipv4Unreadable(bytes);
    if (frame.l3Fault != L3Fault::none) {
        return {};
    }
    auto const fragmentField = u16(bytes, 6);
    frame.l3Fault = ipv4Fault(bytes);
    frame.hasIp = true;
    frame.dscp = bytes[1] >> 2;
    frame.ttl = bytes[8];
    frame.protocol = bytes[9];
    frame.srcIp = IpAddress::fromOctets(Family::ipv4, bytes.subspan(12));
    frame.dstIp = IpAddress::fromOctets(Family::ipv4, bytes.subspan(16));
    frame.options = ipv4HeaderLength(bytes) > 20;
    frame.fragment = (fragmentField & 0x3fff) != 0;
    frame.laterFragment = (fragmentField & 0x1fff) != 0;
    return from(trimmed(bytes, u16(bytes, 2)), ipv4HeaderLength(bytes));
}

bool isExtension(std::uint8_t protocol) {
    return protocol == extHopByHop || protocol == extRouting || protocol == extFragment ||
           protocol == extAuthentication || protocol == extDestination;
}

std::size_t extensionLength(std::uint8_t protocol, Bytes bytes) {
    switch (protocol) {
        case extFragment:
            return 8;
        case extAuthentication:
            return (bytes[1] + std::size_t{2}) * 4;
        default:
            return (bytes[1] + std::size_t{1}) * 8;
    }
}

// Takes extension headers until another protocol, a later fragment, or the end.
Bytes parseExtensions(Bytes bytes, ParsedFrame& frame) {
    while (isExtension(frame.protocol) && !frame.laterFragment) {
        if (bytes.size() < 8 || bytes.size() < extensionLength(frame.protocol, bytes)) {
            return {};
        }
        frame.options = true;
        if (frame.protocol == extFragment) {
            frame.fragment = true;
            frame.laterFragment = (u16(bytes, 2) & 0xfff8) != 0;
        }
        auto const next = bytes[0];
        bytes = from(bytes, extensionLength(frame.protocol, bytes));
        frame.protocol = next;
    }
    return bytes;
}

Bytes parseIpv6(Bytes bytes, ParsedFrame& frame) {
    frame.l3 = L3::ipv6;
    if (bytes.size() < 40 || bytes[0] >> 4 != 6) {
        frame.l3Fault = bytes.size() < 40 ? L3Fault::truncated : L3Fault::version;
        return {};
    }
    auto const payload = bytes.subspan(40);
    std::size_t const payloadLength = u16(bytes, 4);
    frame.l3Fault = payloadLength > payload.size() ? L3Fault::truncated : L3Fault::none;
    frame.hasIp = true;
    frame.dscp = static_cast<std::uint8_t>((u16(bytes, 0) >> 6) & 0x3f);
    frame.protocol = bytes[6];
    frame.ttl = bytes[7];
    frame.srcIp = IpAddress::fromOctets(Family::ipv6, bytes.subspan(8));
    frame.dstIp = IpAddress::fromOctets(Family::ipv6, bytes.subspan(24));
    return parseExtensions(trimmed(payload, payloadLength), frame);
}

void parseTcp(Bytes bytes, ParsedFrame& frame) {
    if (bytes.size() >= 20) {
        frame.l4 = L4::tcp;
        frame.srcPort = u16(bytes, 0);
        frame.dstPort = u16(bytes, 2);
        frame.tcpFlags = bytes[13];
    }
}

void parseUdp(Bytes bytes, ParsedFrame& frame) {
    if (bytes.size() >= 8) {
        frame.l4 = L4::udp;
        frame.srcPort = u16(bytes, 0);
        frame.dstPort = u16(bytes, 2);
    }
}

void parseIcmp(Bytes bytes, L4 kind, ParsedFrame& frame) {
    if (bytes.size() >= 4) {
        frame.l4 = kind;
        frame.icmpType = bytes[0];
        frame.icmpCode = bytes[1];
    }
}

void parseL4(Bytes bytes, ParsedFrame& frame) {
    if (!frame.hasIp || frame.laterFragment) {
        return;
    }
    if (frame.protocol == Net::IpProtocol::tcp) {
        parseTcp(bytes, frame);
    } else if (frame.protocol == Net::IpProtocol::udp) {
        parseUdp(bytes, frame);
    } else if (frame.protocol == Net::IpProtocol::icmp && frame.l3 == L3::ipv4) {
        parseIcmp(bytes, L4::icmp, frame);
    } else if (frame.protocol == Net::IpProtocol::icmpv6 && frame.l3 == L3::ipv6) {
        parseIcmp(bytes, L4::icmpv6, frame);
    }
}

}  // namespace

ParsedFrame parseFrame(std::span<std::uint8_t const> bytes) {
    ParsedFrame frame;
    auto rest = parseEthernet(bytes, frame);
    if (frame.l2Fault != L2Fault::none) {
        return frame;
    }
    switch (frame.etherType) {
        case Net::EtherType::arp:
            parseArp(rest, frame);
            break;
        case Net::EtherType::ipv4:
            parseL4(parseIpv4(rest, frame), frame);
            break;
        case Net::EtherType::ipv6:
            parseL4(parseIpv6(rest, frame), frame);
            break;
        default:
            break;
    }
    return frame;
}

}  // namespace SoftChip
