// Whether a frame can be built from a packet's fields, and if not, why.
//
// It can, if all of this holds. Optional fields that are not listed need not be given.
//     Ethernet   both addresses; the source is no group
//     tags       two at most; the outer one 0x8100 or 0x88a8, an inner one 0x8100; VLAN 0 to 4094;
//                priority 0 to 7
//     EtherType  0 (not given: it follows from the addresses) or the one that the addresses demand;
//                without IP addresses and ARP one that stands by itself: not below 0x600 (that is
//                a length), not IPv4, IPv6, ARP, a tag or MPLS
//     ARP        a request or reply, both IPv4 addresses, the sender no group, no payload, nothing
//                of IP beside it
//     IP         both addresses, of one version; the source no group, the destination not
//                unspecified; DSCP 0 to 63; don't-fragment with IPv4 alone; a protocol
//     TCP, UDP   both ports; TCP flags with TCP alone; no ICMP type or code
//     ICMP       with IPv4, ICMPv6 with IPv6; a type; no ports; a payload, if there is one, holds
//                what that type demands (PacketTracer/IcmpMessage.h)
//     no IP      nothing of IP: TTL, DSCP, don't-fragment, protocol, ports, flags, type, code
//     length     not shorter than the headers; with a payload the length that it gives; an IP
//                packet within 65535 bytes (IPv6: behind its header)
//
// Thread: the event thread.
#pragma once

#include <cstdint>
#include <string_view>

#include "PacketTracer/PacketFields.h"
#include "VynExport.h"

namespace PacketTracer {

// What keeps a frame from being built, as a few words for people ("a port without TCP or UDP"); the
// first of several. Empty if nothing does. `etherType` is the request's, 0 if it is not given.
VYN_EXPORT std::string_view packetFault(PacketFields const& fields, std::uint16_t etherType);

}  // namespace PacketTracer
