#include "softchip/PipelineReason.h"

#include <array>

#include "softchip/EnumTexts.h"

namespace SoftChip {
namespace {

constexpr std::array<EnumText<Step>, stepCount> steps{{
    {Step::parse, "parse"},
    {Step::portUp, "portUp"},
    {Step::vlanClassification, "vlanClassification"},
    {Step::vlanAdmission, "vlanAdmission"},
    {Step::ingressAcl, "ingressAcl"},
    {Step::linkLocal, "linkLocal"},
    {Step::routerMac, "routerMac"},
    {Step::ownAddress, "ownAddress"},
    {Step::route, "route"},
    {Step::egressInterface, "egressInterface"},
    {Step::fdb, "fdb"},
    {Step::lagMember, "lagMember"},
    {Step::egressPortUp, "egressPortUp"},
}};

constexpr std::array<EnumText<Reason>, reasonCount> reasons{{
    {Reason::parsed, "parsed"},
    {Reason::phase0Unknown, "phase0Unknown"},
    {Reason::frameTooShort, "frameTooShort"},
    {Reason::tagTooShort, "tagTooShort"},
    {Reason::sourceMulticast, "sourceMulticast"},
    {Reason::portIsUp, "portIsUp"},
    {Reason::portUnknown, "portUnknown"},
    {Reason::portDown, "portDown"},
    {Reason::untaggedVlan, "untaggedVlan"},
    {Reason::taggedVlan, "taggedVlan"},
    {Reason::subInterface, "subInterface"},
    {Reason::routedPort, "routedPort"},
    {Reason::noVlanOnPort, "noVlanOnPort"},
    {Reason::untaggedRefused, "untaggedRefused"},
    {Reason::tagRefused, "tagRefused"},
    {Reason::tagReserved, "tagReserved"},
    {Reason::admitted, "admitted"},
    {Reason::internalDomain, "internalDomain"},
    {Reason::vlanUnknown, "vlanUnknown"},
    {Reason::vlanNotOnPort, "vlanNotOnPort"},
    {Reason::noAclRule, "noAclRule"},
    {Reason::aclPermit, "aclPermit"},
    {Reason::aclCopy, "aclCopy"},
    {Reason::aclDrop, "aclDrop"},
    {Reason::notControl, "notControl"},
    {Reason::arpBroadcastCopy, "arpBroadcastCopy"},
    {Reason::ipLinkLocalCopy, "ipLinkLocalCopy"},
    {Reason::protocolCopy, "protocolCopy"},
    {Reason::linkLocalTrap, "linkLocalTrap"},
    {Reason::protocolTrap, "protocolTrap"},
    {Reason::toRouter, "toRouter"},
    {Reason::groupAddress, "groupAddress"},
    {Reason::notRouterMac, "notRouterMac"},
    {Reason::nonIpToRouter, "nonIpToRouter"},
    {Reason::notForRoutedPort, "notForRoutedPort"},
    {Reason::transit, "transit"},
    {Reason::ipHeaderBroken, "ipHeaderBroken"},
    {Reason::addressNotRouted, "addressNotRouted"},
    {Reason::ownAddress, "ownAddress"},
    {Reason::ttlExpired, "ttlExpired"},
    {Reason::neighbourFound, "neighbourFound"},
    {Reason::noRoute, "noRoute"},
    {Reason::routeDrops, "routeDrops"},
    {Reason::routeToCpu, "routeToCpu"},
    {Reason::noNextHop, "noNextHop"},
    {Reason::glean, "glean"},
    {Reason::intoVlan, "intoVlan"},
    {Reason::outOfRoutedPort, "outOfRoutedPort"},
    {Reason::outOfSubInterface, "outOfSubInterface"},
    {Reason::fdbHit, "fdbHit"},
    {Reason::hairpin, "hairpin"},
    {Reason::fdbPortNotInVlan, "fdbPortNotInVlan"},
    {Reason::broadcastFlood, "broadcastFlood"},
    {Reason::multicastFlood, "multicastFlood"},
    {Reason::unknownUnicastFlood, "unknownUnicastFlood"},
    {Reason::neighbourMacFlood, "neighbourMacFlood"},
    {Reason::notLag, "notLag"},
    {Reason::lagMember, "lagMember"},
    {Reason::allMembersDown, "allMembersDown"},
    {Reason::forwarded, "forwarded"},
    {Reason::egressPortDown, "egressPortDown"},
    {Reason::noCpuPort, "noCpuPort"},
}};

static_assert(inOrder(steps, 1) && inOrder(reasons, 0));

}  // namespace

std::string_view code(Step step) {
    return steps.at(static_cast<std::size_t>(step) - 1).text;
}

std::string_view code(Reason reason) {
    return reasons.at(static_cast<std::size_t>(reason)).text;
}

}  // namespace SoftChip
