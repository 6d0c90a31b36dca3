#include "Kel/Collection.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using Numbers = Kel::Collection<int, std::string>;

std::vector<int> keys(Numbers const& numbers) {
    std::vector<int> found;
    for (auto const& entry : numbers) {
        found.push_back(entry.key);
    }
    return found;
}

using Keys = std::vector<int>;

struct CollectionOf : testing::TestWithParam<int> {
    CollectionOf() {
        for (int key = 0; key < GetParam(); ++key) {
            numbers.insert(key, std::to_string(key));
        }
    }
    Numbers numbers;
};

TEST_P(CollectionOf, FindsEveryEntryByItsKey) {
    for (int key = 0; key < GetParam(); ++key) {
        ASSERT_NE(numbers.find(key), nullptr);
        EXPECT_EQ(numbers.find(key)->value, std::to_string(key));
    }
    EXPECT_EQ(numbers.find(GetParam()), nullptr);
}

TEST_P(CollectionOf, IteratesInTheOrderOfInsertion) {
    Keys expected;
    for (int key = 0; key < GetParam(); ++key) {
        expected.push_back(key);
    }
    EXPECT_EQ(keys(numbers), expected);
}

TEST_P(CollectionOf, PutsAKeyThatWasRemovedAndAddedAgainLast) {
    numbers.remove(0);
    numbers.insert(0, "again");
    EXPECT_EQ(keys(numbers).back(), 0);
    EXPECT_EQ(numbers.size(), static_cast<std::size_t>(GetParam()));
}

TEST_P(CollectionOf, HandsOutTheValueThatItRemoves) {
    EXPECT_EQ(numbers.remove(1), "1");
    EXPECT_EQ(numbers.remove(1), std::nullopt);
    EXPECT_FALSE(numbers.has(1));
}

TEST_P(CollectionOf, SkipsAnEntryRemovedBeforeItsTurn) {
    Keys visited;
    for (auto const& entry : numbers) {
        visited.push_back(entry.key);
        numbers.remove(1);
    }
    EXPECT_EQ(visited.size(), static_cast<std::size_t>(GetParam()) - 1);
    EXPECT_EQ(visited[1], 2);
}

TEST_P(CollectionOf, GoesOnAfterTheEntryUnderItIsRemoved) {
    Keys visited;
    for (auto const& entry : numbers) {
        int const key = entry.key;
        visited.push_back(key);
        numbers.remove(key);
    }
    EXPECT_EQ(visited.size(), static_cast<std::size_t>(GetParam()));
    EXPECT_TRUE(numbers.empty());
}

TEST_P(CollectionOf, VisitsAnEntryAddedDuringTheWalk) {
    Keys visited;
    for (auto const& entry : numbers) {
        visited.push_back(entry.key);
        if (entry.key == 0) {
            numbers.insert(-1, "added");
        }
    }
    EXPECT_EQ(visited.back(), -1);
}

TEST_P(CollectionOf, VisitsAnEntryAddedWhenTheOnlyOthersWereRemoved) {
    Keys visited;
    for (auto const& entry : numbers) {
        visited.push_back(entry.key);
        if (entry.key == 0) {
            numbers.clear();
            numbers.insert(-1, "added");
        }
    }
    EXPECT_EQ(visited, (Keys{0, -1}));
}

// The list alone, the list at its limit, and tables in every phase of growth.
INSTANTIATE_TEST_SUITE_P(Sizes, CollectionOf, testing::Values(3, 8, 9, 16, 17, 33, 1000));

TEST(Collection, EndsAWalkThatOutlivesIt) {
    auto numbers = std::make_unique<Numbers>();
    numbers->insert(1, "one");
    numbers->insert(2, "two");
    int visits = 0;
    for ([[maybe_unused]] auto const& entry : *numbers) {
        ++visits;
        numbers.reset();
    }
    EXPECT_EQ(visits, 1);
}

TEST(Collection, NumbersItsEntriesInTheirOrder) {
    Numbers numbers;
    auto const first = numbers.insert(5, "a").order;
    auto const second = numbers.insert(3, "b").order;
    EXPECT_LT(first, second);
}

TEST(Collection, StaysEqualToAPlainMapOverARandomHistory) {
    std::mt19937 random(7);
    Numbers numbers;
    std::map<int, std::string> model;
    for (int step = 0; step < 100000; ++step) {
        int const key = static_cast<int>(random() % 3000);
        if (random() % 2 == 0) {
            if (!numbers.has(key)) {
                numbers.insert(key, std::to_string(step));
            }
            model.try_emplace(key, std::to_string(step));
        } else {
            EXPECT_EQ(numbers.remove(key).has_value(), model.erase(key) == 1);
        }
    }
    ASSERT_EQ(numbers.size(), model.size());
    for (auto const& [key, value] : model) {
        ASSERT_NE(numbers.find(key), nullptr);
        EXPECT_EQ(numbers.find(key)->value, value);
    }
}

TEST(Collection, NestsWalks) {
    Numbers numbers;
    numbers.insert(1, "");
    numbers.insert(2, "");
    int visits = 0;
    for ([[maybe_unused]] auto const& outer : numbers) {
        for (auto const& inner : numbers) {
            ++visits;
            if (inner.key == 2 && outer.key == 1) {
                numbers.insert(3, "");
            }
        }
    }
    EXPECT_EQ(visits, 3 + 3 + 3);
}

}  // namespace
