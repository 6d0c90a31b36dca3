#include "PacketTracer/ConstructPacket.h"

#include <gtest/gtest.h>

#include <string>

#include "PacketTracer/PacketFault.h"
#include "PacketTracer/SomeFields.h"

namespace {

using namespace SomeFields;

std::string hexOf(PacketFields const& fields, std::uint16_t etherType = 0) {
    EXPECT_EQ(packetFault(fields, etherType), "");
    return Vanta::hexText(constructFrame(fields, etherType, noLimit).view());
}

std::string zeros(std::size_t count) {
    return std::string(2 * count, '0');
}

std::size_t sizeOf(PacketFields const& fields) {
    return constructFrame(fields, 0, noLimit).size();
}

unsigned ipv4TotalLength(Vanta::Bytes const& frame) {
    return frame.view()[16] << 8 | frame.view()[17];
}

// The expected bytes of the whole frames here were made by another program.

TEST(ConstructFrame, BuildsUdpInIpv4) {
    PacketFields fields = udp(ipv4());
    fields.dscp = 46;
    fields.dontFragment = true;
    fields.payload = bytesOf("hello");
    EXPECT_EQ(hexOf(fields),
              "0200000000020200000000010800"
              "45b800210000400040114ddec0000201c6336401"
              "03e807d0000dc413"
              "68656c6c6f" +
                  zeros(13));
}

TEST(ConstructFrame, BuildsTcpInIpv4) {
    EXPECT_EQ(hexOf(tcp(ipv4())),
              "0200000000020200000000010800"
              "4500002800000000"
              "40068e9ac0000201c6336401"
              "c00001bb00000001000000005002ffff01f00000" +
                  zeros(6));
}

TEST(ConstructFrame, BuildsIcmpInIpv4) {
    EXPECT_EQ(hexOf(echo(ipv4())),
              "0200000000020200000000010800"
              "4500001c0000000040018eabc0000201c6336401"
              "0800f7fd00010001" +
                  zeros(18));
}

TEST(ConstructFrame, BuildsTcpInIpv6) {
    PacketFields fields = tcp(ipv6());
    fields.tcpFlags = TcpFlag::syn | TcpFlag::ack;
    fields.payload = bytesOf("ab");
    EXPECT_EQ(hexOf(fields),
              "02000000000202000000000186dd"
              "600000000016064020010db800000000000000000000000120010db8000100000000000000000001"
              "c00001bb00000001000000005012ffff313d0000"
              "6162");
}

TEST(ConstructFrame, BuildsUdpInIpv6BehindTwoTags) {
    PacketFields fields = udp(ipv6());
    fields.tags = {{Net::EtherType::serviceVlan, 100, 3, false},
                   {Net::EtherType::vlan, 4094, 7, true}};
    fields.ttl = 1;
    fields.dscp = 10;
    fields.payload = bytesOf("odd");
    EXPECT_EQ(hexOf(fields),
              "02000000000202000000000188a860648100fffe86dd"
              "62800000000b110120010db800000000000000000000000120010db8000100000000000000000001"
              "03e807d0000bc546"
              "6f6464");
}

TEST(ConstructFrame, BuildsIcmpv6) {
    PacketFields fields = echo(ipv6());
    fields.payload = bytesOf("ping");
    EXPECT_EQ(hexOf(fields),
              "02000000000202000000000186dd"
              "60000000000c3a4020010db800000000000000000000000120010db8000100000000000000000001"
              "8000457100010001"
              "70696e67");
}

TEST(ConstructFrame, BuildsAnArpRequest) {
    EXPECT_EQ(hexOf(arpRequest()),
              "ffffffffffff0200000000010806"
              "0001080006040001020000000001c0000201000000000000c0000202" +
                  zeros(18));
}

TEST(ConstructFrame, BuildsAnArpReplyBehindATag) {
    PacketFields fields = arpReply();
    fields.tags = {{.vlan = 10}};
    EXPECT_EQ(hexOf(fields),
              "0200000000020200000000018100000a0806"
              "0001080006040002020000000001c0000201020000000002c0000202" +
                  zeros(14));
}

TEST(ConstructFrame, TakesArpsOwnMacAddressesBeforeEthernets) {
    PacketFields fields = arpReply();
    fields.arp->senderMac = mac("02:00:00:00:00:0a");
    fields.arp->targetMac = mac("02:00:00:00:00:0b");
    EXPECT_NE(hexOf(fields).find("02000000000ac000020102000000000bc0000202"), std::string::npos);
}

TEST(ConstructFrame, BuildsAnyOtherEtherTypeWithItsPayload) {
    PacketFields fields = ethernet();
    fields.payload = bytesOf("abc");
    EXPECT_EQ(hexOf(fields, 0x88b5), "02000000000202000000000188b5616263" + zeros(43));
}

TEST(ConstructFrame, GivesAServiceTagAloneItsEtherType) {
    PacketFields fields = ethernet();
    fields.tags = {{.tpid = Net::EtherType::serviceVlan, .vlan = 7}};
    EXPECT_EQ(hexOf(fields, 0x88b5), "02000000000202000000000188a8000788b5" + zeros(42));
}

TEST(ConstructFrame, AcceptsTheEtherTypeThatTheAddressesDemand) {
    EXPECT_EQ(hexOf(udp(ipv4()), Net::EtherType::ipv4), hexOf(udp(ipv4())));
    EXPECT_EQ(hexOf(udp(ipv6()), Net::EtherType::ipv6), hexOf(udp(ipv6())));
    EXPECT_EQ(hexOf(arpRequest(), Net::EtherType::arp), hexOf(arpRequest()));
}

TEST(ConstructFrame, PadsToSixtyBytes) {
    PacketFields fields = udp(ipv4());
    EXPECT_EQ(sizeOf(fields), 60U);
    fields.payload = std::vector<std::uint8_t>(18);
    EXPECT_EQ(sizeOf(fields), 60U);
    fields.payload = std::vector<std::uint8_t>(19);
    EXPECT_EQ(sizeOf(fields), 61U);
}

TEST(ConstructFrame, CountsTagsWhenItPads) {
    PacketFields fields = udp(ipv4());
    fields.tags = {{.vlan = 1}, {.vlan = 2}};
    fields.payload = std::vector<std::uint8_t>(10);
    EXPECT_EQ(sizeOf(fields), 60U);
    fields.payload = std::vector<std::uint8_t>(11);
    EXPECT_EQ(sizeOf(fields), 61U);
}

TEST(ConstructFrame, FillsThePacketUpToTheLengthAskedFor) {
    PacketFields fields = udp(ipv4());
    fields.length = 1514;
    auto const frame = constructFrame(fields, 0, noLimit);
    EXPECT_EQ(frame.size(), 1514U);
    EXPECT_EQ(ipv4TotalLength(frame), 1500U);
}

TEST(ConstructFrame, RaisesALengthBelowSixtyWhileIpCountsWhatWasAskedFor) {
    PacketFields fields = udp(ipv4());
    fields.length = 50;
    EXPECT_EQ(hexOf(fields),
              "0200000000020200000000010800"
              "450000240000000040118e93c0000201c6336401"
              "03e807d0001007e0" +
                  zeros(18));
}

TEST(ConstructFrame, CountsInIpWhatWasAskedForAtSixty) {
    PacketFields fields = udp(ipv4());
    fields.length = 60;
    EXPECT_EQ(ipv4TotalLength(constructFrame(fields, 0, noLimit)), 46U);
}

TEST(ConstructFrame, AcceptsALengthThatIsThePayloadsOwn) {
    PacketFields fields = udp(ipv4());
    fields.payload = std::vector<std::uint8_t>(100);
    fields.length = 142;
    EXPECT_EQ(sizeOf(fields), 142U);
}

TEST(ConstructFrame, AcceptsSixtyAsTheLengthOfAPaddedPayload) {
    PacketFields fields = udp(ipv4());
    fields.payload = std::vector<std::uint8_t>(5);
    fields.length = 60;
    auto const frame = constructFrame(fields, 0, noLimit);
    EXPECT_EQ(frame.size(), 60U);
    EXPECT_EQ(ipv4TotalLength(frame), 33U);
}

TEST(ConstructFrame, PutsZerosBehindArpUpToTheLengthAskedFor) {
    PacketFields fields = arpRequest();
    fields.length = 100;
    EXPECT_EQ(hexOf(fields), hexOf(arpRequest()) + zeros(40));
}

TEST(ConstructFrame, FillsAnyOtherEtherTypeUpToTheLengthAskedFor) {
    PacketFields fields = ethernet();
    fields.length = 61;
    EXPECT_EQ(hexOf(fields, 0x88b5), "02000000000202000000000188b5" + zeros(47));
}

TEST(ConstructFrame, SendsAnAllOnesChecksumWhereUdpsComesOutAsZero) {
    // With two zeros' checksum as the two bytes of payload the sum is all ones.
    PacketFields fields = udp(ipv4());
    fields.payload = Vanta::Bytes{0, 0};
    auto const before = constructFrame(fields, 0, noLimit);
    fields.payload = Vanta::Bytes{before.view()[40], before.view()[41]};
    auto const frame = constructFrame(fields, 0, noLimit);
    EXPECT_EQ(Vanta::hexText(frame.view().subspan(40, 2)), "ffff");
}

TEST(ConstructFrame, SendsAnAllOnesChecksumInIpv6Too) {
    PacketFields fields = udp(ipv6());
    fields.payload = Vanta::Bytes{0, 0};
    auto const before = constructFrame(fields, 0, noLimit);
    fields.payload = Vanta::Bytes{before.view()[60], before.view()[61]};
    auto const frame = constructFrame(fields, 0, noLimit);
    EXPECT_EQ(Vanta::hexText(frame.view().subspan(60, 2)), "ffff");
}

TEST(ConstructFrame, KeepsAZeroChecksumOfTcp) {
    PacketFields fields = tcp(ipv4());
    fields.payload = Vanta::Bytes{0, 0};
    auto const before = constructFrame(fields, 0, noLimit);
    fields.payload = Vanta::Bytes{before.view()[50], before.view()[51]};
    auto const frame = constructFrame(fields, 0, noLimit);
    EXPECT_EQ(Vanta::hexText(frame.view().subspan(50, 2)), "0000");
}

TEST(ConstructFrame, FoldsTheCarryOfTheChecksumsCarry) {
    // One more than what makes the sum all ones carries once again when the carries are added.
    PacketFields fields = udp(ipv4());
    fields.payload = Vanta::Bytes{0, 0};
    auto const before = constructFrame(fields, 0, noLimit);
    ASSERT_NE(before.view()[41], 0xff);
    fields.payload =
        Vanta::Bytes{before.view()[40], static_cast<std::uint8_t>(before.view()[41] + 1)};
    auto const frame = constructFrame(fields, 0, noLimit);
    EXPECT_EQ(Vanta::hexText(frame.view().subspan(40, 2)), "fffe");
}

TEST(ConstructFrame, TakesTheLargestFrameAndNoneBeyond) {
    PacketFields fields = udp(ipv4());
    fields.length = 9236;
    EXPECT_EQ(constructFrame(fields, 0, 9236).size(), 9236U);
    EXPECT_TRUE(constructFrame(fields, 0, 9235).empty());
}

TEST(ConstructFrame, CountsThePaddingForTheLargestFrame) {
    EXPECT_EQ(constructFrame(udp(ipv4()), 0, 60).size(), 60U);
    EXPECT_TRUE(constructFrame(udp(ipv4()), 0, 59).empty());
}

TEST(ConstructFrame, BuildsTheLongestPacketsOfBothVersions) {
    PacketFields fields = udp(ipv4());
    fields.length = 14 + 65535;
    EXPECT_EQ(sizeOf(fields), 14U + 65535U);
    fields = udp(ipv6());
    fields.length = 14 + 40 + 65535;
    EXPECT_EQ(sizeOf(fields), 14U + 40U + 65535U);
}

TEST(ConstructFrame, BuildsNothingFromFieldsThatContradictThemselves) {
    PacketFields fields = udp(ipv4());
    fields.ipDst = ip("2001:db8::1");
    EXPECT_TRUE(constructFrame(fields, 0, noLimit).empty());
}

struct ConstructPacket : testing::Test {
    Vanta::Bytes packet(std::uint32_t maxFrameSize = 9236) const {
        return constructPacket(request->id(), request, maxFrameSize);
    }
    Vanta::Ptr<Request> request = Request::RequestIs({"client", 1});
};

TEST_F(ConstructPacket, HasNothingToBuildOfAFreshRequest) {
    EXPECT_TRUE(packet().empty());
}

TEST_F(ConstructPacket, SharesAWholeFrameAsItIs) {
    Vanta::Bytes const frame{1, 2, 3};
    request->frameIs(frame);
    EXPECT_EQ(packet().data(), frame.data());
}

TEST_F(ConstructPacket, TakesTheLargestWholeFrameAndNoneBeyond) {
    request->frameIs(std::vector<std::uint8_t>(9236));
    EXPECT_EQ(packet().size(), 9236U);
    EXPECT_TRUE(packet(9235).empty());
}

TEST_F(ConstructPacket, DoesNotLookAtTheEtherTypeAndFlagsBesideAWholeFrame) {
    request->frameIs({1, 2, 3});
    request->etherTypeIs(0x1234);
    request->mplsIs(true);
    request->greIs(true);
    EXPECT_EQ(packet().size(), 3U);
}

TEST_F(ConstructPacket, BuildsTheFields) {
    request->fieldsIs(udp(ipv4()));
    EXPECT_EQ(packet(), constructFrame(udp(ipv4()), 0, 9236));
    EXPECT_EQ(packet().size(), 60U);
}

TEST_F(ConstructPacket, BuildsTheFieldsWithTheRequestsEtherType) {
    request->fieldsIs(ethernet());
    EXPECT_TRUE(packet().empty());
    request->etherTypeIs(0x88b5);
    EXPECT_EQ(packet(), constructFrame(ethernet(), 0x88b5, 9236));
}

TEST_F(ConstructPacket, PrefersAWholeFrameToTheFields) {
    request->fieldsIs(udp(ipv4()));
    request->frameIs({1, 2, 3});
    EXPECT_EQ(packet(), (Vanta::Bytes{1, 2, 3}));
}

TEST_F(ConstructPacket, BuildsNothingLongerThanTheLargestFrameFromFields) {
    request->fieldsIs(udp(ipv4()));
    EXPECT_TRUE(packet(59).empty());
}

TEST_F(ConstructPacket, BuildsNoMplsFromFields) {
    request->fieldsIs(udp(ipv4()));
    request->mplsIs(true);
    EXPECT_TRUE(packet().empty());
}

TEST_F(ConstructPacket, BuildsNoGreFromFields) {
    request->fieldsIs(udp(ipv4()));
    request->greIs(true);
    EXPECT_TRUE(packet().empty());
}

TEST_F(ConstructPacket, BuildsTheSameBytesEachTime) {
    request->fieldsIs(tcp(ipv6()));
    EXPECT_EQ(packet(), packet());
}

}  // namespace
