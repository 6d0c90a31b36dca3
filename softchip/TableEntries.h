// What the chip's tables hold: plain values, to be filled by name.
#pragma once

#include <cstdint>
#include <vector>

#include "softchip/Acl.h"
#include "softchip/Addresses.h"
#include "softchip/Ports.h"

namespace SoftChip {

// A port of the chip; pipeOf(port) is its pipe.
struct Port {
    bool up = false;
    bool cpu = false;  // leads to the CPU
};

// How a port or LAG assigns frames to domains. A tag that is a sub-interface's goes to that
// sub-interface's domain in every mode; untagged includes tagged with VLAN 0. `untagged` is the
// access VLAN, the native VLAN or the internal VLAN by mode; noDomain refuses untagged frames.
struct PortMode {
    enum class Kind : std::uint8_t {
        none,     // refuses everything
        bridged,  // access or trunk: a tag names the VLAN, which must then admit the port
        routed,   // a tag that is no sub-interface's is refused
    };
    Kind kind = Kind::none;
    DomainId untagged = noDomain;

    // An access port is a trunk that carries only its own VLAN: the difference lies in the VLANs
    // that have it as a member.
    static PortMode access(DomainId vlan) { return {Kind::bridged, vlan}; }
    static PortMode trunk(DomainId native = noDomain) { return {Kind::bridged, native}; }
    static PortMode routed(DomainId internal = noDomain) { return {Kind::routed, internal}; }
};

struct LagMember {
    DevicePort port = 0;
    bool distributing = true;  // may send; it must also be up
};

struct Lag {
    std::vector<LagMember> members{};  // ascending by port
};

// A VLAN and the ports and LAGs that it admits and floods to. The domain of a routed port or
// sub-interface needs no Vlan.
struct Vlan {
    std::vector<LogicalPort> members{};  // ascending

    bool has(LogicalPort port) const;
};

// The routing side of a domain.
struct L3Intf {
    VrfId vrf = 0;
    MacAddress routerMac{};
    // The port or LAG of a routed port's or sub-interface's domain; none for a VLAN interface,
    // where the VLAN's FDB decides.
    LogicalPort out{};
    std::uint16_t tag = 0;  // the sub-interface's tag, 0 for none

    bool isVlan() const { return out.isNone(); }
};

// One next hop: the interface and the neighbour's address there.
struct NextHop {
    DomainId domain = noDomain;
    IpAddress gateway{};

    friend bool operator==(NextHop const&, NextHop const&) = default;
};

struct Route {
    enum class Kind : std::uint8_t {
        nextHops,   // through one hop of the set, which the flow's hash picks
        connected,  // on the subnet of `domain`: the destination is the neighbour
        drop,
        toCpu,
    };
    Kind kind = Kind::drop;
    std::uint32_t nextHopSet = 0;  // for nextHops
    DomainId domain = noDomain;    // for connected

    static Route via(std::uint32_t set) { return {Kind::nextHops, set, noDomain}; }
    static Route connected(DomainId domain) { return {Kind::connected, 0, domain}; }
    static Route drop() { return {Kind::drop, 0, noDomain}; }
    static Route toCpu() { return {Kind::toCpu, 0, noDomain}; }

    friend bool operator==(Route const&, Route const&) = default;
};

// A protocol that the CPU wants to see, in every domain. The first rule that matches decides.
struct ProtocolRule {
    FrameMatch match{};
    bool trap = false;  // true: to the CPU alone; false: a copy besides
};

}  // namespace SoftChip
