// An engine that is released inside a call that it makes: what it still does, and what not.
#include <optional>

#include "VynPacketTracer/EngineFixture.h"
#include "VynPacketTracer/TracerFixture.h"
#include "VynPacketTracer/VynPtPktGenSm.h"

namespace VynPacketTracer {
namespace {

// Phase-0 data that is there, and goes, inside the call that asks for it or gives it up.
class PromptPhase0Data final : public VynSdk::Phase0DataIntf {
  public:
    explicit PromptPhase0Data(Recorder& recorder) : recorder_(recorder) {}

    void configIs(Plexa::IntfId const& intf) override {
        recorder_.note("phase0 configIs " + intf.stringValue());
        answerIs(intf);
    }
    void configDel(Plexa::IntfId const& intf) override {
        recorder_.note("phase0 configDel " + intf.stringValue());
        if (responseDel(intf)) {
            publishResponse(intf);
        }
    }
    void answerIs(Plexa::IntfId const& intf, std::uint32_t status = 0) {
        responseIs(intf, {{4, 0}, status});
        publishResponse(intf);
    }

  private:
    Recorder& recorder_;
};

class EngineReleaseTest : public EngineTest {
  protected:
    EngineReleaseTest() { start(); }
    // More jobs, so that an engine that went on would be seen to.
    void moreJobs() {
        job(2, "Ethernet2");
        job(3, "Ethernet3");
    }
    // An engine whose phase-0 data is there at once.
    void startPrompt() {
        engine = pktGenSmFactory(config, prompt, status, 1, chip.device(), true, chip.learnQuanta(),
                                 chip.digestLayout(), loop);
        turn();
        recorder.take();
    }
    // The engine goes inside the publications of this that have this attribute.
    OnPublication releaseAt(Vanta::Publisher const& publisher, Vanta::AttributeNumber attribute) {
        return OnPublication(publisher, [this, attribute](Vanta::AttributeNumber changed, auto) {
            if (changed == attribute) {
                release();
            }
        });
    }
    OnPublication releaseAtStatus() {
        return releaseAt(status->publisher(), PktGenStatus::statusAttribute);
    }
    // What the engine is when its destructor begins to work.
    void release() {
        task = engine->task();
        recorder.onSdkCall = [this, raw = engine.get()](SdkSeam::SdkCall const& call) {
            if (call.function == SdkFunction::digestDeregister) {
                stateAtEnd = raw->state();
                scheduledAtEnd = task->isScheduled();
            }
        };
        engine = nullptr;
    }
    void releaseAtCall(SdkFunction function) {
        recorder.onSdkCall = [this, function](SdkSeam::SdkCall const& call) {
            if (call.function == function) {
                release();
            }
        };
    }
    void goesOnAsLongAsItCan() { loop->yieldAfterIs(Orb::TaskSchedulerRoot::neverYield); }
    // What a run brings about that ends with the engine.
    Lines ranToItsEnd() {
        goesOnAsLongAsItCan();
        auto const lines = turned();
        EXPECT_EQ(config->refCount(), 1u);
        EXPECT_FALSE(scheduledAtEnd);
        return lines;
    }

