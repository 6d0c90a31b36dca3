#include "simulate/World.h"

#include <algorithm>
#include <set>

#include "agent/DeriveTables.h"
#include "sdkseam/DigestLayout.h"

namespace Simulate {

using PacketTracer::ClientConfig;
using PacketTracer::ClientStatus;
using PacketTracer::RequestId;

namespace {

std::string listed(std::set<std::string> const& names) {
    std::string text;
    for (auto const& name : names) {
        text += " " + name;
    }
    return text;
}

SoftChip::Config stepwiseChip() {
    return {.device = Model::device,
            .session = Model::session,
            .mode = SoftChip::Mode::stepwise,
            .journalLimit = SoftChip::Journal::unlimited};
}

Scenario::Stage stageOf(Vanta::Ptr<Orb::TaskSchedulerRoot> loop,
                        Vanta::Ptr<VynSdk::Phase0DataIntf> phase0) {
    Scenario::Stage stage;
    stage.scheduler = std::move(loop);
    stage.phase0Data = std::move(phase0);
    stage.digestLayout = SdkSeam::DigestLayout::DigestLayoutIs();
    stage.learnQuanta = SdkSeam::LearnQuanta::LearnQuantaIs();
    return stage;
}

}  // namespace

Vanta::Ptr<ClientConfig> World::HandPlayer::newConfig(Vanta::String const& client) {
    return world_.hands_[client].config = ClientConfig::ClientConfigIs();
}

// The logbook may know another object that had the new object's address: forget that one.
Vanta::Ptr<ClientStatus> World::HandPlayer::newStatus(Vanta::String const& client) {
    auto const fresh = ClientStatus::ClientStatusIs();
    world_.hands_[client].status = fresh;
    world_.logbook_.forget(fresh.get());
    std::string const results = std::string(client.view()) + "/";
    std::erase_if(world_.seen_, [&](auto const& seen) { return seen.first.starts_with(results); });
    return fresh;
}

World::World(Switch const& drawn) : chip_(stepwiseChip()), player_(stageOf(loop_, desk_), *this) {
    chip_.change([tables = Agent::deriveTables(drawn.model)](SoftChip::Tables& t) { t = tables; });
    chip_.drain();
    for (auto const& intf : drawn.model.interfaces) {
        if (auto const* const port = drawn.model.entryPort(intf)) {
            phase0_->ingressPortIs(intf.id, port->devicePort);
        }
    }
    base_ = Vanta::Node::liveCount();
}

World::~World() {
    DigestSocket::limitDel();
}

// Carries an event out; one operator an event.
struct World::Doing {
    World& world;

    void operator()(Scenario::Event const& e) const {
        if (std::holds_alternative<Do::Start>(e)) {
            world.start(e);
        } else if (std::holds_alternative<Do::Stop>(e)) {
            world.stop(e);
        } else {
            world.player_.carryOut(e);
        }
    }
    // Program and run have one turn after the other.
    void operator()(Turns const&) const {}

    void operator()(ConfigReturns const& e) const {
        stage().config->entryIs(e.client, world.hands_[e.client].config);
    }
    void operator()(StatusReturns const& e) const {
        stage().status->entryIs(e.client, world.hands_[e.client].status);
    }
    void operator()(RequestDelAll const& e) const {
        auto const config = world.hands_[e.client].config;
        for (auto const& entry : config->request()) {
            static_cast<void>(config->requestDel(PacketTracer::RequestId(entry.key)));
        }
    }

