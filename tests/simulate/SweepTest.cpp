#include "simulate/Sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace Simulate {
namespace {

template <class T>
bool has(Program const& program) {
    return std::ranges::any_of(
        program.events, [](Event const& event) { return scenarioEvent<T>(event) != nullptr; });
}

// A failure that needs a start and the first withdrawal behind it, and nothing else.
Report runProgram(Program const& program) {
    Report report;
    report.failed = has<Do::Start>(program) && has<Do::RequestDel>(program);
    report.invariant = "events";
    return report;
}

TEST(Sweep, WhatAFailureDoesNotNeedIsLeftOut) {
    Program program = drawProgram(1, 150);
    program.events.push_back(Do::RequestDel{{"A", 1}});
    auto const left = shrunken(program, runProgram(program), 1000, runProgram);
    ASSERT_EQ(left.events.size(), 2U);
    EXPECT_NE(scenarioEvent<Do::Start>(left.events[0]), nullptr);
    EXPECT_NE(scenarioEvent<Do::RequestDel>(left.events[1]), nullptr);
}

TEST(Sweep, AnotherFailureIsNotTheSameOne) {
    Program program = drawProgram(1, 20);
    Report report = runProgram(program);
    report.invariant = "packets";
    EXPECT_EQ(shrunken(program, report, 1000, runProgram).events.size(), program.events.size());
}

TEST(Sweep, ShrinkingKeepsToItsBudget) {
    unsigned runs = 0;
    Program const program = drawProgram(1, 150);
    static_cast<void>(shrunken(program, runProgram(program), 7, [&](Program const& candidate) {
        ++runs;
        return runProgram(candidate);
    }));
    EXPECT_EQ(runs, 7U);
}

TEST(Sweep, TheLastLineHasTheFigures) {
    std::ostringstream out;
    EXPECT_EQ(sweep({.first = 1, .last = 3, .steps = 40}, out), 0U);
    EXPECT_EQ(out.str().substr(0, 19), "3 seeds, 0 failing:");
}

TEST(Sweep, HowManyRunAtTheSameTimeMakesNoDifference) {
    std::ostringstream one;
    std::ostringstream several;
    sweep({.first = 1, .last = 6, .steps = 40, .jobs = 1}, one);
    sweep({.first = 1, .last = 6, .steps = 40, .jobs = 4}, several);
    EXPECT_EQ(one.str(), several.str());
}

}  // namespace
}  // namespace Simulate
