#include "sdkseam/Interposition.h"

#include <stdexcept>
#include <string>

#include "sdkseam/ChipTable.h"

namespace SdkSeam {

Interposition::Interposition(VynId::VynDevId device, Chip& front)
    : device_(device), behind_(chips[device].load(std::memory_order_acquire)) {
    if (behind_ == nullptr) {
        throw std::logic_error("device " + std::to_string(device) + " has no chip to stand before");
    }
    chips[device].store(&front, std::memory_order_release);
}

Interposition::~Interposition() {
    chips[device_].store(behind_, std::memory_order_release);
}

}  // namespace SdkSeam
