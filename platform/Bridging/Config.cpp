#include "Bridging/Config.h"

namespace Bridging {

Vanta::Ptr<VlanConfig> VlanConfig::VlanConfigIs(VlanId vlanId) {
    return Vanta::makeNode<VlanConfig>(vlanId);
}

Kel::TypeInfo const& VlanConfig::typeInfo() const noexcept {
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&VlanConfig::vlanId>(130, "vlanId", "Bridging::VlanId"),
        Kel::attribute<&VlanConfig::intf>(131, "intf", "Bridging::VlanPortConfig",
                                          Kel::AttributeKind::collection),
        Kel::attribute<&VlanConfig::internal>(132, "internal", "bool"),
    };
    static constexpr Kel::TypeInfo info{"VlanConfig", attributes, {}};
    return info;
}

Vanta::Ptr<Config> Config::ConfigIs() {
    return Vanta::makeNode<Config>();
}

Vanta::Ptr<VlanConfig const> Config::vlanConfig(VlanId vlanId) const {
    return vlanConfig_.get(vlanId);
}

Vanta::Ptr<VlanConfig> Config::vlanConfigIs(VlanId vlanId) {
    auto* entry = vlanConfig_.find(vlanId);
    if (entry == nullptr) {
        entry = &vlanConfig_.insert(vlanId, VlanConfig::VlanConfigIs(vlanId));
    }
    return entry->value;
}

Kel::TypeInfo const& Config::typeInfo() const noexcept {
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&Config::allVlans>(130, "vlanConfig", "Bridging::VlanConfig",
                                          Kel::AttributeKind::collection),
    };
    static constexpr Kel::TypeInfo info{"Config", attributes, {}};
    return info;
}

}  // namespace Bridging