    void operator()(ChipStep const&) const { world.chip_.step(); }
    void operator()(ChipPortUp const& e) const {
        world.chip_.change([e](SoftChip::Tables& tables) {
            tables.portUpIs(static_cast<SoftChip::DevicePort>(e.devicePort), e.up);
        });
    }
    void operator()(CallFails const& e) const {
        faults().failIs(e.call, e.rc, e.window.nth, e.window.times);
    }
    void operator()(Phase0Late const& e) const {
        world.phase0_->lateIs(e.turns, e.window.nth, e.window.times);
    }
    void operator()(Phase0Lost const& e) const {
        world.phase0_->lostIs(e.window.nth, e.window.times);
    }
    void operator()(Phase0Status const& e) const {
        world.phase0_->statusIs(e.status, e.window.nth, e.window.times);
    }
    void operator()(Phase0Ask const& e) const { world.desk_->askElsewhere(e.intf); }
    void operator()(Phase0Drop const& e) const { world.desk_->dropElsewhere(e.intf); }
    void operator()(Stall const& e) const { world.chip_.generator(e.pipe).stalledIs(e.stalled); }
    void operator()(CounterStarts const& e) const {
        world.chip_.generator(e.pipe).counterIs(e.count);
    }
    void operator()(DigestsSuffer const& e) const {
        faults().digestIs(
            {.fate = e.fate, .nth = e.window.nth, .times = e.window.times, .behind = e.behind});
    }
    void operator()(ReleaseHeld const&) const { world.chip_.releaseHeld(); }
    void operator()(Forge const& e) const { world.forge(e); }
    void operator()(Room const& e) const {
        world.room_ = static_cast<std::size_t>(e.bytes);
        world.limitSocket();
    }
    void operator()(FaultsEnd const&) const {
        faults().clear();
        world.phase0_->lateIs(0, 1, 0);
        world.phase0_->lostIs(1, 0);
        world.phase0_->statusIs(0, 1, 0);
        for (unsigned pipe = 0; pipe < SoftChip::pipeCount; ++pipe) {
            world.chip_.generator(pipe).stalledIs(false);
        }
        (*this)(Room{DigestSocket::plenty});
    }

