#include "Bridging/VlanId.h"

#include "Kel/Error.h"

namespace Bridging {

VlanId::VlanId(std::uint16_t value) : value_(value) {
    if (value < min || value > max) {
        throw Kel::RangeError("Bridging::VlanId", "value",
                              "Bridging::VlanId::value < 1 or > 4094 not allowed");
    }
}

}  // namespace Bridging
