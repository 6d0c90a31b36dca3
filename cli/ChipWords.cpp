#include "cli/ChipWords.h"

namespace Cli {

using SoftChip::Reason;
using SoftChip::Step;

std::string_view words(Step step) {
    switch (step) {
        case Step::parse:
            return "parse";
        case Step::portUp:
            return "port up";
        case Step::vlanClassification:
            return "VLAN classification";
        case Step::vlanAdmission:
            return "VLAN admission";
        case Step::ingressAcl:
            return "ingress ACL";
        case Step::linkLocal:
            return "link-local multicast";
        case Step::routerMac:
            return "router MAC";
        case Step::ownAddress:
            return "own address, TTL";
        case Step::route:
            return "route";
        case Step::egressInterface:
            return "egress interface";
        case Step::fdb:
            return "FDB";
        case Step::lagMember:
            return "LAG member";
        case Step::egressPortUp:
            return "egress port up";
    }
    return "unknown step";
}

// One line a reason, in the order of the enumeration: a list, however long.
std::string_view words(Reason reason) {
    switch (reason) {
        case Reason::parsed:
            return "parsed";
        case Reason::phase0Unknown:
            return "dropped: the phase-0 bytes name no port";
        case Reason::frameTooShort:
            return "dropped: no whole Ethernet header";
        case Reason::tagTooShort:
            return "dropped: the frame ends inside a tag";
        case Reason::sourceMulticast:
            return "dropped: the source MAC is a multicast address";

        case Reason::portIsUp:
            return "the ingress port is up";
        case Reason::portUnknown:
            return "dropped: the ingress port does not exist";
        case Reason::portDown:
            return "dropped: the ingress port is down";

        case Reason::untaggedVlan:
            return "access or native VLAN of the port";
        case Reason::taggedVlan:
            return "VLAN of the tag";
        case Reason::subInterface:
            return "sub-interface of the tag";
        case Reason::routedPort:
            return "routed port";
        case Reason::noVlanOnPort:
            return "dropped: the port has no VLAN and does not route";
        case Reason::untaggedRefused:
            return "dropped: the port takes no untagged frames";
        case Reason::tagRefused:
            return "dropped: no sub-interface of the port has this tag";
        case Reason::tagReserved:
            return "dropped: the tag is reserved";

        case Reason::admitted:
            return "the VLAN has the port as a member";
        case Reason::internalDomain:
            return "internal VLAN, nothing to admit to";
        case Reason::vlanUnknown:
            return "dropped: no such VLAN";
        case Reason::vlanNotOnPort:
            return "dropped: the port is not a member of the VLAN";

        case Reason::noAclRule:
            return "no rule matches";
        case Reason::aclPermit:
            return "permitted";
        case Reason::aclCopy:
            return "permitted, with a copy to the CPU";
        case Reason::aclDrop:
            return "dropped by a rule";

        case Reason::notControl:
            return "nothing of the CPU's";
        case Reason::arpBroadcastCopy:
            return "ARP broadcast, copied to the CPU";
        case Reason::ipLinkLocalCopy:
            return "IP link-local multicast, copied to the CPU";
        case Reason::protocolCopy:
            return "protocol copied to the CPU";
        case Reason::linkLocalTrap:
            return "to the CPU: link-local multicast";
        case Reason::protocolTrap:
            return "to the CPU: protocol";

        case Reason::toRouter:
            return "to the router";
        case Reason::groupAddress:
            return "multicast or broadcast, bridged";
        case Reason::notRouterMac:
            return "not the router's, bridged";
        case Reason::nonIpToRouter:
            return "to the CPU: the router's, but not IP";
        case Reason::notForRoutedPort:
            return "dropped: not the router's, on a routed port";

        case Reason::transit:
            return "to be forwarded";
        case Reason::ipHeaderBroken:
            return "dropped: broken IP header";
        case Reason::addressNotRouted:
            return "dropped: an address that no router forwards";
        case Reason::ownAddress:
            return "to the CPU: own address";
        case Reason::ttlExpired:
            return "to the CPU: TTL expired";

        case Reason::neighbourFound:
            return "next hop found";
        case Reason::noRoute:
            return "dropped: no route";
        case Reason::routeDrops:
            return "dropped by the route";
        case Reason::routeToCpu:
            return "to the CPU: the route says so";
        case Reason::noNextHop:
            return "dropped: the route has no usable next hop";
        case Reason::glean:
            return "to the CPU: neighbour not known";

        case Reason::intoVlan:
            return "into a VLAN";
        case Reason::outOfRoutedPort:
            return "out of a routed port";
        case Reason::outOfSubInterface:
            return "out of a sub-interface";

        case Reason::fdbHit:
            return "MAC address known";
        case Reason::hairpin:
            return "dropped: it would leave where it came in";
        case Reason::fdbPortNotInVlan:
            return "dropped: the entry's port is not in the VLAN";
        case Reason::broadcastFlood:
            return "flooded: broadcast";
        case Reason::multicastFlood:
            return "flooded: multicast";
        case Reason::unknownUnicastFlood:
            return "flooded: unknown unicast";
        case Reason::neighbourMacFlood:
            return "flooded: the neighbour's MAC address is not known";

        case Reason::notLag:
            return "not a LAG";
        case Reason::lagMember:
            return "member chosen";
        case Reason::allMembersDown:
            return "dropped: no member of the LAG is up";

        case Reason::forwarded:
            return "sent";
        case Reason::egressPortDown:
            return "dropped: the egress port is down";

        case Reason::noCpuPort:
            return "dropped: there is no CPU port";
    }
    return "unknown reason";
}

}  // namespace Cli
