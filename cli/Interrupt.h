// Ctrl-C, so that a command can clean up before it ends.
//
// While an Interrupt lives, the first SIGINT or SIGTERM only wakes the event loop and is
// remembered; a second one ends the process at once. One at a time. Thread: the event thread.
#pragma once

#include "Orb/FileDescriptor.h"
#include "Orb/TaskSchedulerRoot.h"

namespace Cli {

class Interrupt {
  public:
    // Errors: std::system_error for want of descriptors.
    explicit Interrupt(Vanta::Ptr<Orb::TaskSchedulerRoot> loop);
    Interrupt(Interrupt const&) = delete;
    Interrupt& operator=(Interrupt const&) = delete;
    ~Interrupt();

    // The signal that came, 0 for none.
    static int signal() noexcept;

    // Ends the process by the signal that came, as if it had not been caught, so that a shell sees
    // what happened; returns if none came.
    static void raiseAgain();

  private:
    Vanta::Ptr<Orb::FileDescriptor> descriptor_;
};

}  // namespace Cli
