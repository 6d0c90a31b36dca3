#include "sdkseam/SdkCall.h"

#include <gtest/gtest.h>

#include <vector>

#include "sdkseam/KeptCall.h"

namespace SdkSeam {
namespace {

TEST(SdkFunctionName, IsTheNameThatTheSdkDeclares) {
    EXPECT_EQ("genOnePkt", sdkFunctionName(SdkFunction::genOnePkt));
    EXPECT_EQ("pipe_mgr_flow_lrn_notify_ack", sdkFunctionName(SdkFunction::notifyAck));
}

TEST(SdkFunctionName, LeadsBackToTheFunction) {
    for (SdkFunction const function : allSdkFunctions) {
        EXPECT_EQ(function, sdkFunctionOf(sdkFunctionName(function)));
    }
}

TEST(SdkFunctionOf, KnowsNoOtherNames) {
    EXPECT_FALSE(sdkFunctionOf("dev_port_to_pipe_id"));
    EXPECT_FALSE(sdkFunctionOf("genonepkt"));
    EXPECT_FALSE(sdkFunctionOf(""));
}

std::vector<std::uint8_t> const pkt{0xff, 0x01};
std::vector<std::uint8_t> const phase0{0xab};

// Every argument and outcome that a call can have.
SdkCall everything(SdkFunction function) {
    return {.function = function,
            .device = 2,
            .session = 1,
            .pipe = 3,
            .genPort = 68,
            .appId = 4,
            .handle = 77,
            .pktId = 9,
            .portIndex = 5,
            .pkt = pkt,
            .phase0 = phase0,
            .rc = -6,
            .count = 8};
}

TEST(SdkCallText, NamesTheArgumentsThatTheFunctionHasAndWhatItReturned) {
    EXPECT_EQ(text(everything(SdkFunction::getPktCounters)),
              "getPktCounters session=1 device=2 pipe=3 appId=4 -> -6 count=8");
    EXPECT_EQ(text(everything(SdkFunction::genOnePkt)),
              "genOnePkt session=1 device=2 pipe=3 genPort=68 portIndex=5 appId=4 pkt=ff01 "
              "phase0=ab pktId=9 -> -6");
    EXPECT_EQ(text(everything(SdkFunction::disableAppId)),
              "disableAppId session=1 device=2 pipe=3 appId=4 -> -6");
    EXPECT_EQ(text(everything(SdkFunction::disablePktGen)),
              "disablePktGen session=1 device=2 pipe=3 genPort=68 -> -6");
    EXPECT_EQ(text(everything(SdkFunction::digestRegister)),
              "pipe_mgr_lrn_digest_notification_register session=1 device=2 handle=77 -> -6");
    EXPECT_EQ(text(everything(SdkFunction::digestDeregister)),
              "pipe_mgr_lrn_digest_notification_deregister session=1 device=2 handle=77 -> -6");
}

TEST(SdkCallText, LeavesOutTheDeviceThatAnAcknowledgementDoesNotDeclare) {
    EXPECT_EQ(text(everything(SdkFunction::notifyAck)),
              "pipe_mgr_flow_lrn_notify_ack session=1 handle=77 -> -6");
}

TEST(KeptCall, KeepsItsBytesWhenTheCallersAreGone) {
    std::vector<std::uint8_t> callersPkt(pkt);
    std::vector<std::uint8_t> callersPhase0(phase0);
    auto call = everything(SdkFunction::genOnePkt);
    call.pkt = callersPkt;
    call.phase0 = callersPhase0;
    KeptCall const kept(call);
    callersPkt.assign(2, 0);
    callersPhase0.assign(1, 0);
    EXPECT_EQ(text(*kept), text(everything(SdkFunction::genOnePkt)));
}

TEST(KeptCall, LeavesItsBytesToItsCopies) {
    std::vector<KeptCall> kept;
    {
        KeptCall const first(everything(SdkFunction::genOnePkt));
        kept.push_back(first);
    }
    EXPECT_EQ(text(*kept[0]), text(everything(SdkFunction::genOnePkt)));
}

TEST(KeptCall, ForgetsTheMessageThatIsTheChipsAgain) {
    pipe_flow_lrn_msg_t message{};
    auto call = everything(SdkFunction::notifyAck);
    call.message = &message;
    EXPECT_EQ(KeptCall(call)->message, nullptr);
}

}  // namespace
}  // namespace SdkSeam
