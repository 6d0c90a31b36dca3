#include "Trace/RingWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
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
           begin == magic;
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
    auto const count = std::bit_ceil(std::max(records, std::size_t{64}));
    auto const size = sizeOf(count, formatCount);
    allocateBlocks(made.number(), path, size);
    writerLockIs(made.number());
    auto mapping = std::make_unique<Mapping>(made.release(), path, size, Mapping::Access::write);
    auto& header = mapping->header();
    header.magic = magic;
    header.recordCount = count;
    header.formatCount = formatCount;
    header.next.store(count, std::memory_order_release);
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
      byCounter_(RingClock::hasCounter()) {
    addFormat(overflowFormat, "Trace", 0, "a statement beyond the table of formats:");
    formatsUsed_ = overflowFormat + 1;
    startClock();
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

void RingWriter::write(Handle const& handle, unsigned level, char const* format,
                       std::span<Value const> values) {
    constexpr Word recordsAhead = 4;
    auto const ticks = now();
    auto number = numbers_.find(handle, level, format);
    if (number == 0) [[unlikely]] {
        number = registered(handle, level, format);
    }
    RingRecord const content(values);
    auto const position = next_.fetch_add(1, std::memory_order_relaxed);
    __builtin_prefetch(&records_[(position + recordsAhead) & mask_], 1);
    auto& record = records_[position & mask_];
    auto const shape = content.shape() | number;
    Check check(position, ticks, shape);
    record.ticks.store(ticks, std::memory_order_relaxed);
    record.shape.store(shape, std::memory_order_relaxed);
    for (std::size_t at = 0; auto const word : content.payload()) {
        record.payload[at].store(word, std::memory_order_relaxed);
        check.add(at++, word);
    }
    record.check.store(check.sum(), std::memory_order_relaxed);
    record.state.store(position, std::memory_order_release);
}

}  // namespace Trace
