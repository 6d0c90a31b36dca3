// A class's name without its namespaces, as errors and dumps show it.
#pragma once

#include <string>
#include <typeinfo>

namespace Replay {

std::string classNameOf(std::type_info const& type);

}  // namespace Replay
