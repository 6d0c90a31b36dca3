#include "simulate/Transcript.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>

#include "replay/Replay.h"
#include "simulate/Child.h"
#include "simulate/DrawnSwitch.h"
#include "simulate/Run.h"

namespace Simulate {
namespace {

using SdkSeam::SdkFunction;

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
    auto& events = program.events = tellForwarding(program.drawn.model);
    events.push_back(Do::Start{.session = Model::session, .device = Model::device});
    for (unsigned client = 0; client < 2; ++client) {
        events.push_back(Do::ClientConfig{clientName(client)});
        events.push_back(Do::ClientStatus{clientName(client)});
        events.push_back(Do::Request{.id = requestId(client, 1),
                                     .intf = named(client == 0 ? "Ethernet1" : "Ethernet2"),
                                     .raw = Bytes(64, 2)});
    }
    events.push_back(Turns{9, true});
    events.push_back(CallFails{SdkFunction::disableAppId, {}, 5});
    events.push_back(Do::RequestSet{requestId(0, 1), Do::RequestAttribute::mpls, true});
    events.push_back(Do::RequestDel{requestId(1, 1)});
    events.push_back(Turns{3, true});
    return program;
}

// Runs a program that does not end the process, and has it written down.
Report writtenDown(Program const& program, Transcript& transcript,
                   std::function<void(World&, Event const&)> const& watch = {}) {
    Run run(program, [](Report const&) { std::abort(); });
    run.transcriptIs(transcript);
    run.interfereIs(watch);
    return run.go();
}

TEST(Transcript, AReplaySaysWhatTheRunSaid) {
    Program const program = plainProgram();
    Transcript transcript;
    std::vector<std::string> happened;
    auto const report = writtenDown(program, transcript, [&](World& world, Event const&) {
        for (auto const& line : world.logbook().log()) {
            if (line.starts_with("trace ")) {
                happened.push_back(line);
            }
        }
    });
    EXPECT_FALSE(report.failed) << report.detail;
    EXPECT_EQ(transcript.endedBy(), "");
    auto replayed = replayedTraces(transcript.text());
    // Within a turn the order of phase-0 answers and digests is another one.
    std::ranges::sort(replayed);
    std::ranges::sort(happened);
    EXPECT_EQ(replayed, happened);
}

TEST(Transcript, EveryLineIsOneThatTheReplayTakes) {
    for (std::uint64_t seed = 1; seed <= 25; ++seed) {
        Program const program = drawProgram(seed, 120);
        Transcript transcript;
        // A program that ends the process would end this one.
        if (!runInChild(program).end.empty()) {
            continue;
        }
        EXPECT_FALSE(writtenDown(program, transcript).failed);
        std::istringstream in(transcript.text());
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(Replay::run(in, out, err, {"scenario", false}), 0)
            << "seed " << seed << ": " << err.str();
    }
}

TEST(Transcript, ASmallSocketEndsIt) {
    Transcript transcript;
    Model const model;
    transcript.add(Room{10}, {}, model);
    EXPECT_NE(transcript.endedBy(), "");
    transcript.add(Do::Start(), {}, model);
    EXPECT_EQ(transcript.text(), "");
}

TEST(Transcript, CountersAndFailuresAreToldBeforehand) {
    Transcript transcript;
    Wire wire;
    wire.answers = {{0, 7, SdkFunction::getPktCounters, 2}, {3, 0, SdkFunction::getPktCounters, 2}};
    transcript.add(Do::Turn(), wire, Model());
    EXPECT_EQ(
        transcript.text(),
        "{\"do\":\"counter\",\"pipe\":2,\"values\":[7,0]}\n"
        "{\"do\":\"sdkReturn\",\"call\":\"getPktCounters\",\"rc\":3,\"times\":1,\"after\":1}\n"
        "{\"do\":\"turn\"}\n");
}

TEST(Transcript, TurnsBetweenWhichNothingIsToldAreOneLine) {
    Transcript transcript;
    Model const model;
    transcript.add(Do::Turn(), {}, model);
    transcript.add(ChipStep(), {}, model);
    transcript.add(Do::Turn(), {}, model);
    transcript.add(Do::CpuPort{named("Ethernet1")}, {}, model);
    transcript.add(Do::Turn(), {}, model);
    EXPECT_EQ(transcript.text(),
              "{\"do\":\"turn\",\"times\":2}\n"
              "{\"do\":\"cpuPort\",\"intf\":\"Ethernet1\"}\n"
              "{\"do\":\"turn\"}\n");
}

TEST(Transcript, ForgottenObjectsLeaveNoLine) {
    Transcript transcript;
    Model const model;  // whose directories are empty
    transcript.add(Do::Request{.id = requestId(0, 1)}, {}, model);
    transcript.add(Do::Result{requestId(0, 1)}, {}, model);
    EXPECT_EQ(transcript.text(), "");
    EXPECT_EQ(transcript.endedBy(), "");
    transcript.add(ConfigReturns{"A"}, {}, model);
    EXPECT_NE(transcript.endedBy(), "");
}

}  // namespace
}  // namespace Simulate
