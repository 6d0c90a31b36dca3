// A trace ring as it lies in its file: a header, a table of formats, and records in several rings. A
// reader needs nothing else, and a writer that crashes leaves nothing to be flushed.
//
// All numbers are the machine's own. Words that several threads or processes touch are atomic.
//
// An own ring belongs to one thread at a time. It is made of lines of 64 bytes; a record takes as
// many as it fills, one behind the other, and begins within the ring (a few lines behind the ring's
// last one take the rest of a record that begins there). Records are numbered without a gap. The
// thread stores a record's words, then the line behind it, and then, with release order, the number
// of the next one: so whatever is numbered is whole, and taking a place costs nothing.
//
// The shared ring is for threads beyond the number of own rings, and for statements inside another
// one. Its records are of one size. A position counts them from the ring's beginning; the first one
// is the number of records, so that a record that was never written is told from every other. The
// record at a position lies in the slot of that position modulo the number of records. A writer
// takes a position by one addition to Header::next, stores the record's words, and then, with
// release order, its position as the slot's state.
//
// A reader that finds the number that it looks for as a record's state copies the words and compares
// their check: while a ring wraps, or where a thread stood still for a whole round of the shared
// ring and goes on in a slot that others use again, the words are of two records, and the check
// refuses them.
//
// A file of the first version has the shared ring alone.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "Trace/Format.h"
#include "VynExport.h"

namespace Trace {

// A file cannot be used as a ring: "FILE: what is wrong and what was expected".
class VYN_EXPORT RingError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

namespace RingFile {

using Word = std::uint64_t;
using AtomicWord = std::atomic<Word>;
static_assert(AtomicWord::is_always_lock_free && sizeof(AtomicWord) == sizeof(Word));

inline constexpr std::array<char, 8> magic = {'V', 'Y', 'N', 'R', 'I', 'N', 'G', '2'};
inline constexpr std::array<char, 8> magicOfVersion1 = {'V', 'Y', 'N', 'R', 'I', 'N', 'G', '1'};

// How far an own ring is written. Two cache lines apart, since processors fetch them in pairs.
struct alignas(128) OwnHead {
    AtomicWord next;   // the number of the next record
    AtomicWord end;    // lines written since the ring's beginning, stored before `next`
    AtomicWord first;  // the number of the first record; not 0
};

inline constexpr std::size_t mostOwnRings = 31;

struct Header {
    std::array<char, 8> magic;
    Word recordCount;               // of the shared ring; a power of two
    Word formatCount;               // room in the table of formats
    Word tickBase;                  // a moment, in the ticks that records count
    std::int64_t wallBase;          // the same moment, in nanoseconds since 1970
    AtomicWord nanosecondsPerTick;  // a double's bits; becomes more exact as time goes by
    Word ownCount;                  // number of own rings; this and the next not in version 1
    Word lineCount;                 // of each own ring; a power of two
    alignas(64) AtomicWord next;    // the position that the shared ring's next record takes
    std::array<OwnHead, mostOwnRings> own;
};
static_assert(sizeof(Header) == 4096 && offsetof(Header, own) == 128);

// What a statement says in all its records. Never changes once `summary` is there.
struct FormatEntry {
    static constexpr std::size_t room = 504;
    static constexpr std::size_t longestHandle = 63;

