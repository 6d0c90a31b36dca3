// The clients' part of the model, step by step.
#include <algorithm>

#include "simulate/Model.h"

namespace Simulate {
namespace {

constexpr std::string_view module = "VynPtClientSm";
constexpr std::size_t largestPacket = 9236;

std::string named(Id const& id) {
    return joined("client:", id.first, " reqId:", id.second);
}

Plexa::IntfId cpu() {
    return *Plexa::IntfId::fromName("Cpu");
}

}  // namespace

Model::Client* Model::clientOf(std::string const& name) {
    auto* const found = clients_.find(name);
    return found != nullptr ? found->get() : nullptr;
}

void Model::startClient(Client& client) {
    for (auto const& [id, request] : client.config->requests) {
        client.reactors.put(id, request);
    }
    trace(module, 7, "handleInitialized:client ", client.name);
    trace(module, 7, "handleResults:client ", client.name,
          " #status:", client.status->results.size());
    std::vector<Id> stale;
    for (auto const& [id, result] : client.status->results) {
        if (!client.config->requests.has(id)) {
            stale.push_back(id);
        }
    }
    for (auto const& id : stale) {
        resultDel(*client.status, id);
    }
    trace(module, 7, "handleRequests:client ", client.name,
          " #request:", client.config->requests.size());
    for (auto const& [id, request] : client.config->requests) {
        handleRequest(client, id);
    }
}

// ---- Requests in

// The configuration published a change of one of its requests.
void Model::requestChanged(Client& client, Id const& id) {
    handleRequest(client, id);
    auto const* const request = client.config->requests.find(id);
    if (request == nullptr) {
        client.reactors.remove(id);
        return;
    }
    auto* const watched = client.reactors.find(id);
    if (watched == nullptr) {
        client.reactors.put(id, *request);
    } else if (*watched != *request) {
        *watched = *request;
        handleRequest(client, id);
    }
}

bool Model::isValid(Request const& request) {
    trace(module, 7, "isValidRequest:", named(request.id));
    if (request.etherType == 0x8847 || request.etherType == 0x8848 || request.mpls) {
        trace(module, 9, "isValidRequest:MPLS request cannot be fulfilled");
        return false;
    }
    if (request.gre) {
        trace(module, 9, "isValidRequest:Vyn doesn't support GRE packets");
        return false;
    }
    return true;
}

void Model::finish(Client& client, Id const& id, unsigned state) {
    resultIs(*client.status, id);
    setState(*client.status, id, state);
    setValid(*client.status, id);
}

void Model::handleRequest(Client& client, Id const& id) {
    trace(module, 7, "handleRequest:", named(id));
    auto const* const found = client.config->requests.find(id);
    if (found == nullptr) {
        trace(module, 7, "handleRequest:del ", named(id));
        jobDel(id);
        resultDel(*client.status, id);
        return;
    }
    Request const& request = **found;
    if (!request.valid) {
        trace(module, 7, "handleRequest:", named(id), " not valid yet");
        return;
    }
    if (!isValid(request)) {
        trace(module, 7, "handleRequest:", named(id), " is not a valid request");
        finish(client, id, 2);
        return;
    }
    auto const* const port = ports_.find(request.intf);
    if (port == nullptr) {
        trace(module, 9, "handleRequest:Invalid interface:", request.intf);
        finish(client, id, 3);
        return;
    }
    if (request.raw.empty() || request.raw.size() > largestPacket) {
        trace(module, 9, "handleRequest:Unable to construct packet from the request");
        finish(client, id, 2);
        return;
    }
    jobIs({id, request.raw, *port, request.intf});
}

// ---- Results out

Model::Result& Model::resultIs(Status& status, Id const& id) {
    if (!status.results.has(id)) {
        status.results.put(id, {});
        note("result add ", id.first, "/", id.second);
    }
    return *status.results.find(id);
}

void Model::resultDel(Status& status, Id const& id) {
    if (status.results.remove(id)) {
        note("result del ", id.first, "/", id.second);
    }
}

void Model::setState(Status& status, Id const& id, unsigned state) {
    Result& result = *status.results.find(id);
    if (result.state != state) {
        result.state = state;
        note("result ", id.first, "/", id.second, " state ", state);
    }
}

void Model::setValid(Status& status, Id const& id) {
    Result& result = *status.results.find(id);
    if (!result.valid) {
        result.valid = true;
        note("result ", id.first, "/", id.second, " valid true");
    }
}

void Model::addEgress(Status& status, Id const& id, Entry const& entry) {
    auto& egress = status.results.find(id)->egress;
    if (std::find(egress.begin(), egress.end(), entry) == egress.end()) {
        egress.push_back(entry);
        note("result ", id.first, "/", id.second, " egressIntf ", entry.first, ",", entry.second);
    }
}

void Model::checkVlan(unsigned vlan) {
    if (vlan < 1 || vlan > 4094) {
        throw Fatal{"RangeError", "Bridging::VlanId::value < 1 or > 4094 not allowed"};
    }
}

void Model::updateResult(Client& client, Id const& id, Answer const& answer) {
    trace(module, 7, "updateResult:", named(id), " ready:", answer.ready);
    if (!answer.ready) {
        return;
    }
    Status& status = *client.status;
    resultIs(status, id);
    auto const* const job = jobs_.find(id);
    if (job == nullptr) {
        trace(module, 9, "updateResult:", named(id), " invalid portIndex:", answer.egress.port);
        setState(status, id, 3);
    } else if (answer.dropped) {
        trace(module, 9, "updateResult:", named(id), " pkt dropped");
        setState(status, id, 3);
    } else if (answer.egress.port == 456) {
        flood(status, id, answer, (*job)->intf);
    } else {
        unicast(status, id, answer);
    }
    setValid(status, id);
}

void Model::unicast(Status& status, Id const& id, Answer const& answer) {
    unsigned const port = answer.egress.port;
    auto const found = portToIntfId_.find(port);
    if (found == portToIntfId_.end()) {
        trace(module, 9, "updateResult:", named(id), " unknown port", port);
        setState(status, id, 3);
        return;
    }
    addPort(status, id, found->second);
    trace(module, 7, "updateResult:portId:", port, " intfId:", found->second);
    if (answer.routed) {
        checkVlan(answer.l2Domain);
        auto const vlan = vlans_.find(answer.l2Domain);
        if (vlan != vlans_.end()) {
            auto const& members = vlan->second.members;
            bool const hasCpu = std::find(members.begin(), members.end(), cpu()) != members.end();
            if (hasCpu && !vlan->second.internal) {
                addVlan(status, id, answer.l2Domain);
            }
        }
    }
    setState(status, id, 4);
}

void Model::addPort(Status& status, Id const& id, IntfId intf) {
    trace(module, 7, "updatePortInfoResult:", named(id), " intfId:", intf);
    if (lags_.contains(intf)) {
        trace(module, 7, "updatePortInfoResult:lag egress intf:", intf);
        addEgress(status, id, {IntfId(), intf});
        return;
    }
    if (intf.kind() == IntfId::Kind::subIntf) {
        trace(module, 7, "updatePortInfoResult:subintf egress intf:", intf);
        addEgress(status, id, {Plexa::SubIntfId::parentIntfId(intf), intf});
        return;
    }
    if (auto const lag = portToLag_.find(intf); lag != portToLag_.end()) {
        trace(module, 7, "updatePortInfoResult:physical egress intf:", intf,
              " lag intf:", lag->second);
        addEgress(status, id, {intf, lag->second});
        addEgress(status, id, {intf, IntfId()});
        return;
    }
    trace(module, 7, "updatePortInfoResult:physical egress intf:", intf);
    addEgress(status, id, {cpuPorts_.contains(intf) ? cpu() : intf, IntfId()});
}

void Model::flood(Status& status, Id const& id, Answer const& answer, IntfId const& ingress) {
    unsigned const domain = answer.l2Domain;
    trace(module, 7, "pktFlooded:", named(id), " flooded:", domain, " ingIntf:", ingress,
          " routed:", answer.routed);
    if (domain != 0) {
        checkVlan(domain);
    }
    auto const vlan = vlans_.find(domain);
    if (domain == 0 || vlan == vlans_.end()) {
        trace(module, 9, "pktFlooded:", named(id), " digest with invalid l2Domain", domain);
        setState(status, id, 3);
        return;
    }
    for (auto const& member : vlan->second.members) {
        trace(module, 7, "pktFlooded:vlan:", domain, " intf:", member);
        if (member != ingress && member.kind() != IntfId::Kind::cpu) {
            addPort(status, id, member);
        }
    }
    if (answer.routed) {
        addVlan(status, id, domain);
    }
    if (answer.copyToCpu) {
        addEgress(status, id, {cpu(), IntfId()});
    }
    setState(status, id, status.results.find(id)->egress.empty() ? 3 : 4);
}

void Model::addVlan(Status& status, Id const& id, unsigned vlan) {
    trace(module, 7, "addVlanIntf:", named(id), " l2Domain:", vlan);
    IntfId const vlanIntf = *IntfId::fromName("Vlan" + std::to_string(vlan));
    std::set<IntfId> physical;
    for (auto const& [first, second] : status.results.find(id)->egress) {
        if (second.kind() != IntfId::Kind::subIntf) {
            physical.insert(first);
        }
    }
    for (auto const& intf : physical) {
        addEgress(status, id, {intf, vlanIntf});
    }
}

}  // namespace Simulate
