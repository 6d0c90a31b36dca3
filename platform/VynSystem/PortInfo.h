// Where a port is on the chip: its pipe and its index.
#pragma once

#include <cstdint>

#include "Kel/Reflection.h"
#include "VynPortTypes/PortIndex.h"

namespace VynSystem {

// A plain value. A fresh one has pipe 0 and the invalid port index.
class PortInfo {
  public:
    PortInfo() noexcept = default;
    PortInfo(std::uint8_t pipe, VynPortTypes::PortIndex port) noexcept : pipe_(pipe), port_(port) {}

    std::uint8_t pipe() const noexcept { return pipe_; }
    void pipeIs(std::uint8_t pipe) noexcept { pipe_ = pipe; }
    VynPortTypes::PortIndex port() const noexcept { return port_; }
    void portIs(VynPortTypes::PortIndex port) noexcept { port_ = port; }

    // Same pipe and same port index.
    bool isEq(PortInfo const& other) const noexcept {
        return pipe_ == other.pipe_ && port_ == other.port_;
    }

  private:
    std::uint8_t pipe_ = 0;
    VynPortTypes::PortIndex port_;
};

inline void reflectValue(Kel::AttributeSink& sink, PortInfo const& info) {
    sink.listStart();
    sink.number(std::uint64_t{info.pipe()});
    sink.number(std::uint64_t{info.port().value()});
    sink.listEnd();
}

}  // namespace VynSystem
