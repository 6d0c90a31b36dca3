#include <functional>
#include <tuple>

#include "VynPacketTracer/TracerFixture.h"
#include "VynPacketTracer/VynPtSm.h"

namespace VynPacketTracer {
namespace {

// ---- The engine and the collections

class EngineOfTracerTest : public RunningTracerTest {
  protected:
    using Args = std::tuple<Vanta::Ptr<PktGenConfig>, Vanta::Ptr<VynSdk::Phase0DataIntf>,
                            Vanta::Ptr<PktGenStatus>, std::uint32_t, VynId::VynDevId, bool,
                            Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf>,
                            Vanta::Ptr<VyPd::VyPdIntf>, Vanta::Ptr<Orb::TaskSchedulerRoot>>;

    Vanta::Ptr<PktGenSm> asGiven() {
        return std::apply([&](auto const&... each) { return tracer->pktGenSmIs(each...); }, given);
    }
    // Expects that an engine of the arguments as they are now replaces the first one.
    void expectReplaced() {
        recorder.take();
        auto const made = asGiven();
        EXPECT_NE(made, engine);
        EXPECT_EQ(tracer->pktGenSm(), made);
        EXPECT_TRUE(made->hasNotificationActive());
    }
    Vanta::Ptr<PktGenSm> engine = tracer->pktGenSm();
    Args given{tracer->pktGenCfg(),
               chip.phase0Data(),
               tracer->pktGenStatus(),
               1,
               0,
               true,
               chip.learnQuanta(),
               chip.digestLayout(),
               loop};
};

TEST_F(EngineOfTracerTest, OfTheSameArgumentsIsKept) {
    EXPECT_EQ(after([&] { EXPECT_EQ(asGiven(), engine); }), Lines{});
}

TEST_F(EngineOfTracerTest, ThatIsKeptIsNotTouched) {
    engine->hasNotificationActiveIs(false);
    asGiven();
    EXPECT_FALSE(engine->hasNotificationActive());
}

TEST_F(EngineOfTracerTest, ThatIsReplacedGoesAfterTheNewOneIsMade) {
    engine = nullptr;
    std::get<3>(given) = 2;
    EXPECT_EQ(beginning("sdk", after([&] { asGiven(); })),
              (Lines{"sdk pipe_mgr_lrn_digest_notification_register session=2 device=0 handle=77 "
                     "-> 0",
                     "sdk pipe_mgr_lrn_digest_notification_deregister session=1 device=0 handle=77 "
                     "-> 0"}));
}

TEST_F(EngineOfTracerTest, OfAnotherPktGenConfigIsReplaced) {
    std::get<0>(given) = pktGenConfigFactory();
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherPhase0DataIntfIsReplaced) {
    std::get<1>(given) = ScriptChip::Phase0Data::Phase0DataIs(nullptr);
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherPktGenStatusIsReplaced) {
    std::get<2>(given) = pktGenStatusFactory();
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherSessionIsReplaced) {
    std::get<3>(given) = 2;
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherDeviceIsReplaced) {
    ScriptChip::ScriptChip const other(nullptr, 9);
    std::get<4>(given) = 9;
    expectReplaced();
    std::get<4>(given) = 0;
    asGiven();
}

TEST_F(EngineOfTracerTest, OfAnotherTraceSupportIsReplaced) {
    std::get<5>(given) = false;
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherResourceInfoIsReplaced) {
    std::get<6>(given) = SdkSeam::LearnQuanta::LearnQuantaIs();
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherDigestLayoutIsReplaced) {
    std::get<7>(given) = SdkSeam::DigestLayout::DigestLayoutIs();
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherSchedulerIsReplaced) {
    std::get<8>(given) = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    expectReplaced();
}

TEST_F(EngineOfTracerTest, IsReturnedSwitchedOffByPktGenSmDel) {
    EXPECT_EQ(tracer->pktGenSmDel(), engine);
    EXPECT_FALSE(engine->hasNotificationActive());
    EXPECT_EQ(tracer->pktGenSm(), nullptr);
    EXPECT_EQ(tracer->pktGenSmDel(), nullptr);
}

TEST_F(EngineOfTracerTest, KeepsItsJobsCollection) {
    EXPECT_EQ(tracer->pktGenCfgIs(), tracer->pktGenCfg());
}

TEST_F(EngineOfTracerTest, LosesTheTracersHoldOnTheJobsByPktGenCfgDel) {
    auto const jobs = tracer->pktGenCfg();
    EXPECT_EQ(tracer->pktGenCfgDel(), jobs);
    EXPECT_EQ(tracer->pktGenCfg(), nullptr);
    EXPECT_NE(tracer->pktGenCfgIs(), jobs);
}

// ---- Switching off and on, and tearing down

class TracerSwitchTest : public RunningTracerTest {
  protected:
    TracerSwitchTest() {
        client("noc");
        answered = answer(9);
        recorder.take();
    }
    Vanta::Ptr<PktGenStatusData> answered;
};

TEST_F(TracerSwitchTest, SwitchedOffNothingReacts) {
    tracer->hasNotificationActiveIs(false);
    EXPECT_FALSE(tracer->hasNotificationActive());
    EXPECT_EQ(after([&] {
                  client("ops");
                  request(1);
                  answer(8);
                  answered->readyIs(true);
                  phase0("Ethernet1");
                  turn();
              }),
              (Lines{"status add noc/8", "status ready noc/9 true"}));
}

TEST_F(TracerSwitchTest, SwitchedOffItSwitchesWatchersEngineAndClientsOff) {
    tracer->hasNotificationActiveIs(false);
    EXPECT_FALSE(tracer->localStatus(id("noc", 9))->hasNotificationActive());
    EXPECT_FALSE(tracer->pktGenSm()->hasNotificationActive());
    EXPECT_FALSE(clientSm("noc")->hasNotificationActive());
}

TEST_F(TracerSwitchTest, SwitchedOffItSwitchesAllWatchersAndClientsOff) {
    answer(8);
    client("ops");
    tracer->hasNotificationActiveIs(false);
    EXPECT_FALSE(tracer->localStatus(id("noc", 8))->hasNotificationActive());
    EXPECT_FALSE(clientSm("ops")->hasNotificationActive());
}

TEST_F(TracerSwitchTest, SwitchedOnAgainEachChangeIsReactedToOnce) {
    tracer->hasNotificationActiveIs(false);
    tracer->hasNotificationActiveIs(true);
    EXPECT_EQ(after([&] { clientConfig("ops"); }), (Lines{handled("ops")}));
    EXPECT_EQ(after([&] { answered->readyIs(true); }).size(), 7u);
    EXPECT_EQ(beginning("VynPtSm", after([&] { answer(8); })).size(), 1u);
    EXPECT_EQ(beginning("VynPtPktGenSm/7 handleConfig", after([&] { request(1); })).size(), 1u);
}

TEST_F(TracerSwitchTest, SwitchedToWhatItIsChangesNothing) {
    auto const watcher = tracer->localStatus(id("noc", 9));
    watcher->hasNotificationActiveIs(false);
    tracer->hasNotificationActiveIs(true);
    EXPECT_FALSE(watcher->hasNotificationActive());
}

TEST_F(TracerSwitchTest, SwitchedOffAnswersMadeAnewSubscribeToNothingElse) {
    tracer->hasNotificationActiveIs(false);
    tracer->pktGenStatusDel();
    tracer->pktGenStatusIs();
    EXPECT_EQ(after([&] { client("ops"); }), Lines{});
}

TEST_F(TracerSwitchTest, TornDownItIgnoresTheDirectories) {
    tracer->kelDoZombieReactors(true);
    EXPECT_TRUE(tracer->isZombie());
    EXPECT_EQ(after([&] {
                  client("ops");
                  status->entryDel("noc");
              }),
              Lines{});
    EXPECT_TRUE(clientSm("noc"));
}

TEST_F(TracerSwitchTest, TornDownAllItsWatchersAre) {
    answer(8);
    tracer->kelDoZombieReactors(true);
    EXPECT_TRUE(tracer->localStatus(id("noc", 8))->isZombie());
    EXPECT_TRUE(tracer->localStatus(id("noc", 9))->isZombie());
}

TEST_F(TracerSwitchTest, NotTornDownOnceMoreItLeavesItsWatchersAlone) {
    auto const watcher = tracer->localStatus(id("noc", 9));
    watcher->kelDoZombieReactors(true);
    tracer->kelDoZombieReactors(false);
    EXPECT_TRUE(watcher->isZombie());
}

TEST_F(TracerSwitchTest, TornDownItRelaysNothing) {
    tracer->kelDoZombieReactors(true);
    EXPECT_EQ(after([&] {
                  answered->readyIs(true);
                  answer(8);
              }),
              (Lines{"status ready noc/9 true", "status add noc/8"}));
}

TEST_F(TracerSwitchTest, TornDownItStillKeepsItsWatchersInStep) {
    tracer->kelDoZombieReactors(true);
    answer(8);
    tracer->pktGenStatus()->statusDel(id("noc", 9));
    ASSERT_TRUE(tracer->localStatusHas(id("noc", 8)));
    EXPECT_TRUE(tracer->localStatus(id("noc", 8))->isZombie());
    EXPECT_FALSE(tracer->localStatusHas(id("noc", 9)));
}

TEST_F(TracerSwitchTest, NotTornDownAnyMoreItReactsAgain) {
    tracer->kelDoZombieReactors(true);
    EXPECT_TRUE(tracer->localStatus(id("noc", 9))->isZombie());
    tracer->kelDoZombieReactors(false);
    EXPECT_FALSE(tracer->localStatus(id("noc", 9))->isZombie());
    EXPECT_EQ(beginning("VynPtSm", after([&] { answered->readyIs(true); })).size(), 1u);
    EXPECT_EQ(after([&] { clientConfig("ops"); }), (Lines{handled("ops")}));
}

// ---- The end

class TracerEndTest : public RunningTracerTest {
  protected:
    Lines stopped() {
        return after([&] { tracer = nullptr; });
    }
    // The engine has job 1 in work, with an answer; job 2 waits.
    void atWork() {
        client("noc");
        request(1);
        request(2);
        turn();
        phase0("Ethernet1");
        turn();
        EXPECT_TRUE(tracer->pktGenStatus()->statusHas(id("noc", 1)));
    }
};

TEST_F(TracerEndTest, WithoutClientsOnlyDeregistersTheDigest) {
    EXPECT_EQ(stopped(), deregistered);
}

TEST_F(TracerEndTest, TheEngineTakesTheAnswersAlongAndTheLastClientTheJobs) {
    atWork();
    client("ops");
    EXPECT_EQ(stopped(),
              deregistered + (Lines{"status del noc/1", "cfg del noc/1", "cfg del noc/2"}));
}

TEST_F(TracerEndTest, TheJobsGoWithTheClientsAfterTheEngine) {
    atWork();
    auto const kept = clientSm("noc");
    EXPECT_EQ(stopped(), deregistered + Lines{"status del noc/1"});
    EXPECT_TRUE(kept->pktGenConfig()->cfgHas(id("noc", 1)));
}

TEST_F(TracerEndTest, TheClientsAreThereStillWhenTheEngineGoes) {
    client("noc");
    auto const held = configOf("noc");
    std::uint32_t meanwhile = 0;
    recorder.onSdkCall = [&](auto const&) { meanwhile = held->refCount(); };
    stopped();
    EXPECT_EQ(meanwhile, 3u);  // the directory's, the state machine's and ours
    EXPECT_EQ(held->refCount(), 2u);
}

TEST_F(TracerEndTest, WithoutClientsTheEngineLetsTheAnswersGoBeforeTheJobs) {
    atWork();
    config->entryDel("noc");
    EXPECT_EQ(stopped(),
              deregistered + (Lines{"status del noc/1", "cfg del noc/1", "cfg del noc/2"}));
}

TEST_F(TracerEndTest, TheGeneratorIsNotDisabled) {
    atWork();
    EXPECT_EQ(beginning("sdk disable", stopped()), Lines{});
}

TEST_F(TracerEndTest, ResultsStay) {
    client("noc");
    request(1);
    statusOf("noc")->resultIs(id("noc", 1));
    stopped();
    EXPECT_TRUE(result(1));
}

TEST_F(TracerEndTest, ADirectoryChangeMeanwhileIsNotHandled) {
    recorder.onSdkCall = [&](auto const&) { client("ops"); };
    EXPECT_EQ(stopped(), deregistered);
}

TEST_F(TracerEndTest, AReadyAnswerMeanwhileIsNotRelayed) {
    client("noc");
    auto const answered = answer(9);
    recorder.onSdkCall = [&](auto const&) { answered->readyIs(true); };
    EXPECT_EQ(stopped(), (Lines{deregistered[0], "status ready noc/9 true", deregistered[1],
                                "status del noc/9"}));
}

TEST_F(TracerEndTest, ARequestMeanwhileIsNotHandled) {
    client("noc");
    recorder.onSdkCall = [&](auto const&) { request(1); };
    EXPECT_EQ(stopped(), deregistered);
}

TEST_F(TracerEndTest, AWatcherThatIsStillHeldHasNoOwnerAnyMore) {
    client("noc");
    auto const answered = answer(9);
    auto const watcher = tracer->localStatus(id("noc", 9));
    stopped();
    EXPECT_EQ(after([&] {
                  watcher->kel_handleLocalStatus_ready();
                  answered->readyIs(true);
              }),
              (Lines{"status ready noc/9 true"}));
    EXPECT_TRUE(watcher->isZombie());
}

TEST_F(TracerEndTest, AnEngineThatIsStillHeldReactsToNothing) {
    auto const engine = tracer->pktGenSm();
    EXPECT_EQ(stopped(), Lines{});
    EXPECT_EQ(after([&] {
                  engine->config()->cfgIs(id("noc", 1), {1}, {}, intf("Ethernet1"));
                  turn();
              }),
              (Lines{"cfg add noc/1"}));
}

TEST_F(TracerEndTest, ReleasesEveryNodeThatItMade) {
    stopped();
    auto const before = Vanta::Node::liveCount();
    start();
    atWork();
    config->entryDel("noc");
    status->entryDel("noc");
    stopped();
    EXPECT_EQ(Vanta::Node::liveCount(), before);
}

TEST_F(TracerEndTest, ReleasesWhatItWasMadeOf) {
    atWork();
    stopped();
    EXPECT_EQ(config->refCount(), 1u);
    EXPECT_EQ(status->refCount(), 1u);
    EXPECT_EQ(chip.phase0Data()->refCount(), 1u);
    EXPECT_EQ(chip.learnQuanta()->refCount(), 1u);
    EXPECT_EQ(chip.digestLayout()->refCount(), 1u);
    EXPECT_EQ(loop->refCount(), 1u);
    EXPECT_EQ(systemStatus->refCount(), 1u);
    EXPECT_EQ(fcsd->refCount(), 1u);
    EXPECT_EQ(bridgingConfig->refCount(), 1u);
    EXPECT_EQ(chipStatus->refCount(), 1u);
    EXPECT_EQ(loop->scheduledTasks(), 0u);
}

TEST_F(TracerEndTest, AnotherTracerCanFollow) {
    atWork();
    stopped();
    start();
    EXPECT_EQ(tracer->pktGenCfg()->cfg().size(), 2u);
    EXPECT_TRUE(chip.hasCallback());
}

// ---- The end without engine and clients: nobody but the tracer holds the jobs

class TracerAloneEndTest : public TracerEndTest {
  protected:
    TracerAloneEndTest() {
        tracer->pktGenSmDel();
        tracer->pktGenCfg()->cfgIs(id("noc", 1), {1}, {}, intf("Ethernet1"));
        answer(1);
        answer(2);
    }
    // What happens at the end if this is done while the last job goes.
    Lines stoppedDoing(std::function<void()> const& work) {
        OnPublication const observer(tracer->pktGenCfg()->publisher(), [&](auto, auto) { work(); });
        return stopped();
    }
    Lines const stoppedLines{"cfg del noc/1", "status del noc/1", "status del noc/2"};
};

TEST_F(TracerAloneEndTest, TheJobsGoBeforeTheAnswers) {
    EXPECT_EQ(stopped(), stoppedLines);
}

TEST_F(TracerAloneEndTest, NoWatcherRelaysAnythingWhileTheJobsGo) {
    auto const watcher = tracer->localStatus(id("noc", 1));
    auto const another = tracer->localStatus(id("noc", 2));
    EXPECT_EQ(stoppedDoing([&] {
                  watcher->kel_handleLocalStatus_ready();
                  another->kel_handleLocalStatus_ready();
              }),
              stoppedLines);
}

TEST_F(TracerAloneEndTest, TheWatchersAreTornDownWhileTheJobsGo) {
    auto const watcher = tracer->localStatus(id("noc", 1));
    bool tornDownMeanwhile = false;
    stoppedDoing([&] { tornDownMeanwhile = watcher->isZombie(); });
    EXPECT_TRUE(tornDownMeanwhile);
}

// A tracer that is switched off follows answers that are made anew.
TEST_F(TracerAloneEndTest, AnAnswerThatComesWhileTheJobsGoIsNotWatchedAnyMore) {
    tracer->hasNotificationActiveIs(false);
    tracer->pktGenStatusDel();
    auto const answers = tracer->pktGenStatusIs();
    std::uint32_t holders = 0;
    stoppedDoing([&] { holders = answers->statusIs(id("noc", 1))->refCount(); });
    EXPECT_EQ(holders, 2u);  // the collection and this test
}

// ---- Releasing the tracer from inside a notification

class TracerReleaseTest : public TracerEndTest {
  protected:
    OnPublication releaseAt(Vanta::Publisher const& publisher) {
        return OnPublication(publisher, [this](auto, auto) { tracer = nullptr; });
    }
    void expectGone() {
        EXPECT_EQ(config->refCount(), 1u);
        EXPECT_EQ(systemStatus->refCount(), 1u);
        EXPECT_FALSE(chip.hasCallback());
    }
};

TEST_F(TracerReleaseTest, MayHappenWhileAJobIsMade) {
    client("noc");
    auto const observer = releaseAt(tracer->pktGenCfg()->publisher());
    request(1);
    expectGone();
}

TEST_F(TracerReleaseTest, MayHappenWhileAClientIsMade) {
    clientConfig("noc");
    request(1, "Ethernet9");
    auto const results = PacketTracer::ClientStatus::ClientStatusIs();
    auto const observer = releaseAt(results->publisher());
    status->entryIs("noc", results);
    expectGone();
}

TEST_F(TracerReleaseTest, MayHappenAheadOfItsOwnReactionToADirectory) {
    start();  // it subscribes again, now behind the observer
    tracer = nullptr;
    auto const observer = releaseAt(config->publisher());
    start();
    clientConfig("noc");
    expectGone();
}

TEST_F(TracerReleaseTest, MayHappenWhileAnAnswerIsMade) {
    client("noc");
    request(1);
    turn();
    phase0("Ethernet1");
    auto const observer = releaseAt(tracer->pktGenStatus()->publisher());
    turn();
    expectGone();
}

TEST_F(TracerReleaseTest, MayHappenWhileAResultIsWritten) {
    atWork();
    auto const observer = releaseAt(statusOf("noc")->publisher());
    chip.digest({{.pktId = 1, .egrPort = 132}});
    turn();
    expectGone();
    EXPECT_TRUE(result(1)->valid());
}

TEST_F(TracerReleaseTest, MayHappenWhileAnAnswerIsDeleted) {
    atWork();
    auto const observer = releaseAt(tracer->pktGenStatus()->publisher());
    withdraw(1);
    turn();
    expectGone();
}

TEST_F(TracerReleaseTest, MayHappenWhileARequestIsRefused) {
    client("noc");
    auto const observer = releaseAt(statusOf("noc")->publisher());
    request(1, "Ethernet9");
    expectGone();
}

TEST_F(TracerReleaseTest, MayHappenInsideACallOfTheChip) {
    client("noc");
    request(1);
    turn();
    phase0("Ethernet1");
    recorder.onSdkCall = [&](auto const&) { tracer = nullptr; };
    turn();
    expectGone();
}

TEST_F(TracerReleaseTest, OfTheClientMayHappenWhileItsResultIsWritten) {
    atWork();
    OnPublication const observer(statusOf("noc")->publisher(),
                                 [&](auto, auto) { config->entryDel("noc"); });
    auto const results = statusOf("noc");
    chip.digest({{.pktId = 1, .egrPort = 132}});
    turn();
    EXPECT_FALSE(clientSm("noc"));
    EXPECT_TRUE(results->result(id("noc", 1))->valid());
}

}  // namespace
}  // namespace VynPacketTracer
