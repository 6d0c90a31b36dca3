#include "cli/JsonReport.h"

#include <gtest/gtest.h>

#include "SomeReport.h"

namespace Cli {
namespace {

using Agent::Outcome;
using namespace std::chrono_literals;

constexpr char const* begin =
    R"({"frame":1,"in":"Ethernet1","length":60,)"
    R"("packet":"02:00:00:00:00:00 to 02:00:00:00:00:00, EtherType 0x88b5",)";

TEST(JsonReport, HasTheOutcomeTheBareStateAndTheEntries) {
    auto report = someReport(Outcome::forwarded);
    report.answer.egress = {entryOf("Ethernet45", "Lag1"), entryOf("Ethernet45")};
    EXPECT_EQ(jsonText(report),
              std::string(begin) +
                  R"("outcome":"forwarded","state":4,"injected":true,"egress":[)"
                  R"({"physical":"Ethernet45","logical":"Lag1"},)"
                  R"({"physical":"Ethernet45","logical":""}],)"
                  R"("digest":{"egressPort":7,"l2Domain":10,"routed":false,"copyToCpu":false,)"
                  R"("dropped":false}})"
                  "\n");
}

TEST(JsonReport, WithoutASinglePortThereIsNoEgressPort) {
    EXPECT_NE(jsonText(someReport(Outcome::flooded)).find(R"("egressPort":null)"),
              std::string::npos);
}

TEST(JsonReport, WithoutInjectionThereIsNoDigest) {
    auto report = someReport(Outcome::refused);
    report.remark = "why";
    EXPECT_EQ(jsonText(report), std::string(begin) +
                                    R"("outcome":"refused","state":2,"injected":false,)"
                                    R"("egress":[],"digest":null,"remark":"why"})"
                                    "\n");
}

TEST(JsonReport, WithoutAnAnswerThereIsNoState) {
    EXPECT_EQ(jsonText(someReport(Outcome::noAnswer)),
              std::string(begin) +
                  R"("outcome":"no answer","state":null,"injected":true,"egress":[],)"
                  R"("digest":null})"
                  "\n");
}

TEST(JsonReport, APacketByFieldsListsItsDefaults) {
    auto report = someReport(Outcome::refused);
    report.packet.fields.emplace();
    report.packet.defaults = {{"ttl", "64"}};
    EXPECT_NE(jsonText(report).find(R"("defaults":{"ttl":"64"})"), std::string::npos);
}

TEST(JsonReport, AnExpectationTellsWhatDiffers) {
    auto report = someReport(Outcome::dropped);
    report.difference = Difference{.missing = {*Plexa::IntfId::fromName("Cpu")}, .unexpected = {}};
    EXPECT_NE(
        jsonText(report).find(R"("expectation":{"met":false,"missing":["Cpu"],"unexpected":[]})"),
        std::string::npos);
}

TEST(JsonReport, AnExplanationHasStepsAndRoad) {
    auto report = someReport(Outcome::dropped);
    report.explained = true;
    report.steps = {{SoftChip::Step::portUp, SoftChip::Reason::portIsUp, "Ethernet1"}};
    report.road = {{1500ns, "VynPtSm", 7, "handleClient:client vynpt"}};
    EXPECT_NE(jsonText(report).find(
                  R"("steps":[{"step":2,"name":"port up","reason":"the ingress port is up",)"
                  R"("detail":"Ethernet1"}],"road":[{"ns":1500,"handle":"VynPtSm","level":7,)"
                  R"("text":"handleClient:client vynpt","times":1}]})"),
              std::string::npos);
}

}  // namespace
}  // namespace Cli
