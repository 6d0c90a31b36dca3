#include "Vanta/Assert.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

void report(void*, std::string_view errorClass, std::string_view text) {
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
    Vanta::LastStep const step(report);
    EXPECT_EXIT(Vanta::assertThat(false, "index"), testing::ExitedWithCode(9), "<assert.index>");
}

TEST(AssertDeathTest, NamesTheClassOfAnExceptionWithoutItsNamespace) {
    Vanta::LastStep const step(report);
    auto const dispatcher = [] {
        try {
            throw std::out_of_range("far");
        } catch (...) {
            Vanta::endProcessWithCurrentException();
        }
    };
    EXPECT_EXIT(dispatcher(), testing::ExitedWithCode(9), "<out_of_range.far>");
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

// A step that only says that it ran.
void say(void* what, std::string_view, std::string_view) {
    std::fprintf(stderr, "%s ", static_cast<char const*>(what));
}
char first[] = "first";
char second[] = "second";
char third[] = "third";

TEST(AssertDeathTest, WithoutALastStepWritesALineAndAborts) {
    EXPECT_EXIT(Vanta::endProcess("Error", "no way on"), testing::KilledBySignal(SIGABRT),
                "^uncaught Error: no way on\n$");
}

TEST(AssertDeathTest, WritesItsLineAndAbortsWhenTheLastStepReturns) {
    Vanta::LastStep const step(say, first);
    EXPECT_EXIT(Vanta::endProcess("Error", "x"), testing::KilledBySignal(SIGABRT),
                "^first uncaught Error: x\n$");
}

TEST(AssertDeathTest, RunsTheNewestLastStepFirstAndThenTheOlderOnes) {
    Vanta::LastStep const older(say, first);
    Vanta::LastStep const newer(say, second);
    EXPECT_EXIT(Vanta::endProcess("Error", "x"), testing::KilledBySignal(SIGABRT),
                "^second first uncaught Error: x\n$");
}

TEST(AssertDeathTest, RunsNoLastStepThatHasGoneInWhateverOrderTheyGo) {
    auto oldest = std::make_unique<Vanta::LastStep>(say, first);
    auto middle = std::make_unique<Vanta::LastStep>(say, second);
    auto newest = std::make_unique<Vanta::LastStep>(say, third);
    middle.reset();
    EXPECT_EXIT(Vanta::endProcess("Error", "x"), testing::KilledBySignal(SIGABRT),
                "^third first uncaught");
    newest.reset();
    EXPECT_EXIT(Vanta::endProcess("Error", "x"), testing::KilledBySignal(SIGABRT),
                "^first uncaught");
    oldest.reset();
    EXPECT_EXIT(Vanta::endProcess("Error", "x"), testing::KilledBySignal(SIGABRT), "^uncaught");
}

}  // namespace
