#include "Trace/Text.h"

#include <time.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>

namespace Trace {
namespace {

std::atomic<int> textDescriptor = STDERR_FILENO;

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

std::int64_t wallClock() noexcept {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec * nanosecondsPerSecond + now.tv_nsec;
}

void appendTime(std::string& line, std::int64_t nanoseconds) {
    time_t seconds = nanoseconds / nanosecondsPerSecond;
    auto fraction = nanoseconds % nanosecondsPerSecond;
    if (fraction < 0) {
        --seconds;
        fraction += nanosecondsPerSecond;
    }
    tm utc{};
    ::gmtime_r(&seconds, &utc);
    std::array<char, 64> text;
    auto const length =
        std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%06dZ",
                      utc.tm_year + 1900, utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min,
                      utc.tm_sec, static_cast<int>(fraction / 1000));
    line.append(text.data(), static_cast<std::size_t>(length));
}

}  // namespace

void textDescriptorIs(int descriptor) noexcept {
    textDescriptor.store(descriptor, std::memory_order_relaxed);
}

void appendLineHead(std::string& line, std::int64_t nanoseconds, std::string_view handle,
                    unsigned level) {
    appendTime(line, nanoseconds);
    line += ' ';
    line += handle;
    line += ' ';
    line += std::to_string(level);
    line += ' ';
}

void writeText(std::string_view handle, unsigned level, std::string_view message) {
    std::string line;
    line.reserve(64 + handle.size() + message.size());
    appendLineHead(line, wallClock(), handle, level);
    line += message;
    line += '\n';
    int const descriptor = textDescriptor.load(std::memory_order_relaxed);
    while (::write(descriptor, line.data(), line.size()) < 0 && errno == EINTR) {
    }
}

}  // namespace Trace
