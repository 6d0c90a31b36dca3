#include "scenario/Reader.h"

#include <gtest/gtest.h>

namespace Scenario {
namespace {

// The event of a line, as the type that it must be.
template <class T>
T read(std::string const& line) {
    return std::get<T>(readEvent(line));
}

bool refused(std::string const& line) {
    try {
        readEvent(line);
        return false;
    } catch (Refusal const&) {
        return true;
    }
}

// A line with one member more than `event`, which is without its closing brace.
std::string with(std::string const& event, std::string const& member) {
    return event + "," + member + "}";
}

// An unsigned member takes `min` and `max` and nothing beyond, and no other kind of value.
void expectRange(std::string const& event, std::string const& member, std::uint64_t min,
                 std::uint64_t max) {
    auto const line = [&](std::string const& value) {
        return with(event, '"' + member + "\":" + value);
    };
    std::string const beyond =
        max == 18446744073709551615U ? "18446744073709551616" : std::to_string(max + 1);
    std::string const below = min == 0 ? "-1" : std::to_string(min - 1);
    EXPECT_FALSE(refused(line(std::to_string(min)))) << line(std::to_string(min));
    EXPECT_FALSE(refused(line(std::to_string(max)))) << line(std::to_string(max));
    for (std::string const& value :
         {below, beyond, std::to_string(min) + ".0", std::to_string(max) + "e0",
          '"' + std::to_string(min) + '"', std::string("null"), std::string("true")}) {
        EXPECT_TRUE(refused(line(value))) << line(value);
    }
}

void expectFlag(std::string const& event, std::string const& member) {
    auto const line = [&](std::string const& value) {
        return with(event, '"' + member + "\":" + value);
    };
    EXPECT_FALSE(refused(line("true"))) << line("true");
    EXPECT_FALSE(refused(line("false"))) << line("false");
    for (std::string const value : {"0", "1", "\"true\"", "null"}) {
        EXPECT_TRUE(refused(line(value))) << line(value);
    }
}

void expectIntf(std::string const& event, std::string const& member) {
    auto const line = [&](std::string const& value) {
        return with(event, '"' + member + "\":" + value);
    };
    for (std::string const value :
         {"\"\"", "\"Ethernet7/2/1\"", "\"Lag3.100\"", "\"Vlan10\"", "\"Cpu\"", "\"Ethernet0\""}) {
        EXPECT_FALSE(refused(line(value))) << line(value);
    }
    for (std::string const value : {"\"eth0\"", "\"Vlan0\"", "7", "null", "[]"}) {
        EXPECT_TRUE(refused(line(value))) << line(value);
    }
}

// Each of these events is refused without any one of its members and with one more.
struct Whole {
    std::string name;
    std::vector<std::string> members;
};

Whole const wholes[] = {
    {"port", {R"("intf":"Ethernet1")", R"("pipe":0)", R"("port":4)"}},
    {"portDel", {R"("intf":"Ethernet1")"}},
    {"portToIntfId", {R"("port":132)", R"("intf":"Ethernet1")"}},
    {"portToIntfIdDel", {R"("port":132)"}},
    {"lagToPort", {R"("lag":"Lag3")"}},
    {"lagToPortDel", {R"("lag":"Lag3")"}},
    {"portToLag", {R"("intf":"Ethernet1")", R"("lag":"Lag3")"}},
    {"portToLagDel", {R"("intf":"Ethernet1")"}},
    {"vlan", {R"("id":10)", R"("intf":[])"}},
    {"vlanDel", {R"("id":10)"}},
    {"cpuPort", {R"("intf":"Ethernet1")"}},
    {"cpuPortDel", {R"("intf":"Ethernet1")"}},
    {"start", {}},
    {"stop", {}},
    {"turn", {}},
    {"yieldAfter", {R"("checks":3)"}},
    {"clientConfig", {R"("client":"noc")"}},
    {"clientConfigDel", {R"("client":"noc")"}},
    {"clientStatus", {R"("client":"noc")"}},
    {"clientStatusDel", {R"("client":"noc")"}},
    {"request", {R"("client":"noc")", R"("req":1)", R"("intf":"Ethernet1")"}},
    {"requestSet", {R"("client":"noc")", R"("req":1)", R"("attr":"valid")", R"("value":true)"}},
    {"requestDel", {R"("client":"noc")", R"("req":1)"}},
    {"result", {R"("client":"noc")", R"("req":1)"}},
    {"phase0", {R"("intf":"Ethernet1")"}},
    {"phase0Del", {R"("intf":"Ethernet1")"}},
    {"counter", {R"("pipe":0)", R"("value":1)"}},
    {"sdkReturn", {R"("call":"genOnePkt")", R"("rc":-1)"}},
    {"digest", {R"("entries":[])"}},
    {"digestField", {R"("field":"egrMd_routed")", R"("size":4)"}},
};

std::string lineOf(Whole const& whole, std::size_t without = SIZE_MAX) {
    std::string line = R"({"do":")" + whole.name + '"';
    for (std::size_t i = 0; i < whole.members.size(); ++i) {
        if (i != without) {
            line += ',' + whole.members[i];
        }
    }
    return line + '}';
}

TEST(Event, OfEveryKindIsReadWithItsMembers) {
    EXPECT_EQ(std::variant_size_v<Event>, std::size(wholes));
    for (std::size_t i = 0; i < std::size(wholes); ++i) {
        EXPECT_EQ(i, readEvent(lineOf(wholes[i])).index()) << wholes[i].name;
    }
}

TEST(Event, IsRefusedWithoutAMember) {
    for (Whole const& whole : wholes) {
        for (std::size_t i = 0; i < whole.members.size(); ++i) {
            EXPECT_TRUE(refused(lineOf(whole, i))) << lineOf(whole, i);
        }
    }
}

TEST(Event, IsRefusedWithAnUnknownMember) {
    for (Whole whole : wholes) {
        whole.members.push_back(R"("comment":"x")");
        EXPECT_TRUE(refused(lineOf(whole))) << lineOf(whole);
    }
}

TEST(Event, IsRefusedUnderAnUnknownName) {
    EXPECT_TRUE(refused(R"({"do":"Turn"})"));
    EXPECT_TRUE(refused(R"({"do":""})"));
    EXPECT_TRUE(refused(R"({"do":7})"));
    EXPECT_TRUE(refused(R"({"DO":"turn"})"));
    EXPECT_TRUE(refused("{}"));
}

TEST(Event, MayHaveItsNameAnywhere) {
    EXPECT_EQ(3U, read<Do::Turn>(R"({"times":3,"do":"turn"})").times);
}

TEST(PortEvents, HaveTheirRanges) {
    expectIntf(R"({"do":"port","pipe":0,"port":0)", "intf");
    expectRange(R"({"do":"port","intf":"Ethernet1","port":0)", "pipe", 0, 3);
    expectRange(R"({"do":"port","intf":"Ethernet1","pipe":0)", "port", 0, 455);
    expectRange(R"({"do":"portToIntfId","intf":"Ethernet1")", "port", 0, 455);
    expectIntf(R"({"do":"portToIntfId","port":1)", "intf");
    expectRange(R"({"do":"portToIntfIdDel")", "port", 0, 455);
    expectIntf(R"({"do":"portDel")", "intf");
}

TEST(PortEvents, CarryTheirValues) {
    auto const port = read<Do::Port>(R"({"do":"port","intf":"Ethernet7","pipe":2,"port":5})");
    EXPECT_EQ("Ethernet7", port.intf.stringValue());
    EXPECT_EQ(2, port.pipe);
    EXPECT_EQ(5, port.port);
}

TEST(LagEvents, TakeAnyInterface) {
    expectIntf(R"({"do":"lagToPort")", "lag");
    expectIntf(R"({"do":"lagToPortDel")", "lag");
    expectIntf(R"({"do":"portToLag","intf":"Ethernet1")", "lag");
    expectIntf(R"({"do":"portToLag","lag":"Lag1")", "intf");
    expectIntf(R"({"do":"portToLagDel")", "intf");
}

TEST(VlanEvents, HaveTheirRanges) {
    expectRange(R"({"do":"vlan","intf":[])", "id", 1, 4094);
    expectFlag(R"({"do":"vlan","id":1,"intf":[])", "internal");
    expectRange(R"({"do":"vlanDel")", "id", 1, 4094);
    EXPECT_TRUE(refused(R"({"do":"vlan","id":1,"intf":"Ethernet1"})"));
    EXPECT_TRUE(refused(R"({"do":"vlan","id":1,"intf":["Ethernet"]})"));
}

TEST(VlanEvents, AreNotInternalByDefault) {
    auto const vlan = read<Do::Vlan>(R"({"do":"vlan","id":10,"intf":["Ethernet1","Cpu",""]})");
    EXPECT_EQ(10, vlan.id.value());
    EXPECT_EQ(3U, vlan.intf.size());
    EXPECT_FALSE(vlan.internal);
}

TEST(CpuPortEvents, TakeAnyInterface) {
    expectIntf(R"({"do":"cpuPort")", "intf");
    expectIntf(R"({"do":"cpuPortDel")", "intf");
}

TEST(StartEvent, HasDefaults) {
    auto const start = read<Do::Start>(R"({"do":"start"})");
    EXPECT_TRUE(start.pktTracerSupported);
    EXPECT_TRUE(start.pktGenSupported);
    EXPECT_EQ(1U, start.session);
    EXPECT_EQ(0, start.device);
}

TEST(StartEvent, HasItsRanges) {
    expectFlag(R"({"do":"start")", "pktTracerSupported");
    expectFlag(R"({"do":"start")", "pktGenSupported");
    expectRange(R"({"do":"start")", "session", 0, 4294967295);
    expectRange(R"({"do":"start")", "device", 0, 255);
}

TEST(TurnEvent, IsOneTurnByDefault) {
    EXPECT_EQ(1U, read<Do::Turn>(R"({"do":"turn"})").times);
    EXPECT_EQ(0U, read<Do::Turn>(R"({"do":"turn","times":0})").times);
    expectRange(R"({"do":"turn")", "times", 0, 1'000'000);
}

TEST(YieldAfterEvent, HasItsRange) {
    expectRange(R"({"do":"yieldAfter")", "checks", 0, 4294967295);
}

TEST(ClientEvents, TakeAnyText) {
    EXPECT_TRUE(read<Do::ClientConfig>(R"({"do":"clientConfig","client":""})").client.empty());
    EXPECT_EQ(
        "%s \xc3\xa9\n",
        read<Do::ClientStatus>(R"({"do":"clientStatus","client":"%s \u00e9\n"})").client.view());
    EXPECT_TRUE(refused(R"({"do":"clientConfig","client":7})"));
}

TEST(ClientEvents, PutAFreshEntityByDefault) {
    EXPECT_EQ(Do::Entity::own,
              read<Do::ClientConfig>(R"({"do":"clientConfig","client":"a"})").entity);
    EXPECT_EQ(Do::Entity::own,
              read<Do::ClientStatus>(R"({"do":"clientStatus","client":"a"})").entity);
}

TEST(ClientEvents, NameTheirEntity) {
    auto const config = [](std::string const& entity) {
        return R"({"do":"clientConfig","client":"a","entity":)" + entity + '}';
    };
    EXPECT_EQ(Do::Entity::own, read<Do::ClientConfig>(config(R"("config")")).entity);
    EXPECT_EQ(Do::Entity::none, read<Do::ClientConfig>(config(R"("none")")).entity);
    EXPECT_EQ(Do::Entity::other, read<Do::ClientConfig>(config(R"("other")")).entity);
    EXPECT_TRUE(refused(config(R"("status")")));
    EXPECT_TRUE(refused(config("null")));
    EXPECT_TRUE(refused(R"({"do":"clientStatus","client":"a","entity":"config"})"));
    EXPECT_FALSE(refused(R"({"do":"clientStatus","client":"a","entity":"status"})"));
}

TEST(RequestEvent, HasDefaults) {
    auto const request =
        read<Do::Request>(R"({"do":"request","client":"noc","req":7,"intf":"Ethernet1"})");
    EXPECT_EQ(PacketTracer::RequestId("noc", 7), request.id);
    EXPECT_EQ(2048, request.etherType);
    EXPECT_FALSE(request.mpls);
    EXPECT_FALSE(request.gre);
    EXPECT_TRUE(request.valid);
    EXPECT_EQ(Vanta::Bytes(std::vector<std::uint8_t>(64)), request.raw);
}

TEST(RequestEvent, HasItsRanges) {
    std::string const noReq = R"({"do":"request","client":"noc","intf":"Ethernet1")";
    expectRange(noReq, "req", 0, 4294967295);
    std::string const event = noReq + R"(,"req":1)";
    expectRange(event, "etherType", 0, 65535);
    expectFlag(event, "mpls");
    expectFlag(event, "gre");
    expectFlag(event, "valid");
    expectIntf(R"({"do":"request","client":"noc","req":1)", "intf");
}

TEST(RequestEvent, TakesItsPacketInHexadecimal) {
    auto const line = [](std::string const& raw) {
        return R"({"do":"request","client":"noc","req":7,"intf":"","raw":)" + raw + '}';
    };
    EXPECT_EQ((Vanta::Bytes{0xab, 0xcd}), read<Do::Request>(line(R"("aBCd")")).raw);
    EXPECT_TRUE(read<Do::Request>(line(R"("")")).raw.empty());
    EXPECT_TRUE(refused(line(R"("abc")")));
    EXPECT_TRUE(refused(line(R"("ab cd")")));
    EXPECT_TRUE(refused(line("[1]")));
}

TEST(RequestSetEvent, TakesTheValueOfItsAttribute) {
    auto const line = [](std::string const& attribute, std::string const& value) {
        return R"({"do":"requestSet","client":"noc","req":7,"attr":")" + attribute +
               R"(","value":)" + value + '}';
    };
    auto const value = [&](std::string const& attribute, std::string const& text) {
        return read<Do::RequestSet>(line(attribute, text)).value;
    };
    EXPECT_TRUE(std::get<bool>(value("valid", "true")));
    EXPECT_FALSE(std::get<bool>(value("mpls", "false")));
    EXPECT_TRUE(std::get<bool>(value("gre", "true")));
    EXPECT_EQ(34887, std::get<std::uint16_t>(value("etherType", "34887")));
    EXPECT_EQ("Lag1", std::get<Plexa::IntfId>(value("intf", R"("Lag1")")).stringValue());
    EXPECT_EQ(Vanta::Bytes{1}, std::get<Vanta::Bytes>(value("raw", R"("01")")));
    for (auto const& [attribute, text] :
         std::vector<std::pair<std::string, std::string>>{{"valid", "1"},
                                                          {"mpls", "\"\""},
                                                          {"gre", "null"},
                                                          {"etherType", "65536"},
                                                          {"etherType", "-1"},
                                                          {"etherType", "true"},
                                                          {"intf", "\"Lag\""},
                                                          {"raw", "\"1\""},
                                                          {"frame", "\"01\""},
                                                          {"Valid", "true"}}) {
        EXPECT_TRUE(refused(line(attribute, text))) << attribute << ' ' << text;
    }
}

