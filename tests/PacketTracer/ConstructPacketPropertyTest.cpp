// Frames of every kind, with everything in them drawn at random, are read back.
#include "PacketTracer/ConstructPacket.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "PacketTracer/PacketDefaults.h"
#include "PacketTracer/PacketFault.h"
#include "PacketTracer/PacketSize.h"
#include "PacketTracer/ReadFrame.h"
#include "PacketTracer/SomeFields.h"

namespace {

using namespace SomeFields;

template <std::size_t count>
std::array<std::uint8_t, count> anyOctets() {
    std::array<std::uint8_t, count> octets{};
    for (auto& octet : octets) {
        octet = *rc::gen::arbitrary<std::uint8_t>();
    }
    return octets;
}

MacAddress anyMac() {
    return MacAddress::fromOctets(anyOctets<6>());
}

MacAddress anyHostMac() {
    auto octets = anyOctets<6>();
    octets[0] &= 0xfe;
    return MacAddress::fromOctets(octets);
}

IpAddress anyIpv4() {
    return IpAddress::fromOctets(Net::Family::ipv4, anyOctets<4>());
}

IpAddress anyUnicast(bool isV6) {
    auto const address =
        isV6 ? IpAddress::fromOctets(Net::Family::ipv6, anyOctets<16>()) : anyIpv4();
    RC_PRE(!address.isMulticast() && !address.isBroadcast() && !address.isUnspecified());
    return address;
}

std::vector<VlanTag> anyTags() {
    std::vector<VlanTag> tags(*rc::gen::inRange<std::size_t>(0, 3));
    for (VlanTag& tag : tags) {
        bool const isService = &tag == &tags.front() && *rc::gen::arbitrary<bool>();
        tag = {isService ? Net::EtherType::serviceVlan : Net::EtherType::vlan,
               *rc::gen::inRange<std::uint16_t>(0, 4095), *rc::gen::inRange<std::uint8_t>(0, 8),
               *rc::gen::arbitrary<bool>()};
    }
    return tags;
}

PacketFields anyEthernet() {
    PacketFields fields;
    fields.ethDst = anyMac();
    fields.ethSrc = anyHostMac();
    fields.tags = anyTags();
    return fields;
}

std::vector<std::uint8_t> anyPayload() {
    std::vector<std::uint8_t> payload(*rc::gen::inRange<std::size_t>(0, 200));
    for (auto& byte : payload) {
        byte = *rc::gen::arbitrary<std::uint8_t>();
    }
    return payload;
}

void addAnyTransport(PacketFields& fields, bool isV6) {
    fields.protocol = *rc::gen::element(IpProtocol::tcp, IpProtocol::udp,
                                        isV6 ? IpProtocol::icmpv6 : IpProtocol::icmp);
    if (fields.protocol == IpProtocol::tcp || fields.protocol == IpProtocol::udp) {
        fields.srcPort = *rc::gen::arbitrary<std::uint16_t>();
        fields.dstPort = *rc::gen::arbitrary<std::uint16_t>();
        if (fields.protocol == IpProtocol::tcp) {
            fields.tcpFlags = *rc::gen::arbitrary<std::uint8_t>();
        }
    } else {
        fields.icmpType = *rc::gen::arbitrary<std::uint8_t>();
        fields.icmpCode = *rc::gen::arbitrary<std::uint8_t>();
    }
}

PacketFields anyIp(bool isV6) {
    PacketFields fields = anyEthernet();
    fields.ipSrc = anyUnicast(isV6);
    fields.ipDst = anyUnicast(isV6);
    fields.ttl = *rc::gen::arbitrary<std::uint8_t>();
    fields.dscp = *rc::gen::inRange<std::uint8_t>(0, 64);
    fields.dontFragment = !isV6 && *rc::gen::arbitrary<bool>();
    addAnyTransport(fields, isV6);
    return fields;
}

PacketFields anyIp() {
    return anyIp(*rc::gen::arbitrary<bool>());
}

PacketFields anyArp() {
    PacketFields fields = anyEthernet();
    ArpFields& arp = fields.arp.emplace();
    arp.operation = *rc::gen::element(ArpOperation::request, ArpOperation::reply);
    arp.senderMac = anyHostMac();
    arp.senderIp = anyUnicast(false);
    arp.targetMac = anyMac();
    arp.targetIp = anyIpv4();
    return fields;
}

Vanta::Bytes built(PacketFields const& fields) {
    RC_ASSERT(packetFault(fields, 0) == "");
    return constructFrame(fields, 0, noLimit);
}

RC_GTEST_PROP(AnIpFrame, ReadsBackAsTheFieldsItWasBuiltFrom, ()) {
    PacketFields const fields = anyIp();
    auto const read = ReadFrame::readFrame(built(fields).view());
    RC_ASSERT(read.fields == fields);
}

RC_GTEST_PROP(AnIpFrame, HasRightChecksumsWithAnyPayload, ()) {
    PacketFields fields = anyIp();
    auto const payload = anyPayload();
    fields.payload = payload;
    RC_PRE(packetFault(fields, 0).empty());  // some ICMP types demand a longer one
    auto const read = ReadFrame::readFrame(built(fields).view());
    RC_ASSERT(read.checksumsAreRight);
    RC_ASSERT(payload.empty() || read.payload == payload);
}

RC_GTEST_PROP(AnIpFrame, HasRightChecksumsAtAnyLength, ()) {
    PacketFields fields = anyIp();
    fields.length = *rc::gen::inRange<std::uint32_t>(130, 9300);
    auto const frame = built(fields);
    auto const read = ReadFrame::readFrame(frame.view());
    RC_ASSERT(frame.size() == *fields.length);
    RC_ASSERT(read.checksumsAreRight);
    RC_ASSERT(read.trailer == 0U);
}

RC_GTEST_PROP(AnIpFrame, IsPaddedWithZerosAndOnlyBelowSixtyBytes, ()) {
    PacketFields fields = anyIp();
    fields.payload = anyPayload();
    RC_PRE(packetFault(fields, 0).empty());
    auto const frame = built(fields);
    auto const read = ReadFrame::readFrame(frame.view());
    RC_ASSERT(read.trailerIsZero);
    RC_ASSERT(frame.size() == std::max<std::size_t>(frame.size() - read.trailer, 60));
}

RC_GTEST_PROP(AnIpFrame, CountsTheLengthAskedForBelowSixtyBytes, ()) {
    PacketFields fields = anyIp(false);
    RC_PRE(headerSize(fields) < 60);  // some ICMP types are longer by themselves
    fields.length =
        *rc::gen::inRange<std::uint32_t>(static_cast<std::uint32_t>(headerSize(fields)), 60);
    auto const frame = built(fields);
    auto const read = ReadFrame::readFrame(frame.view());
    RC_ASSERT(frame.size() == 60U);
    RC_ASSERT(frame.size() - read.trailer == *fields.length);
    RC_ASSERT(read.checksumsAreRight);
}

RC_GTEST_PROP(AnArpFrame, ReadsBackAsTheFieldsItWasBuiltFrom, ()) {
    PacketFields const fields = anyArp();
    auto const read = ReadFrame::readFrame(built(fields).view());
    RC_ASSERT(read.fields == fields);
    RC_ASSERT(read.trailerIsZero);
}

// Any bits and pieces at all: either a fault or a legal frame, and no byte more than allowed.
PacketFields anyPieces() {
    PacketFields fields = *rc::gen::element(0, 1, 2) == 0 ? anyArp() : anyIp();
    auto const drop = [](auto& field) {
        if (*rc::gen::inRange(0, 4) == 0) {
            field.reset();
        }
    };
    drop(fields.ethDst);
    drop(fields.ethSrc);
    drop(fields.ipDst);
    drop(fields.ipSrc);
    drop(fields.arp);
    drop(fields.ttl);
    drop(fields.protocol);
    drop(fields.srcPort);
    drop(fields.dstPort);
    drop(fields.tcpFlags);
    drop(fields.icmpType);
    return fields;
}

RC_GTEST_PROP(AnyPieces, GiveALegalFrameExactlyWhereNoFaultIsNamed, ()) {
    PacketFields const fields = anyPieces();
    auto const etherType = *rc::gen::element<std::uint16_t>(0, 0x800, 0x806, 0x86dd, 0x88b5);
    auto const frame = constructFrame(fields, etherType, 1500);
    RC_ASSERT(frame.empty() == !packetFault(fields, etherType).empty());
    if (!frame.empty()) {
        RC_ASSERT(frame.size() >= 60U);
        RC_ASSERT(ReadFrame::readFrame(frame.view()).checksumsAreRight);
    }
}

RC_GTEST_PROP(AnyPieces, KeepWhatIsGivenWhenTheyAreCompleted, ()) {
    PacketFields const given = anyPieces();
    PacketFields completed = given;
    auto const filled = fillDefaults(completed, 0);
    auto const before = namedFields(given);
    auto const after = namedFields(completed);
    RC_ASSERT(after.size() == before.size() + filled.size());
    for (auto const& field : before) {
        // Two tags may be alike.
        RC_ASSERT(std::count(after.begin(), after.end(), field) ==
                  std::count(before.begin(), before.end(), field));
    }
}

RC_GTEST_PROP(AnyPieces, OfOneVersionAndProtocolCanBeBuiltWhenTheyAreCompleted, ()) {
    PacketFields fields = anyIp();
    bool const isV6 = fields.ipDst->isV6();
    if (*rc::gen::arbitrary<bool>()) {
        fields.ipSrc.reset();
    }
    fields.ethDst.reset();
    fields.ethSrc.reset();
    fields.ttl.reset();
    fields.srcPort.reset();
    fields.icmpType.reset();
    fillDefaults(fields, isV6 ? Net::EtherType::ipv6 : Net::EtherType::ipv4);
    RC_ASSERT(packetFault(fields, 0) == "");
}

}  // namespace
