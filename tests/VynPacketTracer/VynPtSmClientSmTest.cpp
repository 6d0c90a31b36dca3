// clientSmIs, clientSmDel and clientSmDelAll.
#include "VynPacketTracer/TracerFixture.h"

namespace VynPacketTracer {
namespace {

// The arguments of clientSmIs as the client "noc" was made of them; a test changes some.
class ClientSmIsTest : public RunningTracerTest {
  protected:
    ClientSmIsTest() {
        client("noc");
        existing = clientSm("noc");
        given = {existing->clientConfig(), existing->clientStatus(), existing->pktGenConfig(),
                 existing->systemStatus(), existing->fcsd(),         existing->bridgingConfig(),
                 existing->chipStatus()};
    }
    struct Given {
        Vanta::Ptr<PacketTracer::ClientConfig const> clientConfig;
        Vanta::Ptr<PacketTracer::ClientStatus> clientStatus;
        Vanta::Ptr<PktGenConfig> pktGenConfig;
        Vanta::Ptr<VynSystem::SystemStatus const> systemStatus;
        Vanta::Ptr<Fen::FenCommonSmData const> fcsd;
        Vanta::Ptr<Bridging::Config const> bridgingConfig;
        Vanta::Ptr<VynSlice::ChipStatus const> chipStatus;
    };
    Vanta::Ptr<PacketTracerClientSm> asGiven(std::string_view name = "noc") {
        return tracer->clientSmIs(name, given.clientConfig, given.clientStatus, given.pktGenConfig,
                                  given.systemStatus, given.fcsd, given.bridgingConfig,
                                  given.chipStatus);
    }
    // The attribute that the error names.
    std::string raised() {
        try {
            asGiven();
        } catch (Kel::ReinstantiationError const& error) {
            return error.typeName() + " " + error.attribute() + " " +
                   std::to_string(error.attributeNumber());
        }
        return "nothing";
    }
    // The attribute that the error names when this argument alone is null, if the error holds the
    // argument and null.
    template <class Argument>
    std::string raisedWithout(Argument Given::*argument) {
        auto const kept = std::exchange(given.*argument, nullptr);
        std::string said = "nothing";
        try {
            asGiven();
        } catch (Kel::ReinstantiationError const& error) {
            bool const holdsBoth = error.oldObject() == kept && !error.newObject();
            said = holdsBoth ? error.attribute() : "another object";
        }
        given.*argument = kept;
        return said;
    }
    // From the last argument on, one after the other becomes another object.
    void otherChipStatus() { given.chipStatus = VynSlice::ChipStatus::ChipStatusIs(); }
    void otherBridgingConfig() {
        otherChipStatus();
        given.bridgingConfig = Bridging::Config::ConfigIs();
    }
    void otherFcsd() {
        otherBridgingConfig();
        given.fcsd = Fen::FenCommonSmData::FenCommonSmDataIs();
    }
    void otherSystemStatus() {
        otherFcsd();
        given.systemStatus = VynSystem::SystemStatus::SystemStatusIs();
    }
    void otherPktGenConfig() {
        otherSystemStatus();
        given.pktGenConfig = pktGenConfigFactory();
    }
    void otherClientStatus() {
        otherPktGenConfig();
        given.clientStatus = PacketTracer::ClientStatus::ClientStatusIs();
    }
    void otherClientConfig() {
        otherClientStatus();
        given.clientConfig = PacketTracer::ClientConfig::ClientConfigIs();
    }

