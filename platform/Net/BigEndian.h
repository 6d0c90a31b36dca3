// Network order: the octets of a number, the highest first.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <span>

namespace Net {

constexpr std::uint64_t fromBigEndian(std::span<std::uint8_t const> octets) noexcept {
    std::uint64_t number = 0;
    for (std::uint8_t const octet : octets) {
        number = number << 8 | octet;
    }
    return number;
}

constexpr std::array<std::uint8_t, 8> toBigEndian(std::uint64_t number) noexcept {
    bool const isLittle = std::endian::native == std::endian::little;
    return std::bit_cast<std::array<std::uint8_t, 8>>(isLittle ? __builtin_bswap64(number)
                                                               : number);
}

}  // namespace Net
