// A bijection of 64 bits in which every input bit moves about half of the output bits: the last
// step of the splitmix64 generator. Hash tables and the flow hashes are built from it:
//   z = x;  z = (z ^ z >> 30) * 0xbf58476d1ce4e5b9;  z = (z ^ z >> 27) * 0x94d049bb133111eb;
//   result = z ^ z >> 31
#pragma once

#include <cstdint>

namespace SoftChip {

constexpr std::uint64_t mix(std::uint64_t x) {
    x = (x ^ x >> 30) * 0xbf58476d1ce4e5b9;
    x = (x ^ x >> 27) * 0x94d049bb133111eb;
    return x ^ x >> 31;
}

}  // namespace SoftChip
