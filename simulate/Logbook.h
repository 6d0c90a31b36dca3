// Writes down what the tracer does: every trace statement, published change and call of the chip,
// in order; and, apart from that, what the chip told the tracer (the wire).
//
// It also keeps a copy of jobs, answers and results that it makes from publications alone. So it
// notices a publication that changed nothing, and unpublished() finds a change that nobody
// published.
//
// While it lives it hears every publication and every trace statement. Thread: one only.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "PacketTracer/ClientStatus.h"
#include "Trace/Tap.h"
#include "Vanta/Tap.h"
#include "VynPacketTracer/VynPtTypes.h"
#include "sdkseam/SdkCall.h"
#include "simulate/Text.h"
#include "simulate/Wire.h"

namespace Simulate {

// A breach of one of the invariants that docs/invariants.md lists.
struct Breach {
    std::string invariant;
    std::string detail;
};

class Logbook {
  public:
    Logbook() = default;

    template <class... Parts>
    void note(Parts const&... parts) {
        log_.push_back(joined(parts...));
    }
    // A call of the chip: its line, and its answer for the wire.
    void call(SdkSeam::SdkCall const& call);

    std::vector<std::string> const& log() const { return log_; }
    std::vector<std::string> takeLog() { return std::exchange(log_, {}); }
    Wire& wire() { return wire_; }
    // The results whose addition was published since this was called last.
    std::set<PacketTracer::RequestId> takeAddedResults() {
        return std::exchange(addedResults_, {});
    }

    // Whether a trace statement of the tracer is a breach, because there should be no tracer.
    void silenceIs(bool silence) { silence_ = silence; }

    // The first breach that was noticed since this was called last.
    std::optional<Breach> takeBreach() { return std::exchange(breach_, std::nullopt); }
    void breachIs(Breach breach);

    // Forgets what is known of a new collection's address: it belonged to another one, which was
    // destroyed without a publication.
    void forget(Vanta::Node const* collection) { present_.erase(collection); }

    // Compares the copy with what there is. The tracer's collections may be null.
    std::optional<Breach> unpublished(
        VynPacketTracer::PktGenConfig const* jobs, VynPacketTracer::PktGenStatus const* answers,
        std::vector<PacketTracer::ClientStatus const*> const& results) const;

  private:
    using Node = Vanta::Node;
    using Values = std::map<Vanta::AttributeNumber, std::string>;

    void traced(std::string_view handle, unsigned level, std::string_view text);
    void published(Vanta::Change const& change);
    void presence(Node const* collection, std::string_view what, PacketTracer::RequestId const& id,
                  Node const* entry);
    void value(Node const* record, Vanta::AttributeNumber attribute, std::string value,
               std::string_view line);
    void statusPublished(VynPacketTracer::PktGenStatusData const& status,
                         Vanta::AttributeNumber attribute);
    void resultPublished(PacketTracer::Result const& result, Vanta::AttributeNumber attribute,
                         Vanta::ValueRef key);

    std::vector<std::string> log_;
    Wire wire_;
    std::set<PacketTracer::RequestId> addedResults_;
    bool silence_ = true;
    std::optional<Breach> breach_;
    std::map<Node const*, std::set<PacketTracer::RequestId>> present_;  // by collection
    std::map<Node const*, Values> values_;                              // by answer or result
    Vanta::Tap const publications_ = Vanta::Tap::to<&Logbook::published>(this);
    Trace::Tap const traces_ = Trace::Tap::to<&Logbook::traced>(this);
};

// A request's id as the lines have it: "A/3".
std::string line(PacketTracer::RequestId const& id);

}  // namespace Simulate
