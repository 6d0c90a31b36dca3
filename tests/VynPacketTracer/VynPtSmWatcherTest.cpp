// The watchers, one an answer.
#include "VynPacketTracer/RelayFixture.h"

namespace VynPacketTracer {
namespace {

class WatcherTest : public RelayTest {
  protected:
    static Vanta::Ptr<PktGenStatusData const> loose(std::uint32_t number) {
        return pktGenStatusDataFactory(id("noc", number));
    }
    static Vanta::Ptr<NestedSm_LocalStatus> watcherOf(
        Vanta::Ptr<PktGenStatusData const> const& entry, PacketTracerSm* owner) {
        return Vanta::makeNode<NestedSm_LocalStatus>(entry, owner);
    }
};

TEST_F(WatcherTest, WithoutAnEntryIsRefused) {
    try {
        tracer->localStatusIs(nullptr);
        FAIL() << "nothing was raised";
    } catch (Kel::NullArgumentError const& error) {
        EXPECT_EQ(error.typeName(), "PacketTracerSm");
        EXPECT_EQ(error.attribute(), "localStatus");
    }
}

TEST_F(WatcherTest, IsMadeWithoutReacting) {
    auto const entry = loose(1);
    EXPECT_EQ(after([&] { tracer->localStatusIs(entry); }), Lines{});
    auto const watcher = tracer->localStatus(id("noc", 1));
    EXPECT_EQ(watcher->notifier(), entry);
    EXPECT_TRUE(watcher->registered());
    EXPECT_TRUE(watcher->hasNotificationActive());
    EXPECT_FALSE(watcher->isZombie());
}

TEST_F(WatcherTest, OfTheSameEntryIsLeftAlone) {
    auto const made = answer(1);
    auto const watcher = tracer->localStatus(id("noc", 1));
    EXPECT_EQ(after([&] { tracer->localStatusIs(made); }), Lines{});
    EXPECT_EQ(tracer->localStatus(id("noc", 1)), watcher);
}

TEST_F(WatcherTest, OfAnotherEntryIsPointedAtItAndReactsAtOnce) {
    answer(1);
    auto const watcher = tracer->localStatus(id("noc", 1));
    auto const other = loose(1);
    EXPECT_EQ(after([&] { tracer->localStatusIs(other); }),
              (Lines{relayed("noc/1"), updated("1", false)}));
    EXPECT_EQ(tracer->localStatus(id("noc", 1)), watcher);
    EXPECT_EQ(watcher->notifier(), other);
}

TEST_F(WatcherTest, TornDownIsPointedAtAnotherEntryWithoutReacting) {
    answer(1);
    tracer->kelDoZombieReactors(true);
    auto const other = loose(1);
    EXPECT_EQ(after([&] { tracer->localStatusIs(other); }), Lines{});
    EXPECT_EQ(tracer->localStatus(id("noc", 1))->notifier(), other);
}

TEST_F(WatcherTest, PointedAtAnotherEntryIsTornDownOrNotAsItsOwnerIsOnceItReacted) {
    answer(1);
    auto const watcher = tracer->localStatus(id("noc", 1));
    watcher->kelDoZombieReactors(true);
    EXPECT_EQ(after([&] { tracer->localStatusIs(loose(1)); }), Lines{});
    EXPECT_FALSE(watcher->isZombie());
}

TEST_F(WatcherTest, IsRegisteredWhenItHasReacted) {
    auto const watcher = watcherOf(nullptr, tracer.get());
    bool registered = true;
    recorder.onTrace = [&] { registered = watcher->registered(); };
    watcher->notifierIs(loose(1));
    EXPECT_FALSE(registered);
}

TEST_F(WatcherTest, WithoutAnEntryIsSwitchedOffByLocalStatusDel) {
    answer(1);
    auto const watcher = tracer->localStatus(id("noc", 1));
    watcher->notifierIs(nullptr);
    tracer->localStatusDel(id("noc", 1));
    EXPECT_FALSE(watcher->hasNotificationActive());
}

TEST_F(WatcherTest, IsSilencedAndRemovedByLocalStatusDel) {
    auto const made = answer(1);
    auto const watcher = tracer->localStatus(id("noc", 1));
    EXPECT_EQ(tracer->localStatusDel(id("noc", 1)), made);
    EXPECT_FALSE(isWatched(1));
    EXPECT_TRUE(watcher->isZombie());
    EXPECT_FALSE(watcher->hasNotificationActive());
    EXPECT_EQ(after([&] { watcher->kel_handleLocalStatus_ready(); }), Lines{});
}

TEST_F(WatcherTest, ThatIsAbsentIsNullToLocalStatusDel) {
    EXPECT_EQ(tracer->localStatusDel(id("noc", 1)), nullptr);
    EXPECT_EQ(tracer->localStatus(id("noc", 1)), nullptr);
}

TEST_F(WatcherTest, OfEveryKeyGoesByLocalStatusDelAll) {
    answer(1);
    answer(2);
    tracer->localStatusDelAll();
    EXPECT_FALSE(isWatched(1));
    EXPECT_FALSE(isWatched(2));
}

TEST_F(WatcherTest, WithoutAnEntryRelaysTheEmptyId) {
    auto const watcher = watcherOf(nullptr, tracer.get());
    EXPECT_EQ(after([&] { watcher->kel_handleLocalStatus_ready(); }),
              (Lines{"VynPtSm/7 handlePktGenStatus:client: reqId:0 del:true"}));
}

TEST_F(WatcherTest, WithoutAnOwnerDoesNothing) {
    auto const watcher = watcherOf(loose(1), nullptr);
    EXPECT_EQ(after([&] { watcher->kel_handleLocalStatus_ready(); }), Lines{});
}

TEST_F(WatcherTest, TakesANodeOfAnotherTypeForNone) {
    answer(1);
    auto const watcher = tracer->localStatus(id("noc", 1));
    EXPECT_EQ(after([&] { watcher->notifierIs(tracer->pktGenCfg()); }), Lines{});
    EXPECT_EQ(watcher->notifier(), nullptr);
}

TEST_F(WatcherTest, IsRegisteredOnceItIsPointedAtAnotherEntry) {
    auto const watcher = watcherOf(nullptr, tracer.get());
    EXPECT_FALSE(watcher->registered());
    EXPECT_EQ(after([&] { watcher->notifierIs(loose(1)); }), (Lines{relayed("noc/1", true)}));
    EXPECT_TRUE(watcher->registered());
}

TEST_F(WatcherTest, PointedAtTheEntryThatItWatchesDoesNothing) {
    auto const entry = loose(1);
    auto const watcher = watcherOf(entry, tracer.get());
    EXPECT_EQ(after([&] { watcher->notifierIs(entry); }), Lines{});
    EXPECT_FALSE(watcher->registered());
}

TEST_F(WatcherTest, TornDownWithAnEntryIsSwitchedOff) {
    answer(1);
    auto const watcher = tracer->localStatus(id("noc", 1));
    watcher->kelDoZombieReactors(true);
    EXPECT_FALSE(watcher->hasNotificationActive());
    watcher->kelDoZombieReactors(false);
    EXPECT_TRUE(watcher->hasNotificationActive());
}

TEST_F(WatcherTest, TornDownWithoutAnEntryKeepsTheFlagAndIsNotSwitched) {
    auto const watcher = watcherOf(nullptr, tracer.get());
    watcher->hasNotificationActiveIs(true);
    watcher->kelDoZombieReactors(true);
    EXPECT_TRUE(watcher->isZombie());
    EXPECT_TRUE(watcher->hasNotificationActive());
}

TEST_F(WatcherTest, TornDownIgnoresReady) {
    auto const made = answer(1);
    auto const watcher = tracer->localStatus(id("noc", 1));
    watcher->kelDoZombieReactors(true);
    watcher->hasNotificationActiveIs(true);
    EXPECT_EQ(after([&] { made->readyIs(true); }), (Lines{"status ready noc/1 true"}));
}

TEST_F(WatcherTest, KeepsItsOwnerWhileTheOwnerIsOnlyMarkedTornDown) {
    answer(1);
    tracer->kelDoZombieReactors(true);
    auto const watcher = tracer->localStatus(id("noc", 1));
    EXPECT_EQ(after([&] { watcher->kel_handleLocalStatus_ready(); }),
              (Lines{relayed("noc/1"), updated("1", false)}));
}

TEST_F(WatcherTest, AreReadInTheOrderInWhichTheirEntriesCame) {
    answer(2);
    answer(1);
    std::string keys;
    for (auto const& entry : tracer->localStatus()) {
        EXPECT_EQ(LocalStatusKeyFunktor()(*entry.value), entry.key);
        keys += keyText(entry.key) + " ";
    }
    EXPECT_EQ(keys, "noc/2 noc/1 ");
}

TEST_F(WatcherTest, RemovedInItsOwnCallByLocalStatusIsStaysAsItWasRemoved) {
    request(1);
    answer(1)->readyIs(true);
    auto const watcher = tracer->localStatus(id("noc", 1));
    statusOf("noc")->resultDel(id("noc", 1));
    OnPublication const observer(statusOf("noc")->publisher(),
                                 [&](auto, auto) { tracer->localStatusDel(id("noc", 1)); });
    auto const other = pktGenStatusDataFactory(id("noc", 1));
    tracer->localStatusIs(other);
    EXPECT_TRUE(watcher->isZombie());
    EXPECT_FALSE(watcher->hasNotificationActive());
    EXPECT_EQ(after([&] {
                  other->readyIs(true);
                  watcher->kel_handleLocalStatus_ready();
              }),
              (Lines{"status ready noc/1 true"}));
}

TEST_F(WatcherTest, RemovedInItsOwnCallByNotifierIsIsNotRegisteredAgain) {
    auto const watcher = watcherOf(nullptr, tracer.get());
    recorder.onTrace = [&] { watcher->ownerDel(); };
    watcher->notifierIs(loose(1));
    EXPECT_FALSE(watcher->registered());
}

TEST_F(WatcherTest, WithoutAnOwnerIsRegisteredOnceItIsPointedAtAnEntry) {
    auto const watcher = watcherOf(nullptr, nullptr);
    EXPECT_EQ(after([&] { watcher->notifierIs(loose(1)); }), Lines{});
    EXPECT_TRUE(watcher->registered());
}

TEST_F(WatcherTest, TheTracerMayBeReleasedInLocalStatusIs) {
    request(1);
    answer(1)->readyIs(true);
    statusOf("noc")->resultDel(id("noc", 1));
    OnPublication const observer(statusOf("noc")->publisher(),
                                 [&](auto, auto) { tracer = nullptr; });
    PacketTracerSm& root = *tracer;
    root.localStatusIs(loose(1));
    EXPECT_EQ(config->refCount(), 1u);
}

}  // namespace
}  // namespace VynPacketTracer
