#include "softchip/Phase0.h"

#include <algorithm>
#include <array>

namespace SoftChip {
namespace {

constexpr std::uint8_t mark = 0xb7;
constexpr std::uint8_t version = 1;

// The CRC of each byte.
constexpr auto crcOfByte = [] {
    std::array<std::uint16_t, 256> table{};
    for (unsigned byte = 0; byte < table.size(); ++byte) {
        unsigned crc = byte << 8;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 0x8000) ? crc << 1 ^ 0x1021 : crc << 1;
        }
        table[byte] = static_cast<std::uint16_t>(crc);
    }
    return table;
}();

std::uint16_t crc16(std::span<std::uint8_t const> bytes) {
    std::uint16_t crc = 0xffff;
    for (auto byte : bytes) {
        crc = static_cast<std::uint16_t>(crc << 8 ^ crcOfByte[(crc >> 8) ^ byte]);
    }
    return crc;
}

}  // namespace

Phase0Bytes encodePhase0(DevicePort port) {
    Phase0Bytes bytes{mark, version, static_cast<std::uint8_t>(port >> 8),
                      static_cast<std::uint8_t>(port)};
    auto const check = crc16(std::span(bytes).first(6));
    bytes[6] = static_cast<std::uint8_t>(check >> 8);
    bytes[7] = static_cast<std::uint8_t>(check);
    return bytes;
}

std::optional<DevicePort> decodePhase0(std::span<std::uint8_t const> bytes) {
    if (bytes.size() != phase0Size) {
        return std::nullopt;
    }
    auto const port = static_cast<DevicePort>(bytes[2] << 8 | bytes[3]);
    if (port > maxDevicePort || !std::ranges::equal(bytes, encodePhase0(port))) {
        return std::nullopt;
    }
    return port;
}

}  // namespace SoftChip
