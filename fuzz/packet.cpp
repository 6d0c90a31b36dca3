// A packet described by fields: built, read back by two readers, compared.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <optional>

#include "PacketTracer/ConstructPacket.h"
#include "PacketTracer/PacketFault.h"
#include "PacketTracer/PacketSize.h"
#include "Target.h"
#include "softchip/Frame.h"
#include "tests/PacketTracer/ReadFrame.h"

namespace {

using namespace PacketTracer;
using Fuzz::check;

class Draw {
  public:
    Draw(std::uint8_t const* data, std::size_t size) : provider_(data, size) {}

    PacketFields fields() {
        PacketFields fields;
        maybe(fields.ethDst, [&] { return MacAddress::fromOctets(octets<6>()); });
        maybe(fields.ethSrc, [&] { return MacAddress::fromOctets(octets<6>()); });
        fields.tags.resize(provider_.ConsumeIntegralInRange<std::size_t>(0, 3));
        for (auto& tag : fields.tags) {
            tag = {pick({0x8100, 0x88a8, 0x9100}), number<std::uint16_t>(), number<std::uint8_t>(),
                   provider_.ConsumeBool()};
        }
        maybe(fields.arp, [&] { return arp(); });
        maybe(fields.ipDst, [&] { return address(); });
        maybe(fields.ipSrc, [&] { return address(); });
        maybe(fields.ttl, [&] { return number<std::uint8_t>(); });
        maybe(fields.dscp, [&] { return number<std::uint8_t>(); });
        fields.dontFragment = provider_.ConsumeBool();
        maybe(fields.protocol, [&] { return static_cast<IpProtocol>(pick({1, 6, 17, 58})); });
        maybe(fields.srcPort, [&] { return number<std::uint16_t>(); });
        maybe(fields.dstPort, [&] { return number<std::uint16_t>(); });
        maybe(fields.tcpFlags, [&] { return number<std::uint8_t>(); });
        maybe(fields.icmpType, [&] { return number<std::uint8_t>(); });
        maybe(fields.icmpCode, [&] { return number<std::uint8_t>(); });
        maybe(fields.length, [&] { return number<std::uint32_t>() % 10000; });
        return fields;
    }
    std::uint16_t etherType() {
        return provider_.ConsumeBool() ? pick({0, 0x800, 0x806, 0x86dd, 0x88b5})
                                       : number<std::uint16_t>();
    }
    std::uint32_t limit() {
        return provider_.ConsumeBool() ? maximumFrameSize : number<std::uint16_t>();
    }
    // What is left.
    std::vector<std::uint8_t> payload() { return provider_.ConsumeRemainingBytes<std::uint8_t>(); }

  private:
    template <class T>
    T number() {
        return provider_.ConsumeIntegral<T>();
    }
    std::uint16_t pick(std::initializer_list<std::uint16_t const> values) {
        return provider_.PickValueInArray(values);
    }
    template <std::size_t size>
    std::array<std::uint8_t, size> octets() {
        std::array<std::uint8_t, size> octets{};
        for (auto& octet : octets) {
            octet = number<std::uint8_t>();
        }
        return octets;
    }
    IpAddress address() {
        return provider_.ConsumeBool() ? IpAddress::fromOctets(Net::Family::ipv6, octets<16>())
                                       : IpAddress::fromOctets(Net::Family::ipv4, octets<4>());
    }
    ArpFields arp() {
        ArpFields arp;
        maybe(arp.operation, [&] { return static_cast<ArpOperation>(pick({1, 2, 3})); });
        maybe(arp.senderMac, [&] { return MacAddress::fromOctets(octets<6>()); });
        maybe(arp.senderIp, [&] { return address(); });
        maybe(arp.targetMac, [&] { return MacAddress::fromOctets(octets<6>()); });
        maybe(arp.targetIp, [&] { return address(); });
        return arp;
    }
    template <class T, class Value>
    void maybe(std::optional<T>& field, Value value) {
        if (provider_.ConsumeBool()) {
            field = value();
        }
    }

