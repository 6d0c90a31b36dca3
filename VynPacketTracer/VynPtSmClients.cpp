// The root's clients: one state machine for each client that both directories have an entry of.
#include <string>
#include <utility>

#include "Kel/Error.h"
#include "Trace/Trace.h"
#include "VynPacketTracer/VynPtSm.h"

namespace VynPacketTracer {
namespace {

Trace::Handle& trace = Trace::handle("VynPtSm");

}  // namespace

void PacketTracerSm::handleClients() {
    Trace::twinlog(trace, 7, "handleClients:");
    if (!made_.config) {
        return;
    }
    for (auto const& entry : made_.config->entry()) {
        if (entry.value) {
            handleClient(Vanta::String(entry.key));
        }
    }
}

struct PacketTracerSm::Entities {
    Vanta::Ptr<PacketTracer::ClientConfig const> config;
    Vanta::Ptr<PacketTracer::ClientStatus> status;

    bool complete() const noexcept { return config && status; }
    bool are(PacketTracerClientSm const& client) const noexcept {
        return client.clientConfig() == config && client.clientStatus() == status;
    }
};

PacketTracerSm::Entities PacketTracerSm::entitiesOf(Vanta::String const& name) const {
    Entities entities;
    if (made_.config) {
        entities.config = made_.config->entity<PacketTracer::ClientConfig const>(name);
    }
    if (made_.status) {
        entities.status = made_.status->entity<PacketTracer::ClientStatus>(name);
    }
    return entities;
}

// The object lives on the stack, and the root knows it as long as it lives. Makings nest.
class PacketTracerSm::Making {
  public:
    Making(PacketTracerSm& root, Vanta::String const& name) noexcept
        : root_(root), name_(name), outer_(std::exchange(root.makings_, this)) {}
    Making(Making const&) = delete;
    Making& operator=(Making const&) = delete;
    ~Making() { root_.makings_ = outer_; }

    Vanta::String const& name() const noexcept { return name_; }
    Making const* outer() const noexcept { return outer_; }

  private:
    PacketTracerSm& root_;
    Vanta::String const& name_;
    Making* const outer_;
};

bool PacketTracerSm::isBeingMade(Vanta::String const& name) const noexcept {
    Making const* making = makings_;
    while (making != nullptr && !(making->name() == name)) {
        making = making->outer();
    }
    return making != nullptr;
}

void PacketTracerSm::handleClient(Vanta::String const& name) {
    // A subscriber that hears of a job or a result may release the tracer.
    Vanta::Ptr<PacketTracerSm> const alive(this);
    Trace::twinlog(trace, 7, "handleClient:client %s", name);
    Entities const entities = entitiesOf(name);
    if (!entities.complete()) {
        clientSmDel(name);
    } else if (clientSmHas(name) && !isBeingMade(name)) {
        clientSmIs(name, entities);
    } else {
        clientSmUntilItFits(name);
    }
}

// A new state machine handles its client's requests before it is added to the collection. A
// subscriber that hears of their jobs and results may change the client, so the directories are
// looked at again.
void PacketTracerSm::clientSmUntilItFits(Vanta::String const& name) {
    Making const making(*this, name);
    while (true) {
        auto const client = clientSm(name);
        Entities const entities = entitiesOf(name);
        if (client && !(entities.complete() && entities.are(*client))) {
            clientSmDel(name);
        } else if (client || !entities.complete()) {
            return;
        } else {
            clientSmIs(name, entities);
        }
    }
}

void PacketTracerSm::clientSmIs(Vanta::String const& name, Entities const& entities) {
    clientSmIs(name, entities.config, entities.status, pktGenCfg_, made_.systemStatus, made_.fcsd,
               made_.bridgingConfig, made_.chipStatus);
}

namespace {

// A client's state machine keeps the objects that it was made with; to replace one of them, remove
// the state machine first.
template <class T>
void checkSameObject(PacketTracerClientSm const& client, std::string_view attribute,
                     Vanta::Ptr<T> const& made, Vanta::Ptr<T> const& given) {
    if (!(made == given)) {
        std::string const entry = "client " + std::string(client.name().view());
        throw Kel::ReinstantiationError(client.typeInfo(), attribute, entry, made, given);
    }
}

void checkSameArguments(PacketTracerClientSm const& client,
                        PacketTracerClientSm::Arguments const& given) {
    PacketTracerClientSm::Arguments const& made = client.arguments();
    checkSameObject(client, "clientConfig", made.clientConfig, given.clientConfig);
    checkSameObject(client, "clientStatus", made.clientStatus, given.clientStatus);
    checkSameObject(client, "pktGenConfig", made.pktGenConfig, given.pktGenConfig);
    checkSameObject(client, "systemStatus", made.systemStatus, given.systemStatus);
    checkSameObject(client, "fcsd", made.fcsd, given.fcsd);
    checkSameObject(client, "bridgingConfig", made.bridgingConfig, given.bridgingConfig);
    checkSameObject(client, "chipStatus", made.chipStatus, given.chipStatus);
}

}  // namespace

Vanta::Ptr<PacketTracerClientSm> PacketTracerSm::clientSmIs(
    Vanta::String const& name, Vanta::Ptr<PacketTracer::ClientConfig const> const& clientConfig,
    Vanta::Ptr<PacketTracer::ClientStatus> const& clientStatus,
    Vanta::Ptr<PktGenConfig> const& pktGenConfig,
    Vanta::Ptr<VynSystem::SystemStatus const> const& systemStatus,
    Vanta::Ptr<Fen::FenCommonSmData const> const& fcsd,
    Vanta::Ptr<Bridging::Config const> const& bridgingConfig,
    Vanta::Ptr<VynSlice::ChipStatus const> const& chipStatus) {
    if (auto const existing = clientSm(name)) {
        checkSameArguments(*existing, {name, clientConfig, clientStatus, pktGenConfig, systemStatus,
                                       fcsd, bridgingConfig, chipStatus});
        return existing;
    }
    auto const made = packetTracerClientSmFactory(name, clientConfig, clientStatus, pktGenConfig,
                                                  systemStatus, fcsd, bridgingConfig, chipStatus);
    // Its requests were handled meanwhile: a subscriber that heard of that may have made another
    // already.
    clientSm_.findOrInsert(name).value = made;
    return made;
}

Vanta::Ptr<PacketTracerClientSm> PacketTracerSm::clientSmDel(Vanta::String const& name) {
    return clientSm_.remove(name).value_or(nullptr);
}

void PacketTracerSm::clientSmDelAll() {
    clientSm_.eachKeyUntilLast([this](Vanta::String const& name) { clientSmDel(name); });
}

}  // namespace VynPacketTracer
