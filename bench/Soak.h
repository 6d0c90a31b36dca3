// Traces without end, with clients that come and go.
#pragma once

#include <cstdint>

namespace Bench {

// Makes that many traces and prints the memory that is resident after each million. Returns the
// program's exit status: 1 if it grew by more than a tenth after the first million.
int soak(std::uint64_t traces);

}  // namespace Bench
