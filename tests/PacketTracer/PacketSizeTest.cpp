#include "PacketTracer/PacketSize.h"

#include <gtest/gtest.h>

#include "PacketTracer/SomeFields.h"

namespace {

using namespace SomeFields;

TEST(PacketSize, CountsFourBytesATag) {
    PacketFields fields = ethernet();
    EXPECT_EQ(ethernetSize(fields), 14U);
    fields.tags.resize(2);
    EXPECT_EQ(ethernetSize(fields), 22U);
}

TEST(PacketSize, CountsTheHeadersOfEveryProtocol) {
    EXPECT_EQ(headerSize(ethernet()), 14U);
    EXPECT_EQ(headerSize(arpRequest()), 14U + 28U);
    EXPECT_EQ(headerSize(udp(ipv4())), 14U + 20U + 8U);
    EXPECT_EQ(headerSize(tcp(ipv4())), 14U + 20U + 20U);
    EXPECT_EQ(headerSize(echo(ipv4())), 14U + 20U + 8U);
    EXPECT_EQ(headerSize(udp(ipv6())), 14U + 40U + 8U);
    EXPECT_EQ(headerSize(tcp(ipv6())), 14U + 40U + 20U);
    EXPECT_EQ(headerSize(echo(ipv6())), 14U + 40U + 8U);
}

TEST(PacketSize, CountsWhatAnIcmpTypeDemandsUnlessThePayloadHoldsIt) {
    PacketFields fields = icmp(ipv4(), 3);
    EXPECT_EQ(headerSize(fields), 14U + 20U + 8U + 28U);
    fields.payload = std::vector<std::uint8_t>(30);
    EXPECT_EQ(headerSize(fields), 14U + 20U + 8U);
    EXPECT_EQ(contentSize(fields), 14U + 20U + 8U + 30U);
}

TEST(PacketSize, OfTheContentIsThePayloadsOrTheLengthAskedFor) {
    PacketFields fields = udp(ipv4());
    EXPECT_EQ(contentSize(fields), 42U);
    fields.payload = bytesOf("abc");
    EXPECT_EQ(contentSize(fields), 45U);
    fields.payload = {};
    fields.length = 50;
    EXPECT_EQ(contentSize(fields), 50U);
}

TEST(PacketSize, OfArpsContentIsItsOwn) {
    PacketFields fields = arpRequest();
    fields.length = 100;
    EXPECT_EQ(contentSize(fields), 42U);
    EXPECT_EQ(frameSize(fields), 100U);
}

TEST(PacketSize, OfAFrameIsSixtyAtLeast) {
    PacketFields fields = udp(ipv4());
    EXPECT_EQ(frameSize(fields), 60U);
    fields.length = 50;
    EXPECT_EQ(frameSize(fields), 60U);
    fields.length = 61;
    EXPECT_EQ(frameSize(fields), 61U);
}

}  // namespace
