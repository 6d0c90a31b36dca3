#include "softchip/Phase0Data.h"

#include <utility>

#include "softchip/Phase0.h"

namespace SoftChip {

Vanta::Ptr<Phase0Data> Phase0Data::Phase0DataIs(Vanta::Ptr<Orb::TaskSchedulerRoot> scheduler) {
    return Vanta::makeNode<Phase0Data>(std::move(scheduler));
}

// Its task runs before the tracer's, so that an answer is used in the turn that delivers it.
Phase0Data::Phase0Data(Vanta::Ptr<Orb::TaskSchedulerRoot> scheduler)
    : scheduler_(std::move(scheduler)),
      task_(Orb::Task::TaskIs(scheduler_, Orb::TaskPriority::p2, "phase0Data")) {
    run_.subscribe<&Phase0Data::announceDue>(task_->publisher(), this);
}

void Phase0Data::ingressPortIs(Plexa::IntfId const& intf, DevicePort port) {
    ingressPorts_.findOrInsert(intf).value = Vanta::Bytes(encodePhase0(port));
}

bool Phase0Data::ingressPortDel(Plexa::IntfId const& intf) {
    return ingressPorts_.remove(intf).has_value();
}

void Phase0Data::configIs(Plexa::IntfId const& intf) {
    if (requests_.has(intf)) {
        return;
    }
    Event answer{intf, ++lastRequest_};
    requests_.insert(intf, answer.request);
    if (lost_.meets()) {
        return;
    }
    answer.turn = scheduler_->turns() + (late_.window.meets() ? late_.turns : 0);
    answer.status = failing_.window.meets() ? failing_.status : 0;
    queue(answer);
}

void Phase0Data::configDel(Plexa::IntfId const& intf) {
    if (requests_.remove(intf) && responseDel(intf)) {
        queue({.intf = intf, .turn = scheduler_->turns()});
    }
}

void Phase0Data::queue(Event const& event) {
    events_.push_back(event);
    task_->schedule();
}

// Events that are caused meanwhile belong to this turn, so they wait for the next one. An
// announcement may release the last reference to this object.
void Phase0Data::announceDue() {
    Vanta::Ptr<Phase0Data> const alive(this);
    while (!events_.empty() && refCount() > 1) {
        auto const event = events_.front();
        bool const isVoidNow = isVoid(event);
        if (!isVoidNow && event.turn >= scheduler_->turns()) {
            task_->schedule();
            return;
        }
        events_.pop_front();
        if (!isVoidNow) {
            announce(event);
        }
    }
}

bool Phase0Data::isVoid(Event const& event) const {
    return event.request != 0 && requests_.get(event.intf) != event.request;
}

void Phase0Data::announce(Event const& event) {
    if (event.request != 0) {
        responseIs(event.intf, answer(event));
    }
    publishResponse(event.intf);
}

VynSdk::Phase0DataResponse Phase0Data::answer(Event const& event) const {
    if (event.status != 0) {
        return {{}, event.status};
    }
    auto const* port = ingressPorts_.find(event.intf);
    if (port == nullptr) {
        return {{}, unknownIntf};
    }
    return {port->value, 0};
}

void Phase0Data::lateIs(std::uint64_t turns, std::uint64_t nth, std::uint64_t times) {
    late_ = {turns, FaultWindow(nth, times)};
}

void Phase0Data::lostIs(std::uint64_t nth, std::uint64_t times) {
    lost_ = FaultWindow(nth, times);
}

void Phase0Data::statusIs(std::uint32_t status, std::uint64_t nth, std::uint64_t times) {
    failing_ = {status, FaultWindow(nth, times)};
}

}  // namespace SoftChip
