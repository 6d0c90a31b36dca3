// Access lists and the protocols that the CPU gets copies of.
#include <algorithm>
#include <map>
#include <set>

#include "Net/EtherType.h"
#include "Net/IpProtocol.h"
#include "Net/TcpFlag.h"
#include "switchfile/NumberText.h"
#include "switchfile/SwitchFileReader.h"

namespace SwitchFile {
namespace {

using SoftChip::FrameMatch;

std::uint8_t readByte(JsonNode value, int most, std::string_view what) {
    return static_cast<std::uint8_t>(value.integer(0, most, what));
}

std::uint16_t readEtherType(JsonNode value) {
    if (value.kind() == JsonNode::Kind::integer) {
        return static_cast<std::uint16_t>(
            value.integer(Net::EtherType::least, 0xffff, "an EtherType"));
    }
    constexpr std::string_view expected =
        "an EtherType: ipv4, ipv6, arp, a number or a text such as 0x88cc";
    auto const type = Net::EtherType::fromText(value.text(expected));
    if (!type || *type < Net::EtherType::least) {
        throw value.expected(expected);
    }
    return *type;
}

std::uint8_t readProtocol(JsonNode value) {
    if (value.kind() == JsonNode::Kind::integer) {
        return readByte(value, 255, "an IP protocol");
    }
    constexpr std::string_view expected =
        "an IP protocol: icmp, igmp, tcp, udp, gre, icmpv6, ospf, pim, vrrp or a number";
    auto const known = Net::IpProtocol::fromText(value.text(expected));
    if (!known) {
        throw value.expected(expected);
    }
    return *known;
}

SoftChip::Range readNumberRange(JsonNode value, std::uint16_t most, std::string_view what) {
    if (value.kind() == JsonNode::Kind::integer) {
        auto const number = static_cast<std::uint16_t>(value.integer(0, most, what));
        return {number, number};
    }
    auto const range = value.isText() ? parseRange(value.text(), 0, most) : std::nullopt;
    if (!range) {
        throw value.expected(std::string(what) + " from 0 to " + std::to_string(most) +
                             ", or a range such as \"8000-8099\"");
    }
    return {static_cast<std::uint16_t>(range->first), static_cast<std::uint16_t>(range->last)};
}

SoftChip::MacMatch readMacMatch(JsonNode value) {
    std::string_view const text = value.text("a MAC address, or address/mask");
    std::size_t const slash = text.find('/');
    SoftChip::MacMatch match;
    match.value = readMac(value, text.substr(0, slash), value.shown());
    if (slash != std::string_view::npos) {
        match.mask = readMac(value, text.substr(slash + 1), value.shown());
    }
    return match;
}

SoftChip::IpMatch readIpMatch(JsonNode value) {
    auto const prefix = Net::Prefix::fromText(value.text("an IP prefix"));
    if (!prefix) {
        throw value.expected("an address, or a prefix without host bits such as 10.1.0.0/16");
    }
    return SoftChip::IpMatch::prefix(*prefix);
}

SoftChip::TcpFlagsMatch readTcpFlags(JsonNode value) {
    std::string_view rest = value.text("TCP flags such as \"syn,!ack\"");
    SoftChip::TcpFlagsMatch match;
    while (true) {
        std::size_t const comma = rest.find(',');
        std::string_view flag = rest.substr(0, comma);
        bool const set = flag.empty() || flag[0] != '!';
        flag.remove_prefix(set ? 0 : 1);
        auto const known = Net::TcpFlag::fromText(flag);
        if (!known || (match.mask & *known) != 0) {
            throw value.expected(
                "fin, syn, rst, psh, ack, urg, ece and cwr, each at most once, with ! for a flag "
                "that is not set, as in \"syn,!ack\"");
        }
        match.mask |= *known;
        match.value |= set ? *known : std::uint8_t{0};
        if (comma == std::string_view::npos) {
            return match;
        }
        rest.remove_prefix(comma + 1);
    }
}

// Takes `field` into the match; false if it is no field of a frame.
bool readField(JsonNode field, FrameMatch& match) {
    std::string_view const name = field.name();
    if (name == "sourceMac") {
        match.srcMac = readMacMatch(field);
    } else if (name == "destinationMac") {
        match.dstMac = readMacMatch(field);
    } else if (name == "etherType") {
        match.etherType = readEtherType(field);
    } else if (name == "vlanPriority") {
        match.vlanPriority = readByte(field, 7, "a VLAN priority");
    } else if (name == "source") {
        match.srcIp = readIpMatch(field);
    } else if (name == "destination") {
        match.dstIp = readIpMatch(field);
    } else if (name == "protocol") {
        match.ipProtocol = readProtocol(field);
    } else if (name == "dscp") {
        match.dscp = readByte(field, 63, "a DSCP");
    } else if (name == "ttl") {
        match.ttl = readNumberRange(field, 255, "a TTL");
    } else if (name == "fragment") {
        match.fragment = field.boolean();
    } else if (name == "sourcePort") {
        match.srcPort = readNumberRange(field, 65535, "a port");
    } else if (name == "destinationPort") {
        match.dstPort = readNumberRange(field, 65535, "a port");
    } else if (name == "tcpFlags") {
        match.tcpFlags = readTcpFlags(field);
    } else if (name == "icmpType") {
        match.icmpType = readByte(field, 255, "an ICMP type");
    } else if (name == "icmpCode") {
        match.icmpCode = readByte(field, 255, "an ICMP code");
    } else {
        return false;
    }
    return true;
}

constexpr std::string_view fieldNames =
    "sourceMac, destinationMac, etherType, vlanPriority, source, destination, protocol, dscp, ttl, "
    "fragment, sourcePort, destinationPort, tcpFlags, icmpType, icmpCode";

// Refuses fields that no frame has together, so that the rule could never match.
void refuseImpossible(JsonNode rule, FrameMatch const& match) {
    if (match.srcIp && match.dstIp && match.srcIp->value.family != match.dstIp->value.family) {
        throw rule.member("destination")
            .expected("an address of the same family as source",
                      rule.member("destination").shown());
    }
    bool const ip = match.srcIp || match.dstIp || match.ipProtocol || match.dscp || match.ttl;
    if (ip && match.etherType && *match.etherType != Net::EtherType::ipv4 &&
        *match.etherType != Net::EtherType::ipv6 &&
        (*match.etherType != Net::EtherType::arp || match.ipProtocol || match.dscp || match.ttl)) {
        throw rule.member("etherType").expected("ipv4 or ipv6 beside fields of IP");
    }
    auto const needs = [&](std::string_view field, std::initializer_list<std::uint8_t> protocols,
                           std::string_view names) {
        if (rule.member(field) && match.ipProtocol &&
            std::find(protocols.begin(), protocols.end(), *match.ipProtocol) == protocols.end()) {
            throw rule.member("protocol")
                .expected(std::string(names) + " beside " + std::string(field));
        }
    };
    for (std::string_view const field : {"sourcePort", "destinationPort"}) {
        needs(field, {Net::IpProtocol::tcp, Net::IpProtocol::udp}, "tcp or udp");
    }
    needs("tcpFlags", {Net::IpProtocol::tcp}, "tcp");
    for (std::string_view const field : {"icmpType", "icmpCode"}) {
        needs(field, {Net::IpProtocol::icmp, Net::IpProtocol::icmpv6}, "icmp or icmpv6");
    }
}

FrameMatch ipProtocol(std::uint8_t number) {
    FrameMatch match;
    match.ipProtocol = number;
    return match;
}

FrameMatch udpTo(std::uint16_t first, std::uint16_t last) {
    FrameMatch match = ipProtocol(Net::IpProtocol::udp);
    match.dstPort = SoftChip::Range{first, last};
    return match;
}

FrameMatch neighbourDiscovery(std::uint8_t type) {
    FrameMatch match = ipProtocol(Net::IpProtocol::icmpv6);
    match.icmpType = type;
    return match;
}

// The frames that a protocol's name stands for; empty for an unknown name.
std::vector<FrameMatch> protocolMatches(std::string_view name) {
    if (name == "arp") {
        FrameMatch match;
        match.etherType = Net::EtherType::arp;
        return {match};
    }
    if (name == "nd") {
        return {neighbourDiscovery(133), neighbourDiscovery(134), neighbourDiscovery(135),
                neighbourDiscovery(136), neighbourDiscovery(137)};
    }
    if (name == "dhcp") {
        return {udpTo(67, 68)};
    }
    if (name == "dhcpv6") {
        return {udpTo(546, 547)};
    }
    if (name == "bfd") {
        return {udpTo(3784, 3785)};
    }
    if (name == "igmp" || name == "ospf" || name == "pim" || name == "vrrp") {
        return {ipProtocol(*Net::IpProtocol::fromText(name))};
    }
    return {};
}

}  // namespace

void SwitchFileReader::readAcls(JsonNode value) {
    for (JsonNode const acl : value.object()) {
        if (acl.name().empty() || model_.acls.size() > 0xffff) {
            throw acl.expected("a name for the access list, and at most 65536 of them",
                               acl.shownName());
        }
        acls_.emplace(acl.name(), static_cast<std::uint16_t>(model_.acls.size()));
        model_.acls.push_back(readAcl(acl));
    }
}

Acl SwitchFileReader::readAcl(JsonNode value) {
    Acl acl;
    acl.name = value.name();
    std::map<std::uint32_t, SoftChip::AclRule> rules;
    std::uint32_t last = 0;
    for (JsonNode const rule : value.list()) {
        auto const read = readRule(rule, last <= 0xffffffff - 10 ? last + 10 : last);
        last = read.sequence;
        if (!rules.emplace(read.sequence, read).second) {
            JsonNode const given = rule.member("sequence");
            throw(given ? given : rule)
                .expected("a sequence number that no other rule of the list has",
                          std::to_string(last) + " again");
        }
    }
    for (auto const& entry : rules) {
        acl.rules.push_back(entry.second);
    }
    return acl;
}

SoftChip::AclRule SwitchFileReader::readRule(JsonNode value, std::uint32_t defaultSequence) {
    SoftChip::AclRule rule;
    rule.sequence = defaultSequence;
    bool hasAction = false;
    for (JsonNode const member : value.object()) {
        if (member.name() == "sequence") {
            rule.sequence =
                static_cast<std::uint32_t>(member.integer(1, 0xffffffff, "a sequence number"));
        } else if (member.name() == "action") {
            constexpr std::string_view expected = "permit, drop or copy";
            std::string_view const action = member.text(expected);
            if (action != "permit" && action != "drop" && action != "copy") {
                throw member.expected(expected);
            }
            hasAction = true;
            rule.action = action == "drop" ? SoftChip::AclRule::Action::drop
                                           : SoftChip::AclRule::Action::permit;
            rule.copyToCpu = rule.copyToCpu || action == "copy";
        } else if (member.name() == "copyToCpu") {
            rule.copyToCpu = rule.copyToCpu || member.boolean();
        } else if (member.name() == "remark") {
            member.text();
        } else if (!readField(member, rule.match)) {
            throw member.expected("one of the members sequence, action, copyToCpu, remark, " +
                                      std::string(fieldNames),
                                  member.shownName());
        }
    }
    if (!hasAction) {
        throw value.expected("a member action", "none");
    }
    refuseImpossible(value, rule.match);
    return rule;
}

void SwitchFileReader::readProtocolCopies(JsonNode value) {
    std::set<std::string_view> seen;
    for (JsonNode const entry : value.list()) {
        if (entry.isObject()) {
            SoftChip::ProtocolRule rule;
            bool any = false;
            for (JsonNode const member : entry) {
                if (member.name() == "trap") {
                    rule.trap = member.boolean();
                } else if (readField(member, rule.match)) {
                    any = true;
                } else {
                    throw member.expected("one of the members trap, " + std::string(fieldNames),
                                          member.shownName());
                }
            }
            if (!any) {
                throw entry.expected("at least one field of a frame", "none");
            }
            refuseImpossible(entry, rule.match);
            model_.protocolRules.push_back(rule);
            continue;
        }
        constexpr std::string_view expected =
            "arp, nd, dhcp, dhcpv6, igmp, ospf, pim, vrrp, bfd or an object of fields";
        auto const matches = protocolMatches(entry.text(expected));
        if (matches.empty()) {
            throw entry.expected(expected);
        }
        if (!seen.insert(entry.text()).second) {
            throw entry.expected("each protocol once", entry.shown() + " again");
        }
        for (FrameMatch const& match : matches) {
            model_.protocolRules.push_back({match, false});
        }
    }
}

}  // namespace SwitchFile
