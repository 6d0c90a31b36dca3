// The whole road, over and over: clients, tracer and chip in one process, with requests that are
// withdrawn at random moments. The moments are turns of the event loop and places in a turn; they
// follow from a seed. What the chip's own thread does meanwhile does not.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <string>

#include "Bridging/Config.h"
#include "Fen/FenCommonSmData.h"
#include "Kel/Dir.h"
#include "Orb/Task.h"
#include "PacketTracer/ClientConfig.h"
#include "PacketTracer/ClientStatus.h"
#include "VynPacketTracer/VynPtSm.h"
#include "VynSdk/VynSdk.h"
#include "VynSlice/ChipStatus.h"
#include "VynSystem/SystemStatus.h"
#include "sdkseam/DigestLayout.h"
#include "softchip/Phase0Data.h"
#include "softchip/SoftChip.h"
#include "tests/softchip/FrameBuilder.h"

namespace SoftChip {
namespace {

constexpr VynId::VynDevId device = 1;
constexpr p4_pd_sess_hdl_t session = 4;
constexpr unsigned ports = 4;  // one a pipe, all of VLAN 10, a host behind each
constexpr unsigned clients = 10;
constexpr unsigned requests = 10'000;
constexpr unsigned requestsAtOnce = 40;

Plexa::IntfId intf(unsigned port) {
    return *Plexa::IntfId::fromName("Ethernet" + std::to_string(port + 1));
}

DevicePort devicePort(unsigned port) {
    return static_cast<DevicePort>(port * 128 + 5);
}

MacAddress host(unsigned number) {
    return {0x020000000010U + number};
}

// Switch, chip and tracer, as an agent puts them together.
struct Agent {
    explicit Agent(Mode mode)
        : chip({.device = device,
                .session = session,
                .mode = mode,
                .journalLimit = Journal::unlimited}) {
        for (unsigned port = 0; port < ports; ++port) {
            addPort(port);
        }
        tracer = VynPacketTracer::packetTracerSmFactory(
            config, status, phase0, true, true, session, device,
            SdkSeam::LearnQuanta::LearnQuantaIs(), SdkSeam::DigestLayout::DigestLayoutIs(), loop,
            systemStatus, Fen::FenCommonSmData::FenCommonSmDataIs(), bridging,
            VynSlice::ChipStatus::ChipStatusIs());
    }

    void addPort(unsigned port) {
        systemStatus->portInfoIs(intf(port),
                                 {static_cast<std::uint8_t>(port), VynPortTypes::PortIndex(5)});
        systemStatus->portToIntfIdIs(VynPortTypes::PortIndex(devicePort(port)), intf(port));
        bridging->vlanConfigIs(Bridging::VlanId(10))->intfIs(intf(port));
        phase0->ingressPortIs(intf(port), devicePort(port));
        chip.change([port](Tables& tables) {
            auto const logical = LogicalPort::port(devicePort(port));
            tables.portIs(devicePort(port), true);
            tables.modeIs(logical, PortMode::access(10));
            tables.vlanMemberIs(10, logical);
            tables.fdbIs(10, host(port), logical);
        });
    }

    SoftChip chip;
    Vanta::Ptr<Orb::TaskSchedulerRoot> loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    Vanta::Ptr<VynSystem::SystemStatus> systemStatus = VynSystem::SystemStatus::SystemStatusIs();
    Vanta::Ptr<Bridging::Config> bridging = Bridging::Config::ConfigIs();
    Vanta::Ptr<Phase0Data> phase0 = Phase0Data::Phase0DataIs(loop);
    Vanta::Ptr<Kel::Dir> config = Kel::Dir::DirIs();
    Vanta::Ptr<Kel::Dir> status = Kel::Dir::DirIs();
    Vanta::Ptr<VynPacketTracer::PacketTracerSm> tracer;
};

// One request of the run. Ingress port and size of the frame tell it from every other.
struct Asked {
    enum class Outcome { forwarded, dropped, flooded };

    explicit Asked(unsigned ownNumber) : number(ownNumber) {}

