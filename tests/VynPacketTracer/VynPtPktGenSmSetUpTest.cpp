// The engine's set-up and clean-up as operations of their own, and what its operations rely on.
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <new>
#include <stdexcept>

#include "Grist/Grist.h"
#include "VynPacketTracer/EngineFixture.h"
#include "VynPacketTracer/VynPtPktGenSm.h"

namespace VynPacketTracer {
namespace {

bool isOpen(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) != -1;
}
std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

class SetUpTest : public EngineTest {
  protected:
    SetUpTest() { start(); }

    // Whether a digest of packet id 7 completes its answer.
    bool isDigestHeard() {
        auto const answer = status->statusIs(id("noc", 7));
        answer->pktIdIs(7);
        chip.digest({{.pktId = 7}});
        turn();
        return answer->ready();
    }
};

// ---- A second call

TEST_F(SetUpTest, HandleInitializedAgainChangesNothing) {
    toWaitPktSent();
    EXPECT_EQ(after([&] { engine->handleInitialized(); }),
              (Lines{engineTrace(7, "handleInitialized:")}));
    EXPECT_EQ(engine->state(), State::waitPktSent);
    EXPECT_EQ(engine->pktId(), 1);
    EXPECT_EQ(engine->learnQuantaIndex(), SdkSeam::digestQuantaIndex);
}

TEST_F(SetUpTest, InitSocketAgainKeepsTheSocketPair) {
    int const writeEnd = engine->socketPairWriteDesc();
    auto const readEnd = engine->socketPairReadFileDesc();
    auto const open = openDescriptors();
    EXPECT_EQ(after([&] { engine->initSocket(); }),
              (Lines{engineTrace(9, "initSocket:PktGenSm initSocket")}));
    EXPECT_EQ(engine->socketPairWriteDesc(), writeEnd);
    EXPECT_EQ(engine->socketPairReadFileDesc(), readEnd);
    EXPECT_EQ(openDescriptors(), open);
    EXPECT_TRUE(isDigestHeard());
}

TEST_F(SetUpTest, RegisterPktTracerDigestAgainKeepsTheRegistration) {
    EXPECT_EQ(after([&] { engine->registerPktTracerDigest(); }),
              (Lines{engineTrace(9, "registerPktTracerDigest:")}));
    EXPECT_TRUE(isDigestHeard());
    EXPECT_EQ(after([&] { engine = nullptr; }), deregistered);
}

TEST_F(SetUpTest, DeRegisterPktTracerDigestAgainDoesNothing) {
    EXPECT_EQ(after([&] { engine->deRegisterPktTracerDigest(); }), deregistered);
    EXPECT_FALSE(chip.hasCallback());
    EXPECT_EQ(after([&] { engine->deRegisterPktTracerDigest(); }), Lines{});
    EXPECT_EQ(after([&] { engine = nullptr; }), Lines{});
}

TEST_F(SetUpTest, DoCleanupAgainDoesNothing) {
    EXPECT_EQ(after([&] { engine->doCleanup(); }), deregistered);
    EXPECT_EQ(after([&] { engine->doCleanup(); }), Lines{});
    EXPECT_EQ(after([&] { engine = nullptr; }), Lines{});
}

TEST_F(SetUpTest, DoCleanupAgainClosesNobodyElsesDescriptors) {
    int const readEnd = engine->socketPairReadFileDesc()->descriptor();
    int const writeEnd = engine->socketPairWriteDesc();
    engine->doCleanup();
    EXPECT_FALSE(isOpen(readEnd));
    EXPECT_FALSE(isOpen(writeEnd));
    ASSERT_EQ(::dup2(STDERR_FILENO, readEnd), readEnd);
    ASSERT_EQ(::dup2(STDERR_FILENO, writeEnd), writeEnd);
    engine->doCleanup();
    engine = nullptr;
    EXPECT_TRUE(isOpen(readEnd));
    EXPECT_TRUE(isOpen(writeEnd));
    ::close(readEnd);
    ::close(writeEnd);
}

// ---- A channel that is made anew

TEST_F(SetUpTest, AfterDoCleanupAnotherChannelCanBeMade) {
    auto const open = openDescriptors();
    auto const old = engine->socketPairReadFileDesc();  // held, so that its publisher stays
    engine->doCleanup();
    engine->initSocket();
    engine->registerPktTracerDigest();
    EXPECT_NE(engine->socketPairReadFileDesc(), old);
    EXPECT_EQ(engine->rSocketIn(), engine->socketPairReadFileDesc());
    EXPECT_EQ(openDescriptors(), open);
    EXPECT_TRUE(isDigestHeard());
    EXPECT_EQ(after([&] { old->publisher().publish(Orb::FileDescriptor::readableAttribute); }),
              Lines{});
}

TEST_F(SetUpTest, AfterDeRegisterPktTracerDigestItCanBeRegisteredAgain) {
    engine->deRegisterPktTracerDigest();
    engine->registerPktTracerDigest();
    EXPECT_TRUE(isDigestHeard());
    EXPECT_EQ(after([&] { engine = nullptr; }), deregistered);
}

TEST_F(SetUpTest, WithoutTraceSupportASocketPairThatIsMadeIsClosedInTheEnd) {
    start(false);
    auto const open = openDescriptors();
    engine->initSocket();
    EXPECT_EQ(openDescriptors(), open + 2);
    engine = nullptr;
    EXPECT_EQ(openDescriptors(), open);
}

TEST_F(SetUpTest, InitSocketForWhichMemoryRunsOutLeavesNoSocketPair) {
    engine->doCleanup();
    auto const open = openDescriptors();
    unsigned failures = 0;
    for (std::uint64_t which = 1; engine->socketPairWriteDesc() == 0; ++which) {
        Grist::failAfterIs(which);
        try {
            engine->initSocket();
        } catch (std::bad_alloc const&) {
            ++failures;
            EXPECT_EQ(openDescriptors(), open) << "allocation " << which;
        }
        Grist::failAfterIs(0);
    }
    EXPECT_GT(failures, 0u);
    engine->registerPktTracerDigest();
    EXPECT_TRUE(isDigestHeard());
}

TEST_F(SetUpTest, TaskIsForWhichMemoryRunsOutLeavesNoTask) {
    Vanta::String const name("other");
    Grist::failAfterIs(1);
    EXPECT_THROW(engine->taskIs(loop, Orb::TaskPriority::p3, name), std::bad_alloc);
    Grist::failAfterIs(0);
    EXPECT_EQ(engine->task(), nullptr);
}

// ---- A construction that fails

class NoEntrySize final : public VyPd::VyPdIntf {
  public:
    std::uint32_t digestEntrySize(std::string_view) const override {
        throw std::out_of_range("no such digest");
    }
    std::uint8_t const* digestEntryField(std::uint8_t const*, std::string_view, std::string_view,
                                         std::uint32_t&) const override {
        return nullptr;
    }
};

class NoHandle final : public VyResourceInfo::VyResourceInfoIntf {
  public:
    std::uint32_t vyLearnQuantaIndex(std::string_view) const override { return 0; }
    std::uint32_t vyLearnQuanta(std::uint32_t) const override {
        throw std::out_of_range("no such index");
    }
};

class FailedSetUpTest : public EngineTest {
  protected:
    PktGenSm::Arguments args{config,
                             chip.phase0Data(),
                             status,
                             1,
                             chip.device(),
                             true,
                             chip.learnQuanta(),
                             chip.digestLayout(),
                             loop};
};

TEST_F(FailedSetUpTest, BeforeThereIsALearnQuantaIndexDeregistersNothing) {
    args.vyPdIntf = Vanta::makeNode<NoEntrySize>();
    EXPECT_THROW(PktGenSm::PktGenSmIs(args), std::out_of_range);
    EXPECT_EQ(happened(), (Lines{engineTrace(7, "handleInitialized:")}));
}

TEST_F(FailedSetUpTest, BeforeTheDigestIsRegisteredDeregistersNothing) {
    args.resourceInfoIntf = Vanta::makeNode<NoHandle>();
    EXPECT_THROW(PktGenSm::PktGenSmIs(args), std::out_of_range);
    EXPECT_EQ(beginning("sdk", happened()), Lines{});
}

TEST_F(FailedSetUpTest, OnceItHasGoneTheArgumentsAreHeldByNobody) {
    auto const before = config->refCount();
    args.vyPdIntf = Vanta::makeNode<NoEntrySize>();
    EXPECT_THROW(PktGenSm::PktGenSmIs(args), std::out_of_range);
    EXPECT_EQ(config->refCount(), before);
}

// ---- The arguments

TEST_F(FailedSetUpTest, ThatDoesNotFailKeepsItsArguments) {
    engine = PktGenSm::PktGenSmIs(args);
    EXPECT_TRUE(engine->arguments() == args);
    args.sessionHandle = 2;
    EXPECT_FALSE(engine->arguments() == args);
}

TEST_F(FailedSetUpTest, WithoutJobsEndsTheProcess) {
    args.config = nullptr;
    expectEnd([&] { PktGenSm::PktGenSmIs(args); }, {}, "assert", "config != nullptr");
}

TEST_F(FailedSetUpTest, WithoutPhase0DataEndsTheProcess) {
    args.phase0DataIntf = nullptr;
    expectEnd([&] { PktGenSm::PktGenSmIs(args); }, {}, "assert", "phase0DataIntf != nullptr");
}

TEST_F(FailedSetUpTest, WithoutAnswersEndsTheProcess) {
    args.status = nullptr;
    expectEnd([&] { PktGenSm::PktGenSmIs(args); }, {}, "assert", "status != nullptr");
}

TEST_F(FailedSetUpTest, WithoutADigestLayoutEndsTheProcess) {
    args.vyPdIntf = nullptr;
    expectEnd([&] { PktGenSm::PktGenSmIs(args); }, {}, "assert", "vyPdIntf != nullptr");
}

TEST_F(FailedSetUpTest, WithoutASchedulerEndsTheProcess) {
    args.rootScheduler = nullptr;
    expectEnd([&] { PktGenSm::PktGenSmIs(args); }, {}, "assert", "rootScheduler != nullptr");
}

TEST_F(FailedSetUpTest, WithoutLearnQuantaEndsTheProcessWhereTheDigestIsRegistered) {
    args.resourceInfoIntf = nullptr;
    expectEnd(
        [&] { PktGenSm::PktGenSmIs(args); },
        {engineTrace(7, "handleInitialized:"), engineTrace(9, "initSocket:PktGenSm initSocket"),
         engineTrace(9, "registerPktTracerDigest:")},
        "assert", "resourceInfoIntf != nullptr");
}

TEST_F(FailedSetUpTest, WithoutLearnQuantaIsNoneWhereThereIsNoTraceSupport) {
    args.resourceInfoIntf = nullptr;
    args.pktTracerSupported = false;
    engine = PktGenSm::PktGenSmIs(args);
    EXPECT_EQ(engine->state(), State::idle);
}

// ---- What the operations rely on

struct Step {
    std::string name;
    std::function<void(PktGenSm&)> call;
};

class StepTest : public EngineTest, public testing::WithParamInterface<Step> {};

TEST_P(StepTest, BeforeTheFirstJobEndsTheProcess) {
    start();
    expectEnd([&] { GetParam().call(*engine); }, {}, "assert", "curCfg != nullptr");
}

INSTANTIATE_TEST_SUITE_P(
    OfAJob, StepTest,
    testing::Values(Step{"getPhase0Data", [](PktGenSm& engine) { engine.getPhase0Data(); }},
                    Step{"getPktCounters",
                         [](PktGenSm& engine) {
                             std::uint64_t count = 0;
                             engine.getPktCounters(count);
                         }},
                    Step{"sendPkt", [](PktGenSm& engine) { engine.sendPkt(); }},
                    Step{"checkPktCnt", [](PktGenSm& engine) { engine.checkPktCnt(); }},
                    Step{"disablePktGen", [](PktGenSm& engine) { engine.disablePktGen(); }},
                    Step{"processError", [](PktGenSm& engine) { engine.processError(); }}),
    [](auto const& step) { return step.param.name; });

TEST_F(EngineTest, WithoutASocketPairADigestCannotBeProcessed) {
    start(false);
    expectEnd([&] { engine->processPktTracerDigest(); }, {}, "assert",
              "socketPairReadFileDesc != nullptr");
}

TEST_F(SetUpTest, ATaskWithoutASchedulerEndsTheProcess) {
    expectEnd([&] { engine->taskIs(nullptr, Orb::TaskPriority::p3, "other"); }, {}, "assert",
              "scheduler != nullptr");
}

TEST_F(SetUpTest, TheCallbackWithoutAMessageEndsTheProcess) {
    expectEnd([&] { rcvPktTracerLearningDigest(1, nullptr, engine.get()); }, {}, "assert",
              "message != nullptr");
}

TEST_F(SetUpTest, TheCallbackWithoutAnEngineEndsTheProcess) {
    pipe_flow_lrn_msg_t learned{};
    expectEnd([&] { rcvPktTracerLearningDigest(1, &learned, nullptr); }, {}, "assert",
              "cookie != nullptr");
}

// ---- What switching off and on again leaves out

class SwitchedAgainTest : public SetUpTest {
  protected:
    void unheard(std::function<void()> const& event) {
        engine->hasNotificationActiveIs(false);
        event();
        engine->hasNotificationActiveIs(true);
        recorder.take();
    }
};

TEST_F(SwitchedAgainTest, AJobThatCameWaitsForARunThatSomethingElseSchedules) {
    unheard([&] { job(1); });
    EXPECT_EQ(turned(), Lines{});
    engine->task()->schedule();
    EXPECT_EQ(turned(), looked + asked(1));
}

TEST_F(SwitchedAgainTest, AJobThatWentKeepsItsAnswer) {
    job(1);
    status->statusIs(id("noc", 1));
    turn();
    unheard([&] { withdraw(1); });
    turn();
    EXPECT_TRUE(isAnswered(1));
}

TEST_F(SwitchedAgainTest, APhase0AnswerThatCameStaysAwaited) {
    toWaitPhase0Data();
    unheard([&] { phase0("Ethernet1"); });
    EXPECT_EQ(turned(), worked);
    EXPECT_EQ(engine->state(), State::waitPhase0Data);
}

TEST_F(SwitchedAgainTest, ARunThatCameUpIsLost) {
    job(1);
    unheard([&] { turn(); });
    EXPECT_EQ(turned(), Lines{});
    EXPECT_EQ(engine->state(), State::idle);
}

TEST_F(SwitchedAgainTest, ADigestThatCameIsKept) {
    auto const answer = status->statusIs(id("noc", 1));
    answer->pktIdIs(7);
    unheard([&] {
        chip.digest({{.pktId = 7}});
        turn();
    });
    EXPECT_FALSE(answer->ready());
    turn();
    EXPECT_TRUE(answer->ready());
}

}  // namespace
}  // namespace VynPacketTracer
