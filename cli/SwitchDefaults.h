// Defaults from the switch for a packet that is given by a few fields: it comes from a host behind
// the ingress interface and goes through the router.
//
// Pure functions over the switch's model. Thread: the event thread.
#pragma once

#include <cstdint>
#include <vector>

#include "PacketTracer/PacketDefaults.h"
#include "PacketTracer/PacketFields.h"
#include "Plexa/IntfId.h"
#include "switchfile/SwitchModel.h"

namespace Cli {

// The hints about the switch for PacketTracer::fillDefaults().
//   host    a neighbour that the FDB has behind the interface, else a station of the FDB there,
//           else a free address of the interface's subnet
//   router  the router's MAC address where the packet's VLAN or port routes; for a destination in
//           the host's own subnet that neighbour's, as the host would do itself
// Each is left out if the switch has none.
PacketTracer::PacketHints packetHints(SwitchFile::SwitchModel const& model,
                                      Plexa::IntfId const& ingress,
                                      PacketTracer::PacketFields const& fields);

// Fills the fields in, with a tag where the ingress interface takes nothing else (a sub-interface,
// a trunk without a native VLAN), and names what it filled.
std::vector<PacketTracer::NamedField> fillFromSwitch(PacketTracer::PacketFields& fields,
                                                     std::uint16_t etherType, bool untagged,
                                                     SwitchFile::SwitchModel const& model,
                                                     Plexa::IntfId const& ingress);

}  // namespace Cli
