#include "cli/ChipNames.h"

#include "agent/DeriveTables.h"
#include "cli/FrameText.h"

namespace Cli {
namespace {

std::string vlanText(SoftChip::DomainId domain) {
    return "VLAN " + std::to_string(domain);
}

std::string lagText(SoftChip::LagId lag) {
    return "Lag" + std::to_string(lag);
}

// One detail in words, whichever it is.
struct InWords {
    ChipNames const& names;
    SoftChip::Explanation const& explanation;

    std::string operator()(SoftChip::FrameItself) const { return frameText(explanation.frame()); }
    std::string operator()(SoftChip::LogicalPort port) const { return names.portOrLag(port); }
    std::string operator()(SoftChip::InLag in) const { return "in " + lagText(in.lag); }
    std::string operator()(SoftChip::OuterTag tag) const {
        return "tag " + std::to_string(tag.vlan);
    }
    std::string operator()(SoftChip::InDomain in) const { return vlanText(in.domain); }
    std::string operator()(SoftChip::RuleOfList rule) const {
        return names.accessList(rule.list) + " rule " + std::to_string(rule.sequence);
    }
    std::string operator()(SoftChip::MacAddress mac) const { return mac.text(); }
    std::string operator()(SoftChip::MacInDomain const& at) const {
        return at.mac.text() + " in " + vlanText(at.domain);
    }
    std::string operator()(SoftChip::IpInVrf const& at) const {
        return at.address.text() + " in VRF " + names.vrf(at.vrf);
    }
    std::string operator()(SoftChip::L3Fault fault) const { return std::string(words(fault)); }
    std::string operator()(SoftChip::HopsLeft left) const {
        return "TTL " + std::to_string(left.ttl);
    }
    std::string operator()(SoftChip::Prefix const& prefix) const { return prefix.text(); }
    std::string operator()(SoftChip::NextHopChoice choice) const {
        return "next hop " + std::to_string(choice.picked + 1) + " of " +
               std::to_string(choice.candidates);
    }
    std::string operator()(SoftChip::NextHop const& hop) const {
        return hop.gateway.text() + " on " + vlanText(hop.domain);
    }
    std::string operator()(SoftChip::MembersUp members) const {
        return "members up: " + std::to_string(members.count);
    }
};

}  // namespace

ChipNames::ChipNames(SwitchFile::SwitchModel const& model)
    : lists_(Agent::aclBindingNames(model)), vrfs_(model.vrfs) {
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

std::string ChipNames::portOrLag(SoftChip::LogicalPort port) const {
    if (port.isNone()) {
        return "no port";
    }
    return port.isLag() ? lagText(port.number()) : this->port(port.number());
}

std::string ChipNames::accessList(std::uint16_t list) const {
    bool const known = list >= 1 && list <= lists_.size();
    return known ? lists_[list - 1U] : "list " + std::to_string(list);
}

std::string ChipNames::vrf(SoftChip::VrfId vrf) const {
    return vrf < vrfs_.size() ? vrfs_[vrf] : std::to_string(vrf);
}

std::vector<ChipStep> ChipNames::steps(SoftChip::Explanation const& explanation) const {
    InWords const inWords{*this, explanation};
    std::vector<ChipStep> steps;
    for (auto const& entry : explanation.entries()) {
        ChipStep& step = steps.emplace_back(ChipStep{entry.step, entry.reason, ""});
        for (auto const& detail : explanation.details(entry)) {
            step.detail.append(step.detail.empty() ? "" : ", ").append(std::visit(inWords, detail));
        }
    }
    return steps;
}

}  // namespace Cli
