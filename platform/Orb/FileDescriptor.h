// A descriptor of the system that belongs to an event loop.
//
// While it notifies on readable, every turn that finds it readable publishes the readable
// attribute once. Readable is what a read would not block on: data, the end, an error. The object
// owns the descriptor. Thread: the event thread.
#pragma once

#include "Orb/TaskSchedulerRoot.h"
#include "Vanta/Publisher.h"
#include "Vanta/String.h"

namespace Orb {

class VYN_EXPORT FileDescriptor final : public Kel::Object {
  public:
    static constexpr Vanta::AttributeNumber readableAttribute = 132;

    // Takes over `descriptor`, which is not announced until notifyOnReadableIs(true).
    // Errors: std::bad_alloc; the caller then still owns the descriptor.
    static Vanta::Ptr<FileDescriptor> FileDescriptorIs(Vanta::Ptr<TaskSchedulerRoot> loop,
                                                       int descriptor, Vanta::String name);

    // -1 after close().
    int descriptor() const noexcept { return descriptor_; }
    Vanta::String const& name() const noexcept { return name_; }

    // Sets or clears O_NONBLOCK. Errors: std::system_error.
    void nonBlockingIs(bool on);

    // Switched off, it is not announced any more, not even in a turn under way.
    bool notifyOnReadable() const noexcept { return notifyOnReadable_; }
    void notifyOnReadableIs(bool on) noexcept { notifyOnReadable_ = on; }

    // Closes the descriptor; it is not announced any more. Closing twice changes nothing.
    void close() noexcept;

    Vanta::Publisher const& publisher() const noexcept { return publisher_; }
    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend class TaskSchedulerRoot;
    friend struct Vanta::NodeFactory;

    FileDescriptor(Vanta::Ptr<TaskSchedulerRoot> loop, int descriptor, Vanta::String name);
    ~FileDescriptor() override;

    bool isAnnounced() const noexcept { return notifyOnReadable_ && descriptor_ != -1; }

    Vanta::Ptr<TaskSchedulerRoot> loop_;
    int descriptor_;
    Vanta::String name_;
    bool notifyOnReadable_ = false;
    Vanta::Publisher publisher_{this};
};

}  // namespace Orb
