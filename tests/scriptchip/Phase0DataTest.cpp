#include "scriptchip/Phase0Data.h"

#include <gtest/gtest.h>

#include "Vanta/Publisher.h"
#include "scriptchip/CallLog.h"

namespace ScriptChip {
namespace {

class Phase0DataTest : public testing::Test {
  protected:
    Phase0DataTest() { subscriber.subscribe<&Phase0DataTest::dispatch>(phase0->publisher(), this); }

    void dispatch(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber attribute,
                  Vanta::ValueRef key, Vanta::ValueRef) {
        EXPECT_EQ(VynSdk::Phase0DataIntf::responseAttribute, attribute);
        announced.push_back(key.get<Plexa::IntfId>().stringValue());
    }

    CallLog log;
    Vanta::Ptr<Phase0Data> phase0 = Phase0Data::Phase0DataIs(&log);
    Plexa::IntfId ethernet1 = *Plexa::IntfId::fromName("Ethernet1");
    std::vector<std::string> announced;
    Vanta::Subscriber subscriber;
};

TEST_F(Phase0DataTest, RequestsAreRecordedAndNothingElse) {
    phase0->configDel(ethernet1);
    phase0->configIs(ethernet1);
    EXPECT_EQ((std::vector<std::string>{"configDel Ethernet1", "configIs Ethernet1"}), log.steps());
    EXPECT_TRUE(phase0->response().empty());
    EXPECT_TRUE(announced.empty());
}

TEST_F(Phase0DataTest, AnAnswerAppearsAndIsAnnounced) {
    phase0->answerIs(ethernet1, {4, 0}, 7);
    EXPECT_EQ(std::vector<std::string>{"Ethernet1"}, announced);
    EXPECT_EQ((Vanta::Bytes{4, 0}), phase0->response().get(ethernet1).data);
    EXPECT_EQ(7U, phase0->response().get(ethernet1).status);
}

TEST_F(Phase0DataTest, AnAnswerIsReplacedAndAnnouncedAgain) {
    phase0->answerIs(ethernet1, {4, 0}, 7);
    phase0->answerIs(ethernet1, {5});
    EXPECT_EQ(2U, announced.size());
    EXPECT_EQ(1U, phase0->response().size());
    EXPECT_EQ(Vanta::Bytes{5}, phase0->response().get(ethernet1).data);
    EXPECT_EQ(0U, phase0->response().get(ethernet1).status);
}

TEST_F(Phase0DataTest, WithdrawingARequestLeavesTheAnswer) {
    phase0->answerIs(ethernet1, {4});
    phase0->configDel(ethernet1);
    EXPECT_TRUE(phase0->response().has(ethernet1));
}

TEST_F(Phase0DataTest, AnAnswerThatGoesIsAnnounced) {
    phase0->answerIs(ethernet1, {4});
    announced.clear();
    EXPECT_TRUE(phase0->answerDel(ethernet1));
    EXPECT_EQ(std::vector<std::string>{"Ethernet1"}, announced);
    EXPECT_TRUE(phase0->response().empty());
}

TEST_F(Phase0DataTest, WhatIsNotThereDoesNotGo) {
    EXPECT_FALSE(phase0->answerDel(ethernet1));
    EXPECT_TRUE(announced.empty());
}

TEST_F(Phase0DataTest, NobodyNeedListen) {
    phase0->listenerIs(nullptr);
    phase0->configIs(ethernet1);
    phase0->configDel(ethernet1);
    EXPECT_TRUE(log.steps().empty());
}

}  // namespace
}  // namespace ScriptChip
