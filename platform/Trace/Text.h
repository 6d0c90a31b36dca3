// The text back end: one line a message, written with one system call.
//
//     2026-11-21T15:10:31.123456Z VynPtSm 7 handleClient:client monitor
//
// Threads: any. A message is one write, so lines of several threads (and processes, on a
// descriptor opened for appending) do not mix.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "VynExport.h"

namespace Trace {

// Where text messages go from now on; standard error until this is called. The caller keeps the
// descriptor, and keeps it open. A message that cannot be written is lost; tracing never fails.
VYN_EXPORT void textDescriptorIs(int descriptor) noexcept;

// The beginning of a line, up to and including the blank before the message: time in UTC to the
// microsecond, handle, level. `nanoseconds` count from 1970.
VYN_EXPORT void appendLineHead(std::string& line, std::int64_t nanoseconds, std::string_view handle,
                               unsigned level);

// Writes one line with the present time. Internal to Trace.
void writeText(std::string_view handle, unsigned level, std::string_view message);

}  // namespace Trace
