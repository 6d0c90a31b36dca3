#include "scenario/ForwardingState.h"

#include <gtest/gtest.h>

#include "scenario/Writer.h"

namespace Scenario {
namespace {

using Lines = std::vector<std::string>;

Plexa::IntfId intf(char const* name) {
    return Plexa::IntfId::fromName(name).value();
}

void portIs(ForwardingState const& state, char const* name, std::uint8_t pipe, std::uint16_t port) {
    state.systemStatus->portInfoIs(intf(name), {pipe, VynPortTypes::PortIndex(port)});
}

Lines linesOf(std::vector<Event> const& events) {
    Lines lines;
    for (Event const& event : events) {
        lines.push_back(line(event));
    }
    return lines;
}

TEST(ToldState, BeginsWithEverything) {
    ForwardingState const state;
    portIs(state, "Ethernet1", 1, 2);
    portIs(state, "Ethernet2", 0, 5);
    portIs(state, "Ethernet3", 0, 6);
    state.systemStatus->portToIntfIdIs(VynPortTypes::PortIndex(130), intf("Ethernet1"));
    state.systemStatus->portToIntfIdIs(VynPortTypes::PortIndex(5), intf("Ethernet2"));
    state.fcsd->lagToPortIs(intf("Lag1"));
    state.fcsd->portToLagIs(intf("Ethernet3"), intf("Lag1"));
    auto const vlan = state.bridgingConfig->vlanConfigIs(Bridging::VlanId(10));
    vlan->intfIs(intf("Ethernet1"));
    vlan->intfIs(intf("Lag1"));
    state.chipStatus->cpuIntfIs(intf("Ethernet2"));
    EXPECT_EQ(linesOf(ToldState().becomes(state)),
              (Lines{R"({"do":"port","intf":"Ethernet1","pipe":1,"port":2})",
                     R"({"do":"port","intf":"Ethernet2","pipe":0,"port":5})",
                     R"({"do":"port","intf":"Ethernet3","pipe":0,"port":6})",
                     R"({"do":"portToIntfId","port":130,"intf":"Ethernet1"})",
                     R"({"do":"portToIntfId","port":5,"intf":"Ethernet2"})",
                     R"({"do":"lagToPort","lag":"Lag1"})",
                     R"({"do":"portToLag","intf":"Ethernet3","lag":"Lag1"})",
                     R"({"do":"vlan","id":10,"intf":["Ethernet1","Lag1"],"internal":false})",
                     R"({"do":"cpuPort","intf":"Ethernet2"})"}));
}

TEST(ToldState, GoesOnWithWhatChanged) {
    ForwardingState const state;
    ToldState told;
    portIs(state, "Ethernet1", 1, 2);
    portIs(state, "Ethernet2", 1, 3);
    state.bridgingConfig->vlanConfigIs(Bridging::VlanId(10))->intfIs(intf("Ethernet1"));
    EXPECT_EQ(told.becomes(state).size(), 3U);
    EXPECT_EQ(linesOf(told.becomes(state)), Lines{});
    portIs(state, "Ethernet1", 0, 2);
    state.systemStatus->portInfoDel(intf("Ethernet2"));
    state.bridgingConfig->vlanConfigIs(Bridging::VlanId(10))->internalIs(true);
    EXPECT_EQ(linesOf(told.becomes(state)),
              (Lines{R"({"do":"port","intf":"Ethernet1","pipe":0,"port":2})",
                     R"({"do":"vlan","id":10,"intf":["Ethernet1"],"internal":true})",
                     R"({"do":"portDel","intf":"Ethernet2"})"}));
}

TEST(ToldState, TakesAwayEveryKindOfState) {
    ForwardingState const state;
    ToldState told;
    portIs(state, "Ethernet1", 1, 2);
    state.systemStatus->portToIntfIdIs(VynPortTypes::PortIndex(130), intf("Ethernet1"));
    state.fcsd->lagToPortIs(intf("Lag1"));
    state.fcsd->portToLagIs(intf("Ethernet3"), intf("Lag1"));
    state.bridgingConfig->vlanConfigIs(Bridging::VlanId(10));
    state.chipStatus->cpuIntfIs(intf("Ethernet2"));
    EXPECT_EQ(told.becomes(state).size(), 6U);
    EXPECT_EQ(
        linesOf(told.becomes(ForwardingState())),
        (Lines{R"({"do":"cpuPortDel","intf":"Ethernet2"})", R"({"do":"lagToPortDel","lag":"Lag1"})",
               R"({"do":"portDel","intf":"Ethernet1"})", R"({"do":"portToIntfIdDel","port":130})",
               R"({"do":"portToLagDel","intf":"Ethernet3"})", R"({"do":"vlanDel","id":10})"}));
}

}  // namespace
}  // namespace Scenario
