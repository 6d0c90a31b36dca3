#include "replay/Printer.h"

#include <gtest/gtest.h>

#include <sstream>

#include "Kel/Error.h"
#include "PacketTracer/ClientStatus.h"
#include "Trace/Trace.h"
#include "scriptchip/ScriptChip.h"
#include "tests/replay/Replayed.h"

namespace Replay {
namespace {

using VynPacketTracer::PktGenConfig;
using VynPacketTracer::PktGenState;
using VynPacketTracer::PktGenStatus;

Plexa::IntfId intf(std::string_view name) {
    return *Plexa::IntfId::fromName(name);
}

class PrinterTest : public testing::Test {
  protected:
    std::string printed() {
        printer.flush();
        return out.str();
    }

    std::ostringstream out;
    Printer printer{out};
    Observation observation{printer};
    PacketTracer::RequestId const id{"noc", 7};
};

TEST_F(PrinterTest, PrintsJobsThatComeAndGo) {
    auto const config = PktGenConfig::PktGenConfigIs();
    config->cfgIs(id, {1}, {}, intf("Ethernet1"));
    config->cfgDel(id);
    EXPECT_EQ(joined({R"({"cfg":"add","client":"noc","req":7})",
                      R"({"cfg":"del","client":"noc","req":7})"}),
              printed());
}

TEST_F(PrinterTest, PrintsTheJobsThatGoWithTheirCollection) {
    auto config = PktGenConfig::PktGenConfigIs();
    config->cfgIs(id, {1}, {}, intf("Ethernet1"));
    config = nullptr;
    EXPECT_EQ(joined({R"({"cfg":"add","client":"noc","req":7})",
                      R"({"cfg":"del","client":"noc","req":7})"}),
              printed());
}

TEST_F(PrinterTest, PrintsAnswersThatComeAndGo) {
    auto const statuses = PktGenStatus::PktGenStatusIs();
    statuses->statusIs(id);
    statuses->statusDel(id);
    EXPECT_EQ(joined({R"({"status":"add","client":"noc","req":7})",
                      R"({"status":"del","client":"noc","req":7})"}),
              printed());
}

TEST_F(PrinterTest, PrintsEachAttributeOfAnAnswer) {
    auto const status = VynPacketTracer::pktGenStatusDataFactory(id);
    status->pktIdIs(65535);
    status->readyIs(true);
    status->egrPortInfoIs({3, VynPortTypes::PortIndex(455)});
    status->egrL2DomainIs(4094);
    status->copyToCpuIs(true);
    status->routedIs(true);
    status->droppedIs(true);
    status->droppedIs(false);
    EXPECT_EQ(joined({R"({"status":"pktId","client":"noc","req":7,"value":65535})",
                      R"({"status":"ready","client":"noc","req":7,"value":true})",
                      R"({"status":"egrPortInfo","client":"noc","req":7,"value":[3,455]})",
                      R"({"status":"egrL2Domain","client":"noc","req":7,"value":4094})",
                      R"({"status":"copyToCpu","client":"noc","req":7,"value":true})",
                      R"({"status":"routed","client":"noc","req":7,"value":true})",
                      R"({"status":"dropped","client":"noc","req":7,"value":true})",
                      R"({"status":"dropped","client":"noc","req":7,"value":false})"}),
              printed());
}

TEST_F(PrinterTest, PrintsResultsAndTheirAttributes) {
    auto const client = PacketTracer::ClientStatus::ClientStatusIs();
    auto const result = client->resultIs(id);
    result->stateIs(PacketTracer::State::egressFound);
    result->validIs(true);
    using Entry = PacketTracer::ResultEntry;
    result->egressIntfIs(Entry::fromPhysicalAndLogicalIntf({}, intf("Lag3")));
    result->egressIntfIs(Entry::fromPhysicalIntf(intf("Ethernet7/2/1")));
    result->egressIntfIs(Entry::fromPhysicalIntf(intf("Ethernet7/2/1")));
    client->resultDel(id);
    EXPECT_EQ(
        joined({R"({"result":"add","client":"noc","req":7})",
                R"({"result":"state","client":"noc","req":7,"value":4})",
                R"({"result":"valid","client":"noc","req":7,"value":true})",
                R"({"result":"egressIntf","client":"noc","req":7,"value":["","Lag3"]})",
                R"({"result":"egressIntf","client":"noc","req":7,"value":["Ethernet7/2/1",""]})",
                R"({"result":"del","client":"noc","req":7})"}),
        printed());
}

TEST_F(PrinterTest, PrintsTracesOfEveryLevel) {
    auto& handle = Trace::handle("VynPtSm");
    Trace::twinlog(handle, 0, "a %s", "\"b\"");
    Trace::twinlog(handle, 9, "c");
    EXPECT_EQ(joined({R"({"trace":"VynPtSm","level":0,"text":"a \"b\""})",
                      R"({"trace":"VynPtSm","level":9,"text":"c"})"}),
              printed());
}

