#include "Vanta/Publisher.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Vanta/Tap.h"

#include "Mortal.h"
#include "Vanta/Node.h"

namespace {

using Vanta::AttributeNumber;
using Vanta::Publisher;
using Vanta::Subscriber;
using Vanta::ValueRef;

// A subscriber that notes its name and then does what the test wants.
struct Listener {
    Listener(std::string ownName, std::vector<std::string>& sharedLog)
        : name(std::move(ownName)), log(sharedLog) {}

    void listen(Publisher const& publisher) {
        subscriber.subscribe<&Listener::dispatch>(publisher, this);
    }
    void dispatch(Publisher const&, Subscriber&, AttributeNumber attribute, ValueRef, ValueRef) {
        log.push_back(name + std::to_string(attribute));
        if (reaction) {
            reaction();
        }
    }

    std::string name;
    std::vector<std::string>& log;
    std::function<void()> reaction;
    Subscriber subscriber;
};

struct Delivery : testing::Test {
    Delivery() {
        a.listen(*publisher);
        b.listen(*publisher);
        c.listen(*publisher);
    }

    std::unique_ptr<Publisher> publisher = std::make_unique<Publisher>(nullptr);
    std::vector<std::string> log;
    Listener a{"a", log};
    Listener b{"b", log};
    Listener c{"c", log};
};

using Log = std::vector<std::string>;

TEST_F(Delivery, FollowsTheOrderOfSubscription) {
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1", "b1", "c1"}));
}

TEST_F(Delivery, PutsASubscriberThatCameBackLast) {
    a.listen(*publisher);
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"b1", "c1", "a1"}));
}

TEST_F(Delivery, SkipsASubscriberThatGoesBeforeItsTurn) {
    a.reaction = [&] { b.subscriber.unsubscribe(); };
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1", "c1"}));
}

TEST_F(Delivery, GoesOnAfterASubscriberThatLeavesInItsOwnTurn) {
    b.reaction = [&] { b.subscriber.unsubscribe(); };
    publisher->publish(1);
    publisher->publish(2);
    EXPECT_EQ(log, (Log{"a1", "b1", "c1", "a2", "c2"}));
}

TEST_F(Delivery, LeavesOutASubscriberThatArrivesMeanwhile) {
    Listener late("d", log);
    a.reaction = [&] {
        if (!late.subscriber.subscribed()) {
            late.listen(*publisher);
        }
    };
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1", "b1", "c1"}));
    publisher->publish(2);
    EXPECT_EQ(log.back(), "d2");
}

TEST_F(Delivery, LeavesOutASubscriberThatSubscribesAgainMeanwhile) {
    a.reaction = [&] { c.listen(*publisher); };
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1", "b1"}));
}

TEST_F(Delivery, StopsWhenThePublisherGoes) {
    a.reaction = [&] { publisher.reset(); };
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1"}));
    EXPECT_FALSE(b.subscriber.subscribed());
}

TEST_F(Delivery, StopsAllNestedDeliveriesWhenThePublisherGoes) {
    a.reaction = [&] {
        if (log.size() == 1) {
            publisher->publish(2);
        } else {
            publisher.reset();
        }
    };
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1", "a2"}));
}

struct DeliveryThatOutlivesItsPublisher : testing::Test {
    Mortal<Publisher> publisher{nullptr};
    Log log;
    Listener a{"a", log};
};

TEST_F(DeliveryThatOutlivesItsPublisher, LeavesItsMemoryAlone) {
    a.listen(*publisher);
    a.reaction = [&] { publisher.goes(); };
    publisher->publish(1);
    EXPECT_TRUE(publisher.isMemoryTheirs());
}

TEST_F(DeliveryThatOutlivesItsPublisher, LeavesItsMemoryAloneHoweverDeepItGoes) {
    a.listen(*publisher);
    a.reaction = [&] {
        if (log.size() < 3) {
            publisher->publish(static_cast<AttributeNumber>(log.size()) + 1);
        } else {
            publisher.goes();
        }
    };
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1", "a2", "a3"}));
    EXPECT_TRUE(publisher.isMemoryTheirs());
}

