// The events that describe a live request in a scenario. Thread: the event thread.
#pragma once

#include <vector>

#include "PacketTracer/Request.h"
#include "scenario/Event.h"

namespace Agent {

// The whole request. Its packet is the frame, or the frame that is built from the request's fields.
Scenario::Do::Request requestEvent(PacketTracer::Request const& request);

// The events that bring the scenario's request up to date after an attribute of this one changed;
// none for an attribute that a scenario does not have.
std::vector<Scenario::Do::RequestSet> requestSetEvents(PacketTracer::Request const& request,
                                                       Vanta::AttributeNumber attribute);

}  // namespace Agent