TEST(RequestEvents, HaveTheirRanges) {
    expectRange(R"({"do":"requestDel","client":"noc")", "req", 0, 4294967295);
    expectRange(R"({"do":"result","client":"noc")", "req", 0, 4294967295);
    expectRange(R"({"do":"requestSet","client":"noc","attr":"gre","value":true)", "req", 0,
                4294967295);
}

TEST(Phase0Events, HaveDefaultsAndRanges) {
    auto const phase0 = read<Do::Phase0>(R"({"do":"phase0","intf":"Ethernet1"})");
    EXPECT_EQ(0U, phase0.status);
    EXPECT_TRUE(phase0.data.empty());
    expectIntf(R"({"do":"phase0")", "intf");
    expectRange(R"({"do":"phase0","intf":"")", "status", 0, 4294967295);
    EXPECT_TRUE(refused(R"({"do":"phase0","intf":"","data":"0"})"));
    expectIntf(R"({"do":"phase0Del")", "intf");
}

TEST(CounterEvent, TakesExactlyOneOfValueAndValues) {
    EXPECT_EQ((std::vector<std::uint64_t>{7}),
              read<Do::Counter>(R"({"do":"counter","pipe":3,"value":7})").values);
    EXPECT_EQ((std::vector<std::uint64_t>{7, 8}),
              read<Do::Counter>(R"({"do":"counter","pipe":3,"values":[7,8]})").values);
    EXPECT_TRUE(refused(R"({"do":"counter","pipe":3})"));
    EXPECT_TRUE(refused(R"({"do":"counter","pipe":3,"value":7,"values":[7]})"));
    EXPECT_TRUE(refused(R"({"do":"counter","pipe":3,"values":[]})"));
    EXPECT_TRUE(refused(R"({"do":"counter","pipe":3,"values":7})"));
    EXPECT_TRUE(refused(R"({"do":"counter","pipe":3,"values":[7,"8"]})"));
}

