#include "softchip/Sdk.h"

namespace SoftChip {

char const* text(Status status) {
    switch (status) {
        case Status::ok:
            return "ok";
        case Status::unknownSession:
            return "unknown session";
        case Status::unknownPipe:
            return "unknown pipe";
        case Status::unknownApp:
            return "unknown generator application";
        case Status::unknownGenPort:
            return "unknown generator port";
        case Status::unknownPort:
            return "no such port in the pipe";
        case Status::noPhase0:
            return "no phase-0 bytes";
        case Status::badPacketSize:
            return "no packet, or longer than the generator's buffer";
        case Status::unknownDigest:
            return "unknown digest handle";
        case Status::digestRegistered:
            return "the digest is registered already";
        case Status::digestUnregistered:
            return "the digest is not registered";
        case Status::unknownMessage:
            return "no such message awaits its acknowledgement";
    }
    return "failed";
}

}  // namespace SoftChip
