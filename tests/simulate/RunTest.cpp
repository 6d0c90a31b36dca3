#include "simulate/Run.h"

#include <gtest/gtest.h>

#include "simulate/Child.h"
#include "simulate/DrawnSwitch.h"

namespace Simulate {
namespace {

Plexa::IntfId named(char const* name) {
    return *Plexa::IntfId::fromName(name);
}

// A client with one request, from the start to its answer.
Program oneTrace() {
    Program program = drawProgram(1, 0);
    program.events = tellForwarding(program.drawn.model);
    program.events.push_back(Do::Start{.session = Model::session, .device = Model::device});
    program.events.push_back(Do::ClientConfig{"A"});
    program.events.push_back(Do::ClientStatus{"A"});
    program.events.push_back(
        Do::Request{.id = {"A", 1}, .intf = named("Ethernet1"), .raw = Bytes(64, 1)});
    program.events.push_back(Turns{6, true});
    return program;
}

using Interference = std::function<void(World&, Event const&)>;

// What a run says when somebody interferes with it once, after a turn.
Report interfered(std::function<void(World&)> const& interfere) {
    Program const program = oneTrace();
    Run run(program, [](Report const&) { std::abort(); });
    bool done = false;
    run.interfereIs([&](World& world, Event const& event) {
        if (scenarioEvent<Do::Turn>(event) != nullptr && !std::exchange(done, true)) {
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
    program.events.push_back(Do::ClientConfig{"A"});
    auto const report = runInChild(program);
    EXPECT_FALSE(report.failed) << report.invariant << ": " << report.detail;
    EXPECT_EQ(report.end, "ReinstantiationError");
}

TEST(Run, EventsThatNobodyForetoldAreFound) {
    auto const report =
        interfered([](World& world) { world.logbook().note("sdk something else"); });
    EXPECT_TRUE(report.failed);
    EXPECT_EQ(report.invariant, "events");
}

TEST(Run, ANodeTooManyIsFound) {
    static Vanta::Ptr<Kel::Dir> kept;
    auto const report = interfered([](World&) { kept = Kel::Dir::DirIs(); });
    kept = nullptr;
    EXPECT_TRUE(report.failed);
    EXPECT_EQ(report.invariant, "nodes");
}

TEST(Run, ABreachThatWasNoticedIsReported) {
    auto const report = interfered([](World& world) {
        world.logbook().breachIs({"packets", "something"});
    });
    EXPECT_TRUE(report.failed);
    EXPECT_EQ(report.invariant, "packets");
    EXPECT_EQ(report.detail, "something");
    EXPECT_EQ(report.event, R"({"do":"turns","times":6,"chipWorks":true})");
}

TEST(Run, AWorldThatSuffersWhatIsNotInItsProgramIsFound) {
    auto const report = interfered([](World& world) {
        world.carryOut(Do::Result{{"A", 9}});
        static_cast<void>(world.logbook().takeLog());
    });
    EXPECT_TRUE(report.failed);
    EXPECT_EQ(report.invariant, "events");
}

}  // namespace
}  // namespace Simulate
