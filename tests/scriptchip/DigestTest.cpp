#include "scriptchip/Digest.h"

#include <gtest/gtest.h>

#include <cstring>

namespace ScriptChip {
namespace {

DigestEntry const sample{.pktId = 0x0102,
                         .copyToCpu = 3,
                         .l2Domain = 0x0405,
                         .egrPort = 0x0607,
                         .routed = 8,
                         .dropCtl = 9};

// The value of a field of one packed entry.
template <class T>
T fieldOf(DigestEntry const& entry, std::string_view field) {
    auto const layout = DigestLayout::DigestLayoutIs();
    auto const bytes = packDigestEntries({&entry, 1});
    std::uint32_t size = 0;
    auto const* const at = layout->digestEntryField(bytes.data(), digestName, field, size);
    EXPECT_EQ(sizeof(T), size) << field;
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

TEST(DigestLayout, FindsEveryFieldOfAPackedEntry) {
    EXPECT_EQ(0x0102, fieldOf<std::uint16_t>(sample, "pktGen_pktId"));
    EXPECT_EQ(3, fieldOf<std::uint8_t>(sample, "pktTracerMd_copy_to_cpu"));
    EXPECT_EQ(0x0405, fieldOf<std::uint16_t>(sample, "egrMd_egrL2Domain"));
    EXPECT_EQ(0x0607, fieldOf<std::uint16_t>(sample, "pktTracerMd_ucast_egress_port"));
    EXPECT_EQ(8, fieldOf<std::uint8_t>(sample, "egrMd_routed"));
    EXPECT_EQ(9, fieldOf<std::uint8_t>(sample, "ig_intr_md_for_dprsr_drop_ctl"));
}

TEST(DigestLayout, LaysTheFieldsOneBehindTheOther) {
    auto const layout = DigestLayout::DigestLayoutIs();
    std::uint8_t const entry[digestEntrySize] = {};
    std::uint8_t const* next = entry;
    for (auto const field : DigestLayout::fieldNames()) {
        std::uint32_t size = 0;
        EXPECT_EQ(next, layout->digestEntryField(entry, digestName, field, size)) << field;
        next += size;
    }
    EXPECT_EQ(entry + digestEntrySize, next);
    EXPECT_EQ(digestEntrySize, layout->digestEntrySize(digestName));
}

TEST(DigestLayout, KnowsNoOtherDigestAndNoOtherField) {
    auto const layout = DigestLayout::DigestLayoutIs();
    std::uint8_t const entry[digestEntrySize] = {};
    std::uint32_t size = 1;
    EXPECT_EQ(0U, layout->digestEntrySize("macLearn"));
    EXPECT_EQ(nullptr, layout->digestEntryField(entry, digestName, "ttl", size));
    EXPECT_EQ(0U, size);
    EXPECT_EQ(nullptr, layout->digestEntryField(entry, "macLearn", "pktGen_pktId", size));
}

TEST(DigestLayout, ReportsTheSizeThatItWasTold) {
    auto const layout = DigestLayout::DigestLayoutIs();
    std::uint8_t const entry[digestEntrySize] = {};
    EXPECT_TRUE(layout->fieldSizeIs("egrMd_routed", 4));
    EXPECT_FALSE(layout->fieldSizeIs("ttl", 4));
    std::uint32_t size = 0;
    EXPECT_EQ(entry + 7, layout->digestEntryField(entry, digestName, "egrMd_routed", size));
    EXPECT_EQ(4U, size);
}

TEST(DigestEntries, LieOneBehindTheOther) {
    DigestEntry const entries[] = {sample, {.pktId = 2}};
    auto const bytes = packDigestEntries(entries);
    ASSERT_EQ(2 * digestEntrySize, bytes.size());
    EXPECT_EQ(9, bytes[8]);
    std::uint16_t id = 0;
    std::memcpy(&id, bytes.data() + digestEntrySize, sizeof id);
    EXPECT_EQ(2, id);
}

TEST(LearnQuanta, KnowsTheOneDigest) {
    auto const quanta = LearnQuanta::LearnQuantaIs();
    EXPECT_EQ(5U, quanta->vyLearnQuantaIndex(digestName));
    EXPECT_EQ(77U, quanta->vyLearnQuanta(5));
    EXPECT_EQ(VyResourceInfo::VyResourceInfoIndexInvalid, quanta->vyLearnQuantaIndex("macLearn"));
}

TEST(LearnQuanta, CanBeWithoutTheDigest) {
    auto const quanta = LearnQuanta::LearnQuantaIs();
    quanta->digestKnownIs(false);
    EXPECT_EQ(VyResourceInfo::VyResourceInfoIndexInvalid, quanta->vyLearnQuantaIndex(digestName));
}

}  // namespace
}  // namespace ScriptChip
