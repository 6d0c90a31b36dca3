#include "scenario/RunWriter.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

#include "ScratchPath.h"

namespace Scenario {
namespace {

constexpr std::uint32_t never = std::numeric_limits<std::uint32_t>::max();

class RunWriterTest : public testing::Test {
  protected:
    // What stands in the file.
    std::string written() const { return path_.content(); }
    std::string finished() {
        writer.finish();
        return written();
    }
    void turn(RunWriter::TurnNumber number) { writer.taskRuns(number, never); }
    // A message of one entry, all of whose bytes are `byte`.
    RunWriter::Reception receive(std::uint8_t byte) {
        std::array<std::uint8_t, 9> entry;
        entry.fill(byte);
        return writer.received(entry);
    }
    void receiveWhole(std::uint8_t byte) {
        auto const reception = receive(byte);
        writer.acknowledged(0);
        writer.done(reception);
    }
    static std::string digest(std::string const& u8, std::string const& u16) {
        return R"({"do":"digest","entries":[{"pktId":)" + u16 + R"(,"copyToCpu":)" + u8 +
               R"(,"l2Domain":)" + u16 + R"(,"egrPort":)" + u16 + R"(,"routed":)" + u8 +
               R"(,"dropCtl":)" + u8 + "}]}\n";
    }
    // What the events of the tests are written as.
    static inline std::string const one = "{\"do\":\"clientConfigDel\",\"client\":\"one\"}\n";
    static inline std::string const two = "{\"do\":\"clientConfigDel\",\"client\":\"two\"}\n";
    static inline std::string const stop = "{\"do\":\"stop\"}\n";
    static inline std::string const digest1 = digest("1", "257");
    static inline std::string const digest2 = digest("2", "514");

  private:
    ScratchPath const path_{"scenario.jsonl"};
    RecordingFile file_{path_.string()};

