#include "sdkseam/Chip.h"

#include <stdexcept>
#include <string>

#include "VynSdk/VynSdk.h"
#include "sdkseam/ChipTable.h"

namespace SdkSeam {

std::array<std::atomic<Chip*>, 256> chips;

namespace {

// Hands a call to the chip of a device, or refuses it.
template <class... Params, class... Args>
p4_pd_status_t toChip(VynId::VynDevId device, p4_pd_status_t (Chip::*call)(Params...),
                      Args&&... args) {
    Chip* const chip = chips[device].load(std::memory_order_acquire);
    return chip != nullptr ? (chip->*call)(std::forward<Args>(args)...) : unknownDevice;
}

}  // namespace

Registration::Registration(VynId::VynDevId device, Chip& chip) : device_(device) {
    Chip* expected = nullptr;
    if (!chips[device].compare_exchange_strong(expected, &chip)) {
        throw std::logic_error("device " + std::to_string(device) + " has a chip already");
    }
}

Registration::~Registration() {
    chips[device_].store(nullptr, std::memory_order_release);
}

}  // namespace SdkSeam

namespace VynSdk {

using SdkSeam::Chip;
using SdkSeam::toChip;

p4_pd_status_t getPktCounters(p4_pd_sess_hdl_t session, VynId::VynDevId device, std::uint32_t pipe,
                              std::uint32_t appId, std::uint64_t& count) {
    return toChip(device, &Chip::getPktCounters, session, pipe, appId, count);
}

p4_pd_status_t genOnePkt(p4_pd_sess_hdl_t session, VynId::VynDevId device, std::uint32_t pipe,
                         std::uint32_t genPort, std::uint8_t portIndex, std::uint32_t appId,
                         std::span<std::uint8_t const> pkt, std::span<std::uint8_t const> phase0,
                         std::uint16_t pktId) {
    return toChip(device, &Chip::genOnePkt, session, pipe, genPort, portIndex, appId, pkt, phase0,
                  pktId);
}

p4_pd_status_t disableAppId(p4_pd_sess_hdl_t session, VynId::VynDevId device, std::uint32_t pipe,
                            std::uint32_t appId) {
    return toChip(device, &Chip::disableAppId, session, pipe, appId);
}

p4_pd_status_t disablePktGen(p4_pd_sess_hdl_t session, VynId::VynDevId device, std::uint32_t pipe,
                             std::uint32_t genPort) {
    return toChip(device, &Chip::disablePktGen, session, pipe, genPort);
}

}  // namespace VynSdk

using SdkSeam::Chip;
using SdkSeam::toChip;

p4_pd_status_t pipe_mgr_lrn_digest_notification_register(p4_pd_sess_hdl_t session,
                                                         std::uint8_t device,
                                                         std::uint32_t digestHandle,
                                                         pipe_flow_lrn_notify_cb callback,
                                                         void* cookie) {
    return toChip(device, &Chip::digestRegister, session, digestHandle, callback, cookie);
}

p4_pd_status_t pipe_mgr_lrn_digest_notification_deregister(p4_pd_sess_hdl_t session,
                                                           std::uint8_t device,
                                                           std::uint32_t digestHandle) {
    return toChip(device, &Chip::digestDeregister, session, digestHandle);
}

p4_pd_status_t pipe_mgr_flow_lrn_notify_ack(p4_pd_sess_hdl_t session, std::uint32_t digestHandle,
                                            pipe_flow_lrn_msg_t* message) {
    return toChip(message->dev_tgt.device_id, &Chip::notifyAck, session, digestHandle, message);
}

std::uint32_t dev_port_to_pipe_id(std::uint32_t devicePort) {
    return devicePort >> 7;
}
