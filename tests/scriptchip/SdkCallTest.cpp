#include "scriptchip/SdkCall.h"

#include <gtest/gtest.h>

namespace ScriptChip {
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

}  // namespace
}  // namespace ScriptChip
