#include "PacketTracer/Result.h"

#include <utility>

namespace PacketTracer {

Vanta::Ptr<Result> Result::ResultIs(RequestId id) {
    return Vanta::makeNode<Result>(std::move(id));
}

void Result::stateIs(State state) {
    if (state != state_) {
        State const old = std::exchange(state_, state);
        publisher_.publish(stateAttribute, {}, Vanta::ValueRef::to(old));
    }
}

void Result::validIs(bool valid) {
    if (valid != valid_) {
        bool const old = std::exchange(valid_, valid);
        publisher_.publish(validAttribute, {}, Vanta::ValueRef::to(old));
    }
}

void Result::egressIntfIs(ResultEntry const& entry) {
    if (!egressIntf_.has(entry)) {
        egressIntf_.insert(entry);
        publisher_.publish(egressIntfAttribute, Vanta::ValueRef::to(entry));
    }
}

Kel::TypeInfo const& Result::typeInfo() const noexcept {
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&Result::id>(idAttribute, "id", "PacketTracer::RequestId"),
        Kel::attribute<&Result::state>(stateAttribute, "state", "PacketTracer::State"),
        Kel::attribute<&Result::valid>(validAttribute, "valid", "bool"),
        Kel::attribute<&Result::egressIntf>(egressIntfAttribute, "egressIntf",
                                            "PacketTracer::ResultEntry",
                                            Kel::AttributeKind::collection),
    };
    static constexpr Kel::TypeInfo info{"Result", attributes, {}};
    return info;
}

}  // namespace PacketTracer
