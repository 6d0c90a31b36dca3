// A frame for the chip's parser and pipeline. The first two bytes of an input choose the ingress
// port, the third whether its phase-0 bytes are whole; the rest is the frame. An IPv4 header's
// checksum is put right unless it is zero: few random frames have a right one, and the others are
// dropped early.
#include <algorithm>
#include <vector>

#include "Target.h"
#include "agent/DeriveTables.h"
#include "cli/ChipNames.h"
#include "cli/FrameText.h"
#include "softchip/Frame.h"
#include "softchip/Phase0.h"
#include "softchip/Pipeline.h"
#include "switchfile/SwitchFile.h"

namespace {

using Fuzz::check;
using SoftChip::Decision;

std::size_t u16(std::vector<std::uint8_t> const& frame, std::size_t at) {
    return at + 1 < frame.size() ? std::size_t{frame[at]} << 8 | frame[at + 1] : 0;
}

void putChecksumRight(std::vector<std::uint8_t>& frame) {
    std::size_t at = 12;
    for (int tags = 0; tags < 2 && (u16(frame, at) == 0x8100 || u16(frame, at) == 0x88a8); ++tags) {
        at += 4;
    }
    std::size_t const header = at + 2;
    if (u16(frame, at) != 0x0800 || header + 20 > frame.size() || u16(frame, header + 10) == 0) {
        return;
    }
    std::size_t const length =
        std::min((frame[header] & std::size_t{15}) * 4, frame.size() - header);
    std::size_t sum = 0;
    for (std::size_t i = 0; i + 1 < length; i += 2) {
        sum += i == 10 ? 0 : u16(frame, header + i);
    }
    sum = (sum & 0xffff) + (sum >> 16);
    sum = ~((sum & 0xffff) + (sum >> 16));
    frame[header + 10] = static_cast<std::uint8_t>(sum >> 8);
    frame[header + 11] = static_cast<std::uint8_t>(sum);
}

// What a decision promises about itself.
void checkDecision(SoftChip::Tables const& tables, Decision const& decision) {
    auto const* const port = tables.port(decision.egressPort);
    if (decision.drop) {
        check(decision.egressPort == SoftChip::noEgressPort && !decision.routed,
              "what is dropped leaves nowhere");
    } else if (decision.egressPort == SoftChip::noEgressPort) {
        // A routed port's internal VLAN is known by its L3 interface.
        check(tables.vlan(decision.l2Domain) != nullptr ||
                  tables.l3Intf(decision.l2Domain) != nullptr,
              "what is flooded is flooded in a VLAN");
    } else {
        check(port != nullptr, "a frame leaves by a port that exists");
    }
    check(decision.l2Domain <= SoftChip::maxDomain, "a domain is a domain");
}

void checkFrame(std::span<std::uint8_t const> frame) {
    auto const parsed = SoftChip::parseFrame(frame);
    check(!Cli::frameText(parsed).empty(), "a frame has a text");
    check(parsed.tagCount <= 2, "two tags at most");
    if (parsed.hasPorts() || parsed.hasIcmp()) {
        check(parsed.isIp() && parsed.hasIp && !parsed.laterFragment,
              "a transport header lies in a packet's first fragment");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    // A path relative to the folder that the target runs in: the project's location must not
    // influence which inputs are tried.
    static auto const model = SwitchFile::readSwitchFile("examples/border.json");
    static SoftChip::Tables const tables = Agent::deriveTables(model);
    static Cli::ChipNames const names(model);
    if (size < 3) {
        return 0;
    }
    std::vector<std::uint8_t> frame(data + 3, data + size);
    putChecksumRight(frame);
    auto phase0 =
        SoftChip::encodePhase0(static_cast<std::uint16_t>((data[0] | data[1] << 8) % 456));
    if (data[2] != 0) {
        phase0[data[2] % phase0.size()] ^= data[2];
    }
    checkFrame(frame);
    SoftChip::Explanation explanation;
    auto const quiet = SoftChip::decide(tables, phase0, frame);
    auto const told = SoftChip::decide(tables, phase0, frame, &explanation);
    check(quiet == told, "an explanation changes nothing");
    check(!explanation.entries().empty() && explanation.entries().back().step == told.step &&
              explanation.entries().back().reason == told.reason,
          "the last step is the decision's");
    check(names.steps(explanation).size() == explanation.entries().size(),
          "every step can be put into words");
    checkDecision(tables, quiet);
    return 0;
}
