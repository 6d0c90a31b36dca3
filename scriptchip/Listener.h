// A listener that is told of everything that the tracer asks of the scripted chip.
#pragma once

#include "Plexa/IntfId.h"
#include "sdkseam/SdkCall.h"

namespace ScriptChip {

// Called synchronously, inside the call that it is told of. Thread: the event thread. It must not
// throw: some calls come from destructors.
class Listener {
  public:
    // A call of an SDK function, its outcome included. What it refers to is valid only inside this
    // call.
    virtual void sdkCalled(SdkSeam::SdkCall const& call) = 0;
    // Phase-0 data of an interface was asked for, or is not wanted any more.
    virtual void phase0ConfigIs(Plexa::IntfId const& intf) = 0;
    virtual void phase0ConfigDel(Plexa::IntfId const& intf) = 0;

  protected:
    ~Listener() = default;
};

}  // namespace ScriptChip