    unsigned port() const { return number % ports; }
    std::size_t frameSize() const { return 64 + number / ports; }
    unsigned target() const { return (number / ports) % (ports + 1); }  // `ports`: nobody's
    Outcome outcome() const {
        return target() == ports    ? Outcome::flooded
               : target() == port() ? Outcome::dropped  // hairpin
                                    : Outcome::forwarded;
    }
    Vanta::Bytes frame() const {
        auto bytes = FrameBuilder::join({FrameBuilder::ethernet(host(target()), host(port())),
                                         FrameBuilder::number(0x88b5, 2)});
        bytes.resize(frameSize());
        return Vanta::Bytes(bytes);
    }

    unsigned number;
    PacketTracer::RequestId id;
    Vanta::Ptr<PacketTracer::ClientConfig> config;
    Vanta::Ptr<PacketTracer::ClientStatus> status;
    std::uint64_t validAt = 0;     // in turns
    std::uint64_t withdrawAt = 0;  // answered or not
    bool answered = false;
    std::uint16_t pktId = 0;  // of the digest that answered it
};

// Has the clients ask and withdraw until all requests are through. It acts at three places of a
// turn: in a posted call, ahead of the engine's task, and behind it.
class Driver {
  public:
    Driver(Agent& agent, unsigned seed) : agent_(agent), random_(seed) {
        for (unsigned client = 0; client < clients; ++client) {
            Vanta::String const name("client" + std::to_string(client));
            configs_.push_back(PacketTracer::ClientConfig::ClientConfigIs());
            statuses_.push_back(PacketTracer::ClientStatus::ClientStatusIs());
            names_.push_back(name);
            agent.config->entryIs(name, configs_.back());
            agent.status->entryIs(name, statuses_.back());
        }
        for (auto* actor : {&early_, &late_}) {
            actor->subscriber.subscribe<&Driver::run>(actor->task->publisher(), this);
            actor->task->schedule();
        }
    }

    // What a test does besides whenever the driver acts.
    std::function<void(std::mt19937&)> besides = [](std::mt19937&) {};
    // Turns after which an unanswered request is withdrawn; none: never.
    std::optional<std::uint64_t> patience;

    // The longest wait of a turn. On one thread there is nothing to wait for.
    Orb::TaskSchedulerRoot::Wait wait = Orb::TaskSchedulerRoot::Wait::zero();

    void runToTheEnd() {
        while (asked_.size() < requests || !open_.empty()) {
            if (chance(10)) {
                agent_.loop->post([this] { act(); });
            }
            agent_.loop->turn(wait);
        }
    }

    std::vector<std::unique_ptr<Asked>> const& asked() const { return asked_; }

  private:
    struct Actor {
        Vanta::Ptr<Orb::Task> task;
        Vanta::Subscriber subscriber;
    };

    bool chance(unsigned percent) { return random_() % 100 < percent; }
    std::uint64_t now() const { return agent_.loop->turns(); }

    void run(Vanta::Publisher const& publisher, Vanta::Subscriber&, Vanta::AttributeNumber,
             Vanta::ValueRef, Vanta::ValueRef) {
        (&publisher == &early_.task->publisher() ? early_ : late_).task->schedule();
        act();
    }

    void act() {
        besides(random_);
        while (asked_.size() < requests && open_.size() < requestsAtOnce && chance(60)) {
            ask();
        }
        std::erase_if(open_, [this](Asked* asked) { return through(*asked); });
    }

    void ask() {
        auto asked = std::make_unique<Asked>(static_cast<unsigned>(asked_.size()));
        auto const client = random_() % clients;
        asked->id = {names_[client], asked->number};
        asked->config = configs_[client];
        asked->status = statuses_[client];
        asked->validAt = now() + (chance(50) ? 0 : random_() % 4);
        asked->withdrawAt = chance(40) ? now() + random_() % 60 : ~std::uint64_t{0};
        auto const request = PacketTracer::Request::RequestIs(asked->id);
        request->intfIs(intf(asked->port()));
        request->frameIs(asked->frame());
        request->validIs(asked->validAt == now());
        asked->config->requestIs(request);
        if (patience) {
            asked->withdrawAt = std::min(asked->withdrawAt, now() + *patience);
        }
        open_.push_back(asked.get());
        asked_.push_back(std::move(asked));
    }

