// One ring of a file as its reader goes along it: the shared ring, or a thread's own one.
// Internal to Trace.
//
// Threads: one at a time for each lane.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "Trace/RingFile.h"

namespace Trace {

// A record's words, taken out of the file.
struct RingWords {
    RingFile::Word ticks;
    RingFile::Word shape;
    std::array<RingFile::Word, RingFile::payloadWords> payload;

    std::size_t format() const noexcept {
        return shape & ((RingFile::Word{1} << RingFile::formatBits) - 1);
    }
    std::size_t used() const noexcept {
        constexpr auto mask = (RingFile::Word{1} << RingFile::usedBits) - 1;
        return std::min(shape >> RingFile::formatBits & mask, RingFile::Word{payload.size()});
    }
    RingFile::Word slots() const noexcept {
        return shape >> (RingFile::formatBits + RingFile::usedBits);
    }

    // Copies `record`; false if its check is not that of `state` with these words.
    bool load(RingFile::Record const& record, RingFile::Word state) noexcept;
};

class RingLane {
  public:
    RingLane() = default;
    virtual ~RingLane() = default;
    RingLane(RingLane const&) = delete;
    RingLane& operator=(RingLane const&) = delete;

    // Learns how far the ring is written; whether that is further than the last time.
    // Errors: RingError, beginning with `path`, for numbers that make no sense.
    virtual bool poll(std::string const& path) = 0;

    // Takes the next record that is known. False if there is none, or, unless `passesOver`, if a
    // living writer has it under way.
    virtual bool next(RingWords& to, bool passesOver) = 0;

    // Whether next() has records to look at.
    virtual bool hasMore() const noexcept = 0;

    // Records that were overwritten before they were read, or never finished.
    std::uint64_t lost() const noexcept { return lost_; }
    // Records whose words are not of one record.
    std::uint64_t damaged() const noexcept { return damaged_; }

  protected:
    std::uint64_t lost_ = 0;
    std::uint64_t damaged_ = 0;
};

// The ring that several threads share, whose records are of one size.
class SharedRingLane : public RingLane {
  public:
    explicit SharedRingLane(RingFile::Mapping const& file) noexcept;

    bool poll(std::string const& path) override;
    bool next(RingWords& to, bool passesOver) override;
    bool hasMore() const noexcept override { return position_ < known_; }

  private:
    enum class Found { record, unfinished, overwritten, damaged };

    Found load(RingWords& to) const noexcept;
    RingFile::Word newest() const noexcept;
    bool mayFinish() const noexcept;
    bool isOvertaken(RingFile::Word next) const noexcept;
    void skipOverwritten() noexcept;

    RingFile::Mapping const& file_;
    RingFile::Record const* const records_;
    RingFile::Word const count_;
    RingFile::Word known_;     // the position behind the newest known record
    RingFile::Word position_;  // of the record to look at next
};

// A ring that one thread at a time writes, whose records are as long as they need.
class OwnRingLane : public RingLane {
  public:
    // Precondition: the file has that own ring.
    OwnRingLane(RingFile::Mapping const& file, std::size_t ring) noexcept;

    bool poll(std::string const& path) override;
    bool next(RingWords& to, bool passesOver) override;
    bool hasMore() const noexcept override { return number_ < known_; }

  private:
    RingFile::Record const& recordAt(RingFile::Word line) const noexcept;
    bool load(RingFile::Word number, RingWords& to) const noexcept;
    bool leadsOn(RingFile::Word number) const noexcept;
    void leaveLostPlace() noexcept;
    bool find(RingWords& to) noexcept;

    RingFile::OwnHead const& head_;
    std::byte const* const lines_;
    std::size_t const headOffset_;
    RingFile::Word const count_;
    RingFile::Word known_ = 0;   // the number behind the newest known record
    RingFile::Word end_ = 0;     // the line behind it, or behind a newer one
    RingFile::Word number_ = 0;  // of the record to look at next
    RingFile::Word line_ = 0;    // where it begins, or no later than it begins
    bool isInPlace_ = false;     // it begins at line_
};

}  // namespace Trace