TEST(CounterEvent, HasItsRanges) {
    expectRange(R"({"do":"counter","value":0)", "pipe", 0, 3);
    expectRange(R"({"do":"counter","pipe":0)", "value", 0, 18446744073709551615U);
    EXPECT_FALSE(refused(R"({"do":"counter","pipe":0,"values":[18446744073709551615]})"));
    EXPECT_TRUE(refused(R"({"do":"counter","pipe":0,"values":[18446744073709551616]})"));
}

TEST(SdkReturnEvent, HasDefaultsAndRanges) {
    std::string const event = R"({"do":"sdkReturn","call":"disableAppId")";
    auto const plain = read<Do::SdkReturn>(event + R"(,"rc":-5})");
    EXPECT_EQ(-5, plain.rc);
    EXPECT_EQ(1U, plain.times);
    EXPECT_EQ(0U, plain.after);
    EXPECT_EQ(-2147483648, read<Do::SdkReturn>(event + R"(,"rc":-2147483648})").rc);
    EXPECT_EQ(2147483647, read<Do::SdkReturn>(event + R"(,"rc":2147483647})").rc);
    EXPECT_TRUE(refused(event + R"(,"rc":2147483648})"));
    EXPECT_TRUE(refused(event + R"(,"rc":-2147483649})"));
    EXPECT_TRUE(refused(event + R"(,"rc":1.0})"));
    expectRange(event + R"(,"rc":1)", "times", 0, 1'000'000);
    expectRange(event + R"(,"rc":1)", "after", 0, 4294967295);
}

