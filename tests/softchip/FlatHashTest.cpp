#include "softchip/FlatHash.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace SoftChip {
namespace {

struct Key {
    int value = 0;
    bool operator==(Key const&) const = default;
    // Poor on purpose: runs of used slots get long and wrap around the end.
    std::uint64_t hash() const { return static_cast<std::uint64_t>(value % 7) * 5; }
};

TEST(FlatHash, FindsNothingWhenItIsEmpty) {
    FlatHash<Key, int> table;
    EXPECT_EQ(table.find({1}), nullptr);
    EXPECT_FALSE(table.erase({1}));
    EXPECT_EQ(table.size(), 0u);
}

TEST(FlatHash, ReplacesTheValueOfAKeyThatIsThere) {
    FlatHash<Key, int> table;
    table[{1}] = 10;
    table[{1}] = 11;
    EXPECT_EQ(table.size(), 1u);
    EXPECT_EQ(*table.find({1}), 11);
}

TEST(FlatHash, AgreesWithAMapWhateverComesAndGoes) {
    std::mt19937 random(1);
    FlatHash<Key, int> table;
    std::map<int, int> model;
    for (int i = 0; i < 20000; ++i) {
        int const key = static_cast<int>(random() % 200);
        if (random() % 2) {
            table[{key}] = i;
            model[key] = i;
        } else {
            EXPECT_EQ(table.erase({key}), model.erase(key) == 1);
        }
        int const asked = static_cast<int>(random() % 200);
        auto const* found = table.find({asked});
        ASSERT_EQ(found != nullptr, model.contains(asked));
        ASSERT_TRUE(!found || *found == model[asked]);
    }
    std::map<int, int> visited;
    table.forEach([&](Key key, int value) { visited[key.value] = value; });
    EXPECT_EQ(visited, model);
    EXPECT_EQ(table.size(), model.size());
}

TEST(FlatHash, KeepsItsEntriesWhenRoomIsMade) {
    FlatHash<Key, int> table;
    table[{3}] = 30;
    table.reserve(1000);
    EXPECT_EQ(*table.find({3}), 30);
}

}  // namespace
}  // namespace SoftChip
