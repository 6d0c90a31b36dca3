#include "VynPacketTracer/EngineFixture.h"
#include "VynPacketTracer/VynPtPktGenSm.h"
#include "sdkseam/Interposition.h"

namespace VynPacketTracer {
namespace {

std::string counted(std::uint64_t count, p4_pd_status_t rc = 0, unsigned pipe = 0) {
    return "sdk getPktCounters session=1 device=0 pipe=" + std::to_string(pipe) + " appId=4 -> " +
           std::to_string(rc) + " count=" + std::to_string(count);
}
std::string const counterError =
    engineTrace(1, "getPktCounters:error retrieving pktGen counters for pipeId:0");

// ---- Phase-0 data

class Phase0Test : public EngineTest {
  protected:
    Phase0Test() { start(); }

    // What an answer for Ethernet1 brings about.
    Lines answered(std::uint32_t rc) {
        return after([&] { phase0("Ethernet1", {}, rc); });
    }
    std::string const entered =
        engineTrace(7, "processPhase0DataResponse:clientName:noc reqId:1 intfId:Ethernet1");
};

TEST_F(Phase0Test, AnOutdatedRequestIsWithdrawnBeforeTheDataIsAskedFor) {
    job(1);
    EXPECT_EQ(beginning("phase0", turned()),
              (Lines{"phase0 configDel Ethernet1", "phase0 configIs Ethernet1"}));
    EXPECT_EQ(engine->state(), State::waitPhase0Data);
}

TEST_F(Phase0Test, ASuccessfulAnswerMakesTheDataReady) {
    toWaitPhase0Data();
    EXPECT_EQ(answered(0), (Lines{entered}));
    EXPECT_EQ(engine->state(), State::phase0DataReady);
}

TEST_F(Phase0Test, AFailedAnswerThatIsWaitedForCountsAsReady) {
    toWaitPhase0Data();
    EXPECT_EQ(answered(7), (Lines{entered}));
    EXPECT_EQ(engine->state(), State::phase0DataReady);
}

TEST_F(Phase0Test, AFailedAnswerThatIsNotWaitedForIsAnError) {
    toWaitPktSent();
    EXPECT_EQ(answered(7),
              (Lines{entered,
                     engineTrace(1,
                                 "processPhase0DataResponse:error retrieving phase0Data for "
                                 "intfId:Ethernet1 state:waitPktSent phase0Status:7"),
                     "phase0 configDel Ethernet1"}));
    EXPECT_EQ(engine->state(), State::error);
}

TEST_F(Phase0Test, AFailedAnswerWhileIdleIsAnErrorOfTheLastJob) {
    toIdleAgain();
    EXPECT_EQ(first(beginning("VynPtPktGenSm/1", answered(7))),
              engineTrace(1,
                          "processPhase0DataResponse:error retrieving phase0Data "
                          "for intfId:Ethernet1 state:idle phase0Status:7"));
    EXPECT_EQ(engine->state(), State::error);
}

TEST_F(Phase0Test, AFailedAnswerForAnotherInterfaceWithdrawsTheCurrentOnes) {
    toWaitPktSent();
    EXPECT_EQ(after([&] { phase0("Ethernet9", {}, 4294967295u); }),
              (Lines{engineTrace(7,
                                 "processPhase0DataResponse:clientName:noc reqId:1 "
                                 "intfId:Ethernet9"),
                     engineTrace(1,
                                 "processPhase0DataResponse:error retrieving phase0Data for "
                                 "intfId:Ethernet9 state:waitPktSent phase0Status:4294967295"),
                     "phase0 configDel Ethernet1"}));
}

TEST_F(Phase0Test, AnAnswerForAnotherInterfaceCountsAsTheCurrentOnes) {
    toWaitPhase0Data();
    phase0("Ethernet9");
    EXPECT_EQ(engine->state(), State::phase0DataReady);
}

TEST_F(Phase0Test, ASuccessfulAnswerForcesPhase0DataReadyWhileThePacketIsAwaited) {
    toWaitPktSent();
    answered(0);
    EXPECT_EQ(engine->state(), State::phase0DataReady);
}

TEST_F(Phase0Test, ASuccessfulAnswerForcesPhase0DataReadyFromReset) {
    toReset();
    answered(0);
    EXPECT_EQ(engine->state(), State::phase0DataReady);
}

TEST_F(Phase0Test, ASuccessfulAnswerForcesPhase0DataReadyFromIdle) {
    toIdleAgain();
    answered(0);
    EXPECT_EQ(engine->state(), State::phase0DataReady);
}

TEST_F(Phase0Test, ASuccessfulAnswerForcesPhase0DataReadyFromError) {
    toError();
    answered(0);
    EXPECT_EQ(engine->state(), State::phase0DataReady);
}

TEST_F(Phase0Test, AnAnswerThatIsGoneAgainOnlyTracesItsDeletion) {
    toWaitPhase0Data();
    phase0("Ethernet1");
    turn();
    EXPECT_EQ(after([&] { chip.phase0Data()->answerDel(intf("Ethernet1")); }),
              (Lines{entered, engineTrace(7,
                                          "processPhase0DataResponse:deletion of phase0 for "
                                          "intfId:Ethernet1")}));
    EXPECT_EQ(engine->state(), State::waitPktSent);
}

TEST_F(Phase0Test, EveryAnnouncementSchedulesTheTask) {
    toIdleAgain();
    loop->yieldAfterIs(Orb::TaskSchedulerRoot::neverYield);
    turn();
    EXPECT_FALSE(isScheduled());
    chip.phase0Data()->answerDel(intf("Ethernet1"));
    EXPECT_TRUE(isScheduled());
}

TEST_F(Phase0Test, BeforeTheFirstJobAnAnswerChangesNoState) {
    for (std::uint32_t const rc : {0u, 7u}) {
        EXPECT_EQ(answered(rc),
                  (Lines{engineTrace(
                      7, "processPhase0DataResponse:clientName: reqId:0 intfId:Ethernet1")}));
        EXPECT_EQ(engine->state(), State::idle);
    }
    EXPECT_TRUE(isScheduled());
}

TEST_F(Phase0Test, BeforeTheFirstJobADeletionIsTraced) {
    phase0("Ethernet1");
    turn();
    EXPECT_EQ(
        after([&] { chip.phase0Data()->answerDel(intf("Ethernet1")); }),
        (Lines{
            engineTrace(7, "processPhase0DataResponse:clientName: reqId:0 intfId:Ethernet1"),
            engineTrace(7, "processPhase0DataResponse:deletion of phase0 for intfId:Ethernet1")}));
    EXPECT_TRUE(isScheduled());
}

// ---- Injection

class SendTest : public EngineTest {
  protected:
    SendTest() { start(); }
};

TEST_F(SendTest, InjectsThePacketAndMakesItsAnswer) {
    counter(41);
    toPhase0DataReady();
    EXPECT_EQ(turned(),
              (Lines{engineTrace(7, "doWork:"), engineTrace(7, "sendPkt:clientName:noc reqId:1"),
                     counted(41), engineTrace(7, "sendPkt:pktCnt:41"),
                     "sdk genOnePkt session=1 device=0 pipe=0 genPort=68 portIndex=4 appId=4 "
                     "pkt=cafe phase0=0400 pktId=1 -> 0",
                     "status add noc/1", "status pktId noc/1 1", "phase0 configDel Ethernet1"}));
    EXPECT_EQ(engine->state(), State::waitPktSent);
    EXPECT_EQ(engine->curPktCounter(), 41u);
    EXPECT_EQ(engine->pktId(), 1);
}

TEST_F(SendTest, NamesThePipeAndTheLowEightBitsOfThePortIndex) {
    config->cfgIs(id("noc", 1), {0xca, 0xfe}, {3, VynPortTypes::PortIndex(300)}, intf("Ethernet1"));
    turn();
    phase0("Ethernet1");
    EXPECT_EQ(beginning("sdk genOnePkt", turned()),
              (Lines{"sdk genOnePkt session=1 device=0 pipe=3 genPort=68 portIndex=44 appId=4 "
                     "pkt=cafe phase0= pktId=1 -> 0"}));
}

TEST_F(SendTest, WithoutAPhase0EntryInjectsWithEmptyPhase0Bytes) {
    toWaitPhase0Data();
    phase0("Ethernet9", {9});  // for another interface: it counts, but it is not there to be sent
    EXPECT_EQ(beginning("sdk genOnePkt", turned()),
              (Lines{"sdk genOnePkt session=1 device=0 pipe=0 genPort=68 portIndex=4 appId=4 "
                     "pkt=cafe phase0= pktId=1 -> 0"}));
    EXPECT_EQ(engine->state(), State::waitPktSent);
}

TEST_F(SendTest, ACounterThatCannotBeReadIsAnErrorAndNothingIsSent) {
    toPhase0DataReady();
    fails(SdkFunction::getPktCounters, -5);
    EXPECT_EQ(turned(),
              (Lines{engineTrace(7, "doWork:"), engineTrace(7, "sendPkt:clientName:noc reqId:1"),
                     counted(0, -5), counterError, "phase0 configDel Ethernet1"}));
    EXPECT_EQ(engine->state(), State::error);
    EXPECT_EQ(engine->pktId(), 0);
}

TEST_F(SendTest, AnInjectionThatFailsIsAnErrorWithoutAnAnswer) {
    toPhase0DataReady();
    fails(SdkFunction::genOnePkt, -5);
    EXPECT_EQ(turned(),
              (Lines{engineTrace(7, "doWork:"), engineTrace(7, "sendPkt:clientName:noc reqId:1"),
                     counted(0), engineTrace(7, "sendPkt:pktCnt:0"),
                     "sdk genOnePkt session=1 device=0 pipe=0 genPort=68 portIndex=4 appId=4 "
                     "pkt=cafe phase0=0400 pktId=1 -> -5",
                     engineTrace(1, "sendPkt:Error sending pkt clientName:noc reqId:1"),
                     "phase0 configDel Ethernet1"}));
    EXPECT_EQ(engine->state(), State::error);
    EXPECT_FALSE(isAnswered(1));
}

TEST_F(SendTest, AnInjectionThatFailsUsesUpItsPacketId) {
    toPhase0DataReady();
    fails(SdkFunction::genOnePkt, -5);
    turn();
    EXPECT_EQ(engine->pktId(), 1);
}

TEST_F(SendTest, AnAnswerThatIsThereKeepsItsFieldsAndGetsTheNewPacketId) {
    toWaitPktSent();
    status->statusIs(id("noc", 1))->egrL2DomainIs(10);
    phase0("Ethernet1");
    EXPECT_EQ(beginning("status", turned()), (Lines{"status pktId noc/1 2"}));
    EXPECT_EQ(status->status(id("noc", 1))->egrL2Domain(), 10);
}

TEST_F(SendTest, AJobThatWentWithoutBeingHeardOfIsSentWithoutAnAnswer) {
    toPhase0DataReady();
    engine->hasNotificationActiveIs(false);
    withdraw(1);
    engine->hasNotificationActiveIs(true);
    EXPECT_EQ(beginning("status", turned()), Lines{});
    EXPECT_EQ(engine->state(), State::waitPktSent);
}

TEST_F(SendTest, PacketIdsWrapFrom65535To0) {
    toPhase0DataReady();
    recorder.hearsIs(false);
    for (std::uint32_t sent = 1; sent <= 65536; ++sent) {
        phase0("Ethernet1");  // sends the packet once more
        turn();
        ASSERT_EQ(engine->pktId(), static_cast<std::uint16_t>(sent));
    }
    EXPECT_EQ(engine->pktId(), 0);
    EXPECT_EQ(status->status(id("noc", 1))->pktId(), 0);
}

// ---- Counter check

class CounterTest : public EngineTest {
  protected:
    CounterTest() { start(); }

