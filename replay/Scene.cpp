#include "replay/Scene.h"

namespace Replay {

using Orb::TaskSchedulerRoot;

Scene::Scene(ScriptChip::Listener& listener) : chip_(&listener) {
    scheduler_->yieldAfterIs(TaskSchedulerRoot::neverYield);
}

Scene::~Scene() = default;

Vanta::Ptr<PacketTracer::ClientConfig> Scene::config(Vanta::String const& client) const {
    return config_->entity<PacketTracer::ClientConfig>(client);
}

Vanta::Ptr<PacketTracer::ClientStatus> Scene::status(Vanta::String const& client) const {
    return status_->entity<PacketTracer::ClientStatus>(client);
}

namespace {

using MakeEntity = Vanta::Ptr<Vanta::Node> (*)();

// The entity to put into a directory: one of its own type, none, or one of a type that belongs
// into no directory of clients.
Vanta::Ptr<Vanta::Node> makeEntity(Do::Entity entity, MakeEntity own) {
    switch (entity) {
        case Do::Entity::own:
            return own();
        case Do::Entity::none:
            return nullptr;
        case Do::Entity::other:
            return Kel::Dir::DirIs();
    }
    return nullptr;
}

}  // namespace

// One operator an event.
struct Scene::Player {
    Scene& scene;

    void operator()(Do::Port const& e) const {
        scene.systemStatus_->portInfoIs(e.intf, {e.pipe, VynPortTypes::PortIndex(e.port)});
    }
    void operator()(Do::PortDel const& e) const { scene.systemStatus_->portInfoDel(e.intf); }
    void operator()(Do::PortToIntfId const& e) const {
        scene.systemStatus_->portToIntfIdIs(VynPortTypes::PortIndex(e.port), e.intf);
    }
    void operator()(Do::PortToIntfIdDel const& e) const {
        scene.systemStatus_->portToIntfIdDel(VynPortTypes::PortIndex(e.port));
    }
    void operator()(Do::LagToPort const& e) const { scene.fcsd_->lagToPortIs(e.lag); }
    void operator()(Do::LagToPortDel const& e) const { scene.fcsd_->lagToPortDel(e.lag); }
    void operator()(Do::PortToLag const& e) const { scene.fcsd_->portToLagIs(e.intf, e.lag); }
    void operator()(Do::PortToLagDel const& e) const { scene.fcsd_->portToLagDel(e.intf); }
    void operator()(Do::Vlan const& e) const {
        auto const vlan = scene.bridgingConfig_->vlanConfigIs(e.id);
        for (auto const& member : vlan->intf()) {
            vlan->intfDel(Plexa::IntfId(member.key));
        }
        for (Plexa::IntfId const& member : e.intf) {
            vlan->intfIs(member);
        }
        vlan->internalIs(e.internal);
    }
    void operator()(Do::VlanDel const& e) const { scene.bridgingConfig_->vlanConfigDel(e.id); }
    void operator()(Do::CpuPort const& e) const { scene.chipStatus_->cpuIntfIs(e.intf); }
    void operator()(Do::CpuPortDel const& e) const { scene.chipStatus_->cpuIntfDel(e.intf); }

    void operator()(Do::Start const& e) const {
        scene.chip_.deviceIs(e.device);
        scene.tracer_ = VynPacketTracer::packetTracerSmFactory(
            scene.config_, scene.status_, scene.chip_.phase0Data(), e.pktGenSupported,
            e.pktTracerSupported, e.session, e.device, scene.chip_.learnQuanta(),
            scene.chip_.digestLayout(), scene.scheduler_, scene.systemStatus_, scene.fcsd_,
            scene.bridgingConfig_, scene.chipStatus_);
    }
    void operator()(Do::Stop const&) const { scene.tracer_ = nullptr; }
    void operator()(Do::Turn const& e) const {
        for (std::uint32_t i = 0; i < e.times; ++i) {
            scene.scheduler_->turn();
        }
    }
    void operator()(Do::YieldAfter const& e) const { scene.scheduler_->yieldAfterIs(e.checks); }

