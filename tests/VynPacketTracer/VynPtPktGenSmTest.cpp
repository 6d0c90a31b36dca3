#include "VynPacketTracer/VynPtPktGenSm.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <new>

#include "Grist/Grist.h"
#include "TableRow.h"
#include "VynPacketTracer/EngineFixture.h"

namespace VynPacketTracer {
namespace {

// ---- Set-up

class PktGenSmTest : public EngineTest {};

TEST_F(PktGenSmTest, SetsItselfUpInOrder) {
    EXPECT_EQ(
        after([&] { startAwake(); }),
        (Lines{engineTrace(7, "handleInitialized:"),
               engineTrace(9, "initSocket:PktGenSm initSocket"),
               engineTrace(9, "registerPktTracerDigest:"),
               "sdk pipe_mgr_lrn_digest_notification_register session=1 device=0 handle=77 -> 0",
               engineTrace(4, "registerPktTracerDigest:pktTracerDigest registered"),
               engineTrace(7, "doWork:"), engineTrace(4, "doWork:PktGen task not running")}));
}

TEST_F(PktGenSmTest, WithoutTraceSupportHasNoSocketAndRegistersNoDigest) {
    EXPECT_EQ(after([&] { startAwake(false); }),
              (Lines{engineTrace(7, "handleInitialized:"), engineTrace(7, "doWork:"),
                     engineTrace(4, "doWork:PktGen task not running")}));
    EXPECT_EQ(engine->socketPairReadFileDesc(), nullptr);
    EXPECT_EQ(engine->rSocketIn(), nullptr);
    EXPECT_EQ(engine->socketPairWriteDesc(), 0);
    EXPECT_EQ(engine->learnQuantaIndex(), 0x0fffffffu);
    EXPECT_FALSE(chip.hasCallback());
}

TEST_F(PktGenSmTest, HoldsWhatItWasMadeOf) {
    startAwake();
    EXPECT_EQ(engine->config(), config);
    EXPECT_EQ(engine->phase0DataIntf(), chip.phase0Data());
    EXPECT_EQ(engine->status(), status);
    EXPECT_EQ(engine->sessionHandle(), 1u);
    EXPECT_EQ(engine->deviceId(), 0);
    EXPECT_TRUE(engine->pktTracerSupported());
    EXPECT_EQ(engine->resourceInfoIntf(), chip.learnQuanta());
    EXPECT_EQ(engine->vyPdIntf(), chip.digestLayout());
    EXPECT_EQ(engine->rootScheduler(), loop);
}

TEST_F(PktGenSmTest, BeginsIdleWithNothingDoneYet) {
    startAwake();
    EXPECT_TRUE(engine->initialized());
    EXPECT_EQ(engine->state(), State::idle);
    EXPECT_EQ(engine->pktId(), 0);
    EXPECT_EQ(engine->appId(), 4u);
    EXPECT_EQ(engine->taskName(), "pktGenWorker");
    EXPECT_EQ(engine->curCfg(), nullptr);
    EXPECT_EQ(engine->curPktCounter(), 0u);
    EXPECT_EQ(engine->learnQuantaIndex(), 5u);
    EXPECT_EQ(engine->pktTracerDigestEntrySize(), 9u);
}

TEST_F(PktGenSmTest, KnowsTheEntrySizeAlsoWithoutTraceSupport) {
    startAwake(false);
    EXPECT_EQ(engine->pktTracerDigestEntrySize(), 9u);
}

TEST_F(PktGenSmTest, ItsTaskIsNamedHasPriority3AndIsScheduled) {
    startAwake();
    EXPECT_EQ(engine->task()->name(), "pktGenWorker");
    EXPECT_EQ(engine->task()->priority(), Orb::TaskPriority::p3);
    EXPECT_EQ(engine->task()->scheduler(), loop);
    EXPECT_TRUE(isScheduled());
}

TEST_F(PktGenSmTest, ReactsWithoutBeingSwitchedOn) {
    start();
    EXPECT_FALSE(engine->hasNotificationActive());
    EXPECT_EQ(after([&] { job(1); }), addHandled(1));
}

TEST_F(PktGenSmTest, TheCreatorDoesTheSameAsTheFactory) {
    engine = PktGenSm::PktGenSmIs(config, chip.phase0Data(), status, 7, 0, false,
                                  chip.learnQuanta(), chip.digestLayout(), loop);
    EXPECT_EQ(engine->sessionHandle(), 7u);
    EXPECT_EQ(engine->state(), State::idle);
}

TEST_F(PktGenSmTest, JobsThatAreThereAtTheBeginningAreServed) {
    job(1);
    startAwake();
    EXPECT_EQ(turned(), looked + asked(1));
}

TEST_F(PktGenSmTest, NumbersItsAttributesFrom130) {
    startAwake();
    std::string text;
    for (auto const& attribute : engine->typeInfo().attributes) {
        text += std::to_string(attribute.number) + ":" + std::string(attribute.name) + " ";
    }
    EXPECT_EQ(text,
              "130:config 131:phase0DataIntf 132:status 133:sessionHandle 134:deviceId "
              "135:pktTracerSupported 136:resourceInfoIntf 137:vyPdIntf 138:rootScheduler 139:task "
              "140:taskName 141:state 142:pktId 143:appId 144:curCfg 145:curPktCounter "
              "146:socketPairWriteDesc 147:socketPairReadFileDesc 148:rSocketIn "
              "149:learnQuantaIndex 150:pktTracerDigestEntrySize 151:initialized ");
}

TEST_F(PktGenSmTest, ItsStateIsReadByName) {
    startAwake();
    EXPECT_EQ(tableRow(*engine, 141), "state=idle");
    toWaitPktSent();
    EXPECT_EQ(tableRow(*engine, 141), "state=waitPktSent");
    EXPECT_EQ(tableRow(*engine, 142), "pktId=1");
}

TEST_F(PktGenSmTest, NamesItsOperationsInTheirOrder) {
    startAwake();
    std::string text;
    for (std::string_view const operation : engine->typeInfo().operations) {
        text += std::string(operation) + " ";
    }
    EXPECT_EQ(text,
              "handleConfig processPktTracerDigest processPhase0DataResponse doWork processRequest "
              "getPhase0Data getPktCounters sendPkt checkPktCnt disablePktGen processError "
              "initSocket doCleanup registerPktTracerDigest deRegisterPktTracerDigest "
              "handleInitialized ");
}

// ---- The task

class EngineTaskTest : public AwakeEngineTest {};

TEST_F(EngineTaskTest, WithoutJobsItRunsOnceAndSleepsUntilAJobComes) {
    EXPECT_EQ(turned(), looked);
    EXPECT_FALSE(isScheduled());
    EXPECT_EQ(turned(), Lines{});
    job(1);
    EXPECT_TRUE(isScheduled());
    EXPECT_EQ(turned(), looked + asked(1));
}

TEST_F(EngineTaskTest, WithEveryJobAnsweredItSleeps) {
    job(1);
    status->statusIs(id("noc", 1));
    EXPECT_EQ(turned(), looked);
    EXPECT_FALSE(isScheduled());
}

TEST_F(EngineTaskTest, OutsideARunDoWorkDoesNothing) {
    turn();
    job(1);
    EXPECT_EQ(after([&] { engine->doWork(); }),
              (Lines{engineTrace(7, "doWork:"), engineTrace(4, "doWork:PktGen task not running")}));
    EXPECT_EQ(engine->state(), State::idle);
}

TEST_F(EngineTaskTest, OutsideARunDoWorkDoesNotSchedule) {
    turn();
    engine->doWork();
    EXPECT_FALSE(isScheduled());
}

TEST_F(EngineTaskTest, AskedToYieldAtOnceItDoesNothingAndComesAgain) {
    loop->yieldAfterIs(0);
    job(1);
    EXPECT_EQ(turned(), worked);
    EXPECT_TRUE(isScheduled());
    EXPECT_EQ(engine->state(), State::idle);
}

TEST_F(EngineTaskTest, AskedToYieldAfterOneStepItTakesOneStepARun) {
    oneStepARun();
    job(1);
    turn();
    phase0("Ethernet1");
    turn();
    EXPECT_EQ(engine->state(), State::waitPktSent);
    counter(1);
    turn();
    EXPECT_EQ(engine->state(), State::reset);
    turn();
    EXPECT_EQ(engine->state(), State::idle);
}

TEST_F(EngineTaskTest, WithoutBeingAskedToYieldItGoesOnAsLongAsTheStateChanges) {
    job(1);
    turn();
    phase0("Ethernet1");
    recorder.take();
    std::vector<std::uint64_t> const moving{0, 1};
    chip.counterIs(0, moving);
    EXPECT_EQ(beginning("sdk", turned()).size(), 5u);  // two reads, one packet, two switches
    EXPECT_EQ(engine->state(), State::idle);
}

TEST_F(EngineTaskTest, TakesTheJobsInTheirOrder) {
    job(2, "Ethernet2");
    job(1, "Ethernet1");
    EXPECT_EQ(turned(), looked + asked(2, "Ethernet2"));
    EXPECT_EQ(engine->curCfg()->req(), id("noc", 2));
}

TEST_F(EngineTaskTest, SkipsJobsThatHaveAnAnswer) {
    job(1);
    job(2, "Ethernet2");
    status->statusIs(id("noc", 1));
    EXPECT_EQ(turned(), looked + asked(2, "Ethernet2"));
}

// ---- taskIs

class TaskIsTest : public EngineTaskTest {
  protected:
    TaskIsTest() { turn(); }

