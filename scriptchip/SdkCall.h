// The chip SDK's functions by name, and one call of one of them as it was made.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "PipeMgr/PipeMgr.h"
#include "VynId/VynDevId.h"

namespace ScriptChip {

enum class SdkFunction : std::uint8_t {
    getPktCounters,
    genOnePkt,
    disableAppId,
    disablePktGen,
    digestRegister,
    digestDeregister,
    notifyAck,
};

inline constexpr std::array allSdkFunctions{
    SdkFunction::getPktCounters, SdkFunction::genOnePkt,      SdkFunction::disableAppId,
    SdkFunction::disablePktGen,  SdkFunction::digestRegister, SdkFunction::digestDeregister,
    SdkFunction::notifyAck,
};

// The name under which the SDK declares the function, without a namespace.
std::string_view sdkFunctionName(SdkFunction function) noexcept;

// The function of that name; nothing for any other text.
std::optional<SdkFunction> sdkFunctionOf(std::string_view name) noexcept;

// One call: the arguments, as far as the function has them, and what it gave back.
struct SdkCall {
    SdkFunction function = SdkFunction::getPktCounters;
    p4_pd_sess_hdl_t session = 0;
    VynId::VynDevId device = 0;
    std::uint32_t pipe = 0;
    std::uint32_t genPort = 0;
    std::uint8_t portIndex = 0;
    std::uint32_t appId = 0;
    std::vector<std::uint8_t> pkt = {};
    std::vector<std::uint8_t> phase0 = {};
    std::uint16_t pktId = 0;
    std::uint32_t handle = 0;  // of the digest

    p4_pd_status_t rc = 0;
    std::uint64_t count = 0;  // getPktCounters
};

}  // namespace ScriptChip
