// Steps 1 to 7 and 11 to 13: from the wire to a domain, and from a domain to the wire.
#include "softchip/PipelineSteps.h"

#include <algorithm>

#include "softchip/Hash.h"
#include "softchip/Phase0.h"

namespace SoftChip::PipelineSteps {
namespace {

constexpr std::uint16_t reservedTag = 4095;

// The tag that classifies the frame: the outer one, or 0 if there is none or it only has a
// priority.
std::uint16_t classifyingTag(ParsedFrame const& frame) {
    return frame.tagCount > 0 ? frame.tags[0].vlan : 0;
}

// Whether the domain is that of one routed port or sub-interface, in which nothing is bridged. A
// sub-interface may also lead into a VLAN, which then admits and floods as for any port.
bool isInternal(Tables const& tables, DomainId domain) {
    auto const* intf = tables.l3Intf(domain);
    return (intf && !intf->isVlan()) || !tables.vlan(domain);
}

// `mayBeInternal`: the domain comes from the port's configuration, not from the frame's tag.
Verdict enterDomain(Walk& walk, DomainId domain, bool mayBeInternal, Reason reason) {
    walk.domain = walk.outDomain = domain;
    walk.internal = mayBeInternal && isInternal(walk.tables, domain);
    walk.met(InDomain{domain});
    return goOn(reason, Step::vlanAdmission);
}

Verdict classifyUntagged(Walk& walk, PortMode mode) {
    if (mode.untagged == noDomain) {
        return drop(Reason::untaggedRefused);
    }
    bool const routed = mode.kind == PortMode::Kind::routed;
    return enterDomain(walk, mode.untagged, routed,
                       routed ? Reason::routedPort : Reason::untaggedVlan);
}

Verdict classifyTagged(Walk& walk, PortMode mode, std::uint16_t tag) {
    walk.met(OuterTag{tag});
    if (tag == reservedTag) {
        return drop(Reason::tagReserved);
    }
    if (mode.kind == PortMode::Kind::routed) {
        return drop(Reason::tagRefused);
    }
    return enterDomain(walk, tag, false, Reason::taggedVlan);
}

// 01:80:c2:00:00:00 to 0f: addresses that bridges do not forward.
bool isReservedGroup(MacAddress mac) {
    return mac.value >> 4 == 0x0180c2000000 >> 4;
}

bool isIpLinkLocalGroup(ParsedFrame const& frame) {
    if (!frame.hasIp || !frame.dst.isMulticast()) {
        return false;
    }
    return frame.dstIp.family == Family::ipv4 ? frame.dstIp.asV4() >> 8 == 0xe00000
                                              : frame.dstIp.hi >> 48 == 0xff02;
}

Verdict afterControl(Walk& walk, Reason reason) {
    walk.copyToCpu |= reason != Reason::notControl;
    return goOn(reason, Step::routerMac);
}

ProtocolRule const* protocolRule(Walk const& walk) {
    auto const& rules = walk.tables.protocolRules();
    auto const found = std::ranges::find_if(rules, [&](ProtocolRule const& rule) {
        return rule.match.matches(walk.frame, walk.ingress, walk.domain);
    });
    return found == rules.end() ? nullptr : &*found;
}

// Whether IP follows right behind the domain's own tag. Frames with a second tag are not routed.
bool isIpInDomain(ParsedFrame const& frame) {
    return frame.isIp() && frame.tagCount <= 1;
}

Verdict floodGroup(Walk& walk, MacAddress mac) {
    walk.met(InDomain{walk.outDomain});
    return flood(mac.isBroadcast() ? Reason::broadcastFlood : Reason::multicastFlood);
}

bool isAdmittedTo(Tables const& tables, DomainId domain, LogicalPort port) {
    auto const* vlan = tables.vlan(domain);
    auto const* device = port.isPort() ? tables.port(port.number()) : nullptr;
    return (vlan && vlan->has(port)) || (device && device->cpu);
}

bool canSend(Tables const& tables, LagMember const& member) {
    auto const* port = tables.port(member.port);
    return member.distributing && port && port->up;
}

}  // namespace

Verdict parse(Walk& walk) {
    auto const port = decodePhase0(walk.phase0);
    if (!port) {
        return drop(Reason::phase0Unknown);
    }
    walk.ingressPort = *port;
    walk.frame = parseFrame(walk.bytes);
    if (walk.explain) [[unlikely]] {
        walk.explain->metFrame(walk.frame);
    }
    if (walk.frame.l2Fault != L2Fault::none) {
        bool const inTag = walk.frame.l2Fault == L2Fault::tagTooShort;
        return drop(inTag ? Reason::tagTooShort : Reason::frameTooShort);
    }
    return walk.frame.src.isMulticast() ? drop(Reason::sourceMulticast)
                                        : goOn(Reason::parsed, Step::portUp);
}

Verdict portUp(Walk& walk) {
    walk.ingress = walk.tables.logicalPort(walk.ingressPort);
    walk.met(LogicalPort::port(walk.ingressPort));
    if (walk.ingress.isLag()) {
        walk.met(InLag{walk.ingress.number()});
    }
    auto const* port = walk.tables.port(walk.ingressPort);
    if (!port) {
        return drop(Reason::portUnknown);
    }
    return port->up ? goOn(Reason::portIsUp, Step::vlanClassification) : drop(Reason::portDown);
}

Verdict vlanClassification(Walk& walk) {
    auto const tag = classifyingTag(walk.frame);
    if (auto const domain = walk.tables.subIntf(walk.ingress, tag); domain != noDomain) {
        walk.met(OuterTag{tag});
        return enterDomain(walk, domain, true, Reason::subInterface);
    }
    auto const mode = walk.tables.mode(walk.ingress);
    if (mode.kind == PortMode::Kind::none) {
        return drop(Reason::noVlanOnPort);
    }
    return tag == 0 ? classifyUntagged(walk, mode) : classifyTagged(walk, mode, tag);
}

Verdict vlanAdmission(Walk& walk) {
    if (walk.internal) {
        return goOn(Reason::internalDomain, Step::ingressAcl);
    }
    walk.met(InDomain{walk.domain});
    auto const* vlan = walk.tables.vlan(walk.domain);
    if (vlan && vlan->has(walk.ingress)) {
        return goOn(Reason::admitted, Step::ingressAcl);
    }
    if (vlan) {
        return drop(Reason::vlanNotOnPort);
    }
    walk.domain = noDomain;  // a VLAN that does not exist is no domain
    return drop(Reason::vlanUnknown);
}

Verdict ingressAcl(Walk& walk) {
    auto const verdict = walk.tables.acl().check(walk.frame, walk.ingress, walk.domain);
    if (!verdict.decided) {
        return goOn(Reason::noAclRule, Step::linkLocal);
    }
    walk.met(RuleOfList{verdict.decided->list, verdict.decided->sequence});
    walk.copyToCpu |= verdict.copyToCpu;
    if (verdict.drop) {
        return drop(Reason::aclDrop);
    }
    return goOn(verdict.copyToCpu ? Reason::aclCopy : Reason::aclPermit, Step::linkLocal);
}

Verdict linkLocal(Walk& walk) {
    if (isReservedGroup(walk.frame.dst)) {
        return toCpu(Reason::linkLocalTrap);
    }
    if (auto const* rule = protocolRule(walk)) {
        return rule->trap ? toCpu(Reason::protocolTrap) : afterControl(walk, Reason::protocolCopy);
    }
    bool const routes = walk.tables.l3Intf(walk.domain) != nullptr;
    if (routes && walk.frame.l3 == L3::arp && walk.frame.dst.isBroadcast()) {
        return afterControl(walk, Reason::arpBroadcastCopy);
    }
    if (routes && isIpLinkLocalGroup(walk.frame)) {
        return afterControl(walk, Reason::ipLinkLocalCopy);
    }
    return afterControl(walk, Reason::notControl);
}

Verdict routerMac(Walk& walk) {
    auto const& frame = walk.frame;
    walk.met(frame.dst);
    if (frame.dst.isMulticast()) {
        return goOn(Reason::groupAddress, Step::fdb);
    }
    if (walk.tables.isRouterMac(walk.domain, frame.dst)) {
        return isIpInDomain(frame) ? goOn(Reason::toRouter, Step::ownAddress)
                                   : toCpu(Reason::nonIpToRouter);
    }
    return walk.internal ? drop(Reason::notForRoutedPort) : goOn(Reason::notRouterMac, Step::fdb);
}

Verdict fdb(Walk& walk) {
    auto const mac = walk.routed ? walk.hopMac : walk.frame.dst;
    if (mac.isMulticast()) {
        return floodGroup(walk, mac);
    }
    walk.met(MacInDomain{mac, walk.outDomain});
    walk.target = walk.tables.fdb(walk.outDomain, mac);
    if (walk.target.isNone()) {
        return flood(walk.routed ? Reason::neighbourMacFlood : Reason::unknownUnicastFlood);
    }
    walk.met(walk.target);
    if (!walk.routed && walk.target == walk.ingress) {
        return drop(Reason::hairpin);
    }
    if (!isAdmittedTo(walk.tables, walk.outDomain, walk.target)) {
        return drop(Reason::fdbPortNotInVlan);
    }
    return goOn(Reason::fdbHit, Step::lagMember);
}

Verdict lagMember(Walk& walk) {
    walk.egressPort = walk.target.number();
    if (!walk.target.isLag()) {
        return goOn(Reason::notLag, Step::egressPortUp);
    }
    auto const* lag = walk.tables.lag(walk.target.number());
    auto const sends = [&](LagMember const& member) { return canSend(walk.tables, member); };
    auto const count = lag ? std::ranges::count_if(lag->members, sends) : 0;
    walk.met(walk.target);
    walk.met(MembersUp{static_cast<std::uint32_t>(count)});
    if (count == 0) {
        return drop(Reason::allMembersDown);
    }
    auto picked = pick(lagHash(walk.frame), static_cast<std::size_t>(count));
    auto const isPicked = [&](LagMember const& member) { return sends(member) && picked-- == 0; };
    walk.egressPort = std::ranges::find_if(lag->members, isPicked)->port;
    return goOn(Reason::lagMember, Step::egressPortUp);
}

Verdict egressPortUp(Walk& walk) {
    walk.met(LogicalPort::port(walk.egressPort));
    auto const* port = walk.tables.port(walk.egressPort);
    return port && port->up ? forward(Reason::forwarded) : drop(Reason::egressPortDown);
}

}  // namespace SoftChip::PipelineSteps
