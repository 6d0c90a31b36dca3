// The ways that packets took through the pipeline, by packet id.
//
// While switched off nothing is explained and nothing is kept. While on, the newest `capacity` are
// kept; room for them is made when it is switched on. Threads: any.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "softchip/Explanation.h"

namespace SoftChip {

class Explanations {
  public:
    static constexpr std::size_t capacity = 1024;

    // Packets that enter the pipeline from now on are explained, or no longer. Switching off
    // forgets what is kept.
    void onIs(bool on);
    bool on() const noexcept { return on_.load(std::memory_order_relaxed); }

    // Keeps the explanation of a packet; without effect while switched off.
    void add(std::uint16_t pktId, Explanation const& explanation);
    // The explanation of the newest packet with this id.
    std::optional<Explanation> find(std::uint16_t pktId) const;

  private:
    struct Kept {
        std::uint16_t pktId;
        Explanation explanation;
    };

    std::atomic<bool> on_ = false;
    mutable std::mutex mutex_;
    std::vector<Kept> kept_;  // a ring once it is full, with the next to be replaced at next_
    std::size_t next_ = 0;
};

}  // namespace SoftChip
