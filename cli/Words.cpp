#include "cli/Words.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "VynPortTypes/PortIndex.h"

namespace Cli {
namespace {

using Agent::Outcome;

bool isToCpu(FrameReport const& report) {
    return std::ranges::any_of(report.answer.egress, [](PacketTracer::ResultEntry const& entry) {
        return Plexa::CpuIntfId::isCpuIntfId(entry.physicalIntf());
    });
}

std::string whereTo(FrameReport const& report) {
    auto const& injection = report.answer.injection;
    switch (report.answer.outcome) {
        case Outcome::flooded:
            return " in VLAN " + std::to_string(injection->l2Domain);
        case Outcome::forwarded:
            return isToCpu(report) ? " to the CPU" : "";
        case Outcome::refused:
        case Outcome::unknownIngress:
        case Outcome::dropped:
        case Outcome::noEgressPort:
        case Outcome::noAnswer:
            break;
    }
    return "";
}

std::string besides(FrameReport const& report) {
    auto const& injection = report.answer.injection;
    if (!injection || report.answer.outcome == Outcome::noAnswer) {
        return "";
    }
    return std::string(injection->routed ? ", routed" : "") +
           (injection->copyToCpu ? ", with a copy to the CPU" : "");
}

std::string secondsText(double seconds) {
    std::array<char, 32> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%g s", seconds);
    return buffer.data();
}

std::string noEgressPortRemark(Agent::Injection const& injection) {
    if (injection.egressPort != VynPortTypes::PortIndex::invalid) {
        return "port " + std::to_string(injection.egressPort) + " is no interface of the switch";
    }
    return "the flood in VLAN " + std::to_string(injection.l2Domain) + " had nowhere to go";
}

std::string joined(std::vector<Plexa::IntfId> const& intfs) {
    std::string text;
    for (auto const& intf : intfs) {
        text += (text.empty() ? "" : ", ") + intf.stringValue();
    }
    return text;
}

}  // namespace

std::string outcomeWords(FrameReport const& report) {
    std::string const words =
        std::string(Agent::text(report.answer.outcome)) + whereTo(report) + besides(report);
    return report.remark.empty() ? words : words + ": " + report.remark;
}

std::string differenceWords(Difference const& difference) {
    std::string text;
    if (!difference.missing.empty()) {
        text = "missing " + joined(difference.missing);
    }
    if (!difference.unexpected.empty()) {
        text += (text.empty() ? "" : "; ") + ("unexpected " + joined(difference.unexpected));
    }
    return text;
}

std::string remarkWords(Packet const& packet, Plexa::IntfId const& ingress,
                        Agent::Answer const& answer, double timeoutSeconds) {
    switch (answer.outcome) {
        case Outcome::refused:
            return packet.refusalReason();
        case Outcome::unknownIngress:
            return "the switch has no port information for " + ingress.stringValue();
        case Outcome::noEgressPort:
            return noEgressPortRemark(*answer.injection);
        case Outcome::noAnswer:
            return std::string(answer.injection ? "injected" : "not injected") +
                   ", nothing came in " + secondsText(timeoutSeconds);
        case Outcome::dropped:
        case Outcome::flooded:
        case Outcome::forwarded:
            break;
    }
    return "";
}

}  // namespace Cli
