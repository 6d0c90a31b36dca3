// The switch of a seed, and how its forwarding state is told.
#pragma once

#include <string>
#include <vector>

#include "simulate/Event.h"
#include "simulate/Random.h"
#include "switchfile/SwitchModel.h"

namespace Simulate {

// A switch file: ports, a LAG or two, VLANs, perhaps routing.
std::string drawSwitch(Random& random);

// The forwarding state that the agent derives, told event by event.
std::vector<Event> tellForwarding(SwitchFile::SwitchModel const& model);

}  // namespace Simulate
