#include "Trace/Handle.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

#include "Trace/Captured.h"
#include "Trace/Trace.h"

namespace Trace {
namespace {

std::size_t linesAt(Handle& handle) {
    Captured captured;
    twinlog(handle, 0, "0");
    twinlog(handle, 4, "4");
    twinlog(handle, 9, "9");
    return captured.writes().size();
}

TEST(Handle, IsTheSameForTheSameName) {
    EXPECT_EQ(&handle("HandleTest.same"), &handle("HandleTest.same"));
    EXPECT_NE(&handle("HandleTest.same"), &handle("HandleTest.other"));
    EXPECT_EQ("HandleTest.same", handle("HandleTest.same").name());
}

TEST(Handle, IsTheSameForTwoThreadsThatAskAtOnce) {
    Handle* seen[2] = {};
    std::thread other([&] { seen[0] = &handle("HandleTest.twoThreads"); });
    seen[1] = &handle("HandleTest.twoThreads");
    other.join();
    EXPECT_EQ(seen[0], seen[1]);
}

TEST(Handle, HasNoTextLevelsAtFirst) {
    EXPECT_EQ(0u, linesAt(handle("HandleTest.fresh")));
}

TEST(Handle, EnablesASingleLevel) {
    auto& trace = handle("HandleTest.single");
    trace.textLevelIs(4, true);
    EXPECT_EQ(LevelSet::only(4), trace.textLevels());
    EXPECT_EQ(1u, linesAt(trace));
}

TEST(Handle, DisablesASingleLevel) {
    auto& trace = handle("HandleTest.disabled");
    trace.textLevelsIs(LevelSet::all());
    trace.textLevelIs(4, false);
    EXPECT_EQ(2u, linesAt(trace));
}

TEST(Handle, EnablesASet) {
    auto& trace = handle("HandleTest.set");
    trace.textLevelsIs(LevelSet::range(0, 4));
    EXPECT_EQ(2u, linesAt(trace));
}

TEST(Handle, EnablesAllAndNone) {
    auto& trace = handle("HandleTest.all");
    trace.textLevelsIs(LevelSet::all());
    EXPECT_EQ(3u, linesAt(trace));
    trace.textLevelsIs(LevelSet());
    EXPECT_EQ(0u, linesAt(trace));
}

TEST(Handle, KeepsItsLevelsApartFromOtherHandles) {
    handle("HandleTest.loud").textLevelsIs(LevelSet::all());
    EXPECT_EQ(0u, linesAt(handle("HandleTest.quiet")));
}

TEST(Handle, ObeysSettingsMadeBeforeIt) {
    EXPECT_EQ(std::nullopt, textSettingsAre("HandleTest.later/0-4"));
    EXPECT_EQ(LevelSet::range(0, 4), handle("HandleTest.later").textLevels());
}

TEST(Handle, ObeysSettingsMadeAfterIt) {
    auto& trace = handle("HandleTest.earlier");
    trace.textLevelIs(9, true);
    EXPECT_EQ(std::nullopt, textSettingsAre("HandleTest.earlier/1,HandleTest.earlier/2+3"));
    EXPECT_EQ(LevelSet::range(1, 3).with(LevelSet::only(9)), trace.textLevels());
}

TEST(Handle, IsMeantByAPrefix) {
    EXPECT_EQ(std::nullopt, textSettingsAre("HandleTest.prefix*/*"));
    EXPECT_EQ(LevelSet::all(), handle("HandleTest.prefixed").textLevels());
    EXPECT_EQ(LevelSet(), handle("HandleTest.pre").textLevels());
}

TEST(Handle, RefusesSettingsWithTheirPlaceAndTakesNone) {
    auto const error = textSettingsAre("HandleTest.bad/1,HandleTest.bad/x");
    ASSERT_TRUE(error);
    EXPECT_EQ(0u, error->find("column 18: \"HandleTest.bad/x\": expected NAME/LEVELS")) << *error;
    EXPECT_EQ(LevelSet(), handle("HandleTest.bad").textLevels());
}

// The threadsafe style runs the statement in a fresh process, which reads its environment anew.
class HandleDeathTest : public ::testing::Test {
  protected:
    HandleDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    ~HandleDeathTest() override { ::unsetenv("VYNPT_TRACE"); }
};

TEST_F(HandleDeathTest, ObeysTheEnvironment) {
    ::setenv("VYNPT_TRACE", "VynPtSm/0-4,VynPtPktGenSm/*", 1);
    EXPECT_EXIT(
        {
            twinlog(handle("VynPtSm"), 4, "four;");
            twinlog(handle("VynPtSm"), 7, "seven;");
            twinlog(handle("VynPtPktGenSm"), 9, "nine;");
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "VynPtSm 4 four;\n[^\n]*VynPtPktGenSm 9 nine;\n$");
}

TEST_F(HandleDeathTest, ReportsAnEnvironmentItCannotReadAndObeysTheRest) {
    ::setenv("VYNPT_TRACE", "VynPtSm,VynPtSm/4", 1);
    EXPECT_EXIT(
        {
            twinlog(handle("VynPtSm"), 4, "four;");
            std::exit(0);
        },
        ::testing::ExitedWithCode(0),
        "^VYNPT_TRACE: column 1: \"VynPtSm\": expected NAME/LEVELS[^\n]*\n[^\n]* four;\n$");
}

}  // namespace
}  // namespace Trace
