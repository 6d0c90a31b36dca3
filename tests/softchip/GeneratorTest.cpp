#include "softchip/Generator.h"

#include <gtest/gtest.h>

namespace SoftChip {
namespace {

TEST(Generator, IsOffAtFirst) {
    EXPECT_EQ(Generator().state(), GeneratorState::off);
}

TEST(Generator, IsSwitchedOffInEitherOrder) {
    Generator generator;
    generator.enable();
    generator.disablePort();
    EXPECT_EQ(generator.state(), GeneratorState::appOn);
    generator.disableApp();
    EXPECT_EQ(generator.state(), GeneratorState::off);
}

TEST(Generator, IsSwitchedOnAgainFromEveryState) {
    for (auto const disable : {&Generator::disableApp, &Generator::disablePort}) {
        Generator generator;
        generator.enable();
        (generator.*disable)();
        generator.enable();
        EXPECT_EQ(generator.state(), GeneratorState::on);
    }
}

TEST(Generator, StaysAsItIsWhenWhatIsOffIsDisabled) {
    Generator generator;
    generator.disableApp();
    generator.disablePort();
    EXPECT_EQ(generator.state(), GeneratorState::off);
    generator.enable();
    generator.disableApp();
    generator.disableApp();
    EXPECT_EQ(generator.state(), GeneratorState::portOn);
    generator.enable();
    generator.disablePort();
    generator.disablePort();
    EXPECT_EQ(generator.state(), GeneratorState::appOn);
}

TEST(Generator, CountsItsPackets) {
    Generator generator;
    generator.noteGenerated();
    generator.noteGenerated();
    EXPECT_EQ(generator.counter(), 2u);
}

TEST(Generator, ReadsTheSameWhileItsCounterStalls) {
    Generator generator;
    generator.noteGenerated();
    generator.stalledIs(true);
    generator.noteGenerated();
    generator.stalledIs(true);
    EXPECT_EQ(generator.counter(), 1u);
    generator.stalledIs(false);
    EXPECT_EQ(generator.counter(), 2u);
}

TEST(Generator, GoesOnFromTheValueThatItsCounterWasGiven) {
    Generator generator;
    generator.noteGenerated();
    generator.counterIs(100);
    generator.noteGenerated();
    EXPECT_EQ(generator.counter(), 101u);
    EXPECT_EQ(generator.generated(), 2u);
}

TEST(Generator, StallsAtTheValueThatItsCounterWasGiven) {
    Generator generator;
    generator.stalledIs(true);
    generator.counterIs(100);
    generator.noteGenerated();
    EXPECT_EQ(generator.counter(), 100u);
    generator.stalledIs(false);
    EXPECT_EQ(generator.counter(), 101u);
}

TEST(Generator, HasATextForEveryState) {
    EXPECT_STREQ(text(GeneratorState::off), "off");
    EXPECT_STREQ(text(GeneratorState::on), "on");
    EXPECT_STREQ(text(GeneratorState::portOn), "portOn");
    EXPECT_STREQ(text(GeneratorState::appOn), "appOn");
}

}  // namespace
}  // namespace SoftChip
