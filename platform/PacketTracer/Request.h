// One question: where would this packet go, if it came in on this interface?
//
// The client fills a request in and then sets `valid`. The packet is given either as a whole frame
// or by its fields. If both are there, the frame counts; if neither is, as in a new request, no
// packet can be built. Every setter stores and publishes a change only when the value differs.
// Thread: the event thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "Kel/Object.h"
#include "PacketTracer/PacketFields.h"
#include "PacketTracer/RequestId.h"
#include "Plexa/IntfId.h"
#include "Vanta/Bytes.h"
#include "Vanta/Publisher.h"
#include "VynExport.h"

namespace PacketTracer {

class VYN_EXPORT Request final : public Kel::Object {
  public:
    enum Attribute : Vanta::AttributeNumber {
        idAttribute = Kel::firstAttribute,
        validAttribute,
        etherTypeAttribute,
        mplsAttribute,
        greAttribute,
        intfAttribute,
        frameAttribute,
        fieldsAttribute,
    };

    // A new request, not valid yet, with an empty frame and no fields.
    static Vanta::Ptr<Request> RequestIs(RequestId id);

    RequestId const& id() const noexcept { return id_; }

    // Whether the client has finished writing the request.
    bool valid() const noexcept { return valid_; }
    void validIs(bool valid);

    // The packet's EtherType, the innermost one; it may be 0 if there are fields that have
    // addresses.
    std::uint16_t etherType() const noexcept { return etherType_; }
    void etherTypeIs(std::uint16_t etherType);

    // Whether the packet carries an MPLS label stack, a GRE header.
    bool mpls() const noexcept { return mpls_; }
    void mplsIs(bool mpls);
    bool gre() const noexcept { return gre_; }
    void greIs(bool gre);

    // The interface that the packet comes in on.
    Plexa::IntfId const& intf() const noexcept { return intf_; }
    void intfIs(Plexa::IntfId const& intf);

    // The whole frame, taken as it is; an empty one is none.
    Vanta::Bytes const& frame() const noexcept { return frame_; }
    void frameIs(Vanta::Bytes frame);

    // The fields, or null; valid until they are replaced. std::nullopt as argument removes them.
    // The old value that is published is a PacketFields, or empty if there were no fields.
    PacketFields const* fields() const noexcept { return fields_.get(); }
    void fieldsIs(std::optional<PacketFields> fields);

    Vanta::Publisher const& publisher() const noexcept { return publisher_; }
    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    explicit Request(RequestId id) : id_(std::move(id)) {}
    ~Request() override = default;

    template <class T>
    void set(T& stored, T value, Attribute attribute);

    RequestId id_;
    Plexa::IntfId intf_;
    Vanta::Bytes frame_;
    std::unique_ptr<PacketFields const> fields_;  // on the heap: most requests have a frame
    std::uint16_t etherType_ = 0;
    bool valid_ = false;
    bool mpls_ = false;
    bool gre_ = false;
    Vanta::Publisher publisher_{this};
};

}  // namespace PacketTracer
