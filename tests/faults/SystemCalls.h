// The system calls of the digest channel, under a test's control. This program defines sendmsg,
// read, socketpair, fcntl and setsockopt itself, so the shared libraries' calls come here first;
// they go on to the system unless a test has said otherwise.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

enum class SystemCall : std::uint8_t { sendmsg, read, socketpair, fcntl, setsockopt };

class SystemCalls {
  public:
    // What a call of socketpair, fcntl or setsockopt was given, in the order of its parameters; a
    // descriptor pair and what a call does not take are 0, setsockopt's value is the number itself.
    using Arguments = std::array<int, 4>;

    // From here on calls are counted, from zero, and none fails.
    static void reset() noexcept;

    // How often the function was called since reset().
    static unsigned count(SystemCall call) noexcept;

    // The arguments of the call after the next `after` ones since reset(). The first 4 calls of a
    // function are kept; what is not kept is all 0.
    static Arguments arguments(SystemCall call, unsigned after = 0) noexcept;

    // Once: the call after the next `after` ones returns `result` with this errno, and does
    // nothing.
    static void failsIs(SystemCall call, int error, unsigned after = 0, int result = -1) noexcept;

    // Once: the call after the next `after` ones moves `bytes` bytes at most. sendmsg and read
    // only.
    static void isShort(SystemCall call, std::size_t bytes, unsigned after = 0) noexcept;
};
