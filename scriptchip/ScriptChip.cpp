#include "scriptchip/ScriptChip.h"

namespace ScriptChip {

ScriptChip::ScriptChip(Listener* listener, VynId::VynDevId device)
    : listener_(listener),
      device_(device),
      phase0Data_(Phase0Data::Phase0DataIs(listener)),
      digestLayout_(DigestLayout::DigestLayoutIs()),
      learnQuanta_(LearnQuanta::LearnQuantaIs()),
      scripts_{} {
    deviceIs(device);
}

ScriptChip::~ScriptChip() {
    phase0Data_->listenerIs(nullptr);
}

void ScriptChip::deviceIs(VynId::VynDevId device) {
    registration_.reset();
    registration_.emplace(device, *this);
    device_ = device;
}

void ScriptChip::counterIs(std::uint32_t pipe, std::span<std::uint64_t const> values) {
    counters_[pipe].assign(values.begin(), values.end());
}

void ScriptChip::sdkReturnIs(SdkFunction function, p4_pd_status_t rc, std::uint32_t times,
                             std::uint32_t after) noexcept {
    scripts_[static_cast<std::size_t>(function)] = {after, times, rc};
}

std::optional<p4_pd_status_t> ScriptChip::digest(std::span<DigestEntry const> entries) {
    if (!callback_) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> const bytes = packDigestEntries(entries);
    pipe_flow_lrn_msg_t message{};
    message.dev_tgt.device_id = device_;
    message.num_entries = static_cast<std::uint16_t>(entries.size());
    message.entries = bytes.data();
    Callback const callback = *callback_;  // it may be deregistered meanwhile
    return callback.function(callback.session, &message, callback.cookie);
}

p4_pd_status_t ScriptChip::nextReturn(SdkFunction function) noexcept {
    Script& script = scripts_[static_cast<std::size_t>(function)];
    if (script.times == 0) {
        return 0;
    }
    if (script.after > 0) {
        --script.after;
        return 0;
    }
    --script.times;
    return script.rc;
}

std::uint64_t ScriptChip::nextCount(std::uint32_t pipe) {
    auto const found = counters_.find(pipe);
    if (found == counters_.end()) {
        return 0;
    }
    std::uint64_t const count = found->second.front();
    if (found->second.size() > 1) {
        found->second.pop_front();
    }
    return count;
}

// Completes a call with the chip's part and tells the listener.
p4_pd_status_t ScriptChip::finish(SdkCall call) {
    call.device = device_;
    call.rc = nextReturn(call.function);
    if (listener_ != nullptr) {
        listener_->sdkCalled(call);
    }
    return call.rc;
}

p4_pd_status_t ScriptChip::getPktCounters(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                          std::uint32_t appId, std::uint64_t& count) {
    count = nextCount(pipe);
    return finish({.function = SdkFunction::getPktCounters,
                   .session = session,
                   .pipe = pipe,
                   .appId = appId,
                   .count = count});
}

p4_pd_status_t ScriptChip::genOnePkt(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                     std::uint32_t genPort, std::uint8_t portIndex,
                                     std::uint32_t appId, std::span<std::uint8_t const> pkt,
                                     std::span<std::uint8_t const> phase0, std::uint16_t pktId) {
    return finish({.function = SdkFunction::genOnePkt,
                   .session = session,
                   .pipe = pipe,
                   .genPort = genPort,
                   .portIndex = portIndex,
                   .appId = appId,
                   .pkt = {pkt.begin(), pkt.end()},
                   .phase0 = {phase0.begin(), phase0.end()},
                   .pktId = pktId});
}

p4_pd_status_t ScriptChip::disableAppId(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                        std::uint32_t appId) {
    return finish(
        {.function = SdkFunction::disableAppId, .session = session, .pipe = pipe, .appId = appId});
}

p4_pd_status_t ScriptChip::disablePktGen(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                         std::uint32_t genPort) {
    return finish({.function = SdkFunction::disablePktGen,
                   .session = session,
                   .pipe = pipe,
                   .genPort = genPort});
}

p4_pd_status_t ScriptChip::digestRegister(p4_pd_sess_hdl_t session, std::uint32_t handle,
                                          pipe_flow_lrn_notify_cb callback, void* cookie) {
    p4_pd_status_t const rc =
        finish({.function = SdkFunction::digestRegister, .session = session, .handle = handle});
    if (rc == 0) {
        callback_ = Callback{session, callback, cookie};
    }
    return rc;
}

p4_pd_status_t ScriptChip::digestDeregister(p4_pd_sess_hdl_t session, std::uint32_t handle) {
    callback_.reset();
    return finish(
        {.function = SdkFunction::digestDeregister, .session = session, .handle = handle});
}

p4_pd_status_t ScriptChip::notifyAck(p4_pd_sess_hdl_t session, std::uint32_t handle,
                                     pipe_flow_lrn_msg_t*) {
    return finish({.function = SdkFunction::notifyAck, .session = session, .handle = handle});
}

}  // namespace ScriptChip
