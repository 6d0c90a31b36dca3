#include "scenario/ForwardingState.h"

#include <utility>

#include "scenario/Writer.h"

namespace Scenario {
namespace {

// The event that undoes another one; one operator for each event of forwarding state.
struct Removal {
    Event operator()(Do::Port const& e) const { return Do::PortDel{e.intf}; }
    Event operator()(Do::PortToIntfId const& e) const { return Do::PortToIntfIdDel{e.port}; }
    Event operator()(Do::LagToPort const& e) const { return Do::LagToPortDel{e.lag}; }
    Event operator()(Do::PortToLag const& e) const { return Do::PortToLagDel{e.intf}; }
    Event operator()(Do::Vlan const& e) const { return Do::VlanDel{e.id}; }
    Event operator()(Do::CpuPort const& e) const { return Do::CpuPortDel{e.intf}; }
    template <class AnyOther>
    Event operator()(AnyOther const& e) const {
        return e;
    }
};

}  // namespace

std::vector<Event> eventsOf(ForwardingState const& state) {
    std::vector<Event> events;
    for (auto const& entry : state.systemStatus->portInfo()) {
        events.push_back(Do::Port{entry.key, entry.value.pipe(), entry.value.port().value()});
    }
    for (auto const& entry : state.systemStatus->portToIntfId()) {
        events.push_back(Do::PortToIntfId{entry.key.value(), entry.value});
    }
    for (auto const& entry : state.fcsd->lagToPort()) {
        events.push_back(Do::LagToPort{entry.key});
    }
    for (auto const& entry : state.fcsd->portToLag()) {
        events.push_back(Do::PortToLag{entry.key, entry.value});
    }
    for (auto const& entry : state.bridgingConfig->vlanConfig()) {
        Do::Vlan vlan{entry.key, {}, entry.value->internal()};
        for (auto const& member : entry.value->intf()) {
            vlan.intf.push_back(member.key);
        }
        events.push_back(std::move(vlan));
    }
    for (auto const& entry : state.chipStatus->cpuIntf()) {
        events.push_back(Do::CpuPort{entry.key});
    }
    return events;
}

std::vector<Event> ToldState::becomes(ForwardingState const& state) {
    std::map<std::string, Told> now;
    std::vector<Event> changes;
    for (Event& event : eventsOf(state)) {
        Event removal = std::visit(Removal(), event);
        std::string const key = line(removal);
        Told const& told = now[key] = {std::move(removal), line(event)};
        auto const before = told_.find(key);
        if (before == told_.end() || before->second.line != told.line) {
            changes.push_back(std::move(event));
        }
    }
    for (auto& [key, told] : told_) {
        if (!now.contains(key)) {
            changes.push_back(std::move(told.removal));
        }
    }
    told_ = std::move(now);
    return changes;
}

}  // namespace Scenario
