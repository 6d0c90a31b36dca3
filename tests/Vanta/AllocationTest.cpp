// What must not allocate, proved by counting: the global operator new of this program counts, and
// Grist fails the first allocation that it is asked for.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <new>

#include "Grist/Grist.h"
#include "Vanta/Bytes.h"
#include "Vanta/Node.h"
#include "Vanta/Publisher.h"
#include "Vanta/String.h"

namespace {

thread_local std::uint64_t allocations = 0;

}  // namespace

// Not inlined: the compiler would take free() for the wrong partner of operator new.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    if (void* const block = std::malloc(size != 0 ? size : 1)) {
        return block;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace {

// Ends with a failure of the test if anything was allocated while it lived.
class NoAllocation {
  public:
    NoAllocation() { Grist::failAfterIs(1); }
    NoAllocation(NoAllocation const&) = delete;
    NoAllocation& operator=(NoAllocation const&) = delete;
    ~NoAllocation() {
        auto const counted = allocations - before_;
        bool const gristAsked = Grist::failAfter() != 1;
        Grist::failAfterIs(0);
        EXPECT_EQ(counted, 0U);
        EXPECT_FALSE(gristAsked);
    }

  private:
    std::uint64_t before_ = allocations;
};

struct Listener : Vanta::Node {
    void dispatch(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber,
                  Vanta::ValueRef, Vanta::ValueRef) {
        ++calls;
    }
    int calls = 0;
    Vanta::Subscriber subscriber;
};

TEST(Allocation, IsCounted) {
    auto const before = allocations;
    ::operator delete(::operator new(4));
    EXPECT_EQ(allocations, before + 1);
}

TEST(Allocation, IsNotNeededToSubscribePublishAndUnsubscribe) {
    Vanta::Publisher publisher(nullptr);
    auto const listener = Vanta::makeNode<Listener>();
    {
        NoAllocation const guard;
        listener->subscriber.subscribe<&Listener::dispatch>(publisher, listener.get());
        publisher.publish(1);
        listener->subscriber.unsubscribe();
    }
    EXPECT_EQ(listener->calls, 1);
}

TEST(Allocation, IsNotNeededToReleaseANode) {
    auto node = Vanta::makeNode<Listener>();
    auto copy = node;
    NoAllocation const guard;
    copy = nullptr;
    node = nullptr;
}

TEST(Allocation, IsNotNeededForAPublisherToGoBeforeItsSubscribers) {
    auto const listener = Vanta::makeNode<Listener>();
    NoAllocation const guard;
    {
        Vanta::Publisher publisher(nullptr);
        listener->subscriber.subscribe<&Listener::dispatch>(publisher, listener.get());
    }
    EXPECT_FALSE(listener->subscriber.subscribed());
}

TEST(Allocation, IsNotNeededToShareTextAndBytes) {
    Vanta::String const text("a text that needs a block of its own");
    Vanta::Bytes const bytes{1, 2, 3, 4};
    NoAllocation const guard;
    Vanta::String const sameText = text;
    Vanta::Bytes const sameBytes = bytes;
    EXPECT_TRUE(sameText == text && sameBytes == bytes);
    Vanta::String const empty(std::string_view{});
    EXPECT_TRUE(empty.empty());
}

}  // namespace
