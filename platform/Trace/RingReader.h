// Reads the messages of a trace ring (Ringlog.h), of a living process or a dead one.
//
//     Trace::RingReader reader(path);
//     while (auto message = reader.next(Trace::RingReader::Unfinished::passOver)) { ... }
//
// prints what is there: the messages of all threads, in the order of their times. To follow, the
// caller waits, calls poll(), and asks next() again with Unfinished::wait. A message that its thread
// finished only after a poll comes after it, even if its time is an earlier one.
//
// Files of both versions are read (RingFile.h).
//
// The reader changes nothing in the file and never disturbs its writer. It takes any bytes for a
// ring without harm: what makes no sense is an error when the file is opened, and is counted as
// damaged or lost later. Only a file that shrinks while it is read cannot be helped.
//
// Threads: one at a time for each reader.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Trace/Levels.h"
#include "Trace/RingFile.h"
#include "VynExport.h"

namespace Trace {

class RingLane;
struct RingWords;

struct RingMessage {
    std::int64_t nanoseconds;  // since 1970
    std::string handle;
    unsigned level;
    std::string text;          // a text that was cut ends in "..."
    std::uint64_t lostBefore;  // records lost since the message before, or the ring's beginning
};

class VYN_EXPORT RingReader {
  public:
    // What next() does at a record of the shared ring that a writer took and has not finished. `wait`
    // stops there, unless no writer lives, or it went on for half that ring; other rings are read on.
    // `passOver` counts it as lost.
    enum class Unfinished { wait, passOver };

    // Opens the file, ready to read from its oldest record to the newest at this moment.
    // Errors: RingError, for a file that cannot be read, is no ring, is cut off or damaged.
    explicit RingReader(std::string path);
    ~RingReader();
    RingReader(RingReader const&) = delete;
    RingReader& operator=(RingReader const&) = delete;

    // Only messages of this handle, or of all again (nothing); only messages of these levels.
    // Others are passed over by next().
    void handleIs(std::optional<std::string> handle) { handle_ = std::move(handle); }
    void levelsIs(LevelSet levels) noexcept { levels_ = levels; }

    // The next message in the order of time, or nothing at the newest that is known. The messages of
    // one thread come in the order of its statements.
    // Errors: std::bad_alloc.
    std::optional<RingMessage> next(Unfinished unfinished);

    // Learns of records that came since the last poll; whether next() has records to look at.
    // Errors: RingError, for a file that shrank or whose header no longer makes sense.
    bool poll();

    // Records that were overwritten before they were read, or never finished.
    std::uint64_t lost() const noexcept;

    // Records, among those looked at, whose content makes no sense.
    std::uint64_t damaged() const noexcept;

    // Whether a living process writes the ring.
    bool hasWriter() const noexcept;

    // Whether the path now names another file, as after a restart of the writer.
    bool isReplaced() const;

  private:
    struct Lane;

    static std::vector<std::unique_ptr<Lane>> lanesOf(RingFile::Mapping const& file,
                                                      std::string const& path);
    Lane* earliest(Unfinished unfinished);
    std::optional<RingMessage> decode(RingWords const& words);
    std::int64_t timeOf(std::uint64_t ticks) const noexcept;

    std::string const path_;
    std::unique_ptr<RingFile::Mapping> const file_;
    std::vector<std::unique_ptr<Lane>> const lanes_;
    std::uint64_t const formatCount_;
    std::optional<std::string> handle_;
    LevelSet levels_ = LevelSet::all();
    std::uint64_t lostReported_ = 0;
    std::uint64_t undecoded_ = 0;  // records whose words make no statement
};

}  // namespace Trace
