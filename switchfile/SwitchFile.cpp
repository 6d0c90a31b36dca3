#include "switchfile/SwitchFile.h"

#include <algorithm>

#include "switchfile/NumberText.h"
#include "switchfile/SwitchFileReader.h"

namespace SwitchFile {

SwitchModel parseSwitchFile(std::string_view text, std::string const& fileName) {
    JsonDocument const document(text, fileName);
    return SwitchFileReader(document).read();
}

SwitchModel readSwitchFile(std::string const& path) {
    return parseSwitchFile(readWholeFile(path), path == "-" ? "standard input" : path);
}

void onlyMembers(JsonNode object, std::initializer_list<std::string_view> names) {
    for (JsonNode const member : object.object()) {
        if (std::find(names.begin(), names.end(), member.name()) == names.end()) {
            std::string known;
            for (std::string_view const name : names) {
                known += known.empty() ? "" : ", ";
                known += name;
            }
            throw member.expected("one of the members " + known, member.shownName());
        }
    }
}

Net::MacAddress readMac(JsonNode where, std::string_view text, std::string_view shown) {
    auto const mac = Net::MacAddress::fromText(text);
    if (!mac) {
        throw where.expected("a MAC address such as 02:1c:73:aa:00:01", shown);
    }
    return *mac;
}

Net::MacAddress readStationMac(JsonNode where, std::string_view text, std::string_view shown) {
    auto const mac = readMac(where, text, shown);
    if (mac.isMulticast() || mac.value == 0) {
        throw where.expected("the MAC address of one station", shown);
    }
    return mac;
}

SwitchModel SwitchFileReader::read() {
    onlyMembers(root_, {"$schema", "description", "routerMac", "vrfs", "acls", "vlans",
                        "interfaces", "protocolCopies", "neighbours", "routes", "fdb"});
    if (JsonNode const value = root_.member("$schema")) {
        value.text();
    }
    if (JsonNode const value = root_.member("description")) {
        model_.description = value.text();
    }
    if (JsonNode const value = root_.member("routerMac")) {
        model_.routerMac = readStationMac(value, value.text("a MAC address"), value.shown());
    }
    readVrfs(root_.member("vrfs"));
    if (JsonNode const value = root_.member("acls")) {
        readAcls(value);
    }
    if (JsonNode const value = root_.member("vlans")) {
        readVlans(value);
    }
    JsonNode const interfaces = root_.member("interfaces");
    if (!interfaces) {
        throw root_.expected("a member interfaces", "none");
    }
    readInterfaces(interfaces);
    requireRouterMac();
    if (JsonNode const value = root_.member("protocolCopies")) {
        readProtocolCopies(value);
    }
    if (JsonNode const value = root_.member("neighbours")) {
        readNeighbours(value);
    }
    if (JsonNode const value = root_.member("routes")) {
        readRoutes(value);
    }
    if (JsonNode const value = root_.member("fdb")) {
        readFdb(value);
    }
    return std::move(model_);
}

void SwitchFileReader::readVrfs(JsonNode value) {
    model_.vrfs.emplace_back("default");
    vrfs_.emplace("default", 0);
    if (!value) {
        return;
    }
    for (JsonNode const vrf : value.list()) {
        std::string_view const name = vrf.text("the name of a VRF");
        if (name.empty() || model_.vrfs.size() > 0xffff) {
            throw vrf.expected("a name, and at most 65535 of them");
        }
        if (!vrfs_.emplace(name, static_cast<std::uint16_t>(model_.vrfs.size())).second) {
            throw vrf.expected(name == "default" ? "a VRF besides default, which is always there"
                                                 : "each VRF once");
        }
        model_.vrfs.emplace_back(name);
    }
}

void SwitchFileReader::readVlans(JsonNode value) {
    for (JsonNode const vlan : value.object()) {
        readVlan(vlan);
    }
}

void SwitchFileReader::readVlan(JsonNode value) {
    auto const range = parseRange(value.name(), 1, maxVlan);
    if (!range) {
        throw value.expected("a VLAN from 1 to 4094, or a range such as 100-199",
                             value.shownName());
    }
    onlyMembers(value, {"name", "acl"});
    JsonNode const name = value.member("name");
    JsonNode const acl = value.member("acl");
    for (std::uint32_t id = range->first; id <= range->last; ++id) {
        if (vlans_[id]) {
            throw value.expected("each VLAN once", std::to_string(id) + " again");
        }
        vlans_[id] = true;
        Vlan& vlan = model_.vlans.emplace_back();
        vlan.id = static_cast<std::uint16_t>(id);
        if (name) {
            vlan.name = name.text("the VLAN's name");
        }
        if (acl) {
            vlan.acl = aclOf(acl);
        }
    }
}

void SwitchFileReader::requireRouterMac() {
    if (model_.routerMac.value != 0) {
        return;
    }
    for (Interface const& intf : model_.interfaces) {
        if (intf.routing) {
            throw root_.expected("a member routerMac, because " + intf.id.stringValue() + " routes",
                                 "none");
        }
    }
}

std::uint16_t SwitchFileReader::vrfOf(JsonNode where, std::string_view name) const {
    auto const found = vrfs_.find(name);
    if (found == vrfs_.end()) {
        throw where.expected("default or a VRF of the list vrfs", "\"" + std::string(name) + "\"");
    }
    return found->second;
}

std::uint16_t SwitchFileReader::aclOf(JsonNode value) {
    auto const found = acls_.find(value.text("the name of an access list"));
    if (found == acls_.end()) {
        throw value.expected("an access list of the member acls");
    }
    if (++aclUses_ > 0xffff) {
        throw value.expected("at most 65535 places with an access list");
    }
    return found->second;
}

Interface const& SwitchFileReader::interfaceOf(JsonNode where, std::string_view name,
                                               std::string_view shown) const {
    auto const id = Plexa::IntfId::fromName(name);
    Interface const* const intf = id ? model_.interface(*id) : nullptr;
    if (intf == nullptr) {
        throw where.expected("an interface of the member interfaces", shown);
    }
    return *intf;
}

}  // namespace SwitchFile
