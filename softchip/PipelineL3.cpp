// Steps 8 to 10: routing.
#include "softchip/PipelineSteps.h"

#include <vector>

#include "softchip/Hash.h"

namespace SoftChip::PipelineSteps {
namespace {

// IPv4's "this network" and IPv6's unspecified address.
bool isUnspecified(IpAddress const& address) {
    return address.isV4() ? address.hi >> 56 == 0 : address.isUnspecified();
}

// No packet may have this source.
bool isBadSource(IpAddress const& address) {
    return address.isMulticast() || address.isLoopback() || address.isBroadcast();
}

// No router forwards there, or from there. IPv4's 169.254.0.0/16 is not special: the routes decide.
bool isNotRouted(IpAddress const& src, IpAddress const& dst) {
    return dst.isMulticast() || dst.isLoopback() || dst.isBroadcast() || isUnspecified(dst) ||
           isUnspecified(src) || dst.isLinkLocalV6() || src.isLinkLocalV6();
}

VrfId vrfOf(Walk const& walk) {
    return walk.tables.l3Intf(walk.domain)->vrf;
}

Verdict throughNeighbour(Walk& walk) {
    if (!walk.tables.l3Intf(walk.hop.domain)) {
        return drop(Reason::noNextHop);
    }
    walk.met(walk.hop);
    auto const mac = walk.tables.neighbour(walk.hop.domain, walk.hop.gateway);
    if (!mac) {
        return toCpu(Reason::glean);
    }
    walk.hopMac = *mac;
    walk.met(*mac);
    return goOn(Reason::neighbourFound, Step::egressInterface);
}

Verdict throughSet(Walk& walk, std::uint32_t set) {
    auto const* hops = walk.tables.nextHopSet(set);
    if (!hops || hops->empty()) {
        return drop(Reason::noNextHop);
    }
    auto const picked = pick(ecmpHash(walk.frame), hops->size());
    walk.hop = (*hops)[picked];
    walk.met(NextHopChoice{static_cast<std::uint32_t>(picked),
                           static_cast<std::uint32_t>(hops->size())});
    return throughNeighbour(walk);
}

}  // namespace

Verdict ownAddress(Walk& walk) {
    auto const& frame = walk.frame;
    if (frame.l3Fault != L3Fault::none) {
        walk.met(frame.l3Fault);
        return drop(Reason::ipHeaderBroken);
    }
    walk.met(IpInVrf{frame.dstIp, vrfOf(walk)});
    if (isBadSource(frame.srcIp)) {
        return drop(Reason::addressNotRouted);
    }
    if (walk.tables.isOwnAddress(vrfOf(walk), frame.dstIp)) {
        return toCpu(Reason::ownAddress);
    }
    if (isNotRouted(frame.srcIp, frame.dstIp)) {
        return drop(Reason::addressNotRouted);
    }
    walk.met(HopsLeft{frame.ttl});
    return frame.ttl <= 1 ? toCpu(Reason::ttlExpired) : goOn(Reason::transit, Step::route);
}

Verdict route(Walk& walk) {
    auto const match = walk.tables.route(vrfOf(walk), walk.frame.dstIp);
    if (!match) {
        return drop(Reason::noRoute);
    }
    walk.met(match->prefix);
    switch (match->value->kind) {
        case Route::Kind::nextHops:
            return throughSet(walk, match->value->nextHopSet);
        case Route::Kind::connected:
            walk.hop = {match->value->domain, walk.frame.dstIp};
            return throughNeighbour(walk);
        case Route::Kind::toCpu:
            return toCpu(Reason::routeToCpu);
        case Route::Kind::drop:
            break;
    }
    return drop(Reason::routeDrops);
}

Verdict egressInterface(Walk& walk) {
    auto const& intf = *walk.tables.l3Intf(walk.hop.domain);
    walk.routed = true;
    walk.outDomain = walk.hop.domain;
    walk.target = intf.out;
    walk.met(InDomain{walk.outDomain});
    if (intf.isVlan()) {
        return goOn(Reason::intoVlan, Step::fdb);
    }
    walk.met(intf.out);
    return goOn(intf.tag == 0 ? Reason::outOfRoutedPort : Reason::outOfSubInterface,
                Step::lagMember);
}

}  // namespace SoftChip::PipelineSteps
