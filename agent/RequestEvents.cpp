#include "agent/RequestEvents.h"

#include "PacketTracer/ConstructPacket.h"
#include "PacketTracer/PacketSize.h"

namespace Agent {
namespace {

using PacketTracer::Request;
using Attribute = Scenario::Do::RequestAttribute;

Vanta::Bytes rawOf(Request const& request) {
    if (!request.frame().empty() || request.fields() == nullptr) {
        return request.frame();
    }
    // No longer packet is ever injected, and none can be built.
    return PacketTracer::constructFrame(*request.fields(), request.etherType(),
                                        PacketTracer::maximumFrameSize);
}

}  // namespace

Scenario::Do::Request requestEvent(Request const& request) {
    return {.id = request.id(),
            .intf = request.intf(),
            .etherType = request.etherType(),
            .mpls = request.mpls(),
            .gre = request.gre(),
            .valid = request.valid(),
            .raw = rawOf(request)};
}

std::vector<Scenario::Do::RequestSet> requestSetEvents(Request const& request,
                                                       Vanta::AttributeNumber attribute) {
    PacketTracer::RequestId const& id = request.id();
    auto const raw = [&]() -> Scenario::Do::RequestSet {
        return {id, Attribute::raw, rawOf(request)};
    };
    switch (static_cast<Request::Attribute>(attribute)) {
        case Request::validAttribute:
            return {{id, Attribute::valid, request.valid()}};
        case Request::etherTypeAttribute:
            if (request.fields() != nullptr) {
                return {{id, Attribute::etherType, request.etherType()}, raw()};
            }
            return {{id, Attribute::etherType, request.etherType()}};
        case Request::mplsAttribute:
            return {{id, Attribute::mpls, request.mpls()}};
        case Request::greAttribute:
            return {{id, Attribute::gre, request.gre()}};
        case Request::intfAttribute:
            return {{id, Attribute::intf, request.intf()}};
        case Request::frameAttribute:
        case Request::fieldsAttribute:
            return {raw()};
        case Request::idAttribute:
            break;
    }
    return {};
}

}  // namespace Agent
