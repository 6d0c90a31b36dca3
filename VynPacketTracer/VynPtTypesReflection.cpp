// The reflection tables of the shared records.
#include "VynPacketTracer/VynPtTypes.h"

namespace VynPacketTracer {

using Kel::attribute;
using Kel::AttributeInfo;
using Kel::AttributeKind;
using Kel::TypeInfo;

TypeInfo const& PktGenCfgData::typeInfo() const noexcept {
    static constexpr AttributeInfo attributes[] = {
        attribute<&PktGenCfgData::req>(130, "req", "PacketTracer::RequestId"),
        attribute<&PktGenCfgData::pkt>(131, "pkt", "Vanta::Bytes"),
        attribute<&PktGenCfgData::ingPortInfo>(132, "ingPortInfo", "VynSystem::PortInfo"),
        attribute<&PktGenCfgData::ingIntf>(133, "ingIntf", "Plexa::IntfId"),
    };
    static constexpr TypeInfo info{"PktGenCfgData", attributes, {}};
    return info;
}

TypeInfo const& PktGenStatusData::typeInfo() const noexcept {
    using Data = PktGenStatusData;
    static constexpr AttributeInfo attributes[] = {
        attribute<&Data::req>(reqAttribute, "req", "PacketTracer::RequestId"),
        attribute<&Data::pktId>(pktIdAttribute, "pktId", "U16"),
        attribute<&Data::ready>(readyAttribute, "ready", "bool"),
        attribute<&Data::egrPortInfo>(egrPortInfoAttribute, "egrPortInfo", "VynSystem::PortInfo"),
        attribute<&Data::egrL2Domain>(egrL2DomainAttribute, "egrL2Domain", "U16"),
        attribute<&Data::copyToCpu>(copyToCpuAttribute, "copyToCpu", "bool"),
        attribute<&Data::routed>(routedAttribute, "routed", "bool"),
        attribute<&Data::dropped>(droppedAttribute, "dropped", "bool"),
    };
    static constexpr TypeInfo info{"PktGenStatusData", attributes, {}};
    return info;
}

TypeInfo const& PktGenConfig::typeInfo() const noexcept {
    static constexpr AttributeInfo attributes[] = {
        attribute<&PktGenConfig::allCfgs>(cfgAttribute, "cfg", "VynPacketTracer::PktGenCfgData",
                                          AttributeKind::collection),
    };
    static constexpr TypeInfo info{"PktGenConfig", attributes, {}};
    return info;
}

TypeInfo const& PktGenStatus::typeInfo() const noexcept {
    static constexpr AttributeInfo attributes[] = {
        attribute<&PktGenStatus::allStatuses>(statusAttribute, "status",
                                              "VynPacketTracer::PktGenStatusData",
                                              AttributeKind::collection),
    };
    static constexpr TypeInfo info{"PktGenStatus", attributes, {}};
    return info;
}

}  // namespace VynPacketTracer
