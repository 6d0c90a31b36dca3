// Building the packet that a request describes.
#pragma once

#include <cstdint>

#include "PacketTracer/Request.h"
#include "Vanta/Bytes.h"
#include "VynExport.h"

namespace PacketTracer {

// The bytes of the frame that `request` describes; none if it cannot be built or would be longer
// than `maxFrameSize` bytes. A whole frame of the request's own is shared, never copied.
// Thread: the event thread.
VYN_EXPORT Vanta::Bytes constructPacket(RequestId const& id,
                                        Vanta::Ptr<Request const> const& request,
                                        std::uint32_t maxFrameSize);

}  // namespace PacketTracer
