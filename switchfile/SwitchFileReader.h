// What the reader of a switch file knows while it reads: internal to switchfile/SwitchFile*.cpp.
//
// The sections are read in the order in which they refer to one another, whatever their order in
// the file: names first (vrfs, acls, vlans), then interfaces, then the sections that refer to
// interfaces. Every check is a look-up in a table built on the way, so reading stays linear in the
// file's size.
#pragma once

#include <array>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "softchip/FlatHash.h"
#include "softchip/Lpm.h"
#include "switchfile/JsonDocument.h"
#include "switchfile/SwitchFile.h"

namespace SwitchFile {

class SwitchFileReader {
  public:
    // The document outlives the reader.
    explicit SwitchFileReader(JsonDocument const& document) : root_(document.root()) {}

    // To be called once. Errors: InputError.
    SwitchModel read();

  private:
    // An address within a scope, as a key. The scope is a number of a VRF, an interface or the
    // like.
    struct ScopedIp {
        std::uint32_t scope = 0;
        Net::IpAddress address;
        bool operator==(ScopedIp const&) const = default;
        std::uint64_t hash() const {
            return SoftChip::mix(SoftChip::mix(address.hi ^ scope) ^ address.lo ^
                                 static_cast<std::uint64_t>(address.family));
        }
    };

    // SwitchFile.cpp: the document, names.
    void readVrfs(JsonNode value);
    void readVlans(JsonNode value);
    void readVlan(JsonNode value);
    void requireRouterMac();

    // SwitchFileAcls.cpp
    void readAcls(JsonNode value);
    Acl readAcl(JsonNode value);
    SoftChip::AclRule readRule(JsonNode value, std::uint32_t defaultSequence);
    void readProtocolCopies(JsonNode value);

    // SwitchFileInterfaces.cpp
    void readInterfaces(JsonNode value);
    void readInterface(JsonNode value);
    void readPort(JsonNode value, Interface& intf);
    void readLag(JsonNode value, Interface& intf);
    void readSubInterface(JsonNode value, Interface& intf);
    void readVlanInterface(JsonNode value, Interface& intf);
    void readSwitching(JsonNode value, Interface& intf);
    void readRouting(JsonNode value, Interface& intf, bool routes);
    void readAddress(JsonNode value, Routing& routing);
    VlanSet readTrunk(JsonNode value) const;
    std::uint16_t readVlanId(JsonNode value) const;
    void joinLag(JsonNode value, Interface const& lag);
    void joinLags();
    void attachSubInterfaces();
    void numberInternalVlans();

    // SwitchFileForwarding.cpp: neighbours, routes, FDB.
    void readNeighbours(JsonNode value);
    void readNeighbour(JsonNode value, Interface const& intf);
    void readRoutes(JsonNode value);
    void readRoute(JsonNode value, std::uint16_t vrf);
    Route readTarget(JsonNode value, std::uint16_t vrf, Net::Family family);
    std::uint32_t nextHopSet(JsonNode value, std::uint16_t vrf, Net::Family family);
    NextHop readNextHop(JsonNode value, std::uint16_t vrf, Net::Family family) const;
    NextHop resolve(JsonNode value, std::uint16_t vrf, Net::IpAddress gateway,
                    std::string_view zone) const;
    std::uint32_t intern(std::vector<NextHop> hops);
    void readFdb(JsonNode value);
    void readFdbEntry(JsonNode value, std::uint16_t vlan);
    bool isMember(Plexa::IntfId const& id, std::uint16_t vlan) const;

    // References, by text. `where` is the value or the name that errors point at.
    std::uint16_t vrfOf(JsonNode where, std::string_view name) const;
    std::uint16_t aclOf(JsonNode value);
    Interface const& interfaceOf(JsonNode where, std::string_view name,
                                 std::string_view shown) const;

    // Whether the key is new to the table; it is in the table afterwards.
    template <class Table>
    static bool isFirst(Table& table, ScopedIp const& key) {
        std::size_t const before = table.size();
        table[key] = {};
        return table.size() != before;
    }

    JsonNode at(Interface const& intf) const {
        return interfaceNodes_[static_cast<std::size_t>(&intf - model_.interfaces.data())];
    }

    JsonNode root_;
    SwitchModel model_;
    VlanSet vlans_;
    std::unordered_map<std::string_view, std::uint16_t> vrfs_;
    std::unordered_map<std::string_view, std::uint16_t> acls_;
    std::uint32_t aclUses_ = 0;             // the chip numbers them
    std::vector<JsonNode> interfaceNodes_;  // where each of model_.interfaces was read
    std::array<Plexa::IntfId, SoftChip::maxDevicePort + 1> portOwners_;
    SoftChip::FlatHash<ScopedIp, std::uint32_t> ownAddresses_;  // to indexes of interfaces
    SoftChip::Lpm<std::uint32_t> connected_;                    // the same
    struct Present {};
    SoftChip::FlatHash<ScopedIp, Present> seenRoutes_;      // scope: VRF and length
    SoftChip::FlatHash<ScopedIp, Present> seenNeighbours_;  // scope: the interface's index
    SoftChip::FlatHash<ScopedIp, Present> seenStations_;    // scope: VLAN; a MAC for the address
    std::unordered_map<std::string, std::uint32_t> singleHops_;  // of the VRF that is read
    std::unordered_map<std::string, std::uint32_t> hopSets_;
};

// The object's members that are known by these names. Errors: InputError for any other member, or
// if the value is no object.
void onlyMembers(JsonNode object, std::initializer_list<std::string_view> names);

// Texts of addresses. Errors: InputError naming what was expected.
Net::MacAddress readMac(JsonNode where, std::string_view text, std::string_view shown);
Net::MacAddress readStationMac(JsonNode where, std::string_view text, std::string_view shown);

}  // namespace SwitchFile
