#include "PacketTracer/Request.h"

#include <utility>

namespace PacketTracer {

Vanta::Ptr<Request> Request::RequestIs(RequestId id) {
    return Vanta::makeNode<Request>(std::move(id));
}

template <class T>
void Request::set(T& stored, T value, Attribute attribute) {
    if (stored == value) {
        return;
    }
    T const old = std::exchange(stored, std::move(value));
    publisher_.publish(attribute, {}, Vanta::ValueRef::to(old));
}

void Request::validIs(bool valid) {
    set(valid_, valid, validAttribute);
}

void Request::etherTypeIs(std::uint16_t etherType) {
    set(etherType_, etherType, etherTypeAttribute);
}

void Request::mplsIs(bool mpls) {
    set(mpls_, mpls, mplsAttribute);
}

void Request::greIs(bool gre) {
    set(gre_, gre, greAttribute);
}

void Request::intfIs(Plexa::IntfId const& intf) {
    set(intf_, intf, intfAttribute);
}

void Request::frameIs(Vanta::Bytes frame) {
    set(frame_, std::move(frame), frameAttribute);
}

void Request::fieldsIs(std::optional<PacketFields> fields) {
    if (fields_ == nullptr ? !fields : fields == *fields_) {
        return;
    }
    std::unique_ptr<PacketFields const> changed;
    if (fields) {
        changed = std::make_unique<PacketFields const>(*std::move(fields));
    }
    auto const old = std::exchange(fields_, std::move(changed));
    publisher_.publish(fieldsAttribute, {}, old ? Vanta::ValueRef::to(*old) : Vanta::ValueRef());
}

Kel::TypeInfo const& Request::typeInfo() const noexcept {
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&Request::id>(idAttribute, "id", "PacketTracer::RequestId"),
        Kel::attribute<&Request::valid>(validAttribute, "valid", "bool"),
        Kel::attribute<&Request::etherType>(etherTypeAttribute, "etherType", "U16"),
        Kel::attribute<&Request::mpls>(mplsAttribute, "mpls", "bool"),
        Kel::attribute<&Request::gre>(greAttribute, "gre", "bool"),
        Kel::attribute<&Request::intf>(intfAttribute, "intf", "Plexa::IntfId"),
        Kel::attribute<&Request::frame>(frameAttribute, "frame", "Vanta::Bytes"),
        Kel::attribute<&Request::fields>(fieldsAttribute, "fields", "PacketTracer::PacketFields"),
    };
    static constexpr Kel::TypeInfo info{"Request", attributes, {}};
    return info;
}

}  // namespace PacketTracer
