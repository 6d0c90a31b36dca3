#include "scriptchip/Journal.h"

#include <gtest/gtest.h>

namespace ScriptChip {
namespace {

using Steps = std::vector<std::string>;

Plexa::IntfId intf(std::string_view name) {
    return *Plexa::IntfId::fromName(name);
}

TEST(Journal, KeepsEverythingInTheOrderInWhichItHappened) {
    Journal journal;
    journal.phase0ConfigDel(intf("Ethernet1"));
    journal.phase0ConfigIs(intf("Ethernet1"));
    journal.sdkCalled({.function = SdkFunction::genOnePkt});
    EXPECT_EQ((Steps{"configDel Ethernet1", "configIs Ethernet1", "genOnePkt"}), journal.steps());
}

TEST(Journal, GivesTheCallsOfOneFunction) {
    Journal journal;
    journal.sdkCalled({.function = SdkFunction::genOnePkt, .pktId = 1});
    journal.sdkCalled({.function = SdkFunction::disableAppId});
    journal.sdkCalled({.function = SdkFunction::genOnePkt, .pktId = 2});
    auto const injections = journal.calls(SdkFunction::genOnePkt);
    ASSERT_EQ(2U, injections.size());
    EXPECT_EQ(2, injections[1].pktId);
    EXPECT_EQ(3U, journal.calls().size());
}

TEST(Journal, CanBeEmptied) {
    Journal journal;
    journal.sdkCalled({});
    journal.clear();
    EXPECT_TRUE(journal.steps().empty());
    EXPECT_TRUE(journal.calls().empty());
}

}  // namespace
}  // namespace ScriptChip
