#include "cli/JsonReport.h"

#include <nlohmann/json.hpp>

#include "VynPortTypes/PortIndex.h"
#include "cli/ChipWords.h"
#include "cli/Words.h"

namespace Cli {
namespace {

using Json = nlohmann::ordered_json;

Json entriesOf(std::vector<PacketTracer::ResultEntry> const& entries) {
    Json list = Json::array();
    for (auto const& entry : entries) {
        list.push_back({{"physical", entry.physicalIntf().stringValue()},
                        {"logical", entry.logicalIntf().stringValue()}});
    }
    return list;
}

Json namesOf(std::vector<Plexa::IntfId> const& intfs) {
    Json list = Json::array();
    for (auto const& intf : intfs) {
        list.push_back(intf.stringValue());
    }
    return list;
}

// What the digest said; null if there was none.
Json digestOf(Agent::Answer const& answer) {
    if (!answer.state || !answer.injection) {
        return nullptr;
    }
    auto const& injection = *answer.injection;
    bool const hasPort = injection.egressPort != VynPortTypes::PortIndex::invalid;
    return {{"egressPort", hasPort ? Json(injection.egressPort) : Json()},
            {"l2Domain", injection.l2Domain},
            {"routed", injection.routed},
            {"copyToCpu", injection.copyToCpu},
            {"dropped", injection.dropped}};
}

Json defaultsOf(std::vector<PacketTracer::NamedField> const& defaults) {
    Json object = Json::object();
    for (auto const& field : defaults) {
        object[std::string(field.name)] = field.value;
    }
    return object;
}

Json stepsOf(std::vector<ChipStep> const& steps) {
    Json list = Json::array();
    for (ChipStep const& step : steps) {
        list.push_back({{"step", static_cast<unsigned>(step.step)},
                        {"name", words(step.step)},
                        {"reason", words(step.reason)},
                        {"detail", step.detail}});
    }
    return list;
}

Json roadOf(std::vector<Passage> const& road) {
    Json list = Json::array();
    for (Passage const& passage : road) {
        list.push_back({{"ns", passage.since.count()},
                        {"handle", passage.handle},
                        {"level", passage.level},
                        {"text", passage.text},
                        {"times", passage.times}});
    }
    return list;
}

}  // namespace

std::string jsonText(FrameReport const& report) {
    Packet const& packet = report.packet;
    Agent::Answer const& answer = report.answer;
    Json object{{"frame", packet.number},
                {"in", report.ingress.stringValue()},
                {"length", packet.frame.size()},
                {"packet", packet.text()},
                {"outcome", Agent::text(answer.outcome)},
                {"state", answer.state ? Json(static_cast<unsigned>(*answer.state)) : Json()},
                {"injected", answer.injection.has_value()},
                {"egress", entriesOf(answer.egress)},
                {"digest", digestOf(answer)}};
    if (!report.remark.empty()) {
        object["remark"] = report.remark;
    }
    if (packet.fields) {
        object["defaults"] = defaultsOf(packet.defaults);
    }
    if (report.difference) {
        object["expectation"] = {{"met", report.difference->none()},
                                 {"missing", namesOf(report.difference->missing)},
                                 {"unexpected", namesOf(report.difference->unexpected)}};
    }
    if (report.explained) {
        object["steps"] = stepsOf(report.steps);
        object["road"] = roadOf(report.road);
    }
    return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace Cli
