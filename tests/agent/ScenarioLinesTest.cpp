#include "agent/ScenarioLines.h"

#include <gtest/gtest.h>

#include "replay/Event.h"
#include "switchfile/SwitchFile.h"

namespace Agent {
namespace {

using PacketTracer::Request;
using Lines = std::vector<std::string>;

Plexa::IntfId intf(char const* name) {
    return Plexa::IntfId::fromName(name).value();
}

Vanta::Ptr<Request> someRequest() {
    auto const request = Request::RequestIs({"A", 7});
    request->intfIs(intf("Ethernet1"));
    request->etherTypeIs(2054);
    request->frameIs({0xab, 0x01});
    return request;
}

TEST(ScenarioLines, TellTheLifeOfTheTracer) {
    EXPECT_EQ(Line::start(true, false, 3, 2),
              R"({"do":"start","pktTracerSupported":true,"pktGenSupported":false,"session":3,)"
              R"("device":2})");
    EXPECT_EQ(Line::stop(), R"({"do":"stop"})");
    EXPECT_EQ(Line::turn(1), R"({"do":"turn"})");
    EXPECT_EQ(Line::turn(12), R"({"do":"turn","times":12})");
    EXPECT_EQ(Line::yieldAfter(64), R"({"do":"yieldAfter","checks":64})");
}

TEST(ScenarioLines, TellTheEntriesOfClients) {
    EXPECT_EQ(Line::clientConfig("A", "none"),
              R"({"do":"clientConfig","client":"A","entity":"none"})");
    EXPECT_EQ(Line::clientConfigDel("A"), R"({"do":"clientConfigDel","client":"A"})");
    EXPECT_EQ(Line::clientStatus("A", "status"),
              R"({"do":"clientStatus","client":"A","entity":"status"})");
    EXPECT_EQ(Line::clientStatusDel("A"), R"({"do":"clientStatusDel","client":"A"})");
    EXPECT_EQ(Line::result({"A", 7}), R"({"do":"result","client":"A","req":7})");
}

TEST(ScenarioLines, EscapeNamesAndReplaceWhatIsNoText) {
    EXPECT_EQ(Line::clientConfigDel("a\"\n\xc3\xa9"),
              "{\"do\":\"clientConfigDel\",\"client\":\"a\\\"\\n\xc3\xa9\"}");
    EXPECT_EQ(Line::clientConfigDel("a\xff"),
              "{\"do\":\"clientConfigDel\",\"client\":\"a\xef\xbf\xbd\"}");
}

TEST(ScenarioLines, TellAWholeRequest) {
    EXPECT_EQ(Line::request(*someRequest()),
              R"({"do":"request","client":"A","req":7,"intf":"Ethernet1","etherType":2054,)"
              R"("mpls":false,"gre":false,"valid":false,"raw":"ab01"})");
    EXPECT_EQ(Line::requestDel({"A", 7}), R"({"do":"requestDel","client":"A","req":7})");
}

TEST(ScenarioLines, TellOneAttributeOfARequest) {
    auto const request = someRequest();
    auto const set = [&](Request::Attribute attribute) {
        return Line::requestSet(*request, attribute);
    };
    std::string const begin = R"({"do":"requestSet","client":"A","req":7,"attr":)";
    EXPECT_EQ(set(Request::validAttribute), (Lines{begin + R"("valid","value":false})"}));
    EXPECT_EQ(set(Request::etherTypeAttribute), (Lines{begin + R"("etherType","value":2054})"}));
    EXPECT_EQ(set(Request::mplsAttribute), (Lines{begin + R"("mpls","value":false})"}));
    EXPECT_EQ(set(Request::greAttribute), (Lines{begin + R"("gre","value":false})"}));
    EXPECT_EQ(set(Request::intfAttribute), (Lines{begin + R"("intf","value":"Ethernet1"})"}));
    EXPECT_EQ(set(Request::frameAttribute), (Lines{begin + R"("raw","value":"ab01"})"}));
    EXPECT_EQ(set(Request::idAttribute), Lines{});
}

TEST(ScenarioLines, TellWhatTheFieldsOfARequestBuild) {
    auto const request = someRequest();
    request->frameIs({});
    request->etherTypeIs(0x88b5);
    PacketTracer::PacketFields fields;
    fields.ethDst = PacketTracer::MacAddress({2, 0, 0, 0, 0, 2});
    fields.ethSrc = PacketTracer::MacAddress({2, 0, 0, 0, 0, 1});
    request->fieldsIs(fields);
    auto const lines = Line::requestSet(*request, Request::etherTypeAttribute);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_NE(lines[1].find(R"("attr":"raw","value":"02000000000202000000000188b5)"),
              std::string::npos);
    EXPECT_NE(Line::request(*request).find(R"("raw":"02000000000202000000000188b5)"),
              std::string::npos);
}

TEST(ScenarioLines, TellWhatTheChipSays) {
    EXPECT_EQ(Line::phase0(intf("Ethernet1"), {{0x0a, 0xff}, 3}),
              R"({"do":"phase0","intf":"Ethernet1","status":3,"data":"0aff"})");
    EXPECT_EQ(Line::phase0Del(intf("Ethernet1")), R"({"do":"phase0Del","intf":"Ethernet1"})");
    std::vector<std::uint64_t> const values{1, 18446744073709551615ULL};
    EXPECT_EQ(Line::counter(2, values),
              R"({"do":"counter","pipe":2,"values":[1,18446744073709551615]})");
    EXPECT_EQ(Line::counter(2, {values.data(), 1}), R"({"do":"counter","pipe":2,"value":1})");
    EXPECT_EQ(Line::digest({}), R"({"do":"digest","entries":[]})");
}

TEST(ScenarioLines, AreLinesThatAReplayTakes) {
    for (std::string const& line :
         {Line::start(true, true, 1, 0), Line::request(*someRequest()),
          Line::sdkReturn("genOnePkt", -3, 2, 1), Line::comment("words")}) {
        if (!line.starts_with("#")) {
            EXPECT_NO_THROW(static_cast<void>(Replay::readEvent(line))) << line;
        }
    }
}

// ---- Forwarding state

TEST(RecordedState, BeginsWithEverything) {
    auto const state = deriveForwardingState(SwitchFile::parseSwitchFile(R"({
        "vlans": {"10": {}},
        "interfaces": {
            "Ethernet1": {"port": "1/2", "access": 10},
            "Ethernet2": {"port": "0/5", "cpu": true},
            "Ethernet3": {"port": "0/6"},
            "Lag1": {"members": ["Ethernet3"], "access": 10}
        }
    })",
                                                                         "test"));
    EXPECT_EQ(RecordedState().becomes(state),
              (Lines{R"({"do":"port","intf":"Ethernet1","pipe":1,"port":2})",
                     R"({"do":"port","intf":"Ethernet2","pipe":0,"port":5})",
                     R"({"do":"port","intf":"Ethernet3","pipe":0,"port":6})",
                     R"({"do":"portToIntfId","port":130,"intf":"Ethernet1"})",
                     R"({"do":"portToIntfId","port":5,"intf":"Ethernet2"})",
                     R"({"do":"portToIntfId","port":6,"intf":"Ethernet3"})",
                     R"({"do":"lagToPort","lag":"Lag1"})",
                     R"({"do":"portToLag","intf":"Ethernet3","lag":"Lag1"})",
                     R"({"do":"vlan","id":10,"intf":["Ethernet1","Lag1"],"internal":false})",
                     R"({"do":"cpuPort","intf":"Ethernet2"})"}));
}

