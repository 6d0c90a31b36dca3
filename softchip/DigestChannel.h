// The chip's side of the trace digest: entries become messages, messages are handed to the
// registered callback and kept until they are acknowledged.
//
//   registration   left by
//   none           registerCallback() -> there
//   there          deregister() -> closing, or none if no callback runs
//   closing        the callback that runs returns -> none
//
// While closing, the callback that runs may still acknowledge, and no other one starts; so
// deregister() waits for one callback at most. A callback that deregisters itself does not wait.
//
//   message        left by
//   free           send() -> outstanding
//   outstanding    acknowledge(), or the end of the registration -> free
//
// A packet's digest is for the registration under which the packet was injected, and for no later
// one, whose packets may bear the same ids. At most `maxOutstanding` messages are outstanding;
// further entries wait for an acknowledgement. The lock is never held while a callback runs.
// Threads: registerCallback(), deregister() and registration() the event thread; acknowledge() and
// outstanding() any; the rest the chip's thread.
#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

#include "sdkseam/SdkCall.h"
#include "sdkseam/TraceDigest.h"
#include "softchip/Faults.h"
#include "softchip/Journal.h"

namespace SoftChip {

class DigestChannel {
  public:
    static constexpr std::size_t maxOutstanding = 64;

    // A registration by its number; none is 0.
    using RegistrationNumber = std::uint32_t;

    DigestChannel(std::uint8_t device, Faults& faults, Journal& journal)
        : device_(device), faults_(faults), journal_(journal) {}

    // Refuses a second registration.
    Status registerCallback(SdkSeam::DigestReceiver const& receiver);
    // Returns when no callback runs; none will run later. Messages that are outstanding then are
    // the chip's again. Refuses what is not registered.
    Status deregister();

    // The registration that digests of packets injected now are for.
    RegistrationNumber registration() const { return receiver_ ? registrations_ : 0; }

    // Gives a message back. Refuses one that is not outstanding. `resume` becomes true if entries
    // waited for a free message: send() then has something to do.
    Status acknowledge(pipe_flow_lrn_msg_t const* message, bool& resume);
    std::size_t outstanding() const;

    // Makes the digest of a packet ready, or does with it what a fault demands.
    void add(std::uint16_t pktId, Decision const& decision, RegistrationNumber registration);
    // Makes the digests ready that a fault holds back, in the order in which they were held.
    void releaseHeld();
    // Hands out what is ready, in as few messages as possible. Entries without a registered
    // receiver are dropped.
    void send();

  private:
    struct Message {
        pipe_flow_lrn_msg_t header{};
        std::array<SdkSeam::DigestEntry, SdkSeam::maxMessageEntries> entries{};
    };
    struct Ready {
        SdkSeam::TraceDigest digest;
        RegistrationNumber registration;
    };
    struct Held {
        Ready ready;
        std::uint32_t behind;  // later entries to wait for; 0: until released
    };
    using Digests = std::span<Ready const>;

    void overtakeHeld();
    std::size_t sendSome(Digests digests);
    void call(SdkSeam::DigestReceiver const& receiver, pipe_flow_lrn_msg_t* message);
    pipe_flow_lrn_msg_t* fill(Digests digests);
    void drop(Digests digests);
    void note(JournalEntry::Kind kind, std::uint16_t pktId);

    std::uint8_t const device_;
    Faults& faults_;
    Journal& journal_;

    std::vector<Ready> ready_;  // used by the chip's thread alone, as held_ is
    std::vector<Held> held_;    // in the order in which they were held

    mutable std::mutex mutex_;
    std::condition_variable callbackEnded_;
    bool closing_ = false;
    std::optional<std::thread::id> running_;  // the thread that is inside the callback
    std::list<Message> outstanding_;          // in the order of sending
    std::list<Message> free_;
    bool starved_ = false;  // entries wait for an acknowledgement
    // Changed by the event thread alone, which reads them for every packet; on cache lines other
    // than those that the chip's thread changes for every message.
    alignas(64) SdkSeam::DigestReceiver receiver_;
    RegistrationNumber registrations_ = 0;
};

}  // namespace SoftChip
