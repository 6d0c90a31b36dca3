// The floor of a trace: a program that makes every hand-off of a trace and nothing else.
//
//   - the phase-0 answer, a turn of the loop after it was asked for;
//   - the packet, through a queue with a lock to a thread of its own, which looks for work for some
//     ten microseconds before it sleeps;
//   - the counter, which is looked at once a turn until it moves;
//   - the digests that are ready together, in one message: one send, a header and the entries, and
//     two reads when the loop finds the socket readable.
//
// The loop polls as the tracer's does: 200 turns that only waited do not block, then 50 us doubling
// to 1 ms. A trace also costs four insertions into maps, which its withdrawal takes back, and 25
// records in a ring, if asked for.
//
// Threads: the event thread, except for the chip's own.
#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <unordered_map>
#include <vector>

#include "bench/BareRing.h"

namespace Bench {

class BareTracer {
  public:
    // Whether traces are also kept in maps and written to a ring.
    enum class Books : std::uint8_t { none, kept };

    // Which thread does the chip's work: one of its own, or the event thread before each turn.
    enum class Chip : std::uint8_t { threaded, stepwise };

    BareTracer(Books books, unsigned inFlight, Chip chip = Chip::threaded);
    ~BareTracer();
    BareTracer(BareTracer const&) = delete;
    BareTracer& operator=(BareTracer const&) = delete;

    // Takes an answer, turning the loop until there is one. Withdraws the request and adds another
    // one instead.
    void next();

  private:
    using Number = std::uint64_t;
    using Map = std::unordered_map<Number, std::array<std::uint8_t, 64>>;
    enum class State : std::uint8_t { idle, waitPhase0, phase0Ready, waitSent, reset };

    struct Packet {
        std::uint16_t pktId;
        std::array<std::uint8_t, 72> bytes;
    };
    struct __attribute__((packed)) Entry {
        std::uint16_t pktId;
        std::array<std::uint8_t, 7> fields;
    };
    struct __attribute__((packed)) Header {
        std::array<std::uint8_t, 8> device;
        std::uint16_t entries;
    };

    void add();
    void withdraw(Number number);
    void turn();
    void wait();
    void readDigests();
    void work();
    bool step();
    void send();
    void trace(unsigned records);

    void runChip();
    bool takePackets();
    void stepChip();
    void emitDigests();

    Books const books_;
    Chip const chip_;
    BareRing ring_;
    std::array<Map, 4> maps_;
    Number lastNumber_ = 0;
    std::deque<Number> pending_;
    std::deque<Number> answered_;
    std::array<Number, 65536> injected_{};  // by packet id

    State state_ = State::idle;
    Number current_ = 0;
    std::uint16_t pktId_ = 0;
    std::uint64_t counterBefore_ = 0;
    bool phase0Asked_ = false;  // answered in the next turn
    bool scheduled_ = false;
    bool progress_ = false;
    unsigned waitingTurns_ = 0;
    bool readable_ = false;
    int wakeDescriptor_;
    std::array<int, 2> sockets_{};

    std::mutex mutex_;
    std::condition_variable toDo_;
    std::vector<Packet> pushed_;
    std::vector<Packet> taken_;
    bool stopped_ = false;
    bool sleeping_ = false;
    alignas(64) std::atomic<bool> hint_ = false;
    alignas(64) std::atomic<std::uint64_t> counter_ = 0;
    std::thread thread_;
};

}  // namespace Bench
