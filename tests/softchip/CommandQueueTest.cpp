#include "softchip/CommandQueue.h"

#include <gtest/gtest.h>

#include <thread>

#include "softchip/Tables.h"

namespace SoftChip {
namespace {

std::vector<std::uint8_t> const phase0{1, 2};
std::vector<std::uint8_t> const pkt{3, 4, 5};

Injection injection(std::uint16_t pktId) {
    return {
        .pipe = 1, .portIndex = 7, .pktId = pktId, .registration = 2, .phase0 = phase0, .pkt = pkt};
}

TEST(CommandQueue, HandsOutAnInjectionAsItWasPushed) {
    CommandQueue queue;
    queue.pushInjection(injection(9));
    auto const taken = queue.take();
    ASSERT_EQ(taken.size(), 1u);
    EXPECT_EQ(taken[0].kind, Command::Kind::inject);
    EXPECT_EQ(taken[0].pipe, 1u);
    EXPECT_EQ(taken[0].portIndex, 7u);
    EXPECT_EQ(taken[0].pktId, 9u);
    EXPECT_EQ(taken[0].registration, 2u);
    EXPECT_TRUE(std::ranges::equal(taken[0].phase0(), phase0));
    EXPECT_TRUE(std::ranges::equal(taken[0].pkt(), pkt));
}

TEST(CommandQueue, KeepsTheOrderOfAllKinds) {
    CommandQueue queue;
    queue.pushInjection(injection(1));
    queue.pushChange([](Tables&) {});
    queue.pushReleaseHeld();
    auto const taken = queue.take();
    ASSERT_EQ(taken.size(), 3u);
    EXPECT_EQ(taken[0].kind, Command::Kind::inject);
    EXPECT_EQ(taken[1].kind, Command::Kind::change);
    EXPECT_EQ(taken[2].kind, Command::Kind::releaseHeld);
}

TEST(CommandQueue, HandsOutNothingTwice) {
    CommandQueue queue;
    queue.pushInjection(injection(1));
    queue.take();
    EXPECT_TRUE(queue.take().empty());
    EXPECT_FALSE(queue.pending());
}

TEST(CommandQueue, UsesTheRoomOfItsSlotsAgain) {
    CommandQueue queue;
    std::uint8_t const* blocks[2]{};
    for (int row = 0; row < 4; ++row) {
        queue.pushInjection(injection(1));
        auto const* const block = queue.take()[0].bytes.data();
        auto const*& known = blocks[row % 2];
        EXPECT_TRUE(known == nullptr || known == block);
        known = block;
    }
}

TEST(CommandQueue, WaitsUntilSomethingIsPushed) {
    CommandQueue queue;
    std::size_t taken = 0;
    std::thread thread([&] { taken = queue.waitAndTake()->size(); });
    while (!queue.asleep()) {
        std::this_thread::yield();
    }
    queue.pushInjection(injection(1));
    thread.join();
    EXPECT_EQ(taken, 1u);
}

TEST(CommandQueue, ReturnsNothingOnceItIsStopped) {
    CommandQueue queue;
    queue.pushInjection(injection(1));
    queue.stop();
    EXPECT_FALSE(queue.waitAndTake());
}

TEST(CommandQueue, WakesForNothingWhenAsked) {
    CommandQueue queue;
    queue.wake();
    auto const taken = queue.waitAndTake();
    ASSERT_TRUE(taken);
    EXPECT_TRUE(taken->empty());
}

TEST(CommandQueue, ReportsWhatIsDoneToWhoWaitsForIt) {
    CommandQueue queue;
    int done = 0;
    std::thread thread([&] {
        while (auto const commands = queue.waitAndTake()) {
            done += static_cast<int>(commands->size());
            queue.done();
        }
    });
    for (int round = 1; round <= 1000; ++round) {
        queue.pushInjection(injection(1));
        queue.waitUntilDone();
        ASSERT_EQ(done, round);
    }
    queue.stop();
    thread.join();
}

}  // namespace
}  // namespace SoftChip
