#include "scriptchip/Journal.h"

#include <algorithm>
#include <iterator>

namespace ScriptChip {

std::vector<SdkCall> Journal::calls(SdkFunction function) const {
    std::vector<SdkCall> found;
    std::ranges::copy_if(calls_, std::back_inserter(found),
                         [&](SdkCall const& call) { return call.function == function; });
    return found;
}

void Journal::clear() noexcept {
    steps_.clear();
    calls_.clear();
}

void Journal::sdkCalled(SdkCall const& call) {
    steps_.emplace_back(sdkFunctionName(call.function));
    calls_.push_back(call);
}

void Journal::phase0ConfigIs(Plexa::IntfId const& intf) {
    steps_.push_back("configIs " + intf.stringValue());
}

void Journal::phase0ConfigDel(Plexa::IntfId const& intf) {
    steps_.push_back("configDel " + intf.stringValue());
}

}  // namespace ScriptChip
