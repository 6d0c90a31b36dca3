// A trace ring's file, as a crash or a bad disk may leave it. The first 72 bytes of an input are
// the header's; the rest of the header is zeros, and what follows in the input follows in the file.
// A record's check is put right unless it is zero: random bytes never have a right one, and errors
// behind a right check would never be seen.
#include <algorithm>
#include <cstring>
#include <vector>

#include "Target.h"
#include "Trace/RingReader.h"

namespace {

using Trace::RingFile::FormatEntry;
using Trace::RingFile::Header;
using Trace::RingFile::Record;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t usedHeader = 72;

std::uint64_t word(Bytes const& content, std::size_t at) {
    std::uint64_t value = 0;
    std::memcpy(&value, content.data() + at, sizeof value);
    return value;
}

Bytes fileOf(std::uint8_t const* data, std::size_t size) {
    Bytes content(data, data + std::min(size, usedHeader));
    if (size > usedHeader) {
        content.resize(sizeof(Header));
        content.insert(content.end(), data + usedHeader, data + size);
    }
    return content;
}

// Whether the file is as long as its header says. If it were shorter, a reader would leave the
// mapping and might read another one there, which no sanitizer notices.
bool isWhole(Bytes const& content) {
    if (content.size() < sizeof(Header)) {
        return false;
    }
    std::size_t const room = content.size() - sizeof(Header);
    std::uint64_t const records = word(content, 8);
    std::uint64_t const formats = word(content, 16);
    return records <= room / sizeof(Record) && formats <= room / sizeof(FormatEntry) &&
           records * sizeof(Record) + formats * sizeof(FormatEntry) <= room;
}

void putCheckRight(Bytes& content, std::size_t record) {
    constexpr std::size_t check = 8;
    constexpr std::size_t payload = 32;
    if (word(content, record + check) == 0) {
        return;
    }
    std::uint64_t const shape = word(content, record + 24);
    Trace::RingFile::Check sum(word(content, record), word(content, record + 16), shape);
    std::size_t const used = shape >> Trace::RingFile::formatBits & 31;
    for (std::size_t i = 0; i < std::min(used, Trace::RingFile::payloadWords); ++i) {
        sum.add(i, word(content, record + payload + 8 * i));
    }
    std::uint64_t const right = sum.sum();
    std::memcpy(content.data() + record + check, &right, sizeof right);
}

void putChecksRight(Bytes& content) {
    std::size_t const records = sizeof(Header) + word(content, 16) * sizeof(FormatEntry);
    for (std::uint64_t i = 0; i < word(content, 8); ++i) {
        putCheckRight(content, records + i * sizeof(Record));
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Fuzz::File const file("ring");
    auto content = fileOf(data, size);
    if (isWhole(content)) {
        putChecksRight(content);
    }
    file.contentIs(content.data(), content.size());
    try {
        Trace::RingReader reader(file.path());
        Fuzz::check(isWhole(content), "a file that is cut off is refused");
        std::uint64_t messages = 0;
        for (int round = 0; round < 2; ++round) {
            while (auto const message = reader.next(Trace::RingReader::Unfinished::passOver)) {
                Fuzz::check(message->level <= Trace::highestLevel, "a level is a level");
                ++messages;
            }
            reader.poll();
        }
        Fuzz::check(messages <= content.size() / sizeof(Record), "a record is one message at most");
        static_cast<void>(reader.hasWriter());
    } catch (Trace::RingError const& error) {
        Fuzz::check(std::string_view(error.what()).starts_with(file.path() + ": "),
                    "an error names the file");
    }
    return 0;
}
