#include "simulate/Model.h"

#include <algorithm>

#include "simulate/Socket.h"

namespace Simulate {
namespace {

constexpr std::string_view module = "VynPtSm";

std::string line(Id const& id) {
    return joined(id.first, "/", id.second);
}

std::string nameOf(Vanta::String const& client) {
    return std::string(client.view());
}

Id idOf(PacketTracer::RequestId const& id) {
    return {nameOf(id.clientName()), id.number()};
}

Bytes bytesOf(Vanta::Bytes const& bytes) {
    return {bytes.view().begin(), bytes.view().end()};
}

}  // namespace

Model::Model() : room_(DigestSocket::plenty) {}

Model::Hand Model::hand(Vanta::String const& client) const {
    auto const found = hands_.find(nameOf(client));
    return found != hands_.end() ? found->second : Hand();
}

// ---- Whether an event means anything now; most always do

struct Model::Applies {
    Model const& model;

    template <class AnyOther>
    bool operator()(AnyOther const&) const {
        return true;
    }
    bool operator()(Scenario::Event const& e) const { return std::visit(*this, e); }

    bool operator()(Do::PortDel const& e) const { return model.ports_.has(e.intf); }
    bool operator()(Do::PortToIntfIdDel const& e) const {
        return model.portToIntfId_.contains(e.port);
    }
    bool operator()(Do::LagToPortDel const& e) const { return model.lags_.contains(e.lag); }
    bool operator()(Do::PortToLagDel const& e) const { return model.portToLag_.contains(e.intf); }
    bool operator()(Do::VlanDel const& e) const { return model.vlans_.contains(e.id.value()); }
    bool operator()(Do::CpuPortDel const& e) const { return model.cpuPorts_.contains(e.intf); }

    bool operator()(Do::Start const&) const { return !model.running_; }
    bool operator()(Do::Stop const&) const { return model.running_; }

    bool operator()(ConfigReturns const& e) const { return model.hand(e.client).config != nullptr; }
    bool operator()(StatusReturns const& e) const { return model.hand(e.client).status != nullptr; }
    bool operator()(Do::ClientConfigDel const& e) const {
        return model.configs_.has(nameOf(e.client));
    }
    bool operator()(Do::ClientStatusDel const& e) const {
        return model.statuses_.has(nameOf(e.client));
    }
    bool operator()(Do::Request const& e) const {
        return model.hand(e.id.clientName()).config != nullptr;
    }
    bool operator()(Do::RequestSet const& e) const { return hasRequest(e.id); }
    bool operator()(Do::RequestDel const& e) const { return hasRequest(e.id); }
    bool operator()(RequestDelAll const& e) const {
        auto const config = model.hand(e.client).config;
        return config && !config->requests.empty();
    }
    bool operator()(Do::Result const& e) const {
        auto const status = model.hand(e.id.clientName()).status;
        return status && !status->results.has(idOf(e.id));
    }
    bool operator()(Forge const&) const { return model.running_ && model.supported_; }

    bool hasRequest(PacketTracer::RequestId const& id) const {
        auto const config = model.hand(id.clientName()).config;
        return config && config->requests.has(idOf(id));
    }
};

bool Model::applies(Event const& event) const {
    return std::visit(Applies{*this}, event);
}

// ---- What an event leads to; one operator an event that the model knows of

struct Model::Applying {
    Model& model;

    template <class AnyOther>
    void operator()(AnyOther const&) const {}
    void operator()(Scenario::Event const& e) const { std::visit(*this, e); }

    void operator()(Do::Port const& e) const { model.ports_.put(e.intf, {e.pipe, e.port}); }
    void operator()(Do::PortDel const& e) const { model.ports_.remove(e.intf); }
    void operator()(Do::PortToIntfId const& e) const { model.portToIntfId_[e.port] = e.intf; }
    void operator()(Do::PortToIntfIdDel const& e) const { model.portToIntfId_.erase(e.port); }
    void operator()(Do::LagToPort const& e) const { model.lags_.insert(e.lag); }
    void operator()(Do::LagToPortDel const& e) const { model.lags_.erase(e.lag); }
    void operator()(Do::PortToLag const& e) const { model.portToLag_[e.intf] = e.lag; }
    void operator()(Do::PortToLagDel const& e) const { model.portToLag_.erase(e.intf); }
    void operator()(Do::Vlan const& e) const { model.vlans_[e.id.value()] = {e.intf, e.internal}; }
    void operator()(Do::VlanDel const& e) const { model.vlans_.erase(e.id.value()); }
    void operator()(Do::CpuPort const& e) const { model.cpuPorts_.insert(e.intf); }
    void operator()(Do::CpuPortDel const& e) const { model.cpuPorts_.erase(e.intf); }

    void operator()(Do::Start const& e) const { model.start(e.pktTracerSupported); }
    void operator()(Do::Stop const&) const { model.stop(); }
    void operator()(Do::Turn const&) const { model.turn(); }
    void operator()(Do::YieldAfter const& e) const { model.yieldAfter_ = e.checks; }

