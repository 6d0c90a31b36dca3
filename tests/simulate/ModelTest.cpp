#include "simulate/Model.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Simulate {
namespace {

Plexa::IntfId named(char const* name) {
    return *Plexa::IntfId::fromName(name);
}

using Lines = std::vector<std::string>;

class ModelTest : public testing::Test {
  protected:
    ModelTest() {
        play(Do::Port{named("Ethernet1"), 1, 5});
        play(Do::PortToIntfId{130, named("Ethernet2")});
        play(Do::Start());
        play(Do::ClientConfig{"A"});
        play(Do::ClientStatus{"A"});
    }
    // What an event leads to, without the traces.
    Lines play(Event const& event) {
        EXPECT_TRUE(model.applies(event)) << text(event);
        model.apply(event, wire);
        auto lines = model.takeLog();
        std::erase_if(lines, [](std::string const& line) { return line.starts_with("trace "); });
        return lines;
    }
    Lines request(Bytes raw = Bytes(64, 7)) {
        return play(Do::Request{.id = {"A", 1}, .intf = named("Ethernet1"), .raw = raw});
    }
    // From a new job to its packet.
    void inject() {
        request();
        play(Do::Turn());
        wire.announcements.push_back({named("Ethernet1"), true, 0, Bytes(8, 1)});
        wire.answers = {{0, 3}, {0, 0}, {0, 3}};
        play(Do::Turn());
    }
    // A learn message of one entry, and its acknowledgement.
    void digest(Bytes const& entry) {
        Bytes bytes(8);
        bytes.insert(bytes.end(), entry.begin(), entry.end());
        wire.messages.push_back({1, bytes});
        wire.answers = {{0, 0}};
        play(ChipStep());
    }

    Model model;
    Wire wire;
};

// Packet 1, VLAN 10, egress port 130.
Bytes const unicast{1, 0, 0, 10, 0, 130, 0, 0, 0};

TEST_F(ModelTest, ARequestBecomesAJob) {
    EXPECT_EQ(request(), Lines{"cfg add A/1"});
}

TEST_F(ModelTest, APacketThatCannotBeBuiltIsAnsweredAtOnce) {
    EXPECT_EQ(request({}),
              (Lines{"result add A/1", "result A/1 state 2", "result A/1 valid true"}));
}

TEST_F(ModelTest, AChangedPacketEndsTheProcess) {
    request();
    EXPECT_THROW(request(Bytes(64, 8)), Fatal);
}

TEST_F(ModelTest, AJobWaitsForItsPhase0Data) {
    request();
    EXPECT_EQ(play(Do::Turn()), (Lines{"phase0 configDel Ethernet1", "phase0 configIs Ethernet1"}));
    EXPECT_EQ(model.state(), Model::State::waitPhase0Data);
}

TEST_F(ModelTest, AnAnswerHasThePacketInjected) {
    inject();
    EXPECT_EQ(model.state(), Model::State::waitPktSent);
    EXPECT_EQ(model.pktId(), 1);
    EXPECT_EQ(model.answers(), (std::vector<Id>{{"A", 1}}));
}

TEST_F(ModelTest, ADigestCompletesTheAnswer) {
    inject();
    digest(unicast);
    wire.answers = {{0, 3}};
    auto const lines = play(Do::Turn());
    EXPECT_NE(std::ranges::find(lines, "status A/1 ready true"), lines.end());
    EXPECT_EQ(lines.back().substr(0, 4), "sdk ");
    EXPECT_NE(std::ranges::find(lines, "result A/1 egressIntf Ethernet2,"), lines.end());
    EXPECT_NE(std::ranges::find(lines, "result A/1 state 4"), lines.end());
}

TEST_F(ModelTest, AShortSendPutsTheStreamOutOfStep) {
    inject();
    play(Room{10});
    digest(unicast);
    EXPECT_EQ(model.unread(), 10U);
    play(FaultsEnd());
    digest(unicast);
    wire.answers = {{0, 3}};
    auto const lines = play(Do::Turn());
    EXPECT_EQ(std::ranges::find(lines, "status A/1 ready true"), lines.end());
    EXPECT_EQ(model.unread(), 10U);
}

TEST_F(ModelTest, AnEgressPortThatCannotBeEndsTheProcess) {
    inject();
    digest({1, 0, 0, 10, 0, 201, 1, 0, 0});
    try {
        play(Do::Turn());
        FAIL();
    } catch (Fatal const& fatal) {
        EXPECT_EQ(fatal.type, "RangeError");
    }
}

TEST_F(ModelTest, WhatMakesNoSenseDoesNotApply) {
    EXPECT_FALSE(model.applies(Do::Start()));
    EXPECT_FALSE(model.applies(Do::RequestDel{{"A", 9}}));
    EXPECT_FALSE(model.applies(Do::ClientConfigDel{"D"}));
    EXPECT_FALSE(model.applies(StatusReturns{"D"}));
}

TEST_F(ModelTest, ItCountsTheNodes) {
    auto const before = model.nodes();
    request();
    EXPECT_EQ(model.nodes(), before + 3);  // the request, its reactor and its job
}

TEST_F(ModelTest, TheStopLetsAnswersGoBeforeJobs) {
    inject();
    wire.answers = {{0, 0}};
    auto const lines = play(Do::Stop());
    EXPECT_EQ(lines, (Lines{"sdk pipe_mgr_lrn_digest_notification_deregister session 1 device 1 "
                            "handle 77 -> 0 count 0",
                            "status del A/1", "cfg del A/1"}));
}

}  // namespace
}  // namespace Simulate
