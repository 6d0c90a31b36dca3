// Writing the lines of a scenario.
#pragma once

#include <string>

#include "scenario/Event.h"

namespace Scenario {

// The line of an event, without its end. readEvent() makes the same event of it, but for texts that
// are not valid UTF-8: they get a replacement character where they are not.
// Precondition: the event's members are within the ranges that readEvent() takes.
std::string line(Event const& event);

}  // namespace Scenario
