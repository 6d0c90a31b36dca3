// The events that tell a scenario of a live request. Thread: the event thread.
#pragma once

#include <vector>

#include "PacketTracer/Request.h"
#include "scenario/Event.h"

namespace Agent {

// The whole request. Its packet is the frame; of a request that goes by its fields, what they build.
Scenario::Do::Request requestEvent(PacketTracer::Request const& request);

// What makes the request of the scenario what this one is after an attribute changed; nothing for an
// attribute that a scenario does not have.
std::vector<Scenario::Do::RequestSet> requestSetEvents(PacketTracer::Request const& request,
                                                       Vanta::AttributeNumber attribute);

}  // namespace Agent
