// A request's road through the tracer, taken from what the tracer's modules trace on the way.
//
// The statements belong to one request only if no other one is under way. Threads: statements of
// any thread are heard; a Road is made before other threads trace and destroyed after them; start()
// and take() are for the event thread.
#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Trace/Tap.h"

namespace Cli {

struct Passage {
    std::chrono::nanoseconds since;  // the start
    std::string handle;
    unsigned level = 0;
    std::string text;
    std::uint64_t times = 1;  // how often it was heard; `since` is of the first time

    friend bool operator==(Passage const&, Passage const&) = default;
};

class Road {
  public:
    using Clock = std::chrono::steady_clock;
    using Now = std::function<Clock::time_point()>;

    explicit Road(Now now = Clock::now);
    Road(Road const&) = delete;
    Road& operator=(Road const&) = delete;

    // Forgets everything; times count from here.
    void start();

    // The statements since the start, in the order in which each was first heard. A statement that
    // is repeated, by an engine that polls, is listed once, with its count.
    std::vector<Passage> take();

  private:
    void heard(std::string_view handle, unsigned level, std::string_view text);

    Now const now_;
    std::mutex mutex_;  // guards what follows
    Clock::time_point start_;
    std::vector<Passage> passages_;
    Trace::Tap const tap_ = Trace::Tap::to<&Road::heard>(this);
};

}  // namespace Cli
