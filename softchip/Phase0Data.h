// Phase-0 data of the software chip: the bytes that name an ingress port to the pipeline.
//
// Answers and removals go through one queue, and each is announced in a later turn than the one
// that caused it, in the order in which they were caused:
//
//   call                        queued                                 at once
//   configIs, not asked yet     an answer
//   configIs, asked already     nothing
//   configDel, no answer yet    nothing; the queued answer is void
//   configDel, answer there     a removal                              the entry goes
//   configDel, not asked        nothing
//
// An answer's entry appears at its announcement, not before. So an answer is announced only while
// its request stands, and each request has one answer at most: an interface that was asked for,
// withdrawn and asked for again is answered once. When a removal is announced, the entry is always
// gone, because only an answer behind it in the queue can bring a new one.
//
// The answer for an interface that is no ingress port of the chip is a status without data. The
// port is looked up when the answer is delivered.
// Thread: the event thread.
#pragma once

#include <cstdint>
#include <deque>

#include "Orb/Task.h"
#include "Orb/TaskSchedulerRoot.h"
#include "VynSdk/Phase0DataIntf.h"
#include "softchip/Faults.h"
#include "softchip/Ports.h"

namespace SoftChip {

class Phase0Data final : public VynSdk::Phase0DataIntf {
  public:
    static constexpr std::uint32_t unknownIntf = 1;  // the status for no ingress port

    static Vanta::Ptr<Phase0Data> Phase0DataIs(Vanta::Ptr<Orb::TaskSchedulerRoot> scheduler);

    // Sets the port where packets of an interface enter the chip. Precondition: port <=
    // maxDevicePort.
    void ingressPortIs(Plexa::IntfId const& intf, DevicePort port);
    // False if the interface was no ingress port.
    bool ingressPortDel(Plexa::IntfId const& intf);

    void configIs(Plexa::IntfId const& intf) override;
    void configDel(Plexa::IntfId const& intf) override;

    // Faults to order; each replaces what was ordered before. Of the answers to requests from now
    // on, the nth and those after it, `times` in all:
    //   come so many turns later, and delay what is behind them;
    void lateIs(std::uint64_t turns, std::uint64_t nth = 1, std::uint64_t times = 1);
    //   never come, though the request stands;
    void lostIs(std::uint64_t nth = 1, std::uint64_t times = 1);
    //   have this status and no data.
    void statusIs(std::uint32_t status, std::uint64_t nth = 1, std::uint64_t times = 1);

  private:
    friend struct Vanta::NodeFactory;

    // What is to be announced. An answer is void if its request no longer stands.
    struct Event {
        Plexa::IntfId intf;
        std::uint64_t request = 0;  // the request's number; 0 for a removal
        std::uint64_t turn = 0;     // announced in a later one
        std::uint32_t status = 0;   // what a fault has the answer say
    };
    struct Late {
        std::uint64_t turns = 0;
        FaultWindow window{1, 0};
    };
    struct Failing {
        std::uint32_t status = 0;
        FaultWindow window{1, 0};
    };

    explicit Phase0Data(Vanta::Ptr<Orb::TaskSchedulerRoot> scheduler);
    ~Phase0Data() override = default;

    void queue(Event const& event);
    void announceDue();
    bool isVoid(Event const& event) const;
    void announce(Event const& event);
    VynSdk::Phase0DataResponse answer(Event const& event) const;

    Vanta::Ptr<Orb::TaskSchedulerRoot> scheduler_;
    Kel::Collection<Plexa::IntfId, Vanta::Bytes> ingressPorts_;  // each one's phase-0 bytes
    Kel::Collection<Plexa::IntfId, std::uint64_t> requests_;     // number of the standing request
    std::uint64_t lastRequest_ = 0;
    std::deque<Event> events_;  // in the order in which they were caused
    Late late_;
    FaultWindow lost_{1, 0};
    Failing failing_;
    Vanta::Ptr<Orb::Task> task_;
    Vanta::Subscriber run_;
};

}  // namespace SoftChip
