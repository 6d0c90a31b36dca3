#include "Trace/RingLane.h"

#include <cstddef>
#include <utility>

namespace Trace {

using namespace RingFile;

bool RingWords::load(Record const& record, Word state) noexcept {
    ticks = record.ticks.load(std::memory_order_relaxed);
    shape = record.shape.load(std::memory_order_relaxed);
    Check check(state, ticks);
    check.addShape(shape);
    for (std::size_t at = 0; at < used(); ++at) {
        payload[at] = record.payload[at].load(std::memory_order_relaxed);
        check.add(at, payload[at]);
    }
    return record.check.load(std::memory_order_acquire) == check.sum();
}

// ---- The shared ring

SharedRingLane::SharedRingLane(Mapping const& file) noexcept
    : file_(file),
      records_(file.records()),
      count_(file.header().recordCount),
      known_(count_),
      position_(0) {}

Word SharedRingLane::newest() const noexcept {
    return file_.header().next.load(std::memory_order_acquire);
}

bool SharedRingLane::poll(std::string const& path) {
    auto const next = newest();
    if (next < count_ || next > positionLimit) {
        throw RingError(path + ": damaged: byte " + std::to_string(offsetof(Header, next)) +
                        ": expected a position behind the first, found " + std::to_string(next));
    }
    if (position_ == 0) {
        position_ = std::max(count_, next - count_);
        lost_ = position_ - count_;
    }
    auto const before = std::exchange(known_, std::max(known_, next));
    return known_ != before;
}

bool SharedRingLane::next(RingWords& to, bool passesOver) {
    while (position_ < known_) {
        switch (load(to)) {
            case Found::overwritten:
                skipOverwritten();
                break;
            case Found::damaged:
                ++damaged_;
                ++position_;
                break;
            case Found::unfinished:
                if (!passesOver && mayFinish()) {
                    return false;
                }
                ++position_;
                ++lost_;
                break;
            case Found::record:
                ++position_;
                return true;
        }
    }
    return false;
}

SharedRingLane::Found SharedRingLane::load(RingWords& to) const noexcept {
    auto const& record = records_[position_ & (count_ - 1)];
    auto const state = record.state.load(std::memory_order_acquire);
    if (state != position_) {
        return state > position_ ? Found::overwritten : Found::unfinished;
    }
    if (to.load(record, position_)) {
        return Found::record;
    }
    return isOvertaken(newest()) ? Found::overwritten : Found::damaged;
}

// Until the writers went on for half a ring.
bool SharedRingLane::mayFinish() const noexcept {
    return newest() - position_ <= count_ / 2 && hasWriterLock(file_.descriptor());
}

// Whether the writers have taken the place of the record to look at for another one.
bool SharedRingLane::isOvertaken(Word next) const noexcept {
    return next > position_ + count_ && next <= positionLimit;
}

// Goes on an eighth of the ring behind the oldest record, where the writers will not be for a
// while.
void SharedRingLane::skipOverwritten() noexcept {
    auto const before = position_;
    auto const next = newest();
    position_ = isOvertaken(next) ? next - count_ + count_ / 8 : position_ + 1;
    lost_ += position_ - before;
}

// ---- An own ring

OwnRingLane::OwnRingLane(Mapping const& file, std::size_t ring) noexcept
    : head_(file.header().own[ring]),
      lines_(file.own(ring)),
      headOffset_(offsetof(Header, own) + ring * sizeof(OwnHead)),
      count_(file.header().lineCount) {}

// The line that is read between two equal numbers is the one behind the record before that number,
// or behind the one that is being written.
bool OwnRingLane::poll(std::string const& path) {
    auto const first = head_.first.load(std::memory_order_relaxed);
    auto next = head_.next.load(std::memory_order_acquire);
    auto end = head_.end.load(std::memory_order_acquire);
    for (int tries = 0; tries < 100 && head_.next.load(std::memory_order_relaxed) != next;
         ++tries) {
        next = head_.next.load(std::memory_order_acquire);
        end = head_.end.load(std::memory_order_acquire);
    }
    if (first == 0 || next < first || next > positionLimit || end > positionLimit) {
        throw RingError(path + ": damaged: byte " + std::to_string(headOffset_) +
                        ": expected a number from " + std::to_string(first) + " on, found " +
                        std::to_string(next));
    }
    bool const isFirstPoll = known_ == 0;
    if (isFirstPoll) {
        number_ = first;
        line_ = end - std::min(end, count_);
    }
    auto const before = std::exchange(known_, std::max(known_, next));
    end_ = std::max(end_, end);
    if (isFirstPoll) {
        RingWords oldest;
        find(oldest);
    }
    return known_ != before;
}

bool OwnRingLane::next(RingWords& to, bool) {
    if (number_ >= known_) {
        return false;
    }
    if (!isInPlace_ || !load(number_, to)) {
        if (isInPlace_) {
            leaveLostPlace();
        }
        if (!find(to)) {
            return false;
        }
    }
    line_ += linesOf(to.used());
    ++number_;
    return true;
}

Record const& OwnRingLane::recordAt(Word line) const noexcept {
    return *reinterpret_cast<Record const*>(lines_ + (line & (count_ - 1)) * lineSize);
}

bool OwnRingLane::load(Word number, RingWords& to) const noexcept {
    auto const& record = recordAt(line_);
    return record.state.load(std::memory_order_acquire) == number && to.load(record, number);
}

// Where the record should be is something else: it was overwritten, or is damaged. If the writer
// came past, the reader goes on an eighth of the ring behind the oldest line.
void OwnRingLane::leaveLostPlace() noexcept {
    isInPlace_ = false;
    auto const end = head_.end.load(std::memory_order_acquire);
    if (end <= positionLimit && end + mostLines > line_ + count_) {
        line_ = end - count_ + count_ / 8;
        return;
    }
    ++damaged_;
    ++number_;
    ++line_;
}

// Whether the records behind the one at line_ are the next ones. They are not behind one that a
// writer has passed over: a record that begins in the ring's last lines ends behind them, and the
// lines at the ring's beginning then keep the whole records of the round before. Only a reader that
// has just come may take those for records that it has not read.
bool OwnRingLane::leadsOn(Word number) const noexcept {
    if (number_ != head_.first.load(std::memory_order_relaxed) || end_ <= count_) {
        return true;
    }
    RingWords words;
    Word at = line_;
    for (; number < known_ && at < line_ + 2 * mostLines; ++number) {
        auto const& record = recordAt(at);
        if (record.state.load(std::memory_order_acquire) != number) {
            return false;
        }
        static_cast<void>(words.load(record, number));
        at += linesOf(words.used());
    }
    return true;
}

// Looks for the next record from line_ on, line by line, and counts those between as lost.
bool OwnRingLane::find(RingWords& to) noexcept {
    auto const end = head_.end.load(std::memory_order_acquire);
    if (end <= positionLimit && end > line_ + count_) {
        line_ = end - count_ + count_ / 8;
    }
    for (; line_ < end_; ++line_) {
        auto const number = recordAt(line_).state.load(std::memory_order_relaxed);
        if (number >= number_ && number < known_ && load(number, to) && leadsOn(number)) {
            lost_ += number - number_;
            number_ = number;
            isInPlace_ = true;
            return true;
        }
    }
    lost_ += known_ - number_;
    number_ = known_;
    if (line_ == end_) {  // which may lie behind the first lines of a record that is not yet known
        line_ -= std::min(line_, Word{mostLines});
    }
    return false;
}

}  // namespace Trace
