// Which own ring a thread writes. Internal to Trace.
//
// A thread takes an own ring at its first statement, and gives it back when it ends; what it wrote
// stays there until the next thread has gone round. Threads that find none write the shared ring,
// and take an own one as soon as there is one.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "Trace/RingFile.h"

namespace Trace {

class RingSeats;

// One thread's place.
struct RingSeat {
    RingSeats* seats = nullptr;  // of which ring file; null while the thread has no own ring
    RingFile::OwnHead* head = nullptr;
    std::byte* lines = nullptr;
    std::size_t ring = 0;
    bool isInStatement = false;  // a statement inside another one goes to the shared ring
    bool hasEnded = false;       // the thread's own objects are going

    // This thread's. The model of its storage spares a call for each statement.
    [[gnu::tls_model("initial-exec")]] static constinit thread_local RingSeat ofThread;
};

// The own rings of one file.
class RingSeats {
  public:
    explicit RingSeats(RingFile::Mapping const& file) noexcept;
    RingSeats(RingSeats const&) = delete;
    RingSeats& operator=(RingSeats const&) = delete;

    // Gives this thread an own ring, in place of one that it has in another file. Returns false if
    // there is none free, or the thread is ending. Precondition: it has none in this file.
    bool take() noexcept;

    // Gives this thread's own ring back, if it has one in whatever file.
    static void giveBack() noexcept;

    // In a child process that was forked: the rings that threads have are the parent's, who goes on
    // writing them, so that nobody here may take one any more.
    void inherited() noexcept;

  private:
    RingFile::Mapping const& file_;
    std::atomic<std::uint32_t> free_;       // a bit for each ring
    std::atomic<std::uint32_t> taken_ = 0;  // how often; the one that was free for long goes first
};

}  // namespace Trace
