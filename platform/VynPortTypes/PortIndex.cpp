#include "VynPortTypes/PortIndex.h"

#include "Kel/Error.h"

namespace VynPortTypes {

PortIndex::PortIndex(std::uint16_t value) : value_(value) {
    if (value > invalid) {
        throw Kel::RangeError("VynPortTypes::PortIndex", "value",
                              "VynPortTypes::PortIndex::value < VynPortTypes::PortIndex::min or > "
                              "VynPortTypes::PortIndex::invalid not allowed");
    }
}

}  // namespace VynPortTypes
