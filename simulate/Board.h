// What stands between the tracer and its software chip: it writes down every call and answer on its
// way, and slips in what a chip of its own accord never does.
//
// Towards the tracer it is a chip, with a device id of its own; towards the chip it is whoever
// registered for digests. Learn messages are handed on under its own device, so that their
// acknowledgements come back through it. Thread: one only.
#pragma once

#include <deque>
#include <vector>

#include "VynSdk/Phase0DataIntf.h"
#include "sdkseam/Chip.h"
#include "simulate/Model.h"
#include "simulate/Packets.h"
#include "simulate/Recorder.h"
#include "softchip/Phase0Data.h"
#include "softchip/SoftChip.h"

namespace Simulate {

class Board final : public SdkSeam::Chip {
  public:
    Board(SoftChip::SoftChip& chip, Recorder& recorder, Packets& packets)
        : chip_(chip), recorder_(recorder), packets_(packets), seat_(Model::device, *this) {}

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

    // A learn message that no packet caused.
    void forge(std::vector<std::uint8_t> const& entries, std::uint16_t count);
    bool registered() const { return callback_ != nullptr; }
    std::uint64_t messages() const { return messages_; }

  private:
    void deliver(pipe_flow_lrn_msg_t message, pipe_flow_lrn_msg_t* original);

    SoftChip::SoftChip& chip_;
    Recorder& recorder_;
    Packets& packets_;
    SdkSeam::Registration seat_;
    p4_pd_sess_hdl_t session_ = 0;
    pipe_flow_lrn_notify_cb callback_ = nullptr;
    void* cookie_ = nullptr;
    pipe_flow_lrn_msg_t* original_ = nullptr;  // the chip's message that is being handed on
    std::uint64_t messages_ = 0;
};

// The phase-0 data of the chip, with what the tracer asks written down.
class Phase0Desk final : public VynSdk::Phase0DataIntf {
  public:
    static Vanta::Ptr<Phase0Desk> Phase0DeskIs(Vanta::Ptr<SoftChip::Phase0Data> chip,
                                               Recorder& recorder, Packets& packets);

    void configIs(Plexa::IntfId const& intf) override;
    void configDel(Plexa::IntfId const& intf) override;

    // What somebody else asks or withdraws.
    void askElsewhere(Plexa::IntfId const& intf) { chip_->configIs(intf); }
    void dropElsewhere(Plexa::IntfId const& intf);

    // Whether an answer for the interface is overdue: it was asked for and has not come.
    bool isLost(Plexa::IntfId const& intf) const { return !response().has(intf); }

  private:
    friend struct Vanta::NodeFactory;
    Phase0Desk(Vanta::Ptr<SoftChip::Phase0Data> chip, Recorder& recorder, Packets& packets);
    ~Phase0Desk() override = default;

    void announced(Vanta::Change const& change);

    Vanta::Ptr<SoftChip::Phase0Data> chip_;
    Recorder& recorder_;
    Packets& packets_;
    Vanta::Subscriber subscriber_;
};

}  // namespace Simulate
