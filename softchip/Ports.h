// How the chip names its ports and forwarding domains.
#pragma once

#include <compare>
#include <cstdint>

#include "sdkseam/TraceDigest.h"
#include "softchip/Mix.h"

namespace SoftChip {

using DevicePort = std::uint16_t;  // pipe * portsPerPipe + index in the pipe
using LagId = std::uint16_t;
using VrfId = std::uint16_t;
// What a frame is bridged in: a VLAN, or the internal VLAN of a routed port or sub-interface. 1 to
// 4094; 0 is no domain. An L3 interface is identified by its domain, because no domain has two.
using DomainId = std::uint16_t;

constexpr DevicePort maxDevicePort = 455;
// What a digest says when no single port was chosen.
constexpr DevicePort noEgressPort = SdkSeam::TraceDigest::noEgressPort;
constexpr DomainId noDomain = 0;
constexpr DomainId maxDomain = 4094;
constexpr unsigned pipeCount = 4;
constexpr unsigned portsPerPipe = 128;  // the last pipe has fewer

constexpr unsigned pipeOf(DevicePort port) {
    return port / portsPerPipe;
}
constexpr DevicePort indexInPipe(DevicePort port) {
    return port % portsPerPipe;
}

// What bridging and routing send to: a single port, a whole LAG, or nothing. A member of a LAG is
// never a LogicalPort of its own; a frame that enters at it enters at its LAG.
class LogicalPort {
  public:
    constexpr LogicalPort() = default;
    static constexpr LogicalPort port(DevicePort number) { return {Kind::port, number}; }
    static constexpr LogicalPort lag(LagId number) { return {Kind::lag, number}; }

    constexpr bool isNone() const { return kind_ == Kind::none; }
    constexpr bool isPort() const { return kind_ == Kind::port; }
    constexpr bool isLag() const { return kind_ == Kind::lag; }
    constexpr std::uint16_t number() const { return number_; }

    constexpr std::uint64_t hash() const {
        return mix(std::uint64_t{number_} << 2 | static_cast<std::uint64_t>(kind_));
    }
    friend constexpr auto operator<=>(LogicalPort const&, LogicalPort const&) = default;

  private:
    enum class Kind : std::uint8_t { none, port, lag };
    constexpr LogicalPort(Kind kind, std::uint16_t number) : kind_(kind), number_(number) {}

    Kind kind_ = Kind::none;
    std::uint16_t number_ = 0;
};

}  // namespace SoftChip
