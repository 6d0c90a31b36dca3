// The software chip's decision about one frame.
#include <array>
#include <unordered_map>

#include "PacketTracer/ConstructPacket.h"
#include "PacketTracer/PacketSize.h"
#include "bench/Cost.h"
#include "bench/Host.h"
#include "softchip/Explanations.h"
#include "softchip/Phase0.h"
#include "softchip/Pipeline.h"
#include "softchip/Tables.h"

namespace Bench {
namespace {

using SoftChip::LogicalPort;
using SoftChip::PortMode;

constexpr SoftChip::DomainId vlan = 10;
constexpr SoftChip::DomainId routedDomain = 4094;
constexpr SoftChip::MacAddress routerMac{0x021c73000001};

// Two access ports in a VLAN with a router, a routed port, and a route behind it.
SoftChip::Tables tables() {
    SoftChip::Tables made;
    for (SoftChip::DevicePort port = 0; port < 3; ++port) {
        made.portIs(port, true);
    }
    for (SoftChip::DevicePort port = 0; port < 2; ++port) {
        made.modeIs(LogicalPort::port(port), PortMode::access(vlan));
        made.vlanMemberIs(vlan, LogicalPort::port(port));
    }
    made.fdbIs(vlan, {0x020000000002}, LogicalPort::port(1));
    made.modeIs(LogicalPort::port(2), PortMode::routed(routedDomain));
    made.l3IntfIs(vlan, {.vrf = 0, .routerMac = routerMac});
    made.l3IntfIs(routedDomain, {.vrf = 0, .routerMac = routerMac, .out = LogicalPort::port(2)});
    auto const gateway = SoftChip::IpAddress::v4(0x0aff0001);
    made.nextHopSetIs(1, {{routedDomain, gateway}});
    made.neighbourIs(routedDomain, gateway, {0x020000000003});
    made.routeIs(0, SoftChip::Prefix::of(SoftChip::IpAddress::v4(0x0a000000), 8),
                 SoftChip::Route::via(1));
    return made;
}

Vanta::Bytes udpFrame(std::string_view destinationMac) {
    PacketTracer::PacketFields fields;
    fields.ethDst = PacketTracer::MacAddress::fromText(destinationMac);
    fields.ethSrc = PacketTracer::MacAddress::fromText("02:00:00:00:00:01");
    fields.ipSrc = PacketTracer::IpAddress::fromText("10.0.0.1");
    fields.ipDst = PacketTracer::IpAddress::fromText("10.1.0.2");
    fields.protocol = PacketTracer::IpProtocol::udp;
    fields.srcPort = 1000;
    fields.dstPort = 2000;
    fields.length = 64;
    return PacketTracer::constructFrame(fields, Net::EtherType::ipv4,
                                        PacketTracer::maximumFrameSize);
}

void pipeline(benchmark::State& state, std::string_view destinationMac,
              SoftChip::DevicePort egress) {
    auto const made = tables();
    auto const phase0 = SoftChip::encodePhase0(0);
    auto const packet = udpFrame(destinationMac);
    if (SoftChip::decide(made, phase0, packet.view()).egressPort != egress) {
        state.SkipWithError("the frame did not go where it should");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(SoftChip::decide(made, phase0, packet.view()));
    }
}
BENCHMARK_CAPTURE(pipeline, bridged, "02:00:00:00:00:02", 1)->Name("chip/pipeline/bridged");
BENCHMARK_CAPTURE(pipeline, routed, "02:1c:73:00:00:01", 2)->Name("chip/pipeline/routed");

// The decision with its explanation, which is kept.
void explain(benchmark::State& state) {
    auto const made = tables();
    auto const phase0 = SoftChip::encodePhase0(0);
    auto const packet = udpFrame("02:1c:73:00:00:01");
    SoftChip::Explanations kept;
    kept.onIs(true);
    SoftChip::Explanation explanation;
    for (auto _ : state) {
        benchmark::DoNotOptimize(SoftChip::decide(made, phase0, packet.view(), &explanation));
        kept.add(1, explanation);
    }
}
BENCHMARK(explain)->Name("chip/explain");

// Extracting the frame's fields, and one look-up in a map for each table that such a frame meets.
void pipelineFloor(benchmark::State& state) {
    auto const lookUps = static_cast<std::uint64_t>(state.range(0));
    std::unordered_map<std::uint64_t, std::uint64_t> table;
    for (std::uint64_t i = 0; i < 64; ++i) {
        table[i] = i;
    }
    auto const packet = udpFrame("02:00:00:00:00:02");
    for (auto _ : state) {
        benchmark::ClobberMemory();
        std::uint64_t fields = 0;
        for (std::uint8_t const byte : packet.view().first(42)) {
            fields = fields << 1 ^ byte;
        }
        for (std::uint64_t i = 0; i < lookUps; ++i) {
            fields += table.find((fields + i) % 64)->second;
        }
        benchmark::DoNotOptimize(fields);
    }
}
BENCHMARK(pipelineFloor)->Name("floor/chip/pipeline/bridged")->Arg(3);
BENCHMARK(pipelineFloor)->Name("floor/chip/pipeline/routed")->Arg(6);

}  // namespace
}  // namespace Bench
