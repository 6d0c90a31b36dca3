// The chip SDK's C interface for learning digests. Declarations only.
#pragma once

#include <cstdint>

#include "VynExport.h"

using p4_pd_status_t = std::int32_t;
using p4_pd_sess_hdl_t = std::uint32_t;

// Which device, pipes and direction a message is about; the first byte is the device.
struct p4_pd_dev_target_t {
    std::uint8_t device_id;
    std::uint8_t reserved[7];
};
static_assert(sizeof(p4_pd_dev_target_t) == 8);

// One learn message: entries that lie one behind the other. It belongs to the chip until it is
// acknowledged.
struct pipe_flow_lrn_msg_t {
    p4_pd_dev_target_t dev_tgt;
    std::uint16_t num_entries;
    void const* entries;
};

// Called on the SDK's thread with each message; the cookie is the registration's.
using pipe_flow_lrn_notify_cb = p4_pd_status_t (*)(p4_pd_sess_hdl_t session,
                                                   pipe_flow_lrn_msg_t* message, void* cookie);

extern "C" {

// Has `callback` called with the digests of a field list. 0 on success.
VYN_EXPORT p4_pd_status_t pipe_mgr_lrn_digest_notification_register(
    p4_pd_sess_hdl_t session, std::uint8_t device, std::uint32_t digestHandle,
    pipe_flow_lrn_notify_cb callback, void* cookie);

// Ends the registration. No callback runs any more when it has returned. 0 on success.
VYN_EXPORT p4_pd_status_t pipe_mgr_lrn_digest_notification_deregister(p4_pd_sess_hdl_t session,
                                                                      std::uint8_t device,
                                                                      std::uint32_t digestHandle);

// Gives a message back to the chip, inside the callback or later. 0 on success.
VYN_EXPORT p4_pd_status_t pipe_mgr_flow_lrn_notify_ack(p4_pd_sess_hdl_t session,
                                                       std::uint32_t digestHandle,
                                                       pipe_flow_lrn_msg_t* message);

// The pipe of a device port. Thread: any.
VYN_EXPORT std::uint32_t dev_port_to_pipe_id(std::uint32_t devicePort);

}  // extern "C"
