// The engine's two look-ups: the next job, and the entries that a digest is about.
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <deque>
#include <map>
#include <unordered_map>
#include <vector>

#include "VynPacketTracer/VynPtPktGenSm.h"
#include "bench/BareRing.h"
#include "bench/Cost.h"
#include "bench/Host.h"
#include "sdkseam/Chip.h"
#include "sdkseam/DigestLayout.h"

namespace Bench {
namespace {

using PacketTracer::RequestId;
using VynPacketTracer::PktGenConfig;
using VynPacketTracer::PktGenStatus;

constexpr std::uint32_t standingJobs = 100'000;

struct Jobs {
    explicit Jobs(std::uint32_t answered) {
        for (std::uint32_t i = 0; i < answered; ++i) {
            add();
            status->statusIs(config->firstPending(*status)->req());
        }
    }
    void add() {
        config->cfgIs({client, ++last}, packet, VynSystem::PortInfo(0, VynPortTypes::PortIndex(0)),
                      ingress());
    }

    Vanta::Ptr<PktGenConfig> config = PktGenConfig::PktGenConfigIs();
    Vanta::Ptr<PktGenStatus> status = PktGenStatus::PktGenStatusIs();
    Vanta::String client{"client"};
    Vanta::Bytes packet = frame();
    std::uint32_t last = 0;
};

// A job is added behind the standing ones, picked, answered and withdrawn.
void pick(benchmark::State& state) {
    Jobs jobs(static_cast<std::uint32_t>(state.range(0)));
    for (auto _ : state) {
        jobs.add();
        RequestId const picked = jobs.config->firstPending(*jobs.status)->req();
        jobs.status->statusIs(picked);
        jobs.config->cfgDel(picked);
        jobs.status->statusDel(picked);
    }
}
BENCHMARK(pick)->Name("engine/pick")->Arg(1'000)->Arg(standingJobs);

// The answer of the first of all jobs is removed, so that job is picked again, before the others.
void pickReturned(benchmark::State& state) {
    Jobs jobs(standingJobs);
    RequestId const first = jobs.config->cfg().begin()->key;
    for (auto _ : state) {
        jobs.status->statusDel(first);
        jobs.status->statusIs(jobs.config->firstPending(*jobs.status)->req());
    }
}
BENCHMARK(pickReturned)->Name("engine/pickReturned");

void pickFloor(benchmark::State& state) {
    using Map = std::unordered_map<std::uint64_t, std::array<std::uint8_t, 64>>;
    auto const standing = static_cast<std::uint64_t>(state.range(0));
    Map jobs;
    Map answers;
    std::deque<std::uint64_t> pending;
    for (std::uint64_t i = 0; i < standing; ++i) {
        jobs.try_emplace(i);
        answers.try_emplace(i);
    }
    std::uint64_t last = standing;
    for (auto _ : state) {
        jobs.try_emplace(++last);
        pending.push_back(last);
        auto const picked = pending.front();
        pending.pop_front();
        answers.try_emplace(picked);
        jobs.erase(picked);
        answers.erase(picked);
    }
}
BENCHMARK(pickFloor)->Name("floor/engine/pick")->Arg(1'000)->Arg(standingJobs);

void pickReturnedFloor(benchmark::State& state) {
    std::unordered_map<std::uint64_t, std::array<std::uint8_t, 64>> answers;
    std::map<std::uint64_t, std::uint64_t> pending;
    for (std::uint64_t i = 0; i < standingJobs; ++i) {
        answers.try_emplace(i);
    }
    for (auto _ : state) {
        answers.erase(0);
        pending.emplace(0, 0);
        answers.try_emplace(pending.begin()->second);
        pending.erase(pending.begin());
    }
}
BENCHMARK(pickReturnedFloor)->Name("floor/engine/pickReturned");

// ---- Digests

// A chip that agrees to everything, so that digests can be handed to the engine one by one.
class AgreeingChip final : public SdkSeam::Chip {
  public:
    void call(SdkSeam::SdkCall&) override {}

  private:
    SdkSeam::Registration registration_{1, *this};
};

struct Engine {
    explicit Engine(std::uint32_t entries) {
        for (std::uint32_t i = 1; i <= entries; ++i) {
            status->statusIs({client, i})->pktIdIs(static_cast<std::uint16_t>(i));
        }
        fill(bytes[0], {.l2Domain = 10, .egrPort = 1});
        fill(bytes[1], {.copyToCpu = 1, .l2Domain = 20, .egrPort = 2, .routed = 1, .dropCtl = 1});
        message.dev_tgt.device_id = 1;
        message.num_entries = static_cast<std::uint16_t>(entries);
    }
    void fill(std::vector<std::uint8_t>& to, SdkSeam::TraceDigest digest) const {
        for (std::size_t id = 1; id <= status->status().size(); ++id) {
            digest.pktId = static_cast<std::uint16_t>(id);
            auto const entry = packed(digest);
            to.insert(to.end(), entry.begin(), entry.end());
        }
    }

    AgreeingChip chip;
    Vanta::String client{"client"};
    Vanta::Ptr<Orb::TaskSchedulerRoot> loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    Vanta::Ptr<PktGenStatus> status = PktGenStatus::PktGenStatusIs();
    Vanta::Ptr<VynPacketTracer::PktGenSm> engine = VynPacketTracer::PktGenSm::PktGenSmIs(
        PktGenConfig::PktGenConfigIs(), SoftChip::Phase0Data::Phase0DataIs(loop), status, 1, 1,
        true, SdkSeam::LearnQuanta::LearnQuantaIs(), SdkSeam::DigestLayout::DigestLayoutIs(), loop);
    std::array<std::vector<std::uint8_t>, 2> bytes;
    pipe_flow_lrn_msg_t message{};
};

// A message of digests is sent, read and written into its entries; each of them has changed.
void digest(benchmark::State& state) {
    traceIntoRing();
    Engine engine(static_cast<std::uint32_t>(state.range(0)));
    std::size_t round = 0;
    for (auto _ : state) {
        engine.message.entries = engine.bytes[++round % 2].data();
        VynPacketTracer::rcvPktTracerLearningDigest(1, &engine.message, engine.engine.get());
        engine.engine->processPktTracerDigest();
    }
}
BENCHMARK(digest)->Name("engine/digest")->Arg(1)->Arg(400);

// One send, two reads, five fields found by packet id, and the ring records.
void digestFloor(benchmark::State& state) {
    struct Fields {
        std::uint8_t bytes[7];
    };
    struct __attribute__((packed)) Entry {
        std::uint16_t pktId;
        Fields fields;
    };
    auto const entries = static_cast<std::size_t>(state.range(0));
    BareRing ring;
    std::vector<Entry> sent(entries);
    std::vector<Entry> received(entries);
    std::unordered_map<std::uint16_t, Fields> status;
    for (std::size_t i = 0; i < entries; ++i) {
        sent[i].pktId = static_cast<std::uint16_t>(i);
        status[sent[i].pktId] = {};
    }
    int sockets[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, sockets) != 0) {
        state.SkipWithError("no sockets");
        return;
    }
    std::uint8_t header[10] = {};
    for (auto _ : state) {
        iovec parts[] = {{header, sizeof header}, {sent.data(), entries * sizeof(Entry)}};
        msghdr gathered{};
        gathered.msg_iov = parts;
        gathered.msg_iovlen = 2;
        benchmark::DoNotOptimize(::sendmsg(sockets[0], &gathered, 0));
        benchmark::DoNotOptimize(::read(sockets[1], header, sizeof header));
        benchmark::DoNotOptimize(::read(sockets[1], received.data(), entries * sizeof(Entry)));
        for (unsigned i = 0; i < 3; ++i) {
            ring.write(i, entries, 0, 0);
        }
        for (auto const& entry : received) {
            ring.write(3, entry.pktId, 0, 0);
            ring.write(4, entry.pktId, 0, 0);
            std::memcpy(&status[entry.pktId], &entry.fields, sizeof entry.fields);
        }
    }
    ::close(sockets[0]);
    ::close(sockets[1]);
}
BENCHMARK(digestFloor)->Name("floor/engine/digest")->Arg(1)->Arg(400);

}  // namespace
}  // namespace Bench
