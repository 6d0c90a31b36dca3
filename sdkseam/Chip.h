// The seam between the SDK's functions and the chips of this process.
//
// The SDK's functions are free functions, and two chips cannot both define them. They are defined
// here once and handed to the chip that the device id names; an unknown device is refused. A
// digest's acknowledgement goes to the chip whose message it is (its first byte is the device).
//
// Threads: a chip registers and leaves on the event thread, before its own threads run and after
// they ended. notifyAck() comes from the chip's own thread, everything else from the event thread.
#pragma once

#include <cstdint>
#include <span>

#include "PipeMgr/PipeMgr.h"
#include "VynId/VynDevId.h"

namespace SdkSeam {

// What the functions return for a device that no chip has registered for.
inline constexpr p4_pd_status_t unknownDevice = -1;

// A chip: the SDK's functions without their device argument. See VynSdk/VynSdk.h and
// PipeMgr/PipeMgr.h for what each does.
class Chip {
  public:
    virtual p4_pd_status_t getPktCounters(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                          std::uint32_t appId, std::uint64_t& count) = 0;
    virtual p4_pd_status_t genOnePkt(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                     std::uint32_t genPort, std::uint8_t portIndex,
                                     std::uint32_t appId, std::span<std::uint8_t const> pkt,
                                     std::span<std::uint8_t const> phase0, std::uint16_t pktId) = 0;
    virtual p4_pd_status_t disableAppId(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                        std::uint32_t appId) = 0;
    virtual p4_pd_status_t disablePktGen(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                         std::uint32_t genPort) = 0;
    virtual p4_pd_status_t digestRegister(p4_pd_sess_hdl_t session, std::uint32_t digestHandle,
                                          pipe_flow_lrn_notify_cb callback, void* cookie) = 0;
    virtual p4_pd_status_t digestDeregister(p4_pd_sess_hdl_t session,
                                            std::uint32_t digestHandle) = 0;
    virtual p4_pd_status_t notifyAck(p4_pd_sess_hdl_t session, std::uint32_t digestHandle,
                                     pipe_flow_lrn_msg_t* message) = 0;

  protected:
    ~Chip() = default;
};

// A chip's place behind a device id, for as long as this object lives.
class Registration {
  public:
    // Errors: std::logic_error if the device id is taken.
    Registration(VynId::VynDevId device, Chip& chip);
    Registration(Registration const&) = delete;
    Registration& operator=(Registration const&) = delete;
    ~Registration();

    VynId::VynDevId device() const noexcept { return device_; }

  private:
    VynId::VynDevId device_;
};

}  // namespace SdkSeam
