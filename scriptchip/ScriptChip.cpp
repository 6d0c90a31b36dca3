#include "scriptchip/ScriptChip.h"

#include <algorithm>
#include <vector>

namespace ScriptChip {

using SdkSeam::SdkCall;
using SdkSeam::SdkFunction;

ScriptChip::ScriptChip(Listener* listener, VynId::VynDevId device)
    : listener_(listener),
      device_(device),
      phase0Data_(Phase0Data::Phase0DataIs(listener)),
      digestLayout_(SdkSeam::DigestLayout::DigestLayoutIs()),
      learnQuanta_(SdkSeam::LearnQuanta::LearnQuantaIs()),
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

std::optional<p4_pd_status_t> ScriptChip::digest(std::span<SdkSeam::TraceDigest const> entries) {
    if (!receiver_) {
        return std::nullopt;
    }
    std::vector<SdkSeam::DigestEntry> packed(entries.size());
    std::ranges::transform(entries, packed.begin(), SdkSeam::packed);
    pipe_flow_lrn_msg_t message{};
    message.dev_tgt.device_id = device_;
    message.num_entries = static_cast<std::uint16_t>(entries.size());
    message.entries = packed.data();
    SdkSeam::DigestReceiver const receiver = receiver_;  // it may be deregistered meanwhile
    return receiver(&message);
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

void ScriptChip::call(SdkCall& call) {
    if (call.function == SdkFunction::getPktCounters) {
        call.count = nextCount(call.pipe);
    }
    call.rc = nextReturn(call.function);
    if (listener_ != nullptr) {
        listener_->sdkCalled(call);
    }
    if (call.function == SdkFunction::digestRegister && call.rc == 0) {
        receiver_ = call.receiver();
    } else if (call.function == SdkFunction::digestDeregister) {
        receiver_ = {};
    }
}

}  // namespace ScriptChip
