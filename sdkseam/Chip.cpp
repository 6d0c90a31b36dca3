#include "sdkseam/Chip.h"

#include <stdexcept>
#include <string>

#include "VynSdk/VynSdk.h"
#include "sdkseam/ChipTable.h"

namespace SdkSeam {

std::array<std::atomic<Chip*>, 256> chips;

namespace {

// Hands a call to the chip of its device, or refuses it.
p4_pd_status_t toChip(SdkCall& call) {
    Chip* const chip = chips[call.device].load(std::memory_order_acquire);
    if (chip == nullptr) {
        return unknownDevice;
    }
    chip->call(call);
    return call.rc;
}

p4_pd_status_t toChip(SdkCall&& call) {
    return toChip(call);
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

using SdkSeam::SdkFunction;
using SdkSeam::toChip;

namespace VynSdk {

p4_pd_status_t getPktCounters(p4_pd_sess_hdl_t session, VynId::VynDevId device, std::uint32_t pipe,
                              std::uint32_t appId, std::uint64_t& count) {
    SdkSeam::SdkCall call{.function = SdkFunction::getPktCounters,
                          .device = device,
                          .session = session,
                          .pipe = pipe,
                          .appId = appId,
                          .count = count};
    p4_pd_status_t const rc = toChip(call);
    count = call.count;
    return rc;
}

p4_pd_status_t genOnePkt(p4_pd_sess_hdl_t session, VynId::VynDevId device, std::uint32_t pipe,
                         std::uint32_t genPort, std::uint8_t portIndex, std::uint32_t appId,
                         std::span<std::uint8_t const> pkt, std::span<std::uint8_t const> phase0,
                         std::uint16_t pktId) {
    return toChip({.function = SdkFunction::genOnePkt,
                   .device = device,
                   .session = session,
                   .pipe = pipe,
                   .genPort = genPort,
                   .appId = appId,
                   .pktId = pktId,
                   .portIndex = portIndex,
                   .pkt = pkt,
                   .phase0 = phase0});
}

p4_pd_status_t disableAppId(p4_pd_sess_hdl_t session, VynId::VynDevId device, std::uint32_t pipe,
                            std::uint32_t appId) {
    return toChip({.function = SdkFunction::disableAppId,
                   .device = device,
                   .session = session,
                   .pipe = pipe,
                   .appId = appId});
}

p4_pd_status_t disablePktGen(p4_pd_sess_hdl_t session, VynId::VynDevId device, std::uint32_t pipe,
                             std::uint32_t genPort) {
    return toChip({.function = SdkFunction::disablePktGen,
                   .device = device,
                   .session = session,
                   .pipe = pipe,
                   .genPort = genPort});
}

}  // namespace VynSdk

p4_pd_status_t pipe_mgr_lrn_digest_notification_register(p4_pd_sess_hdl_t session,
                                                         std::uint8_t device,
                                                         std::uint32_t digestHandle,
                                                         pipe_flow_lrn_notify_cb callback,
                                                         void* cookie) {
    return toChip({.function = SdkFunction::digestRegister,
                   .device = device,
                   .session = session,
                   .handle = digestHandle,
                   .callback = callback,
                   .cookie = cookie});
}

p4_pd_status_t pipe_mgr_lrn_digest_notification_deregister(p4_pd_sess_hdl_t session,
                                                           std::uint8_t device,
                                                           std::uint32_t digestHandle) {
    return toChip({.function = SdkFunction::digestDeregister,
                   .device = device,
                   .session = session,
                   .handle = digestHandle});
}

p4_pd_status_t pipe_mgr_flow_lrn_notify_ack(p4_pd_sess_hdl_t session, std::uint32_t digestHandle,
                                            pipe_flow_lrn_msg_t* message) {
    return toChip({.function = SdkFunction::notifyAck,
                   .device = message->dev_tgt.device_id,
                   .session = session,
                   .handle = digestHandle,
                   .message = message});
}

std::uint32_t dev_port_to_pipe_id(std::uint32_t devicePort) {
    return devicePort >> 7;
}
