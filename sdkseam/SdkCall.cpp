#include "sdkseam/SdkCall.h"

#include <algorithm>

#include "Vanta/Bytes.h"

namespace SdkSeam {

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

namespace {

std::string valueText(std::uint64_t number) {
    return std::to_string(number);
}

std::string valueText(std::span<std::uint8_t const> bytes) {
    return Vanta::hexText(bytes);
}

}  // namespace

std::string text(SdkCall const& call) {
    std::string line(sdkFunctionName(call.function));
    eachArgument(call, [&line](std::string_view name, auto value) {
        line.append(" ").append(name).append("=").append(valueText(value));
    });
    line.append(" -> ").append(std::to_string(call.rc));
    if (call.function == SdkFunction::getPktCounters) {
        line.append(" count=").append(std::to_string(call.count));
    }
    return line;
}

}  // namespace SdkSeam
