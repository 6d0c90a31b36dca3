#include "scriptchip/Digest.h"

#include <algorithm>
#include <cstring>

namespace ScriptChip {
namespace {

struct Field {
    std::uint32_t offset;
    std::uint32_t width;
};

constexpr std::array<std::string_view, DigestLayout::fieldCount> names{
    "pktGen_pktId",      "pktTracerMd_copy_to_cpu",
    "egrMd_egrL2Domain", "pktTracerMd_ucast_egress_port",
    "egrMd_routed",      "ig_intr_md_for_dprsr_drop_ctl",
};
constexpr std::array<Field, DigestLayout::fieldCount> fields{
    {{0, 2}, {2, 1}, {3, 2}, {5, 2}, {7, 1}, {8, 1}}};

// Position of a field, or fieldCount.
std::size_t indexOf(std::string_view field) noexcept {
    return static_cast<std::size_t>(std::ranges::find(names, field) - names.begin());
}

}  // namespace

std::vector<std::uint8_t> packDigestEntries(std::span<DigestEntry const> entries) {
    std::vector<std::uint8_t> bytes(entries.size() * digestEntrySize);
    std::uint8_t* to = bytes.data();
    for (DigestEntry const& entry : entries) {
        std::memcpy(to, &entry.pktId, 2);
        to[2] = entry.copyToCpu;
        std::memcpy(to + 3, &entry.l2Domain, 2);
        std::memcpy(to + 5, &entry.egrPort, 2);
        to[7] = entry.routed;
        to[8] = entry.dropCtl;
        to += digestEntrySize;
    }
    return bytes;
}

Vanta::Ptr<DigestLayout> DigestLayout::DigestLayoutIs() {
    return Vanta::makeNode<DigestLayout>();
}

DigestLayout::DigestLayout() noexcept {
    std::ranges::transform(fields, sizes_.begin(), &Field::width);
}

std::array<std::string_view, DigestLayout::fieldCount> const& DigestLayout::fieldNames() noexcept {
    return names;
}

bool DigestLayout::fieldSizeIs(std::string_view field, std::uint32_t size) noexcept {
    std::size_t const index = indexOf(field);
    if (index == fieldCount) {
        return false;
    }
    sizes_[index] = size;
    return true;
}

std::uint32_t DigestLayout::digestEntrySize(std::string_view digest) const {
    return digest == digestName ? ScriptChip::digestEntrySize : 0;
}

std::uint8_t const* DigestLayout::digestEntryField(std::uint8_t const* entry,
                                                   std::string_view digest, std::string_view field,
                                                   std::uint32_t& size) const {
    std::size_t const index = digest == digestName ? indexOf(field) : fieldCount;
    if (index == fieldCount) {
        size = 0;
        return nullptr;
    }
    size = sizes_[index];
    return entry + fields[index].offset;
}

Vanta::Ptr<LearnQuanta> LearnQuanta::LearnQuantaIs() {
    return Vanta::makeNode<LearnQuanta>();
}

std::uint32_t LearnQuanta::vyLearnQuantaIndex(std::string_view digest) const {
    return digestKnown_ && digest == digestName ? digestLearnQuantaIndex
                                                : VyResourceInfo::VyResourceInfoIndexInvalid;
}

std::uint32_t LearnQuanta::vyLearnQuanta(std::uint32_t index) const {
    return index == digestLearnQuantaIndex ? digestHandle : 0;
}

}  // namespace ScriptChip
