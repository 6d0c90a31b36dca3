// The writer of one ring file. Internal to Trace.
//
// Threads: write() from any thread, without a lock but for the first record of a format. A thread
// that has an own ring shares nothing that is written with others.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>

#include "Trace/FormatNumbers.h"
#include "Trace/RingClock.h"
#include "Trace/RingFile.h"
#include "Trace/RingRecord.h"
#include "Trace/RingSeat.h"

namespace Trace {

class RingWriter {
  public:
    // Makes a fresh ring under `path`, complete before it can be seen there, in place of an earlier
    // ring. `previous`, if given, is this process's own ring, which may be replaced although it is
    // in use. Errors: RingError.
    static std::unique_ptr<RingWriter> make(std::string const& path, std::size_t records,
                                            RingWriter const* previous);

    // Errors: what a value's writer throws; then there is no record.
    void write(Handle const& handle, unsigned level, char const* format,
               std::span<Value const> values);

    // Gives up the lock of the file. Threads that are still inside write() finish undisturbed.
    void retire() noexcept { mapping_->close(); }

    // In a child process that was forked, whose statements all go to the shared ring.
    void inherited() noexcept { seats_.inherited(); }

  private:
    // Precondition: the mapping's header has its counts, and everything else is zero.
    explicit RingWriter(std::unique_ptr<RingFile::Mapping> mapping);

    void startClock() noexcept;
    void startOwnRings() noexcept;
    void addFormat(std::size_t number, std::string_view handle, unsigned level,
                   std::string_view format) noexcept;
    unsigned registered(Handle const& handle, unsigned level, char const* format);
    unsigned numberOf(Handle const& handle, unsigned level, char const* format);
    std::uint64_t now() noexcept;
    [[gnu::always_inline]] void writeOwn(RingSeat& seat, Handle const& handle, unsigned level,
                                         char const* format, std::span<Value const> values);
    void writeShared(Handle const& handle, unsigned level, char const* format,
                     std::span<Value const> values);
    [[gnu::noinline]] void writeWithoutSeat(Handle const& handle, unsigned level,
                                            char const* format, std::span<Value const> values);
    void refineClock() noexcept;

    // What every record needs, and what is only read, lies together.
    std::unique_ptr<RingFile::Mapping> const mapping_;
    RingFile::AtomicWord& next_;
    RingFile::Record* const records_;
    RingFile::Word const mask_;
    RingFile::Word const ownMask_;
    bool const byCounter_;
    std::atomic<std::uint64_t> refineAt_ = 0;
    FormatNumbers numbers_;

    RingSeats seats_;
    RingClock::Moment begin_{};
    std::mutex mutex_;  // guards what follows
    std::size_t formatsUsed_ = 0;
};

}  // namespace Trace
