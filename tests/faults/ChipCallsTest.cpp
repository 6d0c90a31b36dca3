// A full trace in which one call of the chip fails, each call in its turn.
#include <string>
#include <vector>

#include "VynPacketTracer/TracerFixture.h"

namespace VynPacketTracer {
namespace {

constexpr int failure = -5;

std::string engineTrace(unsigned level, std::string const& text) {
    return "VynPtPktGenSm/" + std::to_string(level) + " " + text;
}

class ChipCallTest : public TracerTest {
  protected:
    ChipCallTest() {
        client("noc");
        recorder.onSdkCall = [this](SdkSeam::SdkCall const& call) {
            calls.push_back(std::string(sdkFunctionName(call.function)));
            if (call.function == SdkFunction::genOnePkt && call.rc == 0) {
                counter(++packets);
                injected = call.pktId;
            }
        };
    }
    ~ChipCallTest() override { recorder.onSdkCall = nullptr; }

    // The tracer from its beginning to its end, with one request that is answered and withdrawn.
    // Returns the lines that tell of a failure and of the result.
    Lines fullTrace() {
        tracer = made();
        request(1);
        for (unsigned turns = 0; turns < 12; ++turns) {
            serve();
            turn();
        }
        EXPECT_TRUE(result(1) && result(1)->valid());
        withdraw(1);
        turn();
        EXPECT_FALSE(result(1));
        EXPECT_TRUE(tracer->pktGenStatus()->status().empty());
        EXPECT_TRUE(tracer->pktGenCfg()->cfg().empty());
        tracer = nullptr;
        Lines told;
        for (auto const& line : happened()) {
            if (line.find("Sm/1 ") != line.npos || line.starts_with("result ") ||
                line.find("deregistered") != line.npos) {
                told.push_back(line);
            }
        }
        return told;
    }

    std::vector<std::string> calls;

  private:
    // What a chip does between two turns: it answers phase 0 and reports the packet.
    void serve() {
        if (tracer->pktGenSm()->state() == PktGenState::waitPhase0Data) {
            phase0("Ethernet1", {4, 0});
        }
        if (injected != 0) {
            digest({{.pktId = std::exchange(injected, std::uint16_t{0}), .egrPort = 132}});
        }
    }

    std::uint64_t packets = 0;
    std::uint16_t injected = 0;
};

Lines const answered{"result add noc/1", "result egressIntf noc/1 (Ethernet2,)",
                     "result state noc/1 4", "result valid noc/1 true", "result del noc/1"};
Lines const deregistered{
    engineTrace(4, "deRegisterPktTracerDigest:pktTracerDigest deregistered:0")};

// The calls of a trace, and what a job that is tried again repeats of them.
std::vector<std::string> const injection{"getPktCounters", "genOnePkt"};
std::vector<std::string> const check{"getPktCounters"};
std::vector<std::string> const disable{"disableAppId", "disablePktGen"};
std::vector<std::string> const ack{"pipe_mgr_flow_lrn_notify_ack"};
std::vector<std::string> const registration{"pipe_mgr_lrn_digest_notification_register"};
std::vector<std::string> const deregistration{"pipe_mgr_lrn_digest_notification_deregister"};

TEST_F(ChipCallTest, WithoutAFailureTheCallsAreThese) {
    EXPECT_EQ(fullTrace(), answered + deregistered);
    EXPECT_EQ(calls, registration + injection + check + disable + ack + deregistration);
}

TEST_F(ChipCallTest, ARegistrationThatFailsEndsTheProcess) {
    fails(SdkFunction::digestRegister, failure);
    EXPECT_EXIT(
        {
            Vanta::LastStep const step(
                [](void*, std::string_view errorClass, std::string_view text) {
                    ::_exit(errorClass == "assert" && text == "false" ? 3 : 4);
                });
            static_cast<void>(made());
        },
        testing::ExitedWithCode(3), "assertion failed: false");
}

TEST_F(ChipCallTest, ACounterThatCannotBeReadBeforeTheInjectionHasTheJobTriedAgain) {
    fails(SdkFunction::getPktCounters, failure);
    EXPECT_EQ(fullTrace(), Lines{engineTrace(
                               1, "getPktCounters:error retrieving pktGen counters for pipeId:0")} +
                               answered + deregistered);
    EXPECT_EQ(calls,
              registration + check + disable + injection + check + disable + ack + deregistration);
}

TEST_F(ChipCallTest, AnInjectionThatFailsHasTheJobTriedAgain) {
    fails(SdkFunction::genOnePkt, failure);
    EXPECT_EQ(fullTrace(),
              Lines{engineTrace(1, "sendPkt:Error sending pkt clientName:noc reqId:1")} + answered +
                  deregistered);
    EXPECT_EQ(calls, registration + injection + disable + injection + check + disable + ack +
                         deregistration);
}

TEST_F(ChipCallTest, ACounterThatCannotBeReadAfterTheInjectionIsReadAgain) {
    chip.sdkReturnIs(SdkFunction::getPktCounters, failure, 1, 1);
    EXPECT_EQ(fullTrace(), Lines{engineTrace(
                               1, "getPktCounters:error retrieving pktGen counters for pipeId:0")} +
                               answered + deregistered);
    EXPECT_EQ(calls, registration + injection + check + ack + check + disable + deregistration);
}

// The answer goes with the failure, so the job counts as not begun: it is injected once more.
TEST_F(ChipCallTest, AnApplicationThatCannotBeDisabledHasTheJobTriedAgain) {
    fails(SdkFunction::disableAppId, failure);
    EXPECT_EQ(fullTrace(),
              Lines{engineTrace(1, "disablePktGen:Error disabling appId for pipe:0 deviceId:0")} +
                  answered + deregistered);
    EXPECT_EQ(calls, registration + injection + check + Lines{"disableAppId"} + disable + ack +
                         injection + check + disable + ack + deregistration);
}

TEST_F(ChipCallTest, AGeneratorThatCannotBeDisabledHasTheJobTriedAgain) {
    fails(SdkFunction::disablePktGen, failure);
    EXPECT_EQ(fullTrace(),
              Lines{engineTrace(1, "disablePktGen:Error disabling pktGen for pipe:0 deviceId")} +
                  answered + deregistered);
    EXPECT_EQ(calls, registration + injection + check + disable + disable + ack + injection +
                         check + disable + ack + deregistration);
}

TEST_F(ChipCallTest, AnAcknowledgementThatFailsIsTraced) {
    fails(SdkFunction::notifyAck, failure);
    EXPECT_EQ(fullTrace(),
              Lines{engineTrace(1, "rcvPktTracerLearningDigest:failed to notify ack")} + answered +
                  deregistered);
    EXPECT_EQ(calls, registration + injection + check + disable + ack + deregistration);
}

TEST_F(ChipCallTest, ADeregistrationThatFailsIsTraced) {
    fails(SdkFunction::digestDeregister, failure);
    EXPECT_EQ(fullTrace(),
              answered + Lines{engineTrace(
                             4, "deRegisterPktTracerDigest:pktTracerDigest deregistered:-5")});
    EXPECT_EQ(calls, registration + injection + check + disable + ack + deregistration);
}

}  // namespace
}  // namespace VynPacketTracer
