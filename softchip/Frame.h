// The chip's parser: from a frame's bytes to the fields that the pipeline matches and forwards on.
//
// Any bytes get an answer, and no byte beyond the frame's end is read. Faults are reported by
// layer: without the whole Ethernet part (addresses, tags, EtherType) there is no frame; a frame
// with a broken IP or ARP header, or with another header than its EtherType says, can still be
// bridged.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "Net/VlanTag.h"
#include "softchip/Addresses.h"

namespace SoftChip {

enum class L2Fault : std::uint8_t { none, tooShort, tagTooShort };

enum class L3 : std::uint8_t { none, arp, ipv4, ipv6 };

// What is wrong with an IP or ARP header.
enum class L3Fault : std::uint8_t {
    none,
    truncated,     // the header, or what its length fields count, is not all there
    version,       // the version is not the EtherType's
    headerLength,  // an IPv4 header length below five words
    totalLength,   // an IPv4 total length below the header's
    checksum,      // an IPv4 header checksum that does not add up
    arpForm,       // ARP for other than Ethernet and IPv4
};

enum class L4 : std::uint8_t { none, tcp, udp, icmp, icmpv6 };

struct ParsedFrame {
    L2Fault l2Fault = L2Fault::none;
    MacAddress dst;
    MacAddress src;
    std::uint8_t tagCount = 0;         // 0 to 2
    std::array<Net::VlanTag, 2> tags;  // the outer one first
    // What follows the last tag that was taken. Below Net::EtherType::least it is a length.
    std::uint16_t etherType = 0;

    // Set by the EtherType; `l3Fault` says whether the header that follows is what the EtherType
    // says. A router drops an IP packet with a fault, but its fields can still be matched if the
    // header was all there.
    L3 l3 = L3::none;
    L3Fault l3Fault = L3Fault::none;
    bool hasIp = false;  // the IP fields below are set
    IpAddress srcIp;     // for ARP the sender's address
    IpAddress dstIp;     // for ARP the target's
    std::uint16_t arpOperation = 0;
    std::uint8_t protocol = 0;  // behind IPv6 extension headers
    std::uint8_t ttl = 0;       // or hop limit
    std::uint8_t dscp = 0;
    bool options = false;        // IPv4 options or IPv6 extension headers
    bool fragment = false;       // any fragment, the first included
    bool laterFragment = false;  // has no L4 header

    // Also `none` where the header is not all there.
    L4 l4 = L4::none;
    std::uint16_t srcPort = 0;
    std::uint16_t dstPort = 0;
    std::uint8_t tcpFlags = 0;
    std::uint8_t icmpType = 0;
    std::uint8_t icmpCode = 0;

    bool isIp() const { return l3 == L3::ipv4 || l3 == L3::ipv6; }
    bool hasPorts() const { return l4 == L4::tcp || l4 == L4::udp; }
    bool hasIcmp() const { return l4 == L4::icmp || l4 == L4::icmpv6; }
};

// Parses Ethernet, up to two tags (0x8100; the outer one also 0x88a8), ARP, IPv4 with options, IPv6
// with extension headers (hop-by-hop, routing, fragment, destination options, authentication), TCP,
// UDP, ICMP and ICMPv6. The frame is without its check sequence; padding is ignored.
ParsedFrame parseFrame(std::span<std::uint8_t const> frame);

}  // namespace SoftChip