TEST(SdkReturnEvent, TakesTheSevenPrintedNames) {
    for (auto const function : SdkSeam::allSdkFunctions) {
        std::string const name(SdkSeam::sdkFunctionName(function));
        EXPECT_EQ(
            function,
            read<Do::SdkReturn>(R"({"do":"sdkReturn","call":")" + name + R"(","rc":1})").call);
    }
    EXPECT_TRUE(refused(R"({"do":"sdkReturn","call":"dev_port_to_pipe_id","rc":1})"));
}

TEST(DigestEvent, HasDefaults) {
    auto const digest = read<Do::Digest>(R"({"do":"digest","entries":[{}]})");
    ASSERT_EQ(1U, digest.entries.size());
    EXPECT_EQ(0, digest.entries[0].pktId);
    EXPECT_EQ(0, digest.entries[0].copyToCpu);
    EXPECT_EQ(0, digest.entries[0].l2Domain);
    EXPECT_EQ(511, digest.entries[0].egrPort);
    EXPECT_EQ(0, digest.entries[0].routed);
    EXPECT_EQ(0, digest.entries[0].dropCtl);
}

TEST(DigestEvent, HasItsRanges) {
    for (auto const& [member, max] :
         std::vector<std::pair<std::string, std::uint64_t>>{{"pktId", 65535},
                                                            {"copyToCpu", 255},
                                                            {"l2Domain", 65535},
                                                            {"egrPort", 65535},
                                                            {"routed", 255},
                                                            {"dropCtl", 255}}) {
        auto const line = [name = member](std::string const& value) {
            return R"({"do":"digest","entries":[{")" + name + "\":" + value + "}]}";
        };
        EXPECT_FALSE(refused(line("0"))) << member;
        EXPECT_FALSE(refused(line(std::to_string(max)))) << member;
        EXPECT_TRUE(refused(line(std::to_string(max + 1)))) << member;
        EXPECT_TRUE(refused(line("-1"))) << member;
        EXPECT_TRUE(refused(line("1.0"))) << member;
        EXPECT_TRUE(refused(line("true"))) << member;
    }
}