TEST_F(PrinterTest, PrintsPhase0Requests) {
    printer.phase0ConfigIs(intf("Ethernet1"));
    printer.phase0ConfigDel({});
    EXPECT_EQ(joined({R"({"phase0":"configIs","intf":"Ethernet1"})",
                      R"({"phase0":"configDel","intf":""})"}),
              printed());
}

TEST_F(PrinterTest, PrintsEachSdkCallWithItsOwnArguments) {
    std::vector<std::uint8_t> const pkt{0xab};
    for (auto const function : SdkSeam::allSdkFunctions) {
        printer.sdkCalled({.function = function,
                           .device = 2,
                           .session = 1,
                           .pipe = 3,
                           .genPort = 68,
                           .appId = 4,
                           .handle = 77,
                           .pktId = 6,
                           .portIndex = 200,
                           .pkt = pkt,
                           .rc = -8,
                           .count = 18446744073709551615U});
    }
    EXPECT_EQ(
        joined(
            {R"({"sdk":"getPktCounters","args":{"session":1,"device":2,"pipe":3,"appId":4},"rc":-8,"count":18446744073709551615})",
             R"({"sdk":"genOnePkt","args":{"session":1,"device":2,"pipe":3,"genPort":68,"portIndex":200,"appId":4,"pkt":"ab","phase0":"","pktId":6},"rc":-8})",
             R"({"sdk":"disableAppId","args":{"session":1,"device":2,"pipe":3,"appId":4},"rc":-8})",
             R"({"sdk":"disablePktGen","args":{"session":1,"device":2,"pipe":3,"genPort":68},"rc":-8})",
             R"({"sdk":"pipe_mgr_lrn_digest_notification_register","args":{"session":1,"device":2,"handle":77},"rc":-8})",
             R"({"sdk":"pipe_mgr_lrn_digest_notification_deregister","args":{"session":1,"device":2,"handle":77},"rc":-8})",
             R"({"sdk":"pipe_mgr_flow_lrn_notify_ack","args":{"session":1,"handle":77},"rc":-8})"}),
        printed());
}

TEST_F(PrinterTest, PrintsTheEnginesStateOnce) {
    printer.engine(PktGenState::waitPhase0Data);
    printer.engine(PktGenState::waitPhase0Data);
    printer.engine(PktGenState::idle);
    EXPECT_EQ(joined({R"({"engine":"waitPhase0Data"})", R"({"engine":"idle"})"}), printed());
}

TEST_F(PrinterTest, PrintsAnErrorByItsClass) {
    printer.error(Kel::RangeError("VlanId", "value", "out of \"range\""));
    EXPECT_EQ(joined({R"({"error":"RangeError","text":"out of \"range\""})"}), printed());
}

TEST_F(PrinterTest, PrintsNothingOnceItIsClosed) {
    printer.event(1);
    printer.close();
    printer.event(2);
    auto const statuses = PktGenStatus::PktGenStatusIs();
    statuses->statusIs(id);
    EXPECT_EQ("{\"event\":1}\n", printed());
}

TEST_F(PrinterTest, TellsOfAPublicationBeforeAnyObserverIsCalled) {
    auto const statuses = PktGenStatus::PktGenStatusIs();
    Vanta::Subscriber subscriber;
    subscriber.subscribe(
        statuses->publisher(),
        [](void* context, Vanta::Subscriber&, Vanta::Change const&) {
            static_cast<Printer*>(context)->event(9);
        },
        &printer);
    statuses->statusIs(id);
    EXPECT_EQ(joined({R"({"status":"add","client":"noc","req":7})", R"({"event":9})"}), printed());
}

TEST(Observation, EndsWithItself) {
    std::ostringstream out;
    Printer printer(out);
    { Observation const observation(printer); }
    VynPacketTracer::pktGenStatusDataFactory({})->pktIdIs(1);
    Trace::twinlog(Trace::handle("VynPtSm"), 7, "x");
    printer.flush();
    EXPECT_EQ("", out.str());
}

}  // namespace
}  // namespace Replay
