// The chip's explanation in words. The chip knows ports, LAGs, access lists and VRFs by number;
// people know them by the names of the switch file.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "cli/FrameReport.h"
#include "softchip/Explanation.h"
#include "switchfile/SwitchModel.h"

namespace Cli {

// A plain value, made once for a model. Threads: any.
class ChipNames {
  public:
    explicit ChipNames(SwitchFile::SwitchModel const& model);

    // The explanation's steps. What a frame met at one is told in order, with commas between:
    // "Ethernet17, in Lag1", "no-telnet on Ethernet2 rule 10", "10.0.0.1 in VRF tenant-b, TTL 3".
    std::vector<ChipStep> steps(SoftChip::Explanation const& explanation) const;

    // Names by number. Something that the switch file does not have is named by its number: "port
    // 17", "list 9", and for a VRF the number alone.
    std::string port(std::uint16_t devicePort) const;
    std::string portOrLag(SoftChip::LogicalPort port) const;
    // What a list is and where it is applied: "edge on VLAN 10".
    std::string accessList(std::uint16_t list) const;
    std::string vrf(SoftChip::VrfId vrf) const;

  private:
    std::unordered_map<std::uint16_t, std::string> ports_;
    std::vector<std::string> lists_;  // list n + 1
    std::vector<std::string> vrfs_;
};

}  // namespace Cli
