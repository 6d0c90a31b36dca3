#include "sdkseam/DigestLayout.h"

#include <gtest/gtest.h>

namespace SdkSeam {
namespace {

struct Field {
    std::ptrdiff_t offset;
    std::uint32_t size;
    bool operator==(Field const&) const = default;
};

// What the layout says of a field; an offset of -1 is null.
Field fieldOf(DigestLayout const& layout, std::string_view field,
              std::string_view digest = "pktTracerDigest") {
    DigestEntry const entry{};
    std::uint32_t size = 99;
    auto const* const at = layout.digestEntryField(entry.data(), digest, field, size);
    return {at != nullptr ? at - entry.data() : -1, size};
}

class DigestLayoutTest : public testing::Test {
  protected:
    Vanta::Ptr<DigestLayout> layout = DigestLayout::DigestLayoutIs();
};

TEST_F(DigestLayoutTest, HasEntriesOf9Bytes) {
    EXPECT_EQ(layout->digestEntrySize("pktTracerDigest"), 9u);
}

TEST_F(DigestLayoutTest, HasNoEntriesOfAnotherDigest) {
    EXPECT_EQ(layout->digestEntrySize("macLearnDigest"), 0u);
}

TEST_F(DigestLayoutTest, FindsEveryField) {
    EXPECT_EQ(fieldOf(*layout, "pktGen_pktId"), (Field{0, 2}));
    EXPECT_EQ(fieldOf(*layout, "pktTracerMd_copy_to_cpu"), (Field{2, 1}));
    EXPECT_EQ(fieldOf(*layout, "egrMd_egrL2Domain"), (Field{3, 2}));
    EXPECT_EQ(fieldOf(*layout, "pktTracerMd_ucast_egress_port"), (Field{5, 2}));
    EXPECT_EQ(fieldOf(*layout, "egrMd_routed"), (Field{7, 1}));
    EXPECT_EQ(fieldOf(*layout, "ig_intr_md_for_dprsr_drop_ctl"), (Field{8, 1}));
}

TEST_F(DigestLayoutTest, GivesNullAndSize0ForAnUnknownField) {
    EXPECT_EQ(fieldOf(*layout, "egrMd_colour"), (Field{-1, 0}));
}

TEST_F(DigestLayoutTest, GivesNullAndSize0ForAFieldOfAnUnknownDigest) {
    EXPECT_EQ(fieldOf(*layout, "pktGen_pktId", "macLearnDigest"), (Field{-1, 0}));
}

TEST_F(DigestLayoutTest, ReportsTheSizeThatItWasTold) {
    EXPECT_TRUE(layout->fieldSizeIs("egrMd_routed", 4));
    EXPECT_EQ(fieldOf(*layout, "egrMd_routed"), (Field{7, 4}));
    EXPECT_EQ(fieldOf(*layout, "pktGen_pktId"), (Field{0, 2}));
}

TEST_F(DigestLayoutTest, TakesNoSizeForAnUnknownField) {
    EXPECT_FALSE(layout->fieldSizeIs("egrMd_colour", 4));
}

TEST(LearnQuanta, KnowsTheDigestsIndexAndHandle) {
    auto const quanta = LearnQuanta::LearnQuantaIs();
    EXPECT_EQ(quanta->vyLearnQuantaIndex("pktTracerDigest"), 5u);
    EXPECT_EQ(quanta->vyLearnQuanta(5), 77u);
}

TEST(LearnQuanta, GivesTheInvalidIndexForAnUnknownDigest) {
    EXPECT_EQ(LearnQuanta::LearnQuantaIs()->vyLearnQuantaIndex("macLearnDigest"),
              VyResourceInfo::VyResourceInfoIndexInvalid);
}

TEST(LearnQuanta, GivesHandle0ForAnUnknownIndex) {
    EXPECT_EQ(LearnQuanta::LearnQuantaIs()->vyLearnQuanta(4), 0u);
}

TEST(LearnQuanta, CanBeWithoutTheDigest) {
    auto const quanta = LearnQuanta::LearnQuantaIs();
    quanta->digestKnownIs(false);
    EXPECT_EQ(quanta->vyLearnQuantaIndex("pktTracerDigest"),
              VyResourceInfo::VyResourceInfoIndexInvalid);
}

}  // namespace
}  // namespace SdkSeam
