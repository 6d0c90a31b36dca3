// How long the frame is that a packet's fields describe.
//
// The sizes mean nothing for fields that packetFault() refuses. Thread: the event thread.
#pragma once

#include <cstdint>

#include "PacketTracer/PacketFields.h"
#include "VynExport.h"

namespace PacketTracer {

// The shortest frame; like every length here without the check sequence.
inline constexpr std::uint32_t minimumFrameSize = 60;
// The longest frame that is traced.
inline constexpr std::uint32_t maximumFrameSize = 9236;

// The Ethernet header with its tags.
VYN_EXPORT std::uint64_t ethernetSize(PacketFields const& fields) noexcept;
// All headers, and what an ICMP type demands behind its header where no payload is given.
VYN_EXPORT std::uint64_t headerSize(PacketFields const& fields) noexcept;
// The frame before it is padded: the headers with the payload, or without one with zeros up to the
// length that was asked for.
VYN_EXPORT std::uint64_t contentSize(PacketFields const& fields) noexcept;
// The whole frame.
VYN_EXPORT std::uint64_t frameSize(PacketFields const& fields) noexcept;

}  // namespace PacketTracer
