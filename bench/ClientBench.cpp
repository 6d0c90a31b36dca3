// A client's state machine: a request that becomes a job, an answer that becomes a result.
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "VynPacketTracer/VynPtClientSm.h"
#include "bench/BareRing.h"
#include "bench/Cost.h"
#include "bench/Host.h"

namespace Bench {
namespace {

using Map = std::unordered_map<std::uint64_t, std::array<std::uint8_t, 64>>;
using VynPacketTracer::PktGenStatusData;

constexpr std::uint16_t vlan = 10;

struct OneClient {
    OneClient() {
        auto const members = bridging->vlanConfigIs(Bridging::VlanId(vlan));
        for (std::uint16_t port = 0; port <= 64; ++port) {
            auto const intf = *Plexa::IntfId::fromName("Ethernet" + std::to_string(port + 1));
            VynPortTypes::PortIndex const index(port);
            systemStatus->portInfoIs(intf, {0, index});
            systemStatus->portToIntfIdIs(index, intf);
            members->intfIs(intf);
        }
        sm = VynPacketTracer::packetTracerClientSmFactory(
            name, config, status, jobs, systemStatus, Fen::FenCommonSmData::FenCommonSmDataIs(),
            bridging, VynSlice::ChipStatus::ChipStatusIs());
    }
    void ask(std::uint32_t number) {
        auto const request = PacketTracer::Request::RequestIs({name, number});
        request->etherTypeIs(0x88b5);
        request->intfIs(ingress());
        request->frameIs(frame());
        request->validIs(true);
        config->requestIs(request);
    }

    Vanta::String name{"client"};
    Vanta::Ptr<PacketTracer::ClientConfig> config = PacketTracer::ClientConfig::ClientConfigIs();
    Vanta::Ptr<PacketTracer::ClientStatus> status = PacketTracer::ClientStatus::ClientStatusIs();
    Vanta::Ptr<VynPacketTracer::PktGenConfig> jobs = VynPacketTracer::pktGenConfigFactory();
    Vanta::Ptr<VynSystem::SystemStatus> systemStatus = VynSystem::SystemStatus::SystemStatusIs();
    Vanta::Ptr<Bridging::Config> bridging = Bridging::Config::ConfigIs();
    Vanta::Ptr<VynPacketTracer::PacketTracerClientSm> sm;
};

// A request arrives, is declared valid, becomes a job and is withdrawn.
void handle(benchmark::State& state) {
    traceIntoRing();
    OneClient client;
    std::uint32_t number = 0;
    for (auto _ : state) {
        client.ask(++number);
        client.config->requestDel({client.name, number});
    }
}
BENCHMARK(handle)->Name("client/handle");

// Request, reactor and job in maps, a copy of the frame, and the ring records.
void handleFloor(benchmark::State& state) {
    BareRing ring;
    std::array<Map, 3> maps;
    std::uint64_t number = 0;
    for (auto _ : state) {
        ++number;
        for (Map& map : maps) {
            map.try_emplace(number);
        }
        for (unsigned record = 0; record < 6; ++record) {
            ring.write(record, number, 0, 0);
        }
        for (Map& map : maps) {
            map.erase(number);
        }
    }
}
BENCHMARK(handleFloor)->Name("floor/client/handle");

// An answer becomes a result, which is removed again.
void result(benchmark::State& state, bool flooded) {
    traceIntoRing();
    OneClient client;
    client.ask(1);
    auto const answer = PktGenStatusData::PktGenStatusDataIs({client.name, 1});
    answer->egrL2DomainIs(vlan);
    if (!flooded) {
        answer->egrPortInfoIs({0, VynPortTypes::PortIndex(1)});
    }
    answer->readyIs(true);
    for (auto _ : state) {
        client.sm->updateResult(answer);
        client.status->resultDel(answer->req());
    }
}
BENCHMARK_CAPTURE(result, unicast, false)->Name("result/unicast");
BENCHMARK_CAPTURE(result, flood, true)->Name("result/flood/64");

void resultFloor(benchmark::State& state) {
    auto const entries = static_cast<std::uint64_t>(state.range(0));
    std::unordered_map<std::uint64_t, std::unordered_set<std::uint64_t>> results;
    BareRing ring;
    for (auto _ : state) {
        auto& result = results[1];
        ring.write(0, 0, 0, 0);
        for (std::uint64_t entry = 0; entry < entries; ++entry) {
            for (unsigned record = 0; record < 3; ++record) {
                ring.write(record, entry, 0, 0);
            }
            result.insert(entry * 128);
        }
        results.erase(1);
    }
}
BENCHMARK(resultFloor)->Name("floor/result/unicast")->Arg(1);
BENCHMARK(resultFloor)->Name("floor/result/flood")->Arg(64);

}  // namespace
}  // namespace Bench
