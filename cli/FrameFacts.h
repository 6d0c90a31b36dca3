// What a request says of a raw frame besides its bytes: EtherType and flags.
//
// Pure functions over bytes; any bytes are good. Threads: any.
#pragma once

#include <cstdint>
#include <span>

namespace Cli {

struct FrameFacts {
    std::uint16_t etherType = 0;  // behind all tags; 0 where the frame ends before it
    bool mpls = false;            // an MPLS label stack follows the Ethernet header
    bool gre = false;             // the IP packet carries GRE, also behind extension headers

    friend bool operator==(FrameFacts const&, FrameFacts const&) = default;
};

FrameFacts frameFacts(std::span<std::uint8_t const> frame);

}  // namespace Cli
