#include "VynPacketTracer/RelayFixture.h"
#include "VynPacketTracer/VynPtSm.h"

namespace VynPacketTracer {
namespace {

// ---- Answers come, become ready, and go

TEST_F(RelayTest, AnAnswerThatIsMadeIsRelayedNotReadyAndWatched) {
    EXPECT_EQ(after([&] { answer(1); }),
              (Lines{"status add noc/1", relayed("noc/1"), updated("1", false)}));
    EXPECT_TRUE(isWatched(1));
    EXPECT_FALSE(result(1));
}

TEST_F(RelayTest, AnAnswerThatBecomesReadyIsRelayedOnceMore) {
    answer(1);
    EXPECT_EQ(
        after([&] { answer(1)->readyIs(true); }),
        (Lines{"status ready noc/1 true", relayed("noc/1"), updated("1", true), "result add noc/1",
               "VynPtClientSm/9 updateResult:client:noc reqId:1 invalid portIndex:456",
               "result state noc/1 3", "result valid noc/1 true"}));
}

TEST_F(RelayTest, AnAnswerThatIsReadyAlreadyIsNotRelayedAgain) {
    answer(1)->readyIs(true);
    EXPECT_EQ(after([&] { answer(1)->readyIs(true); }), Lines{});
}

TEST_F(RelayTest, NoOtherAttributeIsRelayed) {
    auto const made = answer(1);
    recorder.take();
    made->pktIdIs(7);
    made->egrPortInfoIs({1, VynPortTypes::PortIndex(132)});
    made->egrL2DomainIs(10);
    made->copyToCpuIs(true);
    made->routedIs(true);
    made->droppedIs(true);
    EXPECT_EQ(happened("VynPt"), Lines{});
}

TEST_F(RelayTest, AnAnswerThatGoesIsTracedAndNotWatchedAnyMore) {
    auto const made = answer(1);
    EXPECT_EQ(after([&] { tracer->pktGenStatus()->statusDel(id("noc", 1)); }),
              (Lines{"status del noc/1", relayed("noc/1", true)}));
    EXPECT_FALSE(isWatched(1));
    EXPECT_EQ(after([&] { made->readyIs(true); }), (Lines{"status ready noc/1 true"}));
}

TEST_F(RelayTest, AnAnswerIsRelayedBeforeItIsWatched) {
    bool watched = true;
    recorder.onTrace = [&] { watched = isWatched(1); };
    answer(1);
    EXPECT_FALSE(watched);
    EXPECT_TRUE(isWatched(1));
}

TEST_F(RelayTest, AnAnswerThatGoesIsTracedBeforeItsWatcherGoes) {
    answer(1);
    bool watched = false;
    recorder.onTrace = [&] { watched = isWatched(1); };
    tracer->pktGenStatus()->statusDel(id("noc", 1));
    EXPECT_TRUE(watched);
    EXPECT_FALSE(isWatched(1));
}

TEST_F(RelayTest, AnAnswerForAnUnknownClientIsOnlyTraced) {
    EXPECT_EQ(after([&] { answer(1, "ops"); }),
              (Lines{"status add ops/1", relayed("ops/1"),
                     "VynPtSm/9 handlePktGenStatus:Couldn't find ClientSm for:ops"}));
    EXPECT_TRUE(tracer->localStatusHas(id("ops", 1)));
}

TEST_F(RelayTest, AnAnswerForAnUnknownClientThatGoesIsTracedAsGoneAlone) {
    answer(1, "ops");
    EXPECT_EQ(after([&] { tracer->pktGenStatus()->statusDel(id("ops", 1)); }),
              (Lines{"status del ops/1", relayed("ops/1", true)}));
}

TEST_F(RelayTest, AnAnswerIsRelayedToAClientThatCameMeanwhile) {
    auto const made = answer(1, "ops");
    client("ops");
    EXPECT_EQ(beginning("VynPtClientSm/7", after([&] { made->readyIs(true); })),
              (Lines{"VynPtClientSm/7 updateResult:client:ops reqId:1 ready:true"}));
    EXPECT_TRUE(statusOf("ops")->result(id("ops", 1)));
}

TEST_F(RelayTest, AnAnswerOfARemovedClientIsDropped) {
    auto const made = answer(1);
    config->entryDel("noc");
    EXPECT_EQ(after([&] { made->readyIs(true); }),
              (Lines{"status ready noc/1 true", relayed("noc/1"),
                     "VynPtSm/9 handlePktGenStatus:Couldn't find ClientSm for:noc"}));
}

TEST_F(RelayTest, AnAnswerIsRelayedToItsOwnClientAlone) {
    client("ops");
    EXPECT_EQ(beginning("VynPtClientSm", after([&] { answer(1); })), (Lines{updated("1", false)}));
}

TEST_F(RelayTest, ARangeErrorOfTheResultEndsTheProcess) {
    request(1);
    auto const made = answer(1);
    made->egrL2DomainIs(4095);
    expectEnd([&] { made->readyIs(true); },
              {"status ready noc/1 true", relayed("noc/1"), updated("1", true), "result add noc/1",
               "VynPtClientSm/7 pktFlooded:client:noc reqId:1 flooded:4095 ingIntf:Ethernet1 "
               "routed:false"},
              "RangeError", "Bridging::VlanId::value < 1 or > 4094 not allowed");
}

TEST_F(RelayTest, ARangeErrorOfARoutedPacketEndsTheProcess) {
    request(1);
    auto const made = answer(1);
    made->egrPortInfoIs({1, VynPortTypes::PortIndex(132)});
    made->routedIs(true);
    expectEnd([&] { made->readyIs(true); },
              {"status ready noc/1 true", relayed("noc/1"), updated("1", true), "result add noc/1",
               "VynPtClientSm/7 updatePortInfoResult:client:noc reqId:1 intfId:Ethernet2",
               "VynPtClientSm/7 updatePortInfoResult:physical egress intf:Ethernet2",
               "result egressIntf noc/1 (Ethernet2,)",
               "VynPtClientSm/7 updateResult:portId:132 intfId:Ethernet2"},
              "RangeError", "Bridging::VlanId::value < 1 or > 4094 not allowed");
}

// ---- The collection of answers

TEST_F(RelayTest, ToldOfAnAnswerByHandItRelaysAndWatchesIt) {
    auto const made = answer(1);
    tracer->localStatusDel(id("noc", 1));
    Vanta::Subscriber nobody;
    auto const& publisher = tracer->pktGenStatus()->publisher();
    EXPECT_EQ(after([&] {
                  tracer->pktGenStatusDispatch(publisher, nobody, 130,
                                               Vanta::ValueRef::to(made->req()), {});
              }),
              (Lines{relayed("noc/1"), updated("1", false)}));
    EXPECT_TRUE(isWatched(1));
    EXPECT_EQ(after([&] { tracer->pktGenStatusDispatch(publisher, nobody, 131, {}, {}); }),
              Lines{});
}

TEST_F(RelayTest, SwitchedOffAndOnItDoesNotCatchUpWithTheAnswers) {
    auto const gone = answer(1);
    auto const late = answer(2);
    tracer->hasNotificationActiveIs(false);
    tracer->pktGenStatus()->statusDel(id("noc", 1));
    late->readyIs(true);
    auto const came = answer(3);
    EXPECT_EQ(after([&] {
                  tracer->hasNotificationActiveIs(true);
                  came->readyIs(true);
              }),
              (Lines{"status ready noc/3 true"}));
    EXPECT_TRUE(isWatched(1));
    EXPECT_FALSE(isWatched(3));
    EXPECT_EQ(first(after([&] { tracer->handlePktGenStatus(id("noc", 2)); })), relayed("noc/2"));
    EXPECT_TRUE(result(2));
}

TEST_F(RelayTest, TheAnswersAreKeptByPktGenStatusIs) {
    auto const answers = tracer->pktGenStatus();
    EXPECT_EQ(tracer->pktGenStatusIs(), answers);
}

TEST_F(RelayTest, TheAnswersGoWithTheirWatchersByPktGenStatusDel) {
    auto const made = answer(1);
    auto const answers = tracer->pktGenStatus();
    EXPECT_EQ(after([&] { EXPECT_EQ(tracer->pktGenStatusDel(), answers); }), Lines{});
    EXPECT_EQ(tracer->pktGenStatus(), nullptr);
    EXPECT_FALSE(isWatched(1));
    EXPECT_EQ(after([&] {
                  made->readyIs(true);
                  answers->statusIs(id("noc", 2));
              }),
              (Lines{"status ready noc/1 true", "status add noc/2"}));
}

TEST_F(RelayTest, WithoutAnswersARelayFindsNone) {
    tracer->pktGenStatusDel();
    EXPECT_EQ(after([&] { tracer->handlePktGenStatus(id("noc", 1)); }),
              (Lines{relayed("noc/1", true)}));
}

TEST_F(RelayTest, NoOtherAttributeOfTheAnswersIsRelayed) {
    auto const key = id("noc", 1);
    EXPECT_EQ(
        after([&] { tracer->pktGenStatus()->publisher().publish(7, Vanta::ValueRef::to(key)); }),
        (Lines{"status del noc/1"}));  // what is published, and nothing for it
}

TEST_F(RelayTest, AnswersThatGoInTheMiddleOfARelayAreNotWatched) {
    auto const answers = tracer->pktGenStatus();
    recorder.onTrace = [&] { tracer->pktGenStatusDel(); };
    EXPECT_EQ(after([&] { answers->statusIs(id("noc", 1)); }),
              (Lines{"status add noc/1", relayed("noc/1"), updated("1", false)}));
    EXPECT_FALSE(isWatched(1));
}

TEST_F(RelayTest, AnswersThatAreMadeAnewAreRelayed) {
    tracer->pktGenStatusDel();
    auto const answers = tracer->pktGenStatusIs();
    EXPECT_EQ(after([&] { answers->statusIs(id("noc", 1)); }),
              (Lines{"status add noc/1", relayed("noc/1"), updated("1", false)}));
}

TEST_F(RelayTest, WatchersWithoutAnAnswerGoWhenTheAnswersAreMadeAnew) {
    auto const answers = tracer->pktGenStatusDel();
    tracer->localStatusIs(answers->statusIs(id("noc", 1)));
    tracer->pktGenStatusIs();
    EXPECT_FALSE(isWatched(1));
}

TEST_F(RelayTest, AnAnswerThatIsDeletedInItsOwnRelayIsNotWatched) {
    request(1);
    OnPublication const observer(statusOf("noc")->publisher(), [&](auto, auto) { withdraw(1); });
    answer(1)->readyIs(true);
    EXPECT_FALSE(isWatched(1));
    EXPECT_FALSE(tracer->pktGenStatus()->statusHas(id("noc", 1)));
}

// ---- From end to end

TEST_F(TracerTest, TheFirstRequestFromArrivalToWithdrawal) {
    EXPECT_EQ(
        after([&] { tracer = made(); }),
        (Lines{
            "VynPtSm/7 handleInitialized:pktTracerSupported:true pktGenSupportedtrue",
            "VynPtPktGenSm/7 handleInitialized:", "VynPtPktGenSm/9 initSocket:PktGenSm initSocket",
            "VynPtPktGenSm/9 registerPktTracerDigest:",
            "sdk pipe_mgr_lrn_digest_notification_register session=1 device=0 handle=77 -> 0",
            "VynPtPktGenSm/4 registerPktTracerDigest:pktTracerDigest registered",
            "VynPtPktGenSm/7 doWork:", "VynPtPktGenSm/4 doWork:PktGen task not running",
            "VynPtSm/7 handleClients:"}));
    EXPECT_EQ(after([&] { clientConfig("noc"); }), (Lines{"VynPtSm/7 handleClient:client noc"}));
    EXPECT_EQ(
        after([&] { clientStatus("noc"); }),
        (Lines{"VynPtSm/7 handleClient:client noc", "VynPtClientSm/7 handleInitialized:client noc",
               "VynPtClientSm/7 handleResults:client noc #status:0",
               "VynPtClientSm/7 handleRequests:client noc #request:0"}));
    EXPECT_EQ(after([&] { request(1); }),
              (Lines{"VynPtClientSm/7 handleRequest:client:noc reqId:1",
                     "VynPtClientSm/7 isValidRequest:client:noc reqId:1", "cfg add noc/1",
                     "VynPtPktGenSm/7 handleConfig:clientName:noc reqId:1 add:true"}));
    EXPECT_EQ(after([&] { turn(); }),
              (Lines{"VynPtPktGenSm/7 doWork:", "VynPtPktGenSm/7 processRequest:",
                     "VynPtPktGenSm/7 getPhase0Data:clientName:noc reqId:1",
                     "phase0 configDel Ethernet1", "phase0 configIs Ethernet1"}));
    EXPECT_EQ(tracer->pktGenSm()->state(), PktGenState::waitPhase0Data);
    EXPECT_EQ(after([&] {
                  phase0("Ethernet1", {4, 0});
              }),
              (Lines{"VynPtPktGenSm/7 processPhase0DataResponse:clientName:noc reqId:1 "
                     "intfId:Ethernet1"}));
    EXPECT_EQ(tracer->pktGenSm()->state(), PktGenState::phase0DataReady);
    EXPECT_EQ(
        after([&] { turn(); }),
        (Lines{"VynPtPktGenSm/7 doWork:", "VynPtPktGenSm/7 sendPkt:clientName:noc reqId:1",
               "sdk getPktCounters session=1 device=0 pipe=0 appId=4 -> 0 count=0",
               "VynPtPktGenSm/7 sendPkt:pktCnt:0",
               "sdk genOnePkt session=1 device=0 pipe=0 genPort=68 portIndex=4 appId=4 "
               "pkt=ffffffffffff0200000000010800 phase0=0400 pktId=1 -> 0",
               "status add noc/1", "VynPtSm/7 handlePktGenStatus:client:noc reqId:1 del:false",
               "VynPtClientSm/7 updateResult:client:noc reqId:1 ready:false",
               "status pktId noc/1 1", "phase0 configDel Ethernet1",
               "VynPtPktGenSm/7 checkPktCnt:clientName:noc reqId:1",
               "sdk getPktCounters session=1 device=0 pipe=0 appId=4 -> 0 count=0",
               "VynPtPktGenSm/9 checkPktCnt:Waiting on Sent pkt for clientName:noc reqId:1 "
               "cnt:0"}));
    EXPECT_EQ(tracer->pktGenSm()->state(), PktGenState::waitPktSent);
    counter(1);
    EXPECT_EQ(after([&] { digest({{.pktId = 1, .l2Domain = 10, .egrPort = 132}}); }),
              (Lines{"VynPtPktGenSm/5 rcvPktTracerLearningDigest:Received pkt tracer digest with "
                     "#entries:1",
                     "VynPtPktGenSm/5 rcvPktTracerLearningDigest:Digest size:9",
                     "sdk pipe_mgr_flow_lrn_notify_ack session=1 handle=77 -> 0"}));
    EXPECT_EQ(
        after([&] { turn(); }),
        (Lines{"VynPtPktGenSm/7 processPktTracerDigest:Processing pktTracer learning digest with 1 "
               "entries",
               "VynPtPktGenSm/7 processPktTracerDigest:PktId:1",
               "VynPtPktGenSm/7 processPktTracerDigest:clientName:noc reqId:1 egrPort:132 "
               "copyToCpu:false l2Domain:10 routed:false dropped:false",
               "status egrL2Domain noc/1 10",
               "status egrPortInfo noc/1 1/132",
               "status ready noc/1 true",
               "VynPtSm/7 handlePktGenStatus:client:noc reqId:1 del:false",
               "VynPtClientSm/7 updateResult:client:noc reqId:1 ready:true",
               "result add noc/1",
               "VynPtClientSm/7 updatePortInfoResult:client:noc reqId:1 intfId:Ethernet2",
               "VynPtClientSm/7 updatePortInfoResult:physical egress intf:Ethernet2",
               "result egressIntf noc/1 (Ethernet2,)",
               "VynPtClientSm/7 updateResult:portId:132 intfId:Ethernet2",
               "result state noc/1 4",
               "result valid noc/1 true",
               "VynPtPktGenSm/7 doWork:",
               "VynPtPktGenSm/7 checkPktCnt:clientName:noc reqId:1",
               "sdk getPktCounters session=1 device=0 pipe=0 appId=4 -> 0 count=1",
               "VynPtPktGenSm/9 checkPktCnt:Sent pkt for clientName:noc reqId:1 cnt:1 curCnt:0",
               "sdk disableAppId session=1 device=0 pipe=0 appId=4 -> 0",
               "sdk disablePktGen session=1 device=0 pipe=0 genPort=68 -> 0",
               "VynPtPktGenSm/7 processRequest:"}));
    EXPECT_EQ(tracer->pktGenSm()->state(), PktGenState::idle);
    EXPECT_EQ(
        after([&] { withdraw(1); }),
        (Lines{"VynPtClientSm/7 handleRequest:client:noc reqId:1",
               "VynPtClientSm/7 handleRequest:del client:noc reqId:1", "cfg del noc/1",
               "VynPtPktGenSm/7 handleConfig:clientName:noc reqId:1 add:false", "status del noc/1",
               "VynPtSm/7 handlePktGenStatus:client:noc reqId:1 del:true", "result del noc/1"}));
    EXPECT_EQ(
        after([&] { tracer = nullptr; }),
        (Lines{"sdk pipe_mgr_lrn_digest_notification_deregister session=1 device=0 handle=77 -> 0",
               "VynPtPktGenSm/4 deRegisterPktTracerDigest:pktTracerDigest deregistered:0"}));
}

TEST_F(TracerTest, WithoutTraceSupportARequestEndsAsAFloodInNoVlan) {
    start(false);
    client("noc");
    request(1);
    turn();
    phase0("Ethernet1");
    turn();
    counter(1);
    recorder.take();
    turn();
    EXPECT_EQ(happened("result"),
              (Lines{"result add noc/1", "result state noc/1 3", "result valid noc/1 true"}));
}

TEST_F(TracerTest, ARequestWithdrawnInFlightLeavesNothing) {
    start();
    client("noc");
    request(1);
    turn();
    phase0("Ethernet1");
    turn();
    withdraw(1);
    EXPECT_TRUE(tracer->pktGenStatus()->statusHas(id("noc", 1)));
    turn();
    EXPECT_FALSE(tracer->pktGenStatus()->statusHas(id("noc", 1)));
    EXPECT_FALSE(result(1));
    EXPECT_FALSE(tracer->localStatusHas(id("noc", 1)));
}

TEST_F(TracerTest, ADigestThatComesAfterTheWithdrawalIsAnsweredAsWithoutAJob) {
    start();
    client("noc");
    request(1);
    turn();
    phase0("Ethernet1");
    turn();
    withdraw(1);
    recorder.take();
    digest({{.pktId = 1, .egrPort = 132}});
    turn();
    EXPECT_EQ(happened("VynPtClientSm/9"),
              (Lines{"VynPtClientSm/9 updateResult:client:noc reqId:1 invalid portIndex:132"}));
}

TEST_F(TracerTest, RequestsOfTwoClientsAreServedInTheOrderInWhichTheyCame) {
    start();
    client("noc");
    client("ops");
    configOf("ops")->requestIs(makeRequest("ops", 1, "Ethernet1"));
    request(1);
    turn();
    EXPECT_EQ(tracer->pktGenSm()->curCfg()->req(), id("ops", 1));
}

}  // namespace
}  // namespace VynPacketTracer
