// A client of the tracer: it puts requests into its directory entries as any client would, waits
// for their results, withdraws them, and says of each how its trace ended.
//
//   outcome         state  when
//   refused           2    the tracer cannot trace such a packet, or it cannot be built
//   unknownIngress    3    the ingress interface has no port information
//   dropped           3    the chip dropped the packet
//   flooded           4    the packet went to the members of its VLAN
//   forwarded         4    the packet went to one egress port
//   noEgressPort      3    the packet went to a port or VLAN that the switch does not know, or the
//                          flood had nowhere to go
//   noAnswer          -    no result within the limit
//
// The state alone does not tell them apart; the tracer's own status entry does.
//
// A request is late when its limit has passed since the latest of its own addition, the previous
// answer and the previous withdrawal of a late request; of requests that are not injected yet only
// the first can be late, because the others wait for it. A late one is withdrawn, and the others go
// on. Time is handed in, so tests move it by hand. Thread: the event thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "PacketTracer/ClientConfig.h"
#include "PacketTracer/ClientStatus.h"
#include "PacketTracer/ResultEntry.h"
#include "Vanta/Publisher.h"
#include "agent/ForwardingAgent.h"

namespace Agent {

enum class Outcome : std::uint8_t {
    refused,
    unknownIngress,
    dropped,
    flooded,
    forwarded,
    noEgressPort,
    noAnswer,
};

// "refused", "unknown ingress", ..., in words that no two of them share.
std::string_view text(Outcome outcome) noexcept;

// What the tracer's answer says of the injection.
struct Injection {
    Vanta::Bytes frame;  // as injected
    std::uint16_t pktId = 0;
    std::uint16_t egressPort = 0;  // a device port; PortIndex::invalid for none
    std::uint16_t l2Domain = 0;
    bool routed = false;
    bool copyToCpu = false;
    bool dropped = false;
};

struct Answer {
    std::uint32_t number = 0;  // of the request
    Outcome outcome = Outcome::noAnswer;
    std::optional<PacketTracer::State> state;  // none without a result
    std::vector<PacketTracer::ResultEntry> egress;

    std::optional<Injection> injection;  // none if there was none
};

class TraceClient {
  public:
    using Clock = std::chrono::steady_clock;
    using Now = std::function<Clock::time_point()>;

    // A client of that name, which no other has. `limit` is how long an answer may take.
    TraceClient(ForwardingAgent& agent, Vanta::String name, Clock::duration limit,
                Now now = Clock::now);
    TraceClient(TraceClient const&) = delete;
    TraceClient& operator=(TraceClient const&) = delete;
    // Withdraws what is still waiting, and removes the client.
    ~TraceClient();

    // A request of this client's with the next number, not yet added and not valid.
    Vanta::Ptr<PacketTracer::Request> request();

    // Declares a request valid and adds it. Requests are added in the order of their numbers.
    void add(Vanta::Ptr<PacketTracer::Request> const& request);

    // Requests that were added and are neither answered nor late.
    std::size_t waiting() const noexcept { return waiting_.size(); }

    // Takes the next answer, which withdraws its request, or the next request that is late. If
    // there is neither yet, turns the loop once, waiting no longer than `maxWait` and the next
    // limit; returns nothing if there is still neither then. No request is late before the loop was
    // turned past its limit.
    std::optional<Answer> poll(Clock::duration maxWait);

    // To be called after an answer was dealt with, during which the loop stood still: limits count
    // from now.
    void answerDelivered() { lastEvent_ = now_(); }

  private:
    struct Waiting;

    void resultChanged(Vanta::Change const& change);
    Waiting* find(std::uint32_t number) noexcept;
    PacketTracer::RequestId idOf(std::uint32_t number) const { return {name_, number}; }
    Clock::duration untilFirstLimit() const;
    std::optional<Answer> takeAnswer();
    Answer takeLate();
    std::optional<Injection> injectionOf(PacketTracer::RequestId const& id) const;
    void withdraw(std::uint32_t number);

    ForwardingAgent& agent_;
    Vanta::String const name_;
    Clock::duration const limit_;
    Now const now_;
    Vanta::Ptr<PacketTracer::ClientConfig> config_;
    Vanta::Ptr<PacketTracer::ClientStatus> status_;
    Vanta::Subscriber statusSubscriber_;
    std::uint32_t lastNumber_ = 0;
    Clock::time_point lastEvent_;                   // the latest answer or withdrawal of a late one
    std::deque<std::unique_ptr<Waiting>> waiting_;  // in the order of their numbers
    std::deque<std::uint32_t> answered_;            // in the order of the answers
};

}  // namespace Agent
