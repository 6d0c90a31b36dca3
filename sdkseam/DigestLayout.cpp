#include "sdkseam/DigestLayout.h"

#include <algorithm>

namespace SdkSeam {
namespace {

// Position of a field, or how many there are. The lengths tell most names apart, so few are
// compared.
std::size_t indexOf(std::string_view name) noexcept {
    auto const found = std::ranges::find_if(digestFields, [name](DigestField const& field) {
        return field.name.size() == name.size() && field.name == name;
    });
    return static_cast<std::size_t>(found - digestFields.begin());
}

}  // namespace

Vanta::Ptr<DigestLayout> DigestLayout::DigestLayoutIs() {
    return Vanta::makeNode<DigestLayout>();
}

DigestLayout::DigestLayout() noexcept {
    std::ranges::transform(digestFields, sizes_.begin(), &DigestField::width);
}

bool DigestLayout::fieldSizeIs(std::string_view field, std::uint32_t size) noexcept {
    std::size_t const index = indexOf(field);
    if (index == digestFields.size()) {
        return false;
    }
    sizes_[index] = size;
    return true;
}

std::uint32_t DigestLayout::digestEntrySize(std::string_view digest) const {
    return digest == digestName ? digestEntryBytes : 0;
}

std::uint8_t const* DigestLayout::digestEntryField(std::uint8_t const* entry,
                                                   std::string_view digest, std::string_view field,
                                                   std::uint32_t& size) const {
    std::size_t const index = digest == digestName ? indexOf(field) : digestFields.size();
    if (index == digestFields.size()) {
        size = 0;
        return nullptr;
    }
    size = sizes_[index];
    return entry + digestFields[index].offset;
}

Vanta::Ptr<LearnQuanta> LearnQuanta::LearnQuantaIs() {
    return Vanta::makeNode<LearnQuanta>();
}

std::uint32_t LearnQuanta::vyLearnQuantaIndex(std::string_view digest) const {
    return digestKnown_ && digest == digestName ? digestQuantaIndex
                                                : VyResourceInfo::VyResourceInfoIndexInvalid;
}

std::uint32_t LearnQuanta::vyLearnQuanta(std::uint32_t index) const {
    return index == digestQuantaIndex ? digestHandle : 0;
}

}  // namespace SdkSeam
