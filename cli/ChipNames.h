// The chip speaks of ports, access lists and VRFs by number; people know them by the names of the
// switch file.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "cli/FrameReport.h"
#include "softchip/Pipeline.h"
#include "switchfile/SwitchFile.h"

namespace Cli {

// A plain value, made once for a model. Threads: any.
class ChipNames {
  public:
    explicit ChipNames(SwitchFile::SwitchModel const& model);

    // The explanation's steps with "port 16", "LAG 1", "list 3", "VRF 1" as the switch file says
    // them: "Ethernet17", "Lag1", "no-telnet on Ethernet2", "VRF tenant-b". A number that the
    // switch file does not know stays a number.
    std::vector<ChipStep> steps(SoftChip::Explanation const& explanation) const;

    // The interface of a device port, or "port N".
    std::string port(std::uint16_t devicePort) const;

  private:
    std::string translated(std::string const& detail) const;
    std::string named(std::string const& kind, std::uint16_t number) const;

    std::unordered_map<std::uint16_t, std::string> ports_;
    std::vector<std::string> lists_;  // list n + 1
    std::vector<std::string> vrfs_;
};

}  // namespace Cli
