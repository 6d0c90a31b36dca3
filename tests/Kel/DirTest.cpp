#include "Kel/Dir.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Kel::Dir;
using Vanta::makeNode;
using Vanta::Ptr;

struct Entity : Vanta::Node {};
struct OtherEntity : Vanta::Node {};

struct Directory : testing::Test {
    Directory() { subscriber.subscribe<&Directory::dispatch>(dir->publisher(), this); }
    void dispatch(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber attribute,
                  Vanta::ValueRef key, Vanta::ValueRef) {
        changes.push_back(std::to_string(attribute) + ":" +
                          std::string(key.get<Vanta::String>().view()));
    }

    Ptr<Dir> dir = Dir::DirIs();
    std::vector<std::string> changes;
    Vanta::Subscriber subscriber;
};

using Changes = std::vector<std::string>;

TEST_F(Directory, PublishesAnAddedEntryUnderItsNumberAndName) {
    dir->entryIs("noc", makeNode<Entity>());
    EXPECT_EQ(changes, (Changes{"266:noc"}));
}

TEST_F(Directory, PublishesAReplacedEntryOnceAndKeepsItsPlace) {
    dir->entryIs("a", makeNode<Entity>());
    dir->entryIs("b", makeNode<Entity>());
    changes.clear();
    dir->entryIs("a", makeNode<Entity>());
    EXPECT_EQ(changes, (Changes{"266:a"}));
    EXPECT_EQ(dir->entry().begin()->key, "a");
}

TEST_F(Directory, PublishesNothingOverNothingToo) {
    dir->entryIs("a", nullptr);
    dir->entryIs("a", nullptr);
    EXPECT_EQ(changes.size(), 2U);
}

TEST_F(Directory, PublishesARemovalOfWhatIsThereOnly) {
    dir->entryIs("a", makeNode<Entity>());
    changes.clear();
    EXPECT_NE(dir->entryDel("a"), nullptr);
    EXPECT_EQ(dir->entryDel("a"), nullptr);
    EXPECT_EQ(changes, (Changes{"266:a"}));
    EXPECT_FALSE(dir->entryHas("a"));
}

TEST_F(Directory, GivesAnEntityOfAnotherTypeAsNull) {
    dir->entryIs("a", makeNode<OtherEntity>());
    EXPECT_EQ(dir->entity<Entity>("a"), nullptr);
    EXPECT_NE(dir->entity<OtherEntity>("a"), nullptr);
    EXPECT_EQ(dir->entity<Entity>("b"), nullptr);
}

TEST_F(Directory, RemovesAnEntryNamedByItsOwnKey) {
    dir->entryIs("a name that is in a block of its own", makeNode<Entity>());
    dir->entryDel(dir->entry().begin()->key);
    EXPECT_EQ(changes.back(), "266:a name that is in a block of its own");
}

TEST_F(Directory, IteratesInTheOrderInWhichTheNamesCame) {
    dir->entryIs("b", makeNode<Entity>());
    dir->entryIs("a", makeNode<Entity>());
    dir->entryDel("b");
    dir->entryIs("b", makeNode<Entity>());
    std::string names;
    for (auto const& entry : dir->entry()) {
        names += entry.key.view();
    }
    EXPECT_EQ(names, "ab");
}

TEST_F(Directory, KeepsTheReplacedEntityAliveUntilEverybodyWasTold) {
    auto const before = Vanta::Node::liveCount();
    dir->entryIs("a", makeNode<Entity>());
    struct Counter {
        void dispatch(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber,
                      Vanta::ValueRef, Vanta::ValueRef) {
            seen = Vanta::Node::liveCount();
        }
        std::uint64_t seen = 0;
        Vanta::Subscriber subscriber;
    } counter;
    counter.subscriber.subscribe<&Counter::dispatch>(dir->publisher(), &counter);
    dir->entryIs("a", makeNode<Entity>());
    EXPECT_EQ(counter.seen, before + 2);
    EXPECT_EQ(Vanta::Node::liveCount(), before + 1);
}

// The first one told removes the entry whose key names the change.
TEST_F(Directory, NamesAChangeToTheLastWhenAnEarlierOneRemovesTheEntry) {
    dir->entryIs("a name that is in a block of its own", makeNode<Entity>());
    changes.clear();
    struct Remover {
        void dispatch(Vanta::Publisher const&, Vanta::Subscriber& self, Vanta::AttributeNumber,
                      Vanta::ValueRef, Vanta::ValueRef) {
            self.unsubscribe();
            dir.entryDel("a name that is in a block of its own");
        }
        Dir& dir;
        Vanta::Subscriber subscriber;
    } remover{*dir, {}};
    remover.subscriber.subscribe<&Remover::dispatch>(dir->publisher(), &remover);
    subscriber.subscribe<&Directory::dispatch>(dir->publisher(), this);
    dir->entryIs(dir->entry().begin()->key, makeNode<Entity>());
    EXPECT_EQ(changes, (Changes{"266:a name that is in a block of its own",
                                "266:a name that is in a block of its own"}));
}

TEST_F(Directory, MayGoWhileItsChangeIsDelivered) {
    struct Releaser {
        void dispatch(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber,
                      Vanta::ValueRef, Vanta::ValueRef) {
            dir = nullptr;
        }
        Ptr<Dir>& dir;
        Vanta::Subscriber subscriber;
    } releaser{dir, {}};
    releaser.subscriber.subscribe<&Releaser::dispatch>(dir->publisher(), &releaser);
    dir->entryIs("a", makeNode<Entity>());
    EXPECT_EQ(dir, nullptr);
    EXPECT_FALSE(subscriber.subscribed());
}

// Of each change, the entity that the name had before.
TEST(DirChanges, CarryTheEntityThatWasThere) {
    struct Observer {
        void dispatch(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber,
                      Vanta::ValueRef, Vanta::ValueRef oldValue) {
            before.push_back(oldValue.get<Ptr<Vanta::Node>>().get());
        }
        std::vector<Vanta::Node const*> before = {};
        Vanta::Subscriber subscriber = {};
    } observer;
    auto const dir = Dir::DirIs();
    observer.subscriber.subscribe<&Observer::dispatch>(dir->publisher(), &observer);
    auto const first = makeNode<Entity>();
    auto const second = makeNode<Entity>();
    dir->entryIs("a", first);
    dir->entryIs("a", second);
    dir->entryDel("a");
    EXPECT_EQ(observer.before,
              (std::vector<Vanta::Node const*>{nullptr, first.get(), second.get()}));
}

TEST(DirTable, NamesItsEntriesTypeAndKind) {
    auto const dir = Dir::DirIs();
    auto const& attributes = dir->typeInfo().attributes;
    ASSERT_EQ(attributes.size(), 1U);
    EXPECT_EQ(attributes[0].type, "Vanta::Ptr<Vanta::Node>");
    EXPECT_EQ(attributes[0].kind, Kel::AttributeKind::collection);
}

}  // namespace
