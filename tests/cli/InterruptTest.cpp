#include "cli/Interrupt.h"

#include <gtest/gtest.h>

#include <csignal>

namespace Cli {
namespace {

TEST(Interrupt, ASignalWakesTheLoopAndIsRemembered) {
    auto const loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    Interrupt const interrupt(loop);
    EXPECT_EQ(Interrupt::signal(), 0);
    ::raise(SIGINT);
    EXPECT_EQ(Interrupt::signal(), SIGINT);
    EXPECT_TRUE(loop->turn(Orb::TaskSchedulerRoot::forever));
}

TEST(Interrupt, ANewOneHasForgottenTheSignalOfTheLast) {
    auto const loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    {
        Interrupt const interrupt(loop);
        ::raise(SIGTERM);
        EXPECT_EQ(Interrupt::signal(), SIGTERM);
    }
    Interrupt const interrupt(loop);
    EXPECT_EQ(Interrupt::signal(), 0);
}

TEST(InterruptDeathTest, ASecondSignalEndsTheProcess) {
    auto const twice = [] {
        auto const loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
        Interrupt const interrupt(loop);
        ::raise(SIGINT);
        ::raise(SIGINT);
    };
    EXPECT_EXIT(twice(), testing::KilledBySignal(SIGINT), "");
}

TEST(InterruptDeathTest, TheSignalCanBeRaisedAgainForTheShellToSee) {
    auto const interrupted = [] {
        {
            auto const loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
            Interrupt const interrupt(loop);
            ::raise(SIGTERM);
        }
        Interrupt::raiseAgain();
    };
    EXPECT_EXIT(interrupted(), testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
}  // namespace Cli
