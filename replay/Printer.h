// Prints the observations of a run, each at the moment it happens, as one JSON object a line.
//
// While an Observation lives, the printer is told of every publication and trace statement before
// anybody else, and of the end of the process. Lines wait in a buffer until flush(); the buffer is
// also written out when it grows large, and before the process ends.
// Thread: one only.
#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "Trace/Tap.h"
#include "Vanta/Assert.h"
#include "Vanta/Tap.h"
#include "VynPacketTracer/VynPtTypes.h"
#include "scriptchip/Listener.h"

namespace Replay {

// The exit status of a run in which the process ends.
inline constexpr int fatalStatus = 3;

class Printer final : public ScriptChip::Listener {
  public:
    // `out` outlives the printer.
    explicit Printer(std::ostream& out) noexcept : out_(out) {}
    Printer(Printer const&) = delete;
    Printer& operator=(Printer const&) = delete;

    // The number of the line whose observations follow.
    void event(std::uint64_t line);
    // The engine's state after a line, printed if it is not the one printed last.
    void engine(VynPacketTracer::PktGenState state);
    // An exception that left an event.
    void error(std::exception const& error);
    // The end of the process.
    void fatal(std::string_view type, std::string_view text);
    // The same, and the process ends with it: what was printed is flushed, the status is
    // fatalStatus.
    void exitFatal(std::string_view type, std::string_view text);
    // Lines that are printed as they are.
    void lines(std::string_view text);

    void trace(std::string_view handle, unsigned level, std::string_view text);
    void published(Vanta::Change const& change);
    void sdkCalled(SdkSeam::SdkCall const& call) override;
    void phase0ConfigIs(Plexa::IntfId const& intf) override;
    void phase0ConfigDel(Plexa::IntfId const& intf) override;

    // Hands everything printed so far to the stream; false if the stream does not take it.
    bool flush();

    // Prints nothing from now on: what follows is not part of the run.
    void close() noexcept { closed_ = true; }

  private:
    // Calls write(JsonWriter&) to fill one object, and ends the line.
    template <class Write>
    void print(Write const& write);

    std::ostream& out_;
    std::string buffer_;
    std::optional<VynPacketTracer::PktGenState> printedState_;
    bool closed_ = false;
};

// Connects a printer to the process's taps and to its last step, which exits with fatalStatus.
class Observation {
  public:
    // `printer` outlives it.
    explicit Observation(Printer& printer);

  private:
    Vanta::LastStep const lastStep_;
    Vanta::Tap const publications_;
    Trace::Tap const traces_;
};

}  // namespace Replay
