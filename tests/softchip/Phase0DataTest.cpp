#include "softchip/Phase0Data.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "softchip/Phase0.h"

namespace SoftChip {
namespace {

using Log = std::vector<std::string>;

// Writes down every announcement: "Ethernet1 0" with the status, "Ethernet1 gone".
class Phase0DataFixture : public testing::Test {
  protected:
    Phase0DataFixture() {
        phase0->ingressPortIs(one, 1);
        phase0->ingressPortIs(two, 130);
        subscriber.subscribe<&Phase0DataFixture::announced>(phase0->publisher(), this);
    }

    void announced(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber attribute,
                   Vanta::ValueRef key, Vanta::ValueRef) {
        EXPECT_EQ(attribute, VynSdk::Phase0DataIntf::responseAttribute);
        auto const intf = key.get<Plexa::IntfId>();
        auto const* const entry = phase0->response().find(intf);
        log.push_back(intf.stringValue() +
                      (entry != nullptr ? " " + std::to_string(entry->value.status) : " gone"));
        if (inside) {
            inside(intf);
        }
    }

    Log turn() {
        log.clear();
        loop->turn();
        return log;
    }
    VynSdk::Phase0DataResponse response(Plexa::IntfId const& intf) {
        return phase0->response().get(intf);
    }

