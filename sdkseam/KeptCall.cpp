#include "sdkseam/KeptCall.h"

namespace SdkSeam {

KeptCall::KeptCall(SdkCall const& call) : call_(call) {
    auto bytes = std::make_shared<std::vector<std::uint8_t>>(call.pkt.begin(), call.pkt.end());
    bytes->insert(bytes->end(), call.phase0.begin(), call.phase0.end());
    std::span<std::uint8_t const> const all(*bytes);
    call_.pkt = all.first(call.pkt.size());
    call_.phase0 = all.subspan(call.pkt.size());
    call_.message = nullptr;
    bytes_ = std::move(bytes);
}

}  // namespace SdkSeam
