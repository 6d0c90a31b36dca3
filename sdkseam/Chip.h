// The seam between the SDK's functions and the chips of this process.
//
// The SDK's functions are free functions, and two chips cannot both define them. They are defined
// here once and handed to the chip that the device id names; an unknown device is refused. A
// digest's acknowledgement goes to the chip whose message it is (its first byte is the device).
//
// Threads: a chip registers and leaves on the event thread, before its own threads run and after
// they ended. An acknowledgement comes from the chip's own thread, everything else from the event
// thread.
#pragma once

#include "sdkseam/SdkCall.h"

namespace SdkSeam {

// What the functions return for a device that no chip has registered for.
inline constexpr p4_pd_status_t unknownDevice = -1;

// A chip: every call of an SDK function comes through one function. See VynSdk/VynSdk.h and
// PipeMgr/PipeMgr.h for what each does.
class Chip {
  public:
    // Carries a call out and stores its results in it: the status, and the count of a counter. A
    // result that the chip does not set stays as it was: success, and the count that the caller
    // had.
    virtual void call(SdkCall& call) = 0;

  protected:
    ~Chip() = default;
};

// A chip behind a device id, for as long as this object lives.
class Registration {
  public:
    // Errors: std::logic_error if the device id is taken.
    Registration(VynId::VynDevId device, Chip& chip);
    Registration(Registration const&) = delete;
    Registration& operator=(Registration const&) = delete;
    ~Registration();

    VynId::VynDevId device() const noexcept { return device_; }

  private:
    VynId::VynDevId device_;
};

}  // namespace SdkSeam
