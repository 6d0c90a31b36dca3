#include "agent/RecordedPhase0.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Agent {
namespace {

using Log = std::vector<std::string>;
using VynSdk::Phase0DataIntf;
using VynSdk::Phase0DataResponse;

// A chip that answers when it is told to.
class ToldChip final : public Phase0DataIntf {
  public:
    void configIs(Plexa::IntfId const&) override { ++asked; }
    void configDel(Plexa::IntfId const& intf) override { responseDel(intf); }
    void answer(Plexa::IntfId const& intf, std::uint32_t status) {
        responseIs(intf, {{}, status});
        publishResponse(intf);
    }
    void announceRemoval(Plexa::IntfId const& intf) { publishResponse(intf); }

    int asked = 0;
};

class RecordedPhase0Test : public testing::Test {
  protected:
    RecordedPhase0Test() { tracer.subscribe<&RecordedPhase0Test::heard>(front->publisher(), this); }
    void heard(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber,
               Vanta::ValueRef key, Vanta::ValueRef) {
        auto const& intf = key.get<Plexa::IntfId>();
        auto const* const entry = front->response().find(intf);
        log.push_back("tracer " + intf.stringValue() + " " +
                      (entry != nullptr ? std::to_string(entry->value.status) : "gone"));
    }
    Log take() { return std::exchange(log, {}); }

    Plexa::IntfId const one = *Plexa::IntfId::fromName("Ethernet1");
    Plexa::IntfId const two = *Plexa::IntfId::fromName("Ethernet2");
    Log log;
    bool late = false;
    Vanta::Ptr<Orb::TaskSchedulerRoot> loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    Vanta::Ptr<ToldChip> chip = Vanta::makeNode<ToldChip>();
    Vanta::Ptr<RecordedPhase0> front = RecordedPhase0::RecordedPhase0Is(
        chip, loop,
        {.isLate = [this] { return late; },
         .announced =
             [this](Plexa::IntfId const& intf, Phase0DataResponse const* response) {
                 log.push_back("listener " + intf.stringValue() + " " +
                               (response != nullptr ? std::to_string(response->status) : "gone"));
             }});
    Vanta::Subscriber tracer;
};

TEST_F(RecordedPhase0Test, HandsRequestsOn) {
    front->configIs(one);
    EXPECT_EQ(chip->asked, 1);
}

TEST_F(RecordedPhase0Test, HandsAnAnswerOnAtOnceAndTellsItsListenerFirst) {
    chip->answer(one, 3);
    EXPECT_EQ(take(), (Log{"listener Ethernet1 3", "tracer Ethernet1 3"}));
}

TEST_F(RecordedPhase0Test, TakesAnEntryAwayAtOnceAndHandsItsAnnouncementOn) {
    chip->answer(one, 0);
    take();
    front->configDel(one);
    EXPECT_FALSE(front->response().has(one));
    EXPECT_FALSE(chip->response().has(one));
    EXPECT_EQ(take(), Log{});
    chip->announceRemoval(one);
    EXPECT_EQ(take(), (Log{"listener Ethernet1 gone", "tracer Ethernet1 gone"}));
}

TEST_F(RecordedPhase0Test, KeepsWhatComesTooLateForTheNextTurn) {
    late = true;
    chip->answer(one, 3);
    EXPECT_FALSE(front->response().has(one));
    late = false;
    chip->answer(two, 4);  // keeps its place behind the one that waits
    EXPECT_EQ(take(), Log{});
    loop->turn();
    EXPECT_EQ(take(), (Log{"listener Ethernet1 3", "tracer Ethernet1 3", "listener Ethernet2 4",
                           "tracer Ethernet2 4"}));
    EXPECT_TRUE(front->response().has(one));
}

TEST_F(RecordedPhase0Test, DropsAnAnswerThatIsWithdrawnWhileItWaits) {
    late = true;
    chip->answer(one, 3);
    front->configDel(one);
    loop->turn();
    EXPECT_EQ(take(), Log{});
    EXPECT_FALSE(front->response().has(one));
    late = false;
    chip->announceRemoval(one);
    EXPECT_EQ(take(), Log{});
}

TEST_F(RecordedPhase0Test, KeepsARemovalAndTheAnswerBehindItApart) {
    chip->answer(one, 0);
    front->configDel(one);
    take();
    late = true;
    chip->announceRemoval(one);
    chip->answer(one, 5);
    loop->turn();
    EXPECT_EQ(take(), (Log{"listener Ethernet1 gone", "tracer Ethernet1 gone",
                           "listener Ethernet1 5", "tracer Ethernet1 5"}));
}

TEST_F(RecordedPhase0Test, GoesWithAnswersThatWait) {
    late = true;
    chip->answer(one, 3);
    tracer.unsubscribe();
    front = nullptr;
    loop->turn();
    EXPECT_EQ(take(), Log{});
}

TEST_F(RecordedPhase0Test, ServesTheTracerWithoutAListener) {
    front->listenerDel();
    late = true;
    chip->answer(one, 3);
    EXPECT_EQ(take(), (Log{"tracer Ethernet1 3"}));
}

}  // namespace
}  // namespace Agent
