#include "scenario/ChipAnswers.h"

#include <gtest/gtest.h>

namespace Scenario {
namespace {

using SdkSeam::SdkFunction;

TEST(ChipAnswers, GiveEveryValueOfACounter) {
    ChipAnswers answers;
    answers.counterRead(2, 7);
    answers.counterRead(0, 1);
    answers.counterRead(2, 0);
    auto const counters = answers.counters();
    ASSERT_EQ(counters.size(), 2U);
    EXPECT_EQ(counters[0].pipe, 0);
    EXPECT_EQ(counters[1].pipe, 2);
    EXPECT_EQ(counters[1].values, (std::vector<std::uint64_t>{7, 0}));
}

TEST(ChipAnswers, TellNothingOfCallsThatSucceed) {
    ChipAnswers answers;
    answers.called(SdkFunction::genOnePkt, 0);
    EXPECT_TRUE(answers.failures().empty());
}

TEST(ChipAnswers, TellOfTheFirstRowOfFailuresOfEachFunction) {
    ChipAnswers answers;
    answers.called(SdkFunction::disableAppId, 0);
    answers.called(SdkFunction::genOnePkt, 3);
    answers.called(SdkFunction::disableAppId, 5);
    answers.called(SdkFunction::disableAppId, 5);
    answers.called(SdkFunction::disableAppId, 0);
    auto const failures = answers.failures();
    ASSERT_EQ(failures.size(), 2U);
    EXPECT_EQ(failures[0].told.call, SdkFunction::disableAppId);
    EXPECT_EQ(failures[0].told.rc, 5);
    EXPECT_EQ(failures[0].told.times, 2U);
    EXPECT_EQ(failures[0].told.after, 1U);
    EXPECT_TRUE(failures[0].isAll);
    EXPECT_EQ(failures[1].told.call, SdkFunction::genOnePkt);
}

TEST(ChipAnswers, KnowWhenALaterCallFailedInAnotherWay) {
    ChipAnswers answers;
    answers.called(SdkFunction::genOnePkt, 5);
    answers.called(SdkFunction::genOnePkt, 6);
    auto const failures = answers.failures();
    ASSERT_EQ(failures.size(), 1U);
    EXPECT_EQ(failures[0].told.rc, 5);
    EXPECT_FALSE(failures[0].isAll);
}

}  // namespace
}  // namespace Scenario
