// A call that outlives the buffers that it was made with. Copies share the bytes.
#pragma once

#include <memory>
#include <vector>

#include "sdkseam/SdkCall.h"

namespace SdkSeam {

class KeptCall {
  public:
    // Copies the packet and the phase-0 data. The learn message of an acknowledgement is the chip's
    // again by now, so it is not kept.
    explicit KeptCall(SdkCall const& call);

    SdkCall const& operator*() const noexcept { return call_; }
    SdkCall const* operator->() const noexcept { return &call_; }

  private:
    SdkCall call_;                                            // refers to bytes_
    std::shared_ptr<std::vector<std::uint8_t> const> bytes_;  // packet, then phase-0 data
};

}  // namespace SdkSeam
