#include "cli/FrameFacts.h"

#include <cstddef>

#include "Net/EtherType.h"
#include "Net/IpProtocol.h"
#include "softchip/Frame.h"

namespace Cli {
namespace {

constexpr std::size_t addressesSize = 12;
constexpr std::size_t tagSize = 4;

// The chip's parser takes two tags at most; this looks behind any number of them.
std::uint16_t innermostEtherType(std::span<std::uint8_t const> frame) {
    for (std::size_t at = addressesSize; at + 2 <= frame.size(); at += tagSize) {
        auto const etherType = static_cast<std::uint16_t>(frame[at] << 8 | frame[at + 1]);
        if (!Net::EtherType::isTag(etherType)) {
            return etherType;
        }
    }
    return 0;
}

}  // namespace

FrameFacts frameFacts(std::span<std::uint8_t const> frame) {
    auto const parsed = SoftChip::parseFrame(frame);
    FrameFacts facts;
    facts.etherType = innermostEtherType(frame);
    facts.mpls = Net::EtherType::isMpls(facts.etherType);
    facts.gre = parsed.isIp() && parsed.hasIp && parsed.protocol == Net::IpProtocol::gre;
    return facts;
}

}  // namespace Cli
