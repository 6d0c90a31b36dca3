// All that there is to say about one frame, for every printer.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Plexa/IntfId.h"
#include "agent/TraceClient.h"
#include "cli/Expectation.h"
#include "cli/Packet.h"
#include "cli/Road.h"
#include "softchip/PipelineReason.h"

namespace Cli {

// One of the chip's steps, in the switch file's names.
struct ChipStep {
    SoftChip::Step step;
    SoftChip::Reason reason;
    std::string detail;
};

// A plain value. Thread: the event thread.
struct FrameReport {
    Packet packet;
    Plexa::IntfId ingress;
    Agent::Answer answer;
    std::string remark;                    // to be printed beside the outcome; may be empty
    std::optional<Difference> difference;  // from the expectation, if there is one

    // With --explain: what follows is filled in.
    bool explained = false;
    std::vector<Passage> road;
    std::vector<ChipStep> steps;  // none if the frame was not injected
};

}  // namespace Cli
