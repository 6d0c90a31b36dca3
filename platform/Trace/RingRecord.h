// How a statement's values become the words of a ring record. Internal to Trace.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <span>
#include <string_view>

#include "Trace/RingFile.h"
#include "Trace/Value.h"

namespace Trace {

// How much of a record's payload is there, and the check so far. Two words, which functions take and
// return in registers.
struct RingProgress {
    RingFile::Check check;
    std::size_t used = 0;
};

// Encodes values as RingFile.h says, and hands each word of the payload to `Place`: something of one
// pointer's size, with put(RingProgress&, Word). Every statement passes here.
template <class Place>
class RingEncoder {
  public:
    RingEncoder(Place place, RingFile::Check check) noexcept : place_(place), progress_{check} {}

    RingProgress progress() const noexcept { return progress_; }

    // Returns the record's shape, but for the format's number in its low bits. Errors: what a value's
    // writer throws. Precondition: at most mostValues; called once.
    [[gnu::always_inline]] RingFile::Word encode(std::span<Value const> values) {
        using namespace RingFile;
        Word slots = 0;
        unsigned shift = formatBits + usedBits;
        auto behind = values.size();
        for (auto const& value : values) {
            --behind;
            auto slot = static_cast<Slot>(value.kind());
            if (slot < Slot::text) [[likely]] {
                place_.put(progress_, value.number());
            } else {
                slot = Slot::text;
                progress_ =
                    withText(place_, progress_, value, payloadWords - progress_.used - behind);
            }
            slots |= static_cast<Word>(slot) << shift;
            shift += slotBits;
        }
        return slots | progress_.used << formatBits;
    }

  private:
    static_assert(std::endian::native == std::endian::little, "a text's first byte is the lowest");

    [[gnu::noinline]] static RingProgress withText(Place place, RingProgress progress,
                                                   Value const& value, std::size_t freeWords) {
        if (value.kind() == Value::Kind::text) [[likely]] {
            return withCharacters(place, progress, value.characters(), freeWords);
        }
        std::array<char, Value::writtenRoom> room;
        auto const size = value.writeTo(room.data(), room.size());
        return withCharacters(place, progress, {room.data(), size}, freeWords);
    }

    static RingProgress withCharacters(Place place, RingProgress progress, std::string_view text,
                                       std::size_t freeWords) noexcept {
        auto const room = std::min(freeWords * sizeof(RingFile::Word) - 1, RingFile::longestText);
        RingFile::Word length = text.size();
        if (text.size() > room) [[unlikely]] {
            text = text.substr(0, cutLength(text, room));
            length = text.size() | RingFile::cutText;
        }
        auto const inFirst = std::min(text.size(), sizeof(RingFile::Word) - 1);
        place.put(progress, length | beginOf(text, inFirst) << 8);
        text.remove_prefix(inFirst);
        for (; text.size() >= sizeof(RingFile::Word); text.remove_prefix(sizeof(RingFile::Word))) {
            place.put(progress, loaded<RingFile::Word>(text.data()));
        }
        if (!text.empty()) {
            place.put(progress, beginOf(text, text.size()));
        }
        return progress;
    }

    // The longest beginning of `text` within `room` that does not end inside a character.
    static std::size_t cutLength(std::string_view text, std::size_t room) noexcept {
        auto length = room;
        while (length > 0 && room - length < 3 && (text[length] & 0xc0) == 0x80) {
            --length;
        }
        return length;
    }

    template <class T>
    static T loaded(char const* from) noexcept {
        T value;
        std::memcpy(&value, from, sizeof value);
        return value;
    }

    // The first `size` characters, fewer than 8, in the low bytes, by loads that may overlap:
    // nothing behind them is read, and no function is called.
    static RingFile::Word beginOf(std::string_view text, std::size_t size) noexcept {
        auto const* const from = text.data();
        if (size >= 4) {
            return loaded<std::uint32_t>(from) |
                   RingFile::Word{loaded<std::uint32_t>(from + size - 4)} << 8 * (size - 4);
        }
        if (size >= 2) {
            return loaded<std::uint16_t>(from) |
                   RingFile::Word{loaded<std::uint16_t>(from + size - 2)} << 8 * (size - 2);
        }
        return size == 1 ? loaded<unsigned char>(from) : 0;
    }

    Place const place_;
    RingProgress progress_;
};

}  // namespace Trace
