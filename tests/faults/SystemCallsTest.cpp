// The digest channel when the system's calls fail or move less than they were asked to.
#include "faults/SystemCalls.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "VynPacketTracer/EngineFixture.h"

namespace VynPacketTracer {
namespace {

constexpr int headerSize = 10;
constexpr int entrySize = 9;

std::string errorText(int error) {
    return std::strerror(error);
}
std::string initSocketTrace(std::string const& call, int error, int result = -1) {
    return engineTrace(
        1, "initSocket:" + call + " rval:" + std::to_string(result) + " " + errorText(error));
}
Lines const untilSocket{
    engineTrace(7, "handleInitialized:"),
    engineTrace(9, "initSocket:PktGenSm initSocket"),
};
Lines const received{
    engineTrace(5, "rcvPktTracerLearningDigest:Received pkt tracer digest with #entries:1"),
    engineTrace(5, "rcvPktTracerLearningDigest:Digest size:9"),
};
Lines const acknowledged{"sdk pipe_mgr_flow_lrn_notify_ack session=1 handle=77 -> 0"};

std::string headerNotRead(int actual) {
    return engineTrace(1,
                       "processPktTracerDigest:Failed to read digestHdr of size:10 actual read:" +
                           std::to_string(actual));
}
std::string entriesNotRead(int actual) {
    return engineTrace(
        1, "processPktTracerDigest:Failed to read 1 digest entries size:9 actual read:" +
               std::to_string(actual));
}

class SystemCallTest : public EngineTest {
  protected:
    SystemCallTest() { SystemCalls::reset(); }
    ~SystemCallTest() override { SystemCalls::reset(); }

    // Job 1's answer waits for the digest of packet 1.
    void startWithAnswer() {
        start();
        answer = status->statusIs(id("noc", 1));
        answer->pktIdIs(1);
        SystemCalls::reset();
    }
    // One entry for packet 1 comes from the SDK.
    Lines digestComes() {
        return after([&] { digest({entry}); });
    }
    // Nothing is left in the stream: the next digest completes the answer.
    void expectInStep() {
        EXPECT_FALSE(answer->ready());
        digest({entry});
        turn();
        EXPECT_TRUE(answer->ready());
        EXPECT_EQ(answer->egrL2Domain(), 10);
    }

    // What the reader makes of the message when it has lost the first `bytes` bytes: the header's
    // tail and the entry's beginning pass for a header.
    static std::string outOfStep(std::size_t bytes) {
        std::uint8_t const message[headerSize + entrySize] = {0, 0, 0, 0,  0, 0,   0, 0, 1, 0,
                                                              1, 0, 0, 10, 0, 132, 0, 0, 0};
        unsigned const entries = message[bytes + 8] + 256U * message[bytes + 9];
        if (entries * entrySize > 4096) {
            return engineTrace(1, "processPktTracerDigest:Too many entries:" +
                                      std::to_string(entries) + " bufSize:4096");
        }
        if (entries == 0) {
            return engineTrace(7,
                               "processPktTracerDigest:Processing pktTracer learning digest "
                               "with 0 entries");
        }
        return engineTrace(1, "processPktTracerDigest:Failed to read " + std::to_string(entries) +
                                  " digest entries size:" + std::to_string(entries * entrySize) +
                                  " actual read:" + std::to_string(entrySize - bytes));
    }

