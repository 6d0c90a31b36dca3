#include "agent/DeriveTables.h"

namespace Agent {
namespace {

using Kind = Plexa::IntfId::Kind;
using SoftChip::DomainId;
using SoftChip::LogicalPort;
using SoftChip::PortMode;
using SoftChip::Tables;
using SwitchFile::Interface;
using SwitchFile::SwitchModel;
using SwitchFile::Vlan;

// The domain that the interface routes in.
DomainId domainOf(Interface const& intf) {
    return intf.id.kind() == Kind::vlan ? intf.vlan : intf.internalVlan;
}

void derivePorts(SwitchModel const& model, Tables& tables) {
    for (Interface const& intf : model.interfaces) {
        if (intf.id.kind() == Kind::physical) {
            tables.portIs(intf.devicePort, intf.up, intf.cpu);
        } else if (intf.id.kind() == Kind::lag) {
            std::vector<SoftChip::LagMember> members;
            for (Plexa::IntfId const& member : intf.members) {
                members.push_back({model.interface(member)->devicePort});
            }
            tables.lagIs(SwitchFile::lagNumber(intf.id), std::move(members));
        }
    }
}

void deriveModes(SwitchModel const& model, Tables& tables) {
    for (Interface const& intf : model.interfaces) {
        if (intf.id.kind() == Kind::subIntf) {
            DomainId const domain = intf.vlan != 0 ? intf.vlan : intf.internalVlan;
            tables.subIntfIs(logicalPort(model, intf.id), intf.tag, domain);
        } else if (intf.switching) {
            // An access port is a trunk that carries one VLAN.
            tables.modeIs(logicalPort(model, intf.id), PortMode::trunk(intf.switching->untagged));
        } else if (intf.routing && intf.id.kind() != Kind::vlan) {
            tables.modeIs(logicalPort(model, intf.id), PortMode::routed(intf.internalVlan));
        }
    }
}

void deriveVlans(SwitchModel const& model, Tables& tables) {
    for (Vlan const& vlan : model.vlans) {
        tables.vlanIs(vlan.id);
    }
    for (Interface const& intf : model.interfaces) {
        if (intf.id.kind() == Kind::subIntf && intf.vlan != 0) {
            tables.vlanMemberIs(intf.vlan, logicalPort(model, intf.id));
        }
        for (Vlan const& vlan : model.vlans) {
            if (intf.switching && intf.switching->carries(vlan.id)) {
                tables.vlanMemberIs(vlan.id, logicalPort(model, intf.id));
            }
        }
    }
}

void deriveL3Intf(SwitchModel const& model, Interface const& intf, Tables& tables) {
    DomainId const domain = domainOf(intf);
    std::uint16_t const vrf = intf.routing->vrf;
    SoftChip::L3Intf l3{vrf, model.routerMac, {}, 0};
    if (intf.id.kind() != Kind::vlan) {
        l3.out = logicalPort(model, intf.id);
        l3.tag = intf.tag;
    }
    tables.l3IntfIs(domain, l3);
    for (SwitchFile::InterfaceAddress const& own : intf.routing->addresses) {
        tables.ownAddressIs(vrf, own.address);
        if (!own.address.isLinkLocalV6()) {
            tables.routeIs(vrf, own.network(), SoftChip::Route::connected(domain));
        }
    }
}

SoftChip::Route chipRoute(SwitchModel const& model, SwitchFile::Route const& route) {
    switch (route.kind) {
        case SwitchFile::Route::Kind::nextHops:
            return SoftChip::Route::via(route.nextHopSet);
        case SwitchFile::Route::Kind::attached:
            return SoftChip::Route::connected(domainOf(*model.interface(route.intf)));
        case SwitchFile::Route::Kind::toCpu:
            return SoftChip::Route::toCpu();
        case SwitchFile::Route::Kind::drop:
            break;
    }
    return SoftChip::Route::drop();
}

void deriveRoutes(SwitchModel const& model, Tables& tables) {
    std::uint32_t number = 0;
    for (std::vector<SwitchFile::NextHop> const& set : model.nextHopSets) {
        std::vector<SoftChip::NextHop> hops;
        hops.reserve(set.size());
        for (SwitchFile::NextHop const& hop : set) {
            hops.push_back({domainOf(*model.interface(hop.intf)), hop.gateway});
        }
        tables.nextHopSetIs(number++, std::move(hops));
    }
    for (SwitchFile::Route const& route : model.routes) {
        tables.routeIs(route.vrf, route.prefix, chipRoute(model, route));
    }
}

// An access list bound to an interface or a VLAN: the list, what its rules must match besides, and
// what it is bound to.
struct AclBinding {
    std::uint16_t acl = 0;
    LogicalPort ingress;
    DomainId domain = SoftChip::noDomain;
    std::string boundTo;
};

AclBinding bindingOf(SwitchModel const& model, Interface const& intf) {
    AclBinding binding{*intf.acl, logicalPort(model, intf.id), SoftChip::noDomain,
                       intf.id.stringValue()};
    if (intf.id.kind() == Kind::subIntf) {
        binding.domain = intf.vlan != 0 ? intf.vlan : intf.internalVlan;
    }
    return binding;
}

std::vector<AclBinding> aclBindings(SwitchModel const& model) {
    std::vector<AclBinding> bindings;
    for (Vlan const& vlan : model.vlans) {
        if (vlan.acl) {
            bindings.push_back({*vlan.acl, {}, vlan.id, "VLAN " + std::to_string(vlan.id)});
        }
    }
    for (Interface const& intf : model.interfaces) {
        if (intf.acl) {
            bindings.push_back(bindingOf(model, intf));
        }
    }
    return bindings;
}

void deriveAcls(SwitchModel const& model, Tables& tables) {
    std::uint16_t list = 0;
    for (AclBinding const& binding : aclBindings(model)) {
        ++list;
        for (SoftChip::AclRule rule : model.acls[binding.acl].rules) {
            rule.list = list;
            rule.match.ingress = binding.ingress;
            rule.match.domain = binding.domain;
            tables.acl().ruleIs(rule);
        }
    }
    tables.protocolRules() = model.protocolRules;
}

}  // namespace

LogicalPort logicalPort(SwitchModel const& model, Plexa::IntfId const& id) {
    if (id.kind() == Kind::subIntf) {
        return logicalPort(model, Plexa::SubIntfId::parentIntfId(id));
    }
    return id.kind() == Kind::lag ? LogicalPort::lag(SwitchFile::lagNumber(id))
                                  : LogicalPort::port(model.interface(id)->devicePort);
}

std::vector<std::string> aclBindingNames(SwitchModel const& model) {
    std::vector<std::string> names;
    for (AclBinding const& binding : aclBindings(model)) {
        names.push_back(model.acls[binding.acl].name + " on " + binding.boundTo);
    }
    return names;
}

SoftChip::Tables deriveTables(SwitchModel const& model) {
    Tables tables;
    tables.reserve(model.routes.size() + model.interfaces.size(), model.fdb.size(),
                   model.neighbours.size());
    derivePorts(model, tables);
    deriveModes(model, tables);
    deriveVlans(model, tables);
    for (Interface const& intf : model.interfaces) {
        if (intf.routing) {
            deriveL3Intf(model, intf, tables);
        }
    }
    deriveRoutes(model, tables);
    for (SwitchFile::Neighbour const& neighbour : model.neighbours) {
        tables.neighbourIs(domainOf(*model.interface(neighbour.intf)), neighbour.address,
                           neighbour.mac);
    }
    for (SwitchFile::FdbEntry const& entry : model.fdb) {
        tables.fdbIs(entry.vlan, entry.mac, logicalPort(model, entry.intf));
    }
    deriveAcls(model, tables);
    return tables;
}

}  // namespace Agent
