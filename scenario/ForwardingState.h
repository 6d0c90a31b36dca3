// Forwarding state as a tracer reads it, and the events that describe it in a scenario.
// Thread: the event thread.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "Bridging/Config.h"
#include "Fen/FenCommonSmData.h"
#include "Vanta/Node.h"
#include "VynSlice/ChipStatus.h"
#include "VynSystem/SystemStatus.h"
#include "scenario/Event.h"

namespace Scenario {

// By default new objects without content.
struct ForwardingState {
    Vanta::Ptr<VynSystem::SystemStatus> systemStatus = VynSystem::SystemStatus::SystemStatusIs();
    Vanta::Ptr<Fen::FenCommonSmData> fcsd = Fen::FenCommonSmData::FenCommonSmDataIs();
    Vanta::Ptr<Bridging::Config> bridgingConfig = Bridging::Config::ConfigIs();
    Vanta::Ptr<VynSlice::ChipStatus> chipStatus = VynSlice::ChipStatus::ChipStatusIs();
};

// The events that make this forwarding state out of an empty one, in the order of its collections.
std::vector<Event> eventsOf(ForwardingState const& state);

// Forwarding state as the events of a scenario have made it so far.
class ToldState {
  public:
    // The events that turn it into `state`; it counts as `state` from then on.
    std::vector<Event> becomes(ForwardingState const& state);

  private:
    struct Told {
        Event removal;
        std::string line;
    };
    std::map<std::string, Told> told_;  // by the removal's line
};

}  // namespace Scenario
