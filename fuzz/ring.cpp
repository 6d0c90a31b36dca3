// A trace ring's file, of either version, as a crash or a bad disk may leave it. The first 72 bytes
// of an input are the header's. The next are the heads of the own rings, 24 bytes each, as many as
// the header says. The rest of the header is zeros, and what follows in the input follows in the
// file. A record's check is put right unless it is zero: random bytes never have a right one, and
// errors behind a right check would never be seen.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

#include "Target.h"
#include "Trace/RingReader.h"

namespace {

using Trace::RingFile::FormatEntry;
using Trace::RingFile::Header;
using Trace::RingFile::OwnHead;
using Trace::RingFile::Record;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t usedHeader = 72;

std::uint64_t word(Bytes const& content, std::size_t at) {
    std::uint64_t value = 0;
    std::memcpy(&value, content.data() + at, sizeof value);
    return value;
}

// What the header says of its rings. A file of version 1 has no own ones.
struct Rings {
    explicit Rings(Bytes const& content)
        : records(word(content, 8)),
          formats(word(content, 16)),
          own(isVersion1(content) ? 0 : word(content, 48)),
          lines(isVersion1(content) ? 0 : word(content, 56)) {}

    static bool isVersion1(Bytes const& content) { return content[7] == '1'; }

    std::uint64_t records;
    std::uint64_t formats;
    std::uint64_t own;
    std::uint64_t lines;
};

Bytes fileOf(std::uint8_t const* data, std::size_t size) {
    constexpr std::size_t usedHead = 24;
    Bytes content(data, data + std::min(size, usedHeader));
    if (size <= usedHeader) {
        return content;
    }
    content.resize(sizeof(Header));
    std::size_t at = usedHeader;
    auto const heads = std::min<std::uint64_t>(Rings(content).own, Trace::RingFile::mostOwnRings);
    for (std::size_t head = 0; head < heads && at < size; ++head) {
        auto const bytes = std::min(size - at, usedHead);
        std::memcpy(&content[offsetof(Header, own) + head * sizeof(OwnHead)], data + at, bytes);
        at += bytes;
    }
    content.insert(content.end(), data + at, data + size);
    return content;
}

// Whether the file is as long as its header says. If it were shorter, a reader would leave the
// mapping and might read another one there, which no sanitizer notices.
bool isWhole(Bytes const& content) {
    if (content.size() < sizeof(Header)) {
        return false;
    }
    Rings const rings(content);
    std::size_t room = content.size() - sizeof(Header);
    auto const holds = [&room](std::uint64_t count, std::size_t size) {
        bool const fits = count <= room / size;
        room -= fits ? count * size : 0;
        return fits;
    };
    constexpr std::size_t line = Trace::RingFile::lineSize;
    return holds(rings.records, sizeof(Record)) && holds(rings.formats, sizeof(FormatEntry)) &&
           (rings.own == 0 || (rings.lines <= room / line &&
                               holds(rings.own, Trace::RingFile::sizeOfOwn(rings.lines))));
}

void putCheckRight(Bytes& content, std::size_t record) {
    constexpr std::size_t check = 8;
    constexpr std::size_t payload = 32;
    if (word(content, record + check) == 0) {
        return;
    }
    std::uint64_t const shape = word(content, record + 24);
    Trace::RingFile::Check sum(word(content, record), word(content, record + 16));
    sum.addShape(shape);
    std::size_t const used = shape >> Trace::RingFile::formatBits & 31;
    for (std::size_t i = 0; i < std::min(used, Trace::RingFile::payloadWords); ++i) {
        sum.add(i, word(content, record + payload + 8 * i));
    }
    std::uint64_t const right = sum.sum();
    std::memcpy(content.data() + record + check, &right, sizeof right);
}

// Of an own ring's records the last first: the words of one may be the check of a line before it.
void putChecksRight(Bytes& content) {
    using namespace Trace::RingFile;
    Rings const rings(content);
    auto const records = sizeOfShared(0, rings.formats);
    for (std::uint64_t i = 0; i < rings.records; ++i) {
        putCheckRight(content, records + i * sizeof(Record));
    }
    auto const own = sizeOfShared(rings.records, rings.formats);
    for (std::uint64_t ring = 0; ring < rings.own; ++ring) {
        for (std::uint64_t line = rings.lines; line-- > 0;) {
            putCheckRight(content, own + ring * sizeOfOwn(rings.lines) + line * lineSize);
        }
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
        Fuzz::check(messages <= content.size() / Trace::RingFile::lineSize,
                    "a record is one message at most");
        static_cast<void>(reader.hasWriter());
    } catch (Trace::RingError const& error) {
        Fuzz::check(std::string_view(error.what()).starts_with(file.path() + ": "),
                    "an error names the file");
    }
    return 0;
}
