#include "Kel/NotifieeConst.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace {

using Vanta::makeNode;
using Vanta::Ptr;

struct Watched : Vanta::Node {
    Vanta::Publisher const& publisher() const { return publisher_; }
    void change(unsigned attribute) { publisher_.publish(attribute); }
    Vanta::Publisher publisher_{this};
};

struct Watcher : Kel::NotifieeConst<Watched> {
    using NotifieeConst::plainNotifierIs;
    void onAttribute(Vanta::AttributeNumber attribute, Vanta::ValueRef) override {
        seen.push_back(attribute);
        if (reaction) {
            reaction();
        }
    }
    std::vector<unsigned> seen;
    std::function<void()> reaction;
};

struct Notifiee : testing::Test {
    Ptr<Watched> watched = makeNode<Watched>();
    Ptr<Watcher> watcher = makeNode<Watcher>();
};

TEST_F(Notifiee, ReactsWhenRegisteredActiveAndPointed) {
    watcher->plainNotifierIs(watched);
    watcher->registeredIs(true);
    watcher->hasNotificationActiveIs(true);
    watched->change(132);
    EXPECT_EQ(watcher->seen, (std::vector<unsigned>{132}));
}

TEST_F(Notifiee, ReactsToNothingBeforeItIsRegistered) {
    watcher->plainNotifierIs(watched);
    watcher->hasNotificationActiveIs(true);
    watched->change(132);
    EXPECT_TRUE(watcher->seen.empty());
}

TEST_F(Notifiee, ReactsToNothingWhileSwitchedOff) {
    watcher->plainNotifierIs(watched);
    watcher->registeredIs(true);
    watcher->hasNotificationActiveIs(true);
    watcher->hasNotificationActiveIs(false);
    watched->change(132);
    EXPECT_TRUE(watcher->seen.empty());
}

TEST_F(Notifiee, FollowsItsNewNotifierOnly) {
    auto const other = makeNode<Watched>();
    watcher->plainNotifierIs(watched);
    watcher->registeredIs(true);
    watcher->hasNotificationActiveIs(true);
    watcher->plainNotifierIs(other);
    watched->change(1);
    other->change(2);
    EXPECT_EQ(watcher->seen, (std::vector<unsigned>{2}));
}

TEST_F(Notifiee, IsSilentWhileTornDownAndBackAfterwards) {
    watcher->plainNotifierIs(watched);
    watcher->registeredIs(true);
    watcher->hasNotificationActiveIs(true);
    watcher->kelDoZombieReactors(true);
    watched->change(1);
    EXPECT_TRUE(watcher->seen.empty());
    watcher->kelDoZombieReactors(false);
    watched->change(2);
    EXPECT_EQ(watcher->seen, (std::vector<unsigned>{2}));
}

TEST_F(Notifiee, HoldsAReferenceToItsNotifier) {
    watcher->plainNotifierIs(watched);
    EXPECT_EQ(watched->refCount(), 2U);
    watcher = nullptr;
    EXPECT_EQ(watched->refCount(), 1U);
}

TEST_F(Notifiee, IsReadByItsNotifierAndItsRegistration) {
    watcher->plainNotifierIs(watched);
    auto const& info = watcher->typeInfo();
    EXPECT_EQ(info.name, "NotifieeConst");
    ASSERT_EQ(info.attributes.size(), 2U);
    EXPECT_EQ(info.attributes[0].number, 0U);
    EXPECT_EQ(info.attributes[0].name, "notifier");
    EXPECT_EQ(info.attributes[0].type, "Vanta::Node");
    EXPECT_EQ(info.attributes[0].kind, Kel::AttributeKind::pointer);
    EXPECT_EQ(info.attributes[1].number, 0U);
    EXPECT_EQ(info.attributes[1].name, "registered");
    EXPECT_EQ(info.attributes[1].type, "bool");
}

TEST_F(Notifiee, ReactsFromItsRegistrationOnWhenItWasSwitchedOnBefore) {
    watcher->plainNotifierIs(watched);
    watcher->hasNotificationActiveIs(true);
    watcher->registeredIs(true);
    watched->change(7);
    EXPECT_EQ(watcher->seen, (std::vector<unsigned>{7}));
}

TEST_F(Notifiee, KeepsItsTurnWhenItIsSwitchedOnOnceMore) {
    auto const later = makeNode<Watcher>();
    for (auto const& one : {watcher, later}) {
        one->plainNotifierIs(watched);
        one->registeredIs(true);
        one->hasNotificationActiveIs(true);
    }
    watcher->hasNotificationActiveIs(true);
    watcher->reaction = [&] { later->hasNotificationActiveIs(false); };
    watched->change(1);
    EXPECT_TRUE(later->seen.empty());
}

TEST_F(Notifiee, HearsNothingOfTheEndOfANotifierThatItLeaves) {
    struct Parting : Watched {
        ~Parting() override { change(1); }
    };
    watcher->plainNotifierIs(makeNode<Parting>());
    watcher->registeredIs(true);
    watcher->hasNotificationActiveIs(true);
    watcher->plainNotifierIs(watched);
    EXPECT_TRUE(watcher->seen.empty());
}

TEST(NotifieeValue, IsThatOfTheChange) {
    struct Reader : Kel::NotifieeConst<Watched> {
        using NotifieeConst::plainNotifierIs;
        void onAttribute(Vanta::AttributeNumber, Vanta::ValueRef oldValue) override {
            seen = oldValue.get<unsigned>();
        }
        unsigned seen = 0;
    };
    auto const watched = makeNode<Watched>();
    auto const reader = makeNode<Reader>();
    reader->plainNotifierIs(watched);
    reader->registeredIs(true);
    reader->hasNotificationActiveIs(true);
    unsigned const old = 41;
    watched->publisher_.publish(1, {}, Vanta::ValueRef::to(old));
    EXPECT_EQ(reader->seen, 41U);
}

}  // namespace
