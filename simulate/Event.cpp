#include "simulate/Event.h"

#include <array>
#include <string_view>

namespace Simulate {
namespace {

constexpr std::array<std::string_view, 40> names{
    "port",         "portDel",
    "portToIntfId", "portToIntfIdDel",
    "lagToPort",    "lagToPortDel",
    "portToLag",    "portToLagDel",
    "vlan",         "vlanDel",
    "cpuPort",      "cpuPortDel",
    "start",        "stop",
    "turn",         "yieldAfter",
    "clientConfig", "clientConfigDel",
    "clientStatus", "clientStatusDel",
    "request",      "requestSet",
    "requestDel",   "requestDelAll",
    "result",       "chipStep",
    "chipPortUp",   "callFails",
    "phase0Late",   "phase0Lost",
    "phase0Status", "phase0Ask",
    "phase0Drop",   "stall",
    "counter",      "digestFate",
    "releaseHeld",  "forge",
    "room",         "faultsEnd",
};

bool concernsClient(Kind kind) {
    return kind >= Kind::clientConfig && kind <= Kind::result;
}

}  // namespace

std::string clientName(unsigned client) {
    return std::string(1, static_cast<char>('A' + client));
}

std::string text(Event const& event) {
    std::string line(names[static_cast<std::size_t>(event.kind)]);
    if (concernsClient(event.kind)) {
        line += " client " + clientName(event.client);
        if (event.kind >= Kind::request) {
            line += " req " + std::to_string(event.req);
        }
    }
    if (!event.intf.empty()) {
        line += " " + event.intf.stringValue();
    }
    if (!event.lag.empty()) {
        line += " in " + event.lag.stringValue();
    }
    line += " a=" + std::to_string(event.a) + " b=" + std::to_string(event.b) +
            " c=" + std::to_string(event.c) + " value=" + std::to_string(event.value) +
            (event.flag ? " true" : " false");
    for (auto const& member : event.intfs) {
        line += " " + member.stringValue();
    }
    if (!event.raw.empty()) {
        line += " packet of " + std::to_string(event.raw.size());
    }
    if (!event.entries.empty()) {
        line += " entries " + std::to_string(event.entries.size());
    }
    return line;
}

}  // namespace Simulate
