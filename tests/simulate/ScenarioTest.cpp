#include "simulate/Scenario.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>

#include "replay/Replay.h"
#include "simulate/Child.h"
#include "simulate/Run.h"

namespace Simulate {
namespace {

Plexa::IntfId named(char const* name) {
    return *Plexa::IntfId::fromName(name);
}

// What the replay of a scenario prints of one kind: texts of traces.
std::vector<std::string> replayedTraces(std::string const& scenario) {
    std::istringstream in(scenario);
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(Replay::run(in, out, err, {"scenario", false}), 0) << err.str();
    std::vector<std::string> traces;
    std::istringstream lines(out.str());
    for (std::string line; std::getline(lines, line);) {
        auto const object = nlohmann::json::parse(line);
        if (object.contains("trace")) {
            traces.push_back(joined("trace ", object["trace"].get<std::string>(), " ",
                                    object["level"].get<unsigned>(), " ",
                                    object["text"].get<std::string>()));
        }
    }
    return traces;
}

// A program without faults: two clients, answers, a withdrawal, a stop.
Program plainProgram() {
    Program program = drawProgram(1, 0);
    std::erase_if(program.events, [](Event const& event) { return event.kind >= Kind::start; });
    auto& events = program.events;
    events.push_back({.kind = Kind::start, .flag = true});
    for (unsigned client = 0; client < 2; ++client) {
        events.push_back({.kind = Kind::clientConfig, .client = client});
        events.push_back({.kind = Kind::clientStatus, .client = client});
        events.push_back({.kind = Kind::request,
                          .client = client,
                          .req = 1,
                          .intf = named(client == 0 ? "Ethernet1" : "Ethernet2"),
                          .a = 0x800,
                          .flag = true,
                          .raw = Bytes(64, 2)});
    }
    events.push_back({.kind = Kind::turn, .a = 9, .flag = true});
    events.push_back({.kind = Kind::callFails, .a = 2, .b = 1, .c = 1, .value = 5});
    events.push_back({.kind = Kind::requestSet, .req = 1, .a = RequestAttribute::mpls, .b = 1});
    events.push_back({.kind = Kind::requestDel, .client = 1, .req = 1});
    events.push_back({.kind = Kind::turn, .a = 3, .flag = true});
    return program;
}

// Runs a program that does not end the process, and has it written down.
Report writtenDown(Program const& program, Scenario& scenario,
                   std::function<void(World&, Event const&)> const& watch = {}) {
    Run run(program, [](Report const&) { std::abort(); });
    run.scenarioIs(scenario);
    run.interfereIs(watch);
    return run.go();
}

TEST(Scenario, AReplaySaysWhatTheRunSaid) {
    Program const program = plainProgram();
    Scenario scenario;
    std::vector<std::string> happened;
    auto const report = writtenDown(program, scenario, [&](World& world, Event const&) {
        for (auto const& line : world.recorder().log()) {
            if (line.starts_with("trace ")) {
                happened.push_back(line);
            }
        }
    });
    EXPECT_FALSE(report.failed) << report.detail;
    EXPECT_EQ(scenario.endedBy(), "");
    auto replayed = replayedTraces(scenario.text());
    // Within a turn the order of phase-0 answers and digests is another one.
    std::ranges::sort(replayed);
    std::ranges::sort(happened);
    EXPECT_EQ(replayed, happened);
}

TEST(Scenario, EveryLineIsOneThatTheReplayTakes) {
    for (std::uint64_t seed = 1; seed <= 25; ++seed) {
        Program const program = drawProgram(seed, 120);
        Scenario scenario;
        // A program that ends the process would end this one.
        if (!runInChild(program).end.empty()) {
            continue;
        }
        EXPECT_FALSE(writtenDown(program, scenario).failed);
        std::istringstream in(scenario.text());
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(Replay::run(in, out, err, {"scenario", false}), 0)
            << "seed " << seed << ": " << err.str();
    }
}

TEST(Scenario, ASmallSocketEndsIt) {
    Scenario scenario;
    Model const model;
    scenario.add({.kind = Kind::room, .a = 10}, {}, {}, model);
    EXPECT_NE(scenario.endedBy(), "");
    scenario.add({.kind = Kind::start, .flag = true}, {}, {}, model);
    EXPECT_EQ(scenario.text(), "");
}

TEST(Scenario, CountersAndFailuresAreToldBeforehand) {
    Scenario scenario;
    scenario.add({.kind = Kind::turn, .a = 1},
                 {"sdk getPktCounters session 1 pipe 2 app 4 -> 0 count 7",
                  "sdk getPktCounters session 1 pipe 2 app 4 -> 3 count 0"},
                 {}, Model());
    EXPECT_EQ(
        scenario.text(),
        "{\"do\":\"counter\",\"pipe\":2,\"values\":[7,0]}\n"
        "{\"do\":\"sdkReturn\",\"call\":\"getPktCounters\",\"rc\":3,\"times\":1,\"after\":1}\n"
        "{\"do\":\"turn\"}\n");
}

}  // namespace
}  // namespace Simulate
