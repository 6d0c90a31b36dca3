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
        SoftChip::IpAddress address;
        bool operator==(ScopedIp const&) const = default;
        std::uint64_t hash() const {
            return SoftChip::mix(SoftChip::mix(address.hi ^ scope) ^ address.lo ^
                                 static_cast<std::uint64_t>(address.family));
        }
    };

    // SwitchFile.cpp: the document, names.
    void readVrfs(JsonValue value);
    void readVlans(JsonValue value);
    void readVlan(JsonValue value);
    void requireRouterMac();

    // SwitchFileAcls.cpp
    void readAcls(JsonValue value);
    Acl readAcl(JsonValue value);
    SoftChip::AclRule readRule(JsonValue value, std::uint32_t defaultSequence);
    void readProtocolCopies(JsonValue value);

    // SwitchFileInterfaces.cpp
    void readInterfaces(JsonValue value);
    void readInterface(JsonValue value);
    void readPort(JsonValue value, Interface& intf);
    void readLag(JsonValue value, Interface& intf);
    void readSubInterface(JsonValue value, Interface& intf);
    void readVlanInterface(JsonValue value, Interface& intf);
    void readSwitching(JsonValue value, Interface& intf);
    void readRouting(JsonValue value, Interface& intf, bool routes);
    void readAddress(JsonValue value, Routing& routing);
    VlanSet readTrunk(JsonValue value) const;
    std::uint16_t readVlanId(JsonValue value) const;
    void joinLag(JsonValue value, Interface const& lag);
    void joinLags();
    void attachSubInterfaces();
    void numberInternalVlans();

    // SwitchFileForwarding.cpp: neighbours, routes, FDB.
    void readNeighbours(JsonValue value);
    void readNeighbour(JsonValue value, Interface const& intf);
    void readRoutes(JsonValue value);
    void readRoute(JsonValue value, std::uint16_t vrf);
    Route readTarget(JsonValue value, std::uint16_t vrf, SoftChip::Family family);
    std::uint32_t nextHopSet(JsonValue value, std::uint16_t vrf, SoftChip::Family family);
    NextHop readNextHop(JsonValue value, std::uint16_t vrf, SoftChip::Family family) const;
    NextHop resolve(JsonValue value, std::uint16_t vrf, SoftChip::IpAddress gateway,
                    std::string_view zone) const;
    std::uint32_t intern(std::vector<NextHop> hops);
    void readFdb(JsonValue value);
    void readFdbEntry(JsonValue value, std::uint16_t vlan);
    bool isMember(Plexa::IntfId const& id, std::uint16_t vlan) const;

    // References, by text. `where` is the value or the name that errors point at.
    std::uint16_t vrfOf(JsonValue where, std::string_view name) const;
    std::uint16_t aclOf(JsonValue value);
    Interface const& interfaceOf(JsonValue where, std::string_view name,
                                 std::string_view shown) const;

    // Whether the key is new to the table; it is in the table afterwards.
    template <class Table>
    static bool isFirst(Table& table, ScopedIp const& key) {
        std::size_t const before = table.size();
        table[key] = {};
        return table.size() != before;
    }

    JsonValue at(Interface const& intf) const {
        return places_[static_cast<std::size_t>(&intf - model_.interfaces.data())];
    }

    JsonValue root_;
    SwitchModel model_;
    VlanSet vlans_;
    std::unordered_map<std::string_view, std::uint16_t> vrfs_;
    std::unordered_map<std::string_view, std::uint16_t> acls_;
    std::uint32_t aclPlaces_ = 0;    // uses of access lists; the chip numbers them
    std::vector<JsonValue> places_;  // where each of model_.interfaces was read
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
void onlyMembers(JsonValue object, std::initializer_list<std::string_view> names);

// Texts of addresses. Errors: InputError naming what was expected.
SoftChip::MacAddress readMac(JsonValue where, std::string_view text, std::string_view shown);
SoftChip::MacAddress readStationMac(JsonValue where, std::string_view text, std::string_view shown);

}  // namespace SwitchFile