    Vanta::Ptr<PacketTracerClientSm> existing;
    Given given;
};

TEST_F(ClientSmIsTest, OfTheSameArgumentsReturnsTheStateMachineThatIsThere) {
    EXPECT_EQ(after([&] { EXPECT_EQ(asGiven(), existing); }), Lines{});
}

TEST_F(ClientSmIsTest, OfAnotherNameMakesAnotherStateMachine) {
    auto const made = asGiven("ops");
    EXPECT_NE(made, existing);
    EXPECT_EQ(clientSm("ops"), made);
}

TEST_F(ClientSmIsTest, NamesTheClientConfigFirst) {
    otherClientConfig();
    EXPECT_EQ(raised(), "PacketTracerClientSm clientConfig 131");
}

TEST_F(ClientSmIsTest, ThenTheClientStatus) {
    otherClientStatus();
    EXPECT_EQ(raised(), "PacketTracerClientSm clientStatus 132");
}

TEST_F(ClientSmIsTest, ThenThePktGenConfig) {
    otherPktGenConfig();
    EXPECT_EQ(raised(), "PacketTracerClientSm pktGenConfig 133");
}

TEST_F(ClientSmIsTest, ThenTheSystemStatus) {
    otherSystemStatus();
    EXPECT_EQ(raised(), "PacketTracerClientSm systemStatus 134");
}

TEST_F(ClientSmIsTest, ThenTheFcsd) {
    otherFcsd();
    EXPECT_EQ(raised(), "PacketTracerClientSm fcsd 135");
}

TEST_F(ClientSmIsTest, ThenTheBridgingConfig) {
    otherBridgingConfig();
    EXPECT_EQ(raised(), "PacketTracerClientSm bridgingConfig 136");
}

TEST_F(ClientSmIsTest, ThenTheChipStatus) {
    otherChipStatus();
    EXPECT_EQ(raised(), "PacketTracerClientSm chipStatus 137");
}

TEST_F(ClientSmIsTest, SaysOfEachArgumentThatItBecameNull) {
    EXPECT_EQ(raisedWithout(&Given::clientConfig), "clientConfig");
    EXPECT_EQ(raisedWithout(&Given::clientStatus), "clientStatus");
    EXPECT_EQ(raisedWithout(&Given::pktGenConfig), "pktGenConfig");
    EXPECT_EQ(raisedWithout(&Given::systemStatus), "systemStatus");
    EXPECT_EQ(raisedWithout(&Given::fcsd), "fcsd");
    EXPECT_EQ(raisedWithout(&Given::bridgingConfig), "bridgingConfig");
    EXPECT_EQ(raisedWithout(&Given::chipStatus), "chipStatus");
}

TEST_F(ClientSmIsTest, SaysThatAnObjectWasNull) {
    auto const notNull = std::exchange(given.chipStatus, nullptr);
    asGiven("ops");
    given.chipStatus = notNull;
    try {
        asGiven("ops");
        FAIL();
    } catch (Kel::ReinstantiationError const& error) {
        EXPECT_EQ(error.oldObject(), nullptr);
        EXPECT_EQ(error.newObject(), notNull);
        EXPECT_STREQ(error.what(),
                     "PacketTracerClientSm::chipStatus (attribute 137) of client ops differs from "
                     "null, which it was made with");
    }
}

TEST_F(ClientSmIsTest, RaisesAnErrorThatHoldsBothObjects) {
    otherClientStatus();
    try {
        asGiven();
        FAIL();
    } catch (Kel::ReinstantiationError const& error) {
        EXPECT_EQ(error.oldObject(), statusOf("noc"));
        EXPECT_EQ(error.newObject(), given.clientStatus);
        given.clientStatus = nullptr;
        EXPECT_EQ(error.newObject()->refCount(), 1u);
    }
}

TEST_F(ClientSmIsTest, ThatRaisesLeavesEverythingAsItWas) {
    otherClientConfig();
    raised();
    EXPECT_EQ(clientSm("noc"), existing);
    EXPECT_EQ(existing->clientConfig(), configOf("noc"));
}

TEST_F(ClientSmIsTest, ClientSmDelReturnsTheStateMachineThenNull) {
    EXPECT_EQ(tracer->clientSmDel("noc"), existing);
    EXPECT_EQ(tracer->clientSmDel("noc"), nullptr);
    EXPECT_EQ(clientSm("noc"), nullptr);
}

TEST_F(ClientSmIsTest, ClientSmDelAllRemovesEveryStateMachine) {
    client("ops");
    tracer->clientSmDelAll();
    EXPECT_FALSE(clientSm("noc"));
    EXPECT_FALSE(clientSm("ops"));
}

// Each client made here has jobs of its own, which go with it; whoever hears of that makes another.
TEST_F(ClientSmIsTest, ClientSmDelAllEndsHoweverManyAreAddedMeanwhile) {
    unsigned made = 0;
    std::vector<std::unique_ptr<OnPublication>> observers;
    std::function<void()> const makeAnother = [&] {
        if (made == 10) {
            return;
        }
        given.pktGenConfig = pktGenConfigFactory();
        given.pktGenConfig->cfgIs(id("noc", 1), {1}, {}, intf("Ethernet1"));
        auto const& publisher = given.pktGenConfig->publisher();
        observers.push_back(
            std::make_unique<OnPublication>(publisher, [&](auto, auto) { makeAnother(); }));
        asGiven("client" + std::to_string(++made));
        given.pktGenConfig = nullptr;
    };
    makeAnother();
    tracer->clientSmDelAll();
    EXPECT_EQ(made, 2u);
    EXPECT_FALSE(clientSm("client1"));
    EXPECT_TRUE(clientSm("client2"));
}

}  // namespace
}  // namespace VynPacketTracer
