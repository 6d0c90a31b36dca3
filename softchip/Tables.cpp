#include "softchip/Tables.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace SoftChip {
namespace {

void check(bool good, char const* table, unsigned long value, char const* expected) {
    if (!good) {
        throw std::out_of_range(std::string("SoftChip::Tables: ") + table + " " +
                                std::to_string(value) + ", expected " + expected);
    }
}

void checkPort(DevicePort port) {
    check(port <= maxDevicePort, "device port", port, "0 to 455");
}

void checkDomain(DomainId domain) {
    check(domain != noDomain && domain <= maxDomain, "domain", domain, "1 to 4094");
}

void checkOptionalDomain(DomainId domain) {
    check(domain <= maxDomain, "domain", domain, "0 to 4094");
}

void checkTarget(LogicalPort port) {
    check(!port.isNone(), "logical port", 0, "a port or a LAG");
    if (port.isPort()) {
        checkPort(port.number());
    }
}

template <class Entry>
Entry const* entry(std::vector<std::optional<Entry>> const& table, unsigned index) {
    return index < table.size() && table[index] ? &*table[index] : nullptr;
}

template <class Entry>
bool removeEntry(std::vector<std::optional<Entry>>& table, unsigned index) {
    bool const was = entry(table, index) != nullptr;
    if (was) {
        table[index].reset();
    }
    return was;
}

}  // namespace

bool Vlan::has(LogicalPort port) const {
    return std::binary_search(members.begin(), members.end(), port);
}

std::uint64_t Tables::ScopedIp::hash() const {
    auto const where = std::uint64_t{scope} << 1 | (address.family == Family::ipv6);
    return mix(mix(address.hi ^ where) ^ address.lo);
}

Tables::Tables()
    : ports_(maxDevicePort + 1),
      portModes_(maxDevicePort + 1),
      portLags_(maxDevicePort + 1),
      vlans_(maxDomain + 1),
      l3Intfs_(maxDomain + 1) {}

void Tables::portIs(DevicePort port, bool up, bool cpu) {
    checkPort(port);
    ports_[port] = Port{up, cpu};
    findCpuPort();
}

void Tables::portUpIs(DevicePort port, bool up) {
    checkPort(port);
    if (ports_[port]) {
        ports_[port]->up = up;
    }
}

bool Tables::portDel(DevicePort port) {
    bool const was = removeEntry(ports_, port);
    findCpuPort();
    return was;
}

Port const* Tables::port(DevicePort port) const {
    return entry(ports_, port);
}

void Tables::findCpuPort() {
    auto const isCpu = [](std::optional<Port> const& port) { return port && port->cpu; };
    auto const first = std::find_if(ports_.begin(), ports_.end(), isCpu);
    cpuPort_.reset();
    if (first != ports_.end()) {
        cpuPort_ = static_cast<DevicePort>(first - ports_.begin());
    }
}

void Tables::modeIs(LogicalPort port, PortMode mode) {
    checkTarget(port);
    checkOptionalDomain(mode.untagged);
    (port.isPort() ? portModes_[port.number()] : lags_[{port.number()}].mode) = mode;
}

PortMode Tables::mode(LogicalPort port) const {
    if (port.isPort() && port.number() <= maxDevicePort) {
        return portModes_[port.number()];
    }
    auto const* lag = port.isLag() ? lags_.find({port.number()}) : nullptr;
    return lag ? lag->mode : PortMode{};
}

void Tables::lagIs(LagId lag, std::vector<LagMember> members) {
    for (auto const& member : members) {
        checkPort(member.port);
    }
    unbind(lag);
    std::ranges::sort(members, {}, &LagMember::port);
    for (auto const& member : members) {
        leaveLag(member.port);
        portLags_[member.port] = lag;
    }
    lags_[{lag}].lag = Lag{std::move(members)};
}

bool Tables::lagDel(LagId lag) {
    bool const was = this->lag(lag) != nullptr;
    unbind(lag);
    lags_.erase({lag});
    return was;
}

void Tables::leaveLag(DevicePort port) {
    if (portLags_[port]) {
        auto& lag = lags_[{*portLags_[port]}].lag;
        std::erase_if(lag->members, [port](LagMember const& m) { return m.port == port; });
        portLags_[port].reset();
    }
}

void Tables::unbind(LagId lag) {
    std::ranges::replace(portLags_, std::optional(lag), std::optional<LagId>());
}

Lag const* Tables::lag(LagId lag) const {
    auto const* found = lags_.find({lag});
    return found && found->lag ? &*found->lag : nullptr;
}

LogicalPort Tables::logicalPort(DevicePort port) const {
    if (port <= maxDevicePort && portLags_[port]) {
        return LogicalPort::lag(*portLags_[port]);
    }
    return LogicalPort::port(port);
}

void Tables::subIntfIs(LogicalPort parent, std::uint16_t tag, DomainId domain) {
    checkTarget(parent);
    check(tag != 0 && tag <= maxDomain, "sub-interface tag", tag, "1 to 4094");
    checkDomain(domain);
    subIntfs_[{parent, tag}] = domain;
}

