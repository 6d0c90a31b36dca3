#include "PacketTracer/IcmpMessage.h"

#include <gtest/gtest.h>

#include <string>

#include "PacketTracer/ConstructPacket.h"
#include "PacketTracer/SomeFields.h"

namespace {

using namespace SomeFields;

// The message from its type on, without padding.
std::string message(PacketFields fields) {
    std::size_t const start = fields.ipDst->isV6() ? 54 : 34;
    auto const frame = constructFrame(fields, 0, noLimit);
    if (frame.empty()) {
        return "not built";
    }
    std::size_t const length = fields.ipDst->isV6()
                                   ? frame.view()[18] << 8 | frame.view()[19]
                                   : (frame.view()[16] << 8 | frame.view()[17]) - 20;
    return Vanta::hexText(frame.view().subspan(start, length));
}

std::string afterHeader(PacketFields const& fields) {
    return message(fields).substr(16);
}

TEST(IcmpMessage, GivesAnEchoAnIdentifierAndASequenceNumber) {
    EXPECT_EQ(message(icmp(ipv4(), 8)), "0800f7fd00010001");
    EXPECT_EQ(message(icmp(ipv4(), 0)).substr(8), "00010001");
    EXPECT_EQ(message(icmp(ipv6(), 128)).substr(8), "00010001");
    EXPECT_EQ(message(icmp(ipv6(), 129)).substr(8), "00010001");
}

TEST(IcmpMessage, CarriesTypeAndCode) {
    PacketFields fields = icmp(ipv4(), 3);
    fields.icmpCode = 13;
    EXPECT_EQ(message(fields).substr(0, 4), "030d");
}

// The expected bytes were made by another program.
TEST(IcmpMessage, QuotesADatagramThatWentTheOtherWay) {
    PacketFields fields = icmp(ipv4(), 3);
    fields.icmpCode = 1;
    EXPECT_EQ(message(fields),
              "0301e94e00000000"
              "4500001c0000000040118e9bc6336401c0000201c000c001000893a5");
}

TEST(IcmpMessage, QuotesAnIpv6DatagramInEveryError) {
    for (std::uint8_t type = 1; type <= 4; ++type) {
        EXPECT_EQ(
            afterHeader(icmp(ipv6(), type)).substr(0, 80),
            "600000000008114020010db800010000000000000000000120010db8000000000000000000000001")
            << int{type};
    }
}

TEST(IcmpMessage, TellsAnMtuInPacketTooBig) {
    EXPECT_EQ(message(icmp(ipv6(), 2)).substr(8, 8), "00000500");
}

TEST(IcmpMessage, AsksForItsUnicastDestinationAsNeighbour) {
    EXPECT_EQ(afterHeader(icmp(ipv6(), 135)), "20010db8000100000000000000000001");
}

TEST(IcmpMessage, AsksForNoGroupAsNeighbour) {
    PacketFields fields = icmp(ipv6(), 135);
    fields.ipDst = ip("ff02::1:ff00:1");
    EXPECT_EQ(afterHeader(fields), "20010db8000000000000000000000001");
}

TEST(IcmpMessage, AdvertisesItsSourceAsNeighbour) {
    EXPECT_EQ(afterHeader(icmp(ipv6(), 136)), "20010db8000000000000000000000001");
}

TEST(IcmpMessage, ReportsTheGroupThatItIsSentTo) {
    PacketFields fields = icmp(ipv6(), 131);
    fields.ipDst = ip("ff05::7");
    EXPECT_EQ(afterHeader(fields), "ff050000000000000000000000000007");
}

TEST(IcmpMessage, PutsZerosBehindWhatItsTypeDemandsUpToTheLengthAskedFor) {
    PacketFields fields = icmp(ipv6(), 136);
    fields.length = 14 + 40 + 8 + 16 + 2;
    EXPECT_EQ(afterHeader(fields),
              "20010db8000000000000000000000001"
              "0000");
}

TEST(IcmpMessage, TakesAPayloadInPlaceOfWhatItsTypeDemands) {
    PacketFields fields = icmp(ipv6(), 136);
    fields.payload = std::vector<std::uint8_t>(16, 0xfe);
    EXPECT_EQ(afterHeader(fields), "fefefefefefefefefefefefefefefefe");
}

TEST(IcmpMessage, OfATypeWithoutDemandsIsItsHeader) {
    EXPECT_EQ(message(icmp(ipv4(), 10)).size(), 16U);
    EXPECT_EQ(message(icmp(ipv6(), 133)).size(), 16U);
}

// The least length of every type that demands one, as the frame's length less one byte shows.
struct Demand {
    bool isV6;
    std::uint8_t type;
    std::uint32_t bodySize;
};

struct IcmpDemand : testing::TestWithParam<Demand> {};

TEST_P(IcmpDemand, IsTheLeastPayloadAndMadeUpWithoutOne) {
    auto const [isV6, type, bodySize] = GetParam();
    PacketFields fields = icmp(isV6 ? ipv6() : ipv4(), type);
    EXPECT_EQ(afterHeader(fields).size(), 2 * bodySize);
    fields.payload = std::vector<std::uint8_t>(bodySize - 1, 1);
    EXPECT_EQ(message(fields), "not built");
    fields.payload = std::vector<std::uint8_t>(bodySize, 1);
    EXPECT_EQ(afterHeader(fields).size(), 2 * bodySize);
}

INSTANTIATE_TEST_SUITE_P(
    Types, IcmpDemand,
    testing::Values(Demand{false, 3, 28}, Demand{false, 4, 28}, Demand{false, 5, 28},
                    Demand{false, 11, 28}, Demand{false, 12, 28}, Demand{false, 13, 12},
                    Demand{false, 14, 12}, Demand{false, 17, 4}, Demand{false, 18, 4},
                    Demand{true, 1, 48}, Demand{true, 2, 48}, Demand{true, 3, 48},
                    Demand{true, 4, 48}, Demand{true, 130, 16}, Demand{true, 131, 16},
                    Demand{true, 132, 16}, Demand{true, 134, 8}, Demand{true, 135, 16},
                    Demand{true, 136, 16}, Demand{true, 137, 32}, Demand{true, 139, 8},
                    Demand{true, 138, 8}, Demand{true, 140, 8}, Demand{true, 149, 4},
                    Demand{true, 157, 24}, Demand{true, 158, 24}),
    [](auto const& test) {
        return std::string(test.param.isV6 ? "Icmpv6Type" : "IcmpType") +
               std::to_string(test.param.type);
    });

}  // namespace
