#include "softchip/Faults.h"

#include <algorithm>

namespace SoftChip {

bool FaultWindow::meets() {
    if (times_ == 0) {
        return false;
    }
    if (before_ > 0) {
        --before_;
        return false;
    }
    --times_;
    return true;
}

void Faults::failIs(SdkFunction function, p4_pd_status_t status, std::uint64_t nth,
                    std::uint64_t times) {
    std::lock_guard const lock(mutex_);
    calls_[static_cast<std::size_t>(function)] = {FaultWindow(nth, times), status};
    noteForce();
}

void Faults::digestIs(DigestFault const& fault) {
    std::lock_guard const lock(mutex_);
    digests_.push_back({fault, FaultWindow(fault.nth, fault.times)});
    noteForce();
}

void Faults::clear() {
    std::lock_guard const lock(mutex_);
    calls_ = {};
    digests_.clear();
    noteForce();
}

std::optional<p4_pd_status_t> Faults::failure(SdkFunction function) {
    if (!callsInForce_.load(std::memory_order_acquire)) {
        return std::nullopt;
    }
    std::lock_guard const lock(mutex_);
    auto& fault = calls_[static_cast<std::size_t>(function)];
    bool const fails = fault.window.meets();
    noteForce();
    return fails ? std::optional(fault.status) : std::nullopt;
}

std::optional<DigestFault> Faults::digest(std::uint16_t pktId) {
    if (!digestsInForce_.load(std::memory_order_acquire)) {
        return std::nullopt;
    }
    std::lock_guard const lock(mutex_);
    std::optional<DigestFault> decides;
    for (auto& rule : digests_) {
        bool const concerned = !rule.fault.pktId || *rule.fault.pktId == pktId;
        if (concerned && rule.window.meets() && !decides) {
            decides = rule.fault;
        }
    }
    noteForce();
    return decides;
}

// Updates the flags that the queries look at first, and forgets the digest faults that are over.
void Faults::noteForce() {
    std::erase_if(digests_, [](DigestRule const& rule) { return rule.window.over(); });
    callsInForce_.store(
        std::ranges::any_of(calls_, [](auto const& fault) { return !fault.window.over(); }),
        std::memory_order_release);
    digestsInForce_.store(!digests_.empty(), std::memory_order_release);
}

}  // namespace SoftChip