    void operator()(Do::ClientConfig const& e) const {
        if (e.entity == Do::Entity::own) {
            model.hands_[nameOf(e.client)].config = std::make_shared<Config>();
        }
        model.mount(model.configs_, e.client, model.hand(e.client).config, e.entity);
    }
    void operator()(Do::ClientStatus const& e) const {
        if (e.entity == Do::Entity::own) {
            model.hands_[nameOf(e.client)].status = std::make_shared<Status>();
        }
        model.mount(model.statuses_, e.client, model.hand(e.client).status, e.entity);
    }
    void operator()(ConfigReturns const& e) const {
        model.mount(model.configs_, e.client, model.hand(e.client).config, Do::Entity::own);
    }
    void operator()(StatusReturns const& e) const {
        model.mount(model.statuses_, e.client, model.hand(e.client).status, Do::Entity::own);
    }
    void operator()(Do::ClientConfigDel const& e) const { model.unmount(model.configs_, e.client); }
    void operator()(Do::ClientStatusDel const& e) const {
        model.unmount(model.statuses_, e.client);
    }

    void operator()(Do::Request const& e) const { model.putRequest(e); }
    void operator()(Do::RequestSet const& e) const { model.setRequest(e); }
    void operator()(Do::RequestDel const& e) const { model.withdraw(idOf(e.id)); }
    void operator()(RequestDelAll const& e) const {
        for (auto const& id : model.requestsOf(nameOf(e.client))) {
            model.withdraw(id);
        }
    }
    void operator()(Do::Result const& e) const {
        model.resultIs(*model.hand(e.id.clientName()).status, idOf(e.id));
    }

    void operator()(ChipStep const&) const { model.receiveAll(); }
    void operator()(Forge const&) const { model.receiveAll(); }
    void operator()(Room const& e) const { model.room_ = static_cast<std::size_t>(e.bytes); }
    void operator()(FaultsEnd const&) const { model.room_ = DigestSocket::plenty; }
    void operator()(Phase0Drop const& e) const { model.responses_.erase(e.intf); }
};

void Model::apply(Event const& event, Wire& wire) {
    wire_ = &wire;
    std::visit(Applying{*this}, event);
}

void Model::receiveAll() {
    while (!wire_->messages.empty()) {
        receive(wire_->messages.front());
        wire_->messages.pop_front();
    }
}

template <class Object>
void Model::mount(Listed<std::string, Entity<Object>>& directory, Vanta::String const& client,
                  std::shared_ptr<Object> const& own, Do::Entity entity) {
    directory.put(nameOf(client),
                  {entity == Do::Entity::own ? own : nullptr, entity == Do::Entity::other});
    if (running_) {
        handleClient(nameOf(client));
    }
}

template <class Object>
void Model::unmount(Listed<std::string, Entity<Object>>& directory, Vanta::String const& client) {
    directory.remove(nameOf(client));
    if (running_) {
        handleClient(nameOf(client));
    }
}

void Model::putRequest(Do::Request const& event) {
    auto const config = hand(event.id.clientName()).config;
    auto request = std::make_shared<Request>();
    request->id = idOf(event.id);
    request->valid = event.valid;
    request->etherType = event.etherType;
    request->mpls = event.mpls;
    request->gre = event.gre;
    request->intf = event.intf;
    request->raw = bytesOf(event.raw);
    config->requests.put(request->id, request);
    if (auto* const client = clientOf(request->id.first); client && client->config == config) {
        requestChanged(*client, request->id);
    }
}

void Model::setRequest(Do::RequestSet const& event) {
    using Attribute = Do::RequestAttribute;
    Id const id = idOf(event.id);
    auto const request = *hand(event.id.clientName()).config->requests.find(id);
    switch (event.attribute) {
        case Attribute::etherType:
            request->etherType = std::get<std::uint16_t>(event.value);
            return;
        case Attribute::mpls:
            request->mpls = std::get<bool>(event.value);
            return;
        case Attribute::gre:
            request->gre = std::get<bool>(event.value);
            return;
        case Attribute::intf:
            request->intf = std::get<IntfId>(event.value);
            return;
        case Attribute::raw:
            request->raw = bytesOf(std::get<Vanta::Bytes>(event.value));
            return;
        case Attribute::valid:
            break;
    }
    bool const valid = std::get<bool>(event.value);
    if (request->valid == valid) {
        return;
    }
    request->valid = valid;
    auto* const client = clientOf(id.first);
    auto const* const watched = client != nullptr ? client->reactors.find(id) : nullptr;
    if (watched != nullptr && *watched == request) {
        handleRequest(*client, id);
    }
}

void Model::withdraw(Id const& id) {
    auto const config = hand(id.first).config;
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

// The engine is destroyed, and the answers with it; then the clients, and the jobs with their last
// holder.
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
    for (auto const& [client, hand] : hands_) {
        if (hand.status) {
            for (auto const& [id, result] : hand.status->results) {
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
    std::set<ConfigPtr> configs;
    std::set<StatusPtr> statuses;
    for (auto const& [name, hand] : hands_) {
        configs.insert(hand.config);
        statuses.insert(hand.status);
    }
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

bool Model::configIsMounted(std::string const& client) const {
    auto const* const entity = configs_.find(client);
    return entity != nullptr && entity->own && entity->own == hand(client).config;
}

bool Model::statusIsMounted(std::string const& client) const {
    auto const* const entity = statuses_.find(client);
    return entity != nullptr && entity->own && entity->own == hand(client).status;
}

std::vector<Id> Model::requestsOf(std::string const& client) const {
    std::vector<Id> ids;
    if (auto const config = hand(client).config) {
        for (auto const& [id, request] : config->requests) {
            ids.push_back(id);
        }
    }
    return ids;
}

}  // namespace Simulate
