// A frame's report for programs: one JSON object on one line, as docs/trace-output.schema.json
// describes it. Threads: any.
#pragma once

#include <string>

#include "cli/FrameReport.h"

namespace Cli {

// The object, with a line end.
std::string jsonText(FrameReport const& report);

}  // namespace Cli
