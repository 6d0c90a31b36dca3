#include "agent/DeriveState.h"

namespace Agent {
namespace {

using SwitchFile::Interface;
using SwitchFile::SwitchModel;
using SwitchFile::Vlan;
using Kind = Plexa::IntfId::Kind;

VynSystem::PortInfo portInfo(Interface const& port) {
    return {static_cast<std::uint8_t>(SoftChip::pipeOf(port.devicePort)),
            VynPortTypes::PortIndex(SoftChip::indexInPipe(port.devicePort))};
}

void derivePorts(SwitchModel const& model, ForwardingState& state) {
    for (Interface const& intf : model.interfaces) {
        if (Interface const* const port = model.entryPort(intf)) {
            state.systemStatus->portInfoIs(intf.id, portInfo(*port));
        }
        if (intf.id.kind() != Kind::physical) {
            continue;
        }
        state.systemStatus->portToIntfIdIs(VynPortTypes::PortIndex(intf.devicePort), intf.id);
        if (intf.cpu) {
            state.chipStatus->cpuIntfIs(intf.id);
        }
    }
}

void deriveLags(SwitchModel const& model, ForwardingState& state) {
    for (Interface const& intf : model.interfaces) {
        if (intf.id.kind() == Kind::lag) {
            state.fcsd->lagToPortIs(intf.id);
        } else if (!intf.lag.empty()) {
            state.fcsd->portToLagIs(intf.id, intf.lag);
        }
    }
}

void deriveMembers(SwitchModel const& model, Interface const& intf, Bridging::Config& config) {
    if (intf.switching) {
        for (Vlan const& vlan : model.vlans) {
            if (intf.switching->carries(vlan.id)) {
                config.vlanConfigIs(Bridging::VlanId(vlan.id))->intfIs(intf.id);
            }
        }
    } else if (intf.id.kind() == Kind::vlan) {
        auto const cpu = Plexa::IntfId::fromName("Cpu").value();
        config.vlanConfigIs(Bridging::VlanId(intf.vlan))->intfIs(cpu);
    } else if (intf.vlan != 0) {
        config.vlanConfigIs(Bridging::VlanId(intf.vlan))->intfIs(intf.id);
    } else if (intf.internalVlan != 0) {
        auto const vlan = config.vlanConfigIs(Bridging::VlanId(intf.internalVlan));
        vlan->internalIs(true);
        vlan->intfIs(intf.id);
    }
}

}  // namespace

ForwardingState deriveForwardingState(SwitchModel const& model) {
    ForwardingState state;
    derivePorts(model, state);
    deriveLags(model, state);
    for (Vlan const& vlan : model.vlans) {
        state.bridgingConfig->vlanConfigIs(Bridging::VlanId(vlan.id));
    }
    for (Interface const& intf : model.interfaces) {
        deriveMembers(model, intf, *state.bridgingConfig);
    }
    return state;
}

}  // namespace Agent
