#include "VynSlice/ChipStatus.h"

namespace VynSlice {

Vanta::Ptr<ChipStatus> ChipStatus::ChipStatusIs() {
    return Vanta::makeNode<ChipStatus>();
}

Kel::TypeInfo const& ChipStatus::typeInfo() const noexcept {
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&ChipStatus::cpuIntf>(130, "cpuIntf", "bool",
                                             Kel::AttributeKind::collection),
    };
    static constexpr Kel::TypeInfo info{"ChipStatus", attributes, {}};
    return info;
}

}  // namespace VynSlice
