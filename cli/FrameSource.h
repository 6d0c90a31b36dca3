// Where the packets come from: a capture, or the command line.
#pragma once

#include <optional>
#include <utility>

#include "cli/Packet.h"

namespace Cli {

class FrameSource {
  public:
    virtual ~FrameSource() = default;

    // The next packet, or nothing at the end. May wait for one.
    // Errors: UsageError for input that cannot be read, saying where; the packets before it are
    // good.
    virtual std::optional<Packet> next() = 0;

    // Whether next() returns without waiting for another process.
    virtual bool ready() const { return true; }

    // How much has been read, 0 to 1; nothing if that is not known.
    virtual std::optional<double> progress() const { return std::nullopt; }
};

// One packet.
class OnePacket final : public FrameSource {
  public:
    explicit OnePacket(Packet packet) : packet_(std::move(packet)) {}

    std::optional<Packet> next() override { return std::exchange(packet_, std::nullopt); }

  private:
    std::optional<Packet> packet_;
};

}  // namespace Cli