    Plexa::IntfId const one = *Plexa::IntfId::fromName("Ethernet1");
    Plexa::IntfId const two = *Plexa::IntfId::fromName("Ethernet2");
    Plexa::IntfId const nine = *Plexa::IntfId::fromName("Ethernet9");
    Vanta::Ptr<Orb::TaskSchedulerRoot> loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    Vanta::Ptr<Phase0Data> phase0 = Phase0Data::Phase0DataIs(loop);
    Vanta::Subscriber subscriber;
    std::function<void(Plexa::IntfId const&)> inside;
    Log log;
};

using Phase0DataTest = Phase0DataFixture;

TEST_F(Phase0DataTest, AnswersInALaterTurn) {
    phase0->configIs(one);
    EXPECT_TRUE(log.empty());
    EXPECT_FALSE(phase0->response().has(one));
    EXPECT_EQ(turn(), (Log{"Ethernet1 0"}));
}

TEST_F(Phase0DataTest, AnswersWithTheBytesOfTheIngressPort) {
    phase0->configIs(two);
    turn();
    auto const bytes = response(two).data;
    EXPECT_EQ(decodePhase0(bytes.view()), DevicePort{130});
}

TEST_F(Phase0DataTest, AnswersOnce) {
    phase0->configIs(one);
    turn();
    EXPECT_EQ(turn(), Log{});
}

TEST_F(Phase0DataTest, AnswersInTheOrderOfTheRequests) {
    phase0->configIs(two);
    phase0->configIs(one);
    EXPECT_EQ(turn(), (Log{"Ethernet2 0", "Ethernet1 0"}));
}

TEST_F(Phase0DataTest, AnswersForAnUnknownPortWithAStatusAndNoData) {
    phase0->configIs(nine);
    EXPECT_EQ(turn(), (Log{"Ethernet9 1"}));
    EXPECT_TRUE(response(nine).data.empty());
}

TEST_F(Phase0DataTest, AnswersForAPortThatWentWithAStatus) {
    EXPECT_TRUE(phase0->ingressPortDel(one));
    EXPECT_FALSE(phase0->ingressPortDel(one));
    phase0->configIs(one);
    EXPECT_EQ(turn(), (Log{"Ethernet1 1"}));
}

TEST_F(Phase0DataTest, DoesNothingWhenAskedAgainWhileAsked) {
    phase0->configIs(one);
    phase0->configIs(one);
    EXPECT_EQ(turn(), (Log{"Ethernet1 0"}));
    phase0->configIs(one);
    EXPECT_EQ(turn(), Log{});
}

TEST_F(Phase0DataTest, DoesNothingWhenWhatWasNotAskedIsWithdrawn) {
    phase0->configDel(one);
    EXPECT_EQ(turn(), Log{});
}

TEST_F(Phase0DataTest, ThrowsAnAnswerUnderWayAway) {
    phase0->configIs(one);
    phase0->configDel(one);
    EXPECT_EQ(turn(), Log{});
    EXPECT_FALSE(phase0->response().has(one));
}

TEST_F(Phase0DataTest, RemovesAnEntryAtOnceAndAnnouncesItLater) {
    phase0->configIs(one);
    turn();
    phase0->configDel(one);
    EXPECT_FALSE(phase0->response().has(one));
    EXPECT_EQ(turn(), (Log{"Ethernet1 gone"}));
    EXPECT_EQ(turn(), Log{});
}

TEST_F(Phase0DataTest, AnnouncesARemovalOnceThoughItIsWithdrawnTwice) {
    phase0->configIs(one);
    turn();
    phase0->configDel(one);
    phase0->configDel(one);
    EXPECT_EQ(turn(), (Log{"Ethernet1 gone"}));
}

TEST_F(Phase0DataTest, AnswersOnceWhatWasWithdrawnAndAskedAgainWithinATurn) {
    phase0->configIs(one);
    phase0->configDel(one);
    phase0->configIs(one);
    EXPECT_EQ(turn(), (Log{"Ethernet1 0"}));
    EXPECT_EQ(turn(), Log{});
}

TEST_F(Phase0DataTest, AnnouncesARemovalAheadOfTheAnswerThatWasAskedForAfterIt) {
    phase0->configIs(one);
    turn();
    phase0->configDel(one);
    phase0->configIs(one);
    EXPECT_EQ(turn(), (Log{"Ethernet1 gone", "Ethernet1 0"}));
}

TEST_F(Phase0DataTest, AnnouncesRemovalsAndAnswersInTheOrderOfTheirCauses) {
    phase0->configIs(one);
    turn();
    phase0->configIs(two);
    phase0->configDel(one);
    phase0->configIs(nine);
    EXPECT_EQ(turn(), (Log{"Ethernet2 0", "Ethernet1 gone", "Ethernet9 1"}));
}

TEST_F(Phase0DataTest, AnnouncesInALaterTurnWhatAnAnnouncementCauses) {
    inside = [this](Plexa::IntfId const& intf) {
        if (intf == one && phase0->response().has(one)) {
            phase0->configDel(one);
            phase0->configIs(two);
        }
    };
    phase0->configIs(one);
    EXPECT_EQ(turn(), (Log{"Ethernet1 0"}));
    EXPECT_EQ(turn(), (Log{"Ethernet1 gone", "Ethernet2 0"}));
}

TEST_F(Phase0DataTest, DropsAnAnswerOfTheSameTurnThatAnAnnouncementWithdraws) {
    inside = [this](Plexa::IntfId const& intf) {
        if (intf == one) {
            phase0->configDel(two);
        }
    };
    phase0->configIs(one);
    phase0->configIs(two);
    EXPECT_EQ(turn(), (Log{"Ethernet1 0"}));
    EXPECT_EQ(turn(), Log{});
}

TEST_F(Phase0DataTest, AnswersOnceThoughAnAnnouncementWithdrawsAndAsksAgain) {
    int times = 0;
    inside = [&](Plexa::IntfId const&) {
        if (phase0->response().has(one) && ++times == 1) {
            phase0->configDel(one);
            phase0->configIs(one);
        }
    };
    phase0->configIs(one);
    EXPECT_EQ(turn(), (Log{"Ethernet1 0"}));
    EXPECT_EQ(turn(), (Log{"Ethernet1 gone", "Ethernet1 0"}));
    EXPECT_EQ(turn(), Log{});
}

TEST_F(Phase0DataTest, AnswersInALaterTurnWhatIsAskedEarlyInATurn) {
    loop->post([this] { phase0->configIs(one); });
    EXPECT_EQ(turn(), Log{});
    EXPECT_EQ(turn(), (Log{"Ethernet1 0"}));
}

TEST_F(Phase0DataTest, MayGoInsideAnAnnouncement) {
    phase0->configIs(one);
    phase0->configIs(two);
    inside = [this](Plexa::IntfId const&) { phase0 = nullptr; };
    EXPECT_EQ(turn(), (Log{"Ethernet1 0"}));
}

TEST_F(Phase0DataTest, GoesWithAnswersUnderWay) {
    phase0->configIs(one);
    phase0 = nullptr;
    EXPECT_EQ(turn(), Log{});
}

TEST_F(Phase0DataTest, LetsTheLoopSleepWhenNothingIsUnderWay) {
    phase0->configIs(one);
    turn();
    turn();
    EXPECT_EQ(loop->scheduledTasks(), 0u);
}

TEST_F(Phase0DataTest, IsLateByOrderAndKeepsTheOrder) {
    phase0->lateIs(2);
    phase0->configIs(one);
    phase0->configIs(two);
    EXPECT_EQ(turn(), Log{});
    EXPECT_EQ(turn(), Log{});
    EXPECT_EQ(turn(), (Log{"Ethernet1 0", "Ethernet2 0"}));
}

TEST_F(Phase0DataTest, DoesNotWaitForALateAnswerThatWasWithdrawn) {
    phase0->lateIs(100);
    phase0->configIs(one);
    phase0->configIs(two);
    phase0->configDel(one);
    EXPECT_EQ(turn(), (Log{"Ethernet2 0"}));
}

TEST_F(Phase0DataTest, LosesAnAnswerByOrder) {
    phase0->lostIs(2);
    phase0->configIs(one);
    phase0->configIs(two);
    EXPECT_EQ(turn(), (Log{"Ethernet1 0"}));
    EXPECT_EQ(turn(), Log{});
    phase0->configDel(two);
    phase0->configIs(two);
    EXPECT_EQ(turn(), (Log{"Ethernet2 0"}));
}

TEST_F(Phase0DataTest, AnswersWithAStatusByOrder) {
    phase0->statusIs(17);
    phase0->configIs(one);
    phase0->configIs(two);
    EXPECT_EQ(turn(), (Log{"Ethernet1 17", "Ethernet2 0"}));
    EXPECT_TRUE(response(one).data.empty());
}

}  // namespace
}  // namespace SoftChip
