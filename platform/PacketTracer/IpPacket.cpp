#include "PacketTracer/IpPacket.h"

#include "PacketTracer/IcmpMessage.h"
#include "PacketTracer/PacketDefaults.h"

namespace PacketTracer {
namespace {

constexpr std::size_t ipv4HeaderSize = 20;
constexpr std::size_t ipv6HeaderSize = 40;

// The sum of 16-bit words behind Internet checksums. Of the runs of bytes that are added, only the
// last may have an odd size.
class ChecksumSum {
  public:
    void add16(std::uint32_t word) { sum_ += word; }
    void add(std::span<std::uint8_t const> bytes) {
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            sum_ += i % 2 == 0 ? std::uint64_t{bytes[i]} << 8 : bytes[i];
        }
    }
    // Whole words of 32 bits fold to the same sum, and IPv4's other words are zero.
    void add(IpAddress const& address) {
        sum_ += (address.hi >> 32) + (address.hi & 0xffffffff) + (address.lo >> 32) +
                (address.lo & 0xffffffff);
    }
    std::uint16_t checksum() const {
        std::uint64_t folded = sum_;
        while (folded > 0xffff) {
            folded = (folded & 0xffff) + (folded >> 16);
        }
        return static_cast<std::uint16_t>(~folded);
    }

  private:
    std::uint64_t sum_ = 0;
};

// The checksum of a transport segment whose own field is zero. ICMP alone has no pseudo-header.
std::uint16_t transportChecksum(PacketFields const& fields, std::span<std::uint8_t const> segment) {
    ChecksumSum sum;
    if (fields.protocol != IpProtocol::icmp) {
        sum.add(*fields.ipSrc);
        sum.add(*fields.ipDst);
        sum.add16(static_cast<std::uint32_t>(segment.size()));
        sum.add16(static_cast<std::uint32_t>(*fields.protocol));
    }
    sum.add(segment);
    std::uint16_t const checksum = sum.checksum();
    // UDP sends a computed zero as 0xffff, which sums the same: a zero says that there is no
    // checksum.
    return fields.protocol == IpProtocol::udp && checksum == 0 ? 0xffff : checksum;
}

void addTcp(PacketBytes& packet, PacketFields const& fields) {
    packet.add16(*fields.srcPort);
    packet.add16(*fields.dstPort);
    packet.add32(1);  // sequence number
    packet.add32(0);  // acknowledgement
    packet.add8(5 << 4);
    packet.add8(fields.tcpFlags.value_or(defaultTcpFlags));
    packet.add16(0xffff);  // window
    packet.add16(0);       // checksum
    packet.add16(0);       // urgent pointer
}

void addUdp(PacketBytes& packet, PacketFields const& fields, std::size_t size) {
    packet.add16(*fields.srcPort);
    packet.add16(*fields.dstPort);
    packet.add16(static_cast<std::uint16_t>(size));
    packet.add16(0);  // checksum
}

void addIcmp(PacketBytes& packet, PacketFields const& fields) {
    packet.add8(*fields.icmpType);
    packet.add8(fields.icmpCode.value_or(0));
    packet.add16(0);  // checksum
    packet.add(icmpHeaderRest(fields));
    if (fields.payload.empty()) {
        packet.add(leastIcmpBody(fields));
    }
}

// Returns the offset of the checksum in the segment.
std::size_t addTransportHeader(PacketBytes& packet, PacketFields const& fields, std::size_t size) {
    switch (*fields.protocol) {
        case IpProtocol::tcp:
            addTcp(packet, fields);
            return 16;
        case IpProtocol::udp:
            addUdp(packet, fields, size);
            return 6;
        case IpProtocol::icmp:
        case IpProtocol::icmpv6:
            addIcmp(packet, fields);
            return 2;
    }
    return 0;
}

void addIpv4Header(PacketBytes& packet, PacketFields const& fields, std::size_t size) {
    packet.add8(0x45);
    packet.add8(static_cast<std::uint8_t>(fields.dscp.value_or(0) << 2));
    packet.add16(static_cast<std::uint16_t>(size));
    packet.add16(0);  // identification: nothing is ever a fragment
    packet.add16(fields.dontFragment ? 0x4000 : 0);
    packet.add8(fields.ttl.value_or(defaultTtl(fields)));
    packet.add8(static_cast<std::uint8_t>(*fields.protocol));
    packet.add16(0);  // checksum
    packet.add(fields.ipSrc->octets());
    packet.add(fields.ipDst->octets());
    ChecksumSum sum;
    sum.add(packet.view());
    packet.put16(10, sum.checksum());
}

void addIpv6Header(PacketBytes& packet, PacketFields const& fields, std::size_t size) {
    packet.add32(std::uint32_t{6} << 28 | std::uint32_t{fields.dscp.value_or(0)} << 22);
    packet.add16(static_cast<std::uint16_t>(size - ipv6HeaderSize));
    packet.add8(static_cast<std::uint8_t>(*fields.protocol));
    packet.add8(fields.ttl.value_or(defaultTtl(fields)));
    packet.add(fields.ipSrc->octets());
    packet.add(fields.ipDst->octets());
}

}  // namespace

std::vector<std::uint8_t> ipPacket(PacketFields const& fields, std::size_t size) {
    PacketBytes packet(size);
    bool const isV6 = fields.ipDst->isV6();
    std::size_t const segment = isV6 ? ipv6HeaderSize : ipv4HeaderSize;
    if (isV6) {
        addIpv6Header(packet, fields, size);
    } else {
        addIpv4Header(packet, fields, size);
    }
    std::size_t const checksum = addTransportHeader(packet, fields, size - segment);
    packet.add(fields.payload.view());
    packet.fillTo(size);
    packet.put16(segment + checksum, transportChecksum(fields, packet.view().subspan(segment)));
    return packet.take();
}

}  // namespace PacketTracer
