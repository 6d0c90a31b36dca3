// A chip with a recording before it: every call and every digest goes through here, and the
// scenario writer is told.
//
// It stands in front of the chip of its device from its making to its end, and registers itself for
// the tracer's digests, to see each ahead of the tracer. Threads: as SdkSeam::Chip says; it is made
// and ended on the event thread, while no digest is registered.
#pragma once

#include "agent/LockedWriter.h"
#include "sdkseam/Chip.h"
#include "sdkseam/Interposition.h"
#include "softchip/Sdk.h"

namespace Agent {

class RecordedChip final : public SdkSeam::Chip {
  public:
    // Precondition: what it is given outlives it.
    RecordedChip(VynId::VynDevId device, LockedWriter& writer)
        : writer_(writer), front_(device, *this) {}
    RecordedChip(RecordedChip const&) = delete;
    RecordedChip& operator=(RecordedChip const&) = delete;
    ~RecordedChip() = default;

    p4_pd_status_t getPktCounters(p4_pd_sess_hdl_t session, std::uint32_t pipe, std::uint32_t appId,
                                  std::uint64_t& count) override;
    p4_pd_status_t genOnePkt(p4_pd_sess_hdl_t session, std::uint32_t pipe, std::uint32_t genPort,
                             std::uint8_t portIndex, std::uint32_t appId,
                             std::span<std::uint8_t const> pkt,
                             std::span<std::uint8_t const> phase0, std::uint16_t pktId) override;
    p4_pd_status_t disableAppId(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                std::uint32_t appId) override;
    p4_pd_status_t disablePktGen(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                 std::uint32_t genPort) override;
    p4_pd_status_t digestRegister(p4_pd_sess_hdl_t session, std::uint32_t handle,
                                  pipe_flow_lrn_notify_cb callback, void* cookie) override;
    p4_pd_status_t digestDeregister(p4_pd_sess_hdl_t session, std::uint32_t handle) override;
    p4_pd_status_t notifyAck(p4_pd_sess_hdl_t session, std::uint32_t handle,
                             pipe_flow_lrn_msg_t* message) override;

  private:
    static p4_pd_status_t digest(p4_pd_sess_hdl_t session, pipe_flow_lrn_msg_t* message,
                                 void* cookie);
    p4_pd_status_t noted(ScriptChip::SdkFunction call, p4_pd_status_t rc);

    LockedWriter& writer_;
    // The tracer's registration. Written while no digest is registered below.
    pipe_flow_lrn_notify_cb callback_ = nullptr;
    void* cookie_ = nullptr;
    SdkSeam::Interposition front_;
};

}  // namespace Agent
