// Whole runs with faults: what the recording makes a replay show is what the run showed.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "Recorded.h"
#include "agent/TraceClient.h"
#include "switchfile/SwitchFile.h"

namespace Agent {
namespace {

using namespace std::chrono_literals;
using SoftChip::DigestFate;
using SoftChip::SdkFunction;

constexpr char const* switchFile = R"({
    "routerMac": "02:00:00:00:ff:01",
    "vlans": {"10": {}, "20": {}},
    "interfaces": {
        "Ethernet1": {"port": "0/0", "access": 10},
        "Ethernet2": {"port": "0/1", "access": 10},
        "Ethernet3": {"port": "1/2", "access": 10},
        "Ethernet4": {"port": "0/3", "access": 20},
        "Ethernet5": {"port": "2/0", "routed": true}
    },
    "fdb": {"10": {"02:00:00:00:00:02": "Ethernet2"}}
})";

Vanta::Bytes frameTo(std::uint8_t lastOctet) {
    std::vector<std::uint8_t> frame(60);
    frame[0] = frame[6] = 0x02;
    frame[5] = lastOctet;
    frame[11] = 0x01;
    frame[12] = 0x88;
    frame[13] = 0xb5;
    return frame;
}

// A client with the verbs that the runs below are written in; time stands still, so nobody is late.
struct Client {
    explicit Client(ForwardingAgent& ownAgent, char const* name = "client")
        : agent(ownAgent), client(ownAgent, name, 1h, [this] { return time; }) {}

    std::uint32_t add(std::uint8_t lastOctet = 2, char const* intf = "Ethernet1") {
        auto const request = client.request();
        request->frameIs(frameTo(lastOctet));
        request->intfIs(*Plexa::IntfId::fromName(intf));
        client.add(request);
        return request->id().number();
    }
    // Turns the loop, with the chip's work between the turns; answers are taken as they come.
    unsigned turn(unsigned turns = 40) {
        unsigned answers = 0;
        for (unsigned i = 0; i < turns; ++i) {
            answers += client.poll(0ns).has_value() ? 1 : 0;
            agent.chip().step();
        }
        return answers;
    }

    ForwardingAgent& agent;
    TraceClient::Clock::time_point time;
    TraceClient client;
};

class RecordReplay : public testing::Test {
  protected:
    std::string run(std::function<void(ForwardingAgent&)> const& live) {
        return expectReplayed(SwitchFile::parseSwitchFile(switchFile, "test"),
                              {.mode = SoftChip::Mode::stepwise}, live);
    }
};

unsigned count(std::string const& text, std::string_view part) {
    unsigned found = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++found;
    }
    return found;
}

TEST_F(RecordReplay, OneTrace) {
    auto const scenario = run([](ForwardingAgent& agent) {
        Client client(agent);
        client.add();
        EXPECT_EQ(client.turn(), 1U);
    });
    EXPECT_EQ(count(scenario, R"("do":"digest")"), 1U);
    EXPECT_EQ(count(scenario, R"("do":"port",)"), 5U);
}

TEST_F(RecordReplay, ManyRequestsOfTwoClients) {
    run([](ForwardingAgent& agent) {
        Client one(agent, "one");
        Client two(agent, "two");
        for (unsigned i = 0; i < 10; ++i) {
            one.add(i % 3 == 0 ? 2 : 9);
            two.add(2, i % 2 == 0 ? "Ethernet3" : "Ethernet5");
        }
        EXPECT_EQ(one.turn(100) + two.turn(100), 20U);
    });
}

TEST_F(RecordReplay, RefusedRequestsAndUnknownIngress) {
    run([](ForwardingAgent& agent) {
        Client client(agent);
        auto const request = client.client.request();
        request->frameIs(frameTo(2));
        request->mplsIs(true);
        request->intfIs(*Plexa::IntfId::fromName("Ethernet1"));
        client.client.add(request);
        client.add(2, "Ethernet99");
        client.client.add(client.client.request());
        EXPECT_EQ(client.turn(), 3U);
    });
}

