#include "simulate/Packets.h"

#include <algorithm>
#include <numeric>

namespace Simulate {

using VynPacketTracer::PktGenState;

void Packets::engineIs(VynPacketTracer::PktGenSm const* engine) {
    engine_ = engine;
    inGenerator_.reset();
    appDisabled_ = false;
    lastPktId_ = 0;
    orderly_ = true;
    answersToUse_ = 0;
}

void Packets::injected(SdkSeam::SdkCall const& call) {
    ++injections_;
    lastRefused_ = call.rc != 0;
    auto const breach = [this](auto const&... parts) {
        logbook_.breachIs({"packets", joined(parts...)});
    };
    if (engine_ == nullptr || !engine_->curCfg()) {
        return breach("packet ", call.pktId, " was injected without a job");
    }
    auto const& job = *engine_->curCfg();
    if (!std::ranges::equal(call.pkt, job.pkt().view()) || call.pipe != job.ingPortInfo().pipe() ||
        call.portIndex != job.ingPortInfo().port().value() % 256) {
        breach("packet ", call.pktId, " is not that of the job in work, ", line(job.req()));
    }
    if (static_cast<std::uint16_t>(lastPktId_ + 1) != call.pktId) {
        breach("packet id ", call.pktId, " follows ", lastPktId_);
    }
    lastPktId_ = call.pktId;
    if (inGenerator_ && *inGenerator_ != job.req()) {
        breach(line(job.req()), " was injected while ", line(*inGenerator_),
               " is in the generator");
    }
    if (orderly_ && answersToUse_ == 0) {
        breach(line(job.req()), " was injected without a phase-0 answer of its own");
    }
    answersToUse_ = 0;
    if (call.rc == 0) {
        inGenerator_ = job.req();
        appDisabled_ = false;
        accepted_.push_back({call.pipe, call.portIndex, call.pktId, call.pkt.size()});
    }
}

void Packets::generatorDisabled(bool done) {
    if (done && appDisabled_) {
        inGenerator_.reset();
    }
}

void Packets::answered(Plexa::IntfId const& intf) {
    bool const awaited = engine_ != nullptr && engine_->curCfg() &&
                         engine_->state() == PktGenState::waitPhase0Data &&
                         engine_->curCfg()->ingIntf() == intf;
    orderly_ = orderly_ && awaited;
    answersToUse_ = 1;
}

// The journal is read only when its counters say that there is something new.
void Packets::checkJournal(SoftChip::Journal const& journal, bool all) {
    auto const injected = journal.counters().injected;
    auto const count = std::accumulate(injected.begin(), injected.end(), std::uint64_t{0});
    if (count == through_ && (!all || count == accepted_.size())) {
        return;
    }
    through_ = count;
    std::vector<Accepted> through;
    for (auto const& entry : journal.entries()) {
        if (entry.kind == SoftChip::JournalEntry::Kind::injection) {
            through.push_back({entry.pipe, entry.portIndex, entry.pktId, entry.pktBytes});
        }
    }
    bool const enough =
        all ? through.size() == accepted_.size() : through.size() <= accepted_.size();
    if (!enough || !std::equal(through.begin(), through.end(), accepted_.begin())) {
        logbook_.breachIs({"packets", joined(accepted_.size(), " packets were accepted, ",
                                             through.size(), " others went through the chip")});
    }
}

}  // namespace Simulate
