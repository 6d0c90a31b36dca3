// The platform's parts: publications, collections, trace records, packets.
#include <array>
#include <cstring>
#include <unordered_map>
#include <vector>

#include "Kel/Collection.h"
#include "PacketTracer/ConstructPacket.h"
#include "PacketTracer/PacketSize.h"
#include "Trace/Trace.h"
#include "Vanta/Publisher.h"
#include "bench/BareRing.h"
#include "bench/Cost.h"
#include "bench/Host.h"

namespace Bench {
namespace {

Trace::Handle& trace = Trace::handle("VynBench");

// ---- kel/publish

struct Observer {
    void dispatch(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber attribute,
                  Vanta::ValueRef, Vanta::ValueRef) {
        heard += attribute;
    }

    std::uint64_t heard = 0;
    Vanta::Subscriber subscriber;
};

void publish(benchmark::State& state) {
    Vanta::Publisher publisher(nullptr);
    std::vector<Observer> observers(static_cast<std::size_t>(state.range(0)));
    for (auto& observer : observers) {
        observer.subscriber.subscribe<&Observer::dispatch>(publisher, &observer);
    }
    int const key = 1;
    for (auto _ : state) {
        publisher.publish(130, Vanta::ValueRef::to(key));
    }
}
BENCHMARK(publish)->Name("kel/publish")->Arg(0)->Arg(1)->Arg(8);

// Calls through pointers in an array.
void publishFloor(benchmark::State& state) {
    struct Called {
        void (*function)(std::uint64_t& heard, unsigned attribute);
        std::uint64_t heard = 0;
    };
    Called const called{[](std::uint64_t& heard, unsigned attribute) { heard += attribute; }};
    std::vector<Called> observers(static_cast<std::size_t>(state.range(0)), called);
    benchmark::DoNotOptimize(observers.data());
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (auto& observer : observers) {
            observer.function(observer.heard, 130);
        }
    }
}
BENCHMARK(publishFloor)->Name("floor/kel/publish")->Arg(0)->Arg(1)->Arg(8);

// ---- kel/collection

constexpr std::uint64_t standingEntries = 100'000;

// One entry is added to the standing ones, looked up and removed.
void collection(benchmark::State& state) {
    Kel::Collection<std::uint64_t, std::uint64_t> map;
    for (std::uint64_t i = 0; i < standingEntries; ++i) {
        map.insert(i, i);
    }
    std::uint64_t key = standingEntries;
    for (auto _ : state) {
        map.insert(++key, key);
        benchmark::DoNotOptimize(map.find(key / 2));
        map.remove(key);
    }
}
BENCHMARK(collection)->Name("kel/collection");

void collectionFloor(benchmark::State& state) {
    std::unordered_map<std::uint64_t, std::uint64_t> map;
    for (std::uint64_t i = 0; i < standingEntries; ++i) {
        map.try_emplace(i, i);
    }
    std::uint64_t key = standingEntries;
    for (auto _ : state) {
        map.try_emplace(++key, key);
        benchmark::DoNotOptimize(map.find(key / 2));
        map.erase(key);
    }
}
BENCHMARK(collectionFloor)->Name("floor/kel/collection");

// ---- trace/ring

void ring(benchmark::State& state) {
    traceIntoRing();
    std::uint64_t value = 0;
    for (auto _ : state) {
        ++value;
        Trace::twinlog(trace, 7, "ring:%s %s %s", value, value, value);
    }
}
BENCHMARK(ring)->Name("trace/ring");

void ringFloor(benchmark::State& state) {
    BareRing bare;
    std::uint64_t value = 0;
    for (auto _ : state) {
        ++value;
        bare.write(1, value, value, value);
    }
}
BENCHMARK(ringFloor)->Name("floor/trace/ring");

// A statement that nobody reads. It is run before any ring is made, in a process of its own.
void disabled(benchmark::State& state) {
    std::uint64_t value = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(++value);
        Trace::twinlog(trace, 7, "disabled:%s", value);
    }
}
BENCHMARK(disabled)->Name("trace/disabled");

void disabledFloor(benchmark::State& state) {
    std::uint64_t value = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(++value);
    }
}
BENCHMARK(disabledFloor)->Name("floor/trace/disabled");

// ---- packet/construct

PacketTracer::PacketFields udpFields() {
    PacketTracer::PacketFields fields;
    fields.ethDst = PacketTracer::MacAddress::fromText("02:00:00:00:00:02");
    fields.ethSrc = PacketTracer::MacAddress::fromText("02:00:00:00:00:01");
    fields.ipSrc = PacketTracer::IpAddress::fromText("10.0.0.1");
    fields.ipDst = PacketTracer::IpAddress::fromText("10.0.0.2");
    fields.protocol = PacketTracer::IpProtocol::udp;
    fields.srcPort = 1000;
    fields.dstPort = 2000;
    fields.length = 64;
    return fields;
}

void construct(benchmark::State& state) {
    auto const fields = udpFields();
    if (PacketTracer::constructFrame(fields, Net::EtherType::ipv4, PacketTracer::maximumFrameSize)
            .size() != 64) {
        state.SkipWithError("the frame was not built");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(PacketTracer::constructFrame(fields, Net::EtherType::ipv4,
                                                              PacketTracer::maximumFrameSize));
    }
}
BENCHMARK(construct)->Name("packet/construct");

std::uint16_t internetSum(std::uint8_t const* bytes, std::size_t size) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        sum += static_cast<std::uint32_t>(bytes[i] << 8 | bytes[i + 1]);
    }
    sum = (sum & 0xffff) + (sum >> 16);
    return static_cast<std::uint16_t>(~(sum + (sum >> 16)));
}

// A frame that is ready is copied into a block of its own, and both checksums are computed.
void constructFloor(benchmark::State& state) {
    auto const ready = PacketTracer::constructFrame(udpFields(), Net::EtherType::ipv4,
                                                    PacketTracer::maximumFrameSize);
    for (auto _ : state) {
        auto const made = std::make_unique<std::uint8_t[]>(ready.size());
        std::memcpy(made.get(), ready.data(), ready.size());
        auto const ip = internetSum(made.get() + 14, 20);
        auto const udp = internetSum(made.get() + 26, ready.size() - 26);
        std::memcpy(made.get() + 24, &ip, sizeof ip);
        std::memcpy(made.get() + 40, &udp, sizeof udp);
        benchmark::DoNotOptimize(made.get());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(constructFloor)->Name("floor/packet/construct");

}  // namespace
}  // namespace Bench
