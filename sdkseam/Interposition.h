// Puts a chip in front of another one; the chip in front gets the calls and hands them on, or not.
//
// Several may be in front of one chip; they are destroyed in the reverse order, and before the
// chip. Thread: the event thread; no call of the device is under way on another one meanwhile.
#pragma once

#include "sdkseam/Chip.h"

namespace SdkSeam {

class Interposition {
  public:
    // Puts `front` before the chip of a device, for as long as this object lives.
    // Errors: std::logic_error if the device has no chip.
    Interposition(VynId::VynDevId device, Chip& front);
    Interposition(Interposition const&) = delete;
    Interposition& operator=(Interposition const&) = delete;
    ~Interposition();

    // The chip that got the calls before.
    Chip& behind() const noexcept { return *behind_; }

  private:
    VynId::VynDevId device_;
    Chip* behind_;
};

}  // namespace SdkSeam
