// Clients that change while their state machine is being made: a subscriber that hears of their jobs
// or results changes the directories.
#include "VynPacketTracer/TracerFixture.h"

namespace VynPacketTracer {
namespace {

// The client "noc" has a request, but no status yet: its state machine is made when that comes.
class MakingTest : public RunningTracerTest {
  protected:
    MakingTest() {
        clientConfig("noc");
        request(1);
    }
    // Does this at the first job.
    std::unique_ptr<OnPublication> atFirstJob(std::function<void()> const& change) {
        return atEachJob([change, done = false]() mutable {
            if (!std::exchange(done, true)) {
                change();
            }
        });
    }
    // Does this at each job that comes.
    std::unique_ptr<OnPublication> atEachJob(std::function<void()> const& change) {
        return std::make_unique<OnPublication>(
            tracer->pktGenCfg()->publisher(), [this, change](auto, Vanta::ValueRef key) {
                if (tracer && tracer->pktGenCfg()->cfgHas(key.get<PacketTracer::RequestId>())) {
                    change();
                }
            });
    }
    void expectFits() {
        ASSERT_TRUE(clientSm("noc"));
        EXPECT_EQ(clientSm("noc")->clientConfig(), configOf("noc"));
        EXPECT_EQ(clientSm("noc")->clientStatus(), statusOf("noc"));
    }
};

TEST_F(MakingTest, AClientWhoseConfigurationGoesMeanwhileHasNone) {
    auto const observer = atFirstJob([&] { config->entryDel("noc"); });
    clientStatus("noc");
    EXPECT_FALSE(tracer->clientSmHas("noc"));
}

TEST_F(MakingTest, AClientWhoseStatusGoesMeanwhileHasNone) {
    auto const observer = atFirstJob([&] { status->entryDel("noc"); });
    clientStatus("noc");
    EXPECT_FALSE(tracer->clientSmHas("noc"));
}

TEST_F(MakingTest, AClientThatLeftMeanwhileIsNotHeardOfAnyMore) {
    auto const left = configOf("noc");
    auto const observer = atFirstJob([&] { config->entryDel("noc"); });
    clientStatus("noc");
    EXPECT_EQ(after([&] { left->requestDel(id("noc", 1)); }), Lines{});
}

TEST_F(MakingTest, AClientWhoseConfigurationIsReplacedMeanwhileHasOneOfTheNewConfiguration) {
    auto const observer = atFirstJob([&] { clientConfig("noc"); });
    clientStatus("noc");
    expectFits();
}

TEST_F(MakingTest, AClientWhoseStatusIsReplacedMeanwhileHasOneOfTheNewStatus) {
    auto const observer = atFirstJob([&] { clientStatus("noc"); });
    clientStatus("noc");
    expectFits();
}

TEST_F(MakingTest, AClientThatChangesIsMadeAgainByTheSameStepsWithoutAnotherHandleClient) {
    auto const observer = atFirstJob([&] { clientConfig("noc"); });
    Lines const made{"VynPtClientSm/7 handleInitialized:client noc",
                     "VynPtClientSm/7 handleResults:client noc #status:0",
                     "VynPtClientSm/7 handleRequests:client noc #request:0"};
    Lines const first{handled("noc"),
                      "VynPtClientSm/7 handleInitialized:client noc",
                      "VynPtClientSm/7 handleResults:client noc #status:0",
                      "VynPtClientSm/7 handleRequests:client noc #request:1",
                      "VynPtClientSm/7 handleRequest:client:noc reqId:1",
                      "VynPtClientSm/7 isValidRequest:client:noc reqId:1",
                      "cfg add noc/1",
                      "VynPtPktGenSm/7 handleConfig:clientName:noc reqId:1 add:true"};
    // The change has one made at once; it gives way to the first one, which no longer fits.
    EXPECT_EQ(after([&] { clientStatus("noc"); }), first + Lines{handled("noc")} + made + made);
}

TEST_F(MakingTest, AClientThatChangesAtEachOfItsJobsHasOneOfItsLastConfiguration) {
    request(2);
    request(3);
    auto const observer = atEachJob([&] { clientConfig("noc"); });
    clientStatus("noc");
    expectFits();
}

TEST_F(MakingTest, AClientThatChangesWhileItIsMadeAnewHasOneOfItsLastConfiguration) {
    std::uint32_t last = 1;
    auto const observer = atEachJob([&] {
        if (last < 5) {
            auto const next = PacketTracer::ClientConfig::ClientConfigIs();
            next->requestIs(makeRequest("noc", ++last, "Ethernet1"));
            config->entryIs("noc", next);
        }
    });
    clientStatus("noc");
    EXPECT_EQ(last, 5u);
    expectFits();
    EXPECT_TRUE(clientSm("noc")->requestHas(id("noc", 5)));
}

TEST_F(MakingTest, AClientThatComesBackAsItWasIsMadeOnceMore) {
    auto const kept = configOf("noc");
    auto const observer = atFirstJob([&] {
        config->entryDel("noc");
        config->entryIs("noc", kept);
    });
    clientStatus("noc");
    expectFits();
}

TEST_F(MakingTest, AnotherClientMayComeMeanwhile) {
    auto const observer = atFirstJob([&] { client("ops"); });
    clientStatus("noc");
    expectFits();
    EXPECT_TRUE(tracer->clientSmHas("ops"));
}

TEST_F(MakingTest, AnotherClientThatIsReplacedMeanwhileRaisesAsEver) {
    client("ops");
    auto const observer = atFirstJob([&] { clientStatus("ops"); });
    EXPECT_EXIT(clientStatus("noc"), testing::KilledBySignal(SIGABRT),
                "ReinstantiationError: .* of client ops");
}

TEST_F(MakingTest, AClientMayChangeTwiceWhileAnotherIsMadeInsideItsMaking) {
    clientConfig("ops")->requestIs(makeRequest("ops", 1, "Ethernet1"));
    auto const observer =
        std::make_unique<OnPublication>(tracer->pktGenCfg()->publisher(), [&](auto, auto key) {
            if (key.template get<PacketTracer::RequestId>() == id("ops", 1)) {
                clientConfig("noc");
                clientConfig("noc");
            } else if (!statusOf("ops")) {
                clientStatus("ops");
            }
        });
    clientStatus("noc");
    expectFits();
    EXPECT_TRUE(tracer->clientSmHas("ops"));
}

TEST_F(MakingTest, AfterwardsAReplacementRaisesAsEver) {
    auto const observer = atFirstJob([&] { clientConfig("noc"); });
    clientStatus("noc");
    expectEnd([&] { clientConfig("noc"); }, {handled("noc")}, "ReinstantiationError",
              "PacketTracerClientSm::clientConfig (attribute 131) of client noc differs from the "
              "object that it was made with");
}

TEST_F(MakingTest, AfterAMakingThatFailedAReplacementRaisesAsEver) {
    tracer->pktGenCfg()->cfgIs(id("noc", 1), {1}, {}, intf("Ethernet1"));  // of another packet
    tracer->hasNotificationActiveIs(false);
    clientStatus("noc");
    EXPECT_THROW(tracer->handleClient("noc"), Kel::ReinstantiationError);
    EXPECT_FALSE(tracer->clientSmHas("noc"));
    tracer->pktGenCfg()->cfgDel(id("noc", 1));
    tracer->handleClient("noc");
    clientConfig("noc");
    EXPECT_THROW(tracer->handleClient("noc"), Kel::ReinstantiationError);
}

TEST_F(MakingTest, TheTracerMayBeReleasedByWhoeverHearsOfIt) {
    auto const observer = atFirstJob([&] { tracer = nullptr; });
    tracer->hasNotificationActiveIs(false);
    clientStatus("noc");
    auto& root = *tracer;
    root.handleClient("noc");
    EXPECT_EQ(config->refCount(), 1u);
}

TEST_F(TracerTest, AClientThatChangesWhileTheTracerBeginsHasOneOfItsNewConfiguration) {
    client("noc");
    request(1, "Ethernet9");  // refused, so a result comes at once
    OnPublication const observer(statusOf("noc")->publisher(), [&](auto, auto) {
        if (configOf("noc")->request(id("noc", 1))) {
            clientConfig("noc");
        }
    });
    start();
    ASSERT_TRUE(clientSm("noc"));
    EXPECT_EQ(clientSm("noc")->clientConfig(), configOf("noc"));
}

}  // namespace
}  // namespace VynPacketTracer
