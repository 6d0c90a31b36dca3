#include "simulate/World.h"

#include <algorithm>
#include <set>

#include "agent/DeriveTables.h"
#include "simulate/Socket.h"

namespace Simulate {

using PacketTracer::ClientConfig;
using PacketTracer::ClientStatus;
using PacketTracer::RequestId;
using VynPortTypes::PortIndex;

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

void putEntity(Kel::Dir& directory, Vanta::String const& name, std::uint64_t what,
               Vanta::Ptr<Vanta::Node> own) {
    bool const isOwn = what == 0 || what == 3;
    directory.entryIs(name, isOwn       ? std::move(own)
                            : what == 2 ? Vanta::Ptr<Vanta::Node>(Kel::Dir::DirIs())
                                        : nullptr);
}

}  // namespace

World::World(Switch const& drawn)
    : chip_(stepwiseChip()), hands_(clientCount), room_(DigestSocket::plenty) {
    chip_.change([tables = Agent::deriveTables(drawn.model)](SoftChip::Tables& t) { t = tables; });
    chip_.drain();
    for (auto const& intf : drawn.model.interfaces) {
        bool const physical = intf.id.kind() == Plexa::IntfId::Kind::physical;
        bool const sub = intf.id.kind() == Plexa::IntfId::Kind::subIntf;
        auto const& port =
            sub ? drawn.model.interface(Plexa::SubIntfId::parentIntfId(intf.id)) : &intf;
        if ((physical || sub) && port->id.kind() == Plexa::IntfId::Kind::physical) {
            phase0_->ingressPortIs(intf.id, port->devicePort);
        }
    }
    base_ = Vanta::Node::liveCount();
}

World::~World() {
    DigestSocket::limitDel();
}

void World::carryOut(Event const& event) {
    if (event.kind <= Kind::cpuPortDel) {
        changeForwarding(event);
    } else if (event.kind >= Kind::clientConfig && event.kind <= Kind::clientStatusDel) {
        changeDirectory(event);
    } else if (event.kind >= Kind::request && event.kind <= Kind::result) {
        changeRequest(event);
    } else if (event.kind == Kind::start) {
        start(event.flag);
    } else if (event.kind == Kind::stop) {
        stop();
    } else if (event.kind == Kind::turn) {
        loop_->turn();
    } else if (event.kind == Kind::yieldAfter) {
        loop_->yieldAfterIs(static_cast<unsigned>(event.a));
    } else {
        changeChip(event);
    }
}

void World::changeForwarding(Event const& event) {
    auto const number = static_cast<std::uint16_t>(event.a);
    switch (event.kind) {
        case Kind::port:
            return systemStatus_->portInfoIs(event.intf,
                                             {static_cast<std::uint8_t>(number),
                                              PortIndex(static_cast<std::uint16_t>(event.b))});
        case Kind::portDel:
            return void(systemStatus_->portInfoDel(event.intf));
        case Kind::portToIntfId:
            return systemStatus_->portToIntfIdIs(PortIndex(number), event.intf);
        case Kind::portToIntfIdDel:
            return void(systemStatus_->portToIntfIdDel(PortIndex(number)));
        case Kind::lagToPort:
            return fcsd_->lagToPortIs(event.intf);
        case Kind::lagToPortDel:
            return void(fcsd_->lagToPortDel(event.intf));
        case Kind::portToLag:
            return fcsd_->portToLagIs(event.intf, event.lag);
        case Kind::portToLagDel:
            return void(fcsd_->portToLagDel(event.intf));
        case Kind::vlan:
            return setVlan(event);
        case Kind::vlanDel:
            return void(bridging_->vlanConfigDel(Bridging::VlanId(number)));
        case Kind::cpuPort:
            return chipStatus_->cpuIntfIs(event.intf);
        default:
            return void(chipStatus_->cpuIntfDel(event.intf));
    }
}

void World::setVlan(Event const& event) {
    auto const vlan =
        bridging_->vlanConfigIs(Bridging::VlanId(static_cast<std::uint16_t>(event.a)));
    for (auto const& member : vlan->intf()) {
        vlan->intfDel(Plexa::IntfId(member.key));
    }
    for (auto const& member : event.intfs) {
        vlan->intfIs(member);
    }
    vlan->internalIs(event.flag);
}