    // Moves a request on; true when it has been withdrawn.
    bool through(Asked& asked) {
        if (asked.validAt <= now()) {
            asked.config->request(asked.id)->validIs(true);
        }
        auto const result = asked.status->result(asked.id);
        if (!asked.answered && result && result->valid()) {
            take(asked, *result);
        }
        if (asked.withdrawAt > now()) {
            return false;
        }
        asked.config->requestDel(asked.id);
        return true;
    }

    void take(Asked& asked, PacketTracer::Result const& result) {
        asked.answered = true;
        asked.pktId = agent_.tracer->pktGenStatus()->status(asked.id)->pktId();
        asked.withdrawAt = std::min<std::uint64_t>(asked.withdrawAt, now() + random_() % 5);
        std::size_t const egress[]{1, 0, ports - 1};  // by outcome
        EXPECT_EQ(result.egressIntf().size(), egress[static_cast<int>(asked.outcome())]);
        if (asked.outcome() == Asked::Outcome::forwarded) {
            EXPECT_EQ(result.egressIntf().first()->key,
                      PacketTracer::ResultEntry::fromPhysicalIntf(intf(asked.target())));
        }
    }

    Agent& agent_;
    std::mt19937 random_;
    std::vector<Vanta::String> names_;
    std::vector<Vanta::Ptr<PacketTracer::ClientConfig>> configs_;
    std::vector<Vanta::Ptr<PacketTracer::ClientStatus>> statuses_;
    std::vector<std::unique_ptr<Asked>> asked_;
    std::vector<Asked*> open_;
    Actor early_{Orb::Task::TaskIs(agent_.loop, Orb::TaskPriority::p0, "early"), {}};
    Actor late_{Orb::Task::TaskIs(agent_.loop, Orb::TaskPriority::p7, "late"), {}};
};

class Soak : public testing::TestWithParam<unsigned> {
  protected:
    // The packet ids under which a request was injected, by ingress pipe and size.
    using Injections = std::multimap<std::pair<std::uint32_t, std::size_t>, std::uint16_t>;

    static Injections injections(SoftChip const& chip) {
        Injections all;
        for (auto const& entry : chip.journal().entries()) {
            if (entry.kind == JournalEntry::Kind::injection) {
                all.insert({{entry.pipe, entry.pktBytes}, entry.pktId});
            }
        }
        return all;
    }

    static void expectCountersToSumToTheCalls(SoftChip& chip) {
        chip.drain();
        auto const counters = chip.journal().counters();
        std::uint64_t sum = 0;
        for (unsigned pipe = 0; pipe < pipeCount; ++pipe) {
            std::uint64_t count = 0;
            EXPECT_EQ(VynSdk::getPktCounters(session, device, pipe, generatorApp, count), 0);
            sum += count;
        }
        EXPECT_EQ(sum, counters.callsOf(SdkFunction::genOnePkt) -
                           counters.failuresOf(SdkFunction::genOnePkt));
        EXPECT_LT(sum, 65536u);  // so packet ids are unique
    }

    // Under the packet id of each request that a digest answered there is one injection, and it is
    // that request's.
    static void expectOneInjectionAnAnswer(Driver const& driver, Injections const& injections) {
        std::map<std::uint16_t, unsigned> times;
        for (auto const& [frame, pktId] : injections) {
            ++times[pktId];
        }
        for (auto const& asked : driver.asked()) {
            if (asked->answered) {
                EXPECT_EQ(times[asked->pktId], 1u);
                auto const [first, last] =
                    injections.equal_range({asked->port(), asked->frameSize()});
                EXPECT_TRUE(std::any_of(first, last, [&](auto const& injection) {
                    return injection.second == asked->pktId;
                }));
            }
        }
    }

    static void expectNoRequestToBeInjectedTwice(Driver const& driver,
                                                 Injections const& injections) {
        for (auto const& asked : driver.asked()) {
            auto const times = injections.count({asked->port(), asked->frameSize()});
            EXPECT_LE(times, 1u) << "request " << asked->number;
        }
    }

