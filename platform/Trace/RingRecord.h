// One record of the ring in its writer's own memory, before it goes to the file. Internal to Trace.
#pragma once

#include <array>
#include <span>

#include "Trace/RingFile.h"
#include "Trace/Value.h"

namespace Trace {

class RingRecord {
  public:
    // Encodes the values; see RingFile.h. Errors: what a value's writer throws.
    // Precondition: at most mostValues.
    explicit RingRecord(std::span<Value const> values);

    // The record's shape, but for the format's number in its low bits.
    RingFile::Word shape() const noexcept { return shape_; }

    std::span<RingFile::Word const> payload() const noexcept { return {payload_.data(), used_}; }

  private:
    // Puts a text or written value at `at`, leaves `valuesBehind` words free, and returns how many
    // words it took.
    std::size_t putText(Value const& value, std::size_t at, std::size_t valuesBehind);

    RingFile::Word shape_;
    std::size_t used_;
    std::array<RingFile::Word, RingFile::payloadWords> payload_;
};

// Inline and with its counters in local variables: every statement passes here.
inline RingRecord::RingRecord(std::span<Value const> values) {
    using namespace RingFile;
    Word slots = 0;
    unsigned shift = formatBits + usedBits;
    std::size_t used = 0;
    auto behind = values.size();
    for (auto const& value : values) {
        --behind;
        auto slot = static_cast<Slot>(value.kind());
        if (slot < Slot::text) {
            payload_[used++] = value.number();
        } else {
            slot = Slot::text;
            used += putText(value, used, behind);
        }
        slots |= static_cast<Word>(slot) << shift;
        shift += slotBits;
    }
    used_ = used;
    shape_ = slots | used << formatBits;
}

}  // namespace Trace