TEST_F(Delivery, IsDepthFirst) {
    b.reaction = [&] {
        if (log.back() == "b1") {
            publisher->publish(2);
        }
    };
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1", "b1", "a2", "b2", "c2", "c1"}));
}

TEST_F(Delivery, KeepsItsPlaceWhenAnInnerDeliveryRemovesTheNextSubscriber) {
    a.reaction = [&] {
        if (log.size() == 1) {
            publisher->publish(2);
        } else {
            b.subscriber.unsubscribe();
        }
    };
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1", "a2", "c2", "c1"}));
}

TEST_F(Delivery, TellsTheTapBeforeAnySubscriber) {
    Vanta::Tap const tap(
        [](void* context, Vanta::Change const& change) {
            static_cast<Log*>(context)->push_back("tap" + std::to_string(change.attribute));
        },
        &log);
    publisher->publish(7);
    EXPECT_EQ(log, (Log{"tap7", "a7", "b7", "c7"}));
}

TEST_F(Delivery, TellsTheTapAlsoWithoutSubscribers) {
    Publisher lonely(nullptr);
    Vanta::Tap const tap(
        [](void* context, Vanta::Change const&) { static_cast<Log*>(context)->push_back("tap"); },
        &log);
    lonely.publish(7);
    EXPECT_EQ(log, (Log{"tap"}));
}

// What a member function may take.
struct Reactor {
    void bare() { log.push_back("bare"); }
    void withChange(Vanta::Change const& change) {
        log.push_back(std::to_string(change.attribute) + change.key.get<std::string>());
    }

    Log log;
    Vanta::Subscriber subscriber;
};

TEST(Subscriber, HandsTheChangeToAReactorThatTakesIt) {
    Publisher publisher(nullptr);
    Reactor reactor;
    reactor.subscriber.subscribe<&Reactor::withChange>(publisher, &reactor);
    publisher.publish(7, ValueRef::to(std::string("key")));
    EXPECT_EQ(reactor.log, Log{"7key"});
}

TEST(Subscriber, CallsAReactorThatTakesNothing) {
    Publisher publisher(nullptr);
    Reactor reactor;
    reactor.subscriber.subscribe<&Reactor::bare>(publisher, &reactor);
    publisher.publish(7);
    EXPECT_EQ(reactor.log, Log{"bare"});
}

TEST(Subscriber, OfOneAttributeIsNotCalledForTheOthers) {
    Publisher publisher(nullptr);
    Reactor reactor;
    reactor.subscriber.subscribe<&Reactor::bare, 7>(publisher, &reactor);
    publisher.publish(6);
    publisher.publish(7);
    publisher.publish(8);
    EXPECT_EQ(reactor.log, Log{"bare"});
}

TEST(Subscriber, UnsubscribesWhenItIsDestroyed) {
    Publisher publisher(nullptr);
    Log log;
    {
        Listener gone("a", log);
        gone.listen(publisher);
    }
    publisher.publish(1);
    EXPECT_TRUE(log.empty());
}

TEST(Publisher, HandsKeyAndOldValueToTheSubscriber) {
    Publisher publisher(nullptr);
    struct Receiver {
        void dispatch(Publisher const&, Subscriber&, AttributeNumber, ValueRef key, ValueRef old) {
            text = key.get<std::string>() + ":" + std::to_string(old.get<int>());
        }
        std::string text;
        Subscriber subscriber;
    } receiver;
    receiver.subscriber.subscribe<&Receiver::dispatch>(publisher, &receiver);
    publisher.publish(1, ValueRef::to(std::string("key")), ValueRef::to(7));
    EXPECT_EQ(receiver.text, "key:7");
}

TEST_F(Delivery, GoesOnAfterASubscriberThatIsDestroyedInItsOwnTurn) {
    auto passing = std::make_unique<Listener>("d", log);
    Listener last("e", log);
    passing->listen(*publisher);
    last.listen(*publisher);
    passing->reaction = [&] { passing.reset(); };
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1", "b1", "c1", "d1", "e1"}));
}

