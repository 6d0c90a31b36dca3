// The sections that refer to interfaces: neighbours, routes and the FDB.
#include <algorithm>

#include "switchfile/NumberText.h"
#include "switchfile/SwitchFileReader.h"

namespace SwitchFile {
namespace {

using Kind = Plexa::IntfId::Kind;
using Net::Family;
using Net::IpAddress;
using Net::Prefix;

bool speaksV6(Interface const& intf) {
    return std::any_of(intf.routing->addresses.begin(), intf.routing->addresses.end(),
                       [](auto const& own) { return own.address.family == Family::ipv6; });
}

std::string familyName(Family family) {
    return family == Family::ipv4 ? "an IPv4" : "an IPv6";
}

}  // namespace

void SwitchFileReader::readNeighbours(JsonNode value) {
    for (JsonNode const entry : value.object()) {
        Interface const& intf = interfaceOf(entry, entry.name(), entry.shownName());
        if (!intf.routing) {
            throw entry.expected("an interface that routes", entry.shownName());
        }
        for (JsonNode const neighbour : entry.object()) {
            readNeighbour(neighbour, intf);
        }
    }
}

void SwitchFileReader::readNeighbour(JsonNode value, Interface const& intf) {
    auto const address = IpAddress::fromText(value.name());
    if (!address) {
        throw value.expected("an IP address", value.shownName());
    }
    auto const reached = connected_.longest(intf.routing->vrf, *address);
    bool const here = address->isLinkLocalV6()
                          ? speaksV6(intf)
                          : reached && &model_.interfaces[*reached->value] == &intf;
    if (!here) {
        throw value.expected("an address in a subnet of " + intf.id.stringValue(),
                             value.shownName());
    }
    if (ownAddresses_.find({intf.routing->vrf, *address}) != nullptr) {
        throw value.expected("an address that is not the switch's own", value.shownName());
    }
    if (!isFirst(seenNeighbours_, {model_.interfaceIndexes.at(intf.id), *address})) {
        throw value.expected("each address once", value.shownName() + " again");
    }
    auto const mac = readStationMac(value, value.text("a MAC address"), value.shown());
    model_.neighbours.push_back({intf.id, *address, mac});
}

void SwitchFileReader::readRoutes(JsonNode value) {
    for (JsonNode const table : value.object()) {
        std::uint16_t const vrf = vrfOf(table, table.name());
        model_.routes.reserve(model_.routes.size() + table.object().size());
        seenRoutes_.reserve(model_.routes.size() + table.size());
        singleHops_.clear();
        for (JsonNode const route : table) {
            readRoute(route, vrf);
        }
    }
}

void SwitchFileReader::readRoute(JsonNode value, std::uint16_t vrf) {
    auto const prefix = value.name().find('/') == std::string_view::npos
                            ? std::nullopt
                            : Prefix::fromText(value.name());
    if (!prefix) {
        throw value.expected("a prefix without host bits such as 10.1.0.0/16", value.shownName());
    }
    if (auto const* const connected = connected_.exact(vrf, *prefix)) {
        throw value.expected(
            "no route to a connected subnet",
            value.shownName() + ", which is on " + model_.interfaces[*connected].id.stringValue());
    }
    if (prefix->address.isMulticast()) {
        throw value.expected("a prefix of unicast addresses", value.shownName());
    }
    std::uint32_t const scope = std::uint32_t{vrf} << 8U | prefix->length;
    if (!isFirst(seenRoutes_, {scope, prefix->address})) {
        throw value.expected("each prefix once", value.shownName() + " again");
    }
    Route route = readTarget(value, vrf, prefix->address.family);
    route.prefix = *prefix;
    route.vrf = vrf;
    model_.routes.push_back(route);
}

Route SwitchFileReader::readTarget(JsonNode value, std::uint16_t vrf, Family family) {
    Route route;
    if (value.isText()) {
        std::string_view const text = value.text();
        if (text == "drop") {
            return route;
        }
        if (text == "cpu") {
            route.kind = Route::Kind::toCpu;
            return route;
        }
        if (auto const id = Plexa::IntfId::fromName(text); id && !id->empty()) {
            Interface const& intf = interfaceOf(value, text, value.shown());
            if (!intf.routing || intf.routing->vrf != vrf) {
                throw value.expected("an interface that routes in VRF " + model_.vrfs[vrf]);
            }
            route.kind = Route::Kind::attached;
            route.intf = *id;
            return route;
        }
    }
    route.kind = Route::Kind::nextHops;
    route.nextHopSet = nextHopSet(value, vrf, family);
    return route;
}

std::uint32_t SwitchFileReader::nextHopSet(JsonNode value, std::uint16_t vrf, Family family) {
    if (!value.isList()) {
        // Most routes of a large table share a few next hops: each is resolved once.
        std::string key(value.isText() ? value.text() : "");
        key += family == Family::ipv4 ? "4" : "6";
        if (auto const known = singleHops_.find(key); known != singleHops_.end()) {
            return known->second;
        }
        std::uint32_t const set = intern({readNextHop(value, vrf, family)});
        singleHops_.emplace(std::move(key), set);
        return set;
    }
    std::vector<NextHop> hops;
    for (JsonNode const element : value) {
        NextHop const hop = readNextHop(element, vrf, family);
        if (std::find(hops.begin(), hops.end(), hop) != hops.end()) {
            throw element.expected("each next hop once", element.shown() + " again");
        }
        hops.push_back(hop);
    }
    if (hops.empty()) {
        throw value.expected("at least one next hop", "none");
    }
    return intern(std::move(hops));
}

NextHop SwitchFileReader::readNextHop(JsonNode value, std::uint16_t vrf, Family family) const {
    constexpr std::string_view expected =
        "a next hop's address, a list of them, an interface, drop or cpu";
    std::string_view const text = value.text(expected);
    std::size_t const percent = std::min(text.find('%'), text.size());
    auto const gateway = IpAddress::fromText(text.substr(0, percent));
    if (!gateway) {
        throw value.expected(expected);
    }
    if (gateway->family != family) {
        throw value.expected(familyName(family) + " address, as the prefix is");
    }
    NextHop const hop = resolve(value, vrf, *gateway, text.substr(percent));
    if (ownAddresses_.find({vrf, *gateway}) != nullptr) {
        throw value.expected("a next hop that is not the switch itself");
    }
    return hop;
}

// `zone` is empty or "%" and an interface's name.
NextHop SwitchFileReader::resolve(JsonNode value, std::uint16_t vrf, IpAddress gateway,
                                  std::string_view zone) const {
    auto const connected = connected_.longest(vrf, gateway);
    Interface const* const reached = connected ? &model_.interfaces[*connected->value] : nullptr;
    if (zone.empty()) {
        if (reached == nullptr) {
            throw value.expected(
                gateway.isLinkLocalV6()
                    ? std::string("an interface behind a link-local next hop, as in "
                                  "\"fe80::1%Vlan10\"")
                    : "a next hop in a connected subnet of VRF " + model_.vrfs[vrf]);
        }
        return {reached->id, gateway};
    }
    Interface const& named = interfaceOf(value, zone.substr(1), value.shown());
    bool const good = named.routing && named.routing->vrf == vrf &&
                      (gateway.isLinkLocalV6() ? speaksV6(named) : reached == &named);
    if (!good) {
        throw value.expected("a next hop that " + named.id.stringValue() + " reaches in VRF " +
                             model_.vrfs[vrf]);
    }
    return {named.id, gateway};
}

std::uint32_t SwitchFileReader::intern(std::vector<NextHop> hops) {
    std::string key;
    for (NextHop const& hop : hops) {
        key += hop.intf.stringValue() + "%" + hop.gateway.text() + ",";
    }
    auto const next = static_cast<std::uint32_t>(model_.nextHopSets.size());
    auto const [at, isNew] = hopSets_.emplace(std::move(key), next);
    if (isNew) {
        model_.nextHopSets.push_back(std::move(hops));
    }
    return at->second;
}

void SwitchFileReader::readFdb(JsonNode value) {
    for (JsonNode const table : value.object()) {
        auto const vlan = parseNumber(table.name(), 1, maxVlan);
        if (!vlan || !vlans_[*vlan]) {
            throw table.expected("a VLAN of the member vlans", table.shownName());
        }
        for (JsonNode const entry : table.object()) {
            readFdbEntry(entry, static_cast<std::uint16_t>(*vlan));
        }
    }
}

void SwitchFileReader::readFdbEntry(JsonNode value, std::uint16_t vlan) {
    auto const mac = readStationMac(value, value.name(), value.shownName());
    if (!isFirst(seenStations_, {vlan, {mac.value, 0, Family::ipv4}})) {
        throw value.expected("each MAC address once", value.shownName() + " again");
    }
    Interface const& intf =
        interfaceOf(value, value.text("the name of an interface"), value.shown());
    if (!isMember(intf.id, vlan)) {
        throw value.expected("an interface that is a member of VLAN " + std::to_string(vlan));
    }
    if (mac == model_.routerMac &&
        model_.interface(Plexa::VlanIntfId::vlanIdToIntfId(vlan)) != nullptr) {
        throw value.expected("a MAC address that is not the router's own", value.shownName());
    }
    model_.fdb.push_back({vlan, mac, intf.id});
}

bool SwitchFileReader::isMember(Plexa::IntfId const& id, std::uint16_t vlan) const {
    Interface const& intf = *model_.interface(id);
    return intf.switching ? intf.switching->carries(vlan)
                          : id.kind() == Kind::subIntf && intf.vlan == vlan;
}

}  // namespace SwitchFile
