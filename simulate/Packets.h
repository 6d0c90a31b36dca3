// Checks the packets: what is injected, when, and for which job. Each check is one line of
// docs/invariants.md under "Packets". It is told of the calls as they come and looks at the engine
// itself; the model has no part in it. Thread: one only.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Plexa/IntfId.h"
#include "VynPacketTracer/VynPtPktGenSm.h"
#include "sdkseam/SdkCall.h"
#include "simulate/Logbook.h"
#include "softchip/SoftChip.h"

namespace Simulate {

class Packets {
  public:
    explicit Packets(Logbook& logbook) : logbook_(logbook) {}

    // A tracer started with this engine, which is not the one that the generator knows. Null: the
    // tracer is gone.
    void engineIs(VynPacketTracer::PktGenSm const* engine);

    // A call of genOnePkt, with what the chip answered.
    void injected(SdkSeam::SdkCall const& call);
    void appDisabled(bool done) { appDisabled_ = done; }
    void generatorDisabled(bool done);
    // A phase-0 answer is about to be announced.
    void answered(Plexa::IntfId const& intf);

    // Compares the accepted packets with those that went through the pipeline according to the
    // chip's journal: as many as are in the journal, or all if the chip has nothing left to do.
    void checkJournal(SoftChip::Journal const& journal, bool all);

    // Calls of genOnePkt, and those of them that the chip accepted.
    std::uint64_t injections() const { return injections_; }
    std::uint64_t accepted() const { return accepted_.size(); }
    bool lastRefused() const { return lastRefused_; }
    // Whether every phase-0 answer so far was for the job in work and awaited.
    bool orderly() const { return orderly_; }

  private:
    struct Accepted {
        std::uint32_t pipe;
        std::uint8_t portIndex;
        std::uint16_t pktId;
        std::size_t size;
        bool operator==(Accepted const&) const = default;
    };

    Logbook& logbook_;
    VynPacketTracer::PktGenSm const* engine_ = nullptr;
    std::optional<PacketTracer::RequestId> inGenerator_;
    bool appDisabled_ = false;
    std::uint16_t lastPktId_ = 0;
    bool orderly_ = true;
    unsigned answersToUse_ = 0;
    std::vector<Accepted> accepted_;
    std::uint64_t through_ = 0;  // packets that were in the journal when it was last compared
    std::uint64_t injections_ = 0;
    bool lastRefused_ = false;
};

}  // namespace Simulate