    Vanta::Ptr<PromptPhase0Data> const prompt = Vanta::makeNode<PromptPhase0Data>(recorder);
    Vanta::Ptr<Orb::Task> task;
    std::optional<State> stateAtEnd;
    bool scheduledAtEnd = false;
};

Lines const sending{engineTrace(7, "sendPkt:clientName:noc reqId:1"),
                    "sdk getPktCounters session=1 device=0 pipe=0 appId=4 -> 0 count=0"};
Lines const injected{
    engineTrace(7, "sendPkt:pktCnt:0"),
    "sdk genOnePkt session=1 device=0 pipe=0 genPort=68 portIndex=4 appId=4 pkt=cafe "
    "phase0=0400 pktId=1 -> 0"};
Lines const withdrawn{"phase0 configDel Ethernet1"};
Lines const checked{engineTrace(7, "checkPktCnt:clientName:noc reqId:1"),
                    "sdk getPktCounters session=1 device=0 pipe=0 appId=4 -> 0 count=1"};
Lines const moved{engineTrace(9, "checkPktCnt:Sent pkt for clientName:noc reqId:1 cnt:1 curCnt:0")};

// ---- While a job is sent

class SendReleaseTest : public EngineReleaseTest {
  protected:
    SendReleaseTest() {
        toPhase0DataReady();
        moreJobs();
        recorder.take();
    }
};

TEST_F(SendReleaseTest, WhileTheAnswerIsMadeStillWithdrawsThePhase0RequestAndNothingElse) {
    auto const observer = releaseAtStatus();
    EXPECT_EQ(ranToItsEnd(),
              worked + sending + injected + Lines{"status add noc/1"} + withdrawn + deregistered);
    EXPECT_EQ(stateAtEnd, State::phase0DataReady);
}

TEST_F(SendReleaseTest, WhileTheAnswerGetsItsPacketIdStillWithdrawsThePhase0RequestAlone) {
    std::optional<OnPublication> atPktId;
    OnPublication const observer(status->publisher(), [&](auto, auto) {
        atPktId.emplace(status->statusIs(id("noc", 1))->publisher(),
                        [this](auto, auto) { release(); });
    });
    EXPECT_EQ(ranToItsEnd(), worked + sending + injected +
                                 (Lines{"status add noc/1", "status pktId noc/1 1"}) + withdrawn +
                                 deregistered);
    EXPECT_EQ(stateAtEnd, State::phase0DataReady);
}

TEST_F(SendReleaseTest, WhileTheCounterIsReadStillWithdrawsThePhase0RequestAlone) {
    releaseAtCall(SdkFunction::getPktCounters);
    EXPECT_EQ(ranToItsEnd(), worked + sending + withdrawn + deregistered);
    EXPECT_EQ(stateAtEnd, State::phase0DataReady);
}

TEST_F(SendReleaseTest, WhileTheCounterIsReadInVainTracesNothing) {
    fails(SdkFunction::getPktCounters);
    releaseAtCall(SdkFunction::getPktCounters);
    EXPECT_EQ(last(ranToItsEnd()), last(deregistered));
    EXPECT_EQ(beginning(engineTrace(1, ""), happened()), Lines{});
    EXPECT_EQ(stateAtEnd, State::phase0DataReady);
}

TEST_F(SendReleaseTest, WhileThePacketIsInjectedMakesNoAnswer) {
    releaseAtCall(SdkFunction::genOnePkt);
    EXPECT_EQ(ranToItsEnd(), worked + sending + injected + withdrawn + deregistered);
    EXPECT_EQ(stateAtEnd, State::phase0DataReady);
}

TEST_F(SendReleaseTest, WhileSomebodyElseHoldsItIsNoneAndItGoesOn) {
    auto const held = engine;
    auto const observer = releaseAtStatus();
    goesOnAsLongAsItCan();
    turn();
    EXPECT_EQ(held->state(), State::waitPktSent);
    EXPECT_TRUE(task->isScheduled());
    recorder.onSdkCall = nullptr;
}

TEST_F(SendReleaseTest, BesideItsRunIsSeenWhenTheOuterOfTwoDispatchersGoesOn) {
    status->statusIs(id("noc", 2));
    bool first = true;
    OnPublication const observer(status->publisher(), [&](auto, auto) {
        if (std::exchange(first, false)) {
            withdraw(2);  // whose reactor runs inside the run, and deletes the answer
        } else {
            release();
        }
    });
    goesOnAsLongAsItCan();
    EXPECT_EQ(turned(), worked + sending + injected + Lines{"status add noc/1"} + delHandled(2) +
                            Lines{"status del noc/2"} + withdrawn + deregistered);
}

// ---- While phase-0 data is asked for

class Phase0ReleaseTest : public EngineReleaseTest {
  protected:
    Phase0ReleaseTest() { startPrompt(); }
    OnPublication releaseAtResponse() {
        return releaseAt(prompt->publisher(), VynSdk::Phase0DataIntf::responseAttribute);
    }
    Lines const asking{engineTrace(7, "doWork:"), engineTrace(7, "processRequest:"),
                       engineTrace(7, "getPhase0Data:clientName:noc reqId:1"),
                       "phase0 configDel Ethernet1"};
    static std::string answered() {
        return engineTrace(7, "processPhase0DataResponse:clientName:noc reqId:1 intfId:Ethernet1");
    }
    static std::string gone() {
        return engineTrace(7, "processPhase0DataResponse:deletion of phase0 for intfId:Ethernet1");
    }
    void threeJobs() {
        job(1);
        moreJobs();
    }
};

TEST_F(Phase0ReleaseTest, WhileAnOutdatedAnswerGoesAsksForNone) {
    prompt->answerIs(intf("Ethernet1"));
    threeJobs();
    auto const observer = releaseAtResponse();
    auto const lines = after([&] { turn(); });
    EXPECT_EQ(lines, asking + (Lines{answered(), gone()}) + deregistered);
    EXPECT_EQ(stateAtEnd, State::waitPhase0Data);
    EXPECT_EQ(config->refCount(), 1u);
}

TEST_F(Phase0ReleaseTest, WhileTheAnswerComesCallsTheChipNoMore) {
    threeJobs();
    auto const observer = releaseAtResponse();
    EXPECT_EQ(turned(), asking + (Lines{"phase0 configIs Ethernet1", answered()}) + deregistered);
    EXPECT_EQ(stateAtEnd, State::phase0DataReady);
    EXPECT_EQ(config->refCount(), 1u);
}

TEST_F(Phase0ReleaseTest, WhileTheRequestIsWithdrawnAfterTheInjectionDoesNotPollTheCounter) {
    threeJobs();
    unsigned responses = 0;
    OnPublication const observer(prompt->publisher(), [&](auto, auto) {
        if (++responses == 2) {
            release();
        }
    });
    EXPECT_EQ(turned(), asking + (Lines{"phase0 configIs Ethernet1", answered()}) + sending +
                            injected + (Lines{"status add noc/1", "status pktId noc/1 1"}) +
                            withdrawn + (Lines{answered(), gone()}) + deregistered);
    EXPECT_EQ(stateAtEnd, State::waitPktSent);
}

TEST_F(Phase0ReleaseTest, WhileTheRequestOfAFailedStepIsWithdrawnLeavesTheGeneratorOn) {
    threeJobs();
    fails(SdkFunction::getPktCounters);
    unsigned responses = 0;
    OnPublication const observer(prompt->publisher(), [&](auto, auto) {
        if (++responses == 2) {
            release();
        }
    });
    EXPECT_EQ(beginning("sdk disable", turned()), Lines{});
    EXPECT_EQ(stateAtEnd, State::error);
}

// ---- While the counter is checked

class CheckReleaseTest : public EngineReleaseTest {
  protected:
    CheckReleaseTest() {
        start(false);
        toWaitPktSent();
        moreJobs();
        counter(1);
        recorder.take();
    }
};

TEST_F(CheckReleaseTest, WhileTheAnswerIsReadyDoesNotDisableTheGenerator) {
    auto const observer =
        releaseAt(status->statusIs(id("noc", 1))->publisher(), PktGenStatusData::readyAttribute);
    EXPECT_EQ(ranToItsEnd(), worked + checked + moved + Lines{"status ready noc/1 true"});
}

TEST_F(CheckReleaseTest, WhileAMissingAnswerIsMadeDoesNotMakeItReady) {
    status->statusDel(id("noc", 1));
    auto const observer = releaseAtStatus();
    EXPECT_EQ(ranToItsEnd(), worked + checked + moved + Lines{"status add noc/1"});
    EXPECT_FALSE(status->status(id("noc", 1))->ready());
}

TEST_F(CheckReleaseTest, WhileTheCounterIsReadTracesNothing) {
    releaseAtCall(SdkFunction::getPktCounters);
    EXPECT_EQ(ranToItsEnd(), worked + checked);
}

// ---- While the generator is switched off

class DisableReleaseTest : public EngineReleaseTest {
  protected:
    void afterwards() {
        moreJobs();
        recorder.take();
    }
};

TEST_F(DisableReleaseTest, WhileTheAnswerOfAFailedJobIsDeletedLeavesTheGeneratorOn) {
    toWaitPktSent();
    withdraw(1);
    afterwards();
    auto const observer = releaseAtStatus();
    EXPECT_EQ(ranToItsEnd(), worked +
                                 (Lines{engineTrace(7, "processError:clientName:noc reqId:1"),
                                        "status del noc/1"}) +
                                 deregistered);
    EXPECT_EQ(stateAtEnd, State::error);
}

TEST_F(DisableReleaseTest, WhileTheApplicationGoesOffLeavesTheGeneratorOn) {
    toReset();
    afterwards();
    releaseAtCall(SdkFunction::disableAppId);
    EXPECT_EQ(ranToItsEnd(), worked + Lines{disabled[0]} + deregistered);
    EXPECT_EQ(stateAtEnd, State::reset);
}

TEST_F(DisableReleaseTest, WhileTheGeneratorGoesOffLooksForNoOtherJob) {
    toReset();
    afterwards();
    releaseAtCall(SdkFunction::disablePktGen);
    EXPECT_EQ(ranToItsEnd(), worked + disabled + deregistered);
    EXPECT_EQ(stateAtEnd, State::reset);
}

TEST_F(DisableReleaseTest, WhileAFailedCallIsMadeTracesNothing) {
    toReset();
    afterwards();
    fails(SdkFunction::disableAppId);
    releaseAtCall(SdkFunction::disableAppId);
    EXPECT_EQ(beginning(engineTrace(1, ""), ranToItsEnd()), Lines{});
    EXPECT_EQ(stateAtEnd, State::reset);
}

// ---- The other reactors finish

TEST_F(EngineReleaseTest, WhileTheAnswerOfAWithdrawnJobIsDeletedSchedulesTheTaskAllTheSame) {
    toIdleAgain();
    turn();
    auto const observer = releaseAtStatus();
    EXPECT_EQ(after([&] { withdraw(1); }),
              delHandled(1) + Lines{"status del noc/1"} + deregistered);
    EXPECT_TRUE(scheduledAtEnd);
    EXPECT_FALSE(task->isScheduled());
}

TEST_F(EngineReleaseTest, WhileAFailedPhase0RequestIsWithdrawnSetsTheErrorAllTheSame) {
    startPrompt();
    oneStepARun();
    job(1);
    turn();
    EXPECT_EQ(engine->state(), State::phase0DataReady);
    bool first = true;
    OnPublication const observer(prompt->publisher(), [&](auto, auto) {
        if (std::exchange(first, false)) {
            release();
        }
    });
    prompt->answerIs(intf("Ethernet1"), 1);
    EXPECT_EQ(stateAtEnd, State::error);
    EXPECT_TRUE(scheduledAtEnd);
}

TEST_F(EngineReleaseTest, WhileADigestIsProcessedProcessesItToItsEnd) {
    status->statusIs(id("noc", 1))->pktIdIs(7);
    status->statusIs(id("noc", 2))->pktIdIs(7);
    status->statusIs(id("noc", 3))->pktIdIs(8);
    auto const observer = releaseAt(status->statusIs(id("noc", 1))->publisher(),
                                    PktGenStatusData::egrL2DomainAttribute);
    moreJobs();
    chip.digest({{.pktId = 7, .l2Domain = 10}, {.pktId = 8, .l2Domain = 11}});
    EXPECT_EQ(
        beginning("status ready", turned()),
        (Lines{"status ready noc/1 true", "status ready noc/2 true", "status ready noc/3 true"}));
    EXPECT_EQ(config->refCount(), 1u);
}

// ---- With the whole tracer

class TracerReleasedTest : public RunningTracerTest {
  protected:
    TracerReleasedTest() {
        client("noc");
        request(1);
        turn();
        phase0("Ethernet1");
        request(2);
        recorder.take();
    }
};

TEST_F(TracerReleasedTest, WhileAnAnswerIsMadeLeavesNoPhase0RequestAndCallsTheChipNoMore) {
    OnPublication const observer(tracer->pktGenStatus()->publisher(),
                                 [this](auto, auto) { tracer = nullptr; });
    auto const lines = after([&] { turn(); });
    EXPECT_EQ(beginning("phase0", lines), (Lines{"phase0 configDel Ethernet1"}));
    EXPECT_EQ(beginning("sdk", lines).size(), 3u);  // the counter, the packet, the deregistration
    EXPECT_EQ(config->refCount(), 1u);
}

TEST_F(TracerReleasedTest, WhileAResultIsWrittenInsideTheRunEndsTheRun) {
    tracer = nullptr;
    start(false);
    turn();
    phase0("Ethernet1");
    counter(0);
    turn();
    counter(1);
    OnPublication const observer(statusOf("noc")->publisher(),
                                 [this](auto, auto) { tracer = nullptr; });
    auto const lines = after([&] { turn(); });
    EXPECT_EQ(beginning("sdk disable", lines), Lines{});
    EXPECT_EQ(beginning(engineTrace(7, "processRequest"), lines), Lines{});
    EXPECT_EQ(config->refCount(), 1u);
}

}  // namespace
}  // namespace VynPacketTracer
