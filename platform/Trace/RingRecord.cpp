#include "Trace/RingRecord.h"

#include <algorithm>
#include <cstring>

namespace Trace {

using RingFile::Slot;
using RingFile::Word;

namespace {

// The longest beginning of `text` within `room` that does not end inside a character.
std::size_t cutLength(std::string_view text, std::size_t room) noexcept {
    auto length = room;
    while (length > 0 && room - length < 3 && (text[length] & 0xc0) == 0x80) {
        --length;
    }
    return length;
}

}  // namespace

void RingRecord::addText(std::string_view text, std::size_t valuesBehind) noexcept {
    addSlot(Slot::text);
    auto const free = (payload_.size() - used_ - valuesBehind) * sizeof(Word) - 1;
    auto const room = std::min(free, RingFile::longestText);
    bool const isCut = text.size() > room;
    auto const length = isCut ? cutLength(text, room) : text.size();
    auto const words = length / sizeof(Word) + 1;
    payload_[used_ + words - 1] = 0;
    auto* const bytes = reinterpret_cast<unsigned char*>(&payload_[used_]);
    bytes[0] = static_cast<unsigned char>(length | (isCut ? RingFile::cutText : 0));
    std::copy_n(text.data(), length, bytes + 1);
    used_ += words;
}

void RingRecord::addWritten(Value const& value, std::size_t valuesBehind) {
    std::array<char, Value::writtenRoom> room;
    addText({room.data(), value.writeTo(room.data(), room.size())}, valuesBehind);
}

}  // namespace Trace
