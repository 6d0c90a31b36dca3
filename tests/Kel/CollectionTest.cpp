#include "Kel/Collection.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Grist/Grist.h"
#include "Mortal.h"

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

TEST_P(CollectionOf, VisitsEachKeyUntilTheOneThatWasLastHoweverManyAreAdded) {
    Keys visited;
    numbers.eachKeyUntilLast([&](int key) {
        visited.push_back(key);
        numbers.remove(key);
        if (visited.size() < 5000) {
            numbers.insert(1000 + key, "added");
        }
    });
    EXPECT_EQ(visited.size(), static_cast<std::size_t>(GetParam()));
    EXPECT_EQ(visited.back(), GetParam() - 1);
    EXPECT_EQ(numbers.size(), visited.size());
}

TEST_P(CollectionOf, VisitsNoKeyAgainThatWasRemovedAndAddedMeanwhile) {
    Keys visited;
    numbers.eachKeyUntilLast([&](int key) {
        visited.push_back(key);
        numbers.remove(GetParam() - 1);
        numbers.insert(GetParam() - 1, "again");
    });
    EXPECT_EQ(visited.size(), static_cast<std::size_t>(GetParam()) - 1);
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

TEST_P(CollectionOf, VisitsAKeyThatIsRemovedAndAddedAgainOnceMore) {
    Keys visited;
    for (auto const& entry : numbers) {
        visited.push_back(entry.key);
        if (visited.size() == 1) {
            numbers.remove(0);
            numbers.insert(0, "again");
        }
    }
    EXPECT_EQ(visited.size(), static_cast<std::size_t>(GetParam()) + 1);
    EXPECT_EQ(visited.back(), 0);
}

TEST_P(CollectionOf, GoesOnWhenTheEntryUnderItAndAllBeforeItAreRemoved) {
    Keys visited;
    for (auto const& entry : numbers) {
        visited.push_back(entry.key);
        if (visited.size() == 2) {
            numbers.remove(1);
            numbers.remove(0);
        }
    }
    EXPECT_EQ(keys(numbers).size(), static_cast<std::size_t>(GetParam()) - 2);
    EXPECT_EQ(visited.size(), static_cast<std::size_t>(GetParam()));
}

TEST_P(CollectionOf, NeverMovesAnEntry) {
    auto const* const first = numbers.find(0);
    for (int key = GetParam(); key < 3 * GetParam(); ++key) {
        numbers.insert(key, "");
    }
    for (int key = 1; key < 3 * GetParam(); ++key) {
        numbers.remove(key);
    }
    EXPECT_EQ(numbers.find(0), first);
}

// One entry, and at most the table or a segment of it besides.
TEST_P(CollectionOf, TakesFewBlocksForAnInsertion) {
    for (int key = GetParam(); key < 2 * GetParam(); ++key) {
        auto const before = Grist::liveBlocks();
        numbers.insert(key, "");
        EXPECT_LE(Grist::liveBlocks(), before + 3);
    }
}

TEST_P(CollectionOf, StaysAsItWasWhenMemoryRunsOutAtAnyPointOfAnInsertion) {
    Keys const before = keys(numbers);
    for (std::uint64_t failing = 1;; ++failing) {
        Grist::failAfterIs(failing);
        try {
            numbers.insert(-1, "added");
            break;
        } catch (std::bad_alloc const&) {
        }
        ASSERT_EQ(keys(numbers), before);
        ASSERT_EQ(numbers.size(), before.size());
        ASSERT_FALSE(numbers.has(-1));
        for (int const key : before) {
            ASSERT_EQ(numbers.find(key)->value, std::to_string(key));
        }
    }
    Grist::failAfterIs(0);
    EXPECT_EQ(numbers.find(-1)->value, "added");
    EXPECT_EQ(numbers.size(), before.size() + 1);
}

TEST_P(CollectionOf, GivesBackEveryBlock) {
    auto const before = Grist::liveBlocks();
    {
        Numbers others;
        for (int key = 0; key < GetParam(); ++key) {
            others.insert(key, "");
        }
    }
    EXPECT_EQ(Grist::liveBlocks(), before);
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

TEST(Collection, EndsAllWalksThatOutliveIt) {
    Mortal<Numbers> numbers;
    numbers->insert(1, "one");
    numbers->insert(2, "two");
    Numbers::Iterator first(*numbers);
    Numbers::Iterator second(*numbers);
    numbers.goes();
    ++first;
    ++second;
    EXPECT_TRUE(first == std::default_sentinel);
    EXPECT_TRUE(second == std::default_sentinel);
}

TEST(Collection, ForgetsAWalkThatEndsWhileItIsDestroyed) {
    using Values = Kel::Collection<int, std::shared_ptr<void>>;
    int destroyed = 0;
    Mortal<Values> values;
    Mortal<Values::Iterator> walk(*values);
    values->insert(1, std::shared_ptr<void>(nullptr, [&](void*) { walk.goes(); }));
    values->insert(2, std::shared_ptr<void>(nullptr, [&](void*) { ++destroyed; }));
    values.goes();
    EXPECT_EQ(destroyed, 1);
}

// The end of a value may need memory for another entry; it is not that of the entry that goes.
TEST(Collection, GivesAnEntrysMemoryBackAfterTheEntryHasGone) {
    struct Farewell {
        explicit Farewell(std::function<void()> what) : say(std::move(what)) {}
        Farewell(Farewell const&) = default;
        ~Farewell() {
            if (say) {
                say();
            }
        }
        std::function<void()> say;
    };
    using Values = Kel::Collection<std::shared_ptr<int>, Farewell>;
    auto const key = std::make_shared<int>(2);
    Values others;
    Values values;
    values.insert(std::make_shared<int>(1), [&] {
        if (others.empty()) {
            others.insert(key, nullptr);
        }
    });
    values.clear();
    EXPECT_TRUE(others.has(key));
    EXPECT_EQ(key.use_count(), 2);
}

TEST(Collection, TakesNoMoreMemoryWhenTablesComeAndGo) {
    auto const comeAndGo = [] {
        Numbers numbers;
        for (int key = 0; key < 9; ++key) {
            numbers.insert(key, "");
        }
    };
    comeAndGo();
    auto const before = Grist::slabBytes();
    for (int i = 0; i < 1000; ++i) {
        comeAndGo();
    }
    EXPECT_EQ(Grist::slabBytes(), before);
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

TEST(Collection, StaysAsItWasWhenAValueCannotBeMade) {
    struct Stubborn {
        explicit Stubborn(bool refuses) {
            if (refuses) {
                throw std::runtime_error("no");
            }
        }
    };
    auto const before = Grist::liveBlocks();
    Kel::Collection<int, Stubborn> values;
    values.insert(1, false);
    EXPECT_THROW(values.insert(2, true), std::runtime_error);
    EXPECT_EQ(values.size(), 1U);
    EXPECT_FALSE(values.has(2));
    EXPECT_EQ(Grist::liveBlocks(), before + 1);
}

TEST(Collection, IsWholeAgainBeforeARemovedValueGoes) {
    Kel::Collection<int, std::shared_ptr<void>> values;
    std::size_t sizeSeen = 7;
    auto const noteSize = [&](void*) { sizeSeen = values.size(); };
    values.insert(1, std::shared_ptr<void>(nullptr, noteSize));
    values.insert(2, nullptr);
    values.remove(1);
    EXPECT_EQ(sizeSeen, 1U);
}

TEST(Collection, FindsEveryKeyAlsoWhenAllHashesAreEqual) {
    struct Same {
        std::size_t operator()(int) const noexcept { return 1; }
    };
    Kel::Collection<int, int, Same> numbers;
    for (int key = 0; key < 100; ++key) {
        numbers.insert(key, key);
    }
    for (int key = 0; key < 100; key += 2) {
        EXPECT_EQ(numbers.remove(key), key);
    }
    for (int key = 0; key < 100; ++key) {
        EXPECT_EQ(numbers.has(key), key % 2 == 1);
    }
}

// A key that counts how often one is compared with another.
struct Counted {
    int number;
    static inline unsigned comparisons = 0;

    friend bool operator==(Counted const& a, Counted const& b) {
        ++comparisons;
        return a.number == b.number;
    }
};
struct CountedHash {
    std::size_t operator()(Counted const& key) const { return static_cast<unsigned>(key.number); }
};
using CountedKeys = Kel::Collection<Counted, int, CountedHash>;

struct CountedKeysTest : testing::Test {
    static constexpr int many = 10000;

    CountedKeysTest() {
        for (int key = 0; key < many; ++key) {
            keys.insert(Counted{key}, key);
        }
        Counted::comparisons = 0;
    }
    // Comparisons a look-up of a key that is not there.
    double inVain() const {
        for (int key = many; key < 2 * many; ++key) {
            EXPECT_FALSE(keys.has(Counted{key}));
        }
        return Counted::comparisons / double{many};
    }
    CountedKeys keys;
};

TEST_F(CountedKeysTest, LookedUpInVainAreHardlyComparedWithOthers) {
    EXPECT_LT(inVain(), 0.2);
}

TEST_F(CountedKeysTest, AreHardlyComparedWithOthersAfterEachWasReplacedManyTimes) {
    for (int key = 0; key < 20 * many; ++key) {
        keys.remove(Counted{key});
        keys.insert(Counted{many + key}, key);
    }
    Counted::comparisons = 0;
    for (int key = 0; key < many; ++key) {
        EXPECT_FALSE(keys.has(Counted{key}));
    }
    EXPECT_LT(Counted::comparisons / double{many}, 0.5);
}

TEST_F(CountedKeysTest, AreFoundWithAHashThatWasMadeBefore) {
    Counted const key{4711};
    CountedKeys::Hashed const hashed(key);
    EXPECT_EQ(keys.find(hashed), keys.find(key));
    EXPECT_EQ(keys.remove(hashed), 4711);
    EXPECT_EQ(keys.find(hashed), nullptr);
    EXPECT_EQ(keys.remove(hashed), std::nullopt);
    auto const& added = keys.insertHashed(hashed, 1);
    EXPECT_EQ(keys.find(key), &added);
}

TEST(Collection, WithoutATableTakesHashedKeysToo) {
    Numbers numbers;
    int const key = 7;
    Numbers::Hashed const hashed(key);
    numbers.insertHashed(hashed, "seven");
    ASSERT_NE(numbers.find(hashed), nullptr);
    int const equal = 7;
    EXPECT_EQ(numbers.find(Numbers::Hashed(equal, hashed))->value, "seven");
    EXPECT_EQ(numbers.remove(hashed), "seven");
    EXPECT_TRUE(numbers.empty());
}

// A hash that says that it chooses places itself.
struct OwnPlaces {
    using ChoosesPlaces = void;
    std::size_t operator()(int key) const { return static_cast<unsigned>(key); }
};

TEST(Collection, TakesAHashThatChoosesPlacesAsItIs) {
    int const key = 5;
    EXPECT_EQ((Kel::HashedKey<int, OwnPlaces>(key).hash()), 5u);
    EXPECT_NE((Kel::HashedKey<int>(key).hash()), 5u);
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

TEST(Collection, KnowsItsWalksInWhateverOrderTheyEnd) {
    Numbers numbers;
    numbers.insert(1, "");
    numbers.insert(2, "");
    auto first = std::make_unique<Numbers::Iterator>(numbers);
    auto second = std::make_unique<Numbers::Iterator>(numbers);
    Numbers::Iterator third(numbers);
    first.reset();
    numbers.remove(1);
    numbers.insert(3, "");  // in the place that became free
    ++*second;
    ASSERT_FALSE(*second == std::default_sentinel);
    EXPECT_EQ((*second)->key, 2);
    second.reset();
    ++third;
    EXPECT_EQ(third->key, 2);
}

}  // namespace
