#include "scenario/Player.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "scenario/Reader.h"
#include "scriptchip/CallLog.h"

namespace Scenario {
namespace {

class PlayerTest : public testing::Test {
  protected:
    void play(std::string_view line) {
        Event const event = readEvent(line);
        player.check(event);
        player.carryOut(event);
    }
    // One of the objects, as the type that it is.
    template <class T>
    T const& root(std::string_view name) const {
        auto const roots = player.roots();
        auto const found = std::ranges::find(roots, name, &Player::Root::name);
        return dynamic_cast<T const&>(*found->node);
    }
    std::vector<std::string> membersOf(std::uint16_t vlan) const {
        std::vector<std::string> names;
        auto const config =
            root<Bridging::Config>("bridgingConfig").vlanConfig(Bridging::VlanId(vlan));
        for (auto const& member : config->intf()) {
            names.push_back(member.key.stringValue());
        }
        return names;
    }

    ScriptChip::CallLog log;
    ScriptChip::ScriptChip chip{&log};
    Player player{chip};
};

TEST_F(PlayerTest, NamesItsObjectsByWhatTheyAreFor) {
    std::string names;
    for (auto const& named : player.roots()) {
        names += std::string(named.name) + (named.node != nullptr ? " " : "(none) ");
    }
    EXPECT_EQ(
        "config status tracer(none) systemStatus fcsd bridgingConfig chipStatus phase0DataIntf "
        "vyPdIntf resourceInfoIntf rootScheduler ",
        names);
}

TEST_F(PlayerTest, HasAnEngineFromTheStartToTheStop) {
    EXPECT_FALSE(player.engineState());
    play(R"({"do":"start"})");
    EXPECT_EQ(VynPacketTracer::PktGenState::idle, player.engineState());
    play(R"({"do":"stop"})");
    EXPECT_FALSE(player.engineState());
}

TEST_F(PlayerTest, HoldsTheTracerAlone) {
    play(R"({"do":"start"})");
    EXPECT_EQ(1U, root<VynPacketTracer::PacketTracerSm>("tracer").refCount());
}

TEST_F(PlayerTest, NeverAsksATaskToYieldUnlessItIsToldTo) {
    auto const& scheduler = root<Orb::TaskSchedulerRoot>("rootScheduler");
    EXPECT_EQ(Orb::TaskSchedulerRoot::neverYield, scheduler.yieldAfter());
    play(R"({"do":"yieldAfter","checks":3})");
    EXPECT_EQ(3U, scheduler.yieldAfter());
}

TEST_F(PlayerTest, PutsAVlanInPlaceOfWhatItWas) {
    play(R"({"do":"vlan","id":10,"intf":["Ethernet1","Ethernet2"],"internal":true})");
    play(R"({"do":"vlan","id":10,"intf":["Cpu","Ethernet2","Cpu"]})");
    EXPECT_EQ((std::vector<std::string>{"Cpu", "Ethernet2"}), membersOf(10));
    EXPECT_FALSE(
        root<Bridging::Config>("bridgingConfig").vlanConfig(Bridging::VlanId(10))->internal());
}

TEST_F(PlayerTest, FillsARequestBeforeItIsThere) {
    play(R"({"do":"clientConfig","client":"noc"})");
    play(R"({"do":"request","client":"noc","req":1,"intf":"Lag1","etherType":1,"mpls":true,)"
         R"("gre":true,"valid":false,"raw":"0102"})");
    auto const config =
        root<Kel::Dir>("config").entity<PacketTracer::ClientConfig>(Vanta::String("noc"));
    auto const request = config->request({"noc", 1});
    EXPECT_EQ("Lag1", request->intf().stringValue());
    EXPECT_EQ(1, request->etherType());
    EXPECT_TRUE(request->mpls());
    EXPECT_TRUE(request->gre());
    EXPECT_FALSE(request->valid());
    EXPECT_EQ((Vanta::Bytes{1, 2}), request->frame());
}

TEST_F(PlayerTest, PutsAFreshRequestInPlaceOfTheOneThatIsThere) {
    play(R"({"do":"clientConfig","client":"noc"})");
    play(R"({"do":"request","client":"noc","req":1,"intf":"","gre":true})");
    play(R"({"do":"request","client":"noc","req":1,"intf":""})");
    auto const config =
        root<Kel::Dir>("config").entity<PacketTracer::ClientConfig>(Vanta::String("noc"));
    EXPECT_EQ(1U, config->request().size());
    EXPECT_FALSE(config->request({"noc", 1})->gre());
}

TEST_F(PlayerTest, RefusesWithoutChangingAnything) {
    play(R"({"do":"start"})");
    EXPECT_THROW(play(R"({"do":"start","session":7})"), Refusal);
    EXPECT_EQ(1U, root<VynPacketTracer::PacketTracerSm>("tracer").sessionHandle());
}

TEST(Player, TakesTheTracerDownWithItself) {
    ScriptChip::CallLog log;
    {
        ScriptChip::ScriptChip chip(&log);
        Player player(chip);
        player.carryOut(readEvent(R"({"do":"start","device":9})"));
    }
    EXPECT_EQ("pipe_mgr_lrn_digest_notification_deregister", log.steps().back());
}

}  // namespace
}  // namespace Scenario
