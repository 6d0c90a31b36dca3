// The scenario writer behind its lock: the event thread and the chip's thread both call it.
//
// A thread that holds the lock may take it again: if the process ends while the lock is held, the
// same thread finishes the recording. Threads: any.
#pragma once

#include <exception>
#include <mutex>

#include "scenario/RunWriter.h"

namespace Agent {

class LockedWriter {
  public:
    explicit LockedWriter(Scenario::RecordingFile& file) : file_(file), writer_(file) {}

    // Calls use(Scenario::RunWriter&). An exception from it, for want of memory, ends the recording and
    // nothing else.
    template <class Use>
    void use(Use const& use) noexcept {
        std::scoped_lock const lock(mutex_);
        try {
            use(writer_);
        } catch (std::exception const& error) {
            file_.fail(error.what());
        }
    }

  private:
    std::recursive_mutex mutex_;
    Scenario::RecordingFile& file_;
    Scenario::RunWriter writer_;
};

}  // namespace Agent
