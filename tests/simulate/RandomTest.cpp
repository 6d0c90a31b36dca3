#include "simulate/Random.h"

#include <gtest/gtest.h>

namespace Simulate {
namespace {

TEST(Random, TheSameSeedGivesTheSameRow) {
    Random a(7);
    Random b(7);
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(a.next(), b.next());
    }
}

TEST(Random, SeedsDiffer) {
    EXPECT_NE(Random(7).next(), Random(8).next());
}

TEST(Random, ARangeHasBothItsEnds) {
    Random random(1);
    bool low = false;
    bool high = false;
    for (int i = 0; i < 200; ++i) {
        auto const number = random.between(3, 5);
        ASSERT_GE(number, 3U);
        ASSERT_LE(number, 5U);
        low |= number == 3;
        high |= number == 5;
    }
    EXPECT_TRUE(low && high);
}

TEST(Random, AChanceOfNoneAndOfAll) {
    Random random(1);
    for (int i = 0; i < 200; ++i) {
        ASSERT_FALSE(random.chance(0));
        ASSERT_TRUE(random.chance(100));
    }
}

}  // namespace
}  // namespace Simulate
