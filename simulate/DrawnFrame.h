// The frames of a seed's requests.
#pragma once

#include <cstdint>

#include "simulate/Event.h"
#include "simulate/Random.h"

namespace Simulate {

// A frame that no other request has: bridged, flooded, or routed, by chance.
Bytes drawFrame(Random& random, unsigned client, std::uint32_t req);

}  // namespace Simulate
