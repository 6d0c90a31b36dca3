#include "scenario/Writer.h"

#include <gtest/gtest.h>

#include "scenario/Reader.h"

namespace Scenario {
namespace {

Plexa::IntfId intf(char const* name) {
    return Plexa::IntfId::fromName(name).value();
}

TEST(Writer, TellsTheLifeOfTheTracer) {
    EXPECT_EQ(line(Do::Start{true, false, 3, 2}),
              R"({"do":"start","pktTracerSupported":true,"pktGenSupported":false,"session":3,)"
              R"("device":2})");
    EXPECT_EQ(line(Do::Stop()), R"({"do":"stop"})");
    EXPECT_EQ(line(Do::Turn{1}), R"({"do":"turn"})");
    EXPECT_EQ(line(Do::Turn{12}), R"({"do":"turn","times":12})");
    EXPECT_EQ(line(Do::YieldAfter{64}), R"({"do":"yieldAfter","checks":64})");
}

TEST(Writer, TellsTheEntriesOfClients) {
    EXPECT_EQ(line(Do::ClientConfig{"A", Do::Entity::none}),
              R"({"do":"clientConfig","client":"A","entity":"none"})");
    EXPECT_EQ(line(Do::ClientConfigDel{"A"}), R"({"do":"clientConfigDel","client":"A"})");
    EXPECT_EQ(line(Do::ClientStatus{"A", Do::Entity::own}),
              R"({"do":"clientStatus","client":"A","entity":"status"})");
    EXPECT_EQ(line(Do::ClientStatusDel{"A"}), R"({"do":"clientStatusDel","client":"A"})");
    EXPECT_EQ(line(Do::Result{{"A", 7}}), R"({"do":"result","client":"A","req":7})");
}

TEST(Writer, EscapesNamesAndReplacesWhatIsNoText) {
    EXPECT_EQ(line(Do::ClientConfigDel{"a\"\n\xc3\xa9"}),
              "{\"do\":\"clientConfigDel\",\"client\":\"a\\\"\\n\xc3\xa9\"}");
    EXPECT_EQ(line(Do::ClientConfigDel{"a\xff"}),
              "{\"do\":\"clientConfigDel\",\"client\":\"a\xef\xbf\xbd\"}");
}

TEST(Writer, TellsAWholeRequest) {
    EXPECT_EQ(line(Do::Request{.id = {"A", 7},
                               .intf = intf("Ethernet1"),
                               .etherType = 2054,
                               .valid = false,
                               .raw = {0xab, 0x01}}),
              R"({"do":"request","client":"A","req":7,"intf":"Ethernet1","etherType":2054,)"
              R"("mpls":false,"gre":false,"valid":false,"raw":"ab01"})");
    EXPECT_EQ(line(Do::RequestDel{{"A", 7}}), R"({"do":"requestDel","client":"A","req":7})");
}

TEST(Writer, TellsOneAttributeOfARequest) {
    using Attribute = Do::RequestAttribute;
    auto const set = [](Attribute attribute, auto value) {
        return line(Do::RequestSet{{"A", 7}, attribute, value});
    };
    std::string const begin = R"({"do":"requestSet","client":"A","req":7,"attr":)";
    EXPECT_EQ(set(Attribute::valid, false), begin + R"("valid","value":false})");
    EXPECT_EQ(set(Attribute::etherType, std::uint16_t{2054}),
              begin + R"("etherType","value":2054})");
    EXPECT_EQ(set(Attribute::mpls, false), begin + R"("mpls","value":false})");
    EXPECT_EQ(set(Attribute::gre, false), begin + R"("gre","value":false})");
    EXPECT_EQ(set(Attribute::intf, intf("Ethernet1")), begin + R"("intf","value":"Ethernet1"})");
    EXPECT_EQ(set(Attribute::raw, Vanta::Bytes{0xab, 0x01}), begin + R"("raw","value":"ab01"})");
}

TEST(Writer, TellsWhatTheChipSays) {
    EXPECT_EQ(line(Do::Phase0{intf("Ethernet1"), 3, {0x0a, 0xff}}),
              R"({"do":"phase0","intf":"Ethernet1","status":3,"data":"0aff"})");
    EXPECT_EQ(line(Do::Phase0Del{intf("Ethernet1")}), R"({"do":"phase0Del","intf":"Ethernet1"})");
    EXPECT_EQ(line(Do::Counter{2, {1, 18446744073709551615ULL}}),
              R"({"do":"counter","pipe":2,"values":[1,18446744073709551615]})");
    EXPECT_EQ(line(Do::Counter{2, {1}}), R"({"do":"counter","pipe":2,"value":1})");
    EXPECT_EQ(line(Do::Digest()), R"({"do":"digest","entries":[]})");
    EXPECT_EQ(line(Do::Digest{{{.pktId = 1, .copyToCpu = 2, .l2Domain = 3, .egrPort = 4}}}),
              R"({"do":"digest","entries":[{"pktId":1,"copyToCpu":2,"l2Domain":3,"egrPort":4,)"
              R"("routed":0,"dropCtl":0}]})");
}

// Every kind of event, with members that are not their defaults.
TEST(Writer, WritesWhatTheReaderTakes) {
    char const* const lines[] = {
        R"({"do":"port","intf":"Ethernet1","pipe":3,"port":455})",
        R"({"do":"portDel","intf":"Ethernet1"})",
        R"({"do":"portToIntfId","port":132,"intf":"Ethernet1"})",
        R"({"do":"portToIntfIdDel","port":132})",
        R"({"do":"lagToPort","lag":"Lag3"})",
        R"({"do":"lagToPortDel","lag":"Lag3"})",
        R"({"do":"portToLag","intf":"Ethernet1","lag":"Lag3"})",
        R"({"do":"portToLagDel","intf":"Ethernet1"})",
        R"({"do":"vlan","id":10,"intf":["Ethernet1","Cpu"],"internal":true})",
        R"({"do":"vlanDel","id":10})",
        R"({"do":"cpuPort","intf":"Ethernet1"})",
        R"({"do":"cpuPortDel","intf":"Ethernet1"})",
        R"({"do":"start","pktTracerSupported":false,"pktGenSupported":false,"session":9,"device":2})",
        R"({"do":"stop"})",
        R"({"do":"turn","times":3})",
        R"({"do":"yieldAfter","checks":3})",
        R"({"do":"clientConfig","client":"noc","entity":"other"})",
        R"({"do":"clientConfigDel","client":"noc"})",
        R"({"do":"clientStatus","client":"noc","entity":"none"})",
        R"({"do":"clientStatusDel","client":"noc"})",
        R"({"do":"request","client":"noc","req":1,"intf":"Ethernet1","etherType":1,"mpls":true,)"
        R"("gre":true,"valid":false,"raw":"0a"})",
        R"({"do":"requestSet","client":"noc","req":1,"attr":"gre","value":true})",
        R"({"do":"requestDel","client":"noc","req":1})",
        R"({"do":"result","client":"noc","req":1})",
        R"({"do":"phase0","intf":"Ethernet1","status":7,"data":"0102"})",
        R"({"do":"phase0Del","intf":"Ethernet1"})",
        R"({"do":"counter","pipe":3,"values":[1,2]})",
        R"({"do":"sdkReturn","call":"genOnePkt","rc":-1,"times":2,"after":3})",
        R"({"do":"digest","entries":[{"pktId":1,"copyToCpu":2,"l2Domain":3,"egrPort":4,)"
        R"("routed":5,"dropCtl":6}]})",
        R"({"do":"digestField","field":"egrMd_routed","size":4})"};
    EXPECT_EQ(std::size(lines), std::variant_size_v<Event>);
    for (std::size_t i = 0; i < std::size(lines); ++i) {
        Event const event = readEvent(lines[i]);
        EXPECT_EQ(event.index(), i) << lines[i];
        EXPECT_EQ(line(event), lines[i]);
    }
}

}  // namespace
}  // namespace Scenario