TEST_F(RecordReplay, ARequestByItsFields) {
    auto const scenario = run([](ForwardingAgent& agent) {
        Client client(agent);
        auto const request = client.client.request();
        PacketTracer::PacketFields fields;
        fields.ethDst = PacketTracer::MacAddress{0x020000000002};
        fields.ethSrc = PacketTracer::MacAddress{0x020000000001};
        request->fieldsIs(fields);
        request->etherTypeIs(0x88b5);
        request->intfIs(*Plexa::IntfId::fromName("Ethernet1"));
        client.client.add(request);
        EXPECT_EQ(client.turn(), 1U);
    });
    EXPECT_EQ(count(scenario, R"("raw":"020000000002020000000001)"), 1U);
}

class FailingCall : public RecordReplay, public testing::WithParamInterface<SdkFunction> {};

TEST_P(FailingCall, EachTimeInTurn) {
    for (std::uint64_t nth = 1; nth <= 4; ++nth) {
        for (std::uint64_t times : {1, 2, 3}) {
            run([&](ForwardingAgent& agent) {
                agent.chip().faults().failIs(GetParam(), -7, nth, times);
                Client client(agent);
                client.add();
                client.add(9, "Ethernet3");
                client.add(2, "Ethernet3");
                client.turn(80);
            });
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Calls, FailingCall,
                         testing::Values(SdkFunction::getPktCounters, SdkFunction::genOnePkt,
                                         SdkFunction::disableAppId, SdkFunction::disablePktGen,
                                         SdkFunction::notifyAck, SdkFunction::digestDeregister),
                         [](auto const& instance) {
                             return std::string(sdkFunctionName(instance.param));
                         });

TEST_F(RecordReplay, DigestsLostDoubledAndHeld) {
    run([](ForwardingAgent& agent) {
        auto& faults = agent.chip().faults();
        faults.digestIs({.fate = DigestFate::lost, .nth = 1});
        faults.digestIs({.fate = DigestFate::doubled, .nth = 1});
        faults.digestIs({.fate = DigestFate::held, .nth = 1, .behind = 1});
        faults.digestIs({.fate = DigestFate::held, .nth = 2, .times = 2});
        Client client(agent);
        for (unsigned i = 0; i < 8; ++i) {
            client.add(static_cast<std::uint8_t>(2 + i));
        }
        client.turn(100);
        agent.chip().releaseHeld();
        client.turn(10);
    });
}

TEST_F(RecordReplay, BatchedDigests) {
    auto const scenario = run([](ForwardingAgent& agent) {
        agent.chip().faults().digestIs({.fate = DigestFate::held, .times = 3});
        Client client(agent);
        client.add();
        client.add(9);
        client.add(2, "Ethernet3");
        EXPECT_EQ(client.turn(100), 0U);
        agent.chip().releaseHeld();
        EXPECT_EQ(client.turn(), 3U);
    });
    EXPECT_EQ(count(scenario, R"("do":"digest")"), 1U);
    EXPECT_EQ(count(scenario, R"("egrPort":)"), 3U);
}

TEST_F(RecordReplay, DigestsThatAreNeverRead) {
    auto const scenario = run([](ForwardingAgent& agent) {
        agent.chip().faults().digestIs({.fate = DigestFate::held, .times = 2});
        Client client(agent);
        client.add();
        client.add(9);
        client.turn(100);
        agent.chip().releaseHeld();
        agent.chip().step();
    });
    EXPECT_EQ(count(scenario, R"("do":"digest")"), 1U);
}

// An answer and a digest come in one turn: the answer must not be seen between it and the task.
TEST_F(RecordReplay, PhaseZeroAnswersInTheTurnOfADigest) {
    run([](ForwardingAgent& agent) {
        agent.chip().faults().digestIs({.fate = DigestFate::held, .times = 100});
        Client client(agent);
        client.add();
        client.turn();
        client.add(9);
        client.client.poll(0ns);
        agent.chip().releaseHeld();
        agent.chip().step();
        client.client.poll(0ns);
        client.turn();
        for (unsigned late = 0; late < 6; ++late) {
            client.add(9, "Ethernet3");
            for (unsigned i = 0; i < late; ++i) {
                client.client.poll(0ns);
            }
            agent.chip().releaseHeld();
            agent.chip().step();
            client.client.poll(0ns);
            client.turn(20);
        }
    });
}

TEST_F(RecordReplay, PhaseZeroLateLostAndNotZero) {
    run([](ForwardingAgent& agent) {
        agent.phase0Data().lateIs(5, 2);
        agent.phase0Data().lostIs(4);
        agent.phase0Data().statusIs(17, 1);
        Client client(agent);
        auto const first = client.add();
        client.add(9, "Ethernet3");
        client.add(9, "Ethernet5");
        auto const lost = client.add(2, "Ethernet4");
        client.turn(60);
        EXPECT_LE(first, lost);
        agent.clientConfigs().entity<PacketTracer::ClientConfig>("client")->requestDel(
            {"client", lost});
        client.add();
        client.turn(60);
    });
}

TEST_F(RecordReplay, StalledAndResetCounters) {
    auto const scenario = run([](ForwardingAgent& agent) {
        Client client(agent);
        client.add();
        client.turn();
        agent.chip().generator(0).stalledIs(true);
        client.add(9);
        client.turn(30);
        agent.chip().generator(0).stalledIs(false);
        client.turn();
        agent.chip().generator(0).counterIs(1'000'000'000'000ULL);
        client.add(9);
        client.turn(4);
        agent.chip().generator(0).counterIs(3);
        client.turn();
    });
    EXPECT_GE(count(scenario, R"("do":"turn","times":)"), 1U);
    EXPECT_EQ(count(scenario, "#"), 0U);
}

TEST_F(RecordReplay, WithdrawalsAtEveryMoment) {
    for (unsigned moment = 0; moment < 12; ++moment) {
        run([moment](ForwardingAgent& agent) {
            agent.chip().generator(0).stalledIs(moment % 2 == 0);
            Client client(agent);
            auto const number = client.add();
            client.add(9);
            for (unsigned i = 0; i < moment; ++i) {
                agent.loop().turn();
                if (moment % 3 != 0) {
                    agent.chip().step();
                }
            }
            auto const config = agent.clientConfigs().entity<PacketTracer::ClientConfig>("client");
            config->requestDel({"client", number});
            agent.chip().generator(0).stalledIs(false);
            for (unsigned i = 0; i < 40; ++i) {
                agent.loop().turn();
                agent.chip().step();
            }
        });
    }
}

TEST_F(RecordReplay, ChangesOfForwardingStateBetweenInjectionAndAnswer) {
    auto const scenario = run([](ForwardingAgent& agent) {
        Client client(agent);
        client.add(9);
        client.turn(3);
        agent.changeForwardingState([](ForwardingState const& state) {
            auto const vlan = state.bridgingConfig->vlanConfigIs(Bridging::VlanId(10));
            vlan->intfDel(*Plexa::IntfId::fromName("Ethernet2"));
            state.systemStatus->portInfoDel(*Plexa::IntfId::fromName("Ethernet4"));
            state.fcsd->lagToPortIs(*Plexa::IntfId::fromName("Lag1"));
            state.fcsd->portToLagIs(*Plexa::IntfId::fromName("Ethernet3"),
                                    *Plexa::IntfId::fromName("Lag1"));
        });
        client.turn();
        client.add(9, "Ethernet4");
        client.turn();
    });
    EXPECT_EQ(count(scenario, R"({"do":"portDel","intf":"Ethernet4"})"), 1U);
}

TEST_F(RecordReplay, ARestartWithRequestsAndResultsLeftOver) {
    for (unsigned moment = 0; moment < 10; ++moment) {
        auto const scenario = run([moment](ForwardingAgent& agent) {
            auto const config = PacketTracer::ClientConfig::ClientConfigIs();
            auto const status = PacketTracer::ClientStatus::ClientStatusIs();
            agent.clientConfigs().entryIs("kept", config);
            agent.clientStatuses().entryIs("kept", status);
            for (std::uint32_t number = 1; number <= 4; ++number) {
                auto const request = PacketTracer::Request::RequestIs({"kept", number});
                request->frameIs(frameTo(static_cast<std::uint8_t>(number)));
                request->intfIs(*Plexa::IntfId::fromName("Ethernet1"));
                request->validIs(number != 4);
                config->requestIs(request);
            }
            auto const turn = [&](unsigned turns) {
                for (unsigned i = 0; i < turns; ++i) {
                    agent.loop().turn();
                    agent.chip().step();
                }
            };
            turn(moment * 2);
            agent.restartTracer();
            turn(30);
            config->request({"kept", 4})->validIs(true);
            turn(30);
            agent.clientConfigs().entryDel("kept");
        });
        EXPECT_EQ(count(scenario, R"("do":"start")"), 2U);
        EXPECT_EQ(count(scenario, "#"), 0U);
    }
}

TEST_F(RecordReplay, ATracerWithoutTheDigest) {
    expectReplayed(
        SwitchFile::parseSwitchFile(switchFile, "test"),
        {.mode = SoftChip::Mode::stepwise, .device = 3, .session = 1, .pktTracerSupported = false},
        [](ForwardingAgent& agent) {
            Client client(agent);
            client.add();
            EXPECT_EQ(client.turn(), 1U);
        });
}

// ---- The end of the process

// Takes another packet under the number of an accepted request, which the tracer does not survive.
void changePacket(ForwardingAgent& agent, Client& client) {
    auto const number = client.add();
    client.turn(2);
    auto const config = agent.clientConfigs().entity<PacketTracer::ClientConfig>("client");
    auto const request = PacketTracer::Request::RequestIs({"client", number});
    request->frameIs(frameTo(9));
    request->intfIs(*Plexa::IntfId::fromName("Ethernet1"));
    request->validIs(true);
    config->requestIs(request);
}

int replayed(std::string const& path) {
    std::ostringstream ignored;
    return Replay::runFile(path, ignored, ignored);
}

TEST_F(RecordReplay, TheEventThatEndsTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    ScratchPath const path("recorded.jsonl");
    auto const live = [&path] {
        Scenario::RecordingFile recording(path.string());
        ForwardingAgent agent(SwitchFile::parseSwitchFile(switchFile, "test"),
                              {.mode = SoftChip::Mode::stepwise, .recording = &recording});
        Client client(agent);
        changePacket(agent, client);
    };
    EXPECT_EXIT(live(), testing::KilledBySignal(SIGABRT), "ReinstantiationError");
    EXPECT_EXIT(std::exit(replayed(path.string())), testing::ExitedWithCode(Replay::fatalStatus),
                "");
}

// ---- Threads

// The chip's own thread delivers digests and moves counters while the loop turns.
TEST_F(RecordReplay, AChipWithAThreadOfItsOwn) {
    auto const model = SwitchFile::parseSwitchFile(switchFile, "test");
    for (unsigned round = 0; round < 3; ++round) {
        expectReplayed(model, {}, [](ForwardingAgent& agent) {
            auto& faults = agent.chip().faults();
            faults.digestIs({.fate = DigestFate::doubled, .nth = 5, .times = 5});
            faults.digestIs({.fate = DigestFate::held, .nth = 20, .times = 3, .behind = 2});
            faults.failIs(SdkFunction::disableAppId, 4, 30, 2);
            faults.failIs(SdkFunction::notifyAck, 5, 11);
            Client client(agent);
            unsigned answers = 0;
            for (unsigned i = 0; i < 100; ++i) {
                client.add(i % 2 == 0 ? 2 : 9, i % 3 == 0 ? "Ethernet1" : "Ethernet3");
            }
            while (answers < 100) {
                answers += client.client.poll(TraceClient::Clock::duration::max()) ? 1 : 0;
            }
        });
    }
}

}  // namespace
}  // namespace Agent
