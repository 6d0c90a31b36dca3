// A recording in front of a chip: the scenario writer is told of every call and every digest.
//
// It stands in front of the chip of its device as long as it lives, and sees each digest before the
// tracer does. Threads: as SdkSeam::ForwardingChip says.
#pragma once

#include "agent/LockedWriter.h"
#include "sdkseam/ForwardingChip.h"

namespace Agent {

class RecordedChip final : SdkSeam::CallHook, SdkSeam::DigestHook {
  public:
    // Precondition: what it is given outlives it.
    RecordedChip(VynId::VynDevId device, LockedWriter& writer)
        : writer_(writer), front_(device, *this, this) {}
    RecordedChip(RecordedChip const&) = delete;
    RecordedChip& operator=(RecordedChip const&) = delete;
    ~RecordedChip() = default;

  private:
    void called(SdkSeam::SdkCall& call, SdkSeam::Chip& behind) override;
    p4_pd_status_t received(pipe_flow_lrn_msg_t* message,
                            SdkSeam::DigestReceiver const& receiver) override;

    LockedWriter& writer_;
    SdkSeam::ForwardingChip front_;
};

}  // namespace Agent
