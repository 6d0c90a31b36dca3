#include "simulate/DrawnSwitch.h"

#include "agent/DeriveState.h"

namespace Simulate {
namespace {

// A port's text: "pipe/index", each pipe's indexes used once. One draw a statement: within one
// expression each compiler could draw in an order of its own, and a seed would then be a different
// history.
std::string portText(Random& random, std::uint64_t number) {
    auto const index = number * 7 + random.below(7);
    auto const pipe = random.below(4);
    return std::to_string(pipe) + "/" + std::to_string(index);
}

}  // namespace

std::string drawSwitch(Random& random) {
    std::string intfs;
    auto const add = [&](std::string const& name, std::string const& members) {
        intfs += (intfs.empty() ? "\"" : ", \"") + name + "\": {" + members + "}";
    };
    auto const port = [&](unsigned number, std::string const& more) {
        bool const down = random.chance(8);
        add("Ethernet" + std::to_string(number), "\"port\": \"" + portText(random, number) + "\"" +
                                                     more + (down ? ", \"up\": false" : ""));
    };
    port(1, ", \"access\": 10");
    port(2, ", \"trunk\": \"10,20\", \"native\": 10");
    port(3, random.chance(50) ? ", \"access\": 20" : ", \"addresses\": [\"10.9.0.1/24\"]");
    port(4, ", \"routed\": true");
    add("Ethernet4.100", random.chance(50) ? "\"tag\": 100, \"vlan\": 10"
                                           : "\"tag\": 100, \"addresses\": [\"10.8.0.1/24\"]");
    port(5, "");
    port(6, "");
    add("Lag1", R"("members": ["Ethernet5", "Ethernet6"], "trunk": "10,20,30")");
    port(7, ", \"access\": 30");
    if (random.chance(70)) {
        add("Ethernet8", "\"port\": \"0/120\", \"cpu\": true");
    }
    std::string neighbours;
    if (random.chance(70)) {
        add("Vlan10", R"("addresses": ["10.1.10.1/24"])");
        add("Vlan20", R"("addresses": ["10.1.20.1/24"])");
        neighbours = R"(, "neighbours": {"Vlan10": {"10.1.10.11": "02:00:00:00:0a:0b"},)"
                     R"( "Vlan20": {"10.1.20.11": "02:00:00:00:14:0b"}})";
    }
    return R"({"routerMac": "02:00:00:00:00:01", "vlans": {"10": {}, "20": {}, "30": {}},)"
           R"( "interfaces": {)" +
           intfs + "}" + neighbours +
           R"(, "fdb": {"10": {"02:00:00:00:0a:0b": "Ethernet1", "02:00:00:00:0a:0c": "Lag1"},)"
           R"( "20": {"02:00:00:00:14:0b": "Ethernet2"}}})";
}

std::vector<Event> tellForwarding(SwitchFile::SwitchModel const& model) {
    auto const events = Scenario::eventsOf(Agent::deriveForwardingState(model));
    return {events.begin(), events.end()};
}

}  // namespace Simulate