    void operator()(Do::ClientConfig const& e) const {
        scene.config_->entryIs(
            e.client, makeEntity(e.entity, [] {
                return Vanta::Ptr<Vanta::Node>(PacketTracer::ClientConfig::ClientConfigIs());
            }));
    }
    void operator()(Do::ClientConfigDel const& e) const {
        static_cast<void>(scene.config_->entryDel(e.client));
    }
    void operator()(Do::ClientStatus const& e) const {
        scene.status_->entryIs(
            e.client, makeEntity(e.entity, [] {
                return Vanta::Ptr<Vanta::Node>(PacketTracer::ClientStatus::ClientStatusIs());
            }));
    }
    void operator()(Do::ClientStatusDel const& e) const {
        static_cast<void>(scene.status_->entryDel(e.client));
    }
    void operator()(Do::Request const& e) const {
        auto const request = PacketTracer::Request::RequestIs(e.id);
        request->intfIs(e.intf);
        request->etherTypeIs(e.etherType);
        request->mplsIs(e.mpls);
        request->greIs(e.gre);
        request->frameIs(e.raw);
        request->validIs(e.valid);
        scene.config(e.id.clientName())->requestIs(request);
    }
    void operator()(Do::RequestSet const& e) const {
        auto const request = scene.config(e.id.clientName())->request(e.id);
        switch (e.attribute) {
            case Do::RequestAttribute::valid:
                return request->validIs(std::get<bool>(e.value));
            case Do::RequestAttribute::mpls:
                return request->mplsIs(std::get<bool>(e.value));
            case Do::RequestAttribute::gre:
                return request->greIs(std::get<bool>(e.value));
            case Do::RequestAttribute::etherType:
                return request->etherTypeIs(std::get<std::uint16_t>(e.value));
            case Do::RequestAttribute::intf:
                return request->intfIs(std::get<Plexa::IntfId>(e.value));
            case Do::RequestAttribute::raw:
                return request->frameIs(std::get<Vanta::Bytes>(e.value));
        }
    }
    void operator()(Do::RequestDel const& e) const {
        static_cast<void>(scene.config(e.id.clientName())->requestDel(e.id));
    }
    void operator()(Do::Result const& e) const {
        static_cast<void>(scene.status(e.id.clientName())->resultIs(e.id));
    }

    void operator()(Do::Phase0 const& e) const {
        scene.chip_.phase0Data()->answerIs(e.intf, e.data, e.status);
    }
    void operator()(Do::Phase0Del const& e) const { scene.chip_.phase0Data()->answerDel(e.intf); }
    void operator()(Do::Counter const& e) const { scene.chip_.counterIs(e.pipe, e.values); }
    void operator()(Do::SdkReturn const& e) const {
        scene.chip_.sdkReturnIs(e.call, e.rc, e.times, e.after);
    }
    void operator()(Do::Digest const& e) const { scene.chip_.digest(e.entries); }
    void operator()(Do::DigestField const& e) const {
        scene.chip_.digestLayout()->fieldSizeIs(e.field, e.size);
    }
};

void Scene::carryOut(Event const& event) {
    std::visit(Player{*this}, event);
}

std::optional<VynPacketTracer::PktGenState> Scene::engineState() const {
    if (!tracer_ || !tracer_->pktGenSm()) {
        return std::nullopt;
    }
    return tracer_->pktGenSm()->state();
}

std::vector<Scene::Root> Scene::roots() const {
    return {{"config", config_.get()},
            {"status", status_.get()},
            {"tracer", tracer_.get()},
            {"systemStatus", systemStatus_.get()},
            {"fcsd", fcsd_.get()},
            {"bridgingConfig", bridgingConfig_.get()},
            {"chipStatus", chipStatus_.get()},
            {"phase0DataIntf", chip_.phase0Data().get()},
            {"vyPdIntf", chip_.digestLayout().get()},
            {"resourceInfoIntf", chip_.learnQuanta().get()},
            {"rootScheduler", scheduler_.get()}};
}

}  // namespace Replay
