// The chip SDK's functions by name, and one call of one of them: its arguments and what it gave
// back.
//
// A call refers to the caller's bytes and objects; to keep it longer than the call lasts, copy it
// (KeptCall.h).
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "PipeMgr/PipeMgr.h"
#include "VynId/VynDevId.h"

namespace SdkSeam {

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

// What is called with learn messages. Without a function it is no receiver.
struct DigestReceiver {
    p4_pd_sess_hdl_t session = 0;
    pipe_flow_lrn_notify_cb function = nullptr;
    void* cookie = nullptr;

    explicit operator bool() const noexcept { return function != nullptr; }
    // Hands a message over; returns what the receiver returns. Precondition: there is one.
    p4_pd_status_t operator()(pipe_flow_lrn_msg_t* message) const {
        return function(session, message, cookie);
    }
};

// The arguments, as far as the function has them; the others keep the values that they have here.
struct SdkCall {
    SdkFunction function = SdkFunction::getPktCounters;
    VynId::VynDevId device = 0;  // of an acknowledgement: the one that its message names
    p4_pd_sess_hdl_t session = 0;
    std::uint32_t pipe = 0;
    std::uint32_t genPort = 0;
    std::uint32_t appId = 0;
    std::uint32_t handle = 0;  // of the digest
    std::uint16_t pktId = 0;
    std::uint8_t portIndex = 0;
    std::span<std::uint8_t const> pkt = {};
    std::span<std::uint8_t const> phase0 = {};
    pipe_flow_lrn_notify_cb callback = nullptr;  // digestRegister
    void* cookie = nullptr;                      // digestRegister
    pipe_flow_lrn_msg_t* message = nullptr;      // notifyAck

    p4_pd_status_t rc = 0;
    std::uint64_t count = 0;  // getPktCounters; before the call, what the caller's variable holds

    DigestReceiver receiver() const noexcept { return {session, callback, cookie}; }
};

// Names the arguments that tell calls of a function apart, in the order in which the SDK declares
// them: use(name, number), or use(name, bytes) for the packet and the phase-0 data.
template <class Use>
void eachArgument(SdkCall const& call, Use const& use) {
    auto const number = [&use](std::string_view name, std::uint64_t value) { use(name, value); };
    number("session", call.session);
    if (call.function != SdkFunction::notifyAck) {
        number("device", call.device);
    }
    switch (call.function) {
        case SdkFunction::getPktCounters:
        case SdkFunction::disableAppId:
            number("pipe", call.pipe);
            number("appId", call.appId);
            break;
        case SdkFunction::genOnePkt:
            number("pipe", call.pipe);
            number("genPort", call.genPort);
            number("portIndex", call.portIndex);
            number("appId", call.appId);
            use("pkt", call.pkt);
            use("phase0", call.phase0);
            number("pktId", call.pktId);
            break;
        case SdkFunction::disablePktGen:
            number("pipe", call.pipe);
            number("genPort", call.genPort);
            break;
        case SdkFunction::digestRegister:
        case SdkFunction::digestDeregister:
        case SdkFunction::notifyAck:
            number("handle", call.handle);
            break;
    }
}

// One line: "disableAppId session=1 device=0 pipe=2 appId=4 -> 0", bytes in hexadecimal, and behind
// a counter's reading " count=7".
std::string text(SdkCall const& call);

}  // namespace SdkSeam
