#include "VynPacketTracer/EngineFixture.h"
#include "VynPacketTracer/VynPtPktGenSm.h"

namespace VynPacketTracer {
namespace {

class EngineStateTest : public AwakeEngineTest {};

// ---- One job after the other

TEST_F(EngineStateTest, TwoJobsAreServedOneAfterTheOther) {
    oneStepARun();
    job(1);
    job(2, "Ethernet2");
    turn();
    EXPECT_EQ(engine->curCfg()->req(), id("noc", 1));
    phase0("Ethernet1");
    turn();
    counter(1);
    turn(2);
    EXPECT_EQ(engine->state(), State::idle);
    EXPECT_EQ(engine->curCfg()->req(), id("noc", 1));
    EXPECT_FALSE(isAnswered(2));
    EXPECT_EQ(turned(), looked + asked(2, "Ethernet2"));
}

TEST_F(EngineStateTest, AJobThatComesWhileAnotherOneIsInWorkWaits) {
    toWaitPktSent();
    EXPECT_EQ(after([&] { job(2, "Ethernet2"); }), addHandled(2));
    turn();
    EXPECT_EQ(engine->state(), State::waitPktSent);
    EXPECT_EQ(engine->curCfg()->req(), id("noc", 1));
}

TEST_F(EngineStateTest, TheJobInWorkStaysTheCurrentOneUntilTheNext) {
    toIdleAgain();
    turn();
    EXPECT_EQ(engine->curCfg()->req(), id("noc", 1));
}

// ---- The states

TEST_F(EngineStateTest, WaitingForPhase0DataItComesAgainAndDoesNothing) {
    toWaitPhase0Data();
    EXPECT_EQ(turned(), worked);
    EXPECT_EQ(turned(), worked);
    EXPECT_TRUE(isScheduled());
}

TEST_F(EngineStateTest, ResetSwitchesTheGeneratorOff) {
    toReset();
    EXPECT_EQ(turned(), worked + disabled);
    EXPECT_EQ(engine->state(), State::idle);
}

TEST_F(EngineStateTest, AfterAResetItLooksForTheNextJob) {
    toReset();
    loop->yieldAfterIs(Orb::TaskSchedulerRoot::neverYield);
    EXPECT_EQ(turned(), worked + disabled + Lines{engineTrace(7, "processRequest:")});
    EXPECT_FALSE(isScheduled());
}

TEST_F(EngineStateTest, AResetThatFailsIsAnError) {
    toReset();
    fails(SdkFunction::disableAppId);
    turn();
    EXPECT_EQ(engine->state(), State::error);
}

TEST_F(EngineStateTest, AnErrorDeletesTheAnswerAndSwitchesTheGeneratorOff) {
    toWaitPktSent();
    withdraw(1);
    Lines const cleaned{engineTrace(7, "processError:clientName:noc reqId:1"), "status del noc/1"};
    EXPECT_EQ(turned(), worked + cleaned + disabled);
    EXPECT_EQ(engine->state(), State::idle);
}

TEST_F(EngineStateTest, AnErrorWithoutAnAnswerOnlySwitchesTheGeneratorOff) {
    toError();
    EXPECT_EQ(turned(),
              worked + Lines{engineTrace(7, "processError:clientName:noc reqId:1")} + disabled);
}

TEST_F(EngineStateTest, AnErrorEndsTheRunAndComesAgain) {
    toError();
    loop->yieldAfterIs(Orb::TaskSchedulerRoot::neverYield);
    EXPECT_EQ(beginning(engineTrace(7, "processRequest:"), turned()), Lines{});
    EXPECT_EQ(engine->state(), State::idle);
    EXPECT_TRUE(isScheduled());
    EXPECT_EQ(turned(), looked);
}

TEST_F(EngineStateTest, AnErrorThatCannotSwitchTheGeneratorOffIsWorkedOnAgain) {
    toError();
    fails(SdkFunction::disablePktGen, -5, 2);
    turn();
    EXPECT_EQ(engine->state(), State::error);
    EXPECT_TRUE(isScheduled());
    turn();
    EXPECT_EQ(engine->state(), State::error);
    turn();
    EXPECT_EQ(engine->state(), State::idle);
}

TEST_F(EngineStateTest, AJobThatFailedIsTriedAgainWhileItExists) {
    toPhase0DataReady();
    fails(SdkFunction::genOnePkt);
    turn();
    EXPECT_EQ(engine->state(), State::error);
    turn();
    EXPECT_EQ(turned(), looked + asked(1));
    phase0("Ethernet1");
    turn();
    EXPECT_EQ(engine->state(), State::waitPktSent);
    EXPECT_EQ(engine->pktId(), 2);
}

TEST_F(EngineStateTest, AJobThatFailedIsNotTriedAgainOnceItIsGone) {
    toPhase0DataReady();
    fails(SdkFunction::genOnePkt);
    turn();
    withdraw(1);
    turn();
    EXPECT_EQ(turned(), looked);
    EXPECT_FALSE(isScheduled());
}

TEST_F(EngineStateTest, AJobWhoseAnswerIsDeletedWhileIdleIsTriedAgain) {
    toIdleAgain();
    turn();
    EXPECT_FALSE(isScheduled());
    status->statusDel(id("noc", 1));
    engine->task()->schedule();
    EXPECT_EQ(turned(), looked + asked(1));
}

// ---- handleConfig

TEST_F(EngineStateTest, AJobThatIsAddedSchedulesTheTask) {
    turn();
    EXPECT_EQ(after([&] { job(1); }), addHandled(1));
    EXPECT_TRUE(isScheduled());
}

TEST_F(EngineStateTest, ATaskThatIsScheduledStaysSo) {
    job(1);
    job(2);
    turn();
    EXPECT_EQ(turned(), worked);  // not twice
}

TEST_F(EngineStateTest, WithdrawingTheJobInWorkIsAnErrorThatDeletesItsAnswer) {
    toWaitPktSent();
    EXPECT_EQ(after([&] { withdraw(1); }),
              delHandled(1) + Lines{engineTrace(2,
                                                "handleConfig:removed config before it was done "
                                                "clientName:noc reqId:1")});
    EXPECT_EQ(engine->state(), State::error);
    EXPECT_TRUE(isAnswered(1));
    EXPECT_EQ(beginning("s", turned()), Lines{"status del noc/1"} + disabled);
    EXPECT_EQ(engine->state(), State::idle);
}

TEST_F(EngineStateTest, WithdrawingAnotherJobOnlyDeletesItsAnswer) {
    toWaitPktSent();
    job(2);
    status->statusIs(id("noc", 2));
    EXPECT_EQ(after([&] { withdraw(2); }), delHandled(2) + Lines{"status del noc/2"});
    EXPECT_EQ(engine->state(), State::waitPktSent);
}

TEST_F(EngineStateTest, WithdrawingAJobWithoutAnAnswerChangesNoState) {
    toWaitPktSent();
    job(2);
    EXPECT_EQ(after([&] { withdraw(2); }), delHandled(2));
    EXPECT_EQ(engine->state(), State::waitPktSent);
}

TEST_F(EngineStateTest, WithdrawingTheLastJobServedWhileIdleDeletesItsAnswer) {
    toIdleAgain();
    EXPECT_EQ(after([&] { withdraw(1); }), delHandled(1) + Lines{"status del noc/1"});
    EXPECT_EQ(engine->state(), State::idle);
}

TEST_F(EngineStateTest, WithdrawingAJobBeforeTheFirstOneIsInWorkIsNoError) {
    turn();
    job(1);
    EXPECT_EQ(after([&] { withdraw(1); }), delHandled(1));
    EXPECT_EQ(engine->state(), State::idle);
    EXPECT_TRUE(isScheduled());
}

TEST_F(EngineStateTest, WithdrawnWhileItWaitsForPhase0DataTheJobIsAnError) {
    toWaitPhase0Data();
    withdraw(1);
    EXPECT_EQ(engine->state(), State::error);
}

TEST_F(EngineStateTest, WithdrawnBeforeItIsSentTheJobIsAnErrorAndNotSent) {
    toPhase0DataReady();
    withdraw(1);
    EXPECT_EQ(engine->state(), State::error);
    EXPECT_EQ(beginning("sdk", turned()), disabled);
}

TEST_F(EngineStateTest, WithdrawnBeforeTheGeneratorIsOffTheJobIsAnError) {
    toReset();
    withdraw(1);
    EXPECT_EQ(engine->state(), State::error);
}

TEST_F(EngineStateTest, AJobThatIsWithdrawnAndMadeAnewInErrorIsServedAgain) {
    toError();
    job(1);
    turn();
    EXPECT_EQ(turned(), looked + asked(1));
}

TEST_F(EngineStateTest, WithdrawingTheJobInWorkDuringItsErrorIsAnotherError) {
    toError();
    job(1);
    EXPECT_EQ(after([&] { withdraw(1); }).size(), 3u);
    EXPECT_EQ(engine->state(), State::error);
}

// ---- When the state changes, as the tap and the chip see it

class EngineStateSeenTest : public EngineStateTest {
  protected:
    // The state during the first of the lines that an event brings about that has this text.
    std::string seenAt(std::string const& text, std::function<void()> const& event) {
        recorder.mark = [this] { return std::string(stringValue(engine->state()).view()) + " "; };
        auto const lines = after(event);
        recorder.mark = nullptr;
        for (auto const& line : lines) {
            if (line.find(text) != line.npos) {
                return line.substr(0, line.find(' '));
            }
        }
        return "no such line";
    }
    std::string seenAtTurn(std::string const& text) {
        return seenAt(text, [&] { turn(); });
    }
};

TEST_F(EngineStateSeenTest, AskingForPhase0IsTracedAhead) {
    job(1);
    EXPECT_EQ(seenAtTurn("getPhase0Data:"), "idle");
}

TEST_F(EngineStateSeenTest, Phase0IsAskedForAfterwards) {
    job(1);
    EXPECT_EQ(seenAtTurn("phase0 configDel"), "waitPhase0Data");
}

TEST_F(EngineStateSeenTest, AFailedPhase0IsGivenUpAhead) {
    toPhase0DataReady();
    EXPECT_EQ(seenAt("phase0 configDel", [&] { phase0("Ethernet1", {}, 1); }), "phase0DataReady");
}

TEST_F(EngineStateSeenTest, Phase0OfAnUnreadCounterIsGivenUpAfterwards) {
    toPhase0DataReady();
    fails(SdkFunction::getPktCounters);
    EXPECT_EQ(seenAtTurn("phase0 configDel"), "error");
}

TEST_F(EngineStateSeenTest, AFailedInjectionIsTracedAfterwards) {
    toPhase0DataReady();
    fails(SdkFunction::genOnePkt);
    EXPECT_EQ(seenAtTurn("sendPkt:Error"), "error");
}

TEST_F(EngineStateSeenTest, AJobThatIsGoneIsTracedAhead) {
    toWaitPktSent();
    engine->hasNotificationActiveIs(false);
    withdraw(1);
    engine->hasNotificationActiveIs(true);
    EXPECT_EQ(seenAtTurn("del cfg while waiting"), "waitPktSent");
}

TEST_F(EngineStateSeenTest, AWithdrawalIsTracedAhead) {
    toWaitPhase0Data();
    EXPECT_EQ(seenAt("handleConfig:removed", [&] { withdraw(1); }), "waitPhase0Data");
}

TEST_F(EngineStateSeenTest, AnApplicationThatCannotBeDisabledIsTracedAhead) {
    toReset();
    fails(SdkFunction::disableAppId);
    EXPECT_EQ(seenAtTurn("disablePktGen:Error"), "reset");
}

TEST_F(EngineStateSeenTest, AGeneratorThatCannotBeDisabledIsTracedAhead) {
    toReset();
    fails(SdkFunction::disablePktGen);
    EXPECT_EQ(seenAtTurn("disablePktGen:Error"), "reset");
}

TEST_F(EngineStateSeenTest, AnAnswerIsMadeAhead) {
    toPhase0DataReady();
    EXPECT_EQ(seenAtTurn("status add"), "phase0DataReady");
}

TEST_F(EngineStateSeenTest, WithoutTheDigestAnAnswerIsReadyAhead) {
    startAwake(false);
    toWaitPktSent();
    counter(1);
    EXPECT_EQ(seenAtTurn("status ready"), "waitPktSent");
}

TEST_F(EngineStateSeenTest, AnAnswerIsDeletedBeforeTheTaskIsScheduled) {
    toIdleAgain();
    turn(2);
    bool scheduled = true;
    OnPublication const observer(status->publisher(),
                                 [&](auto, auto) { scheduled = isScheduled(); });
    withdraw(1);
    EXPECT_FALSE(scheduled);
    EXPECT_TRUE(isScheduled());
}

TEST_F(EngineStateSeenTest, Phase0ThatGoesIsTracedBeforeTheTaskIsScheduled) {
    phase0("Ethernet1");
    turn(2);
    bool scheduled = true;
    recorder.onTrace = [&] { scheduled = isScheduled(); };
    chip.phase0Data()->answerDel(intf("Ethernet1"));
    EXPECT_FALSE(scheduled);
    EXPECT_TRUE(isScheduled());
}

TEST_F(EngineStateSeenTest, TheGeneratorIsDisabledAhead) {
    toReset();
    EXPECT_EQ(seenAtTurn("sdk disablePktGen"), "reset");
}

}  // namespace
}  // namespace VynPacketTracer
