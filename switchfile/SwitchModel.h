// Everything about one switch, as the reader of a switch file leaves it: plain values that copy, move
// to other threads and hold no resource.
//
// Users of a model may rely on the invariants below and need not check references: contradictions
// never become one.
#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "Net/IpAddress.h"
#include "Net/MacAddress.h"
#include "Net/Prefix.h"
#include "Net/VlanTag.h"
#include "Plexa/IntfId.h"
#include "softchip/Acl.h"
#include "softchip/Tables.h"

namespace SwitchFile {

using Net::maxVlan;
using VlanSet = std::bitset<maxVlan + 1>;

// The VLANs of a port or LAG. An access port has an untagged VLAN alone.
struct VlanMembership {
    std::uint16_t untagged = 0;  // access or native VLAN, 0 for none
    VlanSet tagged;

    bool carries(std::uint16_t vlan) const { return vlan == untagged || tagged[vlan]; }
};

struct InterfaceAddress {
    Net::IpAddress address;
    std::uint8_t length = 0;

    Net::Prefix network() const { return Net::Prefix::of(address, length); }
};

struct Routing {
    std::uint16_t vrf = 0;  // index into SwitchModel::vrfs
    std::vector<InterfaceAddress> addresses;
};

// An interface of any kind; id.kind() tells which members mean something.
//
// Invariants: at most one of `switching` and `routing` is there, and neither on a LAG's member or a
// CPU port; a sub-interface's parent is a routed port or LAG and no LAG's member.
struct Interface {
    Plexa::IntfId id;
    std::string description;

    // Physical ports: the device port, which no two of them share.
    std::uint16_t devicePort = 0;
    bool up = true;
    bool cpu = false;   // leads to the CPU
    Plexa::IntfId lag;  // the LAG that it is a member of, empty for none

    // LAGs: physical ports, each in one LAG only.
    std::vector<Plexa::IntfId> members;

    // Sub-interfaces: the tag, which no other sub-interface of the parent has.
    std::uint16_t tag = 0;

    // The VLAN of a VLAN interface, and of a sub-interface that is bridged; otherwise 0.
    std::uint16_t vlan = 0;

    // The internal VLAN of a routed port, LAG or sub-interface; otherwise 0. These VLANs count down
    // from 4094 in the order of the file and leave out the configured ones.
    std::uint16_t internalVlan = 0;

    std::optional<VlanMembership> switching;  // physical ports and LAGs
    std::optional<Routing> routing;
    std::optional<std::uint16_t> acl;  // index into SwitchModel::acls
};

struct Vlan {
    std::uint16_t id = 0;
    std::string name;
    std::optional<std::uint16_t> acl;
};

struct Acl {
    std::string name;
    std::vector<SoftChip::AclRule> rules;  // by ascending sequence, their `list` and binding unset
};

struct NextHop {
    Plexa::IntfId intf;
    Net::IpAddress gateway;

    friend bool operator==(NextHop const&, NextHop const&) = default;
};

struct Route {
    enum class Kind : std::uint8_t { nextHops, attached, drop, toCpu };

    Net::Prefix prefix;
    std::uint16_t vrf = 0;
    Kind kind = Kind::drop;
    std::uint32_t nextHopSet = 0;  // nextHops: index into SwitchModel::nextHopSets
    Plexa::IntfId intf;            // attached: every destination is a neighbour there
};

struct Neighbour {
    Plexa::IntfId intf;
    Net::IpAddress address;
    Net::MacAddress mac;
};

struct FdbEntry {
    std::uint16_t vlan = 0;
    Net::MacAddress mac;
    Plexa::IntfId intf;  // a member of the VLAN: port, LAG or bridged sub-interface
};

// Everything in the order of the file.
struct SwitchModel {
    std::string description;
    Net::MacAddress routerMac;      // zero if nothing routes
    std::vector<std::string> vrfs;  // the first one is "default"
    std::vector<Vlan> vlans;
    std::vector<Interface> interfaces;
    std::vector<Acl> acls;
    std::vector<SoftChip::ProtocolRule> protocolRules;
    std::vector<std::vector<NextHop>> nextHopSets;  // no two are equal
    std::vector<Route> routes;                      // connected ones are not among them
    std::vector<Neighbour> neighbours;
    std::vector<FdbEntry> fdb;

    // Index of an interface in `interfaces`.
    std::unordered_map<Plexa::IntfId, std::uint32_t> interfaceIndexes;

    // The interface of that name, or null. Constant time.
    Interface const* interface(Plexa::IntfId const& id) const;

    // The physical port that the frames of one of its interfaces enter by: the interface itself, or
    // a sub-interface's parent. Null where there is no such one port: for LAGs, their
    // sub-interfaces and VLAN interfaces. Constant time.
    Interface const* entryPort(Interface const& intf) const;
};

// The number in a LAG's name.
std::uint16_t lagNumber(Plexa::IntfId const& lag);

}  // namespace SwitchFile
