#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "VynPacketTracer/EngineFixture.h"
#include "VynPacketTracer/VynPtPktGenSm.h"

namespace VynPacketTracer {
namespace {

using SdkSeam::TraceDigest;

std::string const acknowledged = "sdk pipe_mgr_flow_lrn_notify_ack session=1 handle=77 -> 0";

Lines received(unsigned entries) {
    return {engineTrace(5, "rcvPktTracerLearningDigest:Received pkt tracer digest with #entries:" +
                               std::to_string(entries)),
            engineTrace(5, "rcvPktTracerLearningDigest:Digest size:9")};
}
std::string processing(unsigned entries) {
    return engineTrace(7, "processPktTracerDigest:Processing pktTracer learning digest with " +
                              std::to_string(entries) + " entries");
}
std::string pktId(unsigned number) {
    return engineTrace(7, "processPktTracerDigest:PktId:" + std::to_string(number));
}

class DigestTest : public EngineTest {
  protected:
    DigestTest() { start(); }

    // An answer that waits for the digest of its packet id.
    Vanta::Ptr<PktGenStatusData> answer(std::uint32_t number, std::uint16_t withPktId) {
        auto const made = status->statusIs(id("noc", number));
        made->pktIdIs(withPktId);
        return made;
    }
    // What a digest brings about on the event thread.
    Lines processed(std::initializer_list<TraceDigest> entries) {
        chip.digest(entries);
        return turned();
    }
    // What lies in the socket.
    std::vector<std::uint8_t> message() const {
        std::vector<std::uint8_t> bytes(65536);
        auto const size = ::read(readEnd(), bytes.data(), bytes.size());
        bytes.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
        return bytes;
    }
    void write(std::vector<std::uint8_t> const& bytes) const {
        EXPECT_EQ(::write(engine->socketPairWriteDesc(), bytes.data(), bytes.size()),
                  static_cast<ssize_t>(bytes.size()));
    }
    int readEnd() const { return engine->socketPairReadFileDesc()->descriptor(); }
};

// ---- The socket pair

TEST_F(DigestTest, TheSocketPairIsALocalStream) {
    int type = 0;
    socklen_t size = sizeof type;
    ASSERT_EQ(::getsockopt(readEnd(), SOL_SOCKET, SO_TYPE, &type, &size), 0);
    EXPECT_EQ(type, SOCK_STREAM);
    ASSERT_EQ(::getsockopt(readEnd(), SOL_SOCKET, SO_DOMAIN, &type, &size), 0);
    EXPECT_EQ(type, AF_UNIX);
}

TEST_F(DigestTest, NeitherEndBlocks) {
    EXPECT_TRUE(::fcntl(readEnd(), F_GETFL) & O_NONBLOCK);
    EXPECT_TRUE(::fcntl(engine->socketPairWriteDesc(), F_GETFL) & O_NONBLOCK);
}

TEST_F(DigestTest, BothEndsCloseWhenAProgramIsExecuted) {
    EXPECT_TRUE(::fcntl(readEnd(), F_GETFD) & FD_CLOEXEC);
    EXPECT_TRUE(::fcntl(engine->socketPairWriteDesc(), F_GETFD) & FD_CLOEXEC);
}

TEST_F(DigestTest, TheWritingEndAsksForALargeSendBuffer) {
    // The system doubles what it is asked for, and caps it.
    int wanted[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, wanted), 0);
    int size = 8388608;
    ASSERT_EQ(::setsockopt(wanted[0], SOL_SOCKET, SO_SNDBUF, &size, sizeof size), 0);
    int expected = 0;
    int found = 0;
    socklen_t length = sizeof expected;
    ASSERT_EQ(::getsockopt(wanted[0], SOL_SOCKET, SO_SNDBUF, &expected, &length), 0);
    ASSERT_EQ(::getsockopt(engine->socketPairWriteDesc(), SOL_SOCKET, SO_SNDBUF, &found, &length),
              0);
    EXPECT_EQ(found, expected);
    ::close(wanted[0]);
    ::close(wanted[1]);
}

TEST_F(DigestTest, TheReadingEndIsFollowedUnderItsName) {
    EXPECT_EQ(engine->socketPairReadFileDesc()->name(), "Packet tracer digest");
    EXPECT_TRUE(engine->socketPairReadFileDesc()->notifyOnReadable());
    EXPECT_EQ(engine->rSocketIn(), engine->socketPairReadFileDesc());
}

// ---- Registration

class RegistrationTest : public EngineTest {
  protected:
    Lines const begun{engineTrace(7, "handleInitialized:"),
                      engineTrace(9, "initSocket:PktGenSm initSocket"),
                      engineTrace(9, "registerPktTracerDigest:")};
};

TEST_F(RegistrationTest, ThatFailsEndsTheProcess) {
    fails(SdkFunction::digestRegister, -5);
    expectEnd([&] { startAwake(); },
              begun + Lines{"sdk pipe_mgr_lrn_digest_notification_register session=1 device=0 "
                            "handle=77 -> -5",
                            engineTrace(1,
                                        "registerPktTracerDigest:failed to initialize digest, "
                                        "error: -5")},
              "assert", "false");
}

TEST_F(RegistrationTest, OfAProgramWithoutTheDigestEndsTheProcess) {
    chip.learnQuanta()->digestKnownIs(false);
    expectEnd([&] { startAwake(); }, begun, "assert", "index != VyResourceInfoIndexInvalid");
}

// A program without the digest that has no answer when it is asked for the digest's handle either.
class NoLearnQuanta final : public VyResourceInfo::VyResourceInfoIntf {
  public:
    std::uint32_t vyLearnQuantaIndex(std::string_view) const override {
        return VyResourceInfo::VyResourceInfoIndexInvalid;
    }
    std::uint32_t vyLearnQuanta(std::uint32_t) const override {
        throw std::out_of_range("no such index");
    }
};

TEST_F(RegistrationTest, OfAProgramWithoutTheDigestDoesNotAskForItsHandle) {
    auto const program = Vanta::makeNode<NoLearnQuanta>();
    expectEnd(
        [&] {
            engine = pktGenSmFactory(config, chip.phase0Data(), status, 1, chip.device(), true,
                                     program, chip.digestLayout(), loop);
        },
        begun, "assert", "index != VyResourceInfoIndexInvalid");
}

TEST_F(RegistrationTest, OfAProgramWithoutTheDigestIsNotTriedWithoutTraceSupport) {
    chip.learnQuanta()->digestKnownIs(false);
    startAwake(false);
    EXPECT_EQ(engine->state(), State::idle);
}

// ---- The SDK's callback

class CallbackTest : public DigestTest {};

TEST_F(CallbackTest, RelaysAndAcknowledgesADigest) {
    EXPECT_EQ(after([&] { digest({{.pktId = 1}}); }), received(1) + Lines{acknowledged});
}

TEST_F(CallbackTest, SendsTheHeaderAndTheEntriesAsTheyAre) {
    digest({{.pktId = 0x0201,
             .copyToCpu = 3,
             .l2Domain = 0x0504,
             .egrPort = 0x0706,
             .routed = 8,
             .dropCtl = 9}});
    EXPECT_EQ(message(),
              (std::vector<std::uint8_t>{0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST_F(CallbackTest, ADigestOfNoEntriesIsAMessageOfTenBytes) {
    digest({});
    EXPECT_EQ(message(), std::vector<std::uint8_t>(10));
}

TEST_F(CallbackTest, CopiesTheFirstEightBytesOfTheMessage) {
    pipe_flow_lrn_msg_t learned{};
    std::memcpy(&learned.dev_tgt, "\0bcdefgh", 8);
    rcvPktTracerLearningDigest(1, &learned, engine.get());
    auto const bytes = message();
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 8), std::string("\0bcdefgh", 8));
}

TEST_F(CallbackTest, AcknowledgesWithItsOwnSession) {
    pipe_flow_lrn_msg_t learned{};
    EXPECT_EQ(last(after([&] { rcvPktTracerLearningDigest(42, &learned, engine.get()); })),
              "sdk pipe_mgr_flow_lrn_notify_ack session=42 handle=77 -> 0");
}

TEST_F(CallbackTest, AnAcknowledgementThatFailsIsTracedAndReturned) {
    fails(SdkFunction::notifyAck, -7);
    EXPECT_EQ(chip.digest({{.pktId = 1}}), -7);
    EXPECT_EQ(last(happened()), engineTrace(1, "rcvPktTracerLearningDigest:failed to notify ack"));
}

TEST_F(CallbackTest, AnAcknowledgementThatSucceedsReturns0) {
    EXPECT_EQ(chip.digest({{.pktId = 1}}), 0);
}

TEST_F(CallbackTest, ASendThatFailsIsTracedAndAcknowledgedAllTheSame) {
    std::vector<std::uint8_t> const filling(4096);
    while (::write(engine->socketPairWriteDesc(), filling.data(), filling.size()) > 0) {
    }
    ASSERT_EQ(errno, EAGAIN);
    EXPECT_EQ(after([&] {
                  digest({{.pktId = 1}, {.pktId = 2}});
              }),
              received(2) + (Lines{engineTrace(1,
                                               "rcvPktTracerLearningDigest:Failed to send pktGen "
                                               "digest of length 28 error:Resource temporarily "
                                               "unavailable"),
                                   acknowledged}));
}

TEST_F(CallbackTest, AShortSendCountsAsSent) {
    int const small = 4096;
    ASSERT_EQ(
        ::setsockopt(engine->socketPairWriteDesc(), SOL_SOCKET, SO_SNDBUF, &small, sizeof small),
        0);
    std::vector<TraceDigest> const entries(65535);
    recorder.take();
    chip.digest(entries);
    EXPECT_EQ(happened(), received(65535) + Lines{acknowledged});
}

TEST_F(CallbackTest, WithoutALearnQuantaIndexEndsTheProcess) {
    start(false);
    pipe_flow_lrn_msg_t learned{};
    expectEnd([&] { rcvPktTracerLearningDigest(1, &learned, engine.get()); }, {}, "assert",
              "index != VyResourceInfoIndexInvalid");
}

// ---- Reading

class ReadTest : public DigestTest {};

TEST_F(ReadTest, ADigestOfNoEntriesChangesNoStatus) {
    answer(1, 0);
    EXPECT_EQ(processed({}), (Lines{processing(0)}));
}

TEST_F(ReadTest, OneDigestIsReadATurn) {
    digest({{.pktId = 1}});
    digest({{.pktId = 2}});
    EXPECT_EQ(turned(), (Lines{processing(1), pktId(1)}));
    EXPECT_EQ(turned(), (Lines{processing(1), pktId(2)}));
    EXPECT_EQ(turned(), Lines{});
}

TEST_F(ReadTest, AHeaderThatIsShortIsTraced) {
    write({1, 2, 3});
    EXPECT_EQ(turned(), (Lines{engineTrace(1,
                                           "processPktTracerDigest:Failed to read digestHdr of "
                                           "size:10 actual read:3")}));
}

TEST_F(ReadTest, AHeaderThatIsNotThereIsTracedWithTheReadsOwnResult) {
    EXPECT_EQ(after([&] { engine->processPktTracerDigest(); }),
              (Lines{engineTrace(1,
                                 "processPktTracerDigest:Failed to read digestHdr of size:10 "
                                 "actual read:-1")}));
}

TEST_F(ReadTest, EntriesThatAreShortAreTraced) {
    write({0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(turned(), (Lines{engineTrace(1,
                                           "processPktTracerDigest:Failed to read 2 digest entries "
                                           "size:18 actual read:9")}));
}

TEST_F(ReadTest, EntriesThatAreNotThereAreTracedWithTheReadsOwnResult) {
    write({0, 0, 0, 0, 0, 0, 0, 0, 1, 0});
    EXPECT_EQ(turned(), (Lines{engineTrace(1,
                                           "processPktTracerDigest:Failed to read 1 digest entries "
                                           "size:9 actual read:-1")}));
}

TEST_F(ReadTest, AsManyEntriesAsTheBufferTakesAreRead) {
    std::vector<TraceDigest> const entries(455);  // 4095 bytes
    chip.digest(entries);
    EXPECT_EQ(first(turned()), processing(455));
}

TEST_F(ReadTest, MoreEntriesThanTheBufferTakesAreRefused) {
    std::vector<TraceDigest> const entries(456);  // 4104 bytes
    chip.digest(entries);
    EXPECT_EQ(turned(),
              (Lines{engineTrace(1, "processPktTracerDigest:Too many entries:456 bufSize:4096")}));
}

TEST_F(ReadTest, EntriesThatAreRefusedStayInTheStream) {
    // Ten bytes of them are the next header: its number is made of the first entry's drop control
    // and the low byte of the second one's packet id.
    std::vector<TraceDigest> entries(456);
    entries[1].pktId = 1;
    chip.digest(entries);
    turn();
    EXPECT_EQ(first(turned()), processing(256));
}

// ---- The entries

class EntryTest : public DigestTest {
  protected:
    // The message of an entry that matched request 1.
    static std::string matched(std::string const& outcome) {
        return engineTrace(7, "processPktTracerDigest:clientName:noc reqId:1 " + outcome);
    }
};

TEST_F(EntryTest, CompletesTheAnswerOfItsPacketIdFieldByFieldReadyLast) {
    answer(1, 7);
    EXPECT_EQ(processed({{.pktId = 7,
                          .copyToCpu = 1,
                          .l2Domain = 10,
                          .egrPort = 132,
                          .routed = 1,
                          .dropCtl = 1}}),
              (Lines{processing(1), pktId(7),
                     matched("egrPort:132 copyToCpu:true l2Domain:10 routed:true dropped:true"),
                     "status copyToCpu noc/1 true", "status egrL2Domain noc/1 10",
                     "status egrPortInfo noc/1 1/132", "status routed noc/1 true",
                     "status dropped noc/1 true", "status ready noc/1 true"}));
}

TEST_F(EntryTest, TakesAnyFlagThatIsNotZeroForTrue) {
    auto const data = answer(1, 7);
    processed({{.pktId = 7, .copyToCpu = 128, .routed = 2, .dropCtl = 7}});
    EXPECT_TRUE(data->copyToCpu());
    EXPECT_TRUE(data->routed());
    EXPECT_TRUE(data->dropped());
}

TEST_F(EntryTest, TakesFlagsThatAreZeroForFalse) {
    auto const data = answer(1, 7);
    data->copyToCpuIs(true);
    data->routedIs(true);
    data->droppedIs(true);
    EXPECT_EQ(beginning("status", processed({{.pktId = 7}})),
              (Lines{"status copyToCpu noc/1 false", "status routed noc/1 false",
                     "status dropped noc/1 false", "status ready noc/1 true"}));
}

TEST_F(EntryTest, Port511LeavesTheEgressPortAlone) {
    answer(1, 7);
    EXPECT_EQ(processed({{.pktId = 7, .egrPort = 511}}),
              (Lines{processing(1), pktId(7),
                     matched("egrPort:511 copyToCpu:false l2Domain:0 routed:false dropped:false"),
                     "status ready noc/1 true"}));
}

TEST_F(EntryTest, Port511AlsoLeavesAPortThatWasSetBefore) {
    auto const data = answer(1, 7);
    processed({{.pktId = 7, .egrPort = 132}});
    processed({{.pktId = 7, .egrPort = 511}});
    EXPECT_TRUE(data->egrPortInfo().isEq({1, VynPortTypes::PortIndex(132)}));
}

TEST_F(EntryTest, TheEgressPortIsTheWholeDevicePortInItsPipe) {
    auto const data = answer(1, 7);
    processed({{.pktId = 7, .egrPort = 455}});
    EXPECT_TRUE(data->egrPortInfo().isEq({3, VynPortTypes::PortIndex(455)}));
}

TEST_F(EntryTest, Port456IsTheInvalidIndexInPipe3) {
    auto const data = answer(1, 7);
    processed({{.pktId = 7, .egrPort = 456}});
    EXPECT_TRUE(data->egrPortInfo().isEq({3, VynPortTypes::PortIndex(456)}));
    EXPECT_TRUE(data->ready());
}

TEST_F(EntryTest, APortAbove456EndsTheProcessWithTheFirstTwoFieldsSet) {
    answer(1, 7);
    digest({{.pktId = 7, .copyToCpu = 1, .l2Domain = 10, .egrPort = 457, .routed = 1}});
    expectEnd([&] { turn(); },
              {processing(1), pktId(7),
               matched("egrPort:457 copyToCpu:true l2Domain:10 routed:true dropped:false"),
               "status copyToCpu noc/1 true", "status egrL2Domain noc/1 10"},
              "RangeError",
              "VynPortTypes::PortIndex::value < VynPortTypes::PortIndex::min or > "
              "VynPortTypes::PortIndex::invalid not allowed");
}

TEST_F(EntryTest, WithoutAMatchChangesNothing) {
    answer(1, 7);
    EXPECT_EQ(processed({{.pktId = 8, .l2Domain = 10, .egrPort = 132}}),
              (Lines{processing(1), pktId(8)}));
}

TEST_F(EntryTest, WithoutAMatchIsNotReadFurther) {
    chip.digestLayout()->fieldSizeIs("egrMd_routed", 4);
    EXPECT_EQ(processed({{.pktId = 8, .egrPort = 600}}), (Lines{processing(1), pktId(8)}));
}

TEST_F(EntryTest, ThatMatchesSeveralAnswersCompletesAllOfThem) {
    answer(1, 7);
    answer(2, 8);
    answer(3, 7);
    EXPECT_EQ(beginning("status ready", processed({{.pktId = 7}})),
              (Lines{"status ready noc/1 true", "status ready noc/3 true"}));
}

TEST_F(EntryTest, EachOfAMessageIsProcessedInItsOrder) {
    answer(1, 7);
    answer(2, 8);
    EXPECT_EQ(beginning("status ready", processed({{.pktId = 8}, {.pktId = 7}})),
              (Lines{"status ready noc/2 true", "status ready noc/1 true"}));
}

TEST_F(EntryTest, Id0MatchesLikeAnyOther) {
    answer(1, 0);
    EXPECT_EQ(beginning("status", processed({{.pktId = 0}})), (Lines{"status ready noc/1 true"}));
}

TEST_F(EntryTest, ThatComesAfterTheEngineMovedOnStillCompletesItsAnswer) {
    toIdleAgain();
    job(2);
    turn();
    EXPECT_EQ(engine->curCfg()->req(), id("noc", 2));
    EXPECT_EQ(beginning("status", processed({{.pktId = 1}})), (Lines{"status ready noc/1 true"}));
}

TEST_F(EntryTest, ThatComesBeforeTheCounterMovesCompletesItsAnswer) {
    toWaitPktSent();
    EXPECT_EQ(beginning("status", processed({{.pktId = 1}})), (Lines{"status ready noc/1 true"}));
    EXPECT_EQ(engine->state(), State::waitPktSent);
}

TEST_F(EntryTest, OfAnAnswerThatIsReadyAlreadyIsSetAgain) {
    answer(1, 7);
    processed({{.pktId = 7, .l2Domain = 10}});
    EXPECT_EQ(beginning("status", processed({{.pktId = 7, .l2Domain = 11}})),
              (Lines{"status egrL2Domain noc/1 11"}));
}

TEST_F(EntryTest, AnswersThatVanishMeanwhileAreTolerated) {
    answer(1, 7);
    answer(2, 7);
    answer(3, 7);
    OnPublication const observer(status->statusIs(id("noc", 1))->publisher(),
                                 [&](Vanta::AttributeNumber attribute, auto) {
                                     if (attribute == PktGenStatusData::readyAttribute) {
                                         status->statusDel(id("noc", 2));
                                         status->statusDel(id("noc", 1));
                                     }
                                 });
    EXPECT_EQ(beginning("status", processed({{.pktId = 7}})),
              (Lines{"status ready noc/1 true", "status del noc/2", "status del noc/1",
                     "status ready noc/3 true"}));
}

TEST_F(EntryTest, AnswersThatAppearMeanwhileAreMet) {
    answer(1, 7);
    OnPublication const observer(status->statusIs(id("noc", 1))->publisher(),
                                 [&](auto, auto) { answer(2, 7); });
    EXPECT_EQ(beginning("status ready", processed({{.pktId = 7}})),
              (Lines{"status ready noc/1 true", "status ready noc/2 true"}));
}

// ---- The widths of the fields

struct Width {
    std::string_view field;
    std::uint32_t size;
    std::string message;
    std::string assertion;
};

class FieldWidthTest : public DigestTest, public testing::WithParamInterface<Width> {};

TEST_P(FieldWidthTest, ThatIsWrongEndsTheProcessBeforeAnythingIsSet) {
    Width const& width = GetParam();
    chip.digestLayout()->fieldSizeIs(width.field, width.size);
    answer(1, 7);
    digest({{.pktId = 7, .copyToCpu = 1, .l2Domain = 10, .egrPort = 132}});
    Lines lines{processing(1)};
    if (width.field != "pktGen_pktId") {
        lines.push_back(pktId(7));
    }
    lines.push_back(engineTrace(1, "processPktTracerDigest:" + width.message));
    expectEnd([&] { turn(); }, lines, "assert", width.assertion);
}

std::string const u8 = "size == sizeof( U8 )";
std::string const u16 = "size == sizeof( U16 )";

INSTANTIATE_TEST_SUITE_P(
    Fields, FieldWidthTest,
    testing::Values(Width{"pktGen_pktId", 4, "pktId wrong size.  Expected:2 got:4", u16},
                    Width{"pktTracerMd_copy_to_cpu", 2, "copyToCpu wrong size.  Expected:1 got:2",
                          u8},
                    Width{"egrMd_egrL2Domain", 1, "egrL2Domain wrong size.  Expected:2 got:1", u16},
                    Width{"pktTracerMd_ucast_egress_port", 4,
                          "ucast_egress_port wrong size.  Expected:2 got:4", u16},
                    Width{"egrMd_routed", 0, "egrMd_routed wrong size.  Expected:1 got:0", u8},
                    Width{"ig_intr_md_for_dprsr_drop_ctl", 2,
                          "ig_intr_md_for_dprsr_drop_ctl wrong size.  Expected:1 got:2", u8}),
    [](auto const& width) { return std::string(width.param.field); });

class FieldOrderTest : public DigestTest {
  protected:
    // The field whose width is complained of when these are wrong.
    void expectFirst(std::initializer_list<std::string_view> wrong, std::string const& message,
                     std::string const& assertion) {
        for (std::string_view const field : wrong) {
            chip.digestLayout()->fieldSizeIs(field, 8);
        }
        answer(1, 7);
        digest({{.pktId = 7}});
        expectEnd([&] { turn(); },
                  {processing(1), pktId(7), engineTrace(1, "processPktTracerDigest:" + message)},
                  "assert", assertion);
    }
};

TEST_F(FieldOrderTest, CopyToCpuIsReadFirst) {
    expectFirst({"pktTracerMd_copy_to_cpu", "egrMd_egrL2Domain"},
                "copyToCpu wrong size.  Expected:1 got:8", u8);
}

TEST_F(FieldOrderTest, TheDomainIsReadBeforeThePort) {
    expectFirst({"egrMd_egrL2Domain", "pktTracerMd_ucast_egress_port"},
                "egrL2Domain wrong size.  Expected:2 got:8", u16);
}

TEST_F(FieldOrderTest, ThePortIsReadBeforeRouted) {
    expectFirst({"pktTracerMd_ucast_egress_port", "egrMd_routed"},
                "ucast_egress_port wrong size.  Expected:2 got:8", u16);
}

TEST_F(FieldOrderTest, RoutedIsReadBeforeTheDropControl) {
    expectFirst({"egrMd_routed", "ig_intr_md_for_dprsr_drop_ctl"},
                "egrMd_routed wrong size.  Expected:1 got:8", u8);
}

// ---- At the edges

TEST_F(DigestTest, APortThatIsTheLastOfItsPipeIsReportedInThatPipe) {
    auto const made = answer(1, 1);
    processed({{.pktId = 1, .egrPort = 127}});
    EXPECT_EQ(made->egrPortInfo().pipe(), 0);
    EXPECT_EQ(made->egrPortInfo().port().value(), 127);
}

TEST_F(DigestTest, ATapThatFailsOnTheSdksThreadEndsTheProcess) {
    failsAtTrace("Received pkt tracer digest");
    expectEnd([&] { chip.digest({TraceDigest{.pktId = 1}}); }, {received(1)[0]}, "runtime_error",
              "the tap");
}

// A digest whose entries have 16 bytes.
class WideLayout final : public VyPd::VyPdIntf {
  public:
    std::uint32_t digestEntrySize(std::string_view) const override { return 16; }
    std::uint8_t const* digestEntryField(std::uint8_t const* entry, std::string_view digest,
                                         std::string_view field,
                                         std::uint32_t& size) const override {
        return layout_->digestEntryField(entry, digest, field, size);
    }

  private:
    friend struct Vanta::NodeFactory;
    Vanta::Ptr<SdkSeam::DigestLayout> layout_ = SdkSeam::DigestLayout::DigestLayoutIs();
};

TEST_F(EngineTest, EntriesThatFillTheBufferExactlyAreProcessed) {
    engine = pktGenSmFactory(config, chip.phase0Data(), status, 1, chip.device(), true,
                             chip.learnQuanta(), Vanta::makeNode<WideLayout>(), loop);
    turn();
    std::vector<std::uint8_t> message(10 + 4096);
    message[9] = 1;  // 256 entries
    ASSERT_EQ(::write(engine->socketPairWriteDesc(), message.data(), message.size()), 10 + 4096);
    EXPECT_EQ(first(turned()), processing(256));
}

}  // namespace
}  // namespace VynPacketTracer
