// A pipe that stands in for the text trace's descriptor while a test runs.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

#include "Trace/Text.h"

class Captured {
  public:
    Captured() {
        if (::pipe2(ends_.data(), O_NONBLOCK | O_CLOEXEC | O_DIRECT) == 0) {
            Trace::textDescriptorIs(ends_[1]);
        }
    }
    ~Captured() {
        Trace::textDescriptorIs(STDERR_FILENO);
        ::close(ends_[0]);
        ::close(ends_[1]);
    }
    Captured(Captured const&) = delete;
    Captured& operator=(Captured const&) = delete;

    // What was written since the last call, one element a write (the pipe keeps packets apart).
    std::vector<std::string> writes() {
        std::vector<std::string> found;
        std::array<char, 4096> room;
        for (auto n = ::read(ends_[0], room.data(), room.size()); n > 0;
             n = ::read(ends_[0], room.data(), room.size())) {
            found.emplace_back(room.data(), static_cast<std::size_t>(n));
        }
        return found;
    }

  private:
    std::array<int, 2> ends_{-1, -1};
};
