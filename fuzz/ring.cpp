// A trace ring's file, as a crash or a bad disk may leave it. The first 72 bytes of an input are
// the header's; the rest of the header is zeros, and what follows in the input follows in the file.
#include <algorithm>
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

}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Fuzz::File const file("ring");
    auto const content = fileOf(data, size);
    file.contentIs(content.data(), content.size());
    try {
        Trace::RingReader reader(file.path());
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
