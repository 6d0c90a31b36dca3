// One record of the ring in its writer's own memory, before it goes to the file. Internal to Trace.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "Trace/RingFile.h"
#include "Trace/Value.h"

namespace Trace {

class RingRecord {
  public:
    // Encodes the values; see RingFile.h. Errors: what a value's writer throws.
    // Precondition: at most mostValues.
    explicit RingRecord(std::span<Value const> values);

    // The record's shape, but for the format's number in its low bits.
    RingFile::Word shape() const noexcept { return slots_ | used_ << RingFile::formatBits; }

    std::span<RingFile::Word const> payload() const noexcept { return {payload_.data(), used_}; }

  private:
    void addNumber(RingFile::Slot slot, RingFile::Word number) noexcept {
        addSlot(slot);
        payload_[used_++] = number;
    }
    void addSlot(RingFile::Slot slot) noexcept {
        slots_ |= static_cast<RingFile::Word>(slot) << slotShift_;
        slotShift_ += RingFile::slotBits;
    }
    void addText(std::string_view text, std::size_t valuesBehind) noexcept;
    void addWritten(Value const& value, std::size_t valuesBehind);

    RingFile::Word slots_ = 0;
    unsigned slotShift_ = RingFile::formatBits + RingFile::usedBits;
    std::size_t used_ = 0;
    std::array<RingFile::Word, RingFile::payloadWords> payload_;
};

inline RingRecord::RingRecord(std::span<Value const> values) {
    auto behind = values.size();
    for (auto const& value : values) {
        --behind;
        if (value.kind() < Value::Kind::text) {
            addNumber(static_cast<RingFile::Slot>(value.kind()), value.number());
        } else if (value.kind() == Value::Kind::text) {
            addText(value.characters(), behind);
        } else {
            addWritten(value, behind);
        }
    }
}

}  // namespace Trace
