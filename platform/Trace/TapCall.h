// A statement on its way to the taps. Internal to Trace.
#pragma once

#include <string_view>

#include "Trace/Tap.h"

namespace Trace {

class TapCall {
  public:
    static bool isThereATap() noexcept { return Tap::chain_.first() != nullptr; }
    // Whether there is a tap for a statement of this thread: not for one that a tap makes.
    static bool anybodyListens() noexcept { return isThereATap() && !underWay; }
    // Tells every tap, the newest first; does nothing if there is none.
    static void tell(std::string_view handle, unsigned level, std::string_view text);

  private:
    TapCall() noexcept { underWay = true; }
    ~TapCall() { underWay = false; }

    static inline constinit thread_local bool underWay = false;
};

}  // namespace Trace
