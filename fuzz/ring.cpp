// A trace ring's file, as a crash or a bad disk may leave it. The first 72 bytes of an input are
// the header's; the rest of the header is zeros, and what follows in the input follows in the file.
#include <algorithm>
#include <cstring>
#include <vector>

#include "Target.h"
#include "Trace/RingReader.h"

namespace {

constexpr std::size_t usedHeader = 72;

std::vector<std::uint8_t> fileOf(std::uint8_t const* data, std::size_t size) {
    std::vector<std::uint8_t> content(data, data + std::min(size, usedHeader));
    if (size > usedHeader) {
        content.resize(sizeof(Trace::RingFile::Header));
        content.insert(content.end(), data + usedHeader, data + size);
    }
    return content;
}

// The file holds what its header says. Were it shorter, a reader would leave the mapping, where
// another one may lie that no sanitizer minds.
bool isWhole(std::vector<std::uint8_t> const& content) {
    auto const word = [&](std::size_t at) {
        std::uint64_t value = 0;
        std::memcpy(&value, content.data() + at, sizeof value);
        return value;
    };
    if (content.size() < sizeof(Trace::RingFile::Header)) {
        return false;
    }
    std::size_t const room = content.size() - sizeof(Trace::RingFile::Header);
    std::uint64_t const records = word(8);
    std::uint64_t const formats = word(16);
    return records <= room / sizeof(Trace::RingFile::Record) &&
           formats <= room / sizeof(Trace::RingFile::FormatEntry) &&
           records * sizeof(Trace::RingFile::Record) +
                   formats * sizeof(Trace::RingFile::FormatEntry) <=
               room;
}

}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Fuzz::File const file("ring");
    auto const content = fileOf(data, size);
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
        Fuzz::check(messages <= content.size() / sizeof(Trace::RingFile::Record),
                    "a record is one message at most");
        static_cast<void>(reader.hasWriter());
    } catch (Trace::RingError const& error) {
        Fuzz::check(std::string_view(error.what()).starts_with(file.path() + ": "),
                    "an error names the file");
    }
    return 0;
}
