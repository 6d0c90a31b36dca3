#include "Vanta/Assert.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace {

void report(std::string_view errorClass, std::string_view text) {
    std::fprintf(stderr, "<%.*s|%.*s>", static_cast<int>(errorClass.size()), errorClass.data(),
                 static_cast<int>(text.size()), text.data());
    std::_Exit(9);
}

TEST(AssertDeathTest, WritesTheFailedExpressionToStandardError) {
    EXPECT_DEATH(Vanta::assertThat(false, "rval == 0"), "^assertion failed: rval == 0\n$");
}

TEST(AssertDeathTest, PassesWhatHolds) {
    Vanta::assertThat(true, "true");
    SUCCEED();
}

TEST(AssertDeathTest, GivesClassAndTextToTheLastStep) {
    Vanta::lastStepIs(report);
    EXPECT_EXIT(Vanta::assertThat(false, "index"), testing::ExitedWithCode(9), "<assert.index>");
    Vanta::lastStepIs(nullptr);
}

TEST(AssertDeathTest, NamesTheClassOfAnExceptionWithoutItsNamespace) {
    Vanta::lastStepIs(report);
    auto const dispatcher = [] {
        try {
            throw std::out_of_range("far");
        } catch (...) {
            Vanta::endProcessWithCurrentException();
        }
    };
    EXPECT_EXIT(dispatcher(), testing::ExitedWithCode(9), "<out_of_range.far>");
    Vanta::lastStepIs(nullptr);
}

TEST(AssertDeathTest, NamesWhatIsNoStandardExceptionAsUnknown) {
    auto const dispatcher = [] {
        try {
            throw 7;
        } catch (...) {
            Vanta::endProcessWithCurrentException();
        }
    };
    EXPECT_DEATH(dispatcher(), "^uncaught unknown: an exception that is no std::exception\n$");
}

TEST(AssertDeathTest, CutsALongTextShortAndEndsTheLine) {
    std::string const all512 = "uncaught Error: " + std::string(495, 'x') + "\n";
    EXPECT_DEATH(Vanta::endProcess("Error", std::string(2000, 'x')), "^" + all512 + "$");
}

TEST(AssertDeathTest, HandsOutTheDefaultLastStepWhichWritesALineAndAborts) {
    Vanta::LastStep const byDefault = Vanta::lastStepIs(report);
    EXPECT_EQ(Vanta::lastStepIs(nullptr), report);
    EXPECT_EXIT(byDefault("Error", "no way on"), testing::KilledBySignal(SIGABRT),
                "^uncaught Error: no way on\n$");
}

TEST(AssertDeathTest, AbortsWhenTheLastStepReturns) {
    Vanta::lastStepIs([](std::string_view, std::string_view) {});
    EXPECT_EXIT(Vanta::assertThat(false, "x"), testing::KilledBySignal(SIGABRT), "");
    Vanta::lastStepIs(nullptr);
}

}  // namespace
