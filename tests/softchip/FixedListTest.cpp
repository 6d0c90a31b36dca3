#include "softchip/FixedList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace SoftChip {
namespace {

TEST(FixedList, HoldsWhatWasAddedInOrder) {
    FixedList<int, 3> list;
    EXPECT_EQ(list.size(), 0U);
    list.add(7);
    list.add(5);
    EXPECT_TRUE(std::ranges::equal(list.items(), std::array{7, 5}));
}

TEST(FixedList, BeginsAnewWhenItIsCleared) {
    FixedList<int, 2> list;
    list.add(7);
    list.clear();
    list.add(5);
    EXPECT_TRUE(std::ranges::equal(list.items(), std::array{5}));
}

TEST(FixedList, ACopyOfAShorterOneIsAsShort) {
    FixedList<int, 3> list;
    list.add(1);
    list.add(2);
    FixedList<int, 3> other;
    other.add(9);
    list = other;
    EXPECT_TRUE(std::ranges::equal(list.items(), std::array{9}));
}

TEST(FixedListDeathTest, OneTooManyEndsTheProcess) {
    FixedList<int, 1> list;
    list.add(1);
    EXPECT_DEATH(list.add(2), "size_ < capacity");
}

}  // namespace
}  // namespace SoftChip
