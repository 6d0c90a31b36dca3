#include "PacketTracer/ClientStatus.h"

namespace PacketTracer {

Vanta::Ptr<ClientStatus> ClientStatus::ClientStatusIs() {
    return Vanta::makeNode<ClientStatus>();
}

Vanta::Ptr<Result> ClientStatus::resultIs(RequestId const& id) {
    if (auto const* entry = result_.find(id)) {
        return entry->value;
    }
    Vanta::Ptr<Result> const result = Result::ResultIs(id);
    result_.insert(id, result);
    publisher_.publish(resultAttribute, Vanta::ValueRef::to(result->id()));
    return result;
}

Vanta::Ptr<Result> ClientStatus::resultDel(RequestId const& id) {
    RequestId const key = id;  // the caller's reference may be the entry's own key
    auto removed = result_.remove(key);
    if (!removed) {
        return nullptr;
    }
    publisher_.publish(resultAttribute, Vanta::ValueRef::to(key), Vanta::ValueRef::to(*removed));
    return std::move(*removed);
}

Kel::TypeInfo const& ClientStatus::typeInfo() const noexcept {
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&ClientStatus::allResults>(resultAttribute, "result", "PacketTracer::Result",
                                                  Kel::AttributeKind::collection),
    };
    static constexpr Kel::TypeInfo info{"ClientStatus", attributes, {}};
    return info;
}

}  // namespace PacketTracer
