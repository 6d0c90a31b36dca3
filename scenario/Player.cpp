#include "scenario/Player.h"

namespace Scenario {

using PacketTracer::ClientConfig;
using PacketTracer::ClientStatus;

Player::Player(ScriptChip::ScriptChip& chip) : chip_(&chip) {
    stage_.phase0Data = chip.phase0Data();
    stage_.digestLayout = chip.digestLayout();
    stage_.learnQuanta = chip.learnQuanta();
    stage_.scheduler->yieldAfterIs(Orb::TaskSchedulerRoot::neverYield);
}

Vanta::Ptr<ClientConfig> Player::newConfig(Vanta::String const&) {
    return ClientConfig::ClientConfigIs();
}

Vanta::Ptr<ClientStatus> Player::newStatus(Vanta::String const&) {
    return ClientStatus::ClientStatusIs();
}

Vanta::Ptr<ClientConfig> Player::config(Vanta::String const& client) const {
    return stage_.config->entity<ClientConfig>(client);
}

Vanta::Ptr<ClientStatus> Player::status(Vanta::String const& client) const {
    return stage_.status->entity<ClientStatus>(client);
}

// One operator an event.
struct Player::Playing {
    Player& player;
    Stage const& stage = player.stage_;

    void operator()(Do::Port const& e) const {
        stage.systemStatus->portInfoIs(e.intf, {e.pipe, VynPortTypes::PortIndex(e.port)});
    }
    void operator()(Do::PortDel const& e) const { stage.systemStatus->portInfoDel(e.intf); }
    void operator()(Do::PortToIntfId const& e) const {
        stage.systemStatus->portToIntfIdIs(VynPortTypes::PortIndex(e.port), e.intf);
    }
    void operator()(Do::PortToIntfIdDel const& e) const {
        stage.systemStatus->portToIntfIdDel(VynPortTypes::PortIndex(e.port));
    }
    void operator()(Do::LagToPort const& e) const { stage.fcsd->lagToPortIs(e.lag); }
    void operator()(Do::LagToPortDel const& e) const { stage.fcsd->lagToPortDel(e.lag); }
    void operator()(Do::PortToLag const& e) const { stage.fcsd->portToLagIs(e.intf, e.lag); }
    void operator()(Do::PortToLagDel const& e) const { stage.fcsd->portToLagDel(e.intf); }
    void operator()(Do::Vlan const& e) const {
        auto const vlan = stage.bridgingConfig->vlanConfigIs(e.id);
        for (auto const& member : vlan->intf()) {
            vlan->intfDel(Plexa::IntfId(member.key));
        }
        for (Plexa::IntfId const& member : e.intf) {
            vlan->intfIs(member);
        }
        vlan->internalIs(e.internal);
    }
    void operator()(Do::VlanDel const& e) const { stage.bridgingConfig->vlanConfigDel(e.id); }
    void operator()(Do::CpuPort const& e) const { stage.chipStatus->cpuIntfIs(e.intf); }
    void operator()(Do::CpuPortDel const& e) const { stage.chipStatus->cpuIntfDel(e.intf); }

    void operator()(Do::Start const& e) const {
        if (player.chip_ != nullptr) {
            player.chip_->deviceIs(e.device);
        }
        player.tracer_ = VynPacketTracer::packetTracerSmFactory(
            stage.config, stage.status, stage.phase0Data, e.pktGenSupported, e.pktTracerSupported,
            e.session, e.device, stage.learnQuanta, stage.digestLayout, stage.scheduler,
            stage.systemStatus, stage.fcsd, stage.bridgingConfig, stage.chipStatus);
    }
    void operator()(Do::Stop const&) const { player.tracer_ = nullptr; }
    void operator()(Do::Turn const& e) const {
        for (std::uint32_t i = 0; i < e.times; ++i) {
            stage.scheduler->turn();
        }
    }
    void operator()(Do::YieldAfter const& e) const { stage.scheduler->yieldAfterIs(e.checks); }

    // The entity of another type is a directory, which is never a client's own object.
    static void put(Kel::Dir& directory, Vanta::String const& client, Do::Entity entity,
                    auto const& own) {
        directory.entryIs(client, entity == Do::Entity::own     ? Vanta::Ptr<Vanta::Node>(own())
                                  : entity == Do::Entity::other ? Kel::Dir::DirIs()
                                                                : nullptr);
    }
    void operator()(Do::ClientConfig const& e) const {
        put(*stage.config, e.client, e.entity, [&] { return player.newConfig(e.client); });
    }
    void operator()(Do::ClientConfigDel const& e) const {
        static_cast<void>(stage.config->entryDel(e.client));
    }
    void operator()(Do::ClientStatus const& e) const {
        put(*stage.status, e.client, e.entity, [&] { return player.newStatus(e.client); });
    }
    void operator()(Do::ClientStatusDel const& e) const {
        static_cast<void>(stage.status->entryDel(e.client));
    }
    void operator()(Do::Request const& e) const {
        auto const request = PacketTracer::Request::RequestIs(e.id);
        request->intfIs(e.intf);
        request->etherTypeIs(e.etherType);
        request->mplsIs(e.mpls);
        request->greIs(e.gre);
        request->frameIs(e.raw);
        request->validIs(e.valid);
        player.config(e.id.clientName())->requestIs(request);
    }
    void operator()(Do::RequestSet const& e) const {
        auto const request = player.config(e.id.clientName())->request(e.id);
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
        static_cast<void>(player.config(e.id.clientName())->requestDel(e.id));
    }
    void operator()(Do::Result const& e) const {
        static_cast<void>(player.status(e.id.clientName())->resultIs(e.id));
    }

    void operator()(Do::Phase0 const& e) const {
        player.chip_->phase0Data()->answerIs(e.intf, e.data, e.status);
    }
    void operator()(Do::Phase0Del const& e) const { player.chip_->phase0Data()->answerDel(e.intf); }
    void operator()(Do::Counter const& e) const { player.chip_->counterIs(e.pipe, e.values); }
    void operator()(Do::SdkReturn const& e) const {
        player.chip_->sdkReturnIs(e.call, e.rc, e.times, e.after);
    }
    void operator()(Do::Digest const& e) const { player.chip_->digest(e.entries); }
    void operator()(Do::DigestField const& e) const {
        player.chip_->digestLayout()->fieldSizeIs(e.field, e.size);
    }
};

void Player::carryOut(Event const& event) {
    std::visit(Playing{*this}, event);
}

std::optional<VynPacketTracer::PktGenState> Player::engineState() const {
    if (!tracer_ || !tracer_->pktGenSm()) {
        return std::nullopt;
    }
    return tracer_->pktGenSm()->state();
}

std::vector<Player::Root> Player::roots() const {
    return {{"config", stage_.config.get()},
            {"status", stage_.status.get()},
            {"tracer", tracer_.get()},
            {"systemStatus", stage_.systemStatus.get()},
            {"fcsd", stage_.fcsd.get()},
            {"bridgingConfig", stage_.bridgingConfig.get()},
            {"chipStatus", stage_.chipStatus.get()},
            {"phase0DataIntf", stage_.phase0Data.get()},
            {"vyPdIntf", stage_.digestLayout.get()},
            {"resourceInfoIntf", stage_.learnQuanta.get()},
            {"rootScheduler", stage_.scheduler.get()}};
}

}  // namespace Scenario
