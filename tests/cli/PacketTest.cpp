#include "cli/Packet.h"

#include <gtest/gtest.h>

#include "PacketTracer/PacketSize.h"

namespace Cli {
namespace {

using PacketTracer::IpAddress;
using PacketTracer::MacAddress;
using PacketTracer::PacketFields;

PacketFields someFields() {
    PacketFields fields;
    fields.ethDst = MacAddress::fromText("02:00:00:00:00:02");
    fields.ethSrc = MacAddress::fromText("02:00:00:00:00:01");
    fields.ipDst = IpAddress::fromText("10.0.0.2");
    fields.ipSrc = IpAddress::fromText("10.0.0.1");
    fields.protocol = PacketTracer::IpProtocol::udp;
    fields.srcPort = 1;
    fields.dstPort = 2;
    return fields;
}

Vanta::Ptr<PacketTracer::Request> requestFor(Packet const& packet) {
    auto const request = PacketTracer::Request::RequestIs({"test", 1});
    packet.describeTo(*request);
    return request;
}

TEST(Packet, ARawFrameIsDescribedByItsBytesAndWhatStandsInThem) {
    std::vector<std::uint8_t> bytes(60, 0x02);
    bytes[12] = 0x88;
    bytes[13] = 0x47;
    Packet const packet = packetOfFrame(bytes);
    auto const request = requestFor(packet);
    EXPECT_EQ(request->frame(), Vanta::Bytes(bytes));
    EXPECT_EQ(request->etherType(), 0x8847);
    EXPECT_TRUE(request->mpls());
    EXPECT_EQ(request->fields(), nullptr);
    EXPECT_EQ(packet.refusalReason(), "the chip cannot trace MPLS packets");
}

TEST(Packet, APacketByFieldsIsDescribedByThem) {
    Packet const packet = packetOfFields(someFields(), 0);
    auto const request = requestFor(packet);
    EXPECT_TRUE(request->frame().empty());
    ASSERT_NE(request->fields(), nullptr);
    EXPECT_EQ(*request->fields(), someFields());
    EXPECT_EQ(request->etherType(), Net::EtherType::ipv4);
    EXPECT_EQ(packet.frame.size(), 60U);
    EXPECT_EQ(packet.text(),
              "02:00:00:00:00:01 to 02:00:00:00:00:02, IPv4 10.0.0.1 to 10.0.0.2 TTL 64, "
              "UDP port 1 to 2");
    EXPECT_EQ(packet.refusalReason(), "");
}

TEST(Packet, FieldsFromWhichNoFrameCanBeBuiltAreShownThemselves) {
    auto fields = someFields();
    fields.protocol.reset();
    Packet const packet = packetOfFields(fields, 0);
    EXPECT_TRUE(packet.frame.empty());
    EXPECT_EQ(packet.text(),
              "eth-dst 02:00:00:00:00:02, eth-src 02:00:00:00:00:01, ip-dst 10.0.0.2, "
              "ip-src 10.0.0.1, sport 1, dport 2");
    EXPECT_NE(packet.refusalReason(), "");
}

TEST(Packet, TheReasonOfARefusalNamesTheFramesLength) {
    EXPECT_EQ(packetOfFrame({}).refusalReason(), "an empty frame cannot be sent");
    EXPECT_EQ(
        packetOfFrame(std::vector<std::uint8_t>(PacketTracer::maximumFrameSize)).refusalReason(),
        "");
    EXPECT_EQ(packetOfFrame(std::vector<std::uint8_t>(PacketTracer::maximumFrameSize + 1))
                  .refusalReason(),
              "a frame of 9237 bytes; at most 9236 can be sent");
    auto fields = someFields();
    fields.length = PacketTracer::maximumFrameSize + 1;
    EXPECT_EQ(packetOfFields(fields, 0).refusalReason(), "a frame of more than 9236 bytes");
}

TEST(Packet, AnMplsEtherTypeBesideFieldsIsMpls) {
    EXPECT_TRUE(packetOfFields(someFields(), Net::EtherType::mplsMulticast).facts.mpls);
}

}  // namespace
}  // namespace Cli
