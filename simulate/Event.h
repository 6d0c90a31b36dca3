// What happens to the tracer in a run: one outside event a step.
//
// A program is drawn whole before it runs, so that events can be left out of it and the rest still
// means something: an event that makes no sense at its turn (a withdrawal of what is not there, say)
// is passed over. Plain values throughout.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Plexa/IntfId.h"

namespace Simulate {

using Bytes = std::vector<std::uint8_t>;

inline constexpr unsigned clientCount = 5;

enum class Kind : std::uint8_t {
    // Forwarding state, as the tracer reads it.
    port,             // intf, a: pipe, b: port index
    portDel,          // intf
    portToIntfId,     // a: egress port index, intf
    portToIntfIdDel,  // a
    lagToPort,        // intf
    lagToPortDel,     // intf
    portToLag,        // intf, lag
    portToLagDel,     // intf
    vlan,             // a: number, intfs: members, flag: internal
    vlanDel,          // a
    cpuPort,          // intf
    cpuPortDel,       // intf
    // Life of the tracer.
    start,  // flag: the program carries the trace digest
    stop,
    turn,        // a: how many; flag: the chip does its work after each
    yieldAfter,  // a: checks
    // Clients. Each name has one configuration and one status object in hand, which events about
    // requests concern whether or not the directories have them.
    clientConfig,     // client, a: 0 fresh object, 1 none, 2 of another type, 3 the one in hand
    clientConfigDel,  // client
    clientStatus,     // client, a: as above
    clientStatusDel,  // client
    request,          // client, req, intf, a: EtherType, raw, flag: valid, b: bit 0 MPLS, bit 1 GRE
    requestSet,       // client, req, a: a RequestAttribute, b: value, or intf, or raw
    requestDel,       // client, req
    requestDelAll,    // client: withdraws each of its requests
    result,           // client, req: an empty result, as one left over
    // The chip.
    chipStep,
    chipPortUp,    // a: device port, flag
    callFails,     // a: number of the SDK function, b: nth, c: times, value: status
    phase0Late,    // a: turns, b: nth, c: times
    phase0Lost,    // b: nth, c: times
    phase0Status,  // a: status, b: nth, c: times
    phase0Ask,     // intf: somebody else asks, so an answer for another interface comes
    phase0Drop,    // intf: and withdraws it again
    stall,         // a: pipe, flag
    counter,       // a: pipe, b: what it reads from now on
    digestFate,    // a: 1 lost, 2 doubled, 3 held; b: nth, c: times, value: held behind
    releaseHeld,
    forge,      // entries: a learn message of them, from nowhere
    room,       // a: bytes that the digest socket holds unread before it is full
    faultsEnd,  // no fault is in force any more
};

enum RequestAttribute : std::uint64_t { valid, etherType, mpls, gre, intf, raw };

// A digest entry from nowhere. Its packet id is counted back from the engine's newest one; `back`
// above 60000 is an id that nobody has.
struct Forged {
    std::uint16_t back = 0;
    std::uint8_t copyToCpu = 0;
    std::uint16_t l2Domain = 0;
    std::uint16_t egrPort = 511;
    std::uint8_t routed = 0;
    std::uint8_t dropCtl = 0;
};

struct Event {
    Kind kind = Kind::turn;
    unsigned client = 0;
    std::uint32_t req = 0;
    Plexa::IntfId intf{};
    Plexa::IntfId lag{};
    std::uint64_t a = 0;
    std::uint64_t b = 0;
    std::uint64_t c = 0;
    std::int32_t value = 0;
    bool flag = false;
    std::vector<Plexa::IntfId> intfs{};
    Bytes raw{};
    std::vector<Forged> entries{};
};

// A client's name by its number: "A", "B", ...
std::string clientName(unsigned client);

// One line for people: "request client A req 3 intf Ethernet2 ...".
std::string text(Event const& event);

}  // namespace Simulate
