#include "Vanta/Tap.h"

#include <gtest/gtest.h>

namespace {

TEST(Tap, ThereIsNoneToBeginWith) {
    auto const tap = Vanta::installedTap();
    EXPECT_EQ(tap.function, nullptr);
    EXPECT_EQ(tap.context, nullptr);
}

TEST(Tap, TheOneThatIsThereCanBePutBack) {
    int context = 0;
    Vanta::Tap const ignore = [](void*, Vanta::Publisher const&, Vanta::AttributeNumber,
                                 Vanta::ValueRef, Vanta::ValueRef) {};
    Vanta::tapIs(ignore, &context);
    auto const tap = Vanta::installedTap();
    Vanta::tapIs(nullptr, nullptr);
    EXPECT_EQ(tap.function, ignore);
    EXPECT_EQ(tap.context, &context);
    EXPECT_EQ(Vanta::installedTap().function, nullptr);
}

}  // namespace
