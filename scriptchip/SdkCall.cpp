#include "scriptchip/SdkCall.h"

#include <algorithm>

namespace ScriptChip {

std::string_view sdkFunctionName(SdkFunction function) noexcept {
    switch (function) {
        case SdkFunction::getPktCounters:
            return "getPktCounters";
        case SdkFunction::genOnePkt:
            return "genOnePkt";
        case SdkFunction::disableAppId:
            return "disableAppId";
        case SdkFunction::disablePktGen:
            return "disablePktGen";
        case SdkFunction::digestRegister:
            return "pipe_mgr_lrn_digest_notification_register";
        case SdkFunction::digestDeregister:
            return "pipe_mgr_lrn_digest_notification_deregister";
        case SdkFunction::notifyAck:
            return "pipe_mgr_flow_lrn_notify_ack";
    }
    return {};
}

std::optional<SdkFunction> sdkFunctionOf(std::string_view name) noexcept {
    auto const found = std::ranges::find(allSdkFunctions, name, sdkFunctionName);
    return found != allSdkFunctions.end() ? std::optional(*found) : std::nullopt;
}

}  // namespace ScriptChip
