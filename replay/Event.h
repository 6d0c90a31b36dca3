// The events of a scenario, as its lines say them, types and ranges checked.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Bridging/VlanId.h"
#include "PacketTracer/RequestId.h"
#include "Plexa/IntfId.h"
#include "Vanta/Bytes.h"
#include "scriptchip/Digest.h"
#include "scriptchip/SdkCall.h"

namespace Replay {

namespace Do {

// Forwarding state.
struct Port {
    Plexa::IntfId intf;
    std::uint8_t pipe;
    std::uint16_t port;
};
struct PortDel {
    Plexa::IntfId intf;
};
struct PortToIntfId {
    std::uint16_t port;
    Plexa::IntfId intf;
};
struct PortToIntfIdDel {
    std::uint16_t port;
};
struct LagToPort {
    Plexa::IntfId lag;
};
struct LagToPortDel {
    Plexa::IntfId lag;
};
struct PortToLag {
    Plexa::IntfId intf;
    Plexa::IntfId lag;
};
struct PortToLagDel {
    Plexa::IntfId intf;
};
struct Vlan {
    Bridging::VlanId id;
    std::vector<Plexa::IntfId> intf;
    bool internal;
};
struct VlanDel {
    Bridging::VlanId id;
};
struct CpuPort {
    Plexa::IntfId intf;
};
struct CpuPortDel {
    Plexa::IntfId intf;
};

// Life of the tracer.
struct Start {
    bool pktTracerSupported;
    bool pktGenSupported;
    std::uint32_t session;
    std::uint8_t device;
};
struct Stop {};
struct Turn {
    std::uint32_t times;
};
struct YieldAfter {
    std::uint32_t checks;
};

// Clients and requests.
enum class Entity : std::uint8_t { own, none, other };

struct ClientConfig {
    Vanta::String client;
    Entity entity;
};
struct ClientConfigDel {
    Vanta::String client;
};
struct ClientStatus {
    Vanta::String client;
    Entity entity;
};
struct ClientStatusDel {
    Vanta::String client;
};
struct Request {
    PacketTracer::RequestId id;
    Plexa::IntfId intf;
    std::uint16_t etherType;
    bool mpls;
    bool gre;
    bool valid;
    Vanta::Bytes raw;
};
enum class RequestAttribute : std::uint8_t { valid, etherType, mpls, gre, intf, raw };
struct RequestSet {
    PacketTracer::RequestId id;
    RequestAttribute attribute;
    std::variant<bool, std::uint16_t, Plexa::IntfId, Vanta::Bytes> value;
};
struct RequestDel {
    PacketTracer::RequestId id;
};
struct Result {
    PacketTracer::RequestId id;
};

// The scripted chip.
struct Phase0 {
    Plexa::IntfId intf;
    std::uint32_t status;
    Vanta::Bytes data;
};
struct Phase0Del {
    Plexa::IntfId intf;
};
struct Counter {
    std::uint8_t pipe;
    std::vector<std::uint64_t> values;
};
struct SdkReturn {
    ScriptChip::SdkFunction call;
    std::int32_t rc;
    std::uint32_t times;
    std::uint32_t after;
};
struct Digest {
    std::vector<ScriptChip::DigestEntry> entries;
};
struct DigestField {
    std::string field;
    std::uint32_t size;
};

}  // namespace Do

using Event =
    std::variant<Do::Port, Do::PortDel, Do::PortToIntfId, Do::PortToIntfIdDel, Do::LagToPort,
                 Do::LagToPortDel, Do::PortToLag, Do::PortToLagDel, Do::Vlan, Do::VlanDel,
                 Do::CpuPort, Do::CpuPortDel, Do::Start, Do::Stop, Do::Turn, Do::YieldAfter,
                 Do::ClientConfig, Do::ClientConfigDel, Do::ClientStatus, Do::ClientStatusDel,
                 Do::Request, Do::RequestSet, Do::RequestDel, Do::Result, Do::Phase0, Do::Phase0Del,
                 Do::Counter, Do::SdkReturn, Do::Digest, Do::DigestField>;

// The event of a line that is neither empty nor a comment. Errors: Refusal.
Event readEvent(std::string_view line);

}  // namespace Replay
