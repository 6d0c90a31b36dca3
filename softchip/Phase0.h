// The bytes that a port's parser puts ahead of a frame. The pipeline learns the ingress port from
// them and from nowhere else.
//
// Layout, 8 bytes:
//   0     0xb7, the mark of these bytes
//   1     1, the version of this layout
//   2, 3  device port, big endian, 0 to 455
//   4, 5  zero
//   6, 7  check, big endian: CRC-16 (polynomial 0x1021, start 0xffff) of bytes 0 to 5
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "softchip/Ports.h"

namespace SoftChip {

constexpr std::size_t phase0Size = 8;
using Phase0Bytes = std::array<std::uint8_t, phase0Size>;

// Precondition: port <= maxDevicePort. (For a port above it the result does not decode.)
Phase0Bytes encodePhase0(DevicePort port);

// The ingress port, or nothing if the bytes are not what encodePhase0 makes for any port.
std::optional<DevicePort> decodePhase0(std::span<std::uint8_t const> bytes);

}  // namespace SoftChip