TEST_F(Delivery, LeavesOutASubscriberThatIsDestroyedBeforeItsTurn) {
    auto next = std::make_unique<Listener>("d", log);
    next->listen(*publisher);
    a.reaction = [&] { next.reset(); };
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1", "b1", "c1"}));
}

TEST_F(Delivery, LetsASubscriberSetTheSameAttributeAgain) {
    a.reaction = [&] {
        if (log.size() == 1) {
            publisher->publish(1);
        }
    };
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1", "a1", "b1", "c1", "b1", "c1"}));
}

TEST_F(Delivery, TellsOneWhoArrivedMeanwhileOfAnInnerPublication) {
    Listener late("d", log);
    a.reaction = [&] {
        if (!late.subscriber.subscribed()) {
            late.listen(*publisher);
            publisher->publish(2);
        }
    };
    publisher->publish(1);
    EXPECT_EQ(log, (Log{"a1", "a2", "b2", "c2", "d2", "b1", "c1"}));
}

TEST(Subscriber, LeavesItsFormerPublisherWhenItSubscribesToAnother) {
    Publisher former(nullptr);
    Publisher present(nullptr);
    Log log;
    Listener listener("a", log);
    listener.listen(former);
    listener.listen(present);
    former.publish(1);
    present.publish(2);
    EXPECT_EQ(log, (Log{"a2"}));
}

TEST(Subscriber, IsNotSubscribedOnceItsPublisherIsGone) {
    Log log;
    Listener listener("a", log);
    {
        Publisher publisher(nullptr);
        listener.listen(publisher);
        EXPECT_TRUE(listener.subscriber.subscribed());
    }
    EXPECT_FALSE(listener.subscriber.subscribed());
    listener.subscriber.unsubscribe();
}

// A node that publishes, watched by a node.
struct Source : Vanta::Node {
    Publisher publisher{this};
};
struct Watcher : Vanta::Node {
    explicit Watcher(Source& source) {
        subscriber.subscribe<&Watcher::dispatch>(source.publisher, this);
    }
    void dispatch(Publisher const& publisher, Subscriber&, AttributeNumber, ValueRef, ValueRef) {
        countSeen = publisher.owner()->refCount();
        if (reaction) {
            reaction();
        }
    }
    std::uint32_t countSeen = 0;
    std::function<void()> reaction;
    Subscriber subscriber;
};

TEST(Publisher, CountsNoReferenceForASubscriptionNorForADelivery) {
    auto const source = Vanta::makeNode<Source>();
    auto const watcher = Vanta::makeNode<Watcher>(*source);
    EXPECT_EQ(watcher->refCount(), 1U);
    source->publisher.publish(1);
    EXPECT_EQ(watcher->countSeen, 1U);
}

TEST(Publisher, MayGoWithItsNodeDuringDelivery) {
    auto source = Vanta::makeNode<Source>();
    auto const watcher = Vanta::makeNode<Watcher>(*source);
    auto const second = Vanta::makeNode<Watcher>(*source);
    watcher->reaction = [&] { source = nullptr; };
    source->publisher.publish(1);
    EXPECT_EQ(second->countSeen, 0U);
    EXPECT_FALSE(second->subscriber.subscribed());
}

TEST(PublisherDeathTest, EndsTheProcessOnAnExceptionOfASubscriber) {
    Publisher publisher(nullptr);
    Log log;
    Listener thrower("a", log);
    thrower.reaction = [] { throw std::runtime_error("no way on"); };
    thrower.listen(publisher);
    EXPECT_DEATH(publisher.publish(1), "uncaught runtime_error: no way on");
}

TEST(ValueRefDeathTest, EndsTheProcessWhenAskedForAnotherType) {
    int const value = 1;
    ValueRef const ref = ValueRef::to(value);
    EXPECT_DEATH(static_cast<void>(ref.get<long>()),
                 "^assertion failed: ValueRef::holds<T>\\(\\)\n$");
}

}  // namespace
