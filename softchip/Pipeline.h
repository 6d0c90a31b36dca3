// The forwarding pipeline: what the chip does with one frame, as a list of numbered steps. decide()
// walks the list; each step says why it did what it did and which step is next, if any.
//
//    1  parse                 phase-0 bytes to ingress port, bytes to fields; the source MAC is not
//                             multicast
//    2  port up               the ingress port exists and is up
//    3  VLAN classification   sub-interface by tag, VLAN by tag, access or native VLAN, routed port
//    4  VLAN admission        the VLAN exists and has the ingress port or its LAG as a member
//    5  ingress ACL           drop, copy to the CPU (Acl.h)
//    6  link-local multicast  01:80:c2:00:00:00 to 0f go to the CPU; protocol rules; in a domain
//                             that routes, ARP broadcasts and IP's link-local multicast are copied
//                             to it
//    7  router MAC            frames to it are routed, or the CPU's if they are not IPv4 or IPv6
//                             right behind the domain's tag (ARP replies, a second tag); others are
//                             bridged, except that unicast to others is dropped on routed ports
//    8  own address, TTL      broken headers and addresses that no router forwards are dropped; the
//                             switch's own addresses, and TTL 0 and 1, go to the CPU
//    9  route                 longest prefix in the domain's VRF; next hop by the flow's hash
//                             (Hash.h); neighbour; a missing neighbour is gleaned: to the CPU
//   10  egress interface      a routed port or sub-interface on its internal VLAN, or into a VLAN
//   11  FDB                   unicast, hairpin; unknown unicast, multicast and broadcast flood
//   12  LAG member            one of the members that are up, by the flow's hash (Hash.h)
//   13  egress port up        the port that it leaves by exists and is up
//
// 8 to 10 are for routed frames. A frame routed into a VLAN goes through 11 with its neighbour's
// MAC address, and may leave by the port it came from.
#pragma once

#include <cstdint>
#include <span>

#include "softchip/Explanation.h"
#include "softchip/PipelineReason.h"
#include "softchip/Ports.h"

namespace SoftChip {

class Tables;

// What happens to a frame, as its digest tells it.
//   bridged, routed   egressPort is the port; l2Domain the VLAN or internal VLAN it leaves on
//   flooded           egressPort is noEgressPort, l2Domain the VLAN
//   to the CPU        egressPort is the CPU's port, l2Domain that of the ingress, routed false
//   dropped           egressPort is noEgressPort, l2Domain that of the ingress or noDomain,
//                     routed false
//
// copyToCpu is a copy besides any of these.
struct Decision {
    DevicePort egressPort = noEgressPort;
    DomainId l2Domain = noDomain;
    bool routed = false;
    bool copyToCpu = false;
    bool drop = false;
    Step step = Step::parse;  // the last one taken, and its reason
    Reason reason = Reason::parsed;

    friend bool operator==(Decision const&, Decision const&) = default;
};

// What the chip does with `frame` (without check sequence), which enters at the port that `phase0`
// names. Reads the tables only; any bytes are good. Never allocates. If `explain` is not null, the
// steps are written there and replace what it holds. Thread: any that owns or shares `tables`.
Decision decide(Tables const& tables, std::span<std::uint8_t const> phase0,
                std::span<std::uint8_t const> frame, Explanation* explain = nullptr);

}  // namespace SoftChip
