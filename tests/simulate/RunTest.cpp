#include "simulate/Run.h"

#include <gtest/gtest.h>

#include "simulate/Child.h"

namespace Simulate {
namespace {

Plexa::IntfId named(char const* name) {
    return *Plexa::IntfId::fromName(name);
}

// A client with one request, from the start to its answer.
Program oneTrace() {
    Program program = drawProgram(1, 0);
    std::erase_if(program.events, [](Event const& event) { return event.kind >= Kind::start; });
    program.events.push_back({.kind = Kind::start, .flag = true});
    program.events.push_back({.kind = Kind::clientConfig});
    program.events.push_back({.kind = Kind::clientStatus});
    program.events.push_back({.kind = Kind::request,
                              .req = 1,
                              .intf = named("Ethernet1"),
                              .a = 0x800,
                              .flag = true,
                              .raw = Bytes(64, 1)});
    program.events.push_back({.kind = Kind::turn, .a = 6, .flag = true});
    return program;
}

using Interference = std::function<void(World&, Event const&)>;

// What a run says when somebody interferes with it once, after an event of that kind.
Report interfered(Kind kind, std::function<void(World&)> const& interfere) {
    Program const program = oneTrace();
    Run run(program, [](Report const&) { std::abort(); });
    bool done = false;
    run.interfereIs([&](World& world, Event const& event) {
        if (event.kind == kind && !std::exchange(done, true)) {
            interfere(world);
        }
    });
    return run.go();
}

TEST(Run, ATraceIsForetold) {
    auto const report = runInChild(oneTrace());
    EXPECT_FALSE(report.failed) << report.invariant << ": " << report.detail;
    EXPECT_GE(report.injections, 1U);
    EXPECT_GE(report.messages, 1U);
}

TEST(Run, TheSameProgramRunsTheSameWay) {
    auto const program = drawProgram(11, 150);
    auto const first = runInChild(program);
    auto const second = runInChild(program);
    EXPECT_EQ(first.step, second.step);
    EXPECT_EQ(first.injections, second.injections);
    EXPECT_EQ(first.messages, second.messages);
}

TEST(Run, AnEndOfTheProcessIsForetold) {
    auto program = oneTrace();
    program.events.push_back({.kind = Kind::clientConfig});
    auto const report = runInChild(program);
    EXPECT_FALSE(report.failed) << report.invariant << ": " << report.detail;
    EXPECT_EQ(report.end, "ReinstantiationError");
}

TEST(Run, EventsThatNobodyForetoldAreFound) {
    auto const report =
        interfered(Kind::turn, [](World& world) { world.recorder().note("sdk something else"); });
    EXPECT_TRUE(report.failed);
    EXPECT_EQ(report.invariant, "events");
}

TEST(Run, ANodeTooManyIsFound) {
    static Vanta::Ptr<Kel::Dir> kept;
    auto const report = interfered(Kind::turn, [](World&) { kept = Kel::Dir::DirIs(); });
    kept = nullptr;
    EXPECT_TRUE(report.failed);
    EXPECT_EQ(report.invariant, "nodes");
}

TEST(Run, ABreachThatWasNoticedIsReported) {
    auto const report = interfered(Kind::turn, [](World& world) {
        world.recorder().breachIs({"packets", "something"});
    });
    EXPECT_TRUE(report.failed);
    EXPECT_EQ(report.invariant, "packets");
    EXPECT_EQ(report.detail, "something");
    EXPECT_EQ(report.event.substr(0, 4), "turn");
}

TEST(Run, AWorldThatSuffersWhatIsNotInItsProgramIsFound) {
    auto const report = interfered(Kind::turn, [](World& world) {
        world.carryOut({.kind = Kind::result, .req = 9});
        static_cast<void>(world.recorder().takeLog());
    });
    EXPECT_TRUE(report.failed);
    EXPECT_EQ(report.invariant, "events");
}

}  // namespace
}  // namespace Simulate