    FuzzedDataProvider provider_;
};

template <class T>
bool isKept(std::optional<T> const& given, std::optional<T> const& read) {
    return !given || given == read;
}

// The frame holds the fields that were given.
void checkRead(PacketFields const& given, ReadFrame::Read const& read) {
    PacketFields const& fields = read.fields;
    check(read.checksumsAreRight, "checksums are right");
    check(read.trailerIsZero, "padding is zero");
    check(given.ethDst == fields.ethDst && given.ethSrc == fields.ethSrc, "Ethernet addresses");
    check(given.tags == fields.tags, "tags");
    check(given.arp.has_value() == fields.arp.has_value(), "ARP");
    if (given.arp) {
        check(given.arp->operation == fields.arp->operation &&
                  isKept(given.arp->senderMac, fields.arp->senderMac) &&
                  given.arp->senderIp == fields.arp->senderIp &&
                  isKept(given.arp->targetMac, fields.arp->targetMac) &&
                  given.arp->targetIp == fields.arp->targetIp,
              "ARP's fields");
    }
    check(given.ipDst == fields.ipDst && given.ipSrc == fields.ipSrc, "IP addresses");
    check(given.protocol == fields.protocol, "protocol");
    check(given.dontFragment == fields.dontFragment, "don't fragment");
    check(isKept(given.ttl, fields.ttl) && isKept(given.dscp, fields.dscp), "TTL and DSCP");
    check(given.srcPort == fields.srcPort && given.dstPort == fields.dstPort, "ports");
    check(isKept(given.tcpFlags, fields.tcpFlags), "TCP flags");
    check(given.icmpType == fields.icmpType && isKept(given.icmpCode, fields.icmpCode), "ICMP");
}

// The chip's parser agrees.
void checkParsed(ReadFrame::Read const& read, std::span<std::uint8_t const> frame) {
    auto const parsed = SoftChip::parseFrame(frame);
    check(parsed.l2Fault == SoftChip::L2Fault::none && parsed.l3Fault == SoftChip::L3Fault::none,
          "the chip finds no fault");
    check(parsed.tagCount == read.fields.tags.size(), "the chip finds the tags");
    check(parsed.etherType == read.etherType, "the chip finds the EtherType");
    check(parsed.hasIp == read.fields.ipDst.has_value(), "the chip finds IP");
    check((parsed.l3 == SoftChip::L3::arp) == read.fields.arp.has_value(), "the chip finds ARP");
    if (read.fields.ipDst) {
        check(parsed.protocol == static_cast<std::uint8_t>(*read.fields.protocol),
              "the chip finds the protocol");
        check(parsed.ttl == read.fields.ttl && parsed.dscp == read.fields.dscp,
              "the chip finds TTL and DSCP");
    }
    if (read.fields.srcPort) {
        check(parsed.hasPorts() && parsed.srcPort == read.fields.srcPort &&
                  parsed.dstPort == read.fields.dstPort,
              "the chip finds the ports");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Draw draw(data, size);
    std::uint16_t const etherType = draw.etherType();
    std::uint32_t const limit = draw.limit();
    PacketFields fields = draw.fields();
    auto const payload = draw.payload();
    fields.payload = payload;
    auto const frame = constructFrame(fields, etherType, limit);
    bool const isLegal = packetFault(fields, etherType).empty();
    if (frame.empty()) {
        check(!isLegal || frameSize(fields) > limit, "what has no fault and fits is built");
        return 0;
    }
    check(isLegal, "what has a fault is not built");
    check(frame.size() >= 60 && frame.size() <= limit, "a frame has at least 60 bytes and fits");
    check(frame.size() == frameSize(fields), "a frame is as long as was said");
    check(!fields.length || frame.size() == std::max<std::uint32_t>(*fields.length, 60),
          "a frame is as long as was asked for");
    auto const read = ReadFrame::readFrame(frame.view());
    checkRead(fields, read);
    // Without IP and ARP nothing says where the payload ends and the padding begins.
    if (!payload.empty() && fields.ipDst) {
        check(read.payload == payload, "the payload");
    } else if (!payload.empty()) {
        check(read.payload.size() >= payload.size() &&
                  std::equal(payload.begin(), payload.end(), read.payload.begin()),
              "the payload, padded");
    }
    checkParsed(read, frame.view());
    return 0;
}
