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
// A whole frame of the request's own is shared, never copied, and not looked into. Without one the
// request's fields are built into a frame, as constructFrame() does; then the MPLS and GRE flags
// contradict them. Without both nothing can be built. Thread: the event thread.
VYN_EXPORT Vanta::Bytes constructPacket(RequestId const& id,
                                        Vanta::Ptr<Request const> const& request,
                                        std::uint32_t maxFrameSize);

// The frame that the fields describe; no bytes if packetFault() has something against it, or if it
// would be longer than `maxFrameSize` bytes.
//
// Lengths and checksums are right, and the frame is padded with zeros to 60 bytes. A length below
// 60 is raised to 60 and IP's length then counts what was asked for. A length without a payload
// fills the packet with zeros, ARP's frame behind its end. What is not given and need not be is as
// PacketTracer/PacketDefaults.h says. Thread: the event thread.
VYN_EXPORT Vanta::Bytes constructFrame(PacketFields const& fields, std::uint16_t etherType,
                                       std::uint32_t maxFrameSize);

}  // namespace PacketTracer
