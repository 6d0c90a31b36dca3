// Reading the lines of a scenario.
#pragma once

#include <string_view>

#include "scenario/Event.h"
#include "scenario/JsonLine.h"

namespace Scenario {

// The event of a line that is neither empty nor a comment, types and ranges checked.
// Errors: Refusal.
Event readEvent(std::string_view line);

}  // namespace Scenario
