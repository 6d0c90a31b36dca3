// One answer: how the trace ended, and the egress interfaces that it found.
//
//   state         meaning
//   initial       nothing known yet
//   inProgress    not used by this system
//   notTraceable  the request was refused, or its packet cannot be built
//   noEgress      the trace ended without an egress interface
//   egressFound   `egressIntf` says where the packet went
//
// A result is complete when `valid` is true. Thread: the event thread.
#pragma once

#include <cstdint>

#include "Kel/Collection.h"
#include "Kel/Object.h"
#include "PacketTracer/RequestId.h"
#include "PacketTracer/ResultEntry.h"
#include "Vanta/Publisher.h"
#include "VynExport.h"

namespace PacketTracer {

enum class State : std::uint8_t {
    initial = 0,
    inProgress = 1,
    notTraceable = 2,
    noEgress = 3,
    egressFound = 4,
};

inline void reflectValue(Kel::AttributeSink& sink, State state) {
    sink.number(static_cast<std::uint64_t>(state));
}

class VYN_EXPORT Result final : public Kel::Object {
  public:
    enum Attribute : Vanta::AttributeNumber {
        idAttribute = Kel::firstAttribute,
        stateAttribute,
        validAttribute,
        egressIntfAttribute,
    };
    struct Member {};
    using EgressIntfs = Kel::Collection<ResultEntry, Member>;

    static Vanta::Ptr<Result> ResultIs(RequestId id);

    RequestId const& id() const noexcept { return id_; }

    State state() const noexcept { return state_; }
    void stateIs(State state);
    bool valid() const noexcept { return valid_; }
    void validIs(bool valid);

    // The egress entries, a set in the order in which they were found.
    EgressIntfs const& egressIntf() const noexcept { return egressIntf_; }
    // Adds an entry; publishes it as key if it was not there.
    void egressIntfIs(ResultEntry const& entry);

    Vanta::Publisher const& publisher() const noexcept { return publisher_; }
    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    explicit Result(RequestId id) : id_(std::move(id)) {}
    ~Result() override = default;

    // The small members come first, in the padding behind the base's flags.
    State state_ = State::initial;
    bool valid_ = false;
    RequestId id_;
    EgressIntfs egressIntf_;
    Vanta::Publisher publisher_{this};
};

}  // namespace PacketTracer
