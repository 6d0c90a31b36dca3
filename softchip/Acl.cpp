#include "softchip/Acl.h"

#include <algorithm>
#include <tuple>

#include "softchip/Frame.h"

namespace SoftChip {
namespace {

template <class Field>
bool equals(std::optional<Field> const& wanted, Field const& actual) {
    return !wanted || *wanted == actual;
}

template <class Match, class Field>
bool within(std::optional<Match> const& wanted, Field const& actual) {
    return !wanted || wanted->matches(actual);
}

bool inRange(std::optional<Range> const& wanted, std::uint16_t actual) {
    return !wanted || wanted->contains(actual);
}

bool matchesL2(FrameMatch const& match, ParsedFrame const& frame) {
    return within(match.srcMac, frame.src) && within(match.dstMac, frame.dst) &&
           equals(match.etherType, frame.etherType) &&
           (!match.vlanPriority ||
            (frame.tagCount > 0 && frame.tags[0].priority == *match.vlanPriority));
}

// Whether the match's addresses may be compared with the frame's.
bool hasAddresses(FrameMatch const& match, ParsedFrame const& frame) {
    bool const arp = frame.l3 == L3::arp && frame.l3Fault == L3Fault::none;
    return frame.hasIp || (arp && match.etherType == Net::EtherType::arp);
}

bool matchesAddresses(FrameMatch const& match, ParsedFrame const& frame) {
    if (match.srcIp || match.dstIp) {
        return hasAddresses(match, frame) && within(match.srcIp, frame.srcIp) &&
               within(match.dstIp, frame.dstIp);
    }
    return true;
}

bool matchesIpHeader(FrameMatch const& match, ParsedFrame const& frame) {
    if (match.ipProtocol || match.dscp || match.ttl || match.fragment) {
        return frame.hasIp && equals(match.ipProtocol, frame.protocol) &&
               equals(match.dscp, frame.dscp) && inRange(match.ttl, frame.ttl) &&
               equals(match.fragment, frame.fragment);
    }
    return true;
}

bool matchesPorts(FrameMatch const& match, ParsedFrame const& frame) {
    if (match.srcPort || match.dstPort) {
        return frame.hasPorts() && inRange(match.srcPort, frame.srcPort) &&
               inRange(match.dstPort, frame.dstPort);
    }
    return true;
}

bool matchesL4(FrameMatch const& match, ParsedFrame const& frame) {
    if (match.tcpFlags && (frame.l4 != L4::tcp ||
                           ((frame.tcpFlags ^ match.tcpFlags->value) & match.tcpFlags->mask))) {
        return false;
    }
    if ((match.icmpType || match.icmpCode) && !frame.hasIcmp()) {
        return false;
    }
    return matchesPorts(match, frame) && equals(match.icmpType, frame.icmpType) &&
           equals(match.icmpCode, frame.icmpCode);
}

}  // namespace

IpMatch IpMatch::prefix(Prefix const& prefix) {
    IpAddress const all{~std::uint64_t{0}, ~std::uint64_t{0}, prefix.address.family};
    return {prefix.address, all.masked(prefix.length)};
}

bool FrameMatch::matches(ParsedFrame const& frame, LogicalPort from, DomainId in) const {
    return (ingress.isNone() || ingress == from) && (domain == noDomain || domain == in) &&
           matchesL2(*this, frame) && matchesAddresses(*this, frame) &&
           matchesIpHeader(*this, frame) && matchesL4(*this, frame);
}

std::vector<AclRule>::iterator AclTable::position(std::uint16_t list, std::uint32_t sequence) {
    auto const before = [](AclRule const& rule, std::pair<std::uint16_t, std::uint32_t> key) {
        return std::pair(rule.list, rule.sequence) < key;
    };
    std::pair const key(list, sequence);
    if (rules_.empty() || before(rules_.back(), key)) {
        return rules_.end();
    }
    return std::lower_bound(rules_.begin(), rules_.end(), key, before);
}

void AclTable::ruleIs(AclRule const& rule) {
    auto const at = position(rule.list, rule.sequence);
    if (at != rules_.end() && at->list == rule.list && at->sequence == rule.sequence) {
        *at = rule;
    } else {
        rules_.insert(at, rule);
    }
}

bool AclTable::ruleDel(std::uint16_t list, std::uint32_t sequence) {
    auto const at = position(list, sequence);
    if (at == rules_.end() || at->list != list || at->sequence != sequence) {
        return false;
    }
    rules_.erase(at);
    return true;
}

AclVerdict AclTable::check(ParsedFrame const& frame, LogicalPort from, DomainId in) const {
    AclVerdict verdict;
    AclRule const* last = nullptr;
    for (auto const& rule : rules_) {
        if ((last && last->list == rule.list) || !rule.match.matches(frame, from, in)) {
            continue;
        }
        last = &rule;
        bool const firstDrop = rule.action == AclRule::Action::drop && !verdict.drop;
        if (!verdict.decided || firstDrop) {
            verdict.decided = &rule;
        }
        verdict.drop |= firstDrop;
        verdict.copyToCpu |= rule.copyToCpu;
    }
    return verdict;
}

}  // namespace SoftChip
