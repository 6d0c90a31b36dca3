#include "cli/Words.h"

#include <gtest/gtest.h>

#include <set>

#include "SomeReport.h"

namespace Cli {
namespace {

using Agent::Outcome;

std::string remark(FrameReport const& report) {
    return remarkWords(report.packet, report.ingress, report.answer, 0.5);
}

TEST(Words, NoTwoOutcomesReadAlike) {
    std::set<std::string> words;
    for (auto const outcome :
         {Outcome::refused, Outcome::unknownIngress, Outcome::dropped, Outcome::flooded,
          Outcome::forwarded, Outcome::noEgressPort, Outcome::noAnswer}) {
        words.insert(outcomeWords(someReport(outcome)));
    }
    EXPECT_EQ(words.size(), 7U);
}

TEST(Words, AFloodNamesItsVlan) {
    EXPECT_EQ(outcomeWords(someReport(Outcome::flooded)), "flooded in VLAN 10");
}

TEST(Words, RoutingAndACopyAreToldBeside) {
    auto report = someReport(Outcome::flooded);
    report.answer.injection->routed = true;
    report.answer.injection->copyToCpu = true;
    EXPECT_EQ(outcomeWords(report), "flooded in VLAN 10, routed, with a copy to the CPU");
    auto dropped = someReport(Outcome::dropped);
    dropped.answer.injection->copyToCpu = true;
    EXPECT_EQ(outcomeWords(dropped), "dropped, with a copy to the CPU");
}

TEST(Words, TheCpuIsAPlaceOfItsOwn) {
    auto report = someReport(Outcome::forwarded);
    report.answer.egress = {entryOf("Ethernet2")};
    EXPECT_EQ(outcomeWords(report), "forwarded");
    report.answer.egress = {entryOf("Cpu")};
    EXPECT_EQ(outcomeWords(report), "forwarded to the CPU");
}

TEST(Words, TheRemarkFollowsTheOutcome) {
    auto report = someReport(Outcome::refused);
    report.remark = "the chip cannot trace GRE packets";
    EXPECT_EQ(outcomeWords(report), "refused: the chip cannot trace GRE packets");
}

TEST(Words, TheRemarkTellsWhatTheOutcomeLeavesOpen) {
    EXPECT_EQ(remark(someReport(Outcome::forwarded)), "");
    EXPECT_EQ(remark(someReport(Outcome::dropped)), "");
    EXPECT_EQ(remark(someReport(Outcome::unknownIngress)),
              "the switch has no port information for Ethernet1");
    EXPECT_EQ(remark(someReport(Outcome::noEgressPort)), "the flood in VLAN 10 had nowhere to go");
    EXPECT_EQ(remark(someReport(Outcome::noAnswer)), "injected, nothing came in 0.5 s");
    auto unknownPort = someReport(Outcome::noEgressPort);
    unknownPort.answer.injection->egressPort = 300;
    EXPECT_EQ(remark(unknownPort), "port 300 is no interface of the switch");
    auto waiting = someReport(Outcome::noAnswer);
    waiting.answer.injection.reset();
    EXPECT_EQ(remark(waiting), "not injected, nothing came in 0.5 s");
}

TEST(Words, ADifferenceTellsBothSides) {
    auto const one = *Plexa::IntfId::fromName("Ethernet1");
    auto const two = *Plexa::IntfId::fromName("Ethernet2");
    EXPECT_EQ(differenceWords({}), "");
    EXPECT_EQ(differenceWords({.missing = {one, two}, .unexpected = {}}),
              "missing Ethernet1, Ethernet2");
    EXPECT_EQ(differenceWords({.missing = {one}, .unexpected = {two}}),
              "missing Ethernet1; unexpected Ethernet2");
}

}  // namespace
}  // namespace Cli
