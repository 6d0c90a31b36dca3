// The chip's steps and reasons in a few words, the same for every frame: "VLAN classification",
// "dropped: the ingress port is down". For people: programs use their codes.
#pragma once

#include <string_view>

#include "softchip/PipelineReason.h"

namespace Cli {

std::string_view words(SoftChip::Step step);
std::string_view words(SoftChip::Reason reason);

}  // namespace Cli
