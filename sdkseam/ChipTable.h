// The chips of this process by device id. Internal to sdkseam.
#pragma once

#include <array>
#include <atomic>

#include "sdkseam/Chip.h"

namespace SdkSeam {

// Atomic because an acknowledgement comes from a chip's thread while another chip registers.
extern std::array<std::atomic<Chip*>, 256> chips;

}  // namespace SdkSeam