bool Tables::subIntfDel(LogicalPort parent, std::uint16_t tag) {
    return subIntfs_.erase({parent, tag});
}

DomainId Tables::subIntf(LogicalPort parent, std::uint16_t tag) const {
    auto const* found = subIntfs_.find({parent, tag});
    return found ? *found : noDomain;
}

void Tables::vlanIs(DomainId vlan) {
    checkDomain(vlan);
    if (!vlans_[vlan]) {
        vlans_[vlan].emplace();
    }
}

bool Tables::vlanDel(DomainId vlan) {
    return removeEntry(vlans_, vlan);
}

Vlan const* Tables::vlan(DomainId vlan) const {
    return entry(vlans_, vlan);
}

void Tables::vlanMemberIs(DomainId vlan, LogicalPort member) {
    checkTarget(member);
    vlanIs(vlan);
    auto& members = vlans_[vlan]->members;
    auto const at = std::ranges::lower_bound(members, member);
    if (at == members.end() || *at != member) {
        members.insert(at, member);
    }
}

bool Tables::vlanMemberDel(DomainId vlan, LogicalPort member) {
    return this->vlan(vlan) && std::erase(vlans_[vlan]->members, member) > 0;
}

void Tables::l3IntfIs(DomainId domain, L3Intf const& intf) {
    checkDomain(domain);
    l3Intfs_[domain] = intf;
}

bool Tables::l3IntfDel(DomainId domain) {
    return removeEntry(l3Intfs_, domain);
}

L3Intf const* Tables::l3Intf(DomainId domain) const {
    return entry(l3Intfs_, domain);
}

void Tables::virtualMacIs(DomainId domain, MacAddress mac) {
    checkDomain(domain);
    virtualMacs_[domainMac(domain, mac)] = {};
}

bool Tables::virtualMacDel(DomainId domain, MacAddress mac) {
    return virtualMacs_.erase(domainMac(domain, mac));
}

bool Tables::isRouterMac(DomainId domain, MacAddress mac) const {
    auto const* intf = l3Intf(domain);
    return intf && (intf->routerMac == mac || virtualMacs_.find(domainMac(domain, mac)));
}

void Tables::ownAddressIs(VrfId vrf, IpAddress address) {
    ownAddresses_[{vrf, address}] = {};
}

bool Tables::ownAddressDel(VrfId vrf, IpAddress address) {
    return ownAddresses_.erase({vrf, address});
}

bool Tables::isOwnAddress(VrfId vrf, IpAddress const& address) const {
    return ownAddresses_.find({vrf, address}) != nullptr;
}

void Tables::nextHopSetIs(std::uint32_t set, std::vector<NextHop> hops) {
    for (auto const& hop : hops) {
        checkDomain(hop.domain);
    }
    nextHopSets_[{set}] = std::move(hops);
}

bool Tables::nextHopSetDel(std::uint32_t set) {
    return nextHopSets_.erase({set});
}

std::vector<NextHop> const* Tables::nextHopSet(std::uint32_t set) const {
    return nextHopSets_.find({set});
}

void Tables::routeIs(VrfId vrf, Prefix const& prefix, Route route) {
    check(prefix.length <= addressBits(prefix.address.family), "prefix length", prefix.length,
          "up to 32 or 128");
    routes_.add(vrf, Prefix::of(prefix.address, prefix.length), route);
}

bool Tables::routeDel(VrfId vrf, Prefix const& prefix) {
    return routes_.remove(vrf, Prefix::of(prefix.address, prefix.length));
}

std::optional<Lpm<Route>::Match> Tables::route(VrfId vrf, IpAddress const& address) const {
    return routes_.longest(vrf, address);
}

void Tables::neighbourIs(DomainId domain, IpAddress address, MacAddress mac) {
    checkDomain(domain);
    neighbours_[{domain, address}] = mac;
}

bool Tables::neighbourDel(DomainId domain, IpAddress address) {
    return neighbours_.erase({domain, address});
}

std::optional<MacAddress> Tables::neighbour(DomainId domain, IpAddress const& address) const {
    auto const* mac = neighbours_.find({domain, address});
    return mac ? std::optional(*mac) : std::nullopt;
}

void Tables::fdbIs(DomainId vlan, MacAddress mac, LogicalPort port) {
    checkDomain(vlan);
    checkTarget(port);
    fdb_[domainMac(vlan, mac)] = port;
}

bool Tables::fdbDel(DomainId vlan, MacAddress mac) {
    return fdb_.erase(domainMac(vlan, mac));
}

LogicalPort Tables::fdb(DomainId vlan, MacAddress mac) const {
    auto const* port = fdb_.find(domainMac(vlan, mac));
    return port ? *port : LogicalPort();
}

void Tables::reserve(std::size_t routes, std::size_t fdbEntries, std::size_t neighbours) {
    routes_.reserve(routes);
    fdb_.reserve(fdbEntries);
    neighbours_.reserve(neighbours);
}

}  // namespace SoftChip
