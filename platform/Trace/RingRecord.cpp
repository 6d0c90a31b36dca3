#include "Trace/RingRecord.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace Trace {

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

// Writes the text, cut to `freeWords`, and returns how many words it took.
std::size_t encodeText(std::string_view text, Word* to, std::size_t freeWords) noexcept {
    auto const room = std::min(freeWords * sizeof(Word) - 1, RingFile::longestText);
    bool const isCut = text.size() > room;
    auto const length = isCut ? cutLength(text, room) : text.size();
    auto const words = length / sizeof(Word) + 1;
    to[words - 1] = 0;
    auto* const bytes = reinterpret_cast<unsigned char*>(to);
    bytes[0] = static_cast<unsigned char>(length | (isCut ? RingFile::cutText : 0));
    std::memcpy(bytes + 1, text.data(), length);
    return words;
}

}  // namespace

std::size_t RingRecord::putText(Value const& value, std::size_t at, std::size_t valuesBehind) {
    auto const freeWords = payload_.size() - at - valuesBehind;
    if (value.kind() == Value::Kind::text) {
        return encodeText(value.characters(), &payload_[at], freeWords);
    }
    std::array<char, Value::writtenRoom> room;
    auto const length = value.writeTo(room.data(), room.size());
    return encodeText({room.data(), length}, &payload_[at], freeWords);
}

}  // namespace Trace
