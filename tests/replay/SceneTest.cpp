#include "replay/Scene.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "replay/JsonLine.h"
#include "scriptchip/Journal.h"

namespace Replay {
namespace {

class SceneTest : public testing::Test {
  protected:
    void play(std::string_view line) {
        Event const event = readEvent(line);
        scene.check(event);
        scene.carryOut(event);
    }
    // One of the scene's objects, as the type that it is.
    template <class T>
    T const& root(std::string_view name) const {
        auto const roots = scene.roots();
        auto const found = std::ranges::find(roots, name, &Scene::Root::name);
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

    ScriptChip::Journal journal;
    Scene scene{journal};
};

TEST_F(SceneTest, NamesItsObjectsByWhatTheyAreFor) {
    std::string names;
    for (auto const& named : scene.roots()) {
        names += std::string(named.name) + (named.node != nullptr ? " " : "(none) ");
    }
    EXPECT_EQ(
        "config status tracer(none) systemStatus fcsd bridgingConfig chipStatus phase0DataIntf "
        "vyPdIntf resourceInfoIntf rootScheduler ",
        names);
}

TEST_F(SceneTest, HasAnEngineFromTheStartToTheStop) {
    EXPECT_FALSE(scene.engineState());
    play(R"({"do":"start"})");
    EXPECT_EQ(VynPacketTracer::PktGenState::idle, scene.engineState());
    play(R"({"do":"stop"})");
    EXPECT_FALSE(scene.engineState());
}

TEST_F(SceneTest, HoldsTheTracerAlone) {
    play(R"({"do":"start"})");
    EXPECT_EQ(1U, root<VynPacketTracer::PacketTracerSm>("tracer").refCount());
}

TEST_F(SceneTest, NeverAsksATaskToYieldUnlessItIsToldTo) {
    auto const& scheduler = root<Orb::TaskSchedulerRoot>("rootScheduler");
    EXPECT_EQ(Orb::TaskSchedulerRoot::neverYield, scheduler.yieldAfter());
    play(R"({"do":"yieldAfter","checks":3})");
    EXPECT_EQ(3U, scheduler.yieldAfter());
}

TEST_F(SceneTest, PutsAVlanInPlaceOfWhatItWas) {
    play(R"({"do":"vlan","id":10,"intf":["Ethernet1","Ethernet2"],"internal":true})");
    play(R"({"do":"vlan","id":10,"intf":["Cpu","Ethernet2","Cpu"]})");
    EXPECT_EQ((std::vector<std::string>{"Cpu", "Ethernet2"}), membersOf(10));
    EXPECT_FALSE(
        root<Bridging::Config>("bridgingConfig").vlanConfig(Bridging::VlanId(10))->internal());
}

TEST_F(SceneTest, FillsARequestBeforeItIsThere) {
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

TEST_F(SceneTest, PutsAFreshRequestInPlaceOfTheOneThatIsThere) {
    play(R"({"do":"clientConfig","client":"noc"})");
    play(R"({"do":"request","client":"noc","req":1,"intf":"","gre":true})");
    play(R"({"do":"request","client":"noc","req":1,"intf":""})");
    auto const config =
        root<Kel::Dir>("config").entity<PacketTracer::ClientConfig>(Vanta::String("noc"));
    EXPECT_EQ(1U, config->request().size());
    EXPECT_FALSE(config->request({"noc", 1})->gre());
}

TEST_F(SceneTest, RefusesWithoutChangingAnything) {
    play(R"({"do":"start"})");
    EXPECT_THROW(play(R"({"do":"start","session":7})"), Refusal);
    EXPECT_EQ(1U, root<VynPacketTracer::PacketTracerSm>("tracer").sessionHandle());
}

TEST(Scene, TakesTheTracerDownWithItself) {
    ScriptChip::Journal journal;
    {
        Scene scene(journal);
        scene.carryOut(readEvent(R"({"do":"start","device":9})"));
    }
    EXPECT_EQ("pipe_mgr_lrn_digest_notification_deregister", journal.steps().back());
}

}  // namespace
}  // namespace Replay
