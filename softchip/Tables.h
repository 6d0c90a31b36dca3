// The tables of the software chip: what an agent programs and the pipeline looks up.
//
// Tables is a value. The chip's thread owns the instance in use; an agent changes it by commands
// that run on that thread, or fills one of its own and has it swapped in whole. Nothing in it
// refers to a reference-counted object, so a copy may move to another thread. Every pointer that a
// lookup returns is good until the next change of the tables.
//
// Verbs: `xIs` adds or replaces, `xDel` removes and says whether there was anything, `x` looks up.
// A number out of its range raises std::out_of_range and names the table. References between tables
// are not checked, as in silicon: frames that meet an entry whose reference leads nowhere are
// dropped.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "softchip/Acl.h"
#include "softchip/Addresses.h"
#include "softchip/FlatHash.h"
#include "softchip/Lpm.h"
#include "softchip/Ports.h"
#include "softchip/TableEntries.h"

namespace SoftChip {

class Tables {
  public:
    Tables();

    // Ports. A port that was never set does not exist.
    void portIs(DevicePort port, bool up, bool cpu = false);
    void portUpIs(DevicePort port, bool up);  // of an existing port; otherwise without effect
    bool portDel(DevicePort port);
    Port const* port(DevicePort port) const;
    // The port that takes what goes to the CPU: the lowest-numbered CPU port.
    std::optional<DevicePort> cpuPort() const { return cpuPort_; }

    // The mode of a port or LAG; a LAG's mode holds for all its members, whose own modes are
    // ignored.
    void modeIs(LogicalPort port, PortMode mode);
    PortMode mode(LogicalPort port) const;  // Kind::none if none was set

    // LAGs. A port is in one LAG at most: the last one that was set with it as a member. Deleting a
    // LAG forgets its mode too.
    void lagIs(LagId lag, std::vector<LagMember> members);
    bool lagDel(LagId lag);
    Lag const* lag(LagId lag) const;
    // The logical port where a frame from `port` enters: the port's LAG, or the port itself.
    LogicalPort logicalPort(DevicePort port) const;

    // Sub-interfaces: the domain of the frames with `tag` (1 to 4094) on a port or LAG. If that is
    // a VLAN, the sub-interface is bridged: the VLAN must have the port or LAG as a member.
    void subIntfIs(LogicalPort parent, std::uint16_t tag, DomainId domain);
    bool subIntfDel(LogicalPort parent, std::uint16_t tag);
    DomainId subIntf(LogicalPort parent, std::uint16_t tag) const;  // noDomain if there is none

    // VLANs and their members. A membership in a VLAN that does not exist creates the VLAN.
    void vlanIs(DomainId vlan);
    bool vlanDel(DomainId vlan);
    Vlan const* vlan(DomainId vlan) const;
    void vlanMemberIs(DomainId vlan, LogicalPort member);
    bool vlanMemberDel(DomainId vlan, LogicalPort member);

    // L3 interfaces, by domain: VLAN interfaces, routed ports and sub-interfaces.
    void l3IntfIs(DomainId domain, L3Intf const& intf);
    bool l3IntfDel(DomainId domain);
    L3Intf const* l3Intf(DomainId domain) const;
    // Further MAC addresses that the router answers to in the domain (a virtual router's).
    void virtualMacIs(DomainId domain, MacAddress mac);
    bool virtualMacDel(DomainId domain, MacAddress mac);
    // Whether the domain routes and `mac` is its router's.
    bool isRouterMac(DomainId domain, MacAddress mac) const;

    // The switch's own addresses.
    void ownAddressIs(VrfId vrf, IpAddress address);
    bool ownAddressDel(VrfId vrf, IpAddress address);
    bool isOwnAddress(VrfId vrf, IpAddress const& address) const;

    // Next-hop sets and routes. A set's order matters: the hash picks by position.
    void nextHopSetIs(std::uint32_t set, std::vector<NextHop> hops);
    bool nextHopSetDel(std::uint32_t set);
    std::vector<NextHop> const* nextHopSet(std::uint32_t set) const;
    void routeIs(VrfId vrf, Prefix const& prefix, Route route);
    bool routeDel(VrfId vrf, Prefix const& prefix);
    std::optional<Lpm<Route>::Match> route(VrfId vrf, IpAddress const& address) const;
    std::size_t routeCount() const { return routes_.size(); }

    // Neighbours (ARP and neighbour discovery), by L3 interface and address.
    void neighbourIs(DomainId domain, IpAddress address, MacAddress mac);
    bool neighbourDel(DomainId domain, IpAddress address);
    std::optional<MacAddress> neighbour(DomainId domain, IpAddress const& address) const;

    // FDB: where a MAC address of a VLAN is.
    void fdbIs(DomainId vlan, MacAddress mac, LogicalPort port);
    bool fdbDel(DomainId vlan, MacAddress mac);
    LogicalPort fdb(DomainId vlan, MacAddress mac) const;  // none if it is not known
    std::size_t fdbSize() const { return fdb_.size(); }

    AclTable& acl() { return acl_; }
    AclTable const& acl() const { return acl_; }
    std::vector<ProtocolRule>& protocolRules() { return protocolRules_; }
    std::vector<ProtocolRule> const& protocolRules() const { return protocolRules_; }

    // Makes room beforehand; only a matter of speed.
    void reserve(std::size_t routes, std::size_t fdbEntries, std::size_t neighbours);

  private:
    struct DomainMac {
        std::uint64_t value = 0;  // domain in bits 63..48
        bool operator==(DomainMac const&) const = default;
        std::uint64_t hash() const { return mix(value); }
    };
    struct ScopedIp {  // an address in a VRF or on an L3 interface
        std::uint16_t scope = 0;
        IpAddress address;
        bool operator==(ScopedIp const&) const = default;
        std::uint64_t hash() const;
    };
    struct PortTag {
        LogicalPort port;
        std::uint16_t tag = 0;
        bool operator==(PortTag const&) const = default;
        std::uint64_t hash() const { return mix(port.hash() ^ tag); }
    };
    struct Number {
        std::uint32_t value = 0;
        bool operator==(Number const&) const = default;
        std::uint64_t hash() const { return mix(value); }
    };
    struct LagEntry {
        std::optional<Lag> lag;
        PortMode mode;
    };
    struct Present {};

    static DomainMac domainMac(DomainId domain, MacAddress mac) {
        return {std::uint64_t{domain} << 48 | mac.value};
    }
    void leaveLag(DevicePort port);
    void unbind(LagId lag);
    void findCpuPort();

    std::vector<std::optional<Port>> ports_;      // by device port
    std::vector<PortMode> portModes_;             // by device port
    std::vector<std::optional<LagId>> portLags_;  // by device port
    std::optional<DevicePort> cpuPort_;           // kept with ports_
    FlatHash<Number, LagEntry> lags_;
    FlatHash<PortTag, DomainId> subIntfs_;
    std::vector<std::optional<Vlan>> vlans_;      // by domain
    std::vector<std::optional<L3Intf>> l3Intfs_;  // by domain
    FlatHash<DomainMac, Present> virtualMacs_;
    FlatHash<ScopedIp, Present> ownAddresses_;
    FlatHash<Number, std::vector<NextHop>> nextHopSets_;
    Lpm<Route> routes_;
    FlatHash<ScopedIp, MacAddress> neighbours_;
    FlatHash<DomainMac, LogicalPort> fdb_;
    AclTable acl_;
    std::vector<ProtocolRule> protocolRules_;
};

}  // namespace SoftChip
