// A chip in front of another one, to which it hands its calls on, through a hook.
//
// Its callers see it as the chip of the device; the chip behind it gets what the hook lets through.
// With a digest hook the learn messages of the chip behind come back the same way: this object then
// registers with that chip, in the tracer's name.
//
//     struct Slow final : SdkSeam::CallHook {
//         void called(SdkSeam::SdkCall& call, SdkSeam::Chip& behind) override {
//             behind.call(call);                  // `call` then has what the chip answered
//         }
//         SdkSeam::ForwardingChip front{device, *this};
//     };
//
// A device without such a chip pays nothing for it. Threads: for calls as Chip.h says, for messages
// as PipeMgr.h says; it is made and destroyed on the event thread, with a digest hook only while no
// digest is registered.
#pragma once

#include "sdkseam/Chip.h"
#include "sdkseam/Interposition.h"

namespace SdkSeam {

class CallHook {
  public:
    // A call on its way. Hands it to the chip behind, or not; the caller gets the status and the
    // count that `call` has afterwards, and the chip gets the arguments that it has before.
    virtual void called(SdkCall& call, Chip& behind) = 0;

  protected:
    ~CallHook() = default;
};

class DigestHook {
  public:
    // A learn message on its way. Hands it to its receiver, or not; returns what the chip gets. A
    // message that is not handed on is not acknowledged by anybody.
    virtual p4_pd_status_t received(pipe_flow_lrn_msg_t* message,
                                    DigestReceiver const& receiver) = 0;

  protected:
    ~DigestHook() = default;
};

class ForwardingChip final : public Chip {
  public:
    // Precondition: the hooks outlive it. Errors: std::logic_error if the device has no chip.
    ForwardingChip(VynId::VynDevId device, CallHook& hook, DigestHook* digestHook = nullptr)
        : hook_(hook), digestHook_(digestHook), front_(device, *this) {}
    ForwardingChip(ForwardingChip const&) = delete;
    ForwardingChip& operator=(ForwardingChip const&) = delete;
    ~ForwardingChip() = default;

    void call(SdkCall& call) override;

    // The receiver of the messages, with a digest hook: the one that registered last. None after a
    // deregistration, whatever that returned.
    DigestReceiver const& receiver() const noexcept { return receiver_; }

  private:
    void registerDigest(SdkCall& call);
    static p4_pd_status_t onMessage(p4_pd_sess_hdl_t session, pipe_flow_lrn_msg_t* message,
                                    void* self);

    CallHook& hook_;
    DigestHook* const digestHook_;
    DigestReceiver receiver_;  // written while nothing is registered with the chip
    Interposition front_;
};

}  // namespace SdkSeam
