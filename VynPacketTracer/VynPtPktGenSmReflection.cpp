// The engine's reflection table.
#include "VynPacketTracer/VynPtPktGenSm.h"

namespace VynPacketTracer {

Kel::TypeInfo const& PktGenSm::typeInfo() const noexcept {
    using Kel::attribute;
    using Kel::AttributeKind;
    constexpr AttributeKind pointer = AttributeKind::pointer;
    static constexpr Kel::AttributeInfo attributes[] = {
        attribute<&PktGenSm::config>(130, "config", "VynPacketTracer::PktGenConfig", pointer),
        attribute<&PktGenSm::phase0DataIntf>(131, "phase0DataIntf", "VynSdk::Phase0DataIntf",
                                             pointer),
        attribute<&PktGenSm::status>(132, "status", "VynPacketTracer::PktGenStatus", pointer),
        attribute<&PktGenSm::sessionHandle>(133, "sessionHandle", "U32"),
        attribute<&PktGenSm::deviceId>(134, "deviceId", "VynId::VynDevId"),
        attribute<&PktGenSm::pktTracerSupported>(135, "pktTracerSupported", "bool"),
        attribute<&PktGenSm::resourceInfoIntf>(136, "resourceInfoIntf",
                                               "VyResourceInfo::VyResourceInfoIntf", pointer),
        attribute<&PktGenSm::vyPdIntf>(137, "vyPdIntf", "VyPd::VyPdIntf", pointer),
        attribute<&PktGenSm::rootScheduler>(138, "rootScheduler", "Orb::TaskSchedulerRoot",
                                            pointer),
        attribute<&PktGenSm::task>(139, "task", "Orb::Task", pointer),
        attribute<&PktGenSm::taskName>(140, "taskName", "Vanta::String"),
        attribute<&PktGenSm::state>(141, "state", "VynPacketTracer::PktGenState"),
        attribute<&PktGenSm::pktId>(142, "pktId", "U16"),
        attribute<&PktGenSm::appId>(143, "appId", "U32"),
        attribute<&PktGenSm::curCfg>(144, "curCfg", "VynPacketTracer::PktGenCfgData", pointer),
        attribute<&PktGenSm::curPktCounter>(145, "curPktCounter", "U64"),
        attribute<&PktGenSm::socketPairWriteDesc>(146, "socketPairWriteDesc", "S32"),
        attribute<&PktGenSm::socketPairReadFileDesc>(147, "socketPairReadFileDesc",
                                                     "Orb::FileDescriptor", pointer),
        attribute<&PktGenSm::rSocketIn>(148, "rSocketIn", "Orb::FileDescriptor", pointer),
        attribute<&PktGenSm::learnQuantaIndex>(149, "learnQuantaIndex", "U32"),
        attribute<&PktGenSm::pktTracerDigestEntrySize>(150, "pktTracerDigestEntrySize", "U32"),
        attribute<&PktGenSm::initialized>(151, "initialized", "bool"),
    };
    static constexpr std::string_view operations[] = {
        "handleConfig",
        "processPktTracerDigest",
        "processPhase0DataResponse",
        "doWork",
        "processRequest",
        "getPhase0Data",
        "getPktCounters",
        "sendPkt",
        "checkPktCnt",
        "disablePktGen",
        "processError",
        "initSocket",
        "doCleanup",
        "registerPktTracerDigest",
        "deRegisterPktTracerDigest",
        "handleInitialized",
    };
    static constexpr Kel::TypeInfo info{"PktGenSm", attributes, operations};
    return info;
}

}  // namespace VynPacketTracer
