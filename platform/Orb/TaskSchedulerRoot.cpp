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
// The count may stop here: the wait has reached its limit.
constexpr unsigned waitingTurnsCounted = busyTurns + 8;

}  // namespace

Vanta::Ptr<TaskSchedulerRoot> TaskSchedulerRoot::TaskSchedulerRootIs() {
    return Vanta::makeNode<TaskSchedulerRoot>();
}

// The descriptor is made last, when nothing else can fail any more.
TaskSchedulerRoot::TaskSchedulerRoot() {
    wakeDescriptor_ = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
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
        hasPosted_.store(true, std::memory_order_release);
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
    Vanta::assertThat(!std::exchange(turning_, true), "!turning_");
    ++turns_;
    bool const woken = waitForEvents(std::min(nextWait(), maxWait));
    bool const posted = runPosted();
    bool const readable = announceReadable();
    bool const tasks = runTasks();
    progress_ = progress_ || woken || posted || readable;
    waitingTurns_ = tasks && !progress_ ? std::min(waitingTurns_ + 1, waitingTurnsCounted) : 0;
    progress_ = false;
    turning_ = false;
    return posted || readable || tasks;
}

TaskSchedulerRoot::Wait TaskSchedulerRoot::nextWait() const noexcept {
    if (firstTask(scheduled_) == nullptr) {
        return forever;
    }
    if (progress_ || waitingTurns_ <= busyTurns) {
        return Wait::zero();
    }
    return std::min<Wait>(shortestWait * (1U << (waitingTurns_ - busyTurns - 1)), longestWait);
}

// Fills `readable_`; returns true if the wait was ended by post() or stop().
bool TaskSchedulerRoot::waitForEvents(Wait wait) {
    // No allocation: creating a descriptor made room for it in all lists.
    polled_.clear();
    polled_.push_back({wakeDescriptor_, POLLIN, 0});
    for (FileDescriptor* descriptor : descriptors_) {
        if (descriptor->isAnnounced()) {
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
        // Whatever is reported keeps a read from blocking, an end or an error too.
        if (ready <= 0 || polled_[i].revents == 0) {
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
    if (!hasPosted_.load(std::memory_order_acquire)) {
        return false;
    }
    std::vector<std::function<void()>> calls;
    {
        std::lock_guard const lock(mutex_);
        calls.swap(posted_);
        hasPosted_.store(false, std::memory_order_relaxed);
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
    // By index: an announcement may destroy a descriptor, whose entry here then becomes null.
    for (std::size_t i = 0; i < readable_.size(); ++i) {
        if (FileDescriptor* const descriptor = readable_[i];
            descriptor != nullptr && descriptor->isAnnounced()) {
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
    while (Task* const task = firstTask(turn_)) {
        ran = true;
        runTask(*task);
    }
    return ran;
}

Task* TaskSchedulerRoot::firstTask(Queues const& queues) noexcept {
    auto const queue =
        std::ranges::find_if(queues, [](Queue const& q) { return q.first != nullptr; });
    return queue != queues.end() ? queue->first : nullptr;
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
    progress_ = progress_ || !task.scheduled_;
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
