#include "Vanta/Node.h"

#include <gtest/gtest.h>

#include <barrier>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "Grist/Grist.h"
#include "Vanta/Assert.h"

namespace {

using Vanta::makeNode;
using Vanta::Node;
using Vanta::Ptr;

struct Counted : Node {
    explicit Counted(int& counter) : destroyed(counter) {}
    ~Counted() override { ++destroyed; }
    int& destroyed;
};

// A node without anything of its own: what it takes from the allocator is a whole size class.
struct Plain : Node {};

TEST(Node, IsBornWithTheOneReferenceThatItsFactoryAdopts) {
    int destroyed = 0;
    auto const node = makeNode<Counted>(destroyed);
    EXPECT_EQ(node->refCount(), 1U);
}

TEST(Node, GoesWithItsLastReferenceOnly) {
    int destroyed = 0;
    auto first = makeNode<Counted>(destroyed);
    auto second = first;
    first = nullptr;
    EXPECT_EQ(destroyed, 0);
    second = nullptr;
    EXPECT_EQ(destroyed, 1);
}

TEST(Node, MayHandOutReferencesWhileItIsConstructed) {
    struct SelfHolder : Node {
        SelfHolder() { Ptr<SelfHolder> const self(this); }
    };
    EXPECT_EQ(makeNode<SelfHolder>()->refCount(), 1U);
}

TEST(Node, IsFreedWhenItsConstructorThrows) {
    struct Thrower : Node {
        Thrower() { throw std::runtime_error("no"); }
    };
    auto const before = Node::liveCount();
    EXPECT_THROW(makeNode<Thrower>(), std::runtime_error);
    EXPECT_EQ(Node::liveCount(), before);
}

TEST(Node, ToleratesAReferenceThatItsDestructorTakesAndDrops) {
    int destroyed = 0;
    struct Late : Counted {
        using Counted::Counted;
        ~Late() override { Ptr<Late> const self(this); }
    };
    makeNode<Late>(destroyed);
    EXPECT_EQ(destroyed, 1);
}

struct Leaker : Node {
    ~Leaker() override { refIs(); }
};

TEST(NodeDeathTest, EndsTheProcessWhenADestructorPlainAReference) {
    EXPECT_DEATH(makeNode<Leaker>(), "^assertion failed: count_ == 1\n$");
}

TEST(NodeDeathTest, StillCountsANodeWhoseDestructorLeftAReference) {
    auto const body = [] {
        Vanta::LastStep const step([](void*, std::string_view, std::string_view) {
            std::fprintf(stderr, "%d alive", static_cast<int>(Node::liveCount()));
            std::_Exit(9);
        });
        makeNode<Leaker>();
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(9), "1 alive$");
}

TEST(Node, CountsNoneBeforeThereIsOne) {
    EXPECT_EQ(Node::liveCount(), 0U);
}

TEST(Node, TakesNoMoreMemoryWhenNodesComeAndGo) {
    makeNode<Plain>();
    auto const before = Grist::slabBytes();
    for (int i = 0; i < 10000; ++i) {
        makeNode<Plain>();
    }
    EXPECT_EQ(Grist::slabBytes(), before);
}

TEST(Node, IsCountedWhileItLives) {
    int destroyed = 0;
    auto const before = Node::liveCount();
    auto node = makeNode<Counted>(destroyed);
    EXPECT_EQ(Node::liveCount(), before + 1);
    node = nullptr;
    EXPECT_EQ(Node::liveCount(), before);
}

TEST(Ptr, ComparesByIdentity) {
    int destroyed = 0;
    auto const one = makeNode<Counted>(destroyed);
    auto const other = makeNode<Counted>(destroyed);
    Ptr<Counted const> const same = one;
    EXPECT_TRUE(one == same);
    EXPECT_FALSE(one == other);
}

TEST(Ptr, CastsANodeOfAnotherTypeToNull) {
    struct Other : Node {};
    Ptr<Node> const node = makeNode<Other>();
    EXPECT_EQ(Vanta::dynamicCast<Counted>(node), nullptr);
    EXPECT_NE(Vanta::dynamicCast<Other>(node), nullptr);
}

TEST(Ptr, MovesWithoutTouchingTheCount) {
    int destroyed = 0;
    auto first = makeNode<Counted>(destroyed);
    auto const second = std::move(first);
    EXPECT_EQ(second->refCount(), 1U);
    EXPECT_EQ(first, nullptr);
}

// The switch cannot be set back, so this runs in a process of its own.
TEST(NodeDeathTest, CountsAtomicallyAfterTheSwitch) {
    auto const body = [] {
        Node::threadSafeCountsIs(true);
        int destroyed = 0;
        auto const node = makeNode<Counted>(destroyed);
        std::barrier together(2);
        auto const work = [&] {
            together.arrive_and_wait();
            for (int i = 0; i < 1000000; ++i) {
                auto copy = node;
            }
        };
        std::thread other(work);
        work();
        other.join();
        std::_Exit(node->refCount() == 1 ? 0 : 1);
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

TEST(NodeDeathTest, GoesWithItsLastReferenceAlsoAfterTheSwitch) {
    auto const body = [] {
        Node::threadSafeCountsIs(true);
        int destroyed = 0;
        auto first = makeNode<Counted>(destroyed);
        auto second = first;
        first = nullptr;
        int const early = destroyed;
        second = nullptr;
        std::_Exit(early == 0 && destroyed == 1 && Node::liveCount() == 0 ? 0 : 1);
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

}  // namespace
