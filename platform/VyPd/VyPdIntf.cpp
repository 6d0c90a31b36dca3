#include "VyPd/VyPdIntf.h"

namespace VyPd {

VyPdIntf::~VyPdIntf() = default;

Kel::TypeInfo const& VyPdIntf::typeInfo() const noexcept {
    static constexpr std::string_view operations[] = {"digestEntrySize", "digestEntryField"};
    static constexpr Kel::TypeInfo info{"VyPdIntf", {}, operations};
    return info;
}

}  // namespace VyPd
