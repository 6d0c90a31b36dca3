#include "cli/Packet.h"

#include <utility>

#include "PacketTracer/ConstructPacket.h"
#include "PacketTracer/PacketFault.h"
#include "PacketTracer/PacketSize.h"
#include "cli/FrameText.h"
#include "softchip/Frame.h"

namespace Cli {
namespace {

std::string joined(std::vector<PacketTracer::NamedField> const& fields) {
    std::string text;
    for (auto const& field : fields) {
        text += text.empty() ? "" : ", ";
        text += std::string(field.name) + " " + field.value;
    }
    return text;
}

std::string sizeReason(std::size_t size) {
    if (size == 0) {
        return "an empty frame cannot be sent";
    }
    return size > PacketTracer::maximumFrameSize
               ? "a frame of " + std::to_string(size) + " bytes; at most " +
                     std::to_string(PacketTracer::maximumFrameSize) + " can be sent"
               : "";
}

}  // namespace

std::string Packet::text() const {
    if (!frame.empty()) {
        return frameText(SoftChip::parseFrame(frame.view()));
    }
    return fields ? joined(PacketTracer::namedFields(*fields)) : "no bytes";
}

std::string Packet::refusalReason() const {
    if (facts.mpls) {
        return "the chip cannot trace MPLS packets";
    }
    if (facts.gre) {
        return "the chip cannot trace GRE packets";
    }
    if (!fields) {
        return sizeReason(frame.size());
    }
    std::string const fault(PacketTracer::packetFault(*fields, facts.etherType));
    bool const tooLong = fault.empty() && frame.empty();
    return tooLong
               ? "a frame of more than " + std::to_string(PacketTracer::maximumFrameSize) + " bytes"
               : fault;
}

void Packet::describeTo(PacketTracer::Request& request) const {
    request.etherTypeIs(facts.etherType);
    request.mplsIs(facts.mpls);
    request.greIs(facts.gre);
    if (fields) {
        request.fieldsIs(fields);
    } else {
        request.frameIs(frame);
    }
}

Packet packetOfFrame(Vanta::Bytes frame) {
    Packet packet;
    packet.facts = frameFacts(frame.view());
    packet.frame = std::move(frame);
    return packet;
}

Packet packetOfFields(PacketTracer::PacketFields const& fields, std::uint16_t etherType) {
    Packet packet;
    packet.facts.etherType = etherType != 0 ? etherType : PacketTracer::impliedEtherType(fields);
    packet.facts.mpls = Net::EtherType::isMpls(etherType);
    packet.fields = fields;
    packet.frame = PacketTracer::constructFrame(fields, etherType, PacketTracer::maximumFrameSize);
    return packet;
}

}  // namespace Cli
