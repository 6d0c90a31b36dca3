#include "simulate/Model.h"

#include <algorithm>

#include "simulate/Socket.h"

namespace Simulate {
namespace {

constexpr std::string_view module = "VynPtSm";

std::string line(Id const& id) {
    return joined(id.first, "/", id.second);
}

}  // namespace

Model::Model()
    : configsInHand_(clientCount), statusesInHand_(clientCount), room_(DigestSocket::plenty) {}

bool Model::applies(Event const& event) const {
    auto const name = clientName(event.client);
    auto const& config = configsInHand_[event.client];
    auto const& status = statusesInHand_[event.client];
    Id const id{name, event.req};
    switch (event.kind) {
        case Kind::portDel:
            return ports_.has(event.intf);
        case Kind::portToIntfIdDel:
            return portToIntfId_.contains(static_cast<unsigned>(event.a));
        case Kind::lagToPortDel:
            return lags_.contains(event.intf);
        case Kind::portToLagDel:
            return portToLag_.contains(event.intf);
        case Kind::vlanDel:
            return vlans_.contains(static_cast<unsigned>(event.a));
        case Kind::cpuPortDel:
            return cpuPorts_.contains(event.intf);
        case Kind::start:
            return !running_;
        case Kind::stop:
            return running_;
        case Kind::clientConfig:
            return event.a != 3 || config;
        case Kind::clientConfigDel:
            return configs_.has(name);
        case Kind::clientStatus:
            return event.a != 3 || status;
        case Kind::clientStatusDel:
            return statuses_.has(name);
        case Kind::request:
            return config != nullptr;
        case Kind::requestSet:
        case Kind::requestDel:
            return config && config->requests.has(id);
        case Kind::requestDelAll:
            return config && !config->requests.empty();
        case Kind::result:
            return status && !status->results.has(id);
        case Kind::forge:
            return running_ && supported_;
        default:
            return true;
    }
}

void Model::apply(Event const& event, Wire& wire) {
    wire_ = &wire;
    if (event.kind <= Kind::cpuPortDel) {
        applyForwarding(event);
    } else if (event.kind >= Kind::clientConfig && event.kind <= Kind::clientStatusDel) {
        applyDirectory(event);
    } else if (event.kind >= Kind::request && event.kind <= Kind::result) {
        applyRequest(event);
    } else if (event.kind == Kind::start) {
        start(event.flag);
    } else if (event.kind == Kind::stop) {
        stop();
    } else if (event.kind == Kind::turn) {
        turn();
    } else if (event.kind == Kind::yieldAfter) {
        yieldAfter_ = static_cast<unsigned>(event.a);
    } else if (event.kind == Kind::room) {
        room_ = static_cast<std::size_t>(event.a);
    } else if (event.kind == Kind::faultsEnd) {
        room_ = DigestSocket::plenty;
    } else if (event.kind == Kind::phase0Drop) {
        responses_.erase(event.intf);
    }
    if (event.kind == Kind::chipStep || event.kind == Kind::forge) {
        while (!wire.messages.empty()) {
            receive(wire.messages.front());
            wire.messages.pop_front();
        }
    }
}

void Model::applyForwarding(Event const& event) {
    auto const number = static_cast<unsigned>(event.a);
    if (event.kind == Kind::port) {
        ports_.put(event.intf, {number, static_cast<unsigned>(event.b)});
    } else if (event.kind == Kind::portDel) {
        ports_.remove(event.intf);
    } else if (event.kind == Kind::portToIntfId) {
        portToIntfId_[number] = event.intf;
    } else if (event.kind == Kind::portToIntfIdDel) {
        portToIntfId_.erase(number);
    } else if (event.kind == Kind::lagToPort) {
        lags_.insert(event.intf);
    } else if (event.kind == Kind::lagToPortDel) {
        lags_.erase(event.intf);
    } else if (event.kind == Kind::portToLag) {
        portToLag_[event.intf] = event.lag;
    } else if (event.kind == Kind::portToLagDel) {
        portToLag_.erase(event.intf);
    } else if (event.kind == Kind::vlan) {
        vlans_[number] = {event.intfs, event.flag};
    } else if (event.kind == Kind::vlanDel) {
        vlans_.erase(number);
    } else if (event.kind == Kind::cpuPort) {
        cpuPorts_.insert(event.intf);
    } else {
        cpuPorts_.erase(event.intf);
    }
}

void Model::applyDirectory(Event const& event) {
    auto const name = clientName(event.client);
    auto const put = [&](auto& directory, auto& hand, auto fresh) {
        if (event.a == 0) {
            hand = fresh();
        }
        bool const own = event.a == 0 || event.a == 3;
        directory.put(name, {own ? hand : nullptr, event.a == 2});
    };
    if (event.kind == Kind::clientConfig) {
        put(configs_, configsInHand_[event.client], [] { return std::make_shared<Config>(); });
    } else if (event.kind == Kind::clientStatus) {
        put(statuses_, statusesInHand_[event.client], [] { return std::make_shared<Status>(); });
    } else if (event.kind == Kind::clientConfigDel) {
        configs_.remove(name);
    } else {
        statuses_.remove(name);
    }
    if (running_) {
        handleClient(name);
    }
}

void Model::applyRequest(Event const& event) {
    Id const id{clientName(event.client), event.req};
    auto const& config = configsInHand_[event.client];
    if (event.kind == Kind::request) {
        putRequest(event);
    } else if (event.kind == Kind::requestSet) {
        setRequest(event);
    } else if (event.kind == Kind::requestDel) {
        withdraw(event.client, id);
    } else if (event.kind == Kind::requestDelAll) {
        std::vector<Id> all;
        for (auto const& [each, request] : config->requests) {
            all.push_back(each);
        }
        for (auto const& each : all) {
            withdraw(event.client, each);
        }
    } else {
        resultIs(*statusesInHand_[event.client], id);
    }
}

void Model::putRequest(Event const& event) {
    auto const& config = configsInHand_[event.client];
    auto request = std::make_shared<Request>();
    request->id = {clientName(event.client), event.req};
    request->valid = event.flag;
    request->etherType = static_cast<unsigned>(event.a);
    request->mpls = (event.b & 1) != 0;
    request->gre = (event.b & 2) != 0;
    request->intf = event.intf;
    request->raw = event.raw;
    config->requests.put(request->id, request);
    if (auto* const client = clientOf(request->id.first); client && client->config == config) {
        requestChanged(*client, request->id);
    }
}

void Model::setRequest(Event const& event) {
    Id const id{clientName(event.client), event.req};
    auto const& request = *configsInHand_[event.client]->requests.find(id);
    switch (static_cast<RequestAttribute>(event.a)) {
        case etherType:
            request->etherType = static_cast<unsigned>(event.b);
            return;
        case mpls:
            request->mpls = event.b != 0;
            return;
        case gre:
            request->gre = event.b != 0;
            return;
        case intf:
            request->intf = event.intf;
            return;
        case raw:
            request->raw = event.raw;
            return;
        case valid:
            break;
    }
    if (request->valid == (event.b != 0)) {
        return;
    }
    request->valid = event.b != 0;
    auto* const client = clientOf(id.first);
    auto const* const watched = client != nullptr ? client->reactors.find(id) : nullptr;
    if (watched != nullptr && *watched == request) {
        handleRequest(*client, id);
    }
}

void Model::withdraw(unsigned client, Id const& id) {
    auto const& config = configsInHand_[client];
    config->requests.remove(id);
    if (auto* const running = clientOf(id.first); running && running->config == config) {
        requestChanged(*running, id);
    }
}

// ---- The root

void Model::start(bool supported) {
    running_ = true;
    supported_ = supported;
    trace(module, 7, "handleInitialized:pktTracerSupported:", supported, " pktGenSupported", true);
    makeEngine();
    trace(module, 7, "handleClients:");
    for (auto const& [name, entity] : configs_) {
        if (entity.own || entity.other) {
            handleClient(name);
        }
    }
}

// The engine goes, and with it the answers; then the clients, and the jobs with whoever is last.
void Model::stop() {
    watched_.clear();
    endEngine();
    for (auto const& [id, answer] : answers_) {
        note("status del ", line(id));
    }
    for (auto const& [id, job] : jobs_) {
        note("cfg del ", line(id));
    }
    answers_.clear();
    jobs_.clear();
    clients_.clear();
    engine_ = {};
    running_ = false;
}

void Model::turn() {
    if (!stream_.empty()) {
        processDigest();
    }
    bool const runs = engine_.scheduled;
    auto announcements = std::move(wire_->announcements);
    wire_->announcements.clear();
    for (auto const& announcement : announcements) {
        phase0Changed(announcement);
    }
    if (runs) {
        engine_.scheduled = false;
        engine_.taskRuns = true;
        work();
        engine_.taskRuns = false;
    }
}

void Model::handleClient(std::string const& name) {
    trace(module, 7, "handleClient:client ", name);
    auto const* const config = configs_.find(name);
    auto const* const status = statuses_.find(name);
    if (config == nullptr || !config->own || status == nullptr || !status->own) {
        clients_.remove(name);
        return;
    }
    if (auto const* const there = clientOf(name)) {
        if (there->config != config->own || there->status != status->own) {
            throw Fatal{"ReinstantiationError", ""};
        }
        return;
    }
    auto client = std::make_shared<Client>();
    client->name = name;
    client->config = config->own;
    client->status = status->own;
    startClient(*client);
    clients_.put(name, client);
}

// An answer appeared or went: relayed first, then watched or no longer watched.
void Model::relayDispatch(Id const& id) {
    handleAnswer(id);
    if (answers_.has(id)) {
        watched_.insert(id);
    } else {
        watched_.erase(id);
    }
}

void Model::handleAnswer(Id const& id) {
    auto const* const answer = answers_.find(id);
    trace(module, 7, "handlePktGenStatus:client:", id.first, " reqId:", id.second,
          " del:", answer == nullptr);
    if (answer == nullptr) {
        return;
    }
    auto* const client = clientOf(id.first);
    if (client == nullptr) {
        trace(module, 9, "handlePktGenStatus:Couldn't find ClientSm for:", id.first);
        return;
    }
    updateResult(*client, id, *answer);
}

// ---- What there is

std::vector<std::string> Model::content() const {
    std::vector<std::string> lines;
    auto const add = [&](auto const&... parts) { lines.push_back(joined(parts...)); };
    for (unsigned client = 0; client < clientCount; ++client) {
        if (auto const& status = statusesInHand_[client]) {
            for (auto const& [id, result] : status->results) {
                std::string egress;
                for (auto const& [physical, logical] : result.egress) {
                    egress += joined(" ", physical, ",", logical);
                }
                add("result ", line(id), " state ", result.state, " valid ", result.valid, egress);
            }
        }
    }
    add("socket ", stream_.size());
    if (!running_) {
        return lines;
    }
    for (auto const& [id, job] : jobs_) {
        add("cfg ", line(id), " pkt ", digestOf(job->pkt), " port ", job->port.pipe, ":",
            job->port.port, " ", job->intf);
    }
    for (auto const& [id, answer] : answers_) {
        add("status ", line(id), " pktId ", answer.pktId, " ready ", answer.ready, " egress ",
            answer.egress.pipe, ":", answer.egress.port, " l2Domain ", answer.l2Domain,
            " copyToCpu ", answer.copyToCpu, " routed ", answer.routed, " dropped ", answer.dropped,
            " watched ", watched_.contains(id));
    }
    for (unsigned number = 0; number < clientCount; ++number) {
        auto const* const client = clients_.find(clientName(number));
        if (client != nullptr) {
            std::set<std::string> reactors;
            for (auto const& [id, request] : (*client)->reactors) {
                reactors.insert(line(id));
            }
            std::string names;
            for (auto const& reactor : reactors) {
                names += " " + reactor;
            }
            add("client ", clientName(number), " reactors", names);
        }
    }
    auto const current = currentId();
    add("engine ", text(engine_.state), " pktId ", engine_.pktId, " count ", engine_.count,
        " current ", line(current), " scheduled ", engine_.scheduled);
    return lines;
}

std::size_t Model::nodes() const {
    std::size_t count = 0;
    std::set<ConfigPtr> configs(configsInHand_.begin(), configsInHand_.end());
    std::set<StatusPtr> statuses(statusesInHand_.begin(), statusesInHand_.end());
    for (auto const& [name, entity] : configs_) {
        configs.insert(entity.own);
        count += entity.other ? 1 : 0;
    }
    for (auto const& [name, entity] : statuses_) {
        statuses.insert(entity.own);
        count += entity.other ? 1 : 0;
    }
    for (auto const& config : configs) {
        count += config ? 1 + config->requests.size() : 0;
    }
    for (auto const& status : statuses) {
        count += status ? 1 + status->results.size() : 0;
    }
    count += vlans_.size();
    if (!running_) {
        return count;
    }
    for (auto const& [name, client] : clients_) {
        count += 1 + client->reactors.size();
    }
    std::set<JobPtr> jobs{engine_.current};
    for (auto const& [id, job] : jobs_) {
        jobs.insert(job);
    }
    jobs.erase(nullptr);
    // The root, the engine, its two collections and its task; the socket's end if there is one.
    return count + jobs.size() + answers_.size() + watched_.size() + (supported_ ? 6 : 5);
}

std::optional<Id> Model::currentJob() const {
    return engine_.current ? std::optional(engine_.current->id) : std::nullopt;
}

std::vector<Id> Model::jobs() const {
    std::vector<Id> ids;
    for (auto const& [id, job] : jobs_) {
        ids.push_back(id);
    }
    return ids;
}

std::vector<Id> Model::answers() const {
    std::vector<Id> ids;
    for (auto const& [id, answer] : answers_) {
        ids.push_back(id);
    }
    return ids;
}

std::vector<Id> Model::pendingJobs() const {
    std::vector<Id> ids = jobs();
    std::erase_if(ids, [this](Id const& id) { return answers_.has(id); });
    return ids;
}

bool Model::configIsMounted(unsigned client) const {
    auto const* const entity = configs_.find(clientName(client));
    return entity != nullptr && entity->own && entity->own == configsInHand_[client];
}

bool Model::statusIsMounted(unsigned client) const {
    auto const* const entity = statuses_.find(clientName(client));
    return entity != nullptr && entity->own && entity->own == statusesInHand_[client];
}

std::vector<Id> Model::requestsOf(unsigned client) const {
    std::vector<Id> ids;
    if (auto const& config = configsInHand_[client]) {
        for (auto const& [id, request] : config->requests) {
            ids.push_back(id);
        }
    }
    return ids;
}

}  // namespace Simulate
