#include "agent/ForwardingAgent.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>

#include "agent/TraceClient.h"
#include "switchfile/SwitchFile.h"

namespace Agent {
namespace {

constexpr char const* switchFile = R"({
    "routerMac": "02:00:00:00:ff:01",
    "vlans": {"10": {}},
    "interfaces": {
        "Ethernet1": {"port": "0/0", "access": 10},
        "Ethernet2": {"port": "1/5", "access": 10},
        "Ethernet3": {"port": "2/0", "routed": true},
        "Ethernet3.10": {"vlan": 10}
    },
    "fdb": {"10": {"02:00:00:00:00:02": "Ethernet2"}}
})";

Vanta::Bytes someFrame(bool tagged) {
    std::vector<std::uint8_t> frame{2, 0, 0, 0, 0, 2, 2, 0, 0, 0, 0, 1};
    if (tagged) {
        frame.insert(frame.end(), {0x81, 0x00, 0x00, 0x0a});
    }
    frame.insert(frame.end(), {0x88, 0xb5});
    frame.resize(64);
    return frame;
}

Answer traced(ForwardingAgent& agent, char const* intf, bool tagged) {
    TraceClient client(agent, "test", std::chrono::hours(1));
    auto const request = client.request();
    request->frameIs(someFrame(tagged));
    request->intfIs(*Plexa::IntfId::fromName(intf));
    client.add(request);
    std::optional<Answer> answer;
    while (!answer) {
        answer = client.poll(TraceClient::Clock::duration::max());
    }
    return *answer;
}

TEST(ForwardingAgent, TracesAcrossThePipesWithItsChipsOwnThread) {
    ForwardingAgent agent(SwitchFile::parseSwitchFile(switchFile, "test"));
    auto const answer = traced(agent, "Ethernet1", false);
    EXPECT_EQ(answer.outcome, Outcome::forwarded);
    ASSERT_TRUE(answer.injection);
    EXPECT_EQ(answer.injection->egressPort, 128 + 5);
}

TEST(ForwardingAgent, PacketsComeInOnSubInterfacesAtTheirParentsPort) {
    ForwardingAgent agent(SwitchFile::parseSwitchFile(switchFile, "test"));
    auto const answer = traced(agent, "Ethernet3.10", true);
    EXPECT_EQ(answer.outcome, Outcome::forwarded);
    EXPECT_EQ(agent.chip().generator(2).generated(), 1U);
}

TEST(ForwardingAgent, MountsTheClientsDirectoriesAtTheirPaths) {
    ForwardingAgent agent(SwitchFile::parseSwitchFile(switchFile, "test"));
    auto const paths = agent.database().list("/packetTracer");
    ASSERT_EQ(paths.size(), 2U);
    EXPECT_EQ(paths[0], ForwardingAgent::configPath);
    EXPECT_EQ(paths[1], ForwardingAgent::statusPath);
}

TEST(ForwardingAgent, LeavesTheChipWithoutACallbackAndItsDeviceFree) {
    auto const model = SwitchFile::parseSwitchFile(switchFile, "test");
    for (int life = 0; life < 3; ++life) {
        ForwardingAgent agent(model);
        EXPECT_EQ(traced(agent, "Ethernet1", false).outcome, Outcome::forwarded);
    }
}

TEST(ForwardingAgent, TwoAgentsNeedTwoDevices) {
    auto const model = SwitchFile::parseSwitchFile(switchFile, "test");
    ForwardingAgent first(model, {.device = 1});
    EXPECT_THROW(ForwardingAgent(model, {.device = 1}), std::logic_error);
    ForwardingAgent second(model, {.device = 2});
    EXPECT_EQ(traced(second, "Ethernet1", false).outcome, Outcome::forwarded);
}

TEST(ForwardingAgent, WithoutTheDigestAnAnswerTellsNoEgressPort) {
    ForwardingAgent agent(SwitchFile::parseSwitchFile(switchFile, "test"),
                          {.pktTracerSupported = false});
    EXPECT_EQ(traced(agent, "Ethernet1", false).outcome, Outcome::noEgressPort);
}

}  // namespace
}  // namespace Agent
