#include "cli/ChipWords.h"

#include <array>

#include "softchip/EnumTexts.h"

namespace Cli {
namespace {

using SoftChip::EnumText;
using SoftChip::Reason;
using SoftChip::Step;

constexpr std::array<EnumText<Step>, SoftChip::stepCount> steps{{
    {Step::parse, "parse"},
    {Step::portUp, "port up"},
    {Step::vlanClassification, "VLAN classification"},
    {Step::vlanAdmission, "VLAN admission"},
    {Step::ingressAcl, "ingress ACL"},
    {Step::linkLocal, "link-local multicast"},
    {Step::routerMac, "router MAC"},
    {Step::ownAddress, "own address, TTL"},
    {Step::route, "route"},
    {Step::egressInterface, "egress interface"},
    {Step::fdb, "FDB"},
    {Step::lagMember, "LAG member"},
    {Step::egressPortUp, "egress port up"},
}};

constexpr std::array<EnumText<Reason>, SoftChip::reasonCount> reasons{{
    {Reason::parsed, "parsed"},
    {Reason::phase0Unknown, "dropped: the phase-0 bytes name no port"},
    {Reason::frameTooShort, "dropped: no whole Ethernet header"},
    {Reason::tagTooShort, "dropped: the frame ends inside a tag"},
    {Reason::sourceMulticast, "dropped: the source MAC is a multicast address"},

    {Reason::portIsUp, "the ingress port is up"},
    {Reason::portUnknown, "dropped: the ingress port does not exist"},
    {Reason::portDown, "dropped: the ingress port is down"},

    {Reason::untaggedVlan, "access or native VLAN of the port"},
    {Reason::taggedVlan, "VLAN of the tag"},
    {Reason::subInterface, "sub-interface of the tag"},
    {Reason::routedPort, "routed port"},
    {Reason::noVlanOnPort, "dropped: the port has no VLAN and does not route"},
    {Reason::untaggedRefused, "dropped: the port takes no untagged frames"},
    {Reason::tagRefused, "dropped: no sub-interface of the port has this tag"},
    {Reason::tagReserved, "dropped: the tag is reserved"},

    {Reason::admitted, "the VLAN has the port as a member"},
    {Reason::internalDomain, "internal VLAN, nothing to admit to"},
    {Reason::vlanUnknown, "dropped: no such VLAN"},
    {Reason::vlanNotOnPort, "dropped: the port is not a member of the VLAN"},

    {Reason::noAclRule, "no rule matches"},
    {Reason::aclPermit, "permitted"},
    {Reason::aclCopy, "permitted, with a copy to the CPU"},
    {Reason::aclDrop, "dropped by a rule"},

    {Reason::notControl, "nothing of the CPU's"},
    {Reason::arpBroadcastCopy, "ARP broadcast, copied to the CPU"},
    {Reason::ipLinkLocalCopy, "IP link-local multicast, copied to the CPU"},
    {Reason::protocolCopy, "protocol copied to the CPU"},
    {Reason::linkLocalTrap, "to the CPU: link-local multicast"},
    {Reason::protocolTrap, "to the CPU: protocol"},

    {Reason::toRouter, "to the router"},
    {Reason::groupAddress, "multicast or broadcast, bridged"},
    {Reason::notRouterMac, "not the router's, bridged"},
    {Reason::nonIpToRouter, "to the CPU: the router's, but not IP"},
    {Reason::notForRoutedPort, "dropped: not the router's, on a routed port"},

    {Reason::transit, "to be forwarded"},
    {Reason::ipHeaderBroken, "dropped: broken IP header"},
    {Reason::addressNotRouted, "dropped: an address that no router forwards"},
    {Reason::ownAddress, "to the CPU: own address"},
    {Reason::ttlExpired, "to the CPU: TTL expired"},

    {Reason::neighbourFound, "next hop found"},
    {Reason::noRoute, "dropped: no route"},
    {Reason::routeDrops, "dropped by the route"},
    {Reason::routeToCpu, "to the CPU: the route says so"},
    {Reason::noNextHop, "dropped: the route has no usable next hop"},
    {Reason::glean, "to the CPU: neighbour not known"},

    {Reason::intoVlan, "into a VLAN"},
    {Reason::outOfRoutedPort, "out of a routed port"},
    {Reason::outOfSubInterface, "out of a sub-interface"},

    {Reason::fdbHit, "MAC address known"},
    {Reason::hairpin, "dropped: it would leave where it came in"},
    {Reason::fdbPortNotInVlan, "dropped: the entry's port is not in the VLAN"},
    {Reason::broadcastFlood, "flooded: broadcast"},
    {Reason::multicastFlood, "flooded: multicast"},
    {Reason::unknownUnicastFlood, "flooded: unknown unicast"},
    {Reason::neighbourMacFlood, "flooded: the neighbour's MAC address is not known"},

    {Reason::notLag, "not a LAG"},
    {Reason::lagMember, "member chosen"},
    {Reason::allMembersDown, "dropped: no member of the LAG is up"},

    {Reason::forwarded, "sent"},
    {Reason::egressPortDown, "dropped: the egress port is down"},

    {Reason::noCpuPort, "dropped: there is no CPU port"},
}};

static_assert(inOrder(steps, 1) && inOrder(reasons, 0));

}  // namespace

std::string_view words(Step step) {
    return steps.at(static_cast<std::size_t>(step) - 1).text;
}

std::string_view words(Reason reason) {
    return reasons.at(static_cast<std::size_t>(reason)).text;
}

}  // namespace Cli
