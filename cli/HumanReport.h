// A frame's report for people: one block of lines.
//
//     Frame 1, 60 bytes: 02:50:56:10:01:01 to ff:ff:ff:ff:ff:ff, tag 20, ARP 10.1.20.11 to ...
//       flooded in VLAN 20
//         physical    logical
//         Ethernet17  -
//         -           Lag1
//
// Then, as far as there are any: the defaults that a packet by fields got, the differences from the
// expectation, the chip's steps, the road. Threads: any.
#pragma once

#include <string>

#include "cli/FrameReport.h"

namespace Cli {

// The block, with its last line end; `colour` adds the escape sequences of a terminal.
std::string humanText(FrameReport const& report, bool colour);

}  // namespace Cli