    Lines const checked{engineTrace(7, "doWork:"),
                        engineTrace(7, "checkPktCnt:clientName:noc reqId:1")};
    static std::string waiting(std::uint64_t count) {
        return engineTrace(9, "checkPktCnt:Waiting on Sent pkt for clientName:noc reqId:1 cnt:" +
                                  std::to_string(count));
    }
    static std::string sent(std::uint64_t count, std::uint64_t before) {
        return engineTrace(9, "checkPktCnt:Sent pkt for clientName:noc reqId:1 cnt:" +
                                  std::to_string(count) + " curCnt:" + std::to_string(before));
    }
};

TEST_F(CounterTest, AnUnchangedCounterKeepsTheEngineWaitingForEver) {
    toWaitPktSent();
    for (int poll = 0; poll < 1000; ++poll) {
        ASSERT_EQ(turned(), checked + (Lines{counted(0), waiting(0)}));
        ASSERT_TRUE(isScheduled());
    }
    EXPECT_EQ(engine->state(), State::waitPktSent);
}

TEST_F(CounterTest, ACounterThatWentUpCountsAsSent) {
    counter(5);
    toWaitPktSent();
    counter(6);
    EXPECT_EQ(turned(), checked + (Lines{counted(6), sent(6, 5)}));
    EXPECT_EQ(engine->state(), State::reset);
}

TEST_F(CounterTest, ACounterThatWentDownCountsAsSent) {
    counter(5);
    toWaitPktSent();
    counter(0);
    EXPECT_EQ(turned(), checked + (Lines{counted(0), sent(0, 5)}));
    EXPECT_EQ(engine->state(), State::reset);
}

TEST_F(CounterTest, TheCounterIsComparedInAllItsBits) {
    counter(0);
    toWaitPktSent();
    counter(std::uint64_t{1} << 63);
    EXPECT_EQ(turned(),
              checked + (Lines{counted(9223372036854775808u), sent(9223372036854775808u, 0)}));
    EXPECT_EQ(engine->state(), State::reset);
}

TEST_F(CounterTest, TheCounterIsThatOfTheJobsPipe) {
    job(1, "Ethernet1", 2);
    turn();
    phase0("Ethernet1");
    EXPECT_EQ(first(beginning("sdk getPktCounters", turned())), counted(0, 0, 2));
    counter(1, 2);
    EXPECT_EQ(beginning("sdk", turned()),
              (Lines{counted(1, 0, 2), "sdk disableAppId session=1 device=0 pipe=2 appId=4 -> 0",
                     "sdk disablePktGen session=1 device=0 pipe=2 genPort=68 -> 0"}));
}

TEST_F(CounterTest, ACounterThatCannotBeReadIsLikeOneThatDidNotMove) {
    toWaitPktSent();
    counter(1);
    fails(SdkFunction::getPktCounters, -5);
    EXPECT_EQ(turned(), checked + (Lines{counted(1, -5), counterError, waiting(1)}));
    EXPECT_EQ(engine->state(), State::waitPktSent);
}

// A chip that refuses every call and writes nothing.
struct RefusingChip final : SdkSeam::Chip {
    void call(SdkSeam::SdkCall& call) override { call.rc = -5; }
};

TEST_F(CounterTest, ACounterThatIsNotWrittenIsTracedAsNone) {
    toWaitPktSent();
    RefusingChip refusing;
    SdkSeam::Interposition const inFront(chip.device(), refusing);
    EXPECT_EQ(turned(), checked + (Lines{counterError, waiting(0)}));
}

TEST_F(CounterTest, WithTraceSupportTheAnswerWaitsForTheDigest) {
    toWaitPktSent();
    counter(1);
    turn();
    EXPECT_FALSE(status->status(id("noc", 1))->ready());
}

TEST_F(CounterTest, AJobThatWentAfterTheInjectionIsAnErrorAndNoReset) {
    toWaitPktSent();
    withdraw(1);
    EXPECT_EQ(engine->state(), State::error);
    EXPECT_EQ(beginning(engineTrace(7, "checkPktCnt"), turned()), Lines{});
}

TEST_F(CounterTest, AJobThatWentWithoutBeingHeardOfIsAnErrorWhenItIsPolled) {
    toWaitPktSent();
    engine->hasNotificationActiveIs(false);
    withdraw(1);
    engine->hasNotificationActiveIs(true);
    EXPECT_EQ(turned(), checked + (Lines{counted(0),
                                         engineTrace(9,
                                                     "checkPktCnt:Client nocdel cfg while waiting "
                                                     "for pktCnt reqId:1 cnt:0")}));
    EXPECT_EQ(engine->state(), State::error);
}

TEST_F(CounterTest, AMovedCounterComesBeforeAJobThatWent) {
    toWaitPktSent();
    engine->hasNotificationActiveIs(false);
    withdraw(1);
    engine->hasNotificationActiveIs(true);
    counter(1);
    turn();
    EXPECT_EQ(engine->state(), State::reset);
}

class UntracedCounterTest : public EngineTest {
  protected:
    UntracedCounterTest() { start(false); }
};

TEST_F(UntracedCounterTest, TheAnswerIsReadyWithoutEgressDataAsSoonAsTheCounterMoves) {
    toWaitPktSent();
    counter(1);
    EXPECT_EQ(beginning("status", turned()), (Lines{"status ready noc/1 true"}));
    EXPECT_EQ(status->status(id("noc", 1))->egrPortInfo().port().value(), 456);
    EXPECT_EQ(engine->state(), State::reset);
}

TEST_F(UntracedCounterTest, TheAnswerIsNotReadyBefore) {
    toWaitPktSent();
    turn();
    EXPECT_FALSE(status->status(id("noc", 1))->ready());
}

TEST_F(UntracedCounterTest, AnAnswerThatIsMissingIsMadeReady) {
    toWaitPktSent();
    status->statusDel(id("noc", 1));
    counter(1);
    EXPECT_EQ(beginning("status", turned()),
              (Lines{"status add noc/1", "status ready noc/1 true"}));
}

TEST_F(UntracedCounterTest, WithoutAJobNoAnswerIsMade) {
    toWaitPktSent();
    status->statusDel(id("noc", 1));
    engine->hasNotificationActiveIs(false);
    withdraw(1);
    engine->hasNotificationActiveIs(true);
    counter(1);
    EXPECT_EQ(beginning("status", turned()), Lines{});
    EXPECT_EQ(engine->state(), State::reset);
}

// ---- Switching off

class DisableTest : public EngineTest {
  protected:
    DisableTest() { start(); }
    std::string const appOff = "sdk disableAppId session=1 device=0 pipe=0 appId=4 -> ";
    std::string const genOff = "sdk disablePktGen session=1 device=0 pipe=0 genPort=68 -> ";
};

TEST_F(DisableTest, TheApplicationGoesOffBeforeTheGenerator) {
    toReset();
    EXPECT_EQ(beginning("sdk", turned()), (Lines{appOff + "0", genOff + "0"}));
    EXPECT_EQ(engine->state(), State::idle);
}

TEST_F(DisableTest, AnApplicationThatDoesNotGoOffIsAnErrorAndLeavesTheGeneratorOn) {
    toReset();
    fails(SdkFunction::disableAppId, -5);
    EXPECT_EQ(turned(),
              (Lines{engineTrace(7, "doWork:"), appOff + "-5",
                     engineTrace(1, "disablePktGen:Error disabling appId for pipe:0 deviceId:0")}));
    EXPECT_EQ(engine->state(), State::error);
}

TEST_F(DisableTest, AGeneratorThatDoesNotGoOffIsAnError) {
    toReset();
    fails(SdkFunction::disablePktGen, -5);
    EXPECT_EQ(turned(),
              (Lines{engineTrace(7, "doWork:"), appOff + "0", genOff + "-5",
                     engineTrace(1, "disablePktGen:Error disabling pktGen for pipe:0 deviceId")}));
    EXPECT_EQ(engine->state(), State::error);
}

TEST_F(DisableTest, AFailedResetDeletesTheAnswerAndTheJobIsTriedAgain) {
    toReset();
    fails(SdkFunction::disableAppId, -5);
    turn();
    EXPECT_EQ(beginning("status", turned()), (Lines{"status del noc/1"}));
    turn();
    EXPECT_EQ(engine->state(), State::waitPhase0Data);
}

TEST_F(DisableTest, AnyStatusButZeroIsAFailure) {
    toReset();
    fails(SdkFunction::disablePktGen, 1);
    turn();
    EXPECT_EQ(engine->state(), State::error);
}

TEST(EngineOfAnotherDeviceTest, NamesItsSessionAndDeviceInEveryCall) {
    Recorder recorder;
    ScriptChip::ScriptChip chip(&recorder, 9);
    auto const loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    auto const config = pktGenConfigFactory();
    auto engine = pktGenSmFactory(config, chip.phase0Data(), pktGenStatusFactory(), 77, 9, true,
                                  chip.learnQuanta(), chip.digestLayout(), loop);
    config->cfgIs(id("noc", 1), {1}, {}, intf("Ethernet1"));
    loop->turn();
    chip.phase0Data()->answerIs(intf("Ethernet1"), {});
    std::vector<std::uint64_t> const moving{0, 1};
    chip.counterIs(0, moving);
    loop->turn();
    engine = nullptr;
    Lines const calls = beginning("sdk", recorder.take());
    EXPECT_EQ(calls.size(), 7u);
    for (auto const& call : calls) {
        EXPECT_NE(call.find(" session=77 device=9 "), std::string::npos) << call;
    }
}

}  // namespace
}  // namespace VynPacketTracer
