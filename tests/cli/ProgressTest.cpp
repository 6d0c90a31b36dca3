#include "cli/Progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Cli {
namespace {

using namespace std::chrono_literals;

class ProgressTest : public testing::Test {
  protected:
    std::string drawn() {
        std::string const text = out_.str();
        out_.str("");
        return text;
    }

    Progress::Clock::time_point time_;
    std::ostringstream out_;
    Progress progress_{out_, time_};
};

TEST_F(ProgressTest, AShortWaitShowsNoBar) {
    progress_.update(100, 0.5, time_ + Progress::patience - 1ns);
    EXPECT_EQ(drawn(), "");
}

TEST_F(ProgressTest, ALongWaitShowsHowFarItIs) {
    progress_.update(100, 0.5, time_ + Progress::patience);
    EXPECT_EQ(drawn(), "\r\033[K[####################....................] 50%, 100 frames");
}

TEST_F(ProgressTest, WithoutAnEndItCounts) {
    progress_.update(100, std::nullopt, time_ + Progress::patience);
    EXPECT_EQ(drawn(), "\r\033[K100 frames");
}

TEST_F(ProgressTest, ItIsNotDrawnAllTheTime) {
    auto const first = time_ + Progress::patience;
    progress_.update(100, 0.5, first);
    drawn();
    progress_.update(101, 0.6, first + Progress::pause - 1ns);
    EXPECT_EQ(drawn(), "");
    progress_.update(102, 1.0, first + Progress::pause);
    EXPECT_NE(drawn(), "");
}

TEST_F(ProgressTest, ClearedItLeavesNothingBehind) {
    progress_.clear();
    EXPECT_EQ(drawn(), "");
    progress_.update(100, 0.5, time_ + Progress::patience);
    drawn();
    progress_.clear();
    EXPECT_EQ(drawn(), "\r\033[K");
    progress_.clear();
    EXPECT_EQ(drawn(), "");
}

}  // namespace
}  // namespace Cli
