#include "scriptchip/CallLog.h"

#include <gtest/gtest.h>

namespace ScriptChip {
namespace {

using SdkSeam::SdkFunction;

using Steps = std::vector<std::string>;

Plexa::IntfId intf(std::string_view name) {
    return *Plexa::IntfId::fromName(name);
}

TEST(CallLog, KeepsEverythingInTheOrderInWhichItHappened) {
    CallLog log;
    log.phase0ConfigDel(intf("Ethernet1"));
    log.phase0ConfigIs(intf("Ethernet1"));
    log.sdkCalled({.function = SdkFunction::genOnePkt});
    EXPECT_EQ((Steps{"configDel Ethernet1", "configIs Ethernet1", "genOnePkt"}), log.steps());
}

TEST(CallLog, GivesTheCallsOfOneFunction) {
    CallLog log;
    log.sdkCalled({.function = SdkFunction::genOnePkt, .pktId = 1});
    log.sdkCalled({.function = SdkFunction::disableAppId});
    log.sdkCalled({.function = SdkFunction::genOnePkt, .pktId = 2});
    auto const injections = log.calls(SdkFunction::genOnePkt);
    ASSERT_EQ(2U, injections.size());
    EXPECT_EQ(2, injections[1]->pktId);
    EXPECT_EQ(3U, log.calls().size());
}

TEST(CallLog, CanBeEmptied) {
    CallLog log;
    log.sdkCalled({});
    log.clear();
    EXPECT_TRUE(log.steps().empty());
    EXPECT_TRUE(log.calls().empty());
}

}  // namespace
}  // namespace ScriptChip
