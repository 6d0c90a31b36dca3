// Interfaces: ports, LAGs, sub-interfaces and VLAN interfaces, and the contradictions among them.
#include "switchfile/NumberText.h"
#include "switchfile/SwitchFileReader.h"

namespace SwitchFile {
namespace {

using Kind = Plexa::IntfId::Kind;

// "1/5" is index 5 of pipe 1; a number is a device port.
std::uint16_t readDevicePort(JsonNode value) {
    if (value.kind() == JsonNode::Kind::integer) {
        return static_cast<std::uint16_t>(
            value.integer(0, SoftChip::maxDevicePort, "a device port"));
    }
    constexpr std::string_view expected =
        "a chip port: pipe/index such as \"1/5\" (pipe 0 to 3, index 0 to 127, 0 to 71 in pipe 3) "
        "or a device port from 0 to 455";
    std::string_view const text = value.text(expected);
    std::size_t const slash = text.find('/');
    auto const pipe = parseNumber(text.substr(0, slash), 0, SoftChip::pipeCount - 1);
    auto const index = slash == std::string_view::npos
                           ? std::nullopt
                           : parseNumber(text.substr(slash + 1), 0, SoftChip::portsPerPipe - 1);
    if (!pipe || !index || *pipe * SoftChip::portsPerPipe + *index > SoftChip::maxDevicePort) {
        throw value.expected(expected);
    }
    return static_cast<std::uint16_t>(*pipe * SoftChip::portsPerPipe + *index);
}

std::string named(Interface const& intf) {
    return intf.id.stringValue();
}

// An address that a host can have in its subnet.
bool isHostAddress(InterfaceAddress const& own) {
    Net::IpAddress const& address = own.address;
    if (address.isMulticast() || address.isUnspecified() || address.isLoopback() ||
        address.isBroadcast()) {
        return false;
    }
    if (address.isV6() || own.length >= 31) {
        return true;  // A subnet this small has no address of its own, and none for broadcasts.
    }
    std::uint32_t const hostBits = 0xffffffffU >> own.length;
    std::uint32_t const host = address.asV4() & hostBits;
    return host != 0 && host != hostBits;
}

// The first of these members that is there.
JsonNode firstOf(JsonNode object, std::initializer_list<std::string_view> names) {
    for (std::string_view const name : names) {
        if (JsonNode const value = object.member(name)) {
            return value;
        }
    }
    return {};
}

}  // namespace

void SwitchFileReader::readInterfaces(JsonNode value) {
    model_.interfaces.reserve(value.object().size());
    interfaceNodes_.reserve(value.size());
    for (JsonNode const intf : value) {
        readInterface(intf);
    }
    joinLags();
    attachSubInterfaces();
    numberInternalVlans();
}

void SwitchFileReader::readInterface(JsonNode value) {
    auto const id = Plexa::IntfId::fromName(value.name());
    if (!id || id->empty() || id->kind() == Kind::cpu) {
        throw value.expected(
            "an interface name: Ethernet<n>, Ethernet<n>/<n>, Lag<n>, Vlan<n>, or a port or LAG "
            "with .<n> for a sub-interface",
            value.shownName());
    }
    Interface& intf = model_.interfaces.emplace_back();
    intf.id = *id;
    interfaceNodes_.push_back(value);
    model_.interfaceIndexes.emplace(*id, static_cast<std::uint32_t>(model_.interfaces.size() - 1));
    switch (id->kind()) {
        case Kind::physical:
            readPort(value, intf);
            break;
        case Kind::lag:
            readLag(value, intf);
            break;
        case Kind::subIntf:
            readSubInterface(value, intf);
            break;
        case Kind::vlan:
            readVlanInterface(value, intf);
            break;
        case Kind::none:
        case Kind::cpu:
            break;
    }
    if (JsonNode const description = value.member("description")) {
        intf.description = description.text();
    }
    if (JsonNode const acl = value.member("acl")) {
        intf.acl = aclOf(acl);
    }
}

void SwitchFileReader::readPort(JsonNode value, Interface& intf) {
    onlyMembers(value, {"description", "port", "up", "cpu", "access", "trunk", "native", "routed",
                        "vrf", "addresses", "acl"});
    JsonNode const port = value.member("port");
    if (!port) {
        throw value.expected("a member port", "none");
    }
    intf.devicePort = readDevicePort(port);
    Plexa::IntfId& owner = portOwners_[intf.devicePort];
    if (!owner.empty()) {
        throw port.expected("a device port of its own",
                            "device port " + std::to_string(intf.devicePort) + ", which is " +
                                owner.stringValue() + "'s");
    }
    owner = intf.id;
    if (JsonNode const up = value.member("up")) {
        intf.up = up.boolean();
    }
    if (JsonNode const cpu = value.member("cpu")) {
        intf.cpu = cpu.boolean();
    }
    JsonNode const use =
        firstOf(value, {"access", "trunk", "native", "routed", "vrf", "addresses", "acl"});
    if (intf.cpu && use) {
        throw use.expected("no VLAN, address or access list on a CPU port", use.shown());
    }
    readSwitching(value, intf);
    JsonNode const routed = value.member("routed");
    readRouting(value, intf, routed && routed.boolean());
}

void SwitchFileReader::readLag(JsonNode value, Interface& intf) {
    onlyMembers(value, {"description", "members", "access", "trunk", "native", "routed", "vrf",
                        "addresses", "acl"});
    JsonNode const members = value.member("members");
    if (!members) {
        throw value.expected("a member members", "none");
    }
    members.list();
    readSwitching(value, intf);
    JsonNode const routed = value.member("routed");
    readRouting(value, intf, routed && routed.boolean());
}

void SwitchFileReader::readSubInterface(JsonNode value, Interface& intf) {
    onlyMembers(value, {"description", "tag", "vlan", "vrf", "addresses", "acl"});
    unsigned const number = Plexa::SubIntfId::number(intf.id);
    if (JsonNode const tag = value.member("tag")) {
        intf.tag = static_cast<std::uint16_t>(tag.integer(1, maxVlan, "a VLAN tag"));
    } else if (number <= maxVlan) {
        intf.tag = static_cast<std::uint16_t>(number);
    } else {
        throw value.expected("a member tag, because " + std::to_string(number) + " is no tag",
                             "none");
    }
    JsonNode const vlan = value.member("vlan");
    JsonNode const layer3 = firstOf(value, {"vrf", "addresses"});
    if (vlan && layer3) {
        throw layer3.expected("no VRF or address on a sub-interface that is bridged",
                              layer3.shown());
    }
    if (vlan) {
        intf.vlan = readVlanId(vlan);
    }
    readRouting(value, intf, !vlan);
}

void SwitchFileReader::readVlanInterface(JsonNode value, Interface& intf) {
    onlyMembers(value, {"description", "vrf", "addresses"});
    intf.vlan = Plexa::VlanIntfId::vlanId(intf.id);
    if (!vlans_[intf.vlan]) {
        throw value.expected("a VLAN of the member vlans", std::to_string(intf.vlan));
    }
    readRouting(value, intf, true);
}

void SwitchFileReader::readSwitching(JsonNode value, Interface& intf) {
    JsonNode const access = value.member("access");
    JsonNode const trunk = value.member("trunk");
    JsonNode const native = value.member("native");
    if (access && (trunk || native)) {
        throw(trunk ? trunk : native)
            .expected("no trunk beside access", (trunk ? trunk : native).shown());
    }
    if (native && !trunk) {
        throw native.expected("a member trunk beside native", "none");
    }
    if (!access && !trunk) {
        return;
    }
    VlanMembership& membership = intf.switching.emplace();
    if (access) {
        membership.untagged = readVlanId(access);
    }
    if (trunk) {
        membership.tagged = readTrunk(trunk);
    }
    if (native) {
        membership.untagged = readVlanId(native);
    }
}

std::uint16_t SwitchFileReader::readVlanId(JsonNode value) const {
    auto const id = static_cast<std::uint16_t>(value.integer(1, maxVlan, "a VLAN"));
    if (!vlans_[id]) {
        throw value.expected("a VLAN of the member vlans");
    }
    return id;
}

VlanSet SwitchFileReader::readTrunk(JsonNode value) const {
    VlanSet set;
    if (value.kind() == JsonNode::Kind::integer) {
        set[readVlanId(value)] = true;
        return set;
    }
    constexpr std::string_view expected = "VLANs such as \"10-20,30\", one number, or \"all\"";
    std::string_view rest = value.text(expected);
    if (rest == "all") {
        return vlans_;
    }
    while (true) {
        std::size_t const comma = rest.find(',');
        std::string_view item = rest.substr(0, comma);
        item.remove_prefix(std::min(item.find_first_not_of(' '), item.size()));
        auto const range = parseRange(item, 1, maxVlan);
        if (!range) {
            throw value.expected(expected);
        }
        for (std::uint32_t id = range->first; id <= range->last; ++id) {
            if (!vlans_[id]) {
                throw value.expected("VLANs of the member vlans", "VLAN " + std::to_string(id));
            }
            if (set[id]) {
                throw value.expected("each VLAN once", "VLAN " + std::to_string(id) + " again");
            }
            set[id] = true;
        }
        if (comma == std::string_view::npos) {
            return set;
        }
        rest.remove_prefix(comma + 1);
    }
}

void SwitchFileReader::readRouting(JsonNode value, Interface& intf, bool routes) {
    JsonNode const addresses = value.member("addresses");
    JsonNode const vrf = value.member("vrf");
    JsonNode const routed = value.member("routed");
    JsonNode const layer3 = firstOf(value, {"addresses", "vrf"});
    if (routed && !routes && layer3) {
        throw layer3.expected("no VRF or address beside \"routed\": false", layer3.shown());
    }
    routes = routes || addresses;
    if (routes && intf.switching) {
        JsonNode const where = routed ? routed : addresses;
        throw where.expected("no routing beside a VLAN", where.shown());
    }
    if (vrf && !routes) {
        throw vrf.expected("\"routed\": true or addresses beside vrf", "neither");
    }
    if (!routes) {
        return;
    }
    Routing& routing = intf.routing.emplace();
    if (vrf) {
        routing.vrf = vrfOf(vrf, vrf.text("the name of a VRF"));
    }
    if (addresses) {
        for (JsonNode const address : addresses.list()) {
            readAddress(address, routing);
        }
    }
}

void SwitchFileReader::readAddress(JsonNode value, Routing& routing) {
    constexpr std::string_view expected =
        "an address and length such as 10.0.10.1/24 or 2001:db8::1/64";
    std::string_view const text = value.text(expected);
    std::size_t const slash = std::min(text.find('/'), text.size());
    auto const address = Net::IpAddress::fromText(text.substr(0, slash));
    auto const length = address ? parseNumber(text.substr(std::min(slash + 1, text.size())), 1,
                                              Net::addressBits(address->family))
                                : std::nullopt;
    if (!length) {
        throw value.expected(expected);
    }
    InterfaceAddress const own{*address, static_cast<std::uint8_t>(*length)};
    if (!isHostAddress(own)) {
        throw value.expected("an address that a host in the subnet can have");
    }
    routing.addresses.push_back(own);
    auto const place = static_cast<std::uint32_t>(model_.interfaces.size() - 1);
    // A link-local address means something on its own link only.
    if (own.address.isLinkLocalV6()) {
        return;
    }
    auto const taken = [&](std::uint32_t other) {
        return named(model_.interfaces[other]) + " of VRF " + model_.vrfs[routing.vrf];
    };
    if (auto const* other = ownAddresses_.find({routing.vrf, own.address})) {
        throw value.expected("an address of its own",
                             value.shown() + ", which is also on " + taken(*other));
    }
    auto const* subnet = connected_.exact(routing.vrf, own.network());
    if (subnet != nullptr && *subnet != place) {
        throw value.expected("a subnet of its own",
                             own.network().text() + ", which is also on " + taken(*subnet));
    }
    ownAddresses_[{routing.vrf, own.address}] = place;
    connected_.add(routing.vrf, own.network(), place);
}

void SwitchFileReader::joinLags() {
    for (std::size_t i = 0; i < model_.interfaces.size(); ++i) {
        if (model_.interfaces[i].id.kind() == Kind::lag) {
            for (JsonNode const member : interfaceNodes_[i].member("members")) {
                joinLag(member, model_.interfaces[i]);
            }
        }
    }
}

void SwitchFileReader::joinLag(JsonNode value, Interface const& lag) {
    constexpr std::string_view expected = "the name of a physical port";
    std::string_view const name = value.text(expected);
    Interface const& found = interfaceOf(value, name, value.shown());
    if (found.id.kind() != Kind::physical) {
        throw value.expected(expected);
    }
    Interface& port = model_.interfaces[model_.interfaceIndexes.at(found.id)];
    if (!port.lag.empty()) {
        throw value.expected("a port that is in no other LAG",
                             named(port) + ", which is in " + port.lag.stringValue());
    }
    if (port.cpu) {
        throw value.expected("no CPU port in a LAG", named(port));
    }
    JsonNode const use =
        firstOf(at(port), {"access", "trunk", "native", "routed", "vrf", "addresses", "acl"});
    if (use) {
        throw use.expected("no VLAN, address or access list on " + named(port) +
                               ", because it is a member of " + named(lag),
                           use.shown());
    }
    port.lag = lag.id;
    model_.interfaces[model_.interfaceIndexes.at(lag.id)].members.push_back(port.id);
}

void SwitchFileReader::attachSubInterfaces() {
    // Tags and bridged VLANs of each parent.
    std::unordered_map<Plexa::IntfId, std::pair<VlanSet, VlanSet>> used;
    for (std::size_t i = 0; i < model_.interfaces.size(); ++i) {
        Interface const& intf = model_.interfaces[i];
        if (intf.id.kind() != Kind::subIntf) {
            continue;
        }
        Plexa::IntfId const parentId = Plexa::SubIntfId::parentIntfId(intf.id);
        Interface const* const parent = model_.interface(parentId);
        if (parent == nullptr) {
            throw interfaceNodes_[i].expected(
                "its parent " + parentId.stringValue() + " among the interfaces", "none");
        }
        if (!parent->lag.empty()) {
            throw interfaceNodes_[i].expected(
                "a parent that is in no LAG",
                named(*parent) + ", which is a member of " + parent->lag.stringValue());
        }
        if (!parent->routing) {
            throw interfaceNodes_[i].expected(
                "a parent that is routed",
                named(*parent) + (parent->switching ? ", which is a member of a VLAN"
                                  : parent->cpu     ? ", which is a CPU port"
                                                    : ", which is not"));
        }
        auto& [tags, vlans] = used[parentId];
        if (tags[intf.tag]) {
            throw interfaceNodes_[i].expected(
                "a tag that no other sub-interface of " + named(*parent) + " has",
                std::to_string(intf.tag) + " again");
        }
        tags[intf.tag] = true;
        if (intf.vlan != 0 && vlans[intf.vlan]) {
            throw interfaceNodes_[i].member("vlan").expected(
                "a VLAN that no other sub-interface of " + named(*parent) + " is bridged into",
                std::to_string(intf.vlan) + " again");
        }
        vlans[intf.vlan] = true;
    }
}

void SwitchFileReader::numberInternalVlans() {
    std::uint16_t next = maxVlan;
    for (std::size_t i = 0; i < model_.interfaces.size(); ++i) {
        Interface& intf = model_.interfaces[i];
        if (!intf.routing || intf.id.kind() == Kind::vlan) {
            continue;
        }
        while (next > 0 && vlans_[next]) {
            --next;
        }
        if (next == 0) {
            throw interfaceNodes_[i].expected("a VLAN left for the internal use of what routes",
                                              "none");
        }
        intf.internalVlan = next--;
    }
}

}  // namespace SwitchFile
