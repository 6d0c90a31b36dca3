// The client state machine's reflection tables.
#include "VynPacketTracer/VynPtClientSm.h"

namespace VynPacketTracer {

using Kel::attribute;
using Kel::AttributeInfo;
using Kel::AttributeKind;

Kel::TypeInfo const& NestedSm_Request::typeInfo() const noexcept {
    static constexpr AttributeInfo attributes[] = {
        attribute<&NestedSm_Request::key>(0, "key", "PacketTracer::RequestId"),
    };
    static constexpr std::string_view operations[] = {"kel_handleRequest_valid"};
    static constexpr Kel::TypeInfo info{"NestedSm_Request", attributes, operations};
    return info;
}

Kel::TypeInfo const& PacketTracerClientSm::typeInfo() const noexcept {
    using Sm = PacketTracerClientSm;
    constexpr AttributeKind pointer = AttributeKind::pointer;
    static constexpr AttributeInfo attributes[] = {
        attribute<&Sm::name>(130, "name", "Vanta::String"),
        attribute<&Sm::clientConfig>(131, "clientConfig", "PacketTracer::ClientConfig", pointer),
        attribute<&Sm::clientStatus>(132, "clientStatus", "PacketTracer::ClientStatus", pointer),
        attribute<&Sm::pktGenConfig>(133, "pktGenConfig", "VynPacketTracer::PktGenConfig", pointer),
        attribute<&Sm::systemStatus>(134, "systemStatus", "VynSystem::SystemStatus", pointer),
        attribute<&Sm::fcsd>(135, "fcsd", "Fen::FenCommonSmData", pointer),
        attribute<&Sm::bridgingConfig>(136, "bridgingConfig", "Bridging::Config", pointer),
        attribute<&Sm::chipStatus>(137, "chipStatus", "VynSlice::ChipStatus", pointer),
        attribute<&Sm::allRequests>(138, "request", "VynPacketTracer::NestedSm_Request",
                                    AttributeKind::collection),
        // Named for compatibility of the generic interface; nothing reads or writes it.
        {0, "initialized", AttributeKind::value, "bool",
         [](Kel::Object const&, Kel::AttributeSink& sink) { sink.object(nullptr); }},
    };
    static constexpr std::string_view operations[] = {
        "handleRequests", "handleRequest",        "isValidRequest", "handleResults",
        "updateResult",   "updatePortInfoResult", "pktFlooded",     "addVlanIntf",
        "cpuIntfId",      "handleInitialized",
    };
    static constexpr Kel::TypeInfo info{"PacketTracerClientSm", attributes, operations};
    return info;
}

}  // namespace VynPacketTracer