TEST(DigestEvent, RefusesUnknownMembersOfAnEntry) {
    EXPECT_TRUE(refused(R"({"do":"digest","entries":[{"dropped":1}]})"));
    EXPECT_TRUE(refused(R"({"do":"digest","entries":[7]})"));
    EXPECT_TRUE(refused(R"({"do":"digest","entries":{}})"));
}

TEST(DigestEvent, HasAtMostAsManyEntriesAsAMessageCanCount) {
    auto const line = [](std::size_t entries) {
        std::string text = R"({"do":"digest","entries":[)";
        for (std::size_t i = 0; i < entries; ++i) {
            text += i == 0 ? "{}" : ",{}";
        }
        return text + "]}";
    };
    EXPECT_EQ(65535U, read<Do::Digest>(line(65535)).entries.size());
    EXPECT_TRUE(refused(line(65536)));
}

TEST(DigestFieldEvent, TakesTheSixFields) {
    for (auto const field : SdkSeam::digestFieldNames) {
        std::string const line =
            R"({"do":"digestField","size":0,"field":")" + std::string(field) + "\"}";
        EXPECT_EQ(field, read<Do::DigestField>(line).field);
    }
    EXPECT_TRUE(refused(R"({"do":"digestField","size":0,"field":"pktId"})"));
    expectRange(R"({"do":"digestField","field":"egrMd_routed")", "size", 0, 4294967295);
}

}  // namespace
}  // namespace Scenario
