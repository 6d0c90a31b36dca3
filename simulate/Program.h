// What a seed stands for: a switch, and a program of events that happens to its tracer.
//
// One seed in a thousand is a long life of two jobs, in which the packet ids wrap. Of the others
// some are calm, most draw a few kinds of faults, and some are reckless: their clients and digests
// also do things at which the tracer ends the process.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulate/Event.h"
#include "simulate/Random.h"
#include "switchfile/SwitchModel.h"

namespace Simulate {

struct Switch {
    SwitchFile::SwitchModel model;
};

struct Program {
    std::uint64_t seed = 0;
    Switch drawn;
    std::vector<Event> events;
};

// Every so many seeds one is a long life.
inline constexpr std::uint64_t longLives = 1000;

// The same program for the same arguments, on every machine. `steps` counts the events after the
// switch's forwarding state was told.
Program drawProgram(std::uint64_t seed, unsigned steps);

}  // namespace Simulate
