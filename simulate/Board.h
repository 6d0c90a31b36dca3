// The board between the tracer and its software chip: it writes down every call and answer, and
// adds what a real chip never does by itself.
//
// Calls and learn messages both go through it. Thread: one only.
#pragma once

#include <vector>

#include "VynSdk/Phase0DataIntf.h"
#include "sdkseam/ForwardingChip.h"
#include "sdkseam/TraceDigest.h"
#include "simulate/Logbook.h"
#include "simulate/Model.h"
#include "simulate/Packets.h"
#include "softchip/Phase0Data.h"

namespace Simulate {

class Board final : SdkSeam::CallHook, SdkSeam::DigestHook {
  public:
    // Precondition: the device has its chip.
    Board(Logbook& logbook, Packets& packets)
        : logbook_(logbook), packets_(packets), front_(Model::device, *this, this) {}

    // A learn message that no packet caused.
    void forge(std::vector<SdkSeam::DigestEntry> const& entries);
    bool registered() const { return bool(front_.receiver()); }
    std::uint64_t messages() const { return messages_; }

  private:
    void called(SdkSeam::SdkCall& call, SdkSeam::Chip& behind) override;
    p4_pd_status_t received(pipe_flow_lrn_msg_t* message,
                            SdkSeam::DigestReceiver const& receiver) override;

    Logbook& logbook_;
    Packets& packets_;
    pipe_flow_lrn_msg_t const* forged_ = nullptr;  // the forged message that is being handed on
    std::uint64_t messages_ = 0;
    SdkSeam::ForwardingChip front_;
};

// The phase-0 data of the chip; writes down what the tracer asks for.
class Phase0Desk final : public VynSdk::Phase0DataIntf {
  public:
    static Vanta::Ptr<Phase0Desk> Phase0DeskIs(Vanta::Ptr<SoftChip::Phase0Data> chip,
                                               Logbook& logbook, Packets& packets);

    void configIs(Plexa::IntfId const& intf) override;
    void configDel(Plexa::IntfId const& intf) override;

    // Somebody else asks for an interface, or withdraws it.
    void askElsewhere(Plexa::IntfId const& intf) { chip_->configIs(intf); }
    void dropElsewhere(Plexa::IntfId const& intf);

    // Whether an answer for the interface is overdue: it was asked for and has not come.
    bool isLost(Plexa::IntfId const& intf) const { return !response().has(intf); }

  private:
    friend struct Vanta::NodeFactory;
    Phase0Desk(Vanta::Ptr<SoftChip::Phase0Data> chip, Logbook& logbook, Packets& packets);
    ~Phase0Desk() override = default;

    void announced(Vanta::Change const& change);

    Vanta::Ptr<SoftChip::Phase0Data> chip_;
    Logbook& logbook_;
    Packets& packets_;
    Vanta::Subscriber subscriber_;
};

}  // namespace Simulate
