#include "Orb/TaskSchedulerRoot.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "Grist/Grist.h"
#include "Orb/Fixture.h"
#include "Vanta/Assert.h"

namespace {

using namespace std::chrono_literals;
using Orb::TaskSchedulerRoot;

struct Turn : LoopTest {};

TEST_F(Turn, RunsPostedCallsThenDescriptorsThenTasks) {
    auto const a = job("task");
    auto const b = pipe("descriptor");
    a->task->schedule();
    b->write();
    loop->post([&] { log.emplace_back("posted"); });
    EXPECT_EQ(turn(), (Log{"posted", "descriptor", "task"}));
}

TEST_F(Turn, IsCountedFromItsBeginning) {
    std::uint64_t inside = 0;
    loop->post([&] { inside = loop->turns(); });
    EXPECT_EQ(loop->turns(), 0u);
    turn();
    EXPECT_EQ(inside, 1u);
    EXPECT_EQ(loop->turns(), 1u);
}

TEST_F(Turn, RunsPostedCallsInTheOrderOfPosting) {
    loop->post([&] { log.emplace_back("a"); });
    loop->post([&] { log.emplace_back("b"); });
    EXPECT_EQ(turn(), (Log{"a", "b"}));
}

TEST_F(Turn, LeavesACallThatAPostedCallPostsToTheNext) {
    loop->post([&] {
        log.emplace_back("outer");
        loop->post([&] { log.emplace_back("inner"); });
    });
    EXPECT_EQ(turn(), (Log{"outer"}));
    EXPECT_EQ(turn(), (Log{"inner"}));
}

TEST_F(Turn, RunsATaskThatAPostedCallOrADescriptorSchedules) {
    auto const a = job("a");
    auto const b = job("b");
    auto const descriptor = pipe("descriptor");
    descriptor->work = [&] { b->task->schedule(); };
    descriptor->write();
    loop->post([&] { a->task->schedule(); });
    EXPECT_EQ(turn(), (Log{"descriptor", "a", "b"}));
}

TEST_F(Turn, DoesNotAnnounceWhatBecameReadableMeanwhile) {
    auto const descriptor = pipe("descriptor");
    loop->post([&] { descriptor->write(); });
    EXPECT_EQ(turn(), Log{});
    EXPECT_EQ(turn(), (Log{"descriptor"}));
}

TEST_F(Turn, RunsTasksByPriorityThenInTheOrderOfScheduling) {
    auto const low = job("low", Priority::p7);
    auto const first = job("first", Priority::p3);
    auto const second = job("second", Priority::p3);
    auto const high = job("high", Priority::p0);
    low->task->schedule();
    second->task->schedule();
    first->task->schedule();
    high->task->schedule();
    EXPECT_EQ(turn(), (Log{"high", "second", "first", "low"}));
}

TEST_F(Turn, LeavesATaskThatATaskSchedulesToTheNextWhateverItsPriority) {
    auto const urgent = job("urgent", Priority::p0);
    auto const scheduler = job("scheduler", Priority::p3);
    scheduler->work = [&] { urgent->task->schedule(); };
    scheduler->task->schedule();
    EXPECT_EQ(turn(), (Log{"scheduler"}));
    EXPECT_EQ(turn(), (Log{"urgent"}));
}

TEST_F(Turn, SaysWhetherThereWasAnythingToDo) {
    EXPECT_FALSE(loop->turn());
    auto const a = job("a");
    a->task->schedule();
    EXPECT_TRUE(loop->turn());
    loop->post([] {});
    EXPECT_TRUE(loop->turn());
    auto const descriptor = pipe("descriptor");
    descriptor->write();
    EXPECT_TRUE(loop->turn());
}

TEST_F(Turn, AllocatesNothing) {
    auto const a = job("a");
    auto const descriptor = pipe("descriptor");
    descriptor->write();
    a->task->schedule();
    log.reserve(4);
    Grist::failAfterIs(1);
    loop->turn();
    EXPECT_EQ(Grist::failAfter(), 1U);
    Grist::failAfterIs(0);
    EXPECT_EQ(log, (Log{"descriptor", "a"}));
}

TEST_F(Turn, NamesTheRunningTaskWhileItRuns) {
    auto const a = job("a");
    Orb::Task const* running = nullptr;
    a->work = [&] { running = loop->running(); };
    a->task->schedule();
    turn();
    EXPECT_EQ(running, a->task.get());
    EXPECT_EQ(loop->running(), nullptr);
}

TEST_F(Turn, CountsTheScheduledTasks) {
    auto const a = job("a");
    auto const b = job("b", Priority::p1);
    EXPECT_EQ(loop->scheduledTasks(), 0U);
    a->task->schedule();
    b->task->schedule();
    EXPECT_EQ(loop->scheduledTasks(), 2U);
    turn();
    EXPECT_EQ(loop->scheduledTasks(), 0U);
}

// The waits are read as numbers; no test waits for them.
struct Wait : LoopTest {
    Wait() {
        waiter->work = [&] { waiter->task->schedule(); };
    }
    void waitingTurns(int turns) {
        for (int i = 0; i < turns; ++i) {
            loop->turn();
        }
    }
    // Enough turns that the loop would wait for its longest.
    void wearOut() {
        waiter->task->schedule();
        waitingTurns(210);
        ASSERT_EQ(loop->nextWait(), 1ms);
    }

