#include "VyResourceInfo/VyResourceInfoIntf.h"

namespace VyResourceInfo {

VyResourceInfoIntf::~VyResourceInfoIntf() = default;

Kel::TypeInfo const& VyResourceInfoIntf::typeInfo() const noexcept {
    static constexpr std::string_view operations[] = {"vyLearnQuantaIndex", "vyLearnQuanta"};
    static constexpr Kel::TypeInfo info{"VyResourceInfoIntf", {}, operations};
    return info;
}

}  // namespace VyResourceInfo
