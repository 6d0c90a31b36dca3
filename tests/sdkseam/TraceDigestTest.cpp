#include "sdkseam/TraceDigest.h"

#include <gtest/gtest.h>

namespace SdkSeam {
namespace {

// Each byte of its entry is another one, whatever the machine's byte order.
constexpr TraceDigest sample{.pktId = 0x0102,
                             .copyToCpu = 3,
                             .l2Domain = 0x0405,
                             .egrPort = 0x0607,
                             .routed = 8,
                             .dropCtl = 9};

// A value of two bytes as it lies in memory.
constexpr std::array<std::uint8_t, 2> word(std::uint16_t value) {
    return std::bit_cast<std::array<std::uint8_t, 2>>(value);
}

TEST(TraceDigest, IsPackedFieldBehindFieldInHostByteOrder) {
    auto const id = word(0x0102);
    auto const domain = word(0x0405);
    auto const port = word(0x0607);
    EXPECT_EQ(packed(sample),
              (DigestEntry{id[0], id[1], 3, domain[0], domain[1], port[0], port[1], 8, 9}));
}

TEST(TraceDigest, IsUnpackedAsItWasPacked) {
    EXPECT_EQ(unpacked(packed(sample)), sample);
}

TEST(TraceDigest, IsPackedAndUnpackedByTheCompilerToo) {
    static_assert(unpacked(packed(sample)) == sample);
    static_assert(packed({.pktId = 0xffff}).front() == 0xff);
    SUCCEED();
}

TEST(TraceDigest, HasFieldsThatFillItsEntryWithoutAGap) {
    std::uint32_t end = 0;
    for (auto const& field : digestFields) {
        EXPECT_EQ(field.offset, end) << field.name;
        end = field.offset + field.width;
    }
    EXPECT_EQ(end, digestEntryBytes);
}

TEST(TraceDigest, HasFieldsAsWideAsTheirValues) {
    eachDigestField(sample, [](DigestField const& field, auto const& value) {
        EXPECT_EQ(field.width, sizeof value) << field.name;
    });
}

TEST(TraceDigest, LeavesByNoPortUnlessToldOtherwise) {
    EXPECT_EQ(TraceDigest{}.egrPort, 511);
}

}  // namespace
}  // namespace SdkSeam
