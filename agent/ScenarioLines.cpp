#include "agent/ScenarioLines.h"

#include <cstring>
#include <nlohmann/json.hpp>

#include "PacketTracer/ConstructPacket.h"
#include "softchip/DigestLayout.h"

namespace Agent {
namespace {

using Json = nlohmann::ordered_json;
using PacketTracer::Request;

std::string text(Json const& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json event(std::string_view name) {
    Json line;
    line["do"] = name;
    return line;
}

Json ofRequest(std::string_view name, PacketTracer::RequestId const& id) {
    return Json{{"do", name}, {"client", id.clientName().view()}, {"req", id.number()}};
}

std::string ofIntf(std::string_view name, Plexa::IntfId const& intf) {
    return text({{"do", name}, {"intf", intf.stringValue()}});
}

std::string ofClient(std::string_view name, std::string_view client) {
    return text({{"do", name}, {"client", client}});
}

std::string ofEntity(std::string_view name, std::string_view client, std::string_view entity) {
    return text({{"do", name}, {"client", client}, {"entity", entity}});
}

// The whole packet of a request; of one that goes by its fields, what they build.
std::string rawOf(Request const& request) {
    if (!request.frame().empty() || request.fields() == nullptr) {
        return Vanta::hexText(request.frame().view());
    }
    // Nothing longer is ever injected, and what is longer cannot be built.
    constexpr std::uint32_t largestPacket = 9236;
    return Vanta::hexText(
        PacketTracer::constructFrame(*request.fields(), request.etherType(), largestPacket).view());
}

template <class Value>
std::string setTo(Request const& request, std::string_view attribute, Value const& value) {
    Json line = ofRequest("requestSet", request.id());
    line["attr"] = attribute;
    line["value"] = value;
    return text(line);
}

template <class Unsigned>
Unsigned take(std::uint8_t const*& from) {
    Unsigned value;
    std::memcpy(&value, from, sizeof value);
    from += sizeof value;
    return value;
}

Json entryOf(std::uint8_t const* from) {
    using U8 = std::uint8_t;
    using U16 = std::uint16_t;
    Json entry;
    entry["pktId"] = take<U16>(from);
    entry["copyToCpu"] = take<U8>(from);
    entry["l2Domain"] = take<U16>(from);
    entry["egrPort"] = take<U16>(from);
    entry["routed"] = take<U8>(from);
    entry["dropCtl"] = take<U8>(from);
    return entry;
}

}  // namespace

namespace Line {

std::string start(bool pktTracerSupported, bool pktGenSupported, std::uint32_t session,
                  std::uint8_t device) {
    return text({{"do", "start"},
                 {"pktTracerSupported", pktTracerSupported},
                 {"pktGenSupported", pktGenSupported},
                 {"session", session},
                 {"device", device}});
}

std::string stop() {
    return text(event("stop"));
}

std::string turn(std::uint64_t times) {
    Json line = event("turn");
    if (times != 1) {
        line["times"] = times;
    }
    return text(line);
}

std::string yieldAfter(std::uint32_t checks) {
    return text({{"do", "yieldAfter"}, {"checks", checks}});
}

std::string clientConfig(std::string_view client, std::string_view entity) {
    return ofEntity("clientConfig", client, entity);
}

std::string clientConfigDel(std::string_view client) {
    return ofClient("clientConfigDel", client);
}

std::string clientStatus(std::string_view client, std::string_view entity) {
    return ofEntity("clientStatus", client, entity);
}

std::string clientStatusDel(std::string_view client) {
    return ofClient("clientStatusDel", client);
}

std::string request(Request const& request) {
    Json line = ofRequest("request", request.id());
    line["intf"] = request.intf().stringValue();
    line["etherType"] = request.etherType();
    line["mpls"] = request.mpls();
    line["gre"] = request.gre();
    line["valid"] = request.valid();
    line["raw"] = rawOf(request);
    return text(line);
}

std::vector<std::string> requestSet(Request const& request, Vanta::AttributeNumber attribute) {
    switch (static_cast<Request::Attribute>(attribute)) {
        case Request::validAttribute:
            return {setTo(request, "valid", request.valid())};
        case Request::etherTypeAttribute: {
            std::vector<std::string> lines{setTo(request, "etherType", request.etherType())};
            if (request.fields() != nullptr) {
                lines.push_back(setTo(request, "raw", rawOf(request)));
            }
            return lines;
        }
        case Request::mplsAttribute:
            return {setTo(request, "mpls", request.mpls())};
        case Request::greAttribute:
            return {setTo(request, "gre", request.gre())};
        case Request::intfAttribute:
            return {setTo(request, "intf", request.intf().stringValue())};
        case Request::frameAttribute:
        case Request::fieldsAttribute:
            return {setTo(request, "raw", rawOf(request))};
        case Request::idAttribute:
            break;
    }
    return {};
}

std::string requestDel(PacketTracer::RequestId const& id) {
    return text(ofRequest("requestDel", id));
}

std::string result(PacketTracer::RequestId const& id) {
    return text(ofRequest("result", id));
}

std::string phase0(Plexa::IntfId const& intf, VynSdk::Phase0DataResponse const& response) {
    return text({{"do", "phase0"},
                 {"intf", intf.stringValue()},
                 {"status", response.status},
                 {"data", Vanta::hexText(response.data.view())}});
}

std::string phase0Del(Plexa::IntfId const& intf) {
    return ofIntf("phase0Del", intf);
}

std::string counter(std::uint32_t pipe, std::span<std::uint64_t const> values) {
    Json line = event("counter");
    line["pipe"] = pipe;
    if (values.size() == 1) {
        line["value"] = values.front();
    } else {
        line["values"] = std::vector<std::uint64_t>(values.begin(), values.end());
    }
    return text(line);
}

std::string sdkReturn(std::string_view call, std::int32_t rc, std::uint64_t times,
                      std::uint64_t after) {
    return text(
        {{"do", "sdkReturn"}, {"call", call}, {"rc", rc}, {"times", times}, {"after", after}});
}

std::string digest(std::span<std::uint8_t const> entries) {
    Json list = Json::array();
    for (; entries.size() >= SoftChip::digestEntryBytes;
         entries = entries.subspan(SoftChip::digestEntryBytes)) {
        list.push_back(entryOf(entries.data()));
    }
    Json line = event("digest");
    line["entries"] = std::move(list);
    return text(line);
}

std::string comment(std::string_view text) {
    return "# " + std::string(text);
}

}  // namespace Line

// ---- Forwarding state

namespace {

void addPorts(std::vector<StateLine>& lines, VynSystem::SystemStatus const& ports) {
    for (auto const& entry : ports.portInfo()) {
        lines.push_back(
            {ofIntf("portDel", entry.key), text({{"do", "port"},
                                                 {"intf", entry.key.stringValue()},
                                                 {"pipe", entry.value.pipe()},
                                                 {"port", entry.value.port().value()}})});
    }
    for (auto const& entry : ports.portToIntfId()) {
        lines.push_back({text({{"do", "portToIntfIdDel"}, {"port", entry.key.value()}}),
                         text({{"do", "portToIntfId"},
                               {"port", entry.key.value()},
                               {"intf", entry.value.stringValue()}})});
    }
}

void addLags(std::vector<StateLine>& lines, Fen::FenCommonSmData const& lags) {
    for (auto const& entry : lags.lagToPort()) {
        auto const lag = entry.key.stringValue();
        lines.push_back({text({{"do", "lagToPortDel"}, {"lag", lag}}),
                         text({{"do", "lagToPort"}, {"lag", lag}})});
    }
    for (auto const& entry : lags.portToLag()) {
        lines.push_back(
            {ofIntf("portToLagDel", entry.key), text({{"do", "portToLag"},
                                                      {"intf", entry.key.stringValue()},
                                                      {"lag", entry.value.stringValue()}})});
    }
}

void addVlans(std::vector<StateLine>& lines, Bridging::Config const& vlans) {
    for (auto const& entry : vlans.vlanConfig()) {
        Json members = Json::array();
        for (auto const& member : entry.value->intf()) {
            members.push_back(member.key.stringValue());
        }
        lines.push_back({text({{"do", "vlanDel"}, {"id", entry.key.value()}}),
                         text({{"do", "vlan"},
                               {"id", entry.key.value()},
                               {"intf", std::move(members)},
                               {"internal", entry.value->internal()}})});
    }
}

}  // namespace

std::vector<StateLine> stateLines(ForwardingState const& state) {
    std::vector<StateLine> lines;
    addPorts(lines, *state.systemStatus);
    addLags(lines, *state.fcsd);
    addVlans(lines, *state.bridgingConfig);
    for (auto const& entry : state.chipStatus->cpuIntf()) {
        lines.push_back({ofIntf("cpuPortDel", entry.key), ofIntf("cpuPort", entry.key)});
    }
    return lines;
}

std::vector<std::string> RecordedState::becomes(ForwardingState const& state) {
    std::map<std::string, std::string> now;
    std::vector<std::string> changes;
    for (StateLine const& line : stateLines(state)) {
        now[line.remove] = line.make;
        auto const before = lines_.find(line.remove);
        if (before == lines_.end() || before->second != line.make) {
            changes.push_back(line.make);
        }
    }
    for (auto const& [remove, make] : lines_) {
        if (!now.contains(remove)) {
            changes.push_back(remove);
        }
    }
    lines_ = std::move(now);
    return changes;
}

}  // namespace Agent