    std::unique_ptr<Job> waiter = job("waiter");
};

TEST_F(Wait, IsForeverWhileNoTaskIsScheduled) {
    EXPECT_EQ(loop->nextWait(), TaskSchedulerRoot::forever);
    waiter->work = nullptr;
    waiter->task->schedule();
    EXPECT_EQ(loop->nextWait(), 0ns);
    loop->turn();
    EXPECT_EQ(loop->nextWait(), TaskSchedulerRoot::forever);
}

TEST_F(Wait, IsNoneForTheFirstTwoHundredWaitingTurns) {
    waiter->task->schedule();
    loop->turn();  // no waiting turn: the task was scheduled by somebody else
    for (int turns = 0; turns < 200; ++turns) {
        loop->turn();
        ASSERT_EQ(loop->nextWait(), 0ns) << turns;
    }
    loop->turn();
    EXPECT_NE(loop->nextWait(), 0ns);
}

TEST_F(Wait, DoublesFromFiftyMicrosecondsToOneMillisecond) {
    waiter->task->schedule();
    waitingTurns(1 + 200);
    for (auto const wait : {50us, 100us, 200us, 400us, 800us, 1000us, 1000us}) {
        loop->turn();
        EXPECT_EQ(loop->nextWait(), wait);
    }
    waitingTurns(5000);
    EXPECT_EQ(loop->nextWait(), 1ms);
}

TEST_F(Wait, StartsAnewAfterAPostedCall) {
    wearOut();
    loop->post([] {});
    loop->turn();
    EXPECT_EQ(loop->nextWait(), 0ns);
    waitingTurns(200);
    EXPECT_EQ(loop->nextWait(), 0ns);
    loop->turn();
    EXPECT_EQ(loop->nextWait(), 50us);
}

TEST_F(Wait, StartsAnewAfterADescriptorWasReadable) {
    wearOut();
    auto const descriptor = pipe("descriptor");
    descriptor->write();
    loop->turn();
    EXPECT_EQ(loop->nextWait(), 0ns);
}

TEST_F(Wait, StartsAnewAfterAStop) {
    wearOut();
    loop->stop();
    loop->turn();
    EXPECT_EQ(loop->nextWait(), 0ns);
}

TEST_F(Wait, IsNoneOnceATaskIsScheduledBySomebodyElse) {
    wearOut();
    auto const other = job("other");
    other->task->schedule();
    EXPECT_EQ(loop->nextWait(), 0ns);
    loop->turn();
    EXPECT_EQ(loop->nextWait(), 0ns);
}

TEST_F(Wait, StartsAnewWhenOneTaskSchedulesAnother) {
    wearOut();
    auto const other = job("other");
    waiter->work = [&] {
        waiter->task->schedule();
        other->task->schedule();
    };
    loop->turn();
    EXPECT_EQ(loop->nextWait(), 0ns);
}

TEST_F(Wait, StartsAnewWhenATaskThatWaitedIsDone) {
    auto const other = job("other");
    other->work = [&] { other->task->schedule(); };
    other->task->schedule();
    wearOut();
    other->work = nullptr;
    loop->turn();
    EXPECT_EQ(loop->nextWait(), 0ns);
}

TEST_F(Wait, CountsTurnsInWhichSeveralTasksWait) {
    auto const other = job("other");
    other->work = [&] { other->task->schedule(); };
    other->task->schedule();
    wearOut();
    EXPECT_EQ(loop->nextWait(), 1ms);
}

TEST_F(Wait, IsOverAsSoonAsACallIsPosted) {
    loop->post([&] { log.emplace_back("posted"); });
    loop->turn(TaskSchedulerRoot::forever);
    EXPECT_EQ(log, (Log{"posted"}));
}

TEST_F(Wait, IsOverAsSoonAsADescriptorIsReadable) {
    auto const descriptor = pipe("descriptor");
    descriptor->write();
    loop->turn(TaskSchedulerRoot::forever);
    EXPECT_EQ(log, (Log{"descriptor"}));
}

TEST_F(Wait, IsNoLongerThanTheCallerAllows) {
    EXPECT_FALSE(loop->turn(1ns));
}

struct Run : LoopTest {};

TEST_F(Run, EndsAfterTheTurnInWhichItIsStopped) {
    auto const first = job("first");
    auto const second = job("second");
    first->work = [&] {
        loop->stop();
        first->task->schedule();
    };
    first->task->schedule();
    second->task->schedule();
    loop->run();
    EXPECT_EQ(log, (Log{"first", "second"}));
}

TEST_F(Run, EndsAtOnceWhenItWasStoppedBefore) {
    auto const a = job("a");
    a->task->schedule();
    loop->stop();
    loop->run();
    EXPECT_EQ(log, Log{});
}

TEST_F(Run, CanBeginAgainAfterAStop) {
    loop->stop();
    loop->stop();
    loop->run();
    loop->post([&] {
        log.emplace_back("again");
        loop->stop();
    });
    loop->run();
    EXPECT_EQ(log, (Log{"again"}));
}

TEST_F(Run, RunsCallsThatOtherThreadsPostAndEndsWhenOneStopsIt) {
    constexpr int calls = 1000;
    int sum = 0;
    auto& shared = *loop;
    auto const poster = [&] {
        for (int i = 0; i < calls; ++i) {
            shared.post([&] { ++sum; });
        }
    };
    std::thread stopper([&] {
        std::thread one(poster);
        std::thread other(poster);
        one.join();
        other.join();
        shared.post([&] { shared.stop(); });
    });
    loop->run();
    stopper.join();
    EXPECT_EQ(sum, 2 * calls);
}

TEST_F(Run, IsWokenByAStopOfAnotherThread) {
    std::thread stopper([&shared = *loop] { shared.stop(); });
    loop->run();
    stopper.join();
}

TEST_F(Run, RunsPostedCallsOfOneThreadInTheirOrder) {
    Log expected;
    for (int i = 0; i < 100; ++i) {
        expected.push_back(std::to_string(i));
    }
    std::thread poster([&, &shared = *loop] {
        for (int i = 0; i < 100; ++i) {
            shared.post([&, i] { log.push_back(std::to_string(i)); });
        }
        shared.stop();
    });
    loop->run();
    poster.join();
    loop->turn();
    EXPECT_EQ(log, expected);
}

TEST(TaskSchedulerRoot, DropsTheCallsThatItNeverCameToRun) {
    auto const token = std::make_shared<int>(1);
    auto loop = TaskSchedulerRoot::TaskSchedulerRootIs();
    loop->post([token] {});
    loop = nullptr;
    EXPECT_EQ(token.use_count(), 1);
}

struct TurnDeathTest : LoopTest {
    std::unique_ptr<Job> thrower = job("thrower");
};

TEST_F(TurnDeathTest, EndsTheProcessOnAnExceptionOfATask) {
    thrower->work = [] { throw std::runtime_error("of a task"); };
    thrower->task->schedule();
    EXPECT_DEATH(loop->turn(), "uncaught runtime_error: of a task");
}

TEST_F(TurnDeathTest, EndsTheProcessOnAnExceptionOfADescriptor) {
    auto const descriptor = pipe("descriptor");
    descriptor->work = [] { throw std::logic_error("of a descriptor"); };
    descriptor->write();
    EXPECT_DEATH(loop->turn(), "uncaught logic_error: of a descriptor");
}

TEST_F(TurnDeathTest, EndsTheProcessOnAnExceptionOfAPostedCall) {
    loop->post([] { throw std::length_error("of a call"); });
    EXPECT_DEATH(loop->turn(), "uncaught length_error: of a call");
}

TEST_F(TurnDeathTest, EndsTheProcessThroughTheLastStep) {
    Vanta::LastStep const step([](void*, std::string_view errorClass, std::string_view) {
        std::_Exit(errorClass == "runtime_error" ? 7 : 8);
    });
    thrower->work = [] { throw std::runtime_error("no way on"); };
    thrower->task->schedule();
    EXPECT_EXIT(loop->turn(), testing::ExitedWithCode(7), "");
}

TEST_F(TurnDeathTest, EndsTheProcessWhenATurnIsStartedInsideATurn) {
    thrower->work = [&] { loop->turn(); };
    thrower->task->schedule();
    EXPECT_DEATH(loop->turn(), "turning_");
}

TEST(TaskSchedulerRootTest, WithoutADescriptorToBeWokenByIsNotMade) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer looks at memory through descriptors of its own";
#endif
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit const none{0, before.rlim_max};
    auto const nodes = Vanta::Node::liveCount();
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_THROW(TaskSchedulerRoot::TaskSchedulerRootIs(), std::system_error);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(Vanta::Node::liveCount(), nodes);
}

}  // namespace
