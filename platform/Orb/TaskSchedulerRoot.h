// The event loop and its cooperative tasks.
//
// One turn, in this order:
//   1. calls posted from other threads, in the order of posting;
//   2. every descriptor that was readable at the turn's start, once, in the order of creation;
//   3. every task that is scheduled when this phase begins, once, lower priority number first,
//      then in the order of scheduling. What is scheduled meanwhile runs in the next turn.
//
// A waiting engine reschedules itself for ever. When a turn ran only tasks that scheduled
// themselves again and nothing arrived, the next wait may block:
//
//   such turns in a row   longest wait
//   up to 200             none
//   more                  50 us, doubling to 1 ms
//
// The wait ends and the count starts anew when anything arrives, and when a task ends or is
// scheduled by somebody else. With no task scheduled at all the wait lasts until something arrives
// or the caller's own limit.
//
// Threads: post() and stop() from any; everything else from the event thread alone.
#pragma once

#include <poll.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <mutex>
#include <vector>

#include "Grist/Grist.h"
#include "Kel/Object.h"
#include "VynExport.h"

namespace Orb {

class FileDescriptor;
class Task;

// Lower runs first.
enum class TaskPriority : std::uint8_t { p0, p1, p2, p3, p4, p5, p6, p7 };

class VYN_EXPORT TaskSchedulerRoot final : public Kel::Object {
  public:
    using Wait = std::chrono::nanoseconds;
    static constexpr Wait forever = Wait::max();
    static constexpr unsigned defaultYieldAfter = 64;
    static constexpr unsigned neverYield = std::numeric_limits<unsigned>::max();

    // A new loop. Errors: std::system_error if the system gives no descriptor.
    static Vanta::Ptr<TaskSchedulerRoot> TaskSchedulerRootIs();

    // One turn. Waits before it for as long as the rules above allow, but never longer than
    // `maxWait`. Returns true if the turn had anything to do. An exception that leaves a posted
    // call, an announcement or a task ends the process (Vanta/Assert.h).
    // Preconditions: not inside a turn; the caller holds a reference to the loop meanwhile.
    bool turn(Wait maxWait = Wait::zero());

    // Turns begun so far, the one under way included.
    std::uint64_t turns() const noexcept { return turns_; }

    // How long the rules above allow the next turn to wait: zero, a time or `forever`.
    Wait nextWait() const noexcept;

    // Turns until stop() is called. A stop() that came before the call counts.
    void run();

    // Ends run() after the turn under way. Thread: any.
    void stop();

    // Has `call` run in a later turn. Thread: any.
    void post(std::function<void()> call);

    // From now on "should yield" answers no `checks` times in each run of a task, then yes.
    void yieldAfterIs(unsigned checks) noexcept { yieldAfter_ = checks; }
    unsigned yieldAfter() const noexcept { return yieldAfter_; }

    // The task that is running at this moment, or null.
    Task const* running() const noexcept { return running_; }
    // Tasks that are scheduled at this moment.
    std::size_t scheduledTasks() const noexcept;

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend class FileDescriptor;
    friend class Task;
    friend struct Vanta::NodeFactory;

    static constexpr std::size_t priorities = 8;

    // An intrusive list of tasks, in the order of scheduling.
    struct Queue {
        Task* first = nullptr;
        Task* last = nullptr;
    };
    using Queues = std::array<Queue, priorities>;

    TaskSchedulerRoot();
    ~TaskSchedulerRoot() override;

    bool waitForEvents(Wait wait);
    bool runPosted();
    bool announceReadable();
    bool runTasks();
    void runTask(Task& task);
    void wake();
    static Task* firstTask(Queues const& queues) noexcept;

    int wakeDescriptor_ = -1;
    std::mutex mutex_;                     // guards posted_ and stopping_
    std::atomic<bool> hasPosted_ = false;  // set under the mutex; looked at without it
    std::vector<std::function<void()>> posted_;
    bool stopping_ = false;

    template <class T>
    using List = std::vector<T, Grist::Allocator<T>>;
    List<FileDescriptor*> descriptors_;      // in the order of creation
    List<FileDescriptor*> readable_;         // of the turn under way
    List<pollfd> polled_ = List<pollfd>(1);  // the wake descriptor, then the others
    Queues scheduled_;                       // for the next turn
    Queues turn_;                            // of the turn under way
    Task* running_ = nullptr;
    std::uint64_t turns_ = 0;
    unsigned yieldAfter_ = defaultYieldAfter;
    bool turning_ = false;
    // Since the turn before: something arrived, a task ended, or one was scheduled by another.
    bool progress_ = false;
    unsigned waitingTurns_ = 0;  // turns in a row with tasks and without progress
};

}  // namespace Orb
