#include "cli/HumanReport.h"

#include <gtest/gtest.h>

#include "SomeReport.h"

namespace Cli {
namespace {

using Agent::Outcome;
using namespace std::chrono_literals;

constexpr char const* frameLine =
    "Frame 1, 60 bytes: 02:00:00:00:00:00 to 02:00:00:00:00:00, EtherType 0x88b5\n";

TEST(HumanReport, IsTheFrameTheOutcomeAndTheEntriesAligned) {
    auto report = someReport(Outcome::flooded);
    report.answer.egress = {entryOf("Ethernet2"), entryOf("", "Lag1"),
                            entryOf("Ethernet51/1", "Ethernet51/1.30")};
    EXPECT_EQ(humanText(report, false), std::string(frameLine) +
                                            "  flooded in VLAN 10\n"
                                            "    physical      logical\n"
                                            "    Ethernet2     -\n"
                                            "    -             Lag1\n"
                                            "    Ethernet51/1  Ethernet51/1.30\n");
}

TEST(HumanReport, WithoutEntriesThereIsNoTable) {
    EXPECT_EQ(humanText(someReport(Outcome::dropped), false),
              std::string(frameLine) + "  dropped\n");
}

TEST(HumanReport, DefaultsAreListed) {
    auto report = someReport(Outcome::dropped);
    report.packet.defaults = {{"ttl", "64"}, {"proto", "udp"}};
    EXPECT_EQ(humanText(report, false),
              std::string(frameLine) + "  by default: ttl 64, proto udp\n  dropped\n");
}

TEST(HumanReport, WhatIsNotAsExpectedIsTold) {
    auto report = someReport(Outcome::dropped);
    report.difference.emplace();
    EXPECT_EQ(humanText(report, false), std::string(frameLine) + "  dropped\n");
    report.difference->missing = {*Plexa::IntfId::fromName("Ethernet3")};
    EXPECT_EQ(humanText(report, false),
              std::string(frameLine) + "  dropped\n  not as expected: missing Ethernet3\n");
}

TEST(HumanReport, AnExplanationShowsStepsAndRoad) {
    auto report = someReport(Outcome::dropped);
    report.explained = true;
    report.steps = {{SoftChip::Step::portUp, SoftChip::Reason::portIsUp, "Ethernet1"},
                    {SoftChip::Step::lagMember, SoftChip::Reason::notLag, ""}};
    report.road = {{1500ns, "VynPtSm", 7, "handleClient:client vynpt"},
                   {12ms, "VynPtPktGenSm", 7, "doWork:", 3}};
    EXPECT_EQ(humanText(report, false),
              std::string(frameLine) +
                  "  dropped\n"
                  "  the chip's steps\n"
                  "     2  port up               the ingress port is up (Ethernet1)\n"
                  "    12  LAG member            not a LAG\n"
                  "  the request's road\n"
                  "          1.5 us  VynPtSm        handleClient:client vynpt\n"
                  "      12000.0 us  VynPtPktGenSm  doWork: (3 times)\n");
}

TEST(HumanReport, ColoursChangeNothingElse) {
    auto report = someReport(Outcome::forwarded);
    report.answer.egress = {entryOf("Ethernet2")};
    std::string coloured = humanText(report, true);
    EXPECT_NE(coloured.find("\033[32mforwarded\033[0m"), std::string::npos);
    for (auto at = coloured.find('\033'); at != std::string::npos; at = coloured.find('\033')) {
        coloured.erase(at, coloured.find('m', at) - at + 1);
    }
    EXPECT_EQ(coloured, humanText(report, false));
}

}  // namespace
}  // namespace Cli
