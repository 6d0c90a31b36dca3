// A listener that keeps everything, in the order in which it happened: for tests.
#pragma once

#include <string>
#include <vector>

#include "scriptchip/Listener.h"
#include "sdkseam/KeptCall.h"

namespace ScriptChip {

class CallLog final : public Listener {
  public:
    // Everything as one word each: an SDK function's name, "configIs Ethernet1" or
    // "configDel Ethernet1".
    std::vector<std::string> const& steps() const noexcept { return steps_; }
    // The SDK calls alone, and those of one function.
    std::vector<SdkSeam::KeptCall> const& calls() const noexcept { return calls_; }
    std::vector<SdkSeam::KeptCall> calls(SdkSeam::SdkFunction function) const;

    void clear() noexcept;

    void sdkCalled(SdkSeam::SdkCall const& call) override;
    void phase0ConfigIs(Plexa::IntfId const& intf) override;
    void phase0ConfigDel(Plexa::IntfId const& intf) override;

  private:
    std::vector<std::string> steps_;
    std::vector<SdkSeam::KeptCall> calls_;
};

}  // namespace ScriptChip
