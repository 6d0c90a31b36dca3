#include "scriptchip/CallLog.h"

#include <algorithm>
#include <iterator>

namespace ScriptChip {

using SdkSeam::KeptCall;
using SdkSeam::SdkCall;
using SdkSeam::SdkFunction;

std::vector<KeptCall> CallLog::calls(SdkFunction function) const {
    std::vector<KeptCall> found;
    std::ranges::copy_if(calls_, std::back_inserter(found),
                         [&](KeptCall const& call) { return call->function == function; });
    return found;
}

void CallLog::clear() noexcept {
    steps_.clear();
    calls_.clear();
}

void CallLog::sdkCalled(SdkCall const& call) {
    steps_.emplace_back(sdkFunctionName(call.function));
    calls_.emplace_back(call);
}

void CallLog::phase0ConfigIs(Plexa::IntfId const& intf) {
    steps_.push_back("configIs " + intf.stringValue());
}

void CallLog::phase0ConfigDel(Plexa::IntfId const& intf) {
    steps_.push_back("configDel " + intf.stringValue());
}

}  // namespace ScriptChip
