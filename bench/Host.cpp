#include "bench/Host.h"

#include <array>

#include "sdkseam/DigestLayout.h"

namespace Bench {
namespace {

constexpr VynId::VynDevId device = 0;
constexpr p4_pd_sess_hdl_t session = 1;
constexpr std::uint16_t vlan = 10;
constexpr SoftChip::MacAddress ingressHost{0x020000000001};
constexpr SoftChip::MacAddress egressHost{0x020000000002};
constexpr SoftChip::DevicePort ingressPort = 0;
constexpr SoftChip::DevicePort egressPort = 1;

void putMac(SoftChip::MacAddress mac, std::uint8_t* at) {
    for (int byte = 5; byte >= 0; --byte) {
        *at++ = static_cast<std::uint8_t>(mac.value >> (8 * byte));
    }
}

}  // namespace

Plexa::IntfId ingress() {
    static Plexa::IntfId const intf = *Plexa::IntfId::fromName("Ethernet1");
    return intf;
}

Plexa::IntfId egress() {
    static Plexa::IntfId const intf = *Plexa::IntfId::fromName("Ethernet2");
    return intf;
}

Vanta::Bytes frame() {
    static std::array<std::uint8_t, 64> const bytes = [] {
        std::array<std::uint8_t, 64> made{};
        putMac(egressHost, made.data());
        putMac(ingressHost, made.data() + 6);
        made[12] = 0x88;
        made[13] = 0xb5;
        return made;
    }();
    return Vanta::Bytes(std::span(bytes));
}

Host::Host(SoftChip::Mode mode)
    : chip({.device = device, .session = session, .mode = mode}), mode_(mode) {
    addPort(ingress(), ingressPort);
    addPort(egress(), egressPort);
    chip.change([](SoftChip::Tables& tables) {
        tables.fdbIs(vlan, ingressHost, SoftChip::LogicalPort::port(ingressPort));
        tables.fdbIs(vlan, egressHost, SoftChip::LogicalPort::port(egressPort));
    });
    chip.drain();
    tracer = VynPacketTracer::packetTracerSmFactory(
        configs, statuses, phase0, true, true, session, device,
        SdkSeam::LearnQuanta::LearnQuantaIs(), SdkSeam::DigestLayout::DigestLayoutIs(), loop,
        systemStatus, Fen::FenCommonSmData::FenCommonSmDataIs(), bridging,
        VynSlice::ChipStatus::ChipStatusIs());
}

void Host::turn() {
    if (mode_ == SoftChip::Mode::stepwise) {
        chip.step();
    }
    loop->turn(Orb::TaskSchedulerRoot::forever);
}

void Host::addPort(Plexa::IntfId const& intf, SoftChip::DevicePort port) {
    VynPortTypes::PortIndex const index(port);
    systemStatus->portInfoIs(intf, {0, index});
    systemStatus->portToIntfIdIs(index, intf);
    bridging->vlanConfigIs(Bridging::VlanId(vlan))->intfIs(intf);
    phase0->ingressPortIs(intf, port);
    chip.change([port](SoftChip::Tables& tables) {
        auto const logical = SoftChip::LogicalPort::port(port);
        tables.portIs(port, true);
        tables.modeIs(logical, SoftChip::PortMode::access(vlan));
        tables.vlanMemberIs(vlan, logical);
    });
}

// ---- Client

Client::Client(Host& host, std::string const& name) : host_(host), name_(name) {
    subscriber_.subscribe<&Client::resultChanged>(status_->publisher(), this);
    host_.statuses->entryIs(name_, status_);
    host_.configs->entryIs(name_, config_);
}

Client::~Client() {
    for (auto const& entry : config_->request()) {
        withdraw(entry.key.number());
    }
    host_.configs->entryDel(name_);
    host_.statuses->entryDel(name_);
}

void Client::add() {
    auto const request = PacketTracer::Request::RequestIs({name_, ++lastNumber_});
    request->etherTypeIs(0x88b5);
    request->intfIs(ingress());
    request->frameIs(frame());
    request->validIs(true);
    config_->requestIs(request);
}

std::optional<std::uint32_t> Client::takeAnswer() {
    if (answered_.empty()) {
        return std::nullopt;
    }
    auto const number = answered_.front();
    answered_.pop_front();
    return number;
}

void Client::resultChanged(Vanta::Change const& change) {
    auto const& id = change.key.get<PacketTracer::RequestId>();
    auto const result = status_->result(id);
    if (!result) {
        return;
    }
    if (freeWatches_.empty()) {
        freeWatches_.push_back(&watches_.emplace_back(this));
    }
    Watch& watch = *freeWatches_.back();
    freeWatches_.pop_back();
    watch.number = id.number();
    watch.subscriber.subscribe<&Watch::resultValid, PacketTracer::Result::validAttribute>(
        result->publisher(), &watch);
}

void Client::Watch::resultValid() {
    subscriber.unsubscribe();
    client->answered_.push_back(number);
    client->freeWatches_.push_back(this);
}

// ---- Load

Load::Load(Host& host, unsigned clients, unsigned inFlight) : host_(host), inFlight_(inFlight) {
    static unsigned last = 0;  // no two clients have one name
    for (unsigned i = 0; i < clients; ++i) {
        clients_.push_back(std::make_unique<Client>(host, "client" + std::to_string(++last)));
    }
    for (unsigned i = 0; i < inFlight; ++i) {
        clients_[i % clients]->add();
    }
}

Load::~Load() {
    for (; inFlight_ > 0; --inFlight_) {
        std::uint32_t number = 0;
        await(number).withdraw(number);
    }
}

void Load::next() {
    std::uint32_t number = 0;
    Client& client = await(number);
    client.withdraw(number);
    client.add();
}

void Load::stand(std::uint64_t requests) {
    for (; requests > 0; --requests) {
        std::uint32_t number = 0;
        await(number).add();
    }
}

Client& Load::await(std::uint32_t& number) {
    for (;;) {
        for (std::size_t i = 0; i < clients_.size(); ++i) {
            Client& client = *clients_[turn_ % clients_.size()];
            if (auto const answered = client.takeAnswer()) {
                number = *answered;
                return client;
            }
            ++turn_;
        }
        host_.turn();
    }
}

}  // namespace Bench
