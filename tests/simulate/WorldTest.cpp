#include "simulate/World.h"

#include <gtest/gtest.h>

#include "simulate/DrawnSwitch.h"

namespace Simulate {
namespace {

// A world with a job in work, whose packet was injected.
class WorldTest : public testing::Test {
  protected:
    WorldTest() {
        for (auto const& event : tellForwarding(program.drawn.model)) {
            world.carryOut(event);
        }
        world.carryOut(Do::Start{.session = Model::session, .device = Model::device});
        world.carryOut(Do::ClientConfig{"A"});
        world.carryOut(Do::ClientStatus{"A"});
        world.carryOut(Do::Request{
            .id = {"A", 1}, .intf = *Plexa::IntfId::fromName("Ethernet1"), .raw = packet});
        for (int i = 0; i < 3; ++i) {
            world.carryOut(Do::Turn());
        }
    }
    std::string breachOf() {
        auto const breach = world.logbook().takeBreach();
        return breach ? breach->invariant + ": " + breach->detail : "none";
    }
    bool logHas(std::string const& part) {
        for (auto const& line : world.logbook().log()) {
            if (line.find(part) != std::string::npos) {
                return true;
            }
        }
        return false;
    }

    // An injection at Ethernet1 that the chip has accepted. Refers to the packet.
    SdkSeam::SdkCall injection(Bytes const& pkt, std::uint16_t pktId) const {
        auto const port = program.drawn.model.interface(*Plexa::IntfId::fromName("Ethernet1"));
        return {.function = SdkSeam::SdkFunction::genOnePkt,
                .pipe = port->devicePort / 128U,
                .pktId = pktId,
                .portIndex = static_cast<std::uint8_t>(port->devicePort % 128),
                .pkt = pkt};
    }

    Bytes const packet = Bytes(64, 2);
    Program const program = drawProgram(1, 0);
    World world{program.drawn};
};

TEST_F(WorldTest, CallsComeOnTheRecordAsTheTracerMakesThem) {
    EXPECT_TRUE(logHas("sdk genOnePkt session 1 device 1 pipe "));
    EXPECT_TRUE(logHas("phase0 answer Ethernet1 there"));
    EXPECT_EQ(breachOf(), "none");
    EXPECT_EQ(world.packets().accepted(), 1U);
}

TEST_F(WorldTest, ADigestComesThroughTheBoard) {
    world.carryOut(ChipStep());
    EXPECT_TRUE(logHas("message of 1:"));
    EXPECT_TRUE(logHas("sdk pipe_mgr_flow_lrn_notify_ack session 1 handle 77 -> 0"));
    world.packets().checkJournal(world.chip().journal(), true);
    EXPECT_EQ(breachOf(), "none");
}

TEST_F(WorldTest, AChipThatHasNotWorkedDiffersFromTheRecordOnlyWhenItShouldHave) {
    world.packets().checkJournal(world.chip().journal(), false);
    EXPECT_EQ(breachOf(), "none");
    world.packets().checkJournal(world.chip().journal(), true);
    EXPECT_EQ(breachOf(), "packets: 1 packets were accepted, 0 others went through the chip");
}

TEST_F(WorldTest, APacketThatNobodyAskedForIsABreach) {
    world.packets().engineIs(nullptr);
    Bytes const phase0(8);
    SdkSeam::SdkCall call{.function = SdkSeam::SdkFunction::genOnePkt,
                          .session = Model::session,
                          .genPort = SoftChip::generatorPort,
                          .appId = SoftChip::generatorApp,
                          .pktId = 9,
                          .portIndex = 3,
                          .pkt = packet,
                          .phase0 = phase0};
    world.chip().call(call);
    EXPECT_EQ(call.rc, 0);
    world.chip().step();
    world.packets().checkJournal(world.chip().journal(), false);
    EXPECT_EQ(breachOf(), "packets: 1 packets were accepted, 2 others went through the chip");
}

TEST_F(WorldTest, APacketOfAnotherJobIsABreach) {
    world.packets().injected(injection(Bytes(64, 9), 2));
    EXPECT_EQ(breachOf(), "packets: packet 2 is not that of the job in work, A/1");
}

TEST_F(WorldTest, APacketIdThatSkipsOneIsABreach) {
    world.packets().injected(injection(packet, 3));
    EXPECT_EQ(breachOf(), "packets: packet id 3 follows 1");
}

TEST_F(WorldTest, AnInjectionThatNobodyAnsweredForIsABreach) {
    world.packets().injected(injection(packet, 2));
    EXPECT_EQ(breachOf(), "packets: A/1 was injected without a phase-0 answer of its own");
}

TEST_F(WorldTest, APacketWithoutAJobIsABreach) {
    world.packets().engineIs(nullptr);
    world.packets().injected(injection(packet, 1));
    EXPECT_EQ(breachOf(), "packets: packet 1 was injected without a job");
}

TEST_F(WorldTest, AfterTheStopTheChipHasNobodyToCall) {
    EXPECT_TRUE(world.board().registered());
    world.carryOut(Do::Stop());
    EXPECT_FALSE(world.board().registered());
}

TEST_F(WorldTest, AResultThatLosesAnEntryIsABreach) {
    world.carryOut(ChipStep());
    world.carryOut(Do::Turn());
    EXPECT_FALSE(world.shrunkenResults(world.logbook().takeAddedResults()));
    world.carryOut(Do::RequestDel{{"A", 1}});
    world.carryOut(Do::Result{{"A", 1}});
    auto const breach = world.shrunkenResults({});
    ASSERT_TRUE(breach);
    EXPECT_EQ(breach->invariant, "results");
}

}  // namespace
}  // namespace Simulate
