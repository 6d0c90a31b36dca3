#include "Trace/RingReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

namespace Trace {

using namespace RingFile;

namespace {

[[noreturn]] void fail(std::string const& path, std::string const& what) {
    throw RingError(path + ": " + what);
}

std::size_t fileSize(int descriptor) noexcept {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0;
}

// Opens without waiting, so that a pipe under that name is told from a ring.
int openFile(std::string const& path) {
    int const descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        fail(path, std::string("cannot be opened: ") + std::strerror(errno));
    }
    return descriptor;
}

Word nextOf(Mapping const& file, std::string const& path) {
    auto const next = file.header().next.load(std::memory_order_acquire);
    if (next < file.header().recordCount || next > positionLimit) {
        fail(path, "damaged: byte 64: expected a position behind the first, found " +
                       std::to_string(next));
    }
    return next;
}

void checkHeader(Header const& header, std::size_t size, std::string const& path) {
    constexpr Word mostRecords = Word{1} << 40;
    if (header.magic != magic) {
        fail(path, "no trace ring: byte 0: expected the letters VYNRING1");
    }
    if (!std::has_single_bit(header.recordCount) || header.recordCount > mostRecords) {
        fail(path, "damaged: byte 8: expected a power of two as number of records, found " +
                       std::to_string(header.recordCount));
    }
    if (header.formatCount == 0 || header.formatCount > Word{1} << formatBits) {
        fail(path, "damaged: byte 16: expected 1 to 2048 formats, found " +
                       std::to_string(header.formatCount));
    }
    auto const expected = sizeOf(header.recordCount, header.formatCount);
    if (size < expected) {
        fail(path, "cut off: expected " + std::to_string(expected) + " bytes, found " +
                       std::to_string(size));
    }
}

std::unique_ptr<Mapping> openRing(std::string const& path) {
    int const descriptor = openFile(path);
    auto const size = fileSize(descriptor);
    if (size < sizeof(Header)) {
        ::close(descriptor);
        fail(path, "no trace ring: expected a header of 4096 bytes, found a file of " +
                       std::to_string(size));
    }
    auto file = std::make_unique<Mapping>(descriptor, path, size, Mapping::Access::read);
    checkHeader(file->header(), size, path);
    return file;
}

// A statement's fixed part; nothing where the table has none that makes sense.
struct Statement {
    std::string_view handle;
    unsigned level;
    std::string_view format;
};

std::optional<Statement> statementOf(FormatEntry const& entry) noexcept {
    auto const summary = entry.summary.load(std::memory_order_acquire);
    auto const handleLength = summary >> 16 & 0xffff;
    auto const textLength = summary & 0xffff;
    auto const level = static_cast<unsigned>(summary >> 32 & 0xff);
    if (summary != summaryOf(level, handleLength, textLength) || level > highestLevel ||
        handleLength + textLength > FormatEntry::room) {
        return std::nullopt;
    }
    std::string_view const text(entry.text.data(), FormatEntry::room);
    return Statement{text.substr(0, handleLength), level, text.substr(handleLength, textLength)};
}

// Takes a text off the front of the payload; false if it does not fit there.
bool takeText(std::span<Word const>& payload, std::string& text) {
    auto const* const bytes = reinterpret_cast<char const*>(payload.data());
    auto const first = static_cast<unsigned char>(*bytes);
    std::size_t const length = first & (cutText - 1);
    auto const words = length / sizeof(Word) + 1;
    if (words > payload.size()) {
        return false;
    }
    text.assign(bytes + 1, length);
    text += first & cutText ? "..." : "";
    payload = payload.subspan(words);
    return true;
}

Value numberValue(Slot slot, Word word) noexcept {
    switch (slot) {
        case Slot::boolean:
            return Value::boolean(word != 0);
        case Slot::signedNumber:
            return Value::signedNumber(static_cast<std::int64_t>(word));
        default:
            return Value::unsignedNumber(word);
    }
}

// The message's text; nothing for values that make no sense.
std::optional<std::string> textOf(std::string_view format, Word slots,
                                  std::span<Word const> payload) {
    std::array<std::string, mostValues> texts;
    std::vector<Value> values;
    values.reserve(mostValues);
    for (; slots != 0; slots >>= slotBits) {
        auto const slot = static_cast<Slot>(slots & ((1u << slotBits) - 1));
        if (slot == Slot::none || slot > Slot::text || payload.empty()) {
            return std::nullopt;
        }
        if (slot != Slot::text) {
            values.push_back(numberValue(slot, payload.front()));
            payload = payload.subspan(1);
            continue;
        }
        auto& text = texts[values.size()];
        if (!takeText(payload, text)) {
            return std::nullopt;
        }
        values.push_back(Value::text(text));
    }
    std::string text;
    appendFormatted(text, format, values);
    return text;
}

}  // namespace

// A record's words, taken out of the file.
struct RingReader::Raw {
    Word ticks;
    Word shape;
    std::array<Word, payloadWords> payload;

