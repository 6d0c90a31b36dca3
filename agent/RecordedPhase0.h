// Phase-0 data with a recording in front of it: the chip's announcements go through here to the
// tracer, and the scenario writer is told of them.
//
// In a scenario an answer stands before a turn. So an announcement in a turn that has already read
// a digest waits for the beginning of the next turn; all others pass at once:
//
//   announced by the chip   at delivery                          the tracer sees
//   an answer               its entry still stands               the entry, announced
//                           it was withdrawn meanwhile           nothing
//   a removal               the tracer has seen the answer       the removal, announced
//                           it has not                           nothing
//
// configDel() takes an entry away at once, as with the chip. Thread: the event thread.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>

#include "Orb/TaskSchedulerRoot.h"
#include "Vanta/Publisher.h"
#include "VynSdk/Phase0DataIntf.h"

namespace Agent {

class RecordedPhase0 final : public VynSdk::Phase0DataIntf {
  public:
    struct Listener {
        // Whether an announcement would come too late in this turn.
        std::function<bool()> isLate;
        // An announcement, before the tracer hears of it; no response for a removal.
        std::function<void(Plexa::IntfId const&, VynSdk::Phase0DataResponse const*)> announced;
    };

    static Vanta::Ptr<RecordedPhase0> RecordedPhase0Is(Vanta::Ptr<VynSdk::Phase0DataIntf> chip,
                                                       Vanta::Ptr<Orb::TaskSchedulerRoot> loop,
                                                       Listener listener);

    void configIs(Plexa::IntfId const& intf) override { chip_->configIs(intf); }
    void configDel(Plexa::IntfId const& intf) override;

    // The listener is told no more; the tracer is still served.
    void listenerDel() { listener_ = {}; }

  private:
    friend struct Vanta::NodeFactory;
    struct Announcement {
        Plexa::IntfId intf;
        std::optional<VynSdk::Phase0DataResponse> response;
    };

    RecordedPhase0(Vanta::Ptr<VynSdk::Phase0DataIntf> chip, Vanta::Ptr<Orb::TaskSchedulerRoot> loop,
                   Listener listener);
    ~RecordedPhase0() override = default;

    void chipAnnounced(Vanta::Change const& change);
    void deliverWaiting();
    void deliver(Announcement const& announcement);

    Vanta::Ptr<VynSdk::Phase0DataIntf> chip_;
    Vanta::Ptr<Orb::TaskSchedulerRoot> loop_;
    Listener listener_;
    std::deque<Announcement> waiting_;  // in the chip's order
    std::set<Plexa::IntfId> seen_;      // the tracer has seen an answer, and no removal since
    Vanta::Subscriber chipSubscriber_;
    // A posted call finds out by this whether this object still exists.
    std::shared_ptr<RecordedPhase0*> self_ = std::make_shared<RecordedPhase0*>(this);
};

}  // namespace Agent
