// A frame in a few words: "02:00:00:00:00:0a to 02:00:00:00:00:0b, tag 10, IPv4 10.0.0.1 to
// 10.0.0.2 TTL 64, UDP port 1000 to 53".
//
// Pure functions over values. Threads: any.
#pragma once

#include <string>
#include <string_view>

#include "softchip/Frame.h"

namespace Cli {

// Never empty, whatever the frame.
std::string frameText(SoftChip::ParsedFrame const& frame);

// What is wrong with an IP or ARP header: "truncated"; "sound" if nothing is.
std::string_view words(SoftChip::L3Fault fault);

}  // namespace Cli
