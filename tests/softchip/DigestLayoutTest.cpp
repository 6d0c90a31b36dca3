#include "softchip/DigestLayout.h"

#include <gtest/gtest.h>

#include <cstring>

#include "VyResourceInfo/VyResourceInfoIntf.h"

namespace SoftChip {
namespace {

struct Placed {
    std::ptrdiff_t offset;
    std::uint32_t size;
    bool operator==(Placed const&) const = default;
};

Placed placeOf(std::string_view field) {
    std::uint8_t const entry[9]{};
    std::uint32_t size = 99;
    auto const* const place =
        DigestLayout::DigestLayoutIs()->digestEntryField(entry, "pktTracerDigest", field, size);
    return {place - entry, size};
}

TEST(DigestLayout, HasEntriesOf9Bytes) {
    EXPECT_EQ(DigestLayout::DigestLayoutIs()->digestEntrySize("pktTracerDigest"), 9u);
}

TEST(DigestLayout, HasNoEntriesOfAnotherDigest) {
    EXPECT_EQ(DigestLayout::DigestLayoutIs()->digestEntrySize("macLearnDigest"), 0u);
}

TEST(DigestLayout, PacksTheFieldsInTheirOrder) {
    EXPECT_EQ(placeOf("pktGen_pktId"), (Placed{0, 2}));
    EXPECT_EQ(placeOf("pktTracerMd_copy_to_cpu"), (Placed{2, 1}));
    EXPECT_EQ(placeOf("egrMd_egrL2Domain"), (Placed{3, 2}));
    EXPECT_EQ(placeOf("pktTracerMd_ucast_egress_port"), (Placed{5, 2}));
    EXPECT_EQ(placeOf("egrMd_routed"), (Placed{7, 1}));
    EXPECT_EQ(placeOf("ig_intr_md_for_dprsr_drop_ctl"), (Placed{8, 1}));
}

TEST(DigestLayout, GivesNullAndSize0ForAnUnknownField) {
    std::uint8_t const entry[9]{};
    std::uint32_t size = 99;
    EXPECT_EQ(DigestLayout::DigestLayoutIs()->digestEntryField(entry, "pktTracerDigest",
                                                               "egrMd_colour", size),
              nullptr);
    EXPECT_EQ(size, 0u);
}

TEST(DigestLayout, GivesNullAndSize0ForAFieldOfAnUnknownDigest) {
    std::uint8_t const entry[9]{};
    std::uint32_t size = 99;
    EXPECT_EQ(DigestLayout::DigestLayoutIs()->digestEntryField(entry, "macLearnDigest",
                                                               "pktGen_pktId", size),
              nullptr);
    EXPECT_EQ(size, 0u);
}

TEST(DigestLayout, PacksADecisionInHostByteOrder) {
    Decision decision;
    decision.egressPort = 0x0102;
    decision.l2Domain = 0x0304;
    decision.routed = true;
    auto const entry = packDigestEntry(0x0506, decision);
    std::uint16_t const words[]{0x0506, 0x0304, 0x0102};
    EXPECT_EQ(std::memcmp(&entry[0], &words[0], 2), 0);
    EXPECT_EQ(std::memcmp(&entry[3], &words[1], 2), 0);
    EXPECT_EQ(std::memcmp(&entry[5], &words[2], 2), 0);
    EXPECT_EQ(entry[2], 0u);
    EXPECT_EQ(entry[7], 1u);
    EXPECT_EQ(entry[8], 0u);
    EXPECT_EQ(pktIdOf(entry), 0x0506u);
}

TEST(DigestLayout, TellsTheCopyAndTheDropApart) {
    Decision copy;
    copy.copyToCpu = true;
    EXPECT_EQ(packDigestEntry(1, copy)[2], 1u);
    EXPECT_EQ(packDigestEntry(1, copy)[8], 0u);
    Decision drop;
    drop.drop = true;
    EXPECT_EQ(packDigestEntry(1, drop)[2], 0u);
    EXPECT_EQ(packDigestEntry(1, drop)[8], 1u);
}

TEST(LearnQuanta, KnowTheDigestsIndexAndHandle) {
    auto const quanta = LearnQuanta::LearnQuantaIs();
    EXPECT_EQ(quanta->vyLearnQuantaIndex("pktTracerDigest"), 5u);
    EXPECT_EQ(quanta->vyLearnQuanta(5), 77u);
}

TEST(LearnQuanta, GiveTheInvalidIndexForAnUnknownDigest) {
    EXPECT_EQ(LearnQuanta::LearnQuantaIs()->vyLearnQuantaIndex("macLearnDigest"),
              VyResourceInfo::VyResourceInfoIndexInvalid);
}

TEST(LearnQuanta, GiveHandle0ForAnUnknownIndex) {
    EXPECT_EQ(LearnQuanta::LearnQuantaIs()->vyLearnQuanta(4), 0u);
}

}  // namespace
}  // namespace SoftChip