    Lines notRunning{engineTrace(7, "doWork:"), engineTrace(4, "doWork:PktGen task not running")};
    Vanta::Ptr<Orb::Task> const old = engine->task();
};

TEST_F(EngineTest, TaskIsReturnsTheTaskThatItMakes) {
    startAwake();
    auto const made = engine->taskIs(loop, Orb::TaskPriority::p3, "other");
    ASSERT_TRUE(made);
    EXPECT_EQ(made, engine->task());
}

TEST_F(EngineTest, TaskDelLeavesATaskThatMovesNothing) {
    start();
    auto const task = engine->taskDel();
    task->schedule();
    EXPECT_EQ(turned(), Lines{});
}

TEST_F(TaskIsTest, OfTheSameSchedulerAndNameKeepsTheTaskAndSetsItsPriority) {
    EXPECT_EQ(
        after([&] { EXPECT_EQ(engine->taskIs(loop, Orb::TaskPriority::p5, "pktGenWorker"), old); }),
        Lines{});
    EXPECT_EQ(old->priority(), Orb::TaskPriority::p5);
}

TEST_F(TaskIsTest, OfAnotherNameReplacesTheTaskAndWorksOnce) {
    EXPECT_EQ(after([&] { engine->taskIs(loop, Orb::TaskPriority::p3, "other"); }), notRunning);
    EXPECT_NE(engine->task(), old);
    EXPECT_EQ(engine->task()->name(), "other");
}

TEST_F(TaskIsTest, OfAnotherSchedulerReplacesTheTaskAndWorksOnce) {
    auto const otherLoop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    EXPECT_EQ(after([&] { engine->taskIs(otherLoop, Orb::TaskPriority::p3, "pktGenWorker"); }),
              notRunning);
    EXPECT_EQ(engine->task()->scheduler(), otherLoop);
}

TEST_F(TaskIsTest, SetsThePriorityOfATaskThatItThenReplaces) {
    engine->taskIs(loop, Orb::TaskPriority::p6, "other");
    EXPECT_EQ(old->priority(), Orb::TaskPriority::p6);
    EXPECT_EQ(engine->task()->priority(), Orb::TaskPriority::p6);
}

TEST_F(TaskIsTest, UnschedulesATaskThatItReplaces) {
    job(1);
    EXPECT_TRUE(old->isScheduled());
    engine->taskIs(loop, Orb::TaskPriority::p3, "other");
    EXPECT_FALSE(old->isScheduled());
    EXPECT_EQ(turned(), Lines{});
}

TEST_F(TaskIsTest, ATaskThatWasReplacedCallsNoOneAnyMore) {
    engine->taskIs(loop, Orb::TaskPriority::p3, "other");
    old->schedule();
    EXPECT_EQ(turned(), Lines{});
}

TEST_F(TaskIsTest, TheNewTaskWorks) {
    engine->taskIs(loop, Orb::TaskPriority::p3, "other");
    engine->task()->schedule();
    EXPECT_EQ(turned(), looked);
}

TEST_F(TaskIsTest, InTheMiddleOfARunMovesTheWorkToTheNewTask) {
    recorder.onSdkCall = [&](auto const&) {
        recorder.onSdkCall = nullptr;
        engine->taskIs(loop, Orb::TaskPriority::p3, "other");
    };
    job(1);
    turn();
    phase0("Ethernet1");
    turn();
    EXPECT_FALSE(old->isScheduled());
    EXPECT_TRUE(isScheduled());
    EXPECT_EQ(engine->state(), State::waitPktSent);
}

TEST_F(TaskIsTest, TaskDelTakesTheTaskOutUnscheduled) {
    job(1);
    EXPECT_EQ(engine->taskDel(), old);
    EXPECT_EQ(engine->task(), nullptr);
    EXPECT_FALSE(old->isScheduled());
}

TEST_F(TaskIsTest, WithoutATaskAJobChangesNothing) {
    engine->taskDel();
    EXPECT_EQ(after([&] { job(1); }), addHandled(1));
    EXPECT_EQ(after([&] { engine->doWork(); }), notRunning);
}

TEST_F(TaskIsTest, LosingTheTaskInTheMiddleOfARunEndsTheRun) {
    recorder.onSdkCall = [&](auto const&) { engine->taskDel(); };
    job(1);
    turn();
    phase0("Ethernet1");
    EXPECT_EQ(beginning("sdk", turned()).size(), 2u);
    EXPECT_EQ(engine->state(), State::waitPktSent);
}

// ---- Switching off and on

TEST_F(EngineTaskTest, ReactsToOneAttributeOfEachOfItsSourcesAlone) {
    turn();
    constexpr Vanta::AttributeNumber another = 7;
    auto const key = id("noc", 1);
    auto const ethernet1 = intf("Ethernet1");
    EXPECT_EQ(after([&] {
                  config->publisher().publish(another, Vanta::ValueRef::to(key));
                  chip.phase0Data()->publisher().publish(another, Vanta::ValueRef::to(ethernet1));
                  engine->task()->publisher().publish(another);
                  engine->socketPairReadFileDesc()->publisher().publish(another);
              }),
              (Lines{"cfg del noc/1"}));  // what is published, and nothing for it
    EXPECT_FALSE(isScheduled());
}

// Something for each of the four reactors, and what is seen of it when none reacts.
class SilentEngineTest : public EngineTaskTest {
  protected:
    SilentEngineTest() { toWaitPktSent(); }
    Lines seen() {
        return after([&] {
            config->cfgIs(id("noc", 2), {1}, {}, intf("Ethernet1"));
            phase0("Ethernet1");
            chip.digest({{.pktId = 1}});
            turn();
        });
    }
    Lines const silence{
        "cfg add noc/2",
        engineTrace(5, "rcvPktTracerLearningDigest:Received pkt tracer digest with #entries:1"),
        engineTrace(5, "rcvPktTracerLearningDigest:Digest size:9"),
        "sdk pipe_mgr_flow_lrn_notify_ack session=1 handle=77 -> 0"};
};

TEST_F(SilentEngineTest, SwitchedOffItReactsToNothing) {
    engine->hasNotificationActiveIs(false);
    EXPECT_EQ(seen(), silence);
}

TEST_F(SilentEngineTest, TornDownItReactsToNothing) {
    engine->kelDoZombieReactors(true);
    EXPECT_EQ(seen(), silence);
}

TEST_F(SilentEngineTest, NoLongerTornDownItReactsAgain) {
    engine->kelDoZombieReactors(true);
    engine->kelDoZombieReactors(false);
    EXPECT_EQ(after([&] { job(2); }), addHandled(2));
}

TEST_F(EngineTaskTest, SwitchedOnAgainItReactsOnceToEachChange) {
    turn();
    engine->hasNotificationActiveIs(false);
    engine->hasNotificationActiveIs(true);
    EXPECT_TRUE(engine->hasNotificationActive());
    EXPECT_EQ(after([&] { job(1); }), addHandled(1));
    EXPECT_EQ(turned(), looked + asked(1));
    EXPECT_EQ(after([&] { phase0("Ethernet1"); }).size(), 1u);
    EXPECT_EQ(beginning(engineTrace(7, "processPktTracerDigest:Proc"), after([&] {
                            chip.digest({{.pktId = 1}});
                            turn();
                        }))
                  .size(),
              1u);
}

TEST_F(EngineTaskTest, SwitchedOnForTheFirstTimeItConnectsNothingTwice) {
    turn();
    engine->hasNotificationActiveIs(true);
    EXPECT_EQ(after([&] { job(1); }), addHandled(1));
    EXPECT_EQ(turned(), looked + asked(1));
}

// ---- The end

class EngineEndTest : public EngineTest {
  protected:
    static bool isOpen(int descriptor) { return ::fcntl(descriptor, F_GETFD) != -1; }
};

TEST_F(EngineEndTest, DeregistersTheDigestAndDoesNotDisableTheGenerator) {
    start();
    toWaitPktSent();
    EXPECT_EQ(after([&] { engine = nullptr; }), deregistered);
}

TEST_F(EngineEndTest, WithoutTraceSupportIsSilent) {
    start(false);
    EXPECT_EQ(after([&] { engine = nullptr; }), Lines{});
}

TEST_F(EngineEndTest, ADeregistrationThatFailsIsTraced) {
    start();
    fails(SdkFunction::digestDeregister, -5);
    EXPECT_EQ(last(after([&] { engine = nullptr; })),
              engineTrace(4, "deRegisterPktTracerDigest:pktTracerDigest deregistered:-5"));
}

TEST_F(EngineEndTest, ClosesBothEndsOfTheSocketAfterTheDeregistration) {
    start();
    int const readEnd = engine->socketPairReadFileDesc()->descriptor();
    int const writeEnd = engine->socketPairWriteDesc();
    bool openMeanwhile = false;
    recorder.onSdkCall = [&](auto const&) { openMeanwhile = isOpen(readEnd) && isOpen(writeEnd); };
    engine = nullptr;
    EXPECT_TRUE(openMeanwhile);
    EXPECT_FALSE(isOpen(readEnd));
    EXPECT_FALSE(isOpen(writeEnd));
}

TEST_F(EngineEndTest, KeepsItsTaskUntilTheDigestIsDeregistered) {
    start();
    job(1);
    auto const task = engine->task();
    bool scheduledMeanwhile = false;
    recorder.onSdkCall = [&](auto const&) { scheduledMeanwhile = task->isScheduled(); };
    engine = nullptr;
    EXPECT_TRUE(scheduledMeanwhile);
}

TEST_F(EngineEndTest, IgnoresWhatHappensMeanwhile) {
    start();
    job(1);
    recorder.onSdkCall = [&](auto const&) {
        withdraw(1);
        phase0("Ethernet1");
    };
    EXPECT_EQ(after([&] { engine = nullptr; }),
              (Lines{deregistered[0], "cfg del noc/1", deregistered[1]}));
}

TEST_F(EngineEndTest, LetsTheAnswersGoBeforeTheJobs) {
    start();
    toWaitPktSent();
    config = nullptr;
    status = nullptr;
    EXPECT_EQ(after([&] { engine = nullptr; }),
              (deregistered + Lines{"status del noc/1", "cfg del noc/1"}));
}

TEST_F(EngineEndTest, ReleasesWhatItWasMadeOf) {
    start();
    toWaitPktSent();
    auto const task = engine->task();
    engine = nullptr;
    EXPECT_EQ(config->refCount(), 1u);
    EXPECT_EQ(status->refCount(), 1u);
    EXPECT_EQ(chip.phase0Data()->refCount(), 1u);
    EXPECT_EQ(chip.learnQuanta()->refCount(), 1u);
    EXPECT_EQ(chip.digestLayout()->refCount(), 1u);
    EXPECT_EQ(task->refCount(), 1u);
    EXPECT_FALSE(task->isScheduled());
}

TEST_F(EngineEndTest, AfterADigestWasRegisteredInVainDeregistersIt) {
    failsAtTrace("pktTracerDigest registered");
    Lines lines;
    EXPECT_THROW(startAwake(), std::runtime_error);
    lines = happened();
    ASSERT_GT(lines.size(), deregistered.size());
    EXPECT_EQ(Lines(lines.end() - static_cast<std::ptrdiff_t>(deregistered.size()), lines.end()),
              deregistered);
}

TEST_F(EngineEndTest, BeforeADigestIsRegisteredDeregistersNone) {
    failsAtTrace("handleInitialized:");
    EXPECT_THROW(startAwake(), std::runtime_error);
    EXPECT_EQ(happened(), (Lines{engineTrace(7, "handleInitialized:")}));
}

TEST_F(EngineEndTest, ForWhichMemoryRunsOutLeavesNoDescriptorOpen) {
    auto const open = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    auto const before = open();
    unsigned failures = 0;
    for (std::uint64_t which = 1; engine == nullptr; ++which) {
        Grist::failAfterIs(which);
        try {
            startAwake();
        } catch (std::bad_alloc const&) {
            ++failures;
            EXPECT_EQ(open(), before) << "allocation " << which;
        }
        Grist::failAfterIs(0);
    }
    EXPECT_GT(failures, 3U);
}

TEST_F(EngineEndTest, WithoutTheDigestClosesNoDescriptor) {
    int const standardInput = ::fcntl(STDIN_FILENO, F_GETFD);
    start(false);
    engine = nullptr;
    EXPECT_EQ(::fcntl(STDIN_FILENO, F_GETFD), standardInput);
}

TEST_F(EngineEndTest, ClosesTheReadEndAlsoIfItsObjectIsStillHeld) {
    start();
    auto const held = engine->socketPairReadFileDesc();
    engine = nullptr;
    EXPECT_EQ(held->descriptor(), -1);
}

TEST_F(EngineEndTest, OfTheProcessComesWhenTheTapFails) {
    start();
    failsAtTrace("deregistered");
    expectEnd([&] { engine = nullptr; }, deregistered, "runtime_error", "the tap");
}

// ---- Switching on again

TEST_F(EngineTest, SwitchedOnTwiceItKeepsItsPlaceAmongTheObserversOfTheJobs) {
    start();
    OnPublication const observer(config->publisher(), [&](auto, auto) { recorder.note("later"); });
    engine->hasNotificationActiveIs(true);
    EXPECT_EQ(last(after([&] { job(1); })), "later");
}

TEST_F(EngineTest, SwitchedOnTwiceItKeepsItsPlaceAmongTheObserversOfPhase0) {
    start();
    OnPublication const observer(chip.phase0Data()->publisher(),
                                 [&](auto, auto) { recorder.note("later"); });
    engine->hasNotificationActiveIs(true);
    EXPECT_EQ(last(after([&] { phase0("Ethernet1"); })), "later");
}

// ---- Releasing the engine from inside a notification

TEST_F(EngineEndTest, MayComeWhileAnAnswerIsMade) {
    start();
    toPhase0DataReady();
    OnPublication const observer(status->publisher(), [&](auto, auto) { engine = nullptr; });
    turn();
    EXPECT_EQ(config->refCount(), 1u);
}

TEST_F(EngineEndTest, MayComeWhileAnAnswerIsDeleted) {
    start();
    toIdleAgain();
    OnPublication const observer(status->publisher(), [&](auto, auto) { engine = nullptr; });
    withdraw(1);
    EXPECT_EQ(config->refCount(), 1u);
}

TEST_F(EngineEndTest, MayComeWhileADigestIsProcessed) {
    start();
    toWaitPktSent();
    OnPublication const observer(status->statusIs(id("noc", 1))->publisher(),
                                 [&](auto, auto) { engine = nullptr; });
    chip.digest({{.pktId = 1, .l2Domain = 10}});
    turn();
    EXPECT_EQ(config->refCount(), 1u);
}

}  // namespace
}  // namespace VynPacketTracer
