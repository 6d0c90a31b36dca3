#include "VynPacketTracer/VynPtMounts.h"

namespace VynPacketTracer {

Vanta::Ptr<VynPacketTracerMounts> VynPacketTracerMounts::VynPacketTracerMountsIs() {
    return Vanta::makeNode<VynPacketTracerMounts>();
}

Vanta::Ptr<VynPacketTracerMounts> vynPacketTracerMountsFactory() {
    return VynPacketTracerMounts::VynPacketTracerMountsIs();
}

void VynPacketTracerMounts::configIs(Vanta::Ptr<Kel::Dir const> const& config) {
    if (!(config_ == config)) {
        config_ = config;
    }
}

void VynPacketTracerMounts::statusIs(Vanta::Ptr<Kel::Dir> const& status) {
    if (!(status_ == status)) {
        status_ = status;
    }
}

Kel::TypeInfo const& VynPacketTracerMounts::typeInfo() const noexcept {
    using Kel::AttributeKind;
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&VynPacketTracerMounts::config>(130, "config", "Kel::Dir",
                                                       AttributeKind::pointer),
        Kel::attribute<&VynPacketTracerMounts::status>(131, "status", "Kel::Dir",
                                                       AttributeKind::pointer),
    };
    static constexpr Kel::TypeInfo info{"VynPacketTracerMounts", attributes, {}};
    return info;
}

}  // namespace VynPacketTracer