void World::changeDirectory(Event const& event) {
    Vanta::String const name(clientName(event.client));
    Hand& hand = hands_[event.client];
    if (event.kind == Kind::clientConfig) {
        hand.config = event.a == 0 ? ClientConfig::ClientConfigIs() : hand.config;
        putEntity(*configs_, name, event.a, hand.config);
    } else if (event.kind == Kind::clientStatus) {
        if (event.a == 0) {
            hand.status = ClientStatus::ClientStatusIs();
            recorder_.forget(hand.status.get());
            std::erase_if(seen_, [&](auto const& seen) {
                return seen.first.starts_with(clientName(event.client) + "/");
            });
        }
        putEntity(*statuses_, name, event.a, hand.status);
    } else if (event.kind == Kind::clientConfigDel) {
        static_cast<void>(configs_->entryDel(name));
    } else {
        static_cast<void>(statuses_->entryDel(name));
    }
}

void World::changeRequest(Event const& event) {
    RequestId const id(Vanta::String(clientName(event.client)), event.req);
    Hand const& hand = hands_[event.client];
    if (event.kind == Kind::request) {
        auto const request = PacketTracer::Request::RequestIs(id);
        request->intfIs(event.intf);
        request->etherTypeIs(static_cast<std::uint16_t>(event.a));
        request->mplsIs((event.b & 1) != 0);
        request->greIs((event.b & 2) != 0);
        request->frameIs(Vanta::Bytes(event.raw));
        request->validIs(event.flag);
        hand.config->requestIs(request);
    } else if (event.kind == Kind::requestSet) {
        setRequest(event);
    } else if (event.kind == Kind::requestDel) {
        static_cast<void>(hand.config->requestDel(id));
    } else if (event.kind == Kind::requestDelAll) {
        for (auto const& entry : hand.config->request()) {
            static_cast<void>(hand.config->requestDel(RequestId(entry.key)));
        }
    } else {
        static_cast<void>(hand.status->resultIs(id));
    }
}

void World::setRequest(Event const& event) {
    RequestId const id(Vanta::String(clientName(event.client)), event.req);
    auto const request = hands_[event.client].config->request(id);
    switch (static_cast<RequestAttribute>(event.a)) {
        case valid:
            return request->validIs(event.b != 0);
        case etherType:
            return request->etherTypeIs(static_cast<std::uint16_t>(event.b));
        case mpls:
            return request->mplsIs(event.b != 0);
        case gre:
            return request->greIs(event.b != 0);
        case intf:
            return request->intfIs(event.intf);
        case raw:
            return request->frameIs(Vanta::Bytes(event.raw));
    }
}

void World::changeChip(Event const& event) {
    auto const number = static_cast<unsigned>(event.a);
    switch (event.kind) {
        case Kind::chipStep:
            return void(chip_.step());
        case Kind::chipPortUp:
            return chip_.change([port = static_cast<SoftChip::DevicePort>(number),
                                 up = event.flag](auto& tables) { tables.portUpIs(port, up); });
        case Kind::callFails:
            return chip_.faults().failIs(static_cast<SdkSeam::SdkFunction>(number), event.value,
                                         event.b, event.c);
        case Kind::phase0Late:
            return phase0_->lateIs(number, event.b, event.c);
        case Kind::phase0Lost:
            return phase0_->lostIs(event.b, event.c);
        case Kind::phase0Status:
            return phase0_->statusIs(number, event.b, event.c);
        case Kind::phase0Ask:
            return desk_->askElsewhere(event.intf);
        case Kind::phase0Drop:
            return desk_->dropElsewhere(event.intf);
        case Kind::stall:
            return chip_.generator(number).stalledIs(event.flag);
        case Kind::counter:
            return chip_.generator(number).counterIs(event.b);
        case Kind::digestFate:
            return chip_.faults().digestIs({.fate = static_cast<SoftChip::DigestFate>(number),
                                            .nth = event.b,
                                            .times = event.c,
                                            .behind = static_cast<std::uint32_t>(event.value)});
        case Kind::releaseHeld:
            return chip_.releaseHeld();
        case Kind::forge:
            return forge(event);
        case Kind::room:
            room_ = static_cast<std::size_t>(event.a);
            return limitSocket();
        default:
            chip_.faults().clear();
            phase0_->lateIs(0, 1, 0);
            phase0_->lostIs(1, 0);
            phase0_->statusIs(0, 1, 0);
            for (unsigned pipe = 0; pipe < SoftChip::pipeCount; ++pipe) {
                chip_.generator(pipe).stalledIs(false);
            }
            room_ = DigestSocket::plenty;
            return limitSocket();
    }
}

void World::forge(Event const& event) {
    std::vector<SdkSeam::DigestEntry> entries;
    for (auto const& entry : event.entries) {
        auto const pktId = static_cast<std::uint16_t>(tracer_->pktGenSm()->pktId() - entry.back);
        entries.push_back(SdkSeam::packed({.pktId = pktId,
                                           .copyToCpu = entry.copyToCpu,
                                           .l2Domain = entry.l2Domain,
                                           .egrPort = entry.egrPort,
                                           .routed = entry.routed,
                                           .dropCtl = entry.dropCtl}));
    }
    board_.forge(entries);
}

