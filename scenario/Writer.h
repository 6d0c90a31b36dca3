// Writing the lines of a scenario.
#pragma once

#include <string>

#include "scenario/Event.h"

namespace Scenario {

// The line of an event, without its end. readEvent() reads the same event from it, except that
// invalid UTF-8 in texts becomes a replacement character.
// Precondition: the event's members are within the ranges that readEvent() takes.
// Thread: any, for the events that hold no text and no bytes of the framework, as a digest does;
// for the others the event thread.
std::string line(Event const& event);

}  // namespace Scenario
