// From the switch's model to the forwarding state that a tracer reads.
//
//   - An interface whose frames enter by one port has that port's information, its pipe and its
//     index there: a physical port and its sub-interfaces, and nothing else.
//   - portToIntfId gives a device port's own interface, also of a LAG's member.
//   - LAGs are members of VLANs, the ports in them never are; a bridged sub-interface is a member
//     of its VLAN.
//   - "Cpu" is a member of exactly the VLANs that have a VLAN interface.
//   - A routed port, routed LAG or routing sub-interface is the one member of its internal VLAN.
#pragma once

#include "scenario/ForwardingState.h"
#include "switchfile/SwitchModel.h"

namespace Agent {

using Scenario::ForwardingState;

// New state objects, in the order of the model throughout. Fails only for want of memory. Thread:
// the event thread.
ForwardingState deriveForwardingState(SwitchFile::SwitchModel const& model);

}  // namespace Agent
