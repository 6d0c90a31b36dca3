#include "Orb/Task.h"

namespace Orb {

Vanta::Ptr<Task> Task::TaskIs(Vanta::Ptr<TaskSchedulerRoot> scheduler, TaskPriority priority,
                              Vanta::String name) {
    return Vanta::makeNode<Task>(std::move(scheduler), priority, std::move(name));
}

Task::Task(Vanta::Ptr<TaskSchedulerRoot> scheduler, TaskPriority priority, Vanta::String name)
    : scheduler_(std::move(scheduler)), priority_(priority), name_(std::move(name)) {}

Task::~Task() {
    unschedule();
}

void Task::schedule() {
    if (scheduled_) {
        return;
    }
    scheduled_ = true;
    scheduler_->progress_ = scheduler_->progress_ || !running_;
    enqueue(scheduler_->scheduled_);
}

void Task::unschedule() noexcept {
    if (scheduled_) {
        scheduled_ = false;
        dequeue();
    }
}

bool Task::shouldYield() noexcept {
    unsigned const limit = scheduler_->yieldAfter_;
    if (limit == TaskSchedulerRoot::neverYield) {
        return false;
    }
    if (checks_ < limit) {
        ++checks_;
        return false;
    }
    return true;
}

void Task::priorityIs(TaskPriority priority) noexcept {
    if (priority == priority_) {
        return;
    }
    TaskSchedulerRoot::Queues* const queues = queues_;
    if (queues != nullptr) {
        dequeue();
    }
    priority_ = priority;
    if (queues != nullptr) {
        enqueue(*queues);
    }
}

void Task::enqueue(TaskSchedulerRoot::Queues& queues) noexcept {
    auto& queue = queues[priorityNumber()];
    queues_ = &queues;
    next_ = nullptr;
    previous_ = queue.last;
    (previous_ != nullptr ? previous_->next_ : queue.first) = this;
    queue.last = this;
}

void Task::dequeue() noexcept {
    auto& queue = (*queues_)[priorityNumber()];
    (previous_ != nullptr ? previous_->next_ : queue.first) = next_;
    (next_ != nullptr ? next_->previous_ : queue.last) = previous_;
    queues_ = nullptr;
}

Kel::TypeInfo const& Task::typeInfo() const noexcept {
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&Task::name>(130, "name", "Vanta::String"),
        Kel::attribute<&Task::priorityNumber>(131, "priority", "Orb::TaskPriority"),
        Kel::attribute<&Task::isScheduled>(132, "scheduled", "bool"),
    };
    static constexpr std::string_view operations[] = {"schedule"};
    static constexpr Kel::TypeInfo info{"Task", attributes, operations};
    return info;
}

}  // namespace Orb
