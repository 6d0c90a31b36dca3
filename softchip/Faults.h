// Faults to order: failures that a test or a simulation demands of the chip.
//
//   - a call of an SDK function fails and does nothing (a deregistration takes effect all the same,
//     because its caller is about to be destroyed);
//   - a digest entry is lost, sent twice, or held back.
//
// Counters that stall or are reset: Generator.h. Phase-0 answers: Phase0Data.h.
// If no fault is in force, a query costs one load. Threads: any.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "softchip/Sdk.h"

namespace SoftChip {

// Which of a series of events a fault meets, counted from the moment it was ordered: the nth (1 is
// the next one) and those after it, `times` in all. With 0 times it meets none.
class FaultWindow {
  public:
    explicit FaultWindow(std::uint64_t nth = 1, std::uint64_t times = 1)
        : before_(nth > 0 ? nth - 1 : 0), times_(times) {}

    // Counts one event; true if the fault meets it.
    bool meets();
    bool over() const { return times_ == 0; }

  private:
    std::uint64_t before_;
    std::uint64_t times_;
};

// What becomes of a digest entry.
enum class DigestFate : std::uint8_t {
    sent,
    lost,
    doubled,  // sent twice
    held,     // sent after others, or when SoftChip::releaseHeld() is called
};

struct DigestFault {
    DigestFate fate = DigestFate::lost;
    // Of the entries with this packet id, or of all.
    std::optional<std::uint16_t> pktId = std::nullopt;
    std::uint64_t nth = 1;
    std::uint64_t times = 1;
    // For held ones: sent behind this many later entries; 0 holds until it is released.
    std::uint32_t behind = 0;
};

class Faults {
  public:
    // Of the calls of a function from now on, the nth and `times` in all return `status`, which is
    // not 0. Replaces what was ordered for the function; 0 times only cancels it.
    void failIs(SdkFunction function, p4_pd_status_t status, std::uint64_t nth = 1,
                std::uint64_t times = 1);

    // Adds a fault of digest entries. Each fault counts the entries with its packet id, or all
    // entries; if several meet an entry, the one ordered first decides.
    void digestIs(DigestFault const& fault);

    // No fault is in force any more. What is held stays held.
    void clear();

    // For the chip. Counts a call; returns the status to fail with, if it is to fail.
    std::optional<p4_pd_status_t> failure(SdkFunction function);
    // Counts a digest entry; returns the fault that applies to it, or none.
    std::optional<DigestFault> digest(std::uint16_t pktId);

  private:
    struct CallFault {
        FaultWindow window{1, 0};
        p4_pd_status_t status = 0;
    };
    struct DigestRule {
        DigestFault fault;
        FaultWindow window;
    };

    void noteForce();

    std::mutex mutex_;
    std::array<CallFault, SdkSeam::allSdkFunctions.size()> calls_;  // by function
    std::vector<DigestRule> digests_;  // as ordered; those that are over are removed
    std::atomic<bool> callsInForce_ = false;
    std::atomic<bool> digestsInForce_ = false;
};

}  // namespace SoftChip
