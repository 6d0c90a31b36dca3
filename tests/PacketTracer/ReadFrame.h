// Reads a frame's fields back, on its own: nothing here is shared with what builds frames.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <vector>

#include "PacketTracer/PacketFields.h"

namespace ReadFrame {

using Span = std::span<std::uint8_t const>;

inline std::uint16_t u16(Span bytes, std::size_t at) {
    return static_cast<std::uint16_t>(bytes[at] * 256 + bytes[at + 1]);
}

template <std::size_t size>
std::array<std::uint8_t, size> octets(Span bytes, std::size_t at) {
    std::array<std::uint8_t, size> found{};
    for (std::size_t i = 0; i < size; ++i) {
        found[i] = bytes[at + i];
    }
    return found;
}

inline PacketTracer::MacAddress macAt(Span bytes, std::size_t at) {
    return PacketTracer::MacAddress::fromOctets(octets<6>(bytes, at));
}
inline PacketTracer::IpAddress ipv4At(Span bytes, std::size_t at) {
    return PacketTracer::IpAddress::fromOctets(Net::Family::ipv4, octets<4>(bytes, at));
}
inline PacketTracer::IpAddress ipv6At(Span bytes, std::size_t at) {
    return PacketTracer::IpAddress::fromOctets(Net::Family::ipv6, octets<16>(bytes, at));
}

// The one's complement sum of 16-bit words with end-around carry: what a receiver computes, 0xffff
// where the checksum is right.
inline std::uint16_t onesSum(std::vector<std::uint8_t> bytes) {
    bytes.resize((bytes.size() + 1) / 2 * 2);
    std::uint16_t sum = 0;
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        std::uint16_t const word = u16(bytes, i);
        sum = static_cast<std::uint16_t>(sum + word);
        if (sum < word) {
            ++sum;
        }
    }
    return sum;
}

struct Read {
    PacketTracer::PacketFields fields;  // without payload and length
    std::uint16_t etherType = 0;
    bool checksumsAreRight = true;
    std::vector<std::uint8_t> payload;  // what IP's length counts behind the last header
    std::size_t trailer = 0;            // bytes behind what IP's or ARP's lengths count
    bool trailerIsZero = true;
};

namespace Detail {

inline void expect(bool holds, char const* what) {
    if (!holds) {
        throw std::runtime_error(what);
    }
}

inline void readTransport(Read& read, Span segment, std::vector<std::uint8_t> pseudoHeader) {
    auto& fields = read.fields;
    auto const protocol = static_cast<PacketTracer::IpProtocol>(pseudoHeader.back());
    fields.protocol = protocol;
    if (protocol == PacketTracer::IpProtocol::icmp) {
        pseudoHeader.clear();
    }
    std::size_t header = 8;
    if (protocol == PacketTracer::IpProtocol::tcp || protocol == PacketTracer::IpProtocol::udp) {
        fields.srcPort = u16(segment, 0);
        fields.dstPort = u16(segment, 2);
        if (protocol == PacketTracer::IpProtocol::tcp) {
            fields.tcpFlags = segment[13];
            header = (segment[12] >> 4) * std::size_t{4};
        } else {
            expect(u16(segment, 4) == segment.size(), "UDP's length");
            expect(u16(segment, 6) != 0, "UDP's checksum is there");
        }
    } else {
        fields.icmpType = segment[0];
        fields.icmpCode = segment[1];
    }
    pseudoHeader.insert(pseudoHeader.end(), segment.begin(), segment.end());
    read.checksumsAreRight = read.checksumsAreRight && onesSum(pseudoHeader) == 0xffff;
    read.payload.assign(segment.begin() + static_cast<std::ptrdiff_t>(header), segment.end());
}

inline std::vector<std::uint8_t> pseudoHeaderOf(Span addresses, std::size_t size,
                                                std::uint8_t protocol) {
    std::vector<std::uint8_t> header(addresses.begin(), addresses.end());
    for (unsigned shift : {24U, 16U, 8U, 0U}) {
        header.push_back(static_cast<std::uint8_t>(size >> shift));
    }
    header.insert(header.end(), {0, 0, 0, protocol});
    return header;
}

inline std::size_t readIpv4(Read& read, Span packet) {
    auto& fields = read.fields;
    expect(packet[0] == 0x45, "version and header length");
    std::size_t const size = u16(packet, 2);
    fields.dscp = packet[1] >> 2;
    expect((packet[1] & 3) == 0, "no ECN");
    fields.dontFragment = (packet[6] & 0x40) != 0;
    expect((packet[6] & 0xbf) == 0 && packet[7] == 0, "no fragment");
    fields.ttl = packet[8];
    fields.ipSrc = ipv4At(packet, 12);
    fields.ipDst = ipv4At(packet, 16);
    read.checksumsAreRight = onesSum({packet.begin(), packet.begin() + 20}) == 0xffff;
    readTransport(read, packet.subspan(20, size - 20),
                  pseudoHeaderOf(packet.subspan(12, 8), size - 20, packet[9]));
    return size;
}

inline std::size_t readIpv6(Read& read, Span packet) {
    auto& fields = read.fields;
    unsigned const first = u16(packet, 0);
    expect(first >> 12 == 6, "version");
    std::size_t const size = u16(packet, 4);
    fields.dscp = static_cast<std::uint8_t>(first >> 6 & 0x3f);
    fields.ttl = packet[7];
    fields.ipSrc = ipv6At(packet, 8);
    fields.ipDst = ipv6At(packet, 24);
    readTransport(read, packet.subspan(40, size),
                  pseudoHeaderOf(packet.subspan(8, 32), size, packet[6]));
    return 40 + size;
}

inline std::size_t readArp(Read& read, Span packet) {
    auto& arp = read.fields.arp.emplace();
    expect(u16(packet, 0) == 1 && u16(packet, 2) == 0x800, "ARP for Ethernet and IPv4");
    expect(packet[4] == 6 && packet[5] == 4, "ARP's address lengths");
    arp.operation = static_cast<PacketTracer::ArpOperation>(u16(packet, 6));
    arp.senderMac = macAt(packet, 8);
    arp.senderIp = ipv4At(packet, 14);
    arp.targetMac = macAt(packet, 18);
    arp.targetIp = ipv4At(packet, 24);
    return 28;
}

inline std::size_t readNetwork(Read& read, Span packet) {
    switch (read.etherType) {
        case 0x0800:
            return readIpv4(read, packet);
        case 0x86dd:
            return readIpv6(read, packet);
        case 0x0806:
            return readArp(read, packet);
        default:
            read.payload.assign(packet.begin(), packet.end());
            return packet.size();
    }
}

}  // namespace Detail

// Errors: std::runtime_error where the frame is not what such a frame must be.
inline Read readFrame(Span frame) {
    Read read;
    read.fields.ethDst = macAt(frame, 0);
    read.fields.ethSrc = macAt(frame, 6);
    std::size_t at = 12;
    while (u16(frame, at) == 0x8100 || u16(frame, at) == 0x88a8) {
        unsigned const tag = u16(frame, at + 2);
        read.fields.tags.push_back({u16(frame, at), static_cast<std::uint16_t>(tag & 0xfff),
                                    static_cast<std::uint8_t>(tag >> 13), (tag & 0x1000) != 0});
        at += 4;
    }
    read.etherType = u16(frame, at);
    std::size_t const end = at + 2 + Detail::readNetwork(read, frame.subspan(at + 2));
    for (auto const byte : frame.subspan(end)) {
        ++read.trailer;
        read.trailerIsZero = read.trailerIsZero && byte == 0;
    }
    return read;
}

}  // namespace ReadFrame
