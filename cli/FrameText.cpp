#include "cli/FrameText.h"

namespace Cli {
namespace {

using SoftChip::L2Fault;
using SoftChip::L3;
using SoftChip::L3Fault;
using SoftChip::L4;
using SoftChip::ParsedFrame;

std::string ports(ParsedFrame const& frame) {
    return " port " + std::to_string(frame.srcPort) + " to " + std::to_string(frame.dstPort);
}

std::string icmp(ParsedFrame const& frame) {
    return " type " + std::to_string(frame.icmpType) + " code " + std::to_string(frame.icmpCode);
}

std::string l4Text(ParsedFrame const& frame) {
    switch (frame.l4) {
        case L4::tcp:
            return ", TCP" + ports(frame);
        case L4::udp:
            return ", UDP" + ports(frame);
        case L4::icmp:
            return ", ICMP" + icmp(frame);
        case L4::icmpv6:
            return ", ICMPv6" + icmp(frame);
        case L4::none:
            break;
    }
    return ", protocol " + std::to_string(frame.protocol);
}

std::string addresses(ParsedFrame const& frame) {
    return " " + frame.srcIp.text() + " to " + frame.dstIp.text();
}

std::string ipText(ParsedFrame const& frame) {
    if (!frame.hasIp) {
        return "";
    }
    return addresses(frame) + " TTL " + std::to_string(frame.ttl) +
           (frame.fragment ? ", fragment" : "") + l4Text(frame);
}

std::string l3Text(ParsedFrame const& frame) {
    switch (frame.l3) {
        case L3::ipv4:
            return ", IPv4" + ipText(frame);
        case L3::ipv6:
            return ", IPv6" + ipText(frame);
        case L3::arp:
            return frame.l3Fault == L3Fault::none ? ", ARP" + addresses(frame) : ", ARP";
        case L3::none:
            break;
    }
    return ", EtherType " + Net::EtherType::text(frame.etherType);
}

}  // namespace

std::string_view words(L3Fault fault) {
    switch (fault) {
        case L3Fault::none:
            return "sound";
        case L3Fault::truncated:
            return "truncated";
        case L3Fault::version:
            return "wrong version";
        case L3Fault::headerLength:
            return "header length below five words";
        case L3Fault::totalLength:
            return "total length below the header's";
        case L3Fault::checksum:
            return "wrong header checksum";
        case L3Fault::arpForm:
            return "not for Ethernet and IPv4";
    }
    return "unknown";
}

std::string frameText(ParsedFrame const& frame) {
    switch (frame.l2Fault) {
        case L2Fault::none:
            break;
        case L2Fault::tooShort:
            return "no whole Ethernet header";
        case L2Fault::tagTooShort:
            return "no whole tag";
    }
    auto result = frame.src.text() + " to " + frame.dst.text();
    for (unsigned i = 0; i < frame.tagCount; ++i) {
        result += ", tag " + std::to_string(frame.tags[i].vlan);
    }
    result += l3Text(frame);
    if (frame.l3Fault != L3Fault::none) {
        result.append(" (").append(words(frame.l3Fault)).append(")");
    }
    return result;
}

}  // namespace Cli
