#include "softchip/Hash.h"

#include "softchip/Frame.h"
#include "softchip/Mix.h"

namespace SoftChip {
namespace {

constexpr std::uint64_t ecmpSeed = 0x45434d5068617368;
constexpr std::uint64_t lagSeed = 0x4c41476d656d6265;

template <class... Words>
std::uint64_t hashOf(std::uint64_t seed, Words... words) {
    ((seed = mix(seed ^ words)), ...);
    return seed;
}

std::uint64_t ipHash(std::uint64_t seed, ParsedFrame const& frame) {
    bool const ports = frame.hasPorts() && !frame.fragment;
    auto const l4 = std::uint64_t{frame.protocol} << 32 |
                    (ports ? std::uint64_t{frame.srcPort} << 16 | frame.dstPort : 0);
    return hashOf(seed, frame.srcIp.hi, frame.srcIp.lo, frame.dstIp.hi, frame.dstIp.lo, l4);
}

}  // namespace

std::uint64_t ecmpHash(ParsedFrame const& frame) {
    return ipHash(ecmpSeed, frame);
}

std::uint64_t lagHash(ParsedFrame const& frame) {
    if (frame.hasIp) {
        return ipHash(lagSeed, frame);
    }
    return hashOf(lagSeed, frame.dst.value, frame.src.value, std::uint64_t{frame.etherType});
}

}  // namespace SoftChip
