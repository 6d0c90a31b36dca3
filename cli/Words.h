// An answer in words.
#pragma once

#include <string>

#include "cli/FrameReport.h"

namespace Cli {

// The outcome with its details, on one line: "flooded in VLAN 10, with a copy to the CPU". It
// begins with the outcome's own words, so no two outcomes read alike.
std::string outcomeWords(FrameReport const& report);

// "missing Ethernet3; unexpected Ethernet4, Cpu"; empty if nothing differs.
std::string differenceWords(Difference const& difference);

// A remark on the outcome: why the packet was refused, why there is no egress port.
std::string remarkWords(Packet const& packet, Plexa::IntfId const& ingress,
                        Agent::Answer const& answer, double timeoutSeconds);

}  // namespace Cli
