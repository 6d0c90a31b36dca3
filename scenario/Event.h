// The events of a scenario, one type each. docs/scenario.md describes their lines; a member that a
// line may leave out has its default here.
//
// Events are values: copying is cheap, because large parts are shared. Thread: that of the objects
// that they are about.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "Bridging/VlanId.h"
#include "PacketTracer/RequestId.h"
#include "Plexa/IntfId.h"
#include "Vanta/Bytes.h"
#include "sdkseam/SdkCall.h"
#include "sdkseam/TraceDigest.h"

namespace Scenario {

// The greatest number of turns, or of calls that return something, in one event.
inline constexpr std::uint32_t mostTimes = 1'000'000;

namespace Do {

// Forwarding state.
struct Port {
    Plexa::IntfId intf;
    std::uint8_t pipe = 0;
    std::uint16_t port = 0;
};
struct PortDel {
    Plexa::IntfId intf;
};
struct PortToIntfId {
    std::uint16_t port = 0;
    Plexa::IntfId intf;
};
struct PortToIntfIdDel {
    std::uint16_t port = 0;
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
    Bridging::VlanId id{Bridging::VlanId::min};
    std::vector<Plexa::IntfId> intf{};
    bool internal = false;
};
struct VlanDel {
    Bridging::VlanId id{Bridging::VlanId::min};
};
struct CpuPort {
    Plexa::IntfId intf;
};
struct CpuPortDel {
    Plexa::IntfId intf;
};

// Life of the tracer.
struct Start {
    bool pktTracerSupported = true;
    bool pktGenSupported = true;
    std::uint32_t session = 1;
    std::uint8_t device = 0;
};
struct Stop {};
struct Turn {
    std::uint32_t times = 1;
};
struct YieldAfter {
    std::uint32_t checks = 0;
};

// Clients and requests. The entity of a directory entry is an object of the directory's own type,
// null, or an object of another type.
enum class Entity : std::uint8_t { own, none, other };

struct ClientConfig {
    Vanta::String client;
    Entity entity = Entity::own;
};
struct ClientConfigDel {
    Vanta::String client;
};
struct ClientStatus {
    Vanta::String client;
    Entity entity = Entity::own;
};
struct ClientStatusDel {
    Vanta::String client;
};
struct Request {
    PacketTracer::RequestId id;
    Plexa::IntfId intf{};
    std::uint16_t etherType = 0x0800;
    bool mpls = false;
    bool gre = false;
    bool valid = true;
    Vanta::Bytes raw = std::vector<std::uint8_t>(64);
};
// The value's type follows from the attribute: `intf` an interface, `etherType` a number, `raw`
// bytes, the others a truth value.
enum class RequestAttribute : std::uint8_t { valid, etherType, mpls, gre, intf, raw };
struct RequestSet {
    PacketTracer::RequestId id;
    RequestAttribute attribute = RequestAttribute::valid;
    std::variant<bool, std::uint16_t, Plexa::IntfId, Vanta::Bytes> value{};
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
    std::uint32_t status = 0;
    Vanta::Bytes data{};
};
struct Phase0Del {
    Plexa::IntfId intf;
};
struct Counter {
    std::uint8_t pipe = 0;
    std::vector<std::uint64_t> values;  // one or more
};
struct SdkReturn {
    SdkSeam::SdkFunction call{};
    std::int32_t rc = 0;
    std::uint32_t times = 1;
    std::uint32_t after = 0;
};
struct Digest {
    std::vector<SdkSeam::TraceDigest> entries;
};
struct DigestField {
    std::string field{SdkSeam::digestFieldNames.front()};
    std::uint32_t size = 0;
};

}  // namespace Do

using Event =
    std::variant<Do::Port, Do::PortDel, Do::PortToIntfId, Do::PortToIntfIdDel, Do::LagToPort,
                 Do::LagToPortDel, Do::PortToLag, Do::PortToLagDel, Do::Vlan, Do::VlanDel,
                 Do::CpuPort, Do::CpuPortDel, Do::Start, Do::Stop, Do::Turn, Do::YieldAfter,
                 Do::ClientConfig, Do::ClientConfigDel, Do::ClientStatus, Do::ClientStatusDel,
                 Do::Request, Do::RequestSet, Do::RequestDel, Do::Result, Do::Phase0, Do::Phase0Del,
                 Do::Counter, Do::SdkReturn, Do::Digest, Do::DigestField>;

}  // namespace Scenario
