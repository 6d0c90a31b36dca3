#include "PacketTracer/ClientConfig.h"

#include <utility>

#include "Kel/Error.h"

namespace PacketTracer {

Vanta::Ptr<ClientConfig> ClientConfig::ClientConfigIs() {
    return Vanta::makeNode<ClientConfig>();
}

void ClientConfig::requestIs(Vanta::Ptr<Request> request) {
    if (!request) {
        throw Kel::NullArgumentError("PacketTracer::ClientConfig", "request");
    }
    RequestId const id = request->id();
    Vanta::Ptr<Request>& place = request_.findOrInsert(id).value;
    if (place == request) {
        return;
    }
    Vanta::Ptr<Request> const old = std::exchange(place, std::move(request));
    publisher_.publish(requestAttribute, Vanta::ValueRef::to(id), Vanta::ValueRef::to(old));
}

Vanta::Ptr<Request> ClientConfig::requestDel(RequestId const& id) {
    RequestId const key = id;  // the caller's reference may be the entry's own key
    auto removed = request_.remove(key);
    if (!removed) {
        return nullptr;
    }
    publisher_.publish(requestAttribute, Vanta::ValueRef::to(key), Vanta::ValueRef::to(*removed));
    return std::move(*removed);
}

void ClientConfig::descriptionIs(Vanta::String const& description) {
    if (!(description == description_)) {
        Vanta::String const old = std::exchange(description_, description);
        publisher_.publish(descriptionAttribute, {}, Vanta::ValueRef::to(old));
    }
}

Kel::TypeInfo const& ClientConfig::typeInfo() const noexcept {
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&ClientConfig::allRequests>(
            requestAttribute, "request", "PacketTracer::Request", Kel::AttributeKind::collection),
        Kel::attribute<&ClientConfig::description>(descriptionAttribute, "description",
                                                   "Vanta::String"),
    };
    static constexpr Kel::TypeInfo info{"ClientConfig", attributes, {}};
    return info;
}

}  // namespace PacketTracer
