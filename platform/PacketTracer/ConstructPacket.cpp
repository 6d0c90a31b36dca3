#include "PacketTracer/ConstructPacket.h"

#include "PacketTracer/IpPacket.h"
#include "PacketTracer/PacketDefaults.h"
#include "PacketTracer/PacketFault.h"
#include "PacketTracer/PacketSize.h"

namespace PacketTracer {
namespace {

void addEthernet(PacketBytes& frame, PacketFields const& fields, std::uint16_t etherType) {
    frame.add(fields.ethDst->octets());
    frame.add(fields.ethSrc->octets());
    for (VlanTag const& tag : fields.tags) {
        frame.add16(tag.tpid);
        frame.add16(tag.control());
    }
    std::uint16_t const implied = impliedEtherType(fields);
    frame.add16(implied != 0 ? implied : etherType);
}

void addArp(PacketBytes& frame, PacketFields const& fields) {
    ArpFields const& arp = *fields.arp;
    frame.add16(1);  // Ethernet
    frame.add16(Net::EtherType::ipv4);
    frame.add8(6);
    frame.add8(4);
    frame.add16(static_cast<std::uint16_t>(*arp.operation));
    frame.add((arp.senderMac ? arp.senderMac : defaultArpSenderMac(fields))->octets());
    frame.add(arp.senderIp->octets());
    frame.add((arp.targetMac ? arp.targetMac : defaultArpTargetMac(fields))->octets());
    frame.add(arp.targetIp->octets());
}

void addContent(PacketBytes& frame, PacketFields const& fields) {
    if (fields.arp) {
        addArp(frame, fields);
    } else if (fields.ipDst) {
        frame.add(ipPacket(fields, contentSize(fields) - frame.size()));
    } else {
        frame.add(fields.payload.view());
    }
}

}  // namespace

Vanta::Bytes constructFrame(PacketFields const& fields, std::uint16_t etherType,
                            std::uint32_t maxFrameSize) {
    if (!packetFault(fields, etherType).empty() || frameSize(fields) > maxFrameSize) {
        return {};
    }
    PacketBytes frame(frameSize(fields));
    addEthernet(frame, fields, etherType);
    addContent(frame, fields);
    frame.fillTo(frameSize(fields));
    return frame.view();
}

Vanta::Bytes constructPacket(RequestId const&, Vanta::Ptr<Request const> const& request,
                             std::uint32_t maxFrameSize) {
    Vanta::Bytes const& frame = request->frame();
    if (!frame.empty()) {
        return frame.size() <= maxFrameSize ? frame : Vanta::Bytes();
    }
    PacketFields const* const fields = request->fields();
    if (fields == nullptr || request->mpls() || request->gre()) {
        return {};
    }
    return constructFrame(*fields, request->etherType(), maxFrameSize);
}

}  // namespace PacketTracer
