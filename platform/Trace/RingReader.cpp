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

#include "Trace/RingLane.h"

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

// What a header says of its rings. A file of the first version has no own ones.
struct Rings {
    Word sharedRecords;
    Word ownCount;
    Word lineCount;
};

bool isCount(Word count) noexcept {
    constexpr Word most = Word{1} << 40;
    return std::has_single_bit(count) && count <= most;
}

Rings ringsOf(Header const& header, std::string const& path) {
    if (header.magic == magicOfVersion1) {
        return {header.recordCount, 0, 0};
    }
    if (header.magic != magic) {
        fail(path, "no trace ring: byte 0: expected the letters VYNRING1 or VYNRING2");
    }
    if (header.ownCount > mostOwnRings) {
        fail(path, "damaged: byte 48: expected at most 31 rings of threads, found " +
                       std::to_string(header.ownCount));
    }
    if (!isCount(header.lineCount)) {
        fail(path, "damaged: byte 56: expected a power of two as number of lines, found " +
                       std::to_string(header.lineCount));
    }
    return {header.recordCount, header.ownCount, header.lineCount};
}

// Returns the number of own rings.
std::size_t checkHeader(Header const& header, std::size_t size, std::string const& path) {
    auto const rings = ringsOf(header, path);
    if (!isCount(rings.sharedRecords)) {
        fail(path, "damaged: byte 8: expected a power of two as number of records, found " +
                       std::to_string(rings.sharedRecords));
    }
    if (header.formatCount == 0 || header.formatCount > Word{1} << formatBits) {
        fail(path, "damaged: byte 16: expected 1 to 2048 formats, found " +
                       std::to_string(header.formatCount));
    }
    auto const expected =
        sizeOf(rings.sharedRecords, header.formatCount, rings.ownCount, rings.lineCount);
    if (size < expected) {
        fail(path, "cut off: expected " + std::to_string(expected) + " bytes, found " +
                       std::to_string(size));
    }
    return rings.ownCount;
}

std::unique_ptr<Mapping> openRing(std::string const& path) {
    int const descriptor = openFile(path);
    auto const size = fileSize(descriptor);
    if (size < sizeof(Header)) {
        ::close(descriptor);
        fail(path, "no trace ring: expected a header of 4096 bytes, found a file of " +
                       std::to_string(size));
    }
    return std::make_unique<Mapping>(descriptor, path, size, Mapping::Access::read);
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

// A ring, and the record of it whose turn comes next.
struct RingReader::Lane {
    explicit Lane(std::unique_ptr<RingLane> way) : ring(std::move(way)) {}

    bool hasRecord(Unfinished unfinished) {
        isHeld = isHeld || ring->next(record, unfinished == Unfinished::passOver);
        return isHeld;
    }

    std::unique_ptr<RingLane> const ring;
    bool isHeld = false;
    RingWords record;
};

std::vector<std::unique_ptr<RingReader::Lane>> RingReader::lanesOf(Mapping const& file,
                                                                   std::string const& path) {
    auto const ownCount = checkHeader(file.header(), file.size(), path);
    std::vector<std::unique_ptr<Lane>> lanes;
    lanes.push_back(std::make_unique<Lane>(std::make_unique<SharedRingLane>(file)));
    for (std::size_t ring = 0; ring < ownCount; ++ring) {
        lanes.push_back(std::make_unique<Lane>(std::make_unique<OwnRingLane>(file, ring)));
    }
    return lanes;
}

RingReader::RingReader(std::string path)
    : path_(std::move(path)),
      file_(openRing(path_)),
      lanes_(lanesOf(*file_, path_)),
      formatCount_(file_->header().formatCount) {
    poll();
}

RingReader::~RingReader() = default;

// Looks until the writers did nothing meanwhile, so that nothing is known without what came before
// it in another thread; not for ever, since writers may never rest.
bool RingReader::poll() {
    if (fileSize(file_->descriptor()) < file_->size()) {
        fail(path_, "cut off while it was read");
    }
    bool isMoving = true;
    for (int look = 0; isMoving && look < 100; ++look) {
        isMoving = false;
        for (auto const& lane : lanes_) {
            isMoving |= lane->ring->poll(path_);
        }
    }
    return std::any_of(lanes_.begin(), lanes_.end(),
                       [](auto const& lane) { return lane->isHeld || lane->ring->hasMore(); });
}

std::optional<RingMessage> RingReader::next(Unfinished unfinished) {
    while (auto* const lane = earliest(unfinished)) {
        lane->isHeld = false;
        if (auto message = decode(lane->record)) {
            return message;
        }
    }
    return std::nullopt;
}

RingReader::Lane* RingReader::earliest(Unfinished unfinished) {
    Lane* found = nullptr;
    for (auto const& lane : lanes_) {
        if (lane->hasRecord(unfinished) && (!found || lane->record.ticks < found->record.ticks)) {
            found = lane.get();
        }
    }
    return found;
}

std::uint64_t RingReader::lost() const noexcept {
    std::uint64_t sum = 0;
    for (auto const& lane : lanes_) {
        sum += lane->ring->lost();
    }
    return sum;
}

std::uint64_t RingReader::damaged() const noexcept {
    auto sum = undecoded_;
    for (auto const& lane : lanes_) {
        sum += lane->ring->damaged();
    }
    return sum;
}

std::optional<RingMessage> RingReader::decode(RingWords const& words) {
    auto const statement = words.format() < formatCount_
                               ? statementOf(file_->formats()[words.format()])
                               : std::nullopt;
    if (!statement) {
        ++undecoded_;
        return std::nullopt;
    }
    if (!levels_.has(statement->level) || (handle_ && *handle_ != statement->handle)) {
        return std::nullopt;
    }
    auto text = textOf(statement->format, words.slots(), {words.payload.data(), words.used()});
    if (!text) {
        ++undecoded_;
        return std::nullopt;
    }
    auto const lostInAll = lost();
    auto const lostNow = lostInAll - std::exchange(lostReported_, lostInAll);
    return RingMessage{timeOf(words.ticks), std::string(statement->handle), statement->level,
                       std::move(*text), lostNow};
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