    static std::size_t answered(Driver const& driver) {
        return static_cast<std::size_t>(std::ranges::count_if(
            driver.asked(), [](auto const& asked) { return asked->answered; }));
    }
};

TEST_P(Soak, AnswersOrWithdrawsEveryRequest) {
    Agent agent(Mode::threaded);
    Driver driver(agent, GetParam());
    driver.wait = std::chrono::milliseconds(1);
    driver.runToTheEnd();
    expectCountersToSumToTheCalls(agent.chip);
    auto const all = injections(agent.chip);
    expectOneInjectionAnAnswer(driver, all);
    expectNoRequestToBeInjectedTwice(driver, all);
    EXPECT_GE(answered(driver), requests / 2);
    EXPECT_EQ(agent.chip.outstandingMessages(), 0u);
}

TEST_P(Soak, AnswersOrWithdrawsEveryRequestStepByStep) {
    Agent agent(Mode::stepwise);
    Driver driver(agent, GetParam());
    driver.besides = [&](std::mt19937& random) {
        if (random() % 3 == 0) {
            agent.chip.step();
        }
    };
    driver.runToTheEnd();
    expectCountersToSumToTheCalls(agent.chip);
    auto const all = injections(agent.chip);
    expectOneInjectionAnAnswer(driver, all);
    expectNoRequestToBeInjectedTwice(driver, all);
    EXPECT_GE(answered(driver), requests / 2);
}

// Now and then something goes wrong, and something else is put right.
class Trouble {
  public:
    explicit Trouble(Agent& agent) : agent_(agent) {}

    void operator()(std::mt19937& random) {
        if (random() % 3 == 0) {
            agent_.chip.step();
        }
        switch (random() % 400) {
            case 0:
                return agent_.chip.faults().failIs(static_cast<SdkFunction>(random() % 4), 50,
                                                   1 + random() % 3, 1 + random() % 3);
            case 1:
                return agent_.chip.faults().digestIs(
                    {.fate = static_cast<DigestFate>(1 + random() % 3),
                     .nth = 1 + random() % 3,
                     .behind = static_cast<std::uint32_t>(random() % 3)});
            case 2:
                return agent_.chip.faults().failIs(SdkFunction::notifyAck, 51);
            case 3:
                return agent_.chip.generator(random() % 4).stalledIs(true);
            case 4:
                return agent_.chip.generator(random() % 4).counterIs(random() % 3);
            case 5:
                return agent_.phase0->lateIs(random() % 20, 1 + random() % 3);
            case 6:
                return agent_.phase0->lostIs(1 + random() % 3);
            case 7:
                return agent_.phase0->statusIs(9, 1 + random() % 3);
            case 8:
            case 9:
            case 10:
                return putRight();
        }
    }

    void putRight() {
        agent_.chip.releaseHeld();
        for (unsigned pipe = 0; pipe < pipeCount; ++pipe) {
            agent_.chip.generator(pipe).stalledIs(false);
        }
    }

  private:
    Agent& agent_;
};

TEST_P(Soak, AnswersOrWithdrawsEveryRequestWhateverGoesWrong) {
    Agent agent(Mode::stepwise);
    Driver driver(agent, GetParam());
    driver.patience = 300;
    driver.besides = Trouble(agent);
    driver.runToTheEnd();
    agent.chip.faults().clear();
    agent.chip.drain();
    auto const counters = agent.chip.journal().counters();
    std::uint64_t generated = 0;
    for (unsigned pipe = 0; pipe < pipeCount; ++pipe) {
        generated += agent.chip.generator(pipe).generated();
    }
    EXPECT_EQ(generated, counters.callsOf(SdkFunction::genOnePkt) -
                             counters.failuresOf(SdkFunction::genOnePkt));
    expectOneInjectionAnAnswer(driver, injections(agent.chip));
    EXPECT_GE(answered(driver), requests / 10);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Soak, testing::Values(1u, 20261121u));

}  // namespace
}  // namespace SoftChip
