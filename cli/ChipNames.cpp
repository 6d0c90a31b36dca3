#include "cli/ChipNames.h"

#include <array>
#include <charconv>
#include <string_view>

#include "agent/DeriveTables.h"

namespace Cli {

ChipNames::ChipNames(SwitchFile::SwitchModel const& model)
    : lists_(Agent::aclPlaces(model)), vrfs_(model.vrfs) {
    for (auto const& intf : model.interfaces) {
        if (intf.id.kind() == Plexa::IntfId::Kind::physical) {
            ports_.emplace(intf.devicePort, intf.id.stringValue());
        }
    }
}

std::string ChipNames::port(std::uint16_t devicePort) const {
    auto const found = ports_.find(devicePort);
    return found != ports_.end() ? found->second : "port " + std::to_string(devicePort);
}

std::string ChipNames::named(std::string const& kind, std::uint16_t number) const {
    if (kind == "port ") {
        return port(number);
    }
    if (kind == "LAG ") {
        return "Lag" + std::to_string(number);
    }
    if (kind == "list " && number >= 1 && number <= lists_.size()) {
        return lists_[number - 1U];
    }
    return kind +
           (kind == "VRF " && number < vrfs_.size() ? vrfs_[number] : std::to_string(number));
}

// Every "KIND NUMBER" in the text gives way to its name.
std::string ChipNames::translated(std::string const& detail) const {
    static std::array<std::string, 4> const kinds{"port ", "LAG ", "list ", "VRF "};
    std::string text = detail;
    for (std::string const& kind : kinds) {
        for (auto at = text.find(kind); at != std::string::npos; at = text.find(kind, at + 1)) {
            std::uint16_t number = 0;
            char const* const digits = text.data() + at + kind.size();
            auto const [end, error] = std::from_chars(digits, text.data() + text.size(), number);
            if (error == std::errc()) {
                text.replace(at, static_cast<std::size_t>(end - (text.data() + at)),
                             named(kind, number));
            }
        }
    }
    return text;
}

std::vector<ChipStep> ChipNames::steps(SoftChip::Explanation const& explanation) const {
    std::vector<ChipStep> steps;
    for (auto const& entry : explanation.entries) {
        // The first step shows the frame, whose ports are TCP's or UDP's.
        bool const isFrame = entry.step == SoftChip::Step::parse;
        steps.push_back(
            {entry.step, entry.reason, isFrame ? entry.detail : translated(entry.detail)});
    }
    return steps;
}

}  // namespace Cli
