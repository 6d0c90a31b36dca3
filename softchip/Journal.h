// What the chip did: every call with its arguments and result, every packet, every digest.
//
// Entries are numbered in the order in which they were written; both threads take their numbers
// from the same sequence, and a cause has a lower number than its effect. The newest `limit` calls
// of the event thread are kept, and the newest `limit` entries of the chip's thread; `unlimited`
// keeps all. The counters include entries that are no longer kept. Once the limit is reached
// nothing is allocated any more.
// Threads: any; the two writers do not get in each other's way.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <limits>
#include <mutex>
#include <string>
#include <vector>

#include "softchip/Pipeline.h"
#include "softchip/Sdk.h"

namespace SoftChip {

struct JournalEntry {
    enum class Kind : std::uint8_t {
        call,               // an SDK function: the arguments it has, and its result
        tableChange,        // a command of the agent was carried out
        injection,          // a packet went through the pipeline
        digestMessage,      // a message is handed to its receiver
        digestLost,         // a fault took the digest of a packet away,
        digestDoubled,      // ... sends it twice,
        digestHeld,         // ... or holds it back
        digestUndelivered,  // nobody is registered for it
    };

    std::uint64_t number = 0;
    Kind kind = Kind::call;
    SdkFunction function = SdkFunction::getPktCounters;  // calls
    std::uint8_t portIndex = 0;                          // genOnePkt
    std::uint16_t pktId = 0;                             // genOnePkt, injection, digest...
    p4_pd_status_t result = 0;                           // calls
    p4_pd_sess_hdl_t session = 0;                        // calls
    std::uint32_t pipe = 0;                              // calls about a pipe, injection
    std::uint32_t appId = 0;                             // getPktCounters, genOnePkt, disableAppId
    std::uint32_t genPort = 0;                           // genOnePkt, disablePktGen
    std::uint32_t handle = 0;                            // calls about digests
    std::uint32_t pktBytes = 0;                          // genOnePkt, injection
    std::uint32_t phase0Bytes = 0;                       // genOnePkt
    std::uint32_t entries = 0;                           // digestMessage
    std::uint64_t count = 0;                             // getPktCounters
    Decision decision{};                                 // injection

    // A call as it is now.
    static JournalEntry of(SdkSeam::SdkCall const& call);

    // One line: "genOnePkt session 1 pipe 0 ... -> 0".
    std::string text() const;
};

struct Counters {
    static constexpr std::size_t functionCount = SdkSeam::allSdkFunctions.size();

    std::array<std::uint64_t, functionCount> calls{};  // by function
    std::array<std::uint64_t, functionCount>
        failures{};                                   // of those, the ones that did not return 0
    std::array<std::uint64_t, pipeCount> injected{};  // packets, by pipe
    std::uint64_t tableChanges = 0;
    std::uint64_t digestMessages = 0;
    std::uint64_t digestsSent = 0;  // entries in messages
    std::uint64_t digestsLost = 0;  // by faults, as the next two
    std::uint64_t digestsDoubled = 0;
    std::uint64_t digestsHeld = 0;
    std::uint64_t digestsUndelivered = 0;

    std::uint64_t callsOf(SdkFunction function) const {
        return calls[static_cast<std::size_t>(function)];
    }
    std::uint64_t failuresOf(SdkFunction function) const {
        return failures[static_cast<std::size_t>(function)];
    }
};

class Journal {
  public:
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();
    // Few enough that what is written for every packet stays in the processor's caches.
    static constexpr std::size_t defaultLimit = 1024;

    explicit Journal(std::size_t limit = defaultLimit);

    // Numbers the entry, updates the counters and keeps it.
    void add(JournalEntry entry);

    // The entries that are kept, by number.
    std::vector<JournalEntry> entries() const;
    Counters counters() const;

  private:
    // The entries of one writer: a ring once the limit is reached, with the oldest at `oldest`.
    // Memory for a limited number is reserved from the beginning; the system provides its pages
    // when they are used.
    struct alignas(64) Lane {
        mutable std::mutex mutex;
        std::vector<JournalEntry> entries;
        std::size_t oldest = 0;
        Counters counters;
    };

    Lane& laneOf(JournalEntry const& entry);
    static void count(Counters& counters, JournalEntry const& entry);

    std::size_t limit_;
    alignas(64) std::atomic<std::uint64_t> numbers_ = 0;  // both writers change it
    Lane calls_;
    Lane chip_;
};

}  // namespace SoftChip
