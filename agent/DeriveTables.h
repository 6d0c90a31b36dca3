// From the switch's model to the tables of the software chip.
//
//   - Ports, LAGs and VLANs with their members as they stand in the model. A bridged sub-interface
//     makes its parent a member of the VLAN, for the chip knows ports, tags and domains only.
//   - What routes has a domain: a VLAN interface its VLAN, everything else its internal VLAN.
//   - Each subnet of an interface becomes a connected route, each address one of the switch's own.
//     IPv6's link-local subnets become none, being on every link alike.
//   - An access list becomes one list for each binding to a VLAN or an interface, numbered from 1:
//     VLANs first, then interfaces, both in the order of the model. `aclBindingNames` says which
//     binding a list stands for.
#pragma once

#include <string>
#include <vector>

#include "softchip/Tables.h"
#include "switchfile/SwitchModel.h"

namespace Agent {

// The whole tables. Fails only for want of memory. Thread: any.
SoftChip::Tables deriveTables(SwitchFile::SwitchModel const& model);

// At index n the name, for people, of the chip's list n + 1: "edge on Ethernet7", "edge on VLAN
// 10".
std::vector<std::string> aclBindingNames(SwitchFile::SwitchModel const& model);

// How the chip names a physical port or LAG, or the parent of a sub-interface.
SoftChip::LogicalPort logicalPort(SwitchFile::SwitchModel const& model, Plexa::IntfId const& id);

}  // namespace Agent
