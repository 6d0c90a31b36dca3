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

}  // namespace
