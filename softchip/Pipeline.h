#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "softchip/Ports.h"

// The forwarding pipeline: what the chip does with one frame, as a list of numbered steps. decide()
// walks the list; each step says why it did what it did and which step is next, if any.
//
//   1 parse                 phase-0 bytes to ingress port, bytes to fields; source MAC not
//   multicast 2 port up               the ingress port exists and is up 3 VLAN classification
//   sub-interface by tag, VLAN by tag, access or native VLAN, routed port 4 VLAN admission the VLAN
//   exists and has the ingress port or its LAG as a member 5 ingress ACL           drop, copy to
//   the CPU (Acl.h) 6 link-local multicast  01:80:c2:00:00:00 to 0f go to the CPU; protocol rules;
//   in a domain that
//                           routes, ARP broadcasts and IP's link-local multicast are copied to it
//   7 router MAC            frames to it are routed, or the CPU's if they are not IPv4 or IPv6
//   right
//                           behind the domain's tag (ARP replies, a second tag); others are
//                           bridged, except that unicast to others is dropped on routed ports
//   8 own address, TTL      broken headers and addresses no router forwards are dropped; the
//   switch's
//                           own addresses, and TTL 0 and 1, go to the CPU
//   9 route                 longest prefix in the domain's VRF; next hop by the flow's hash
//   (Hash.h);
//                           neighbour; a missing neighbour is gleaned: to the CPU
//  10 egress interface      a routed port or sub-interface on its internal VLAN, or into a VLAN
//  11 FDB                   unicast, hairpin, unknown unicast, multicast and broadcast flood
//  12 LAG member            one of the members that are up, by the flow's hash (Hash.h)
//  13 egress port up
//
// 8 to 10 are for routed frames. A frame routed into a VLAN goes through 11 with its neighbour's
// MAC address, and may leave by the port it came from.
namespace SoftChip {

class Tables;

enum class Step : std::uint8_t {
    parse = 1,
    portUp,
    vlanClassification,
    vlanAdmission,
    ingressAcl,
    linkLocal,
    routerMac,
    ownAddress,
    route,
    egressInterface,
    fdb,
    lagMember,
    egressPortUp,
};

// Why a step did what it did.
enum class Reason : std::uint8_t {
    // 1 parse
    parsed,
    phase0Unknown,    // drop: the phase-0 bytes name no port
    frameTooShort,    // drop: no room for addresses and EtherType
    tagTooShort,      // drop: ends inside a tag
    sourceMulticast,  // drop
    // 2 port up
    portIsUp,
    portUnknown,  // drop
    portDown,     // drop
    // 3 VLAN classification
    untaggedVlan,  // access or native VLAN
    taggedVlan,
    subInterface,
    routedPort,
    noVlanOnPort,     // drop: the port has no mode
    untaggedRefused,  // drop: no access, native or internal VLAN
    tagRefused,       // drop: a routed port without such a sub-interface
    tagReserved,      // drop: VLAN 4095
    // 4 VLAN admission
    admitted,
    internalDomain,  // a routed port's or sub-interface's own domain: nothing to admit to
    vlanUnknown,     // drop
    vlanNotOnPort,   // drop
    // 5 ingress ACL
    noAclRule,
    aclPermit,
    aclCopy,  // permitted, with a copy to the CPU
    aclDrop,  // drop
    // 6 link-local multicast
    notControl,
    arpBroadcastCopy,  // goes on, with a copy to the CPU
    ipLinkLocalCopy,   // the same
    protocolCopy,      // the same
    linkLocalTrap,     // to the CPU
    protocolTrap,      // to the CPU
    // 7 router MAC
    toRouter,
    groupAddress,      // multicast or broadcast: bridged
    notRouterMac,      // bridged
    nonIpToRouter,     // to the CPU
    notForRoutedPort,  // drop
    // 8 own address, TTL
    transit,
    ipHeaderBroken,    // drop
    addressNotRouted,  // drop: multicast, loopback or link-local where no router forwards it
    ownAddress,        // to the CPU
    ttlExpired,        // to the CPU
    // 9 route
    neighbourFound,
    noRoute,     // drop
    routeDrops,  // drop: the route says so
    routeToCpu,  // to the CPU: the route says so
    noNextHop,   // drop: an empty or unknown set, or a hop on no interface
    glean,       // to the CPU: the neighbour's MAC address is not known
    // 10 egress interface
    intoVlan,
    outOfRoutedPort,
    outOfSubInterface,
    // 11 FDB
    fdbHit,
    hairpin,           // drop: it would leave by the port or LAG it came from
    fdbPortNotInVlan,  // drop: the entry's port is no member of the VLAN
    broadcastFlood,
    multicastFlood,
    unknownUnicastFlood,
    neighbourMacFlood,  // routed, and the FDB does not know the neighbour's MAC address
    // 12 LAG member
    notLag,
    lagMember,
    allMembersDown,  // drop
    // 13 egress port up
    forwarded,
    egressPortDown,  // drop
    // any step that sends to the CPU
    noCpuPort,  // drop
};
constexpr unsigned reasonCount = static_cast<unsigned>(Reason::noCpuPort) + 1;

// A few words, the same for every frame: "VLAN classification", "the ingress port is down".
char const* text(Step step);
char const* text(Reason reason);

// What happens to a frame, as its digest tells it.
//   bridged, routed   egressPort is the port; l2Domain the VLAN or internal VLAN it leaves on
//   flooded           egressPort is noEgressPort, l2Domain the VLAN
//   to the CPU        egressPort is the CPU's port, l2Domain that of the ingress, routed false
//   dropped           egressPort is noEgressPort, l2Domain that of the ingress or noDomain, routed
//                     false
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

// The steps that a frame took, in order.
struct Explanation {
    struct Entry {
        Step step;
        Reason reason;
        std::string detail;  // what this frame met there: "VLAN 10", "10.0.0.0/8"; may be empty
    };
    std::vector<Entry> entries;

    // One line a step, without a line end after the last: "3 VLAN classification: access or native
    // VLAN of the port (VLAN 10)".
    std::string text() const;
};

// What the chip does with `frame` (without check sequence), which enters at the port that `phase0`
// names. Reads the tables only; any bytes are good. With `explain` null nothing is formatted or
// allocated; otherwise its entries are replaced. Any thread that owns or shares `tables`.
Decision decide(Tables const& tables, std::span<std::uint8_t const> phase0,
                std::span<std::uint8_t const> frame, Explanation* explain = nullptr);

}  // namespace SoftChip
