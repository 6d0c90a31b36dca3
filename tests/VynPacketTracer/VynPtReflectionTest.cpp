// The reflection tables as a whole: what generic code sees of each type.
#include <gtest/gtest.h>

#include "VynPacketTracer/TracerFixture.h"
#include "VynPacketTracer/VynPtMounts.h"

namespace VynPacketTracer {
namespace {

std::string_view kindText(Kel::AttributeKind kind) {
    switch (kind) {
        case Kel::AttributeKind::value:
            return "value";
        case Kel::AttributeKind::pointer:
            return "pointer";
        case Kel::AttributeKind::collection:
            return "collection";
    }
    return "?";
}

// One line for the type, one an attribute (number, name, type, kind), one for the operations.
Lines table(Kel::Object const& object) {
    auto const& info = object.typeInfo();
    Lines lines{std::string(info.name)};
    for (auto const& attribute : info.attributes) {
        lines.push_back(std::to_string(attribute.number) + " " + std::string(attribute.name) + " " +
                        std::string(attribute.type) + " " + std::string(kindText(attribute.kind)));
    }
    std::string operations;
    for (auto const& operation : info.operations) {
        operations += (operations.empty() ? "" : " ") + std::string(operation);
    }
    lines.push_back(operations);
    return lines;
}

class VynPtReflectionTest : public TracerTest {
  protected:
    VynPtReflectionTest() {
        client("noc");
        start();
        request(1);
        answer(1);
    }
};

TEST_F(VynPtReflectionTest, OfTheMounts) {
    EXPECT_EQ(table(*vynPacketTracerMountsFactory()), (Lines{
                                                          "VynPacketTracerMounts",
                                                          "130 config Kel::Dir pointer",
                                                          "131 status Kel::Dir pointer",
                                                          "",
                                                      }));
}

TEST_F(VynPtReflectionTest, OfARequestsReactor) {
    EXPECT_EQ(table(*clientSm("noc")->request(id("noc", 1))),
              (Lines{
                  "NestedSm_Request",
                  "0 key PacketTracer::RequestId value",
                  "kel_handleRequest_valid",
              }));
}

TEST_F(VynPtReflectionTest, OfAClientsStateMachine) {
    EXPECT_EQ(table(*clientSm("noc")),
              (Lines{
                  "PacketTracerClientSm",
                  "130 name Vanta::String value",
                  "131 clientConfig PacketTracer::ClientConfig pointer",
                  "132 clientStatus PacketTracer::ClientStatus pointer",
                  "133 pktGenConfig VynPacketTracer::PktGenConfig pointer",
                  "134 systemStatus VynSystem::SystemStatus pointer",
                  "135 fcsd Fen::FenCommonSmData pointer",
                  "136 bridgingConfig Bridging::Config pointer",
                  "137 chipStatus VynSlice::ChipStatus pointer",
                  "138 request VynPacketTracer::NestedSm_Request collection",
                  "0 initialized bool value",
                  "handleRequests handleRequest isValidRequest handleResults updateResult "
                  "updatePortInfoResult pktFlooded addVlanIntf cpuIntfId handleInitialized",
              }));
}

TEST_F(VynPtReflectionTest, OfAnAnswersWatcher) {
    EXPECT_EQ(table(*tracer->localStatus(id("noc", 1))), (Lines{
                                                             "NestedSm_LocalStatus",
                                                             "0 key PacketTracer::RequestId value",
                                                             "kel_handleLocalStatus_ready",
                                                         }));
}

TEST_F(VynPtReflectionTest, OfTheRoot) {
    EXPECT_EQ(table(*tracer),
              (Lines{
                  "PacketTracerSm",
                  "130 config Kel::Dir pointer",
                  "131 status Kel::Dir pointer",
                  "132 phase0DataIntf VynSdk::Phase0DataIntf pointer",
                  "133 pktGenSupported bool value",
                  "134 pktTracerSupported bool value",
                  "135 sessionHandle U32 value",
                  "136 deviceId VynId::VynDevId value",
                  "137 resourceInfoIntf VyResourceInfo::VyResourceInfoIntf pointer",
                  "138 vyPdIntf VyPd::VyPdIntf pointer",
                  "139 rootScheduler Orb::TaskSchedulerRoot pointer",
                  "140 systemStatus VynSystem::SystemStatus pointer",
                  "141 fcsd Fen::FenCommonSmData pointer",
                  "142 bridgingConfig Bridging::Config pointer",
                  "143 chipStatus VynSlice::ChipStatus pointer",
                  "146 pktGenCfg VynPacketTracer::PktGenConfig pointer",
                  "147 pktGenStatus VynPacketTracer::PktGenStatus pointer",
                  "149 localStatus VynPacketTracer::NestedSm_LocalStatus collection",
                  "150 pktGenSm VynPacketTracer::PktGenSm pointer",
                  "151 clientSm VynPacketTracer::PacketTracerClientSm collection",
                  "152 initialized bool value",
                  "handleClients handleClient handlePktGenStatus handleInitialized",
              }));
}

TEST_F(VynPtReflectionTest, OfTheEngine) {
    EXPECT_EQ(table(*tracer->pktGenSm()),
              (Lines{
                  "PktGenSm",
                  "130 config VynPacketTracer::PktGenConfig pointer",
                  "131 phase0DataIntf VynSdk::Phase0DataIntf pointer",
                  "132 status VynPacketTracer::PktGenStatus pointer",
                  "133 sessionHandle U32 value",
                  "134 deviceId VynId::VynDevId value",
                  "135 pktTracerSupported bool value",
                  "136 resourceInfoIntf VyResourceInfo::VyResourceInfoIntf pointer",
                  "137 vyPdIntf VyPd::VyPdIntf pointer",
                  "138 rootScheduler Orb::TaskSchedulerRoot pointer",
                  "139 task Orb::Task pointer",
                  "140 taskName Vanta::String value",
                  "141 state VynPacketTracer::PktGenState value",
                  "142 pktId U16 value",
                  "143 appId U32 value",
                  "144 curCfg VynPacketTracer::PktGenCfgData pointer",
                  "145 curPktCounter U64 value",
                  "146 socketPairWriteDesc S32 value",
                  "147 socketPairReadFileDesc Orb::FileDescriptor pointer",
                  "148 rSocketIn Orb::FileDescriptor pointer",
                  "149 learnQuantaIndex U32 value",
                  "150 pktTracerDigestEntrySize U32 value",
                  "151 initialized bool value",
                  "handleConfig processPktTracerDigest processPhase0DataResponse doWork "
                  "processRequest getPhase0Data getPktCounters sendPkt checkPktCnt disablePktGen "
                  "processError initSocket doCleanup registerPktTracerDigest "
                  "deRegisterPktTracerDigest handleInitialized",
              }));
}

TEST_F(VynPtReflectionTest, OfAJob) {
    EXPECT_EQ(table(*tracer->pktGenCfg()->cfg(id("noc", 1))),
              (Lines{
                  "PktGenCfgData",
                  "130 req PacketTracer::RequestId value",
                  "131 pkt Vanta::Bytes value",
                  "132 ingPortInfo VynSystem::PortInfo value",
                  "133 ingIntf Plexa::IntfId value",
                  "",
              }));
}

TEST_F(VynPtReflectionTest, OfAnAnswer) {
    EXPECT_EQ(table(*tracer->pktGenStatus()->status(id("noc", 1))),
              (Lines{
                  "PktGenStatusData",
                  "130 req PacketTracer::RequestId value",
                  "131 pktId U16 value",
                  "132 ready bool value",
                  "133 egrPortInfo VynSystem::PortInfo value",
                  "134 egrL2Domain U16 value",
                  "135 copyToCpu bool value",
                  "136 routed bool value",
                  "137 dropped bool value",
                  "",
              }));
}

TEST_F(VynPtReflectionTest, OfTheJobs) {
    EXPECT_EQ(table(*tracer->pktGenCfg()), (Lines{
                                               "PktGenConfig",
                                               "130 cfg VynPacketTracer::PktGenCfgData collection",
                                               "",
                                           }));
}

TEST_F(VynPtReflectionTest, OfTheAnswers) {
    EXPECT_EQ(table(*tracer->pktGenStatus()),
              (Lines{
                  "PktGenStatus",
                  "130 status VynPacketTracer::PktGenStatusData collection",
                  "",
              }));
}

}  // namespace
}  // namespace VynPacketTracer
