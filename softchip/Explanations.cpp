#include "softchip/Explanations.h"

namespace SoftChip {

void Explanations::onIs(bool on) {
    std::lock_guard const lock(mutex_);
    on_ = on;
    if (on) {
        kept_.reserve(capacity);
    } else {
        kept_.clear();
        next_ = 0;
    }
}

void Explanations::add(std::uint16_t pktId, Explanation const& explanation) {
    std::lock_guard const lock(mutex_);
    if (!on()) {
        return;
    }
    if (kept_.size() < capacity) {
        kept_.push_back({pktId, explanation});
    } else {
        kept_[next_].pktId = pktId;
        kept_[next_].explanation = explanation;
    }
    next_ = (next_ + 1) % capacity;
}

std::optional<Explanation> Explanations::find(std::uint16_t pktId) const {
    std::lock_guard const lock(mutex_);
    for (std::size_t age = 0; age < kept_.size(); ++age) {
        auto const& kept = kept_[(next_ + capacity - 1 - age) % capacity];
        if (kept.pktId == pktId) {
            return kept.explanation;
        }
    }
    return std::nullopt;
}

}  // namespace SoftChip
