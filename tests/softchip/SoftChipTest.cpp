#include "softchip/SoftChip.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "tests/softchip/ChipFixture.h"

namespace SoftChip {
namespace {

class SoftChipCalls : public ChipFixture {
  protected:
    p4_pd_status_t genOnePkt(unsigned pipe, unsigned genPort, std::uint8_t portIndex,
                             unsigned appId) {
        return VynSdk::genOnePkt(session, device, pipe, genPort, portIndex, appId, frame(),
                                 phase0(), 1);
    }
    // Nothing was injected, and the pipe's generator is as it was.
    void expectUntouched() {
        chip.drain();
        EXPECT_TRUE(journal(Kind::injection).empty());
        EXPECT_EQ(chip.generator(0).state(), GeneratorState::off);
    }
};

TEST_F(SoftChipCalls, AcceptAPacketForAKnownPort) {
    EXPECT_EQ(inject(1), 0);
}

TEST_F(SoftChipCalls, RefuseAPacketWithoutPhase0Bytes) {
    EXPECT_EQ(VynSdk::genOnePkt(session, device, 0, 68, 1, 4, frame(), {}, 1),
              code(Status::noPhase0));
    expectUntouched();
}

TEST_F(SoftChipCalls, RefuseAPacketWithoutBytes) {
    EXPECT_EQ(VynSdk::genOnePkt(session, device, 0, 68, 1, 4, {}, phase0(), 1),
              code(Status::badPacketSize));
    expectUntouched();
}

TEST_F(SoftChipCalls, RefuseAPacketThatTheGeneratorsBufferDoesNotHold) {
    EXPECT_EQ(inject(1, Bytes(16384)), 0);
    EXPECT_EQ(inject(1, Bytes(16385)), code(Status::badPacketSize));
}

TEST_F(SoftChipCalls, RefuseAnUnknownPipe) {
    std::uint64_t count = 5;
    EXPECT_EQ(genOnePkt(4, 68, 1, 4), code(Status::unknownPipe));
    EXPECT_EQ(VynSdk::getPktCounters(session, device, 4, 4, count), code(Status::unknownPipe));
    EXPECT_EQ(VynSdk::disableAppId(session, device, 4, 4), code(Status::unknownPipe));
    EXPECT_EQ(VynSdk::disablePktGen(session, device, 4, 68), code(Status::unknownPipe));
    EXPECT_EQ(count, 0u);
    expectUntouched();
}

TEST_F(SoftChipCalls, RefuseAnUnknownSession) {
    std::uint64_t count = 0;
    EXPECT_EQ(VynSdk::genOnePkt(8, device, 0, 68, 1, 4, frame(), phase0(), 1),
              code(Status::unknownSession));
    EXPECT_EQ(VynSdk::getPktCounters(8, device, 0, 4, count), code(Status::unknownSession));
    EXPECT_EQ(VynSdk::disableAppId(8, device, 0, 4), code(Status::unknownSession));
    EXPECT_EQ(VynSdk::disablePktGen(8, device, 0, 68), code(Status::unknownSession));
    EXPECT_EQ(pipe_mgr_lrn_digest_notification_register(8, device, 77, nullptr, nullptr),
              code(Status::unknownSession));
    EXPECT_EQ(pipe_mgr_lrn_digest_notification_deregister(8, device, 77),
              code(Status::unknownSession));
    expectUntouched();
}

TEST_F(SoftChipCalls, RefuseAnUnknownApplication) {
    std::uint64_t count = 0;
    EXPECT_EQ(genOnePkt(0, 68, 1, 5), code(Status::unknownApp));
    EXPECT_EQ(VynSdk::getPktCounters(session, device, 0, 5, count), code(Status::unknownApp));
    EXPECT_EQ(VynSdk::disableAppId(session, device, 0, 5), code(Status::unknownApp));
    expectUntouched();
}

TEST_F(SoftChipCalls, RefuseAnUnknownGeneratorPort) {
    EXPECT_EQ(genOnePkt(0, 69, 1, 4), code(Status::unknownGenPort));
    EXPECT_EQ(VynSdk::disablePktGen(session, device, 0, 69), code(Status::unknownGenPort));
    expectUntouched();
}

TEST_F(SoftChipCalls, RefuseAPortIndexThatThePipeDoesNotHave) {
    EXPECT_EQ(genOnePkt(0, 68, 127, 4), 0);
    EXPECT_EQ(genOnePkt(0, 68, 128, 4), code(Status::unknownPort));
    EXPECT_EQ(genOnePkt(3, 68, 71, 4), 0);
    EXPECT_EQ(genOnePkt(3, 68, 72, 4), code(Status::unknownPort));
}

TEST_F(SoftChipCalls, RefuseAnUnknownDigestHandle) {
    EXPECT_EQ(pipe_mgr_lrn_digest_notification_register(session, device, 78, nullptr, nullptr),
              code(Status::unknownDigest));
    EXPECT_EQ(pipe_mgr_lrn_digest_notification_deregister(session, device, 78),
              code(Status::unknownDigest));
}

TEST_F(SoftChipCalls, RefuseASecondRegistration) {
    EXPECT_EQ(registerDigest(), 0);
    EXPECT_EQ(registerDigest(), code(Status::digestRegistered));
}

TEST_F(SoftChipCalls, RefuseToEndARegistrationThatDoesNotExist) {
    EXPECT_EQ(deregisterDigest(), code(Status::digestUnregistered));
    registerDigest();
    EXPECT_EQ(deregisterDigest(), 0);
    EXPECT_EQ(deregisterDigest(), code(Status::digestUnregistered));
}

TEST_F(SoftChipCalls, RefuseASecondAcknowledgementOfAMessage) {
    registerDigest();
    receiver.acknowledges = false;
    inject(1);
    chip.drain();
    auto* const message = receiver.calls.at(0).message;
    EXPECT_EQ(pipe_mgr_flow_lrn_notify_ack(session, 77, message), 0);
    EXPECT_EQ(pipe_mgr_flow_lrn_notify_ack(session, 77, message), code(Status::unknownMessage));
}

TEST_F(SoftChipCalls, RefuseAnAcknowledgementOfWhatIsNoMessageOfTheChip) {
    registerDigest();
    pipe_flow_lrn_msg_t message{};
    message.dev_tgt.device_id = device;
    EXPECT_EQ(pipe_mgr_flow_lrn_notify_ack(session, 77, &message), code(Status::unknownMessage));
}

TEST_F(SoftChipCalls, RefuseAnAcknowledgementOfAnotherSessionOrHandle) {
    registerDigest();
    receiver.acknowledges = false;
    inject(1);
    chip.drain();
    auto* const message = receiver.calls.at(0).message;
    EXPECT_EQ(pipe_mgr_flow_lrn_notify_ack(8, 77, message), code(Status::unknownSession));
    EXPECT_EQ(pipe_mgr_flow_lrn_notify_ack(session, 78, message), code(Status::unknownDigest));
    EXPECT_EQ(chip.outstandingMessages(), 1u);
}

TEST_F(SoftChipCalls, EnableTheGeneratorAndDisableItInTwoSteps) {
    inject(1);
    EXPECT_EQ(chip.generator(0).state(), GeneratorState::on);
    EXPECT_EQ(VynSdk::disableAppId(session, device, 0, 4), 0);
    EXPECT_EQ(chip.generator(0).state(), GeneratorState::portOn);
    EXPECT_EQ(VynSdk::disablePktGen(session, device, 0, 68), 0);
    EXPECT_EQ(chip.generator(0).state(), GeneratorState::off);
}

TEST_F(SoftChipCalls, SucceedInDisablingWhatIsNotEnabled) {
    EXPECT_EQ(VynSdk::disableAppId(session, device, 0, 4), 0);
    EXPECT_EQ(VynSdk::disablePktGen(session, device, 0, 68), 0);
    EXPECT_EQ(chip.generator(0).state(), GeneratorState::off);
}

TEST_F(SoftChipCalls, OfAnotherDeviceDoNotReachTheChip) {
    EXPECT_EQ(VynSdk::disableAppId(session, device + 1, 0, 4), SdkSeam::unknownDevice);
    EXPECT_EQ(chip.journal().counters().callsOf(SdkFunction::disableAppId), 0u);
}

TEST(SoftChipSeam, RefusesASecondChipForADevice) {
    SoftChip const first({.device = 5, .mode = Mode::stepwise});
    EXPECT_THROW(SoftChip({.device = 5, .mode = Mode::stepwise}), std::logic_error);
}

TEST(SoftChipSeam, IsLeftWhenTheChipGoes) {
    { SoftChip const chip({.device = 5, .mode = Mode::stepwise}); }
    EXPECT_EQ(VynSdk::disableAppId(1, 5, 0, 4), SdkSeam::unknownDevice);
}

class SoftChipPackets : public ChipFixture {};

TEST_F(SoftChipPackets, MoveTheCounterOfTheirPipeWhenTheyAreGenerated) {
    inject(1, frame(), 2);
    EXPECT_EQ(counter(2), 0u);
    chip.step();
    EXPECT_EQ(counter(2), 1u);
    EXPECT_EQ(counter(0), 0u);
}

TEST_F(SoftChipPackets, ComeThroughAlthoughTheGeneratorIsDisabledRightBehindThem) {
    inject(1);
    VynSdk::disableAppId(session, device, 0, 4);
    VynSdk::disablePktGen(session, device, 0, 68);
    chip.step();
    EXPECT_EQ(counter(), 1u);
}

TEST_F(SoftChipPackets, AreCopiedBeforeTheCallReturns) {
    registerDigest();
    auto bytes = frame();
    auto port = phase0();
    VynSdk::genOnePkt(session, device, 0, 68, 1, 4, bytes, port, 1);
    bytes.assign(bytes.size(), 0xff);
    port.assign(port.size(), 0xff);
    chip.drain();
    EXPECT_EQ(receiver.calls.at(0).digests.at(0).egressPort, 2u);
}

TEST_F(SoftChipPackets, EnterWhereThePhase0BytesSayAndNowhereElse) {
    registerDigest();
    VynSdk::genOnePkt(session, device, 0, 68, 1, 4, frame(), phase0(2), 1);
    chip.drain();
    EXPECT_TRUE(receiver.calls.at(0).digests.at(0).drop);  // host B is behind port 2: hairpin
}

TEST_F(SoftChipPackets, MeetTheTablesAsTheyWereWhenTheyWereInjected) {
    registerDigest();
    inject(1);
    chip.change([](Tables& tables) { tables.portUpIs(2, false); });
    inject(2);
    chip.drain();
    auto const& digests = receiver.calls.at(0).digests;
    EXPECT_EQ(digests.at(0), (Digest{.pktId = 1, .l2Domain = 10, .egressPort = 2}));
    EXPECT_EQ(digests.at(1), (Digest{.pktId = 2, .l2Domain = 10, .egressPort = 511, .drop = true}));
}

TEST_F(SoftChipPackets, AreWrittenDownWithTheirDecision) {
    chip.step();
    inject(7);
    chip.step();
    auto const injections = journal(Kind::injection);
    ASSERT_EQ(injections.size(), 1u);
    EXPECT_EQ(injections[0].pktId, 7u);
    EXPECT_EQ(injections[0].pipe, 0u);
    EXPECT_EQ(injections[0].portIndex, 1u);
    EXPECT_EQ(injections[0].pktBytes, frame().size());
    EXPECT_EQ(injections[0].decision.egressPort, 2u);
}

TEST_F(SoftChipPackets, AreExplainedByIdWhenThatIsSwitchedOn) {
    inject(1);
    chip.drain();
    chip.explanations().onIs(true);
    inject(2);
    chip.drain();
    EXPECT_FALSE(chip.explanations().find(1));
    auto const explanation = chip.explanations().find(2);
    ASSERT_TRUE(explanation);
    EXPECT_EQ(explanation->entries().back().reason, Reason::forwarded);
}

class SoftChipDigests : public ChipFixture {
  protected:
    SoftChipDigests() { registerDigest(); }
};

TEST_F(SoftChipDigests, ComeOneAGeneratedPacket) {
    inject(5);
    chip.drain();
    ASSERT_EQ(receiver.calls.size(), 1u);
    EXPECT_EQ(receiver.calls[0].digests,
              (std::vector<Digest>{{.pktId = 5, .l2Domain = 10, .egressPort = 2}}));
}

TEST_F(SoftChipDigests, ShareAMessageWhenTheyAreReadyTogether) {
    for (std::uint16_t id = 1; id <= 3; ++id) {
        inject(id);
    }
    chip.step();
    ASSERT_EQ(receiver.calls.size(), 1u);
    EXPECT_EQ(receiver.pktIds(), (std::vector<std::uint16_t>{1, 2, 3}));
}

TEST_F(SoftChipDigests, FillNoMessageBeyond4096Bytes) {
    for (std::uint16_t id = 0; id < 456; ++id) {
        inject(id);
    }
    chip.step();
    ASSERT_EQ(receiver.calls.size(), 2u);
    EXPECT_EQ(receiver.calls[0].digests.size(), 455u);
    EXPECT_LE(receiver.calls[0].digests.size() * 9, 4096u);
    EXPECT_EQ(receiver.calls[1].digests.size(), 1u);
}

TEST_F(SoftChipDigests, NameTheDeviceInTheirMessagesFirstByte) {
    inject(1);
    chip.drain();
    EXPECT_EQ(receiver.calls.at(0).head, (std::vector<std::uint8_t>{device, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(SoftChipDigests, ComeWithTheRegisteredSession) {
    inject(1);
    chip.drain();
    EXPECT_EQ(receiver.calls.at(0).session, session);
}

TEST_F(SoftChipDigests, AreKeptUntilTheirMessageIsAcknowledged) {
    receiver.acknowledges = false;
    inject(1);
    chip.drain();
    EXPECT_EQ(chip.outstandingMessages(), 1u);
    inject(2);
    chip.drain();
    ASSERT_EQ(receiver.calls.size(), 2u);
    auto* const first = receiver.calls[0].message;
    EXPECT_NE(first, receiver.calls[1].message);
    EXPECT_EQ(digestAt(static_cast<std::uint8_t const*>(first->entries)).pktId, 1u);
    EXPECT_EQ(pipe_mgr_flow_lrn_notify_ack(session, 77, first), 0);
    EXPECT_EQ(chip.outstandingMessages(), 1u);
}

TEST_F(SoftChipDigests, WaitWhileTooManyMessagesAreNotAcknowledged) {
    receiver.acknowledges = false;
    for (std::uint16_t id = 0; id < 70; ++id) {
        inject(id);
        chip.drain();
    }
    ASSERT_EQ(receiver.calls.size(), 64u);
    EXPECT_EQ(pipe_mgr_flow_lrn_notify_ack(session, 77, receiver.calls[0].message), 0);
    chip.drain();
    ASSERT_EQ(receiver.calls.size(), 65u);
    EXPECT_EQ(receiver.calls.back().digests.size(), 6u);
}

TEST_F(SoftChipDigests, AreNotDeliveredWithoutARegistration) {
    inject(1);
    deregisterDigest();
    inject(2);
    chip.drain();
    EXPECT_TRUE(receiver.calls.empty());
    EXPECT_EQ(chip.journal().counters().digestsUndelivered, 2u);
}

TEST_F(SoftChipDigests, OfAnEarlierRegistrationsPacketsDoNotReachALaterOne) {
    inject(1);
    deregisterDigest();
    registerDigest();
    inject(1);
    chip.drain();
    EXPECT_EQ(receiver.pktIds(), (std::vector<std::uint16_t>{1}));
}

TEST_F(SoftChipDigests, ThatWaitForAnAcknowledgementGoWithTheirRegistration) {
    receiver.acknowledges = false;
    for (std::uint16_t id = 0; id < 65; ++id) {
        inject(id);
        chip.drain();
    }
    deregisterDigest();
    EXPECT_EQ(chip.outstandingMessages(), 0u);
    registerDigest();
    inject(100);
    chip.drain();
    EXPECT_EQ(receiver.calls.back().digests.size(), 1u);
    EXPECT_EQ(receiver.calls.size(), 65u);
}

TEST_F(SoftChipDigests, MayEndTheirRegistrationInsideTheCallback) {
    receiver.acknowledges = false;
    receiver.inside = [this] { EXPECT_EQ(deregisterDigest(), 0); };
    for (std::uint16_t id = 0; id < 456; ++id) {
        inject(id);
    }
    chip.drain();
    EXPECT_EQ(receiver.calls.size(), 1u);
    EXPECT_EQ(registerDigest(), 0);
}

class SoftChipFaults : public ChipFixture {
  protected:
    SoftChipFaults() { registerDigest(); }
};

TEST_F(SoftChipFaults, FailTheNthCallOfAFunctionSoManyTimes) {
    chip.faults().failIs(SdkFunction::disableAppId, 40, 2, 2);
    std::vector<p4_pd_status_t> results;
    for (int i = 0; i < 4; ++i) {
        results.push_back(VynSdk::disableAppId(session, device, 0, 4));
    }
    EXPECT_EQ(results, (std::vector<p4_pd_status_t>{0, 40, 40, 0}));
}

TEST_F(SoftChipFaults, KeepAFailingCallFromDoingAnything) {
    chip.faults().failIs(SdkFunction::genOnePkt, 41);
    chip.faults().failIs(SdkFunction::disablePktGen, 42);
    EXPECT_EQ(inject(1), 41);
    chip.drain();
    EXPECT_EQ(chip.generator(0).generated(), 0u);
    EXPECT_EQ(inject(2), 0);
    EXPECT_EQ(VynSdk::disablePktGen(session, device, 0, 68), 42);
    EXPECT_EQ(chip.generator(0).state(), GeneratorState::on);
}

TEST_F(SoftChipFaults, FailACounterReading) {
    inject(1);
    chip.drain();
    chip.faults().failIs(SdkFunction::getPktCounters, 43);
    std::uint64_t count = 7;
    EXPECT_EQ(VynSdk::getPktCounters(session, device, 0, 4, count), 43);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(counter(), 1u);
}

TEST_F(SoftChipFaults, FailARegistration) {
    deregisterDigest();
    chip.faults().failIs(SdkFunction::digestRegister, 44);
    EXPECT_EQ(registerDigest(), 44);
    EXPECT_EQ(registerDigest(), 0);
}

TEST_F(SoftChipFaults, LetAFailingDeregistrationTakeEffect) {
    chip.faults().failIs(SdkFunction::digestDeregister, 45);
    EXPECT_EQ(deregisterDigest(), 45);
    EXPECT_EQ(deregisterDigest(), code(Status::digestUnregistered));
}

TEST_F(SoftChipFaults, LeaveAMessageOutstandingWhenItsAcknowledgementFails) {
    chip.faults().failIs(SdkFunction::notifyAck, 46);
    inject(1);
    chip.drain();
    EXPECT_EQ(receiver.calls.at(0).acknowledged, 46);
    EXPECT_EQ(chip.outstandingMessages(), 1u);
}

TEST_F(SoftChipFaults, LoseADigestByNumber) {
    chip.faults().digestIs({.fate = DigestFate::lost, .nth = 2});
    for (std::uint16_t id = 1; id <= 3; ++id) {
        inject(id);
    }
    chip.drain();
    EXPECT_EQ(receiver.pktIds(), (std::vector<std::uint16_t>{1, 3}));
    EXPECT_EQ(chip.journal().counters().digestsLost, 1u);
}

TEST_F(SoftChipFaults, DoubleADigestByPacketId) {
    chip.faults().digestIs({.fate = DigestFate::doubled, .pktId = 3});
    for (std::uint16_t id = 1; id <= 3; ++id) {
        inject(id);
    }
    chip.drain();
    EXPECT_EQ(receiver.pktIds(), (std::vector<std::uint16_t>{1, 2, 3, 3}));
    EXPECT_EQ(chip.journal().counters().digestsDoubled, 1u);
}

TEST_F(SoftChipFaults, HoldADigestUntilItIsReleased) {
    chip.faults().digestIs({.fate = DigestFate::held, .pktId = 1});
    inject(1);
    inject(2);
    chip.drain();
    EXPECT_EQ(receiver.pktIds(), (std::vector<std::uint16_t>{2}));
    chip.releaseHeld();
    chip.drain();
    EXPECT_EQ(receiver.pktIds(), (std::vector<std::uint16_t>{2, 1}));
}

TEST_F(SoftChipFaults, HoldADigestBehindSoManyLaterOnes) {
    chip.faults().digestIs({.fate = DigestFate::held, .pktId = 1, .behind = 2});
    for (std::uint16_t id = 1; id <= 4; ++id) {
        inject(id);
        chip.drain();
    }
    EXPECT_EQ(receiver.pktIds(), (std::vector<std::uint16_t>{2, 3, 1, 4}));
}

TEST_F(SoftChipFaults, StallACounterWithoutLosingAPacket) {
    chip.generator(0).stalledIs(true);
    inject(1);
    chip.drain();
    EXPECT_EQ(counter(), 0u);
    chip.generator(0).stalledIs(false);
    EXPECT_EQ(counter(), 1u);
}

TEST_F(SoftChipFaults, ResetACounter) {
    inject(1);
    inject(2);
    chip.drain();
    chip.generator(0).counterIs(0);
    EXPECT_EQ(counter(), 0u);
    inject(3);
    chip.drain();
    EXPECT_EQ(counter(), 1u);
    EXPECT_EQ(chip.generator(0).generated(), 3u);
}

TEST_F(SoftChipFaults, WrapACounterOf64Bits) {
    chip.generator(0).counterIs(std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(counter(), std::numeric_limits<std::uint64_t>::max());
    inject(1);
    chip.drain();
    EXPECT_EQ(counter(), 0u);
}

class SoftChipSteps : public ChipFixture {};

TEST_F(SoftChipSteps, DoWhatIsQueuedAndSayWhetherThereWasAnything) {
    EXPECT_TRUE(chip.step());
    EXPECT_FALSE(chip.step());
    inject(1);
    EXPECT_TRUE(chip.step());
}

TEST_F(SoftChipSteps, LeaveWhatACallbackInjectsToTheNextStep) {
    registerDigest();
    receiver.inside = [this] {
        receiver.inside = nullptr;
        inject(2);
    };
    inject(1);
    chip.step();
    EXPECT_EQ(receiver.pktIds(), (std::vector<std::uint16_t>{1}));
    chip.step();
    EXPECT_EQ(receiver.pktIds(), (std::vector<std::uint16_t>{1, 2}));
}

TEST_F(SoftChipSteps, DestroyWhatAChangeReferredTo) {
    auto const shared = std::make_shared<int>(0);
    chip.change([shared](Tables&) {});
    EXPECT_EQ(shared.use_count(), 2);
    chip.step();
    EXPECT_EQ(shared.use_count(), 1);
}

TEST_F(SoftChipSteps, EndTheProcessWhenAChangeThrows) {
    chip.change([](Tables& tables) { tables.vlanIs(4095); });
    EXPECT_DEATH(chip.step(), "VLAN|domain|4095");
}

}  // namespace
}  // namespace SoftChip
