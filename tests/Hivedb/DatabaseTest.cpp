#include "Hivedb/Database.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "Grist/Grist.h"

namespace {

using Paths = std::vector<Vanta::String>;

struct Database : testing::Test {
    std::string refusal(char const* path) {
        try {
            database->mount(path);
        } catch (Hivedb::PathError const& error) {
            return error.what();
        }
        return "none";
    }
    Vanta::Ptr<Hivedb::Database> database = Hivedb::Database::DatabaseIs();
};

struct Entity : Vanta::Node {};

TEST_F(Database, MountsAnEmptyDirectory) {
    auto const dir = database->mount("/packetTracer/config");
    ASSERT_NE(dir, nullptr);
    EXPECT_TRUE(dir->entry().empty());
}

TEST_F(Database, GivesTheSameDirectoryForTheSamePath) {
    auto const dir = database->mount("/packetTracer/config");
    dir->entryIs("noc", Vanta::makeNode<Entity>());
    EXPECT_EQ(database->mount("/packetTracer/config"), dir);
}

TEST_F(Database, GivesEveryPathADirectoryOfItsOwn) {
    EXPECT_FALSE(database->mount("/a") == database->mount("/a/b"));
}

TEST_F(Database, ForgetsAPathWithTheLastUnmountOnly) {
    auto const dir = database->mount("/a");
    database->mount("/a");
    EXPECT_TRUE(database->unmount("/a"));
    EXPECT_EQ(database->mount("/a"), dir);
    EXPECT_TRUE(database->unmount("/a"));
    EXPECT_TRUE(database->unmount("/a"));
    EXPECT_EQ(database->list(), Paths{});
}

TEST_F(Database, RefusesToUnmountWhatIsNotMounted) {
    database->mount("/a");
    EXPECT_FALSE(database->unmount("/b"));
    EXPECT_TRUE(database->unmount("/a"));
    EXPECT_FALSE(database->unmount("/a"));
    EXPECT_FALSE(database->unmount("no path"));
}

TEST_F(Database, LeavesADirectoryToItsHoldersWhenItsPathGoes) {
    auto const dir = database->mount("/a");
    dir->entryIs("noc", Vanta::makeNode<Entity>());
    database->unmount("/a");
    EXPECT_EQ(dir->refCount(), 1U);
    EXPECT_TRUE(dir->entryHas("noc"));
    EXPECT_FALSE(database->mount("/a") == dir);
}

TEST_F(Database, ForgetsAPathThatIsNamedByItsOwnKey) {
    database->mount("/a/path/in/a/block/of/its/own");
    EXPECT_TRUE(database->unmount(database->mounts().begin()->key));
    EXPECT_EQ(database->list(), Paths{});
}

TEST_F(Database, ListsThePathsInTheOrderOfTheirFirstMount) {
    database->mount("/b");
    database->mount("/a");
    database->mount("/b");
    EXPECT_EQ(database->list(), (Paths{"/b", "/a"}));
}

TEST_F(Database, ListsAPathThatCameBackLast) {
    database->mount("/b");
    database->mount("/a");
    database->unmount("/b");
    database->mount("/b");
    EXPECT_EQ(database->list(), (Paths{"/a", "/b"}));
}

TEST_F(Database, ListsWhatIsBelowAPrefixByWholeNames) {
    for (char const* path : {"/a", "/a/b", "/ab", "/a/b/c", "/c/a/b"}) {
        database->mount(path);
    }
    EXPECT_EQ(database->list("/a"), (Paths{"/a/b", "/a/b/c"}));
    EXPECT_EQ(database->list("/a/"), (Paths{"/a/b", "/a/b/c"}));
    EXPECT_EQ(database->list("/a/b/c"), Paths{});
    EXPECT_EQ(database->list("/none"), Paths{});
}

TEST_F(Database, ListsEveryPathBelowTheRoot) {
    database->mount("/a");
    database->mount("/b/c");
    EXPECT_EQ(database->list("/"), (Paths{"/a", "/b/c"}));
    EXPECT_EQ(database->list(""), (Paths{"/a", "/b/c"}));
}

TEST_F(Database, RefusesAPathThatDoesNotStartAtTheRoot) {
    EXPECT_EQ(refusal("a/b"), "Hivedb path \"a/b\", character 1: expected '/'");
    EXPECT_EQ(refusal(""), "Hivedb path \"\", character 1: expected '/'");
}

TEST_F(Database, RefusesAnEmptyName) {
    EXPECT_EQ(refusal("/"), "Hivedb path \"/\", character 2: expected a name");
    EXPECT_EQ(refusal("/a//b"), "Hivedb path \"/a//b\", character 4: expected a name");
    EXPECT_EQ(refusal("/a/"), "Hivedb path \"/a/\", character 4: expected a name");
}

TEST_F(Database, RefusesAForeignCharacter) {
    EXPECT_EQ(refusal("/a b"), "Hivedb path \"/a b\", character 3: expected '/' or the end");
    EXPECT_EQ(refusal("/a\n"), "Hivedb path \"/a\n\", character 3: expected '/' or the end");
}

TEST_F(Database, RefusesNamesThatStandForOtherPaths) {
    EXPECT_EQ(refusal("/a/../b"),
              "Hivedb path \"/a/../b\", character 4: expected a name other than \".\" and \"..\"");
    EXPECT_EQ(refusal("/."),
              "Hivedb path \"/.\", character 2: expected a name other than \".\" and \"..\"");
}

TEST_F(Database, TakesEveryCharacterOfAName) {
    EXPECT_EQ(refusal("/Az09-_.:/..."), "none");
}

TEST_F(Database, RaisesAnErrorOfTheFramework) {
    try {
        database->mount("a");
        FAIL();
    } catch (Kel::Error const& error) {
        EXPECT_EQ(error.typeName(), "Hivedb::Database");
        EXPECT_EQ(error.attribute(), "mount");
    }
}

TEST_F(Database, StaysAsItWasWhenAPathIsRefusedOrMemoryRunsOut) {
    EXPECT_NE(refusal("/a/"), "none");
    Vanta::String const path = "/a";
    Vanta::Ptr<Kel::Dir> dir;
    for (std::uint64_t failing = 1; !dir; ++failing) {
        EXPECT_EQ(database->list(), Paths{});
        Grist::failAfterIs(failing);
        try {
            dir = database->mount(path);
        } catch (std::bad_alloc const&) {
        }
    }
    Grist::failAfterIs(0);
    EXPECT_TRUE(database->unmount(path));
    EXPECT_EQ(dir->refCount(), 1U);
}

TEST_F(Database, ShowsItsMountsThroughItsTable) {
    struct CountingSink final : Kel::AttributeSink {
        void number(std::int64_t) override {}
        void number(std::uint64_t value) override { line += std::to_string(value); }
        void boolean(bool) override {}
        void text(std::string_view value) override { line += value; }
        void object(Vanta::Node const* value) override { line += value != nullptr ? "*" : "-"; }
        void listStart() override { line += "["; }
        void listEnd() override { line += "]"; }
        std::string line;
    } sink;
    database->mount("/a");
    database->mount("/a");
    auto const& attribute = database->typeInfo().attributes[0];
    EXPECT_EQ(attribute.number, 130U);
    attribute.read(*database, sink);
    EXPECT_EQ(sink.line, "[[/a[*2]]]");
}

}  // namespace
