#include "agent/RecordedPhase0.h"

#include <utility>

namespace Agent {

using VynSdk::Phase0DataIntf;
using VynSdk::Phase0DataResponse;

Vanta::Ptr<RecordedPhase0> RecordedPhase0::RecordedPhase0Is(Vanta::Ptr<Phase0DataIntf> chip,
                                                            Vanta::Ptr<Orb::TaskSchedulerRoot> loop,
                                                            Listener listener) {
    return Vanta::makeNode<RecordedPhase0>(std::move(chip), std::move(loop), std::move(listener));
}

RecordedPhase0::RecordedPhase0(Vanta::Ptr<Phase0DataIntf> chip,
                               Vanta::Ptr<Orb::TaskSchedulerRoot> loop, Listener listener)
    : chip_(std::move(chip)), loop_(std::move(loop)), listener_(std::move(listener)) {
    chipSubscriber_.subscribe<&RecordedPhase0::chipAnnounced>(chip_->publisher(), this);
}

void RecordedPhase0::configDel(Plexa::IntfId const& intf) {
    chip_->configDel(intf);
    responseDel(intf);
}

void RecordedPhase0::chipAnnounced(Vanta::Change const& change) {
    Announcement announcement{change.key.get<Plexa::IntfId>(), std::nullopt};
    if (auto const* const entry = chip_->response().find(announcement.intf)) {
        announcement.response = entry->value;
    }
    if (waiting_.empty() && (!listener_.isLate || !listener_.isLate())) {
        deliver(announcement);
        return;
    }
    waiting_.push_back(std::move(announcement));
    loop_->post([self = std::weak_ptr(self_)] {
        if (auto const there = self.lock()) {
            (*there)->deliverWaiting();
        }
    });
}

// An announcement may release the last reference to this object.
void RecordedPhase0::deliverWaiting() {
    Vanta::Ptr<RecordedPhase0> const alive(this);
    while (!waiting_.empty()) {
        auto const announcement = std::move(waiting_.front());
        waiting_.pop_front();
        deliver(announcement);
    }
}

void RecordedPhase0::deliver(Announcement const& announcement) {
    Plexa::IntfId const& intf = announcement.intf;
    Phase0DataResponse const* const response =
        announcement.response ? &*announcement.response : nullptr;
    bool const isVoid = response != nullptr ? !chip_->response().has(intf) : seen_.erase(intf) == 0;
    if (isVoid) {
        return;
    }
    if (response != nullptr) {
        seen_.insert(intf);
        responseIs(intf, *response);
    }
    if (listener_.announced) {
        listener_.announced(intf, response);
    }
    publishResponse(intf);
}

}  // namespace Agent