  protected:
    static constexpr std::uint64_t mostTurns = 10;
    RunWriter writer{file_, mostTurns};
};

TEST_F(RunWriterTest, WritesAnEventWhenTheNextOneBegins) {
    writer.event(Do::ClientConfigDel{"one"});
    EXPECT_EQ(written(), "");
    writer.event(Do::ClientConfigDel{"two"});
    EXPECT_EQ(written(), one);
    EXPECT_EQ(finished(), one + two);
}

TEST_F(RunWriterTest, CountsTurnsThatMeetNothingTogether) {
    turn(1);
    turn(2);
    turn(5);
    writer.event(Do::ClientConfigDel{"one"});
    turn(6);
    EXPECT_EQ(finished(), "{\"do\":\"turn\",\"times\":3}\n" + one + "{\"do\":\"turn\"}\n");
}

TEST_F(RunWriterTest, DigestAndTaskOfATurnAreOneTurn) {
    receiveWhole(1);
    writer.digestAnnounced(7);
    turn(7);
    EXPECT_EQ(finished(), digest1 + "{\"do\":\"turn\"}\n");
}

TEST_F(RunWriterTest, WhatComesBehindTheTaskStandsBehindTheTurn) {
    turn(1);
    writer.event(Do::ClientConfigDel{"one"});
    EXPECT_EQ(finished(), "{\"do\":\"turn\"}\n" + one);
}

TEST_F(RunWriterTest, RemarksOnWhatComesBetweenDigestAndTask) {
    receiveWhole(1);
    writer.digestAnnounced(7);
    writer.event(Do::ClientConfigDel{"one"});
    turn(7);
    EXPECT_EQ(finished(), digest1 + "{\"do\":\"turn\"}\n" + one +
                              "# one turn of the run: something came between its digest and its "
                              "task\n{\"do\":\"turn\"}\n");
}

TEST_F(RunWriterTest, DigestsStandAheadOfTheTurnsThatReadThem) {
    receiveWhole(1);
    receiveWhole(2);
    turn(1);
    writer.digestAnnounced(2);
    writer.digestAnnounced(3);
    EXPECT_EQ(finished(), "{\"do\":\"turn\"}\n" + digest1 + "{\"do\":\"turn\"}\n" + digest2 +
                              "{\"do\":\"turn\"}\n");
}

TEST_F(RunWriterTest, DigestsThatNobodyReadsStandAheadOfTheStop) {
    writer.event(Do::Stop());
    receiveWhole(1);
    writer.event(Do::ClientConfigDel{"one"});
    receiveWhole(2);
    EXPECT_EQ(finished(), digest1 + stop + one + digest2);
}

TEST_F(RunWriterTest, ADigestsLineWaitsForItsAcknowledgement) {
    auto const reception = receive(1);
    writer.digestAnnounced(1);
    writer.event(Do::ClientConfigDel{"one"});
    writer.event(Do::ClientConfigDel{"two"});
    EXPECT_EQ(written(), "");
    writer.acknowledged(-4);
    writer.done(reception);
    EXPECT_EQ(
        finished(),
        R"({"do":"sdkReturn","call":"pipe_mgr_flow_lrn_notify_ack","rc":-4,"times":1,"after":0})"
        "\n" +
            digest1 + "{\"do\":\"turn\"}\n" + one + two);
}

TEST_F(RunWriterTest, AtTheEndADigestNeedNotBeAcknowledged) {
    receive(1);
    EXPECT_EQ(finished(), digest1);
}

TEST_F(RunWriterTest, CountersStandAheadOfTheEventThatReadsOthers) {
    turn(1);
    writer.counterRead(2, 0);
    turn(2);
    writer.counterRead(2, 0);
    writer.counterRead(2, 8);
    turn(3);
    writer.counterRead(2, 8);
    turn(4);
    writer.counterRead(2, 9);
    EXPECT_EQ(finished(),
              "{\"do\":\"turn\"}\n"
              "{\"do\":\"counter\",\"pipe\":2,\"values\":[0,8]}\n"
              "{\"do\":\"turn\",\"times\":2}\n"
              "{\"do\":\"counter\",\"pipe\":2,\"value\":9}\n"
              "{\"do\":\"turn\"}\n");
}

TEST_F(RunWriterTest, CallsThatFailStandAheadOfTheirEvent) {
    turn(1);
    writer.called(SdkSeam::SdkFunction::genOnePkt, 0);
    writer.called(SdkSeam::SdkFunction::disableAppId, 0);
    writer.called(SdkSeam::SdkFunction::disableAppId, 5);
    writer.called(SdkSeam::SdkFunction::disableAppId, 5);
    writer.called(SdkSeam::SdkFunction::disableAppId, 0);
    EXPECT_EQ(finished(),
              "{\"do\":\"sdkReturn\",\"call\":\"disableAppId\",\"rc\":5,\"times\":2,\"after\":1}\n"
              "{\"do\":\"turn\"}\n");
}

TEST_F(RunWriterTest, RemarksOnCallsThatFailInTwoWays) {
    turn(1);
    writer.called(SdkSeam::SdkFunction::disableAppId, 5);
    writer.called(SdkSeam::SdkFunction::disableAppId, 6);
    EXPECT_EQ(finished(),
              "# a later call of disableAppId in this event failed in another way\n"
              "{\"do\":\"sdkReturn\",\"call\":\"disableAppId\",\"rc\":5,\"times\":1,\"after\":0}\n"
              "{\"do\":\"turn\"}\n");
}

TEST_F(RunWriterTest, SaysWhenATaskIsToYield) {
    writer.taskRuns(1, 64);
    writer.taskRuns(2, 64);
    writer.taskRuns(3, 0);
    EXPECT_EQ(finished(),
              "{\"do\":\"yieldAfter\",\"checks\":64}\n{\"do\":\"turn\",\"times\":2}\n"
              "{\"do\":\"yieldAfter\",\"checks\":0}\n{\"do\":\"turn\"}\n");
}

TEST_F(RunWriterTest, OneEventTakesNoMoreTurnsThanItMay) {
    for (RunWriter::TurnNumber number = 1; number <= mostTurns + 2; ++number) {
        turn(number);
    }
    EXPECT_EQ(finished(), "{\"do\":\"turn\",\"times\":10}\n{\"do\":\"turn\",\"times\":2}\n");
}

TEST_F(RunWriterTest, RemarksStandBehindTheirEvent) {
    writer.remark("early");
    writer.event(Do::ClientConfigDel{"one"});
    writer.remark("late");
    EXPECT_EQ(finished(), "# early\n" + one + "# late\n");
}

}  // namespace
}  // namespace Scenario
