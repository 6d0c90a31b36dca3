// Prints objects through their types' reflection tables.
//
// The first line names the objects to start from, by number:
//     {"roots":{"config":1,"tracer":null}}
// One line an object follows, in the order of the numbers. The key of an attribute is its number
// and name ("130 request"), or its name alone if it has no number. An object that an attribute
// points to is {"object":N}; no object is null. Every object has one line. An object without a
// reflection table has no attributes.
#pragma once

#include <span>
#include <string>

#include "scenario/Player.h"

namespace Replay {

// The lines. Objects are numbered from 1 in the order in which they are first mentioned.
std::string dump(std::span<Scenario::Player::Root const> roots);

}  // namespace Replay
