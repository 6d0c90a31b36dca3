// Which events make no sense at a given moment.
#include "scenario/JsonLine.h"
#include "scenario/JsonText.h"
#include "scenario/Player.h"

namespace Scenario {
namespace {

void require(bool holds, std::string const& otherwise) {
    if (!holds) {
        throw Refusal(otherwise);
    }
}

std::string named(Plexa::IntfId const& intf) {
    return jsonText(intf.stringValue());
}

std::string named(PacketTracer::RequestId const& id) {
    return std::to_string(id.number()) + " of the client " + jsonText(id.clientName().view());
}

}  // namespace

// One operator an event; most events always make sense.
struct Player::Checking {
    Player const& player;

    template <class AnyOther>
    void operator()(AnyOther const&) const {}

    void operator()(Do::PortDel const& e) const {
        require(player.stage_.systemStatus->portInfo().has(e.intf),
                "there is no port information of " + named(e.intf));
    }
    void operator()(Do::PortToIntfIdDel const& e) const {
        require(player.stage_.systemStatus->portToIntfId().has(VynPortTypes::PortIndex(e.port)),
                "there is no interface of the port " + std::to_string(e.port));
    }
    void operator()(Do::LagToPortDel const& e) const {
        require(player.stage_.fcsd->lagToPort().has(e.lag), named(e.lag) + " is no LAG");
    }
    void operator()(Do::PortToLagDel const& e) const {
        require(player.stage_.fcsd->portToLag().has(e.intf), named(e.intf) + " is in no LAG");
    }
    void operator()(Do::VlanDel const& e) const {
        require(player.stage_.bridgingConfig->vlanConfig().has(e.id),
                "there is no VLAN " + std::to_string(e.id.value()));
    }
    void operator()(Do::CpuPortDel const& e) const {
        require(player.stage_.chipStatus->isCpuIntf(e.intf), named(e.intf) + " is no CPU port");
    }

    void operator()(Do::Start const&) const {
        require(!player.tracer_, "the tracer is started already");
    }
    void operator()(Do::Stop const&) const {
        require(player.tracer_ != nullptr, "the tracer is not started");
    }

    void operator()(Do::ClientConfigDel const& e) const {
        require(player.stage_.config->entryHas(e.client),
                "there is no configuration entry " + jsonText(e.client.view()));
    }
    void operator()(Do::ClientStatusDel const& e) const {
        require(player.stage_.status->entryHas(e.client),
                "there is no status entry " + jsonText(e.client.view()));
    }
    void operator()(Do::Request const& e) const { requireConfig(e.id); }
    void operator()(Do::RequestSet const& e) const { requireRequest(e.id); }
    void operator()(Do::RequestDel const& e) const { requireRequest(e.id); }
    void operator()(Do::Result const& e) const {
        auto const status = player.status(e.id.clientName());
        require(status != nullptr,
                "the client " + jsonText(e.id.clientName().view()) + " has no status");
        require(!status->result(e.id), "there is a result of request " + named(e.id) + " already");
    }

    void operator()(Do::Phase0Del const& e) const {
        require(player.stage_.phase0Data->response().has(e.intf),
                "there is no phase-0 response of " + named(e.intf));
    }

    Vanta::Ptr<PacketTracer::ClientConfig> requireConfig(PacketTracer::RequestId const& id) const {
        auto config = player.config(id.clientName());
        require(config != nullptr,
                "the client " + jsonText(id.clientName().view()) + " has no configuration");
        return config;
    }
    void requireRequest(PacketTracer::RequestId const& id) const {
        require(requireConfig(id)->request(id) != nullptr, "there is no request " + named(id));
    }
};

void Player::check(Event const& event) const {
    std::visit(Checking{*this}, event);
}

}  // namespace Scenario
