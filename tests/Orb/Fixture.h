// Helpers for tests of the loop: jobs and pipes that note their turns in one log.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Orb/FileDescriptor.h"
#include "Orb/Task.h"
#include "Orb/TaskSchedulerRoot.h"

using Log = std::vector<std::string>;

// A task that notes its name and then does what the test wants.
struct Job {
    Job(Vanta::Ptr<Orb::TaskSchedulerRoot> const& loop, Log& sharedLog, std::string name,
        Orb::TaskPriority priority)
        : log(sharedLog), task(Orb::Task::TaskIs(loop, priority, name)) {
        subscriber.subscribe<&Job::run>(task->publisher(), this);
    }
    void run(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber attribute,
             Vanta::ValueRef, Vanta::ValueRef) {
        EXPECT_EQ(attribute, Orb::Task::runAttribute);
        log.emplace_back(task->name().view());
        if (work) {
            work();
        }
    }

    Log& log;
    Vanta::Ptr<Orb::Task> task;
    std::function<void()> work;
    Vanta::Subscriber subscriber;
};

// A pipe whose reading end belongs to the loop; it notes its name, then does what the test wants.
struct Pipe {
    Pipe(Vanta::Ptr<Orb::TaskSchedulerRoot> const& loop, Log& sharedLog, std::string name)
        : log(sharedLog) {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        writeEnd = ends[1];
        descriptor = Orb::FileDescriptor::FileDescriptorIs(loop, ends[0], std::move(name));
        descriptor->notifyOnReadableIs(true);
        subscriber.subscribe<&Pipe::readable>(descriptor->publisher(), this);
    }
    ~Pipe() { closeWriteEnd(); }
    Pipe(Pipe const&) = delete;
    Pipe& operator=(Pipe const&) = delete;

    void write() const { EXPECT_EQ(::write(writeEnd, "x", 1), 1); }
    void closeWriteEnd() {
        if (writeEnd != -1) {
            ::close(std::exchange(writeEnd, -1));
        }
    }
    void readable(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber attribute,
                  Vanta::ValueRef, Vanta::ValueRef) {
        EXPECT_EQ(attribute, Orb::FileDescriptor::readableAttribute);
        log.emplace_back(descriptor->name().view());
        if (work) {
            work();
        }
    }

    Log& log;
    int writeEnd = -1;
    Vanta::Ptr<Orb::FileDescriptor> descriptor;
    std::function<void()> work;
    Vanta::Subscriber subscriber;
};

struct LoopTest : testing::Test {
    using Priority = Orb::TaskPriority;

    std::unique_ptr<Job> job(std::string name, Priority priority = Priority::p3) {
        return std::make_unique<Job>(loop, log, std::move(name), priority);
    }
    std::unique_ptr<Pipe> pipe(std::string name) {
        return std::make_unique<Pipe>(loop, log, std::move(name));
    }
    // What one turn noted.
    Log turn() {
        log.clear();
        loop->turn();
        return log;
    }

    Vanta::Ptr<Orb::TaskSchedulerRoot> loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    Log log;
};