    Scenario::Stage const& stage() const { return world.player_.stage(); }
    SoftChip::Faults& faults() const { return world.chip_.faults(); }
};

void World::carryOut(Event const& event) {
    std::visit(Doing{*this}, event);
}

void World::forge(Forge const& forged) {
    std::vector<SdkSeam::DigestEntry> entries;
    for (auto entry : forged.entries) {
        entry.pktId = static_cast<std::uint16_t>(tracer()->pktGenSm()->pktId() - entry.pktId);
        entries.push_back(packed(entry));
    }
    board_.forge(entries);
}

void World::start(Scenario::Event const& event) {
    logbook_.silenceIs(false);
    player_.carryOut(event);
    packets_.engineIs(tracer()->pktGenSm().get());
    limitSocket();
}

void World::stop(Scenario::Event const& event) {
    player_.carryOut(event);
    packets_.engineIs(nullptr);
    logbook_.silenceIs(true);
    DigestSocket::limitDel();
}

void World::limitSocket() {
    if (tracer() && tracer()->pktGenSm()->socketPairReadFileDesc()) {
        auto const& engine = *tracer()->pktGenSm();
        DigestSocket::limitIs(engine.socketPairWriteDesc(),
                              engine.socketPairReadFileDesc()->descriptor(), room_);
    }
}

// ---- What there is

bool World::isHeldUp() {
    using VynPacketTracer::PktGenState;
    auto const& engine = *tracer()->pktGenSm();
    switch (engine.state()) {
        case PktGenState::waitPhase0Data:
            return desk_->isLost(engine.curCfg()->ingIntf());
        case PktGenState::waitPktSent:
            return chip_.generator(engine.curCfg()->ingPortInfo().pipe()).counter() ==
                   engine.curPktCounter();
        default:
            return packets_.lastRefused();
    }
}

std::vector<std::string> World::content() const {
    std::vector<std::string> lines;
    auto const add = [&](auto const&... parts) { lines.push_back(joined(parts...)); };
    for (auto const& [client, hand] : hands_) {
        if (!hand.status) {
            continue;
        }
        for (auto const& entry : hand.status->result()) {
            auto const& result = *entry.value;
            std::string egress;
            for (auto const& found : result.egressIntf()) {
                egress += joined(" ", found.key.physicalIntf(), ",", found.key.logicalIntf());
            }
            add("result ", line(entry.key), " state ", static_cast<unsigned>(result.state()),
                " valid ", result.valid(), egress);
        }
    }
    auto const engine = tracer() ? tracer()->pktGenSm() : nullptr;
    bool const hasSocket = engine && engine->socketPairReadFileDesc();
    add("socket ",
        hasSocket ? DigestSocket::unread(engine->socketPairReadFileDesc()->descriptor()) : 0);
    if (tracer()) {
        addEngine(lines);
    }
    return lines;
}

void World::addEngine(std::vector<std::string>& lines) const {
    auto const add = [&](auto const&... parts) { lines.push_back(joined(parts...)); };
    for (auto const& entry : tracer()->pktGenCfg()->cfg()) {
        auto const& job = *entry.value;
        add("cfg ", line(entry.key), " pkt ", digestOf(job.pkt().view()), " port ",
            unsigned{job.ingPortInfo().pipe()}, ":", job.ingPortInfo().port().value(), " ",
            job.ingIntf());
    }
    for (auto const& entry : tracer()->pktGenStatus()->status()) {
        auto const& answer = *entry.value;
        add("status ", line(entry.key), " pktId ", answer.pktId(), " ready ", answer.ready(),
            " egress ", unsigned{answer.egrPortInfo().pipe()}, ":",
            answer.egrPortInfo().port().value(), " l2Domain ", answer.egrL2Domain(), " copyToCpu ",
            answer.copyToCpu(), " routed ", answer.routed(), " dropped ", answer.dropped(),
            " watched ", tracer()->localStatusHas(entry.key));
    }
    for (unsigned number = 0; number < clientCount; ++number) {
        auto const client = tracer()->clientSm(Vanta::String(clientName(number)));
        if (client) {
            std::set<std::string> reactors;
            for (auto const& request : client->clientConfig()->request()) {
                if (client->requestHas(request.key)) {
                    reactors.insert(line(request.key));
                }
            }
            add("client ", clientName(number), " reactors", listed(reactors));
        }
    }
    auto const& engine = *tracer()->pktGenSm();
    auto const current = engine.curCfg() ? engine.curCfg()->req() : RequestId();
    add("engine ", VynPacketTracer::stringValue(engine.state()).view(), " pktId ", engine.pktId(),
        " count ", engine.curPktCounter(), " current ", line(current), " scheduled ",
        engine.task()->isScheduled());
}

std::optional<Breach> World::unpublished() const {
    std::vector<ClientStatus const*> results;
    for (auto const& [client, hand] : hands_) {
        if (hand.status) {
            results.push_back(hand.status.get());
        }
    }
    return logbook_.unpublished(tracer() ? tracer()->pktGenCfg().get() : nullptr,
                                tracer() ? tracer()->pktGenStatus().get() : nullptr, results);
}

std::optional<Breach> World::shrunkenResults(std::set<RequestId> const& added) {
    std::map<std::string, std::set<std::string>> now;
    std::optional<Breach> breach;
    for (auto const& [client, hand] : hands_) {
        if (!hand.status) {
            continue;
        }
        for (auto const& entry : hand.status->result()) {
            auto const id = line(entry.key);
            auto& entries = now[id];
            for (auto const& found : entry.value->egressIntf()) {
                entries.insert(joined(found.key.physicalIntf(), ",", found.key.logicalIntf()));
            }
            auto const before = seen_.find(id);
            if (!added.contains(entry.key) && before != seen_.end() &&
                !std::ranges::includes(entries, before->second)) {
                breach = {"results", "the result " + id + " lost an entry"};
            }
        }
    }
    seen_ = std::move(now);
    return breach;
}

}  // namespace Simulate
