#include "VynPacketTracer/ClientFixture.h"
#include "VynPacketTracer/VynPtClientSm.h"

namespace VynPacketTracer {
namespace {

// ---- Validation

class IsValidRequestTest : public RunningClientTest {
  protected:
    Lines validated(bool expected) {
        return after([&] { EXPECT_EQ(client->isValidRequest(made), expected); });
    }
    Lines const valid{"VynPtClientSm/7 isValidRequest:client:noc reqId:1"};
    Lines const mpls{"VynPtClientSm/7 isValidRequest:client:noc reqId:1",
                     "VynPtClientSm/9 isValidRequest:MPLS request cannot be fulfilled"};
    Lines const gre{"VynPtClientSm/7 isValidRequest:client:noc reqId:1",
                    "VynPtClientSm/9 isValidRequest:Vyn doesn't support GRE packets"};
    Vanta::Ptr<PacketTracer::Request> made = makeRequest("noc", 1, "Ethernet1");
};

TEST_F(IsValidRequestTest, AcceptsAPlainRequest) {
    EXPECT_EQ(validated(true), valid);
}

TEST_F(IsValidRequestTest, RefusesEtherTypes8847And8848AsMpls) {
    made->etherTypeIs(0x8847);
    EXPECT_EQ(validated(false), mpls);
    made->etherTypeIs(0x8848);
    EXPECT_EQ(validated(false), mpls);
}

TEST_F(IsValidRequestTest, AcceptsEtherTypes8846And8849) {
    made->etherTypeIs(0x8846);
    EXPECT_EQ(validated(true), valid);
    made->etherTypeIs(0x8849);
    EXPECT_EQ(validated(true), valid);
}

TEST_F(IsValidRequestTest, RefusesTheMplsFlag) {
    made->mplsIs(true);
    EXPECT_EQ(validated(false), mpls);
}

TEST_F(IsValidRequestTest, RefusesTheGreFlag) {
    made->greIs(true);
    EXPECT_EQ(validated(false), gre);
}

TEST_F(IsValidRequestTest, ReportsMplsAloneOfARequestThatIsBoth) {
    made->mplsIs(true);
    made->greIs(true);
    EXPECT_EQ(validated(false), mpls);
}

TEST_F(IsValidRequestTest, LooksAtNothingElse) {
    made->intfIs(Plexa::IntfId());
    made->frameIs({});
    EXPECT_EQ(validated(true), valid);
}

// ---- handleRequest

class HandleRequestTest : public RunningClientTest {
  protected:
    // Writes request 1 after a change of the plain one.
    template <class Change>
    Lines handled(Change const& change) {
        auto const made = makeRequest("noc", 1, "Ethernet1");
        change(*made);
        return after([&] { clientConfig->requestIs(made); });
    }
    Lines const refused{"result add noc/1", "result state noc/1 2", "result valid noc/1 true"};
    Lines const unknown{"result add noc/1", "result state noc/1 3", "result valid noc/1 true"};
};

TEST_F(HandleRequestTest, AnAcceptedRequestBecomesAJob) {
    request(1);
    auto const made = pktGenConfig->cfg(id("noc", 1));
    ASSERT_TRUE(made);
    EXPECT_EQ(Vanta::hexText(made->pkt().view()), requestPacket);
    EXPECT_TRUE(made->ingPortInfo().isEq({0, VynPortTypes::PortIndex(4)}));
    EXPECT_EQ(made->ingIntf(), intf("Ethernet1"));
    EXPECT_FALSE(result(1));
}

TEST_F(HandleRequestTest, ARefusedRequestGetsState2AndNoJob) {
    EXPECT_EQ(handled([](auto& made) { made.mplsIs(true); }),
              (Lines{"VynPtClientSm/7 handleRequest:client:noc reqId:1",
                     "VynPtClientSm/7 isValidRequest:client:noc reqId:1",
                     "VynPtClientSm/9 isValidRequest:MPLS request cannot be fulfilled",
                     "VynPtClientSm/7 handleRequest:client:noc reqId:1 is not a valid request"} +
               refused));
    EXPECT_FALSE(pktGenConfig->cfgHas(id("noc", 1)));
    EXPECT_TRUE(result(1)->egressIntf().empty());
}

TEST_F(HandleRequestTest, AGreRequestGetsState2) {
    EXPECT_EQ(beginning("result", handled([](auto& made) { made.greIs(true); })), refused);
}

TEST_F(HandleRequestTest, AnUnknownIngressInterfaceGetsState3) {
    EXPECT_EQ(handled([](auto& made) { made.intfIs(intf("Ethernet9")); }),
              (Lines{"VynPtClientSm/7 handleRequest:client:noc reqId:1",
                     "VynPtClientSm/7 isValidRequest:client:noc reqId:1",
                     "VynPtClientSm/9 handleRequest:Invalid interface:Ethernet9"} +
               unknown));
    EXPECT_FALSE(pktGenConfig->cfgHas(id("noc", 1)));
}

TEST_F(HandleRequestTest, AnUnknownIngressInterfaceIsFoundBeforeThePacketIsBuilt) {
    EXPECT_EQ(beginning("VynPtClientSm/9", handled([](auto& made) {
                            made.intfIs(intf("Ethernet9"));
                            made.frameIs({});
                        })),
              (Lines{"VynPtClientSm/9 handleRequest:Invalid interface:Ethernet9"}));
    EXPECT_EQ(result(1)->state(), PacketTracer::State::noEgress);
}

TEST_F(HandleRequestTest, TheEmptyInterfacePrintsAsNothing) {
    EXPECT_EQ(
        beginning("VynPtClientSm/9", handled([](auto& made) { made.intfIs(Plexa::IntfId()); })),
        (Lines{"VynPtClientSm/9 handleRequest:Invalid interface:"}));
}

TEST_F(HandleRequestTest, TheIngressPortIsThatOfTheInterfaceItselfAlone) {
    lag("Lag1");
    lagMember("Ethernet1", "Lag1");
    vlan(10, {"Ethernet1"});
    cpuPort("Ethernet1");
    std::uint32_t number = 0;
    for (std::string_view const name : {"Ethernet1.100", "Lag1", "Vlan10", "Cpu"}) {
        request(++number, name);
        EXPECT_EQ(result(number)->state(), PacketTracer::State::noEgress) << name;
    }
    EXPECT_TRUE(pktGenConfig->cfg().empty());
}

TEST_F(HandleRequestTest, APacketThatCannotBeBuiltGetsState2) {
    EXPECT_EQ(handled([](auto& made) { made.frameIs({}); }),
              (Lines{"VynPtClientSm/7 handleRequest:client:noc reqId:1",
                     "VynPtClientSm/7 isValidRequest:client:noc reqId:1",
                     "VynPtClientSm/9 handleRequest:Unable to construct packet from the request"} +
               refused));
    EXPECT_FALSE(pktGenConfig->cfgHas(id("noc", 1)));
}

TEST_F(HandleRequestTest, APacketOf9236BytesIsTheLongest) {
    handled([](auto& made) { made.frameIs(std::vector<std::uint8_t>(9236)); });
    EXPECT_TRUE(pktGenConfig->cfgHas(id("noc", 1)));
}

TEST_F(HandleRequestTest, APacketOf9237BytesCannotBeBuilt) {
    EXPECT_EQ(beginning("result",
                        handled([](auto& made) { made.frameIs(std::vector<std::uint8_t>(9237)); })),
              refused);
}

TEST_F(HandleRequestTest, ARequestThatIsNotValidYetChangesNothing) {
    job(1);
    clientStatus->resultIs(id("noc", 1))->stateIs(PacketTracer::State::egressFound);
    EXPECT_EQ(handled([](auto& made) {
                  made.validIs(false);
                  made.mplsIs(true);
              }),
              (Lines{"VynPtClientSm/7 handleRequest:client:noc reqId:1",
                     "VynPtClientSm/7 handleRequest:client:noc reqId:1 not valid yet"}));
    EXPECT_TRUE(pktGenConfig->cfgHas(id("noc", 1)));
    EXPECT_EQ(result(1)->state(), PacketTracer::State::egressFound);
    EXPECT_FALSE(result(1)->valid());
}

TEST_F(HandleRequestTest, WithdrawingRemovesJobAndResult) {
    request(1);
    clientStatus->resultIs(id("noc", 1));
    recorder.take();
    withdraw(1);
    EXPECT_EQ(last(happened()), "result del noc/1");
    EXPECT_FALSE(pktGenConfig->cfgHas(id("noc", 1)));
    EXPECT_FALSE(result(1));
}

TEST_F(HandleRequestTest, WithdrawingWithoutJobAndResultIsTheSameSteps) {
    request(1, "Ethernet1", false);
    EXPECT_EQ(after([&] { withdraw(1); }),
              (Lines{"VynPtClientSm/7 handleRequest:client:noc reqId:1",
                     "VynPtClientSm/7 handleRequest:del client:noc reqId:1"}));
}

TEST_F(HandleRequestTest, ARequestThatNeverWasIsTreatedAsWithdrawn) {
    EXPECT_EQ(after([&] { client->handleRequest(id("noc", 77)); }),
              (Lines{"VynPtClientSm/7 handleRequest:client:noc reqId:77",
                     "VynPtClientSm/7 handleRequest:del client:noc reqId:77"}));
}

TEST_F(HandleRequestTest, ASecondTimeWithEqualContentsKeepsTheJobAndPublishesNothing) {
    request(1);
    auto const made = pktGenConfig->cfg(id("noc", 1));
    EXPECT_EQ(after([&] { client->handleRequest(id("noc", 1)); }), acceptedAgain(1));
    EXPECT_EQ(pktGenConfig->cfg(id("noc", 1)), made);
}

TEST_F(HandleRequestTest, ASecondTimeWithAnotherPacketRaisesTheReinstantiationError) {
    request(1)->frameIs({1, 2, 3});
    EXPECT_THROW(client->handleRequest(id("noc", 1)), Kel::ReinstantiationError);
}

TEST_F(HandleRequestTest, ASecondTimeOnAnotherPortRaisesTheReinstantiatingValueError) {
    request(1);
    port("Ethernet1", 1, 4);
    EXPECT_THROW(client->handleRequest(id("noc", 1)), Kel::ReinstantiatingValueError);
}

TEST_F(HandleRequestTest, AnotherPacketInsideADispatcherEndsTheProcess) {
    auto const made = request(1);
    made->frameIs({1, 2, 3});
    made->validIs(false);
    expectEnd([&] { made->validIs(true); }, acceptedAgain(1), "ReinstantiationError",
              "PktGenCfgData::pkt (attribute 131) of request 1 of client noc cannot change from " +
                  std::string(requestPacket) + " to 010203");
}

TEST_F(HandleRequestTest, ARefusalKeepsTheJobOfAnEarlierVersion) {
    request(1);
    EXPECT_EQ(beginning("result", handled([](auto& made) { made.mplsIs(true); })), refused);
    EXPECT_TRUE(pktGenConfig->cfgHas(id("noc", 1)));
}

TEST_F(HandleRequestTest, AnUnknownInterfaceKeepsTheJobOfAnEarlierVersion) {
    request(1);
    EXPECT_EQ(beginning("result", handled([](auto& made) { made.intfIs(intf("Ethernet9")); })),
              unknown);
    EXPECT_TRUE(pktGenConfig->cfgHas(id("noc", 1)));
}

TEST_F(HandleRequestTest, AcceptanceKeepsTheResultOfAnEarlierVersion) {
    handled([](auto& made) { made.mplsIs(true); });
    recorder.take();
    request(1);
    EXPECT_EQ(happened("result"), Lines{});
    EXPECT_EQ(result(1)->state(), PacketTracer::State::notTraceable);
    EXPECT_TRUE(pktGenConfig->cfgHas(id("noc", 1)));
}

TEST_F(HandleRequestTest, ARefusalUsesTheResultThatIsThere) {
    clientStatus->resultIs(id("noc", 1));
    EXPECT_EQ(beginning("result", handled([](auto& made) { made.greIs(true); })),
              (Lines{"result state noc/1 2", "result valid noc/1 true"}));
}

}  // namespace
}  // namespace VynPacketTracer
