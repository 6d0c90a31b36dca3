#include "Orb/Task.h"

#include <gtest/gtest.h>

#include "Orb/Fixture.h"
#include "TableRow.h"

namespace {

struct TaskTest : LoopTest {
    std::unique_ptr<Job> a = job("a");
    std::unique_ptr<Job> b = job("b");
    std::unique_ptr<Job> c = job("c");
};

TEST_F(TaskTest, KnowsItsSchedulerPriorityAndName) {
    auto const task = Orb::Task::TaskIs(loop, Priority::p5, "pktGenWorker");
    EXPECT_EQ(task->scheduler(), loop);
    EXPECT_EQ(task->priority(), Priority::p5);
    EXPECT_EQ(task->name(), "pktGenWorker");
}

TEST_F(TaskTest, DoesNotRunUnlessItIsScheduled) {
    EXPECT_FALSE(a->task->isScheduled());
    EXPECT_EQ(turn(), Log{});
}

TEST_F(TaskTest, RunsOnceForASchedule) {
    a->task->schedule();
    EXPECT_TRUE(a->task->isScheduled());
    EXPECT_EQ(turn(), (Log{"a"}));
    EXPECT_FALSE(a->task->isScheduled());
    EXPECT_EQ(turn(), Log{});
}

TEST_F(TaskTest, ScheduledTwiceRunsOnceAndKeepsItsPlace) {
    a->task->schedule();
    b->task->schedule();
    a->task->schedule();
    EXPECT_EQ(turn(), (Log{"a", "b"}));
    EXPECT_EQ(turn(), Log{});
}

TEST_F(TaskTest, UnscheduledDoesNotRun) {
    a->task->schedule();
    b->task->schedule();
    a->task->unschedule();
    EXPECT_FALSE(a->task->isScheduled());
    EXPECT_EQ(turn(), (Log{"b"}));
}

TEST_F(TaskTest, UnscheduledByATaskOfTheSameTurnDoesNotRun) {
    a->work = [&] { b->task->unschedule(); };
    a->task->schedule();
    b->task->schedule();
    c->task->schedule();
    EXPECT_EQ(turn(), (Log{"a", "c"}));
}

TEST_F(TaskTest, UnschedulingATaskThatIsNotScheduledChangesNothing) {
    a->task->unschedule();
    a->task->schedule();
    EXPECT_EQ(turn(), (Log{"a"}));
}

TEST_F(TaskTest, IsNoLongerScheduledWhenItsRunBegins) {
    bool scheduled = true;
    a->work = [&] { scheduled = a->task->isScheduled(); };
    a->task->schedule();
    turn();
    EXPECT_FALSE(scheduled);
}

TEST_F(TaskTest, IsRunningInsideItsRunOnly) {
    bool running = false;
    bool otherRunning = true;
    a->work = [&] {
        running = a->task->isRunning();
        otherRunning = b->task->isRunning();
    };
    EXPECT_FALSE(a->task->isRunning());
    a->task->schedule();
    b->task->schedule();
    turn();
    EXPECT_TRUE(running);
    EXPECT_FALSE(otherRunning);
    EXPECT_FALSE(a->task->isRunning());
}

TEST_F(TaskTest, ThatSchedulesItselfRunsInTheNextTurn) {
    a->work = [&] { a->task->schedule(); };
    a->task->schedule();
    EXPECT_EQ(turn(), (Log{"a"}));
    EXPECT_TRUE(a->task->isScheduled());
    EXPECT_EQ(turn(), (Log{"a"}));
}

TEST_F(TaskTest, ThatWaitsInTheTurnUnderWayIsNotScheduledASecondTime) {
    a->work = [&] { b->task->schedule(); };
    a->task->schedule();
    b->task->schedule();
    EXPECT_EQ(turn(), (Log{"a", "b"}));
    EXPECT_EQ(turn(), Log{});
}

TEST_F(TaskTest, ThatRanInTheTurnUnderWayMayBeScheduledForTheNext) {
    b->work = [&] { a->task->schedule(); };
    a->task->schedule();
    b->task->schedule();
    EXPECT_EQ(turn(), (Log{"a", "b"}));
    EXPECT_EQ(turn(), (Log{"a"}));
}

TEST_F(TaskTest, MovesBehindTheOthersOfItsNewPriority) {
    auto const urgent = job("urgent", Priority::p1);
    a->task->schedule();
    b->task->schedule();
    urgent->task->schedule();
    a->task->priorityIs(Priority::p1);
    EXPECT_EQ(turn(), (Log{"urgent", "a", "b"}));
}

TEST_F(TaskTest, KeepsItsPlaceWhenItIsGivenThePriorityThatItHas) {
    a->task->schedule();
    b->task->schedule();
    a->task->priorityIs(Priority::p3);
    EXPECT_EQ(turn(), (Log{"a", "b"}));
}

TEST_F(TaskTest, FollowsANewPriorityInTheTurnUnderWay) {
    a->work = [&] { c->task->priorityIs(Priority::p2); };
    a->task->schedule();
    b->task->schedule();
    c->task->schedule();
    EXPECT_EQ(turn(), (Log{"a", "c", "b"}));
    EXPECT_EQ(turn(), Log{});
}

TEST_F(TaskTest, GivenAPriorityWhileItIsIdleStaysIdle) {
    a->task->priorityIs(Priority::p0);
    EXPECT_EQ(a->task->priority(), Priority::p0);
    EXPECT_EQ(turn(), Log{});
}

TEST_F(TaskTest, DestroyedWhileScheduledDoesNotRun) {
    a->task->schedule();
    b->task->schedule();
    c->task->schedule();
    b.reset();
    EXPECT_EQ(loop->scheduledTasks(), 2U);
    EXPECT_EQ(turn(), (Log{"a", "c"}));
}

TEST_F(TaskTest, DestroyedBeforeItsPlaceInTheTurnDoesNotRun) {
    a->work = [&] { b.reset(); };
    a->task->schedule();
    b->task->schedule();
    c->task->schedule();
    EXPECT_EQ(turn(), (Log{"a", "c"}));
}

TEST_F(TaskTest, DestroyedByItsOwnRunEndsTheRunAndGoes) {
    auto const before = Vanta::Node::liveCount();
    a->work = [&] { a->task = nullptr; };
    a->task->schedule();
    b->task->schedule();
    EXPECT_EQ(turn(), (Log{"a", "b"}));
    EXPECT_EQ(Vanta::Node::liveCount(), before - 1);
}

TEST_F(TaskTest, DestroyedByItsOwnRunDoesNotRunAgainThoughItScheduledItself) {
    a->work = [&] {
        a->task->schedule();
        a->task = nullptr;
    };
    a->task->schedule();
    EXPECT_EQ(turn(), (Log{"a"}));
    EXPECT_EQ(loop->scheduledTasks(), 0U);
    EXPECT_EQ(turn(), Log{});
}

TEST_F(TaskTest, CallsNoOneWhoUnsubscribedEvenThoughItIsScheduled) {
    a->task->schedule();
    a->subscriber.unsubscribe();
    EXPECT_EQ(turn(), Log{});
}

TEST_F(TaskTest, KeepsItsLoopAlive) {
    auto const task = Orb::Task::TaskIs(loop, Priority::p3, "survivor");
    a.reset();
    b.reset();
    c.reset();
    loop = nullptr;
    task->schedule();
    EXPECT_EQ(task->scheduler()->scheduledTasks(), 1U);
}

struct ShouldYield : LoopTest {
    // How many checks of one run answered no, up to `limit`.
    int freeChecks(int limit = 1000) {
        int checks = 0;
        a->work = [&] {
            while (checks < limit && !a->task->shouldYield()) {
                ++checks;
            }
        };
        a->task->schedule();
        loop->turn();
        return checks;
    }
    std::unique_ptr<Job> a = job("a");
};

TEST_F(ShouldYield, AnswersNoSixtyFourTimesByDefault) {
    EXPECT_EQ(freeChecks(), 64);
}

TEST_F(ShouldYield, AnswersNoAsOftenAsItIsTold) {
    loop->yieldAfterIs(3);
    EXPECT_EQ(freeChecks(), 3);
    loop->yieldAfterIs(0);
    EXPECT_EQ(freeChecks(), 0);
}

TEST_F(ShouldYield, GoesOnAnsweringYes) {
    loop->yieldAfterIs(1);
    Log answers;
    a->work = [&] {
        for (int i = 0; i < 4; ++i) {
            answers.emplace_back(a->task->shouldYield() ? "yes" : "no");
        }
    };
    a->task->schedule();
    loop->turn();
    EXPECT_EQ(answers, (Log{"no", "yes", "yes", "yes"}));
}

TEST_F(ShouldYield, CountsAnewInEveryRun) {
    loop->yieldAfterIs(2);
    EXPECT_EQ(freeChecks(), 2);
    EXPECT_EQ(freeChecks(), 2);
}

TEST_F(ShouldYield, CountsForEveryTaskByItself) {
    loop->yieldAfterIs(1);
    auto const b = job("b");
    bool first = true;
    b->work = [&] { first = b->task->shouldYield(); };
    b->task->schedule();
    EXPECT_EQ(freeChecks(), 1);
    EXPECT_FALSE(first);
}

TEST_F(ShouldYield, NeverAnswersYesWhenItIsToldSo) {
    loop->yieldAfterIs(Orb::TaskSchedulerRoot::neverYield);
    EXPECT_EQ(freeChecks(100000), 100000);
}

TEST_F(ShouldYield, FollowsANewLimitInTheRunUnderWay) {
    loop->yieldAfterIs(10);
    Log answers;
    a->work = [&] {
        answers.emplace_back(a->task->shouldYield() ? "yes" : "no");
        loop->yieldAfterIs(1);
        answers.emplace_back(a->task->shouldYield() ? "yes" : "no");
    };
    a->task->schedule();
    loop->turn();
    EXPECT_EQ(answers, (Log{"no", "yes"}));
}

TEST_F(TaskTest, IsReadByItsAttributes) {
    auto const task = Orb::Task::TaskIs(loop, Priority::p5, "pktGenWorker");
    task->schedule();
    EXPECT_EQ(task->typeInfo().name, "Task");
    EXPECT_EQ(tableRow(*task, 130), "name=pktGenWorker");
    EXPECT_EQ(tableRow(*task, 131), "priority=5");
    EXPECT_EQ(tableRow(*task, 132), "scheduled=true");
}

}  // namespace