TEST(RecordedState, GoesOnWithWhatChanged) {
    ForwardingState const state = deriveForwardingState(SwitchFile::SwitchModel());
    RecordedState recorded;
    state.systemStatus->portInfoIs(intf("Ethernet1"), {1, VynPortTypes::PortIndex(2)});
    state.systemStatus->portInfoIs(intf("Ethernet2"), {1, VynPortTypes::PortIndex(3)});
    state.bridgingConfig->vlanConfigIs(Bridging::VlanId(10))->intfIs(intf("Ethernet1"));
    EXPECT_EQ(recorded.becomes(state).size(), 3U);
    EXPECT_EQ(recorded.becomes(state), Lines{});
    state.systemStatus->portInfoIs(intf("Ethernet1"), {0, VynPortTypes::PortIndex(2)});
    state.systemStatus->portInfoDel(intf("Ethernet2"));
    state.bridgingConfig->vlanConfigIs(Bridging::VlanId(10))->internalIs(true);
    EXPECT_EQ(recorded.becomes(state),
              (Lines{R"({"do":"port","intf":"Ethernet1","pipe":0,"port":2})",
                     R"({"do":"vlan","id":10,"intf":["Ethernet1"],"internal":true})",
                     R"({"do":"portDel","intf":"Ethernet2"})"}));
}

}  // namespace
}  // namespace Agent
