// What ICMP and ICMPv6 messages carry behind type, code and checksum.
//
// Messages of some types are legal only with more than the eight bytes of header:
//     ICMP 3, 4, 5, 11, 12; ICMPv6 1 to 4   the datagram that the message is about: its IP header
//                                           and eight bytes
//     ICMP 13, 14 and 17, 18                three timestamps; an address mask
//     ICMPv6 130 to 132                     a multicast group
//     ICMPv6 134                            two timers
//     ICMPv6 135, 136 and 137               the target; target and destination
//     ICMPv6 138; 139, 140; 149; 157, 158   the rest of a fixed header; a nonce; a component's
//                                           number; a host's identifier and address
// Any other type is taken to be complete with its header. Thread: the event thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "PacketTracer/PacketFields.h"

namespace PacketTracer {

// The bytes that a message of this type has at least behind its header. Precondition: IP addresses.
std::size_t leastIcmpBodySize(PacketFields const& fields) noexcept;

// These bytes, made up where no payload is given. A quoted datagram goes between the packet's two
// addresses, the other way; targets and groups are the packet's own addresses; the rest is zero.
// Precondition: no fault.
std::vector<std::uint8_t> leastIcmpBody(PacketFields const& fields);

// The second half of the header: for an echo identifier 1 and sequence number 1, for ICMPv6's
// "packet too big" an MTU of 1280 bytes, otherwise zeros. Precondition: no fault.
std::array<std::uint8_t, 4> icmpHeaderRest(PacketFields const& fields) noexcept;

}  // namespace PacketTracer
