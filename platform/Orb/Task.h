// A cooperative task: a piece of work that its scheduler runs once each time it was scheduled.
//
//   state       left by
//   idle        schedule()
//   scheduled   the scheduler's run (the flag clears before the work), or destruction
//
// While it runs it may schedule itself; that means the next turn. Thread: the event thread.
#pragma once

#include "Orb/TaskSchedulerRoot.h"
#include "Vanta/Publisher.h"
#include "Vanta/String.h"

namespace Orb {

class VYN_EXPORT Task final : public Kel::Object {
  public:
    // The run notification: published each time the scheduler runs the task.
    static constexpr Vanta::AttributeNumber runAttribute = 133;

    // A new task, not scheduled.
    static Vanta::Ptr<Task> TaskIs(Vanta::Ptr<TaskSchedulerRoot> scheduler, TaskPriority priority,
                                   Vanta::String name);

    // Has the task run in the next turn, or in this one if its tasks have not started yet.
    // Scheduling a task that is scheduled changes nothing.
    void schedule();
    bool isScheduled() const noexcept { return scheduled_; }
    // Cancels a scheduled run; nothing happens if there is none.
    void unschedule() noexcept;
    // True inside the run notification.
    bool isRunning() const noexcept { return running_; }
    // Whether the run under way has used up its checks (TaskSchedulerRoot::yieldAfterIs); each call
    // counts as one.
    bool shouldYield() noexcept;

    TaskPriority priority() const noexcept { return priority_; }
    // A task that is scheduled moves behind the others of its new priority.
    void priorityIs(TaskPriority priority) noexcept;

    Vanta::Ptr<TaskSchedulerRoot> const& scheduler() const noexcept { return scheduler_; }
    Vanta::String const& name() const noexcept { return name_; }
    Vanta::Publisher const& publisher() const noexcept { return publisher_; }
    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend class TaskSchedulerRoot;
    friend struct Vanta::NodeFactory;

    Task(Vanta::Ptr<TaskSchedulerRoot> scheduler, TaskPriority priority, Vanta::String name);
    ~Task() override;

    std::uint8_t priorityNumber() const noexcept { return static_cast<std::uint8_t>(priority_); }
    void enqueue(TaskSchedulerRoot::Queues& queues) noexcept;
    void dequeue() noexcept;

    Vanta::Ptr<TaskSchedulerRoot> scheduler_;
    TaskPriority priority_;
    bool scheduled_ = false;
    bool running_ = false;
    unsigned checks_ = 0;
    Vanta::String name_;
    TaskSchedulerRoot::Queues* queues_ = nullptr;  // where it is queued
    Task* previous_ = nullptr;
    Task* next_ = nullptr;
    Vanta::Publisher publisher_{this};
};

}  // namespace Orb
