#include "sdkseam/ForwardingChip.h"

#include <utility>

namespace SdkSeam {

void ForwardingChip::call(SdkCall& call) {
    if (digestHook_ != nullptr && call.function == SdkFunction::digestRegister) {
        registerDigest(call);
        return;
    }
    hook_.called(call, front_.behind());
    if (call.function == SdkFunction::digestDeregister) {
        receiver_ = {};
    }
}

// The receiver is set before the chip is called: a message may come at once.
void ForwardingChip::registerDigest(SdkCall& call) {
    DigestReceiver const before = std::exchange(receiver_, call.receiver());
    call.callback = onMessage;
    call.cookie = this;
    hook_.called(call, front_.behind());
    if (call.rc != 0) {
        receiver_ = before;
    }
}

p4_pd_status_t ForwardingChip::onMessage(p4_pd_sess_hdl_t, pipe_flow_lrn_msg_t* message,
                                         void* self) {
    auto& chip = *static_cast<ForwardingChip*>(self);
    return chip.receiver_ ? chip.digestHook_->received(message, chip.receiver_) : 0;
}

}  // namespace SdkSeam
