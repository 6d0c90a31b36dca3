#include "cli/SwitchDefaults.h"

#include <algorithm>
#include <optional>

namespace Cli {
namespace {

using PacketTracer::PacketFields;
using PacketTracer::PacketHints;
using PacketTracer::VlanTag;
using SwitchFile::Interface;
using SwitchFile::SwitchModel;

// The interface that takes the frames of the ingress interface: itself, or the LAG that it belongs
// to.
Interface const* logical(SwitchModel const& model, Plexa::IntfId const& ingress) {
    Interface const* const intf = model.interface(ingress);
    return intf != nullptr && !intf->lag.empty() ? model.interface(intf->lag) : intf;
}

// The VLAN and interfaces of the switch that a frame with given tags belongs to.
struct IngressDomain {
    std::uint16_t vlan = 0;         // 0 where it is not bridged
    Interface const* at = nullptr;  // its ingress in the FDB; null for none
    Interface const* l3 = nullptr;  // the interface that routes it; null for none
};

Interface const* subInterface(SwitchModel const& model, Interface const& parent,
                              std::uint16_t tag) {
    auto const found = std::ranges::find_if(model.interfaces, [&](Interface const& intf) {
        return Plexa::SubIntfId::parentIntfId(intf.id) == parent.id && intf.tag == tag;
    });
    return found != model.interfaces.end() ? &*found : nullptr;
}

IngressDomain bridgedIn(SwitchModel const& model, std::uint16_t vlan, Interface const& at) {
    return {vlan, &at, model.interface(Plexa::VlanIntfId::vlanIdToIntfId(vlan))};
}

IngressDomain ingressDomainOf(SwitchModel const& model, Plexa::IntfId const& ingress,
                              PacketFields const& fields) {
    Interface const* intf = logical(model, ingress);
    std::uint16_t const tag = fields.tags.empty() ? 0 : fields.tags.front().vlan;
    if (intf == nullptr) {
        return {};
    }
    if (intf->switching) {
        return bridgedIn(model, tag != 0 ? tag : intf->switching->untagged, *intf);
    }
    if (auto const* const sub = subInterface(model, *intf, tag); sub != nullptr && tag != 0) {
        intf = sub;
    }
    bool const isBridged = Plexa::SubIntfId::isSubIntfId(intf->id) && intf->vlan != 0;
    return isBridged ? bridgedIn(model, intf->vlan, *intf)
                     : IngressDomain{0, intf, intf->routing ? intf : nullptr};
}

bool isBehind(SwitchModel const& model, IngressDomain const& domain, Net::MacAddress mac) {
    return domain.vlan == 0 ||
           std::ranges::any_of(model.fdb, [&](SwitchFile::FdbEntry const& entry) {
               return entry.vlan == domain.vlan && entry.mac == mac && entry.intf == domain.at->id;
           });
}

SwitchFile::Neighbour const* neighbour(SwitchModel const& model, Interface const& l3,
                                       Net::IpAddress const& address) {
    auto const found = std::ranges::find_if(model.neighbours, [&](SwitchFile::Neighbour const& n) {
        return n.intf == l3.id && n.address == address;
    });
    return found != model.neighbours.end() ? &*found : nullptr;
}

void hintNeighbour(PacketHints& hints, SwitchFile::Neighbour const& known) {
    hints.hostMac = known.mac;
    auto& address = known.address.isV4() ? hints.hostIpv4 : hints.hostIpv6;
    address = address ? address : known.address;
}

// The first neighbour behind the ingress interface, with its addresses of both families.
void hintKnownHost(PacketHints& hints, SwitchModel const& model, IngressDomain const& domain) {
    std::optional<Net::MacAddress> host;
    for (SwitchFile::Neighbour const& known : model.neighbours) {
        bool const isHost = host ? known.mac == *host : isBehind(model, domain, known.mac);
        if (known.intf == domain.l3->id && isHost) {
            host = known.mac;
            hintNeighbour(hints, known);
        }
    }
}

void hintStation(PacketHints& hints, SwitchModel const& model, IngressDomain const& domain) {
    auto const station = std::ranges::find_if(model.fdb, [&](SwitchFile::FdbEntry const& entry) {
        return entry.vlan == domain.vlan && entry.intf == domain.at->id;
    });
    if (!hints.hostMac && station != model.fdb.end()) {
        hints.hostMac = station->mac;
    }
}

// The last address of the subnet that is neither the switch's own nor a broadcast address.
std::optional<Net::IpAddress> freeAddress(SwitchFile::InterfaceAddress const& own) {
    unsigned const bits = Net::addressBits(own.address.family) - own.length;
    if (bits == 0) {
        return std::nullopt;
    }
    bool const isV4 = own.address.isV4();
    Net::IpAddress last = own.network().address;
    unsigned const unused = isV4 ? 32 : 0;  // an IPv4 address is the upper half of `hi`
    std::uint64_t const ones = bits >= 64 ? ~0ULL : (1ULL << bits) - 1;
    std::uint64_t& low = isV4 ? last.hi : last.lo;
    low |= ones << unused;
    std::uint64_t const step = 1ULL << unused;
    low -= isV4 && bits > 1 ? step : 0;
    low -= last == own.address ? step : 0;
    return last;
}

void hintFreeAddresses(PacketHints& hints, Interface const& l3) {
    for (auto const& own : l3.routing->addresses) {
        bool const isV4 = own.address.isV4();
        if (own.address.isLinkLocalV6()) {
            continue;
        }
        auto& host = isV4 ? hints.hostIpv4 : hints.hostIpv6;
        host = host ? host : freeAddress(own);
        if (isV4 && !hints.routerIpv4) {
            hints.routerIpv4 = own.address;
        }
    }
}

// The next hop that a host would choose for such a packet: the neighbour in its own subnet, or the
// router.
Net::MacAddress nextHopMac(SwitchModel const& model, Interface const& l3,
                           PacketFields const& fields) {
    auto const* const known = fields.ipDst ? neighbour(model, l3, *fields.ipDst) : nullptr;
    return known != nullptr ? known->mac : model.routerMac;
}

VlanTag tagOf(std::uint16_t vlan) {
    return VlanTag{.vlan = vlan};
}

// The tag without which the ingress interface does not take a frame.
std::optional<VlanTag> neededTag(SwitchModel const& model, Plexa::IntfId const& ingress) {
    Interface const* const intf = logical(model, ingress);
    if (intf == nullptr) {
        return std::nullopt;
    }
    if (Plexa::SubIntfId::isSubIntfId(intf->id)) {
        return tagOf(intf->tag);
    }
    std::optional<VlanTag> first;
    for (auto const& vlan : model.vlans) {
        bool const isCarried =
            intf->switching && intf->switching->untagged == 0 && intf->switching->tagged[vlan.id];
        bool const isRouted =
            model.interface(Plexa::VlanIntfId::vlanIdToIntfId(vlan.id)) != nullptr;
        if (isCarried && isRouted) {
            return tagOf(vlan.id);
        }
        first = isCarried && !first ? std::optional(tagOf(vlan.id)) : first;
    }
    return first;
}

}  // namespace

PacketHints packetHints(SwitchModel const& model, Plexa::IntfId const& ingress,
                        PacketFields const& fields) {
    PacketHints hints;
    IngressDomain const domain = ingressDomainOf(model, ingress, fields);
    bool const routes = domain.l3 != nullptr && domain.l3->routing;
    if (routes) {
        hintKnownHost(hints, model, domain);
        hints.routerMac = nextHopMac(model, *domain.l3, fields);
    }
    if (domain.vlan != 0) {
        hintStation(hints, model, domain);
    }
    if (routes) {
        hintFreeAddresses(hints, *domain.l3);
    }
    return hints;
}

std::vector<PacketTracer::NamedField> fillFromSwitch(PacketFields& fields, std::uint16_t etherType,
                                                     bool untagged, SwitchModel const& model,
                                                     Plexa::IntfId const& ingress) {
    std::vector<PacketTracer::NamedField> filledTag;
    auto const tag = fields.tags.empty() && !untagged ? neededTag(model, ingress) : std::nullopt;
    if (tag) {
        PacketFields tagAlone;
        tagAlone.tags.push_back(*tag);
        filledTag = PacketTracer::namedFields(tagAlone);
        fields.tags.push_back(*tag);
    }
    auto filled =
        PacketTracer::fillDefaults(fields, etherType, packetHints(model, ingress, fields));
    filled.insert(filled.begin(), filledTag.begin(), filledTag.end());
    return filled;
}

}  // namespace Cli
