// What must not be null stops the process where it is needed; what may be null is nothing to speak of.
#include "VynPacketTracer/ClientFixture.h"

namespace VynPacketTracer {
namespace {

class ClientNullTest : public ClientTest {
  protected:
    void expectAssertion(std::function<void()> const& event, Lines const& lines,
                         std::string const& text) {
        expectEnd(event, lines, "assert", text);
    }
    // A client without requests and with one job, for which an answer is made.
    void startWithJob() {
        job(1);
        egressPort(132, "Ethernet2");
        start();
    }
    static Lines updated() {
        return {"VynPtClientSm/7 updateResult:client:noc reqId:1 ready:true"};
    }
};

TEST_F(ClientNullTest, ARequestIsNeededToSayWhetherItIsValid) {
    start();
    expectAssertion([&] { client->isValidRequest(nullptr); }, {}, "packetRequest != nullptr");
}

TEST_F(ClientNullTest, AnEntryIsNeededToUpdateAResult) {
    start();
    expectAssertion([&] { client->updateResult(nullptr); }, {}, "status != nullptr");
}

TEST_F(ClientNullTest, AnEntryAndAResultAreNeededForAFlood) {
    start();
    auto const result = clientStatus->resultIs(id("noc", 1));
    expectAssertion([&] { client->pktFlooded(nullptr, result, intf("Ethernet1")); }, {},
                    "status != nullptr");
    auto const flooded = answer(1, {});
    expectAssertion([&] { client->pktFlooded(flooded, nullptr, intf("Ethernet1")); }, {},
                    "result != nullptr");
}

TEST_F(ClientNullTest, AResultIsNeededToAddEntries) {
    start();
    expectAssertion([&] { client->updatePortInfoResult(intf("Ethernet1"), nullptr); }, {},
                    "result != nullptr");
    expectAssertion([&] { client->addVlanIntf(nullptr, 10); }, {}, "result != nullptr");
}

TEST_F(ClientNullTest, AStatusIsNeededToBegin) {
    clientStatus = nullptr;
    expectAssertion([&] { start(); }, {"VynPtClientSm/7 handleInitialized:client noc"},
                    "clientStatus != nullptr");
}

TEST_F(ClientNullTest, JobsAreNeededToWithdrawARequest) {
    pktGenConfig = nullptr;
    start();
    expectAssertion([&] { client->handleRequest(id("noc", 1)); },
                    {"VynPtClientSm/7 handleRequest:client:noc reqId:1",
                     "VynPtClientSm/7 handleRequest:del client:noc reqId:1"},
                    "pktGenConfig != nullptr");
}

TEST_F(ClientNullTest, JobsAreNeededToAcceptARequest) {
    pktGenConfig = nullptr;
    start();
    expectAssertion([&] { request(1); },
                    {"VynPtClientSm/7 handleRequest:client:noc reqId:1",
                     "VynPtClientSm/7 isValidRequest:client:noc reqId:1"},
                    "pktGenConfig != nullptr");
}

TEST_F(ClientNullTest, NoJobsAreNeededToRefuseARequest) {
    pktGenConfig = nullptr;
    start();
    request(1, "Ethernet9");
    EXPECT_EQ(result(1)->state(), PacketTracer::State::noEgress);
}

TEST_F(ClientNullTest, WithoutJobsAnAnswerIsOneWithoutAJob) {
    pktGenConfig = nullptr;
    start();
    client->updateResult(answer(1, {.port = 132}));
    EXPECT_EQ(result(1)->state(), PacketTracer::State::noEgress);
}

TEST_F(ClientNullTest, TheSystemStatusIsNeededToLookUpAPort) {
    systemStatus = nullptr;
    pktGenConfig = pktGenConfigFactory();
    job(1);
    start();
    expectAssertion([&] { request(2); },
                    {"VynPtClientSm/7 handleRequest:client:noc reqId:2",
                     "VynPtClientSm/7 isValidRequest:client:noc reqId:2"},
                    "systemStatus != nullptr");
    auto const status = answer(1, {.port = 132});
    expectAssertion([&] { client->updateResult(status); }, updated() + Lines{"result add noc/1"},
                    "systemStatus != nullptr");
}

TEST_F(ClientNullTest, TheLagsAndTheCpuPortsAreNeededForAnEgress) {
    auto const kept = std::exchange(fcsd, nullptr);
    startWithJob();
    Lines const entered =
        updated() +
        Lines{"result add noc/1",
              "VynPtClientSm/7 updatePortInfoResult:client:noc reqId:1 intfId:Ethernet2"};
    auto const status = answer(1, {.port = 132});
    expectAssertion([&] { client->updateResult(status); }, entered, "fcsd != nullptr");
    fcsd = kept;
    chipStatus = nullptr;
    start();
    expectAssertion(
        [&] { client->updateResult(status); },
        entered + Lines{"VynPtClientSm/7 updatePortInfoResult:physical egress intf:Ethernet2"},
        "chipStatus != nullptr");
}

TEST_F(ClientNullTest, TheVlansAreNeededForARoutedPacketAndForAFlood) {
    bridgingConfig = nullptr;
    startWithJob();
    EXPECT_EXIT(client->updateResult(answer(1, {.port = 132, .l2Domain = 10, .routed = true})),
                testing::KilledBySignal(SIGABRT), "bridgingConfig != nullptr");
    EXPECT_EXIT(client->updateResult(answer(1, {.l2Domain = 10})), testing::KilledBySignal(SIGABRT),
                "l2Domain == 0 || bridgingConfig != nullptr");
    client->updateResult(answer(1, {.l2Domain = 0}));
    EXPECT_EQ(result(1)->state(), PacketTracer::State::noEgress);
}

}  // namespace
}  // namespace VynPacketTracer
