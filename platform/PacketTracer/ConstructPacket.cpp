#include "PacketTracer/ConstructPacket.h"

namespace PacketTracer {

Vanta::Bytes constructPacket(RequestId const&, Vanta::Ptr<Request const> const& request,
                             std::uint32_t maxFrameSize) {
    return request->frame().size() <= maxFrameSize ? request->frame() : Vanta::Bytes();
}

}  // namespace PacketTracer
