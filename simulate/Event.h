// The outside events of a run, one a step: an event of a scenario, or one that scenarios do not
// have.
//
// A program is drawn whole before it runs, so that events can be left out of it and the rest can
// still be run: an event that makes no sense when its turn comes (the withdrawal of a request that
// is not there, say) is skipped.
//
// Clients. Each name has one configuration and one status object in hand, which events about
// requests concern whether or not the directories have them.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "scenario/Event.h"
#include "sdkseam/SdkCall.h"
#include "sdkseam/TraceDigest.h"
#include "softchip/Faults.h"

namespace Simulate {

namespace Do = Scenario::Do;
using Bytes = std::vector<std::uint8_t>;

inline constexpr unsigned clientCount = 5;

// Which of a series of occurrences a fault meets: the nth from now on and those after it, `times`
// in all.
struct Window {
    std::uint64_t nth = 1;
    std::uint64_t times = 1;
};

// ---- Clients

// The object in hand goes into its directory again.
struct ConfigReturns {
    Vanta::String client;
};
struct StatusReturns {
    Vanta::String client;
};
// The client withdraws each of its requests.
struct RequestDelAll {
    Vanta::String client;
};

// ---- Time, and the chip

// So many turns; with `chipWorks` the chip does its work after each.
struct Turns {
    std::uint64_t times = 1;
    bool chipWorks = false;
};
struct ChipStep {};
struct ChipPortUp {
    std::uint16_t devicePort = 0;
    bool up = true;
};

// ---- Faults

struct CallFails {
    SdkSeam::SdkFunction call{};
    Window window;
    std::int32_t rc = 0;
};
struct Phase0Late {
    std::uint32_t turns = 0;
    Window window;
};
struct Phase0Lost {
    Window window;
};
struct Phase0Status {
    std::uint32_t status = 0;
    Window window;
};
// Somebody else asks for phase-0 data, so that an answer for another interface comes, or withdraws
// that request.
struct Phase0Ask {
    Plexa::IntfId intf;
};
struct Phase0Drop {
    Plexa::IntfId intf;
};
// A pipe's counter stands still, or goes on.
struct Stall {
    std::uint8_t pipe = 0;
    bool stalled = true;
};
// What a pipe's counter reads from now on, before it counts on.
struct CounterStarts {
    std::uint8_t pipe = 0;
    std::uint64_t count = 0;
};
struct DigestsSuffer {
    SoftChip::DigestFate fate{};
    Window window;
    std::uint32_t behind = 0;  // held ones are sent behind so many later ones
};
struct ReleaseHeld {};
// A learn message from nowhere. The packet ids of its entries are counted back from the engine's
// newest one; a number above 60000 gives an id that no packet has.
struct Forge {
    std::vector<SdkSeam::TraceDigest> entries;
};
// Bytes that the digest socket holds unread before it is full.
struct Room {
    std::uint64_t bytes = 0;
};
// No fault is in force any more.
struct FaultsEnd {};

using Event =
    std::variant<Scenario::Event, ConfigReturns, StatusReturns, RequestDelAll, Turns, ChipStep,
                 ChipPortUp, CallFails, Phase0Late, Phase0Lost, Phase0Status, Phase0Ask, Phase0Drop,
                 Stall, CounterStarts, DigestsSuffer, ReleaseHeld, Forge, Room, FaultsEnd>;

// The event of a scenario as that kind; null for any other event.
template <class T>
T const* scenarioEvent(Event const& event) {
    auto const* const known = std::get_if<Scenario::Event>(&event);
    return known != nullptr ? std::get_if<T>(known) : nullptr;
}

// A client's name by its number: "A", "B", ... and a request of it.
std::string clientName(unsigned client);
PacketTracer::RequestId requestId(unsigned client, std::uint32_t req);

// One line for people, as a scenario has it or would: {"do":"stall","pipe":2,"stalled":true}.
std::string text(Event const& event);

}  // namespace Simulate
