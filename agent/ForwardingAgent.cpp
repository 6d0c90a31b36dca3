#include "agent/ForwardingAgent.h"

#include <memory>
#include <string>
#include <utility>

#include "agent/DeriveTables.h"
#include "agent/RunRecorder.h"
#include "sdkseam/DigestLayout.h"

namespace Agent {

ForwardingAgent::ForwardingAgent(SwitchFile::SwitchModel const& model, AgentOptions const& options)
    : options_(options),
      loop_(Orb::TaskSchedulerRoot::TaskSchedulerRootIs()),
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
    if (options_.recording != nullptr) {
        recorder_ = std::make_unique<RunRecorder>(
            RunRecorder::Subject{loop_, clientConfigs_, clientStatuses_, state_, phase0Data_,
                                 options_.device},
            *options_.recording);
    }
    loadTracer();
}

ForwardingAgent::~ForwardingAgent() {
    releaseTracer();
}

void ForwardingAgent::loadTracer() {
    bool const pktGenSupported = true;
    if (recorder_) {
        recorder_->starting(options_.pktTracerSupported, pktGenSupported, options_.session);
    }
    tracer_ = VynPacketTracer::packetTracerSmFactory(
        mounts_->config(), mounts_->status(), recorder_ ? recorder_->phase0Data() : phase0Data_,
        pktGenSupported, options_.pktTracerSupported, options_.session, options_.device,
        SdkSeam::LearnQuanta::LearnQuantaIs(), SdkSeam::DigestLayout::DigestLayoutIs(), loop_,
        state_.systemStatus, state_.fcsd, state_.bridgingConfig, state_.chipStatus);
}

void ForwardingAgent::releaseTracer() {
    if (recorder_) {
        recorder_->stopping();
    }
    tracer_ = nullptr;
}

void ForwardingAgent::restartTracer() {
    releaseTracer();
    loadTracer();
}

void ForwardingAgent::changeForwardingState(
    std::function<void(ForwardingState const&)> const& change) {
    change(state_);
    if (recorder_) {
        recorder_->forwardingStateChanged();
    }
}

void ForwardingAgent::loadChip(SwitchFile::SwitchModel const& model) {
    // Shared because a command must be copyable; the chip's thread moves the tables out of it.
    auto const tables = std::make_shared<SoftChip::Tables>(deriveTables(model));
    chip_.change([tables](SoftChip::Tables& chipTables) { chipTables = std::move(*tables); });
    for (SwitchFile::Interface const& intf : model.interfaces) {
        if (auto const* const port = model.entryPort(intf)) {
            phase0Data_->ingressPortIs(intf.id, port->devicePort);
        }
    }
}

}  // namespace Agent
