// The number of a chip in the switch.
#pragma once

#include <cstdint>

namespace VynId {

using VynDevId = std::uint8_t;

}  // namespace VynId