    Vanta::Ptr<PktGenStatusData> answer;
    SdkSeam::TraceDigest entry{.pktId = 1, .l2Domain = 10, .egrPort = 132};
};

// ---- Setting up

TEST_F(SystemCallTest, TheChannelsCallsComeHere) {
    start();
    EXPECT_EQ(SystemCalls::count(SystemCall::socketpair), 1U);
    EXPECT_EQ(SystemCalls::count(SystemCall::fcntl), 4U);  // the descriptor object makes two
    EXPECT_EQ(SystemCalls::count(SystemCall::setsockopt), 1U);
    SystemCalls::reset();
    digest({{.pktId = 1}});
    EXPECT_EQ(SystemCalls::count(SystemCall::sendmsg), 1U);
    turn();
    EXPECT_EQ(SystemCalls::count(SystemCall::read), 2U);
}

TEST_F(SystemCallTest, TheSocketPairIsALocalStreamOfTheDefaultProtocol) {
    start();
    EXPECT_EQ(SystemCalls::arguments(SystemCall::socketpair),
              (SystemCalls::Arguments{AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0}));
}

TEST_F(SystemCallTest, BothEndsAreGivenTheNonBlockingFlagAlone) {
    start();
    int const readEnd = engine->socketPairReadFileDesc()->descriptor();
    EXPECT_EQ(SystemCalls::arguments(SystemCall::fcntl, 0),
              (SystemCalls::Arguments{engine->socketPairWriteDesc(), F_SETFL, O_NONBLOCK}));
    EXPECT_EQ(SystemCalls::arguments(SystemCall::fcntl, 1),
              (SystemCalls::Arguments{readEnd, F_SETFL, O_NONBLOCK}));
}

TEST_F(SystemCallTest, TheWritingEndIsAskedForASendBufferOf8MiB) {
    start();
    EXPECT_EQ(
        SystemCalls::arguments(SystemCall::setsockopt),
        (SystemCalls::Arguments{engine->socketPairWriteDesc(), SOL_SOCKET, SO_SNDBUF, 8388608}));
}

TEST_F(SystemCallTest, WithoutASocketPairTheProcessEnds) {
    for (int const error : {EMFILE, ENFILE, EAFNOSUPPORT}) {
        SystemCalls::failsIs(SystemCall::socketpair, error);
        expectEnd([&] { start(); }, untilSocket + Lines{initSocketTrace("socketpairt", error)},
                  "assert", "rval == 0");
    }
}

TEST_F(SystemCallTest, ASocketPairThatIsNotZeroEndsTheProcess) {
    SystemCalls::failsIs(SystemCall::socketpair, 0, 0, 1);
    expectEnd([&] { start(); }, untilSocket + Lines{initSocketTrace("socketpairt", 0, 1)}, "assert",
              "rval == 0");
}

TEST_F(SystemCallTest, AnEndThatCannotBeMadeNonBlockingEndsTheProcess) {
    for (unsigned const which : {0U, 1U}) {
        SystemCalls::failsIs(SystemCall::fcntl, EBADF, which);
        expectEnd([&] { start(); }, untilSocket + Lines{initSocketTrace("fcntl", EBADF)}, "assert",
                  "rval == 0");
    }
}

TEST_F(SystemCallTest, ASendBufferThatCannotBeSetEndsTheProcess) {
    SystemCalls::failsIs(SystemCall::setsockopt, ENOBUFS);
    expectEnd([&] { start(); }, untilSocket + Lines{initSocketTrace("setsockopt", ENOBUFS)},
              "assert", "rval == 0");
}

TEST_F(SystemCallTest, TheEndsAreMadeNonBlockingBeforeTheSendBufferIsSet) {
    SystemCalls::failsIs(SystemCall::fcntl, EBADF);
    SystemCalls::failsIs(SystemCall::setsockopt, ENOBUFS);
    expectEnd([&] { start(); }, untilSocket + Lines{initSocketTrace("fcntl", EBADF)}, "assert",
              "rval == 0");
}

// Neither call is known to return anything but 0 and -1; whatever else it is stops the process too.
TEST_F(SystemCallTest, AnEndOrABufferWhoseSettingIsNotZeroEndsTheProcess) {
    for (unsigned const which : {0U, 1U}) {
        SystemCalls::failsIs(SystemCall::fcntl, 0, which, 1);
        expectEnd([&] { start(); }, untilSocket + Lines{initSocketTrace("fcntl", 0, 1)}, "assert",
                  "rval == 0");
    }
    SystemCalls::reset();
    SystemCalls::failsIs(SystemCall::setsockopt, 0, 0, 1);
    expectEnd([&] { start(); }, untilSocket + Lines{initSocketTrace("setsockopt", 0, 1)}, "assert",
              "rval == 0");
}

TEST_F(SystemCallTest, ADescriptorObjectThatFailsLeavesNoEngineBehind) {
    for (unsigned const which : {2U, 3U}) {
        auto const nodes = Vanta::Node::liveCount();
        SystemCalls::reset();
        SystemCalls::failsIs(SystemCall::fcntl, EBADF, which);
        EXPECT_THROW(startAwake(), std::system_error);
        EXPECT_EQ(Vanta::Node::liveCount(), nodes);
        EXPECT_FALSE(chip.hasCallback());
        EXPECT_EQ(after([&] { job(which); }), Lines{"cfg add noc/" + std::to_string(which)});
    }
}

// ---- The SDK's side

TEST_F(SystemCallTest, ADigestThatCannotBeSentIsTracedAndAcknowledged) {
    startWithAnswer();
    for (int const error : {EAGAIN, ENOBUFS, ENOMEM, EINTR, EPIPE}) {
        SystemCalls::failsIs(SystemCall::sendmsg, error);
        EXPECT_EQ(digestComes(),
                  received +
                      Lines{engineTrace(1,
                                        "rcvPktTracerLearningDigest:Failed to send pktGen "
                                        "digest of length 19 error:" +
                                            errorText(error))} +
                      acknowledged);
        EXPECT_EQ(turned(), Lines{});
        EXPECT_EQ(SystemCalls::count(SystemCall::read), 0U);
    }
    expectInStep();
}

// A short send counts as sent; the reader finds out.
TEST_F(SystemCallTest, ADigestThatIsSentInPartIsReadInPart) {
    startWithAnswer();
    for (int sent = 1; sent < headerSize + entrySize; ++sent) {
        SystemCalls::isShort(SystemCall::sendmsg, static_cast<std::size_t>(sent));
        EXPECT_EQ(digestComes(), received + acknowledged) << sent;
        int const entries = sent == headerSize ? -1 : sent - headerSize;
        EXPECT_EQ(turned(),
                  Lines{sent < headerSize ? headerNotRead(sent) : entriesNotRead(entries)})
            << sent;
    }
    expectInStep();
}

TEST_F(SystemCallTest, ADigestOfWhichNothingIsSentIsLost) {
    startWithAnswer();
    SystemCalls::isShort(SystemCall::sendmsg, 0);
    EXPECT_EQ(digestComes(), received + acknowledged);
    EXPECT_EQ(turned(), Lines{});
    expectInStep();
}

// ---- The event thread's side

TEST_F(SystemCallTest, AHeaderThatCannotBeReadStaysForTheNextTurn) {
    startWithAnswer();
    for (int const error : {EAGAIN, EINTR, EIO}) {
        answer->readyIs(false);
        digestComes();
        SystemCalls::failsIs(SystemCall::read, error);
        EXPECT_EQ(turned(), Lines{headerNotRead(-1)});
        EXPECT_FALSE(answer->ready());
        turn();
        EXPECT_TRUE(answer->ready());
    }
}

TEST_F(SystemCallTest, AnEndInPlaceOfAHeaderIsAShortHeader) {
    startWithAnswer();
    digestComes();
    SystemCalls::failsIs(SystemCall::read, 0, 0, 0);
    EXPECT_EQ(turned(), Lines{headerNotRead(0)});
    EXPECT_FALSE(answer->ready());
}

// The rest of the header stays in the stream: the reader is out of step, and nothing repairs that.
TEST_F(SystemCallTest, AShortHeaderIsGivenUp) {
    for (int bytes = 1; bytes < headerSize; ++bytes) {
        startWithAnswer();
        digestComes();
        SystemCalls::isShort(SystemCall::read, static_cast<std::size_t>(bytes));
        EXPECT_EQ(turned(), Lines{headerNotRead(bytes)});
        EXPECT_EQ(SystemCalls::count(SystemCall::read), 1U);
        EXPECT_EQ(turned(), Lines{outOfStep(static_cast<std::size_t>(bytes))}) << bytes;
        EXPECT_FALSE(answer->ready());
        engine = nullptr;
        status->statusDelAll();
    }
}

TEST_F(SystemCallTest, EntriesThatCannotBeReadAreGivenUp) {
    for (int const error : {EAGAIN, EINTR, EIO}) {
        startWithAnswer();
        digestComes();
        SystemCalls::failsIs(SystemCall::read, error, 1);
        EXPECT_EQ(turned(), Lines{entriesNotRead(-1)});
        // The entries stay in the stream, one byte short of a header.
        EXPECT_EQ(turned(), Lines{headerNotRead(entrySize)});
        expectInStep();
        engine = nullptr;
        status->statusDelAll();
    }
}

TEST_F(SystemCallTest, AnEndInPlaceOfEntriesIsAShortRead) {
    startWithAnswer();
    digestComes();
    SystemCalls::failsIs(SystemCall::read, 0, 1, 0);
    EXPECT_EQ(turned(), Lines{entriesNotRead(0)});
    EXPECT_FALSE(answer->ready());
}

TEST_F(SystemCallTest, ShortEntriesAreGivenUp) {
    for (int bytes = 1; bytes < entrySize; ++bytes) {
        startWithAnswer();
        digestComes();
        SystemCalls::isShort(SystemCall::read, static_cast<std::size_t>(bytes), 1);
        EXPECT_EQ(turned(), Lines{entriesNotRead(bytes)});
        EXPECT_FALSE(answer->ready());
        // What was not read passes for a short header.
        EXPECT_EQ(turned(), Lines{headerNotRead(entrySize - bytes)});
        expectInStep();
        engine = nullptr;
        status->statusDelAll();
    }
}

// ---- The loop

TEST_F(SystemCallTest, ALoopThatCannotReadItsWakeUpRunsWhatWasPosted) {
    unsigned runs = 0;
    for (int const error : {EAGAIN, EINTR}) {
        loop->post([&] { ++runs; });
        SystemCalls::failsIs(SystemCall::read, error);
        turn();
    }
    EXPECT_EQ(runs, 2U);
}

TEST_F(SystemCallTest, ADescriptorThatCannotBeSetSaysSo) {
    int pair[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, pair), 0);
    ::close(pair[0]);
    auto const descriptor = Orb::FileDescriptor::FileDescriptorIs(loop, pair[1], "test");
    for (unsigned const which : {0U, 1U}) {
        SystemCalls::failsIs(SystemCall::fcntl, EBADF, which);
        EXPECT_THROW(descriptor->nonBlockingIs(true), std::system_error);
    }
    EXPECT_NO_THROW(descriptor->nonBlockingIs(true));
}

}  // namespace
}  // namespace VynPacketTracer
