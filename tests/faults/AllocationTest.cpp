// A full trace in which one allocation fails, each allocation in its turn. Grist and this program's
// operator new count as one row. Each run is a process of its own; it either catches
// std::bad_alloc at the call that it made, finds every collection whole, makes the call again and
// comes to the same result as without the failure, or it ends with that error as its reason,
// because the failure struck inside a dispatcher.
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "Grist/Grist.h"
#include "Trace/Handle.h"
#include "Trace/Text.h"
#include "VynPacketTracer/Fixture.h"
#include "VynPacketTracer/VynPtSm.h"

// Not inlined: the compiler would take free() for the wrong partner of operator new.
[[gnu::noinline]] void* operator new(std::size_t size) {
    Grist::passFailurePoint();
    if (void* const block = std::malloc(size != 0 ? size : 1)) {
        return block;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace VynPacketTracer {
namespace {

using PacketTracer::ClientConfig;
using PacketTracer::ClientStatus;

// ---- What is true of a collection and of an index whatever failed

template <class Key, class Value>
void expectWhole(Kel::Collection<Key, Value> const& collection) {
    std::size_t entries = 0;
    std::uint64_t order = 0;
    for (auto const& entry : collection) {
        ++entries;
        EXPECT_GT(entry.order, order);
        order = entry.order;
        EXPECT_EQ(collection.find(entry.key), &entry);
    }
    EXPECT_EQ(entries, collection.size());
}

// The first job without an answer, and the answers of a packet id, found by walking.
void expectIndexesFollow(PktGenConfig& config, PktGenStatus& status) {
    Vanta::Ptr<PktGenCfgData> pending;
    for (auto const& entry : config.cfg()) {
        if (!status.statusHas(entry.key)) {
            pending = entry.value;
            break;
        }
    }
    EXPECT_EQ(config.firstPending(status), pending);
    for (std::uint16_t pktId = 0; pktId < 20; ++pktId) {
        PktGenStatus::PktIdWalk walk(status, pktId);
        for (auto const& entry : status.status()) {
            if (entry.value->pktId() == pktId) {
                EXPECT_EQ(walk.next(), entry.value);
            }
        }
        EXPECT_FALSE(walk.next());
    }
}

unsigned openDescriptors() {
    unsigned count = 0;
    DIR* const folder = ::opendir("/proc/self/fd");
    while (::readdir(folder) != nullptr) {
        ++count;
    }
    ::closedir(folder);
    return count;
}

// ---- The trace, as single calls

// Requests of the client: enough that every collection outgrows its list.
constexpr std::uint32_t requests = 12;
constexpr std::uint16_t floodedVlan = 10;

class World {
  public:
    struct Step {
        std::string name;
        // Whether the call reaches a dispatcher, in which a failure ends the process.
        bool dispatches;
        std::function<void()> call;
    };

    World() {
        build();
        for (std::uint32_t number = 1; number <= requests; ++number) {
            add("request", true, [this, number] { clientConfig->requestIs(requestOf(number)); });
        }
        add("turn", true, [this] { loop->turn(); });
        for (std::uint32_t number = 1; number <= requests; ++number) {
            serve(number);
        }
        add("request withdrawn", true, [this] { clientConfig->requestDel({"noc", requests}); });
        add("turn", true, [this] { loop->turn(); });
        secondLife();
    }

    std::vector<Step> const& steps() const { return steps_; }

    void expectWhole() const {
        for (auto const& dir : {config, status}) {
            if (dir) {
                VynPacketTracer::expectWhole(dir->entry());
            }
        }
        if (clientConfig) {
            VynPacketTracer::expectWhole(clientConfig->request());
        }
        if (clientStatus) {
            VynPacketTracer::expectWhole(clientStatus->result());
            for (auto const& entry : clientStatus->result()) {
                VynPacketTracer::expectWhole(entry.value->egressIntf());
            }
        }
        if (systemStatus) {
            VynPacketTracer::expectWhole(systemStatus->portInfo());
            VynPacketTracer::expectWhole(systemStatus->portToIntfId());
        }
        if (vlan) {
            VynPacketTracer::expectWhole(vlan->intf());
        }
        if (chip) {
            VynPacketTracer::expectWhole(chip->phase0Data()->response());
        }
        if (tracer) {
            expectTracerWhole();
        }
    }

    // What the client sees.
    std::string results() const {
        std::string all;
        for (auto const& entry : clientStatus->result()) {
            all += keyText(entry.key) + " " +
                   std::to_string(static_cast<unsigned>(entry.value->state())) +
                   (entry.value->valid() ? " valid" : "");
            for (auto const& egress : entry.value->egressIntf()) {
                all += " " + egress.key.physicalIntf().stringValue() + "," +
                       egress.key.logicalIntf().stringValue();
            }
            all += "\n";
        }
        return all;
    }

  private:
    void add(std::string name, bool dispatches, std::function<void()> call) {
        steps_.push_back({std::move(name), dispatches, std::move(call)});
    }

    void build() {
        add("loop", false, [this] { loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs(); });
        add("chip", false, [this] { chip = std::make_unique<ScriptChip::ScriptChip>(); });
        add("system status", false,
            [this] { systemStatus = VynSystem::SystemStatus::SystemStatusIs(); });
        add("FEN data", false, [this] { fcsd = Fen::FenCommonSmData::FenCommonSmDataIs(); });
        add("bridging", false, [this] { bridging = Bridging::Config::ConfigIs(); });
        add("chip status", false, [this] { chipStatus = VynSlice::ChipStatus::ChipStatusIs(); });
        add("configuration", false, [this] { config = Kel::Dir::DirIs(); });
        add("status", false, [this] { status = Kel::Dir::DirIs(); });
        add("client's requests", false, [this] { clientConfig = ClientConfig::ClientConfigIs(); });
        add("client's results", false, [this] { clientStatus = ClientStatus::ClientStatusIs(); });
        add("VLAN", false,
            [this] { vlan = bridging->vlanConfigIs(Bridging::VlanId(floodedVlan)); });
        add("VLAN's CPU", false, [this] { vlan->intfIs(intf("Cpu")); });
        for (std::uint16_t port = 1; port <= requests; ++port) {
            add("port", false, [this, port] {
                systemStatus->portInfoIs(portIntf(port), {0, VynPortTypes::PortIndex(port)});
            });
            add("device port", false, [this, port] {
                systemStatus->portToIntfIdIs(VynPortTypes::PortIndex(port), portIntf(port));
            });
            add("member", false, [this, port] { vlan->intfIs(portIntf(port)); });
        }
        add("tracer", true, [this] { makeTracer(); });
        add("client's configuration entry", true, [this] { config->entryIs("noc", clientConfig); });
        add("client's status entry", true, [this] { status->entryIs("noc", clientStatus); });
    }

    // The engine's road with one job, up to the client's result. Every third packet is flooded and
    // routed.
    void serve(std::uint32_t number) {
        auto const pktId = static_cast<std::uint16_t>(number);
        Plexa::IntfId const ingress = ingressOf(number);
        add("phase 0", true, [this, ingress] {
            chip->phase0Data()->answerIs(ingress, Vanta::Bytes{4, 0}, 0);
        });
        add("injection", true, [this] { loop->turn(); });
        add("counter", false, [this, number] { chip->counterIs(0, number); });
        add("digest", true, [this, pktId] {
            SdkSeam::TraceDigest entry{.pktId = pktId, .l2Domain = floodedVlan, .egrPort = 5};
            if (pktId % 3 == 0) {
                entry.egrPort = 511;
                entry.routed = 1;
                entry.copyToCpu = 1;
            }
            chip->digest({entry});
        });
        add("answer", true, [this] { loop->turn(); });
    }

    // The tracer goes, and a new one finds the clients and requests.
    void secondLife() {
        add("tracer gone", true, [this] { tracer = nullptr; });
        add("second tracer", true, [this] { makeTracer(); });
        add("turn", true, [this] { loop->turn(); });
        add("client gone", true, [this] { config->entryDel("noc"); });
        add("second tracer gone", true, [this] { tracer = nullptr; });
    }

    void makeTracer() {
        tracer = packetTracerSmFactory(config, status, chip->phase0Data(), true, true, 1,
                                       chip->device(), chip->learnQuanta(), chip->digestLayout(),
                                       loop, systemStatus, fcsd, bridging, chipStatus);
    }

    static Plexa::IntfId portIntf(std::uint32_t port) {
        return intf("Ethernet" + std::to_string(port));
    }
    static Plexa::IntfId ingressOf(std::uint32_t number) { return portIntf(1 + number % 2); }
    static Vanta::Ptr<PacketTracer::Request> requestOf(std::uint32_t number) {
        return makeRequest("noc", number, ingressOf(number).stringValue());
    }

    void expectTracerWhole() const {
        auto& jobs = *tracer->pktGenCfg();
        auto& answers = *tracer->pktGenStatus();
        VynPacketTracer::expectWhole(jobs.cfg());
        VynPacketTracer::expectWhole(answers.status());
        expectIndexesFollow(jobs, answers);
        // Each answer is watched.
        for (auto const& entry : answers.status()) {
            auto const watcher = tracer->localStatus(entry.key);
            ASSERT_TRUE(watcher) << keyText(entry.key);
            EXPECT_EQ(watcher->notifier(), entry.value);
        }
        // A client that is there has its state machine; that one watches each request, and each
        // request, all being good ones, has its job.
        bool const present = config->entryHas("noc") && status->entryHas("noc");
        auto const client = tracer->clientSm("noc");
        EXPECT_EQ(static_cast<bool>(client), present);
        if (client) {
            for (auto const& entry : clientConfig->request()) {
                auto const reactor = client->request(entry.key);
                ASSERT_TRUE(reactor) << keyText(entry.key);
                EXPECT_EQ(reactor->notifier(), entry.value);
                EXPECT_TRUE(jobs.cfgHas(entry.key)) << keyText(entry.key);
            }
        }
    }

    std::vector<Step> steps_;

    std::unique_ptr<ScriptChip::ScriptChip> chip;
    Vanta::Ptr<Orb::TaskSchedulerRoot> loop;
    Vanta::Ptr<VynSystem::SystemStatus> systemStatus;
    Vanta::Ptr<Fen::FenCommonSmData> fcsd;
    Vanta::Ptr<Bridging::Config> bridging;
    Vanta::Ptr<VynSlice::ChipStatus> chipStatus;
    Vanta::Ptr<Kel::Dir> config;
    Vanta::Ptr<Kel::Dir> status;
    Vanta::Ptr<ClientConfig> clientConfig;
    Vanta::Ptr<ClientStatus> clientStatus;
    Vanta::Ptr<Bridging::VlanConfig> vlan;
    Vanta::Ptr<PacketTracerSm> tracer;
};

// ---- One run, in a process of its own

enum Outcome : int { caught = 20, ended = 21, endedElsewhere = 22, notReached = 23, wrong = 24 };

World::Step const* current = nullptr;

// The process ends where a failure may end it, with the failure as its reason, or wrongly.
void lastStep(void*, std::string_view errorClass, std::string_view text) {
    bool const expected =
        current->dispatches && errorClass == "bad_alloc" && text == "std::bad_alloc";
    if (!expected) {
        std::cerr << "ended in \"" << current->name << "\": " << errorClass << ": " << text << "\n";
    }
    ::_exit(expected ? ended : endedElsewhere);
}

// A call; true if it failed and was made again.
bool failsAndIsRepeated(World const& world, World::Step const& step) {
    current = &step;
    auto const nodes = Vanta::Node::liveCount();
    auto const descriptors = openDescriptors();
    try {
        step.call();
        return false;
    } catch (std::bad_alloc const&) {
    }
    SCOPED_TRACE("after a failure in \"" + step.name + "\"");
    EXPECT_EQ(Vanta::Node::liveCount(), nodes);
    EXPECT_EQ(openDescriptors(), descriptors);
    world.expectWhole();
    step.call();
    world.expectWhole();
    return true;
}

// Failed expectations so far: a child begins with its parent's.
int failures() {
    auto const& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    return result.total_part_count();
}

Outcome runWithFailure(std::uint64_t number, std::string const& expectedResults) {
    Vanta::LastStep const end(lastStep);
    int const failuresBefore = failures();
    auto const nodes = Vanta::Node::liveCount();
    auto const blocks = Grist::liveBlocks();
    auto const descriptors = openDescriptors();
    bool failed = false;
    auto world = std::make_unique<World>();
    Grist::failAfterIs(number);
    for (auto const& step : world->steps()) {
        // The count is on during the calls only: what the checks allocate is no part of the trace.
        failed = failsAndIsRepeated(*world, step) || failed;
        if (step.name == "request withdrawn") {
            auto const left = Grist::failAfter();
            Grist::failAfterIs(0);
            EXPECT_EQ(world->results(), expectedResults);
            Grist::failAfterIs(left);
        }
    }
    bool const reached = Grist::failAfter() == 0;
    Grist::failAfterIs(0);
    world.reset();
    EXPECT_EQ(Vanta::Node::liveCount(), nodes);
    EXPECT_EQ(Grist::liveBlocks(), blocks);
    EXPECT_EQ(openDescriptors(), descriptors);
    if (!reached) {
        return notReached;
    }
    EXPECT_TRUE(failed) << "an allocation failed and nobody heard of it";
    return failures() != failuresBefore ? wrong : caught;
}

// The results of a trace without a failure.
std::string resultsWithoutFailure() {
    World world;
    std::string results;
    for (auto const& step : world.steps()) {
        step.call();
        if (step.name == "request withdrawn") {
            results = world.results();
        }
    }
    return results;
}

// Runs the trace with every single failure; returns how many were caught and how many ended the
// process.
std::pair<unsigned, unsigned> failEveryAllocation() {
    std::string const results = resultsWithoutFailure();
    EXPECT_EQ(std::count(results.begin(), results.end(), '\n'), requests - 1) << results;
    std::pair<unsigned, unsigned> outcomes;
    for (std::uint64_t number = 1;; ++number) {
        std::cout.flush();
        pid_t const child = ::fork();
        if (child == 0) {
            Outcome const outcome = runWithFailure(number, results);
            std::cout.flush();
            ::_exit(outcome);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        int const outcome = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        if (outcome == notReached) {
            return outcomes;
        }
        outcomes.first += outcome == caught;
        outcomes.second += outcome == ended;
        if (outcome != caught && outcome != ended) {
            ADD_FAILURE() << "allocation " << number << ": "
                          << (outcome < 0 ? "signal " + std::to_string(-outcome)
                                          : "outcome " + std::to_string(outcome));
        }
    }
}

TEST(Allocation, ThatFailsIsCaughtWithAllCollectionsWholeOrEndsTheProcess) {
    auto const [caughtRuns, endedRuns] = failEveryAllocation();
    RecordProperty("caught", static_cast<int>(caughtRuns));
    RecordProperty("ended", static_cast<int>(endedRuns));
    EXPECT_GT(caughtRuns, 100U);
    EXPECT_GT(endedRuns, 100U);
}

TEST(Allocation, ThatFailsWhileEverythingIsTracedDoesTheSame) {
    ASSERT_FALSE(Trace::textSettingsAre("VynPt*/*"));
    int const nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    Trace::textDescriptorIs(nowhere);
    auto const [caughtRuns, endedRuns] = failEveryAllocation();
    for (char const* const name : {"VynPtSm", "VynPtClientSm", "VynPtPktGenSm"}) {
        Trace::handle(name).textLevelsIs(Trace::LevelSet());
    }
    Trace::textDescriptorIs(STDERR_FILENO);
    ::close(nowhere);
    EXPECT_GT(caughtRuns, 100U);
    EXPECT_GT(endedRuns, 100U);
}

}  // namespace
}  // namespace VynPacketTracer
