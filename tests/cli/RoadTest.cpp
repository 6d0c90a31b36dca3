#include "cli/Road.h"

#include <gtest/gtest.h>

#include "Trace/Trace.h"

namespace Cli {
namespace {

using namespace std::chrono_literals;

class RoadTest : public testing::Test {
  protected:
    Trace::Handle& trace_ = Trace::handle("RoadTest");
    Road::Clock::time_point time_;
    Road road_{[this] { return time_; }};
};

TEST_F(RoadTest, HearsEveryLevelWithTheTimeSinceTheStart) {
    time_ += 1h;
    road_.start();
    time_ += 5us;
    Trace::twinlog(trace_, 9, "one:%s", 1);
    time_ += 5us;
    Trace::twinlog(trace_, 1, "two:");
    auto const passages = road_.take();
    ASSERT_EQ(passages.size(), 2U);
    EXPECT_EQ(passages[0], (Passage{5us, "RoadTest", 9, "one:1"}));
    EXPECT_EQ(passages[1], (Passage{10us, "RoadTest", 1, "two:"}));
}

TEST_F(RoadTest, AStatementThatRepeatsItselfStandsOnceWithItsCount) {
    road_.start();
    for (int i = 0; i < 3; ++i) {
        Trace::twinlog(trace_, 9, "polled:");
        Trace::twinlog(trace_, 9, "again:");
        time_ += 1us;
    }
    auto const passages = road_.take();
    ASSERT_EQ(passages.size(), 2U);
    EXPECT_EQ(passages[0], (Passage{0us, "RoadTest", 9, "polled:", 3}));
}

TEST_F(RoadTest, AStartForgetsWhatWasHeard) {
    Trace::twinlog(trace_, 9, "one:");
    road_.start();
    EXPECT_TRUE(road_.take().empty());
}

TEST(Road, HearsNothingWhenItIsGone) {
    Trace::Handle const& trace = Trace::handle("RoadTest");
    { Road const road; }
    EXPECT_FALSE(trace.isRead(7));
}

}  // namespace
}  // namespace Cli