void World::start(bool supported) {
    recorder_.silenceIs(false);
    tracer_ = VynPacketTracer::packetTracerSmFactory(
        configs_, statuses_, desk_, true, supported, Model::session, Model::device, quanta_,
        layout_, loop_, systemStatus_, fcsd_, bridging_, chipStatus_);
    packets_.engineIs(tracer_->pktGenSm().get());
    limitSocket();
}

void World::stop() {
    tracer_ = nullptr;
    packets_.engineIs(nullptr);
    recorder_.silenceIs(true);
    DigestSocket::limitDel();
}

void World::limitSocket() {
    if (tracer_ && tracer_->pktGenSm()->socketPairReadFileDesc()) {
        auto const& engine = *tracer_->pktGenSm();
        DigestSocket::limitIs(engine.socketPairWriteDesc(),
                              engine.socketPairReadFileDesc()->descriptor(), room_);
    }
}

// ---- What there is

bool World::isHeldUp() {
    using VynPacketTracer::PktGenState;
    auto const& engine = *tracer_->pktGenSm();
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
    for (auto const& hand : hands_) {
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
    auto const engine = tracer_ ? tracer_->pktGenSm() : nullptr;
    bool const hasSocket = engine && engine->socketPairReadFileDesc();
    add("socket ",
        hasSocket ? DigestSocket::unread(engine->socketPairReadFileDesc()->descriptor()) : 0);
    if (tracer_) {
        addEngine(lines);
    }
    return lines;
}

void World::addEngine(std::vector<std::string>& lines) const {
    auto const add = [&](auto const&... parts) { lines.push_back(joined(parts...)); };
    for (auto const& entry : tracer_->pktGenCfg()->cfg()) {
        auto const& job = *entry.value;
        add("cfg ", line(entry.key), " pkt ", digestOf(job.pkt().view()), " port ",
            unsigned{job.ingPortInfo().pipe()}, ":", job.ingPortInfo().port().value(), " ",
            job.ingIntf());
    }
    for (auto const& entry : tracer_->pktGenStatus()->status()) {
        auto const& answer = *entry.value;
        add("status ", line(entry.key), " pktId ", answer.pktId(), " ready ", answer.ready(),
            " egress ", unsigned{answer.egrPortInfo().pipe()}, ":",
            answer.egrPortInfo().port().value(), " l2Domain ", answer.egrL2Domain(), " copyToCpu ",
            answer.copyToCpu(), " routed ", answer.routed(), " dropped ", answer.dropped(),
            " watched ", tracer_->localStatusHas(entry.key));
    }
    for (unsigned number = 0; number < clientCount; ++number) {
        auto const client = tracer_->clientSm(Vanta::String(clientName(number)));
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
    auto const& engine = *tracer_->pktGenSm();
    auto const current = engine.curCfg() ? engine.curCfg()->req() : RequestId();
    add("engine ", VynPacketTracer::stringValue(engine.state()).view(), " pktId ", engine.pktId(),
        " count ", engine.curPktCounter(), " current ", line(current), " scheduled ",
        engine.task()->isScheduled());
}

std::optional<Breach> World::unpublished() const {
    std::vector<ClientStatus const*> results;
    for (auto const& hand : hands_) {
        if (hand.status) {
            results.push_back(hand.status.get());
        }
    }
    return recorder_.unpublished(tracer_ ? tracer_->pktGenCfg().get() : nullptr,
                                 tracer_ ? tracer_->pktGenStatus().get() : nullptr, results);
}

std::optional<Breach> World::shrunkenResults(std::vector<std::string> const& log) {
    std::map<std::string, std::set<std::string>> now;
    std::optional<Breach> breach;
    for (auto const& hand : hands_) {
        if (!hand.status) {
            continue;
        }
        for (auto const& entry : hand.status->result()) {
            auto const id = line(entry.key);
            auto& entries = now[id];
            for (auto const& found : entry.value->egressIntf()) {
                entries.insert(joined(found.key.physicalIntf(), ",", found.key.logicalIntf()));
            }
            bool const isNew = std::ranges::find(log, "result add " + id) != log.end();
            auto const before = seen_.find(id);
            if (!isNew && before != seen_.end() &&
                !std::ranges::includes(entries, before->second)) {
                breach = {"results", "the result " + id + " lost an entry"};
            }
        }
    }
    seen_ = std::move(now);
    return breach;
}

}  // namespace Simulate
