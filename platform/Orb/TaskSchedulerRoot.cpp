#include "Orb/TaskSchedulerRoot.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>

#include "Orb/FileDescriptor.h"
#include "Orb/Task.h"
#include "Vanta/Assert.h"

namespace Orb {
namespace {

constexpr unsigned busyTurns = 200;
constexpr std::chrono::microseconds shortestWait{50};
constexpr std::chrono::microseconds longestWait{1000};

}  // namespace

Vanta::Ptr<TaskSchedulerRoot> TaskSchedulerRoot::TaskSchedulerRootIs() {
    return Vanta::makeNode<TaskSchedulerRoot>();
}

TaskSchedulerRoot::TaskSchedulerRoot() : wakeDescriptor_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (wakeDescriptor_ == -1) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
}

TaskSchedulerRoot::~TaskSchedulerRoot() {
    ::close(wakeDescriptor_);
}

void TaskSchedulerRoot::post(std::function<void()> call) {
    {
        std::lock_guard const lock(mutex_);
        posted_.push_back(std::move(call));
    }
    wake();
}

void TaskSchedulerRoot::stop() {
    {
        std::lock_guard const lock(mutex_);
        stopping_ = true;
    }
    wake();
}

void TaskSchedulerRoot::wake() {
    std::uint64_t const one = 1;
    [[maybe_unused]] ssize_t const written = ::write(wakeDescriptor_, &one, sizeof one);
}

void TaskSchedulerRoot::run() {
    for (;;) {
        {
            std::lock_guard const lock(mutex_);
            if (std::exchange(stopping_, false)) {
                return;
            }
        }
        turn(forever);
    }
}

bool TaskSchedulerRoot::turn(Wait maxWait) {
    bool const woken = waitForEvents(allowedWait(maxWait));
    bool const posted = runPosted();
    bool const readable = announceReadable();
    bool const tasks = runTasks();
    noteTurn(woken || posted || readable);
    return posted || readable || tasks;
}

TaskSchedulerRoot::Wait TaskSchedulerRoot::allowedWait(Wait maxWait) const noexcept {
    if (scheduledTasks() == 0 || maxWait == Wait::zero()) {
        return maxWait;
    }
    if (waitingTurns_ <= busyTurns) {
        return Wait::zero();
    }
    unsigned const doublings = std::min(waitingTurns_ - busyTurns - 1, 5U);
    Wait const wait = std::min<Wait>(shortestWait * (1U << doublings), longestWait);
    return std::min(wait, maxWait);
}

// Fills `readable_`; returns true if the wait was ended by post() or stop().
bool TaskSchedulerRoot::waitForEvents(Wait wait) {
    polled_.clear();
    polled_.push_back({wakeDescriptor_, POLLIN, 0});
    for (FileDescriptor* descriptor : descriptors_) {
        if (descriptor->notifyOnReadable_ && descriptor->descriptor_ != -1) {
            polled_.push_back({descriptor->descriptor_, POLLIN, 0});
            readable_.push_back(descriptor);
        }
    }
    timespec limit{};
    if (wait != forever) {
        auto const seconds = std::chrono::duration_cast<std::chrono::seconds>(wait);
        limit.tv_sec = static_cast<time_t>(seconds.count());
        limit.tv_nsec = static_cast<long>((wait - seconds).count());
    }
    int const ready =
        ::ppoll(polled_.data(), polled_.size(), wait == forever ? nullptr : &limit, nullptr);
    for (std::size_t i = 1; i < polled_.size(); ++i) {
        bool const isReadable = ready > 0 && (polled_[i].revents & (POLLIN | POLLHUP)) != 0;
        if (!isReadable) {
            readable_[i - 1] = nullptr;
        }
    }
    if (ready <= 0 || polled_.front().revents == 0) {
        return false;
    }
    std::uint64_t wakes = 0;
    [[maybe_unused]] ssize_t const size = ::read(wakeDescriptor_, &wakes, sizeof wakes);
    return true;
}

bool TaskSchedulerRoot::runPosted() {
    std::vector<std::function<void()>> calls;
    {
        std::lock_guard const lock(mutex_);
        calls.swap(posted_);
    }
    try {
        for (auto const& call : calls) {
            call();
        }
    } catch (...) {
        Vanta::endProcessWithCurrentException();
    }
    return !calls.empty();
}

bool TaskSchedulerRoot::announceReadable() {
    bool announced = false;
    // By index: an announcement may close descriptors, which then stand here as null.
    for (std::size_t i = 0; i < readable_.size(); ++i) {
        if (FileDescriptor* const descriptor = readable_[i];
            descriptor != nullptr && descriptor->descriptor_ != -1) {
            announced = true;
            Vanta::Ptr<FileDescriptor> const alive(descriptor);
            alive->publisher_.publish(FileDescriptor::readableAttribute);
        }
    }
    readable_.clear();
    return announced;
}

bool TaskSchedulerRoot::runTasks() {
    for (std::size_t p = 0; p < priorities; ++p) {
        while (Task* const task = scheduled_[p].first) {
            task->dequeue();
            task->enqueue(turn_);
        }
    }
    bool ran = false;
    while (Task* const task = nextTask()) {
        ran = true;
        runTask(*task);
    }
    return ran;
}

Task* TaskSchedulerRoot::nextTask() noexcept {
    auto const queue =
        std::ranges::find_if(turn_, [](Queue const& q) { return q.first != nullptr; });
    return queue != turn_.end() ? queue->first : nullptr;
}

void TaskSchedulerRoot::runTask(Task& task) {
    Vanta::Ptr<Task> const alive(&task);
    task.dequeue();
    task.scheduled_ = false;
    task.checks_ = 0;
    task.running_ = true;
    running_ = &task;
    task.publisher_.publish(Task::runAttribute);
    running_ = nullptr;
    task.running_ = false;
}

// Only tasks that wait for something outside are scheduled now if each was scheduled by its own
// run; then the loop may give the processor away.
void TaskSchedulerRoot::noteTurn(bool arrived) {
    bool onlySelfScheduled = true;
    for (Queue const& queue : scheduled_) {
        for (Task const* task = queue.first; task != nullptr; task = task->next_) {
            onlySelfScheduled = onlySelfScheduled && task->selfScheduled_;
        }
    }
    waitingTurns_ = onlySelfScheduled && !arrived ? std::min(waitingTurns_ + 1, 1000U) : 0;
}

std::size_t TaskSchedulerRoot::scheduledTasks() const noexcept {
    std::size_t tasks = 0;
    for (Queue const& queue : scheduled_) {
        for (Task const* task = queue.first; task != nullptr; task = task->next_) {
            ++tasks;
        }
    }
    return tasks;
}

Kel::TypeInfo const& TaskSchedulerRoot::typeInfo() const noexcept {
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&TaskSchedulerRoot::yieldAfter>(130, "yieldAfter", "unsigned"),
    };
    static constexpr std::string_view operations[] = {"turn", "run", "stop", "post"};
    static constexpr Kel::TypeInfo info{"TaskSchedulerRoot", attributes, operations};
    return info;
}

}  // namespace Orb
