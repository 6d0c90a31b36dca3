#include "agent/ForwardingAgent.h"

#include <memory>
#include <string>
#include <utility>

#include "agent/DeriveTables.h"
#include "softchip/DigestLayout.h"

namespace Agent {

ForwardingAgent::ForwardingAgent(SwitchModel const& model, AgentOptions const& options)
    : loop_(Orb::TaskSchedulerRoot::TaskSchedulerRootIs()),
      database_(Hivedb::Database::DatabaseIs()),
      clientConfigs_(database_->mount(configPath)),
      clientStatuses_(database_->mount(statusPath)),
      mounts_(VynPacketTracer::vynPacketTracerMountsFactory()),
      state_(deriveForwardingState(model)),
      chip_({.device = options.device, .session = options.session, .mode = options.mode}),
      phase0Data_(SoftChip::Phase0Data::Phase0DataIs(loop_)) {
    mounts_->configIs(clientConfigs_);
    mounts_->statusIs(clientStatuses_);
    loadChip(model);
    bool const pktGenSupported = true;
    tracer_ = VynPacketTracer::packetTracerSmFactory(
        mounts_->config(), mounts_->status(), phase0Data_, pktGenSupported,
        options.pktTracerSupported, options.session, options.device,
        SoftChip::LearnQuanta::LearnQuantaIs(), SoftChip::DigestLayout::DigestLayoutIs(), loop_,
        state_.systemStatus, state_.fcsd, state_.bridgingConfig, state_.chipStatus);
}

ForwardingAgent::~ForwardingAgent() = default;

void ForwardingAgent::loadChip(SwitchModel const& model) {
    // Shared because a command must be copyable; it is the chip's thread that takes them.
    auto const tables = std::make_shared<SoftChip::Tables>(deriveTables(model));
    chip_.change([tables](SoftChip::Tables& chipTables) { chipTables = std::move(*tables); });
    for (Interface const& intf : model.interfaces) {
        bool const isSubIntf = Plexa::SubIntfId::isSubIntfId(intf.id);
        Interface const* const port =
            isSubIntf ? model.interface(Plexa::SubIntfId::parentIntfId(intf.id)) : &intf;
        if (port->id.kind() == Plexa::IntfId::Kind::physical) {
            phase0Data_->ingressPortIs(intf.id, port->devicePort);
        }
    }
}

}  // namespace Agent