    AtomicWord summary;           // 0 while there is none; see summaryOf()
    std::array<char, room> text;  // the handle's name, then the format's text, cut to the room
};
static_assert(sizeof(FormatEntry) == 512);

constexpr Word summaryOf(unsigned level, std::size_t handleLength, std::size_t textLength) {
    return Word{1} << 63 | Word{level} << 32 | handleLength << 16 | textLength;
}

// The format of statements that found the table full.
inline constexpr std::size_t overflowFormat = 0;
inline constexpr std::size_t formatCount = 512;

// What a writer of this version makes: a ring for each of this many threads.
inline constexpr std::size_t ownRings = 3;
static_assert(ownRings <= mostOwnRings);

inline constexpr std::size_t payloadWords = 28;

struct Record {
    AtomicWord state;  // the record's number or position, stored last
    AtomicWord check;  // see Check
    AtomicWord ticks;
    AtomicWord shape;  // from the low bits: format's number, payload words in use, a Slot a value
    std::array<AtomicWord, payloadWords> payload;
};
static_assert(sizeof(Record) == 256);

// Of a record in an own ring only the lines that its payload reaches are there.
inline constexpr std::size_t lineSize = 64;
inline constexpr std::size_t mostLines = sizeof(Record) / lineSize;
constexpr std::size_t linesOf(std::size_t usedPayload) {
    return (offsetof(Record, payload) + usedPayload * sizeof(Word) + lineSize - 1) / lineSize;
}
static_assert(linesOf(4) == 1 && linesOf(5) == 2 && linesOf(payloadWords) == mostLines);

// How a value lies in the payload: a number in one word; a text as a byte with its length, the
// characters, and zeros up to the next full word. The length's top bit says that it was cut.
enum class Slot : unsigned {
    none = 0,
    boolean = static_cast<unsigned>(Value::Kind::boolean),
    signedNumber = static_cast<unsigned>(Value::Kind::signedNumber),
    unsignedNumber = static_cast<unsigned>(Value::Kind::unsignedNumber),
    text = static_cast<unsigned>(Value::Kind::text),
};
static_assert(Slot::boolean == Slot{1} && Slot::text == Slot{4}, "files hold these numbers");
inline constexpr unsigned formatBits = 11;
inline constexpr unsigned usedBits = 5;
inline constexpr unsigned slotBits = 4;
static_assert(formatBits + usedBits + slotBits * mostValues <= 64);
static_assert(formatCount <= 1u << formatBits && payloadWords < 1u << usedBits);

// A text keeps its first 95 bytes at most; in a record that runs out of room, what its payload
// has left when each value behind it has its word: 7 bytes at least.
inline constexpr std::size_t longestText = 95;
inline constexpr unsigned cutText = 0x80;

// The sum of a record's state, ticks, shape and used payload, each times an odd number of its
// own: one word that is not the record's always shows, several show unless 64 bits agree by chance.
class Check {
  public:
    Check(Word state, Word ticks) noexcept : sum_(state * factors[0] + ticks * factors[1]) {}

    void addShape(Word shape) noexcept { sum_ += shape * factors[2]; }
    void add(std::size_t payloadIndex, Word word) noexcept {
        sum_ += word * factors[3 + payloadIndex];
    }

    Word sum() const noexcept { return sum_; }

  private:
    static constexpr auto factors = [] {
        std::array<Word, 3 + payloadWords> made{};
        Word state = 0;
        for (auto& factor : made) {
            state += 0x9e3779b97f4a7c15;
            Word mixed = (state ^ state >> 30) * 0xbf58476d1ce4e5b9;
            mixed = (mixed ^ mixed >> 27) * 0x94d049bb133111eb;
            factor = (mixed ^ mixed >> 31) | 1;
        }
        return made;
    }();

    Word sum_;
};

inline constexpr Word positionLimit = Word{1} << 62;

constexpr std::size_t sizeOfShared(Word recordCount, Word formats) {
    return sizeof(Header) + formats * sizeof(FormatEntry) + recordCount * sizeof(Record);
}
// One own ring, with the room for what begins in its last line.
constexpr std::size_t sizeOfOwn(Word lineCount) {
    return (lineCount + mostLines) * lineSize;
}
constexpr std::size_t sizeOf(Word recordCount, Word formats, Word ownCount, Word lineCount) {
    return sizeOfShared(recordCount, formats) + ownCount * sizeOfOwn(lineCount);
}

// An open file and its first `size` bytes in memory, shared with whoever maps them too. Owns both.
class Mapping {
  public:
    enum class Access { read, write };

    // Takes over `descriptor`. Errors: RingError, with `path` in it; then the descriptor is closed.
    Mapping(int descriptor, std::string const& path, std::size_t size, Access access);
    ~Mapping();
    Mapping(Mapping const&) = delete;
    Mapping& operator=(Mapping const&) = delete;

    int descriptor() const noexcept { return descriptor_; }
    std::size_t size() const noexcept { return size_; }

    // The parts. Precondition: the mapping is as large as sizeOf() of the header's counts (of a
    // file of version 1, sizeOfShared(), and own() is not called).
    Header& header() const noexcept { return *static_cast<Header*>(address_); }
    FormatEntry* formats() const noexcept;
    Record* records() const noexcept;  // of the shared ring
    std::byte* own(std::size_t ring) const noexcept;

    // Closes the file and ends the lock of this process (not of one that forked it); the memory
    // stays.
    void close() noexcept;

  private:
    int descriptor_;
    int const process_;
    std::size_t const size_;
    void* address_;
};

// The lock by which a ring's writer shows that it lives. It ends with the writer, however that
// ends. Where the file system has no locks, there is never one.
void writerLockIs(int descriptor) noexcept;
bool hasWriterLock(int descriptor) noexcept;

}  // namespace RingFile
}  // namespace Trace
