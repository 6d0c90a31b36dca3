// Reports to be printed by tests.
#pragma once

#include "VynPortTypes/PortIndex.h"
#include "cli/FrameReport.h"

namespace Cli {

inline PacketTracer::ResultEntry entryOf(char const* physical, char const* logical = "") {
    return PacketTracer::ResultEntry::fromPhysicalAndLogicalIntf(*Plexa::IntfId::fromName(physical),
                                                                 *Plexa::IntfId::fromName(logical));
}

// An ARP-like frame of 60 bytes that came in on Ethernet1 and ended with this outcome.
inline FrameReport someReport(Agent::Outcome outcome) {
    using Agent::Outcome;
    using PacketTracer::State;
    std::vector<std::uint8_t> bytes(60);
    bytes[0] = bytes[6] = 0x02;
    bytes[12] = 0x88;
    bytes[13] = 0xb5;
    FrameReport report;
    report.packet = packetOfFrame(bytes);
    report.ingress = *Plexa::IntfId::fromName("Ethernet1");
    report.answer.outcome = outcome;
    if (outcome != Outcome::noAnswer) {
        bool const isFound = outcome == Outcome::forwarded || outcome == Outcome::flooded;
        report.answer.state = outcome == Outcome::refused ? State::notTraceable
                              : isFound                   ? State::egressFound
                                                          : State::noEgress;
    }
    if (outcome != Outcome::refused && outcome != Outcome::unknownIngress) {
        report.answer.injection.emplace();
        report.answer.injection->egressPort =
            outcome == Outcome::forwarded ? 7 : VynPortTypes::PortIndex::invalid;
        report.answer.injection->l2Domain = 10;
        report.answer.injection->dropped = outcome == Outcome::dropped;
    }
    return report;
}

}  // namespace Cli
