// The pipeline's steps and the reasons that they give. Pipeline.h says what each step does.
//
// A step's number is its position, and a reason's number means nothing; both change when steps are
// added. The code of each does not change: a short name for programs. docs/explanations.md lists
// them.
#pragma once

#include <cstdint>
#include <string_view>

namespace SoftChip {

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
constexpr unsigned stepCount = static_cast<unsigned>(Step::egressPortUp);

// The reason for a step's decision.
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
    internalDomain,  // a routed port's or routed sub-interface's own domain: nothing to admit to
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

// Never changes: "vlanClassification", "portDown". No two steps, and no two reasons, share a code.
std::string_view code(Step step);
std::string_view code(Reason reason);

}  // namespace SoftChip
