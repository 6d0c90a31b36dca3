// Ingress access lists: what a rule matches, and what the rules of all lists say of a frame.
//
// Lists are looked at independently of one another (one for a port and one for its VLAN, say);
// within a list the matching rule with the lowest sequence number decides. A list without a
// matching rule permits; an implicit drop at its end must be a rule like any other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "softchip/Addresses.h"
#include "softchip/Ports.h"

namespace SoftChip {

struct ParsedFrame;

// Values from `first` to `last`, both included; by default all.
struct Range {
    std::uint16_t first = 0;
    std::uint16_t last = 0xffff;

    bool contains(std::uint16_t value) const { return first <= value && value <= last; }
    bool isAll() const { return first == 0 && last == 0xffff; }
    friend bool operator==(Range const&, Range const&) = default;
};

// Matches the addresses that equal `value` in the bits of `mask`.
struct MacMatch {
    MacAddress value{};
    MacAddress mask{0xffffffffffff};

    bool matches(MacAddress mac) const { return ((mac.value ^ value.value) & mask.value) == 0; }
};

// The same for IP; an address of the other family never matches.
struct IpMatch {
    IpAddress value{};
    IpAddress mask{};  // its family is not looked at

    static IpMatch prefix(Prefix const& prefix);
    bool matches(IpAddress const& address) const {
        return address.family == value.family && ((address.hi ^ value.hi) & mask.hi) == 0 &&
               ((address.lo ^ value.lo) & mask.lo) == 0;
    }
};

// The flags `value` among the flags `mask`, as in the TCP header's byte 13.
struct TcpFlagsMatch {
    std::uint8_t value = 0;
    std::uint8_t mask = 0;
};

// The frames that a rule applies to: every field that is given must match; a match without any
// field matches every frame. A field that the frame does not have (an IP address in an LLDP frame,
// a port in a later fragment or behind a broken header) matches nothing.
//
// IP addresses are compared with those of IP packets. A match for EtherType ARP compares them with
// the sender's (source) and the target's (destination) address; other matches with IP addresses
// never match ARP, so that a rule against a subnet's packets does not drop its ARP.
struct FrameMatch {
    // The port or LAG where the frame came in; empty for any.
    LogicalPort ingress{};
    DomainId domain = noDomain;

    std::optional<MacMatch> srcMac{};
    std::optional<MacMatch> dstMac{};
    std::optional<std::uint16_t> etherType{};    // the innermost one
    std::optional<std::uint8_t> vlanPriority{};  // of the outer tag

    std::optional<IpMatch> srcIp{};
    std::optional<IpMatch> dstIp{};
    std::optional<std::uint8_t> ipProtocol{};  // the one behind IPv6 extension headers
    std::optional<std::uint8_t> dscp{};
    std::optional<Range> ttl{};
    std::optional<bool> fragment{};

    std::optional<Range> srcPort{};  // TCP and UDP
    std::optional<Range> dstPort{};
    std::optional<TcpFlagsMatch> tcpFlags{};
    std::optional<std::uint8_t> icmpType{};  // ICMP and ICMPv6
    std::optional<std::uint8_t> icmpCode{};

    bool matches(ParsedFrame const& frame, LogicalPort from, DomainId in) const;
};

// One rule of a list.
struct AclRule {
    enum class Action : std::uint8_t { permit, drop };

    std::uint16_t list = 0;
    std::uint32_t sequence = 0;
    FrameMatch match{};
    Action action = Action::permit;
    bool copyToCpu = false;
};

// What the lists decide about one frame: it is dropped if any of them drops it, and copied if any
// of them copies it.
struct AclVerdict {
    AclRule const* decided = nullptr;  // the first dropping rule, else the first that matched
    bool drop = false;
    bool copyToCpu = false;
};

// All rules, ordered by list and sequence. Owned by one thread.
class AclTable {
  public:
    // Adds the rule, or replaces the one with its list and sequence. Rules that come in order are
    // appended at constant cost.
    void ruleIs(AclRule const& rule);
    // Removes the rule; false if there was none.
    bool ruleDel(std::uint16_t list, std::uint32_t sequence);
    std::vector<AclRule> const& rules() const { return rules_; }

    AclVerdict check(ParsedFrame const& frame, LogicalPort from, DomainId in) const;

  private:
    std::vector<AclRule>::iterator position(std::uint16_t list, std::uint32_t sequence);

    std::vector<AclRule> rules_;
};

}  // namespace SoftChip
