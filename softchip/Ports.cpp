#include "softchip/Ports.h"

namespace SoftChip {

std::string LogicalPort::text() const {
    switch (kind_) {
        case Kind::none:
            return "no port";
        case Kind::port:
            return "port " + std::to_string(number_);
        case Kind::lag:
            return "LAG " + std::to_string(number_);
    }
    return "no port";
}

}  // namespace SoftChip