    std::size_t format() const noexcept { return shape & ((Word{1} << formatBits) - 1); }
    std::size_t used() const noexcept {
        return std::min(shape >> formatBits & ((Word{1} << usedBits) - 1), Word{payloadWords});
    }
    Word slots() const noexcept { return shape >> (formatBits + usedBits); }
};

RingReader::RingReader(std::string path)
    : path_(std::move(path)),
      file_(openRing(path_)),
      recordCount_(file_->header().recordCount),
      formatCount_(file_->header().formatCount),
      records_(file_->records()),
      known_(nextOf(*file_, path_)) {
    position_ = std::max(recordCount_, known_ - recordCount_);
    lost_ = position_ - recordCount_;
}

RingReader::~RingReader() = default;

bool RingReader::poll() {
    if (fileSize(file_->descriptor()) < file_->size()) {
        fail(path_, "cut off while it was read");
    }
    known_ = std::max(known_, nextOf(*file_, path_));
    return position_ < known_;
}

std::optional<RingMessage> RingReader::next(Unfinished unfinished) {
    Raw raw;
    while (position_ < known_) {
        switch (load(raw)) {
            case Found::overwritten:
                skipOverwritten();
                break;
            case Found::damaged:
                ++damaged_;
                ++position_;
                break;
            case Found::unfinished:
                if (unfinished == Unfinished::wait && mayFinish()) {
                    return std::nullopt;
                }
                ++position_;
                ++lost_;
                break;
            case Found::record:
                ++position_;
                if (auto message = decode(raw)) {
                    return message;
                }
                break;
        }
    }
    return std::nullopt;
}

RingReader::Found RingReader::load(Raw& raw) const noexcept {
    auto const& record = records_[position_ & (recordCount_ - 1)];
    auto const state = record.state.load(std::memory_order_acquire);
    if (state != position_) {
        return state > position_ ? Found::overwritten : Found::unfinished;
    }
    raw.ticks = record.ticks.load(std::memory_order_relaxed);
    raw.shape = record.shape.load(std::memory_order_relaxed);
    Check check(position_, raw.ticks, raw.shape);
    for (std::size_t at = 0; at < raw.used(); ++at) {
        raw.payload[at] = record.payload[at].load(std::memory_order_relaxed);
        check.add(at, raw.payload[at]);
    }
    if (record.check.load(std::memory_order_acquire) == check.sum()) {
        return Found::record;
    }
    return isOvertaken(file_->header().next.load(std::memory_order_relaxed)) ? Found::overwritten
                                                                             : Found::damaged;
}

bool RingReader::mayFinish() const noexcept {
    auto const next = file_->header().next.load(std::memory_order_relaxed);
    return next - position_ <= recordCount_ / 2 && hasWriter();
}

// Whether the writers have taken the place of the record to look at for another one.
bool RingReader::isOvertaken(std::uint64_t next) const noexcept {
    return next > position_ + recordCount_ && next <= positionLimit;
}

// Goes on an eighth of the ring behind the oldest record, where the writers will not be for a
// while.
void RingReader::skipOverwritten() noexcept {
    auto const before = position_;
    auto const next = file_->header().next.load(std::memory_order_relaxed);
    position_ = isOvertaken(next) ? next - recordCount_ + recordCount_ / 8 : position_ + 1;
    lost_ += position_ - before;
}

std::optional<RingMessage> RingReader::decode(Raw const& raw) {
    auto const statement =
        raw.format() < formatCount_ ? statementOf(file_->formats()[raw.format()]) : std::nullopt;
    if (!statement) {
        ++damaged_;
        return std::nullopt;
    }
    if (!levels_.has(statement->level) || (handle_ && *handle_ != statement->handle)) {
        return std::nullopt;
    }
    auto text = textOf(statement->format, raw.slots(), {raw.payload.data(), raw.used()});
    if (!text) {
        ++damaged_;
        return std::nullopt;
    }
    auto const lost = lost_ - std::exchange(lostReported_, lost_);
    return RingMessage{timeOf(raw.ticks), std::string(statement->handle), statement->level,
                       std::move(*text), lost};
}

// Any rate and any number of ticks give some time; a damaged one is a wrong time, no more.
std::int64_t RingReader::timeOf(std::uint64_t ticks) const noexcept {
    constexpr double limit = 4e18;
    auto const& header = file_->header();
    auto const rate = std::bit_cast<double>(header.nanosecondsPerTick.load());
    auto const elapsed = static_cast<double>(static_cast<std::int64_t>(ticks - header.tickBase));
    auto const nanoseconds = elapsed * rate;
    auto const isSane = std::abs(nanoseconds) < limit;  // false for what is no number
    auto const offset = isSane ? static_cast<std::int64_t>(nanoseconds) : 0;
    return static_cast<std::int64_t>(static_cast<Word>(header.wallBase) +
                                     static_cast<Word>(offset));
}

bool RingReader::hasWriter() const noexcept {
    return hasWriterLock(file_->descriptor());
}

bool RingReader::isReplaced() const {
    struct stat here {};
    struct stat there {};
    return ::fstat(file_->descriptor(), &here) == 0 && ::stat(path_.c_str(), &there) == 0 &&
           (here.st_dev != there.st_dev || here.st_ino != there.st_ino);
}

}  // namespace Trace
