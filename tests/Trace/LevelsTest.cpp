#include "Trace/Levels.h"

#include <gtest/gtest.h>

namespace Trace {
namespace {

TEST(Levels, ReadASingleLevel) {
    EXPECT_EQ(LevelSet::only(3), LevelSet::parse("3"));
}

TEST(Levels, ReadARange) {
    EXPECT_EQ(LevelSet::range(0, 4), LevelSet::parse("0-4"));
}

TEST(Levels, ReadSeveralPartsTogether) {
    EXPECT_EQ(LevelSet::range(0, 4).with(LevelSet::only(7)), LevelSet::parse("0-4+7"));
}

TEST(Levels, ReadAStarAsAllLevels) {
    EXPECT_EQ(LevelSet::all(), LevelSet::parse("*"));
}

TEST(Levels, RefuseAnythingElse) {
    for (auto const text :
         {"", "a", "10", "4-0", "1-", "-1", "1+", "+1", "1++2", "1,2", "**", "1+*"}) {
        EXPECT_EQ(std::nullopt, LevelSet::parse(text)) << text;
    }
}

TEST(Levels, HaveNoLevelBeyondTheHighest) {
    EXPECT_TRUE(LevelSet::all().has(9));
    EXPECT_FALSE(LevelSet::all().has(10));
    EXPECT_FALSE(LevelSet::all().has(4096));
    EXPECT_EQ(LevelSet(), LevelSet::range(10, 12));
}

TEST(Levels, CanBeTakenOut) {
    EXPECT_EQ(LevelSet::range(0, 8), LevelSet::all().without(LevelSet::only(9)));
}

}  // namespace
}  // namespace Trace
