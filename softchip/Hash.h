// The chip's flow hashes. Stated in full, because a tracer is asked why a flow went this way, and a
// flow must go the same way in every build.
//
// A hash starts from a seed and takes 64-bit words in order: h = mix(h ^ word) (Mix.h). The choice
// among `count` is ((h >> 32) * count) >> 32.
//
//   ECMP, seed 0x45434d5068617368, five words: source address, upper and lower half; destination
//   address, upper and lower half; protocol << 32 | source port << 16 | destination port. An IPv4
//   address is the upper half of its upper word, all else zero. The ports are zero without TCP or
//   UDP, and in every fragment, the first too, so that a packet's fragments stay together.
//
//   LAG, seed 0x4c41476d656d6265: for IPv4 and IPv6 the same five words (of the frame as it came
//   in); for other frames, and for those with a broken IP header, three: destination MAC, source
//   MAC, EtherType.
//
// The seeds differ so that flows for which ECMP picks the same next hop still spread over the
// members of that next hop's LAG.
#pragma once

#include <cstddef>
#include <cstdint>

namespace SoftChip {

struct ParsedFrame;

std::uint64_t ecmpHash(ParsedFrame const& frame);
std::uint64_t lagHash(ParsedFrame const& frame);

// Which of `count` (at least one) the hash picks.
constexpr std::size_t pick(std::uint64_t hash, std::size_t count) {
    return static_cast<std::size_t>((hash >> 32) * count >> 32);
}

}  // namespace SoftChip
