// Building the packet that a request describes.
#pragma once

#include <cstdint>

#include "PacketTracer/PacketFields.h"
#include "PacketTracer/Request.h"
#include "Vanta/Bytes.h"
#include "VynExport.h"

namespace PacketTracer {

// The bytes of the frame that `request` describes; none if it cannot be built or would be longer
// than `maxFrameSize` bytes.
//
// If the request has a whole frame, the result shares it: it is neither copied nor inspected.
// Otherwise the request's fields are built into a frame, as constructFrame() does; fields with the
// MPLS or GRE flag set are a contradiction and cannot be built. Nor can a request without frame and
// fields. Thread: the event thread.
VYN_EXPORT Vanta::Bytes constructPacket(RequestId const& id,
                                        Vanta::Ptr<Request const> const& request,
                                        std::uint32_t maxFrameSize);

// The frame that the fields describe; no bytes if packetFault() names a fault, or if the frame
// would be longer than `maxFrameSize` bytes.
//
// Lengths and checksums are right, and the frame is padded with zeros to 60 bytes. A length below
// 60 is raised to 60 and IP's length then counts what was asked for. A length without a payload
// fills the packet with zeros; for ARP they follow the packet, as padding. Optional fields that are
// not given have the values that PacketTracer/PacketDefaults.h states. Thread: the event thread.
VYN_EXPORT Vanta::Bytes constructFrame(PacketFields const& fields, std::uint16_t etherType,
                                       std::uint32_t maxFrameSize);

}  // namespace PacketTracer
