#include "simulate/Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace Simulate {
namespace {

std::string textOf(Program const& program) {
    std::string all;
    for (auto const& event : program.events) {
        all += text(event) + "\n";
    }
    return all;
}

TEST(Program, ASeedStandsForOneProgram) {
    EXPECT_EQ(textOf(drawProgram(3, 100)), textOf(drawProgram(3, 100)));
}

TEST(Program, SeedsDiffer) {
    EXPECT_NE(textOf(drawProgram(3, 100)), textOf(drawProgram(4, 100)));
}

TEST(Program, StepsCountWhatComesAfterTheForwardingState) {
    auto const few = drawProgram(3, 10).events.size();
    auto const many = drawProgram(3, 110).events.size();
    EXPECT_GE(many, few + 90);
}

TEST(Program, EveryKindOfEventIsDrawn) {
    std::set<std::size_t> own;
    std::set<std::size_t> ofScenarios;
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        for (auto const& event : drawProgram(seed, 200).events) {
            own.insert(event.index());
            if (auto const* const known = std::get_if<Scenario::Event>(&event)) {
                ofScenarios.insert(known->index());
            }
        }
    }
    EXPECT_EQ(own.size(), std::variant_size_v<Event>);
    // All but a turn, which `Turns` becomes, and the six events of the scripted chip.
    EXPECT_EQ(ofScenarios.size(), std::variant_size_v<Scenario::Event> - 7);
}

TEST(Program, TheTracerIsStarted) {
    auto const program = drawProgram(5, 20);
    EXPECT_TRUE(std::ranges::any_of(program.events, [](Event const& event) {
        return scenarioEvent<Do::Start>(event) != nullptr;
    }));
}

}  // namespace
}  // namespace Simulate
