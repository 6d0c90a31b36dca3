#include "cli/Progress.h"

#include <algorithm>
#include <string>

namespace Cli {
namespace {

constexpr int barWidth = 40;

std::string bar(double part) {
    double const whole = std::clamp(part, 0.0, 1.0);
    auto const done = static_cast<std::size_t>(whole * barWidth);
    int const percent = static_cast<int>(whole * 100);
    return "[" + std::string(done, '#') + std::string(barWidth - done, '.') + "] " +
           std::to_string(percent) + "%, ";
}

}  // namespace

void Progress::update(std::uint64_t frames, std::optional<double> part, Clock::time_point now) {
    if (now < due_) {
        return;
    }
    due_ = now + pause;
    drawn_ = true;
    out_ << "\r\033[K" << (part ? bar(*part) : "") << frames << " frames" << std::flush;
}

void Progress::clear() {
    if (drawn_) {
        out_ << "\r\033[K" << std::flush;
        drawn_ = false;
    }
}

}  // namespace Cli
