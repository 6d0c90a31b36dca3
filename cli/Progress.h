// A progress bar for people who wait for a long capture.
//
// It appears when the work has taken a moment, is drawn a few times a second at most, and is wiped
// out at the end. Time is handed in. Thread: one only.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <ostream>

namespace Cli {

class Progress {
  public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds patience{500};  // before the bar appears
    static constexpr std::chrono::milliseconds pause{100};     // between two drawings

    Progress(std::ostream& out, Clock::time_point start) : out_(out), due_(start + patience) {}
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    ~Progress() { clear(); }

    // So many frames are answered, and `part` (0 to 1, if it is known) of the input is read. Draws
    // the bar if it is time.
    void update(std::uint64_t frames, std::optional<double> part, Clock::time_point now);

    // Wipes the bar out until it is drawn again, so that something else can be printed.
    void clear();

  private:
    std::ostream& out_;
    Clock::time_point due_;
    bool drawn_ = false;
};

}  // namespace Cli
