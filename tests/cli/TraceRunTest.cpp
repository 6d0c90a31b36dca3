#include "cli/TraceRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "cli/UsageError.h"
#include "switchfile/SwitchFile.h"

namespace Cli {
namespace {

using Agent::Outcome;
using namespace std::chrono_literals;

constexpr char const* switchFile = R"({
    "vlans": {"10": {}},
    "interfaces": {
        "Ethernet1": {"port": "0/0", "access": 10},
        "Ethernet2": {"port": "0/1", "access": 10},
        "Ethernet3": {"port": "0/2", "access": 10}
    },
    "fdb": {"10": {"02:00:00:00:00:02": "Ethernet2"}}
})";

Packet packetTo(std::uint8_t lastOctet, std::uint16_t etherType = 0x88b5) {
    std::vector<std::uint8_t> bytes(60);
    bytes[0] = bytes[6] = 0x02;
    bytes[5] = lastOctet;
    bytes[12] = static_cast<std::uint8_t>(etherType >> 8);
    bytes[13] = static_cast<std::uint8_t>(etherType);
    return packetOfFrame(bytes);
}

// So many packets for Ethernet2, the n-th of them as the test says, and then the end or a problem.
class ManyPackets final : public FrameSource {
  public:
    explicit ManyPackets(std::uint64_t count) : count_(count) {}

    std::optional<Packet> next() override {
        if (given_ == count_) {
            return problem.empty() ? std::nullopt : throw UsageError(problem);
        }
        ++given_;
        Packet packet = make ? make(given_) : packetTo(2);
        packet.number = given_;
        return packet;
    }
    bool ready() const override { return isReady; }

    std::function<Packet(std::uint64_t)> make;
    std::string problem;
    bool isReady = true;

  private:
    std::uint64_t const count_;
    std::uint64_t given_ = 0;
};

class TraceRunTest : public testing::Test {
  protected:
    TraceRun::Result run(
        FrameSource& source, std::function<bool()> const& stopped = [] { return false; }) {
        TraceRun run(
            agent_, source, options_,
            [this](FrameReport const& report) { reports_.push_back(report); },
            [this] { ++pauses_; });
        return run.run(stopped);
    }
    std::vector<std::uint64_t> numbers() const {
        std::vector<std::uint64_t> found;
        for (auto const& report : reports_) {
            found.push_back(report.packet.number);
        }
        return found;
    }

    SwitchFile::SwitchModel const model_ = SwitchFile::parseSwitchFile(switchFile, "test");
    Road road_;
    Agent::ForwardingAgent agent_{model_};
    TraceRunOptions options_{.ingress = *Plexa::IntfId::fromName("Ethernet1"), .timeout = 1h};
    std::vector<FrameReport> reports_;
    int pauses_ = 0;
};

TEST_F(TraceRunTest, ReportsEveryPacketInItsOrder) {
    ManyPackets source(TraceRun::window + 44);
    auto const result = run(source);
    EXPECT_EQ(result.frames, 300U);
    EXPECT_FALSE(result.unanswered);
    auto const found = numbers();
    EXPECT_EQ(found.size(), 300U);
    EXPECT_TRUE(std::ranges::is_sorted(found));
    EXPECT_TRUE(std::ranges::all_of(reports_, [](FrameReport const& report) {
        return report.answer.outcome == Outcome::forwarded;
    }));
}

TEST_F(TraceRunTest, AnswersThatComeEarlyWaitForTheirTurn) {
    ManyPackets source(40);
    source.make = [](std::uint64_t n) { return packetTo(2, n % 2 == 0 ? 0x8847 : 0x88b5); };
    run(source);
    EXPECT_TRUE(std::ranges::is_sorted(numbers()));
    EXPECT_EQ(reports_.at(1).answer.outcome, Outcome::refused);
    EXPECT_EQ(reports_.at(1).remark, "the chip cannot trace MPLS packets");
    EXPECT_EQ(reports_.at(2).answer.outcome, Outcome::forwarded);
}

TEST_F(TraceRunTest, PacketsBeforeBadInputAreReported) {
    ManyPackets source(3);
    source.problem = "capture: frame 4: torn";
    auto const result = run(source);
    EXPECT_EQ(result.badInput, "capture: frame 4: torn");
    EXPECT_EQ(numbers(), (std::vector<std::uint64_t>{1, 2, 3}));
}

TEST_F(TraceRunTest, AtMostAWindowOfRequestsIsUnderWay) {
    ManyPackets source(TraceRun::window + 10);
    std::size_t most = 0;
    source.make = [&](std::uint64_t) {
        auto const config = agent_.clientConfigs().entity<PacketTracer::ClientConfig>("vynpt");
        most = std::max(most, config->request().size());
        return packetTo(2);
    };
    run(source);
    EXPECT_EQ(most, TraceRun::window - 1) << "besides the one that is being made";
}

TEST_F(TraceRunTest, ARequestWithoutAnswerIsReportedAndTheOthersGoOn) {
    agent_.chip().faults().digestIs({.fate = SoftChip::DigestFate::lost, .nth = 2});
    options_.timeout = 1ms;
    ManyPackets source(3);
    auto const result = run(source);
    EXPECT_TRUE(result.unanswered);
    EXPECT_EQ(numbers(), (std::vector<std::uint64_t>{1, 2, 3}));
    EXPECT_EQ(reports_.at(1).answer.outcome, Outcome::noAnswer);
}

TEST_F(TraceRunTest, WhatIsNotAsExpectedIsReported) {
    options_.expectation = Expectation::parse("Ethernet2");
    ManyPackets source(2);
    EXPECT_FALSE(run(source).unexpected);
    ManyPackets other(2);
    other.make = [](std::uint64_t n) { return packetTo(n == 2 ? 9 : 2); };
    EXPECT_TRUE(run(other).unexpected);
    EXPECT_TRUE(reports_.at(2).difference->none());
    EXPECT_FALSE(reports_.at(3).difference->none());
}

TEST_F(TraceRunTest, ExplainedPacketsHaveTheirOwnRoadAndSteps) {
    ChipNames const names(model_);
    options_.road = &road_;
    options_.names = &names;
    ManyPackets source(3);
    run(source);
    ASSERT_EQ(reports_.size(), 3U);
    for (auto const& report : reports_) {
        auto const injections = std::ranges::count_if(report.road, [](Passage const& passage) {
            return passage.text.starts_with("sendPkt:clientName:");
        });
        EXPECT_EQ(injections, 1);
        ASSERT_FALSE(report.steps.empty());
        EXPECT_EQ(report.steps.back().detail, "Ethernet2");
    }
}

TEST_F(TraceRunTest, AStopWithdrawsEverything) {
    ManyPackets source(1000);
    bool stop = false;
    source.make = [&](std::uint64_t n) {
        stop = n == 100;
        return packetTo(2);
    };
    run(source, [&] { return stop; });
    EXPECT_LT(reports_.size(), 100U);
    EXPECT_EQ(agent_.tracer().pktGenCfg()->cfg().size(), 0U);
}

TEST_F(TraceRunTest, ASlowSourceDoesNotHoldAnswersUp) {
    ManyPackets source(2);
    source.isReady = false;
    source.make = [&](std::uint64_t n) {
        EXPECT_EQ(reports_.size(), n - 1);
        return packetTo(2);
    };
    run(source);
    EXPECT_EQ(reports_.size(), 2U);
}

TEST_F(TraceRunTest, PausesBeforeItWaits) {
    ManyPackets source(1);
    run(source);
    EXPECT_GT(pauses_, 0);
}

}  // namespace
}  // namespace Cli
