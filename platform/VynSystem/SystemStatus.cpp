#include "VynSystem/SystemStatus.h"

namespace VynSystem {

Vanta::Ptr<SystemStatus> SystemStatus::SystemStatusIs() {
    return Vanta::makeNode<SystemStatus>();
}

void SystemStatus::portInfoIs(Plexa::IntfId const& intf, PortInfo const& info) {
    portInfo_.findOrInsert(intf).value = info;
}

bool SystemStatus::portInfoDel(Plexa::IntfId const& intf) {
    return portInfo_.remove(intf).has_value();
}

void SystemStatus::portToIntfIdIs(VynPortTypes::PortIndex port, Plexa::IntfId const& intf) {
    portToIntfId_.findOrInsert(port).value = intf;
}

bool SystemStatus::portToIntfIdDel(VynPortTypes::PortIndex port) {
    return portToIntfId_.remove(port).has_value();
}

Kel::TypeInfo const& SystemStatus::typeInfo() const noexcept {
    using Kel::AttributeKind;
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&SystemStatus::portInfo>(130, "portInfo", "VynSystem::PortInfo",
                                                AttributeKind::collection),
        Kel::attribute<&SystemStatus::portToIntfId>(131, "portToIntfId", "Plexa::IntfId",
                                                    AttributeKind::collection),
    };
    static constexpr Kel::TypeInfo info{"SystemStatus", attributes, {}};
    return info;
}

}  // namespace VynSystem
