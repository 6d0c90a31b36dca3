// Values for the fields that a packet's description leaves out.
//
// There are two kinds of fields. Some need not be given: constructPacket() derives their values
// from the other fields, as the first functions here do. The others decide where a packet goes, so
// they never get a value silently: fillDefaults() chooses values and names every field that it
// filled. Thread: the event thread.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "PacketTracer/PacketFields.h"
#include "VynExport.h"

namespace PacketTracer {

// 255 for ICMPv6's neighbour and router discovery, 1 for its multicast listeners and for
// 224.0.0.0/24, otherwise 64.
VYN_EXPORT std::uint8_t defaultTtl(PacketFields const& fields) noexcept;
// A connection's first segment.
inline constexpr std::uint8_t defaultTcpFlags = TcpFlag::syn;
// The frame's source.
VYN_EXPORT std::optional<MacAddress> defaultArpSenderMac(PacketFields const& fields) noexcept;
// All zero for a request, which does not know its target; the frame's destination for a reply.
VYN_EXPORT std::optional<MacAddress> defaultArpTargetMac(PacketFields const& fields) noexcept;

// What is known of the switch and the ingress interface; every member is optional.
struct PacketHints {
    std::optional<MacAddress> routerMac;  // that packets to be routed are sent to
    std::optional<MacAddress> hostMac;    // of a host behind the ingress interface
    std::optional<IpAddress> hostIpv4;    // of that host
    std::optional<IpAddress> hostIpv6;
    std::optional<IpAddress> routerIpv4;  // the switch's own in that host's network
};

// Fills in what is missing, so that a legal frame can be built which a router would forward, and
// returns the fields that it filled, in namedFields()' order. Given fields stay as they are, also
// if they contradict one another; a port that is given without TCP or UDP leaves the protocol
// missing.
//
// The kind of packet follows from the addresses, else from `etherType`. If neither is given
// (`etherType` 0), it is IPv6 with ICMPv6 and otherwise IPv4. A field of IP makes it IPv4 even if
// `etherType` is another one.
//
//     eth-dst          of a multicast or broadcast IP packet its group; of another the hint, else
//                      02:00:00:00:00:02; of an ARP reply its target; of all else broadcast
//     eth-src          the hint, else 02:00:00:00:00:01
//     ip-src           the hint, else 192.0.2.1 or 2001:db8::1 (the next one if ip-dst is that)
//     ip-dst           198.51.100.1 or 2001:db8:1::1
//     proto            what ICMP's or TCP's fields say, else UDP
//     sport, dport     49152, 49153
//     icmp-type        an echo request
//     arp-op           a request; addresses as eth-src and ip-src, target the hint or 192.0.2.2
//     ttl, tcp-flags, icmp-code (0), arp-sender-mac, arp-target-mac    as above
VYN_EXPORT std::vector<NamedField> fillDefaults(PacketFields& fields, std::uint16_t etherType,
                                                PacketHints const& hints = {});

}  // namespace PacketTracer
