#include "softchip/DigestLayout.h"

#include <algorithm>
#include <cstring>

namespace SoftChip {
namespace {

struct Field {
    std::string_view name;
    std::uint32_t offset;
    std::uint32_t size;
};

constexpr Field pktIdField{"pktGen_pktId", 0, 2};
constexpr Field copyToCpuField{"pktTracerMd_copy_to_cpu", 2, 1};
constexpr Field domainField{"egrMd_egrL2Domain", 3, 2};
constexpr Field egressPortField{"pktTracerMd_ucast_egress_port", 5, 2};
constexpr Field routedField{"egrMd_routed", 7, 1};
constexpr Field dropField{"ig_intr_md_for_dprsr_drop_ctl", 8, 1};
constexpr std::array fields{pktIdField,      copyToCpuField, domainField,
                            egressPortField, routedField,    dropField};
static_assert(dropField.offset + dropField.size == digestEntryBytes);

// The lengths tell most names apart, so few are compared.
Field const* fieldOf(std::string_view name) {
    for (Field const& field : fields) {
        if (field.name.size() == name.size() && field.name == name) {
            return &field;
        }
    }
    return nullptr;
}

void put16(DigestEntry& entry, Field const& field, std::uint16_t value) {
    std::memcpy(&entry[field.offset], &value, sizeof value);
}

}  // namespace

DigestEntry packDigestEntry(std::uint16_t pktId, Decision const& decision) {
    DigestEntry entry{};
    put16(entry, pktIdField, pktId);
    entry[copyToCpuField.offset] = decision.copyToCpu ? 1 : 0;
    put16(entry, domainField, decision.l2Domain);
    put16(entry, egressPortField, decision.egressPort);
    entry[routedField.offset] = decision.routed ? 1 : 0;
    entry[dropField.offset] = decision.drop ? 1 : 0;
    return entry;
}

std::uint16_t pktIdOf(DigestEntry const& entry) {
    std::uint16_t pktId = 0;
    std::memcpy(&pktId, &entry[pktIdField.offset], sizeof pktId);
    return pktId;
}

Vanta::Ptr<DigestLayout> DigestLayout::DigestLayoutIs() {
    return Vanta::makeNode<DigestLayout>();
}

std::uint32_t DigestLayout::digestEntrySize(std::string_view digest) const {
    return digest == digestName ? digestEntryBytes : 0;
}

std::uint8_t const* DigestLayout::digestEntryField(std::uint8_t const* entry,
                                                   std::string_view digest, std::string_view field,
                                                   std::uint32_t& size) const {
    Field const* const found = fieldOf(field);
    if (digest != digestName || found == nullptr) {
        size = 0;
        return nullptr;
    }
    size = found->size;
    return entry + found->offset;
}

Vanta::Ptr<LearnQuanta> LearnQuanta::LearnQuantaIs() {
    return Vanta::makeNode<LearnQuanta>();
}

std::uint32_t LearnQuanta::vyLearnQuantaIndex(std::string_view digest) const {
    return digest == digestName ? digestQuantaIndex : VyResourceInfo::VyResourceInfoIndexInvalid;
}

std::uint32_t LearnQuanta::vyLearnQuanta(std::uint32_t index) const {
    return index == digestQuantaIndex ? digestHandle : 0;
}

}  // namespace SoftChip
