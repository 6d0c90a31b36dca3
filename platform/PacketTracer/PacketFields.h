// A packet described by its fields.
//
// Plain values. A description may be incomplete or contradict itself; PacketTracer/PacketFault.h
// says whether a frame can be built from it, PacketTracer/PacketDefaults.h what holds where a field
// is not given. The packet's EtherType, the innermost one, stands beside the fields, in the
// request. Thread: the event thread, because of the payload.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Kel/Reflection.h"
#include "Net/IpAddress.h"
#include "Net/IpProtocol.h"
#include "Net/MacAddress.h"
#include "Net/TcpFlag.h"
#include "Net/VlanTag.h"
#include "Vanta/Bytes.h"
#include "VynExport.h"

namespace PacketTracer {

using Net::IpAddress;
using Net::MacAddress;
using Net::VlanTag;

// Those that a frame can be built with.
enum class IpProtocol : std::uint8_t {
    icmp = Net::IpProtocol::icmp,
    tcp = Net::IpProtocol::tcp,
    udp = Net::IpProtocol::udp,
    icmpv6 = Net::IpProtocol::icmpv6,
};

enum class ArpOperation : std::uint16_t { request = 1, reply = 2 };

namespace TcpFlag = Net::TcpFlag;

struct ArpFields {
    std::optional<ArpOperation> operation;
    std::optional<MacAddress> senderMac;
    std::optional<IpAddress> senderIp;  // IPv4
    std::optional<MacAddress> targetMac;
    std::optional<IpAddress> targetIp;  // IPv4

    friend bool operator==(ArpFields const&, ArpFields const&) noexcept = default;
};

struct PacketFields {
    std::optional<MacAddress> ethDst;
    std::optional<MacAddress> ethSrc;
    std::vector<VlanTag> tags;  // the outer one first

    std::optional<ArpFields> arp;

    std::optional<IpAddress> ipDst;
    std::optional<IpAddress> ipSrc;
    std::optional<std::uint8_t> ttl;   // or hop limit
    std::optional<std::uint8_t> dscp;  // 0 to 63
    bool dontFragment = false;         // IPv4 alone
    std::optional<IpProtocol> protocol;
    std::optional<std::uint16_t> srcPort;
    std::optional<std::uint16_t> dstPort;
    std::optional<std::uint8_t> tcpFlags;
    std::optional<std::uint8_t> icmpType;
    std::optional<std::uint8_t> icmpCode;

    // What follows the last header: of TCP (20 bytes), UDP, ICMP (8 bytes, so for an echo request
    // the data behind identifier and sequence number) or, without IP, Ethernet. Empty: not given.
    Vanta::Bytes payload;
    // The frame's length in bytes, padding included, check sequence not. Without a payload, zeros
    // fill the packet up to it.
    std::optional<std::uint32_t> length;

    friend bool operator==(PacketFields const&, PacketFields const&) noexcept = default;
};

// The EtherType that the addresses demand; 0 if there are neither IP addresses nor ARP.
VYN_EXPORT std::uint16_t impliedEtherType(PacketFields const& fields) noexcept;

// "tcp", "udp", "icmp", "icmpv6".
VYN_EXPORT std::string_view text(IpProtocol protocol) noexcept;
VYN_EXPORT std::optional<IpProtocol> ipProtocolFromText(std::string_view text) noexcept;
// "request", "reply".
VYN_EXPORT std::string_view text(ArpOperation operation) noexcept;
VYN_EXPORT std::optional<ArpOperation> arpOperationFromText(std::string_view text) noexcept;

// The fields that are given, as name and text, in the order of their declaration. The names:
// eth-dst, eth-src, vlan (one for each tag), arp-op, arp-sender-mac, arp-sender-ip, arp-target-mac,
// arp-target-ip, ip-dst, ip-src, ttl, dscp, dont-fragment, proto, sport, dport, tcp-flags,
// icmp-type, icmp-code, payload, length.
struct NamedField {
    std::string_view name;
    std::string value;

    friend bool operator==(NamedField const&, NamedField const&) = default;
};
VYN_EXPORT std::vector<NamedField> namedFields(PacketFields const& fields);

// The named fields as a list of pairs; of null (no fields) an empty list.
VYN_EXPORT void reflectValue(Kel::AttributeSink& sink, PacketFields const* fields);

}  // namespace PacketTracer
