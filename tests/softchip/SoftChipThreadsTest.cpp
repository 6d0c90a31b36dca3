// The chip with its thread. What the event thread may look at here is what the chip has handed
// over: everything that was queued before a drain().
#include <gtest/gtest.h>
#include <time.h>

#include <atomic>
#include <thread>

#include "tests/softchip/ChipFixture.h"

namespace SoftChip {
namespace {

class SoftChipThreads : public ChipFixture {
  protected:
    SoftChipThreads() : ChipFixture(Mode::threaded) { registerDigest(); }

    void awaitSleep() {
        while (!chip.asleep()) {
            std::this_thread::yield();
        }
    }
    static void await(std::atomic<bool> const& flag) {
        while (!flag) {
            std::this_thread::yield();
        }
    }
    static std::int64_t nanoseconds(clockid_t clock) {
        timespec time{};
        ::clock_gettime(clock, &time);
        return std::int64_t{time.tv_sec} * 1'000'000'000 + std::int64_t{time.tv_nsec};
    }
    // Processor time of all threads but this one.
    static std::int64_t othersTime() {
        return nanoseconds(CLOCK_PROCESS_CPUTIME_ID) - nanoseconds(CLOCK_THREAD_CPUTIME_ID);
    }
};

TEST_F(SoftChipThreads, CallTheCallbackFromTheChipsThread) {
    std::thread::id caller;
    receiver.inside = [&] { caller = std::this_thread::get_id(); };
    inject(1);
    chip.drain();
    EXPECT_NE(caller, std::thread::id());
    EXPECT_NE(caller, std::this_thread::get_id());
}

TEST_F(SoftChipThreads, DeliverADigestForEveryPacketInOrder) {
    std::vector<std::uint16_t> sent;
    for (std::uint16_t id = 0; id < 5000; ++id) {
        ASSERT_EQ(inject(id), 0);
        sent.push_back(id);
    }
    chip.drain();
    EXPECT_EQ(receiver.pktIds(), sent);
    EXPECT_EQ(counter(), 5000u);
    EXPECT_EQ(chip.outstandingMessages(), 0u);
}

TEST_F(SoftChipThreads, ShareAMessageForWhatIsQueuedWhileTheChipIsBusy) {
    std::atomic<bool> busy = false;
    std::atomic<bool> goOn = false;
    chip.change([&](Tables&) {
        busy = true;
        await(goOn);
    });
    await(busy);
    for (std::uint16_t id = 0; id < 10; ++id) {
        inject(id);
    }
    goOn = true;
    chip.drain();
    EXPECT_EQ(receiver.calls.size(), 1u);
    EXPECT_EQ(receiver.pktIds().size(), 10u);
}

TEST_F(SoftChipThreads, MoveTheCounterBeforeThePipelineRuns) {
    std::atomic<bool> inside = false;
    std::atomic<bool> goOn = false;
    receiver.inside = [&] {
        inside = true;
        await(goOn);
    };
    inject(1);
    await(inside);
    EXPECT_EQ(counter(), 1u);  // though the callback still runs
    goOn = true;
    chip.drain();
}

TEST_F(SoftChipThreads, WakeForAPacketAfterSleeping) {
    for (std::uint16_t id = 0; id < 20; ++id) {
        awaitSleep();
        inject(id);
        chip.drain();
    }
    EXPECT_EQ(receiver.pktIds().size(), 20u);
}

TEST_F(SoftChipThreads, UseNoProcessorTimeWhileIdle) {
    chip.drain();
    awaitSleep();
    auto const before = othersTime();
    auto const start = nanoseconds(CLOCK_THREAD_CPUTIME_ID);
    while (nanoseconds(CLOCK_THREAD_CPUTIME_ID) < start + 20'000'000) {
    }
    EXPECT_LT(othersTime() - before, 2'000'000);
    EXPECT_TRUE(chip.asleep());
}

TEST_F(SoftChipThreads, EndARegistrationOnlyWhenNoCallbackRuns) {
    std::atomic<bool> inside = false;
    std::atomic<bool> left = false;
    receiver.inside = [&] {
        inside = true;
        // The event thread is on its way into the deregistration, or in it already.
        for (int i = 0; i < 1000; ++i) {
            std::this_thread::yield();
        }
        left = true;
    };
    inject(1);
    await(inside);
    EXPECT_EQ(deregisterDigest(), 0);
    EXPECT_TRUE(left);
    EXPECT_EQ(receiver.calls.at(0).acknowledged, 0);  // inside the callback, all the while
}

TEST_F(SoftChipThreads, StartNoCallbackAfterTheEndOfARegistration) {
    std::atomic<bool> over = false;
    std::atomic<bool> late = false;
    receiver.inside = [&] { late = late || over; };
    for (int round = 0; round < 200; ++round) {
        for (std::uint16_t id = 0; id < 5; ++id) {
            inject(id);
        }
        ASSERT_EQ(deregisterDigest(), 0);
        over = true;
        chip.drain();
        over = false;
        ASSERT_EQ(registerDigest(), 0);
    }
    EXPECT_FALSE(late);
}

TEST_F(SoftChipThreads, TakeAnAcknowledgementFromTheEventThreadLater) {
    receiver.acknowledges = false;
    for (std::uint16_t id = 0; id < 65; ++id) {
        inject(id);
        chip.drain();
    }
    ASSERT_EQ(receiver.calls.size(), 64u);
    EXPECT_EQ(pipe_mgr_flow_lrn_notify_ack(session, 77, receiver.calls[3].message), 0);
    chip.change([](Tables&) {});
    chip.drain();
    EXPECT_EQ(receiver.calls.size(), 65u);
}

TEST_F(SoftChipThreads, TakeFaultsAtAnyTime) {
    for (std::uint16_t id = 0; id < 2000; ++id) {
        inject(id);
        if (id % 100 == 50) {
            chip.faults().digestIs({.fate = DigestFate::lost, .pktId = id});
            chip.faults().failIs(SdkFunction::notifyAck, 1);
        } else if (id % 100 == 99) {
            chip.faults().clear();
        }
    }
    chip.drain();
    auto const counters = chip.journal().counters();
    EXPECT_EQ(counters.digestsSent + counters.digestsLost, 2000u);
}

TEST_F(SoftChipThreads, LetTheirJournalBeReadAtAnyTime) {
    std::uint64_t newest = 0;
    for (std::uint16_t id = 0; id < 200; ++id) {
        inject(id);
        auto const entries = chip.journal().entries();
        EXPECT_GE(entries.back().number, newest);
        newest = entries.back().number;
        EXPECT_EQ(chip.journal().counters().callsOf(SdkFunction::genOnePkt), id + 1u);
    }
}

TEST_F(SoftChipThreads, WriteEveryCauseAheadOfItsEffect) {
    for (std::uint16_t id = 0; id < 500; ++id) {
        inject(id);
    }
    chip.drain();
    std::uint64_t injections = 0;
    std::uint64_t calls = 0;
    std::uint64_t digests = 0;
    std::uint64_t number = 0;
    for (auto const& entry : chip.journal().entries()) {
        EXPECT_GT(entry.number, number);
        number = entry.number;
        calls += entry.kind == Kind::call && entry.function == SdkFunction::genOnePkt ? 1 : 0;
        injections += entry.kind == Kind::injection ? 1 : 0;
        digests += entry.entries;
        EXPECT_LE(injections, calls);
        EXPECT_LE(digests, injections);
    }
    EXPECT_EQ(digests, 500u);
}

TEST(SoftChipThread, EndsWithTheChipWhateverIsQueued) {
    DigestReceiver receiver;
    for (int round = 0; round < 50; ++round) {
        SoftChip chip({.device = 6});
        pipe_mgr_lrn_digest_notification_register(1, 6, 77, &DigestReceiver::callback, &receiver);
        std::vector<std::uint8_t> const bytes(64);
        for (std::uint16_t id = 0; id < 20; ++id) {
            VynSdk::genOnePkt(1, 6, 0, 68, 1, 4, bytes, bytes, id);
        }
    }
    EXPECT_LE(receiver.pktIds().size(), 1000u);
}

}  // namespace
}  // namespace SoftChip
