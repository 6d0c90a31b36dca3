// The root's reflection tables. The missing numbers belong to the reactors.
#include "VynPacketTracer/VynPtSm.h"

namespace VynPacketTracer {

using Kel::attribute;
using Kel::AttributeInfo;
using Kel::AttributeKind;

Kel::TypeInfo const& NestedSm_LocalStatus::typeInfo() const noexcept {
    static constexpr AttributeInfo attributes[] = {
        attribute<&NestedSm_LocalStatus::key>(0, "key", "PacketTracer::RequestId"),
    };
    static constexpr std::string_view operations[] = {"kel_handleLocalStatus_ready"};
    static constexpr Kel::TypeInfo info{"NestedSm_LocalStatus", attributes, operations};
    return info;
}

Kel::TypeInfo const& PacketTracerSm::typeInfo() const noexcept {
    using Sm = PacketTracerSm;
    constexpr AttributeKind pointer = AttributeKind::pointer;
    constexpr AttributeKind collection = AttributeKind::collection;
    static constexpr AttributeInfo attributes[] = {
        attribute<&Sm::config>(130, "config", "Kel::Dir", pointer),
        attribute<&Sm::status>(131, "status", "Kel::Dir", pointer),
        attribute<&Sm::phase0DataIntf>(132, "phase0DataIntf", "VynSdk::Phase0DataIntf", pointer),
        attribute<&Sm::pktGenSupported>(133, "pktGenSupported", "bool"),
        attribute<&Sm::pktTracerSupported>(134, "pktTracerSupported", "bool"),
        attribute<&Sm::sessionHandle>(135, "sessionHandle", "U32"),
        attribute<&Sm::deviceId>(136, "deviceId", "VynId::VynDevId"),
        attribute<&Sm::resourceInfoIntf>(137, "resourceInfoIntf",
                                         "VyResourceInfo::VyResourceInfoIntf", pointer),
        attribute<&Sm::vyPdIntf>(138, "vyPdIntf", "VyPd::VyPdIntf", pointer),
        attribute<&Sm::rootScheduler>(139, "rootScheduler", "Orb::TaskSchedulerRoot", pointer),
        attribute<&Sm::systemStatus>(140, "systemStatus", "VynSystem::SystemStatus", pointer),
        attribute<&Sm::fcsd>(141, "fcsd", "Fen::FenCommonSmData", pointer),
        attribute<&Sm::bridgingConfig>(142, "bridgingConfig", "Bridging::Config", pointer),
        attribute<&Sm::chipStatus>(143, "chipStatus", "VynSlice::ChipStatus", pointer),
        attribute<&Sm::pktGenCfg>(146, "pktGenCfg", "VynPacketTracer::PktGenConfig", pointer),
        attribute<&Sm::pktGenStatus>(147, "pktGenStatus", "VynPacketTracer::PktGenStatus", pointer),
        attribute<&Sm::allLocalStatuses>(149, "localStatus",
                                         "VynPacketTracer::NestedSm_LocalStatus", collection),
        attribute<&Sm::pktGenSm>(150, "pktGenSm", "VynPacketTracer::PktGenSm", pointer),
        attribute<&Sm::allClientSms>(151, "clientSm", "VynPacketTracer::PacketTracerClientSm",
                                     collection),
        attribute<&Sm::initialized>(152, "initialized", "bool"),
    };
    static constexpr std::string_view operations[] = {
        "handleClients",
        "handleClient",
        "handlePktGenStatus",
        "handleInitialized",
    };
    static constexpr Kel::TypeInfo info{"PacketTracerSm", attributes, operations};
    return info;
}

}  // namespace VynPacketTracer
