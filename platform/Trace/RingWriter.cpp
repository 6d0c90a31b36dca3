#include "Trace/RingWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <utility>

namespace Trace {

using namespace RingFile;

namespace {

[[noreturn]] void fail(std::string const& path, std::string const& what, int error) {
    throw RingError(path + ": " + what + ": " + std::strerror(error));
}

class Descriptor {
  public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) {
            ::close(number_);
        }
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    int number() const noexcept { return number_; }
    int release() noexcept { return std::exchange(number_, -1); }

  private:
    int number_;
};

bool isRing(int descriptor) {
    std::array<char, magic.size()> begin{};
    return ::pread(descriptor, begin.data(), begin.size(), 0) ==
               static_cast<ssize_t>(begin.size()) &&
           (begin == magic || begin == magicOfVersion1);
}

bool isSameFile(int one, int other) {
    struct stat a {};
    struct stat b {};
    return ::fstat(one, &a) == 0 && ::fstat(other, &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

// What lies under the ring's name must be nothing, an empty file or a ring without a writer.
void checkReplaceable(std::string const& path, int previous) {
    Descriptor const old(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (old.number() < 0) {
        return errno == ENOENT ? void() : fail(path, "cannot be opened", errno);
    }
    struct stat status {};
    if (::fstat(old.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        throw RingError(path + ": is no regular file; expected a trace ring or nothing");
    }
    if (status.st_size != 0 && !isRing(old.number())) {
        throw RingError(path + ": is left alone: expected a trace ring or nothing");
    }
    if (hasWriterLock(old.number()) && !(previous >= 0 && isSameFile(old.number(), previous))) {
        throw RingError(path + ": is being written by another process");
    }
}

// The blocks are taken now, since a full disk would later end the process.
void allocateBlocks(int descriptor, std::string const& path, std::size_t size) {
    if (int const error = ::posix_fallocate(descriptor, 0, static_cast<off_t>(size)); error != 0) {
        fail(path, "cannot be given its " + std::to_string(size) + " bytes", error);
    }
}

std::unique_ptr<Mapping> makeFile(Descriptor& made, std::string const& path, std::size_t records) {
    auto const lines = std::bit_ceil(std::max(records, std::size_t{64}));
    auto const size = sizeOf(lines / mostLines, formatCount, ownRings, lines);
    allocateBlocks(made.number(), path, size);
    writerLockIs(made.number());
    auto mapping = std::make_unique<Mapping>(made.release(), path, size, Mapping::Access::write);
    auto& header = mapping->header();
    header.magic = magic;
    header.recordCount = lines / mostLines;
    header.formatCount = formatCount;
    header.ownCount = ownRings;
    header.lineCount = lines;
    header.next.store(header.recordCount, std::memory_order_release);
    return mapping;
}

}  // namespace

std::unique_ptr<RingWriter> RingWriter::make(std::string const& path, std::size_t records,
                                             RingWriter const* previous) {
    checkReplaceable(path, previous ? previous->mapping_->descriptor() : -1);
    auto const fresh = path + ".new." + std::to_string(::getpid());
    ::unlink(fresh.c_str());
    Descriptor made(::open(fresh.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    if (made.number() < 0) {
        fail(path, "cannot be made", errno);
    }
    try {
        std::unique_ptr<RingWriter> writer(new RingWriter(makeFile(made, path, records)));
        if (::rename(fresh.c_str(), path.c_str()) != 0) {
            fail(path, "cannot be replaced", errno);
        }
        return writer;
    } catch (...) {
        ::unlink(fresh.c_str());
        throw;
    }
}

RingWriter::RingWriter(std::unique_ptr<Mapping> mapping)
    : mapping_(std::move(mapping)),
      next_(mapping_->header().next),
      records_(mapping_->records()),
      mask_(mapping_->header().recordCount - 1),
      ownMask_(mapping_->header().lineCount - 1),
      byCounter_(RingClock::hasCounter()),
      seats_(*mapping_) {
    addFormat(overflowFormat, "Trace", 0, "a statement beyond the table of formats:");
    formatsUsed_ = overflowFormat + 1;
    startClock();
    startOwnRings();
}

// Numbers begin where nobody who makes up a value's text can foretell, so that no text looks like a
// record to a reader that has lost its place among the lines.
void RingWriter::startOwnRings() noexcept {
    constexpr Word mostTicks = positionLimit - 1;
    auto const first = (begin_.ticks & mostTicks) | 1;
    for (auto& head : std::span(mapping_->header().own).first(ownRings)) {
        head.first.store(first, std::memory_order_relaxed);
        head.next.store(first, std::memory_order_release);
    }
}

// The first rate is measured over the 20 us that this takes.
void RingWriter::startClock() noexcept {
    auto& header = mapping_->header();
    begin_ = RingClock::moment(byCounter_);
    header.wallBase = RingClock::wall();
    header.tickBase = begin_.ticks;
    while (RingClock::monotonic() - begin_.monotonic < 20'000) {
    }
    refineClock();
}

void RingWriter::addFormat(std::size_t number, std::string_view handle, unsigned level,
                           std::string_view format) noexcept {
    auto& entry = mapping_->formats()[number];
    handle = handle.substr(0, FormatEntry::longestHandle);
    format = format.substr(0, FormatEntry::room - handle.size());
    std::copy(format.begin(), format.end(),
              std::copy(handle.begin(), handle.end(), entry.text.begin()));
    entry.summary.store(summaryOf(level, handle.size(), format.size()), std::memory_order_release);
}

unsigned RingWriter::registered(Handle const& handle, unsigned level, char const* format) {
    std::lock_guard const lock(mutex_);
    if (auto const number = numbers_.find(handle, level, format)) {
        return number;
    }
    if (formatsUsed_ == formatCount) {
        return overflowFormat;
    }
    auto const number = static_cast<unsigned>(formatsUsed_++);
    addFormat(number, handle.name(), level, format);
    numbers_.add(handle, level, format, number);
    return number;
}

inline std::uint64_t RingWriter::now() noexcept {
    auto const ticks = RingClock::ticks(byCounter_);
    if (ticks >= refineAt_.load(std::memory_order_relaxed)) [[unlikely]] {
        refineClock();
    }
    return ticks;
}

// The rate is measured from the ring's beginning to now, again whenever that time has doubled, and
// at least once in some half second; so the error of a time stays below that of one measurement.
void RingWriter::refineClock() noexcept {
    constexpr std::uint64_t longestStep = std::uint64_t{1} << 30;
    auto const moment = RingClock::moment(byCounter_);
    auto const rate = RingClock::nanosecondsPerTick(begin_, moment);
    mapping_->header().nanosecondsPerTick.store(std::bit_cast<Word>(rate),
                                                std::memory_order_relaxed);
    auto const step = std::min(moment.ticks - begin_.ticks, longestStep);
    refineAt_.store(moment.ticks + step, std::memory_order_relaxed);
}

inline unsigned RingWriter::numberOf(Handle const& handle, unsigned level, char const* format) {
    auto const number = numbers_.find(handle, level, format);
    return number != 0 ? number : registered(handle, level, format);
}

namespace {

// The payload goes right into the file.
struct InFile {
    void put(RingProgress& progress, Word word) const noexcept {
        record->payload[progress.used].store(word, std::memory_order_relaxed);
        progress.check.add(progress.used++, word);
    }
    Record* record;
};

// The payload stays in this thread until it has a place.
struct InThread {
    void put(RingProgress& progress, Word word) const noexcept { payload[progress.used++] = word; }
    Word* payload;
};

// Stores what stands before the payload; `check` is that of all but the shape.
void finish(Record& record, Word state, Word ticks, Word shape, Check check) noexcept {
    check.addShape(shape);
    record.ticks.store(ticks, std::memory_order_relaxed);
    record.shape.store(shape, std::memory_order_relaxed);
    record.check.store(check.sum(), std::memory_order_relaxed);
    record.state.store(state, std::memory_order_release);
}

// While it lives, statements of this thread go to the shared ring: those of a value's writer, and of
// a signal's handler.
class InStatement {
  public:
    explicit InStatement(RingSeat& seat) noexcept : seat_(seat) {
        seat_.isInStatement = true;
        std::atomic_signal_fence(std::memory_order_seq_cst);
    }
    ~InStatement() {
        std::atomic_signal_fence(std::memory_order_seq_cst);
        seat_.isInStatement = false;
    }
    InStatement(InStatement const&) = delete;
    InStatement& operator=(InStatement const&) = delete;

  private:
    RingSeat& seat_;
};

}  // namespace

inline void RingWriter::writeOwn(RingSeat& seat, Handle const& handle, unsigned level,
                                 char const* format, std::span<Value const> values) {
    InStatement const inside(seat);
    auto const ticks = now();
    auto const number = numberOf(handle, level, format);
    auto& head = *seat.head;
    auto const state = head.next.load(std::memory_order_relaxed);
    auto const line = head.end.load(std::memory_order_relaxed);
    auto& record = *reinterpret_cast<Record*>(seat.lines + (line & ownMask_) * lineSize);
    RingEncoder encoder(InFile{&record}, Check(state, ticks));
    auto const shape = encoder.encode(values) | number;
    auto const [check, used] = encoder.progress();
    finish(record, state, ticks, shape, check);
    head.end.store(line + linesOf(used), std::memory_order_relaxed);
    head.next.store(state + 1, std::memory_order_release);
}

void RingWriter::write(Handle const& handle, unsigned level, char const* format,
                       std::span<Value const> values) {
    auto& seat = RingSeat::ofThread;
    if (seat.seats == &seats_ && !seat.isInStatement) [[likely]] {
        return writeOwn(seat, handle, level, format, values);
    }
    writeWithoutSeat(handle, level, format, values);
}

void RingWriter::writeWithoutSeat(Handle const& handle, unsigned level, char const* format,
                                  std::span<Value const> values) {
    auto& seat = RingSeat::ofThread;
    bool taken = false;
    if (!seat.isInStatement) {
        // A signal handler that traces meanwhile must not take a ring as well.
        InStatement const inside(seat);
        taken = seats_.take();
    }
    if (taken) {
        return write(handle, level, format, values);
    }
    writeShared(handle, level, format, values);
}

// Encodes first and takes a place then: a statement that takes one leaves a whole record there.
void RingWriter::writeShared(Handle const& handle, unsigned level, char const* format,
                             std::span<Value const> values) {
    auto const ticks = now();
    auto const number = numberOf(handle, level, format);
    std::array<Word, payloadWords> payload;
    RingEncoder encoder(InThread{payload.data()}, Check(0, 0));
    auto const shape = encoder.encode(values) | number;
    auto const position = next_.fetch_add(1, std::memory_order_relaxed);
    auto& record = records_[position & mask_];
    RingProgress progress{Check(position, ticks)};
    for (auto const word : std::span(payload).first(encoder.progress().used)) {
        InFile{&record}.put(progress, word);
    }
    finish(record, position, ticks, shape, progress.check);
}

}  // namespace Trace
