// Tracing: what a module's statements say goes to a ring in a file (Ringlog.h), to the text trace
// (Text.h) and to taps (Tap.h), each of which may be there or not.
//
//     Trace::Handle& trace = Trace::handle("VynPtSm");
//     Trace::twinlog(trace, 7, "handleClient:client %s", name);
//
// Which levels appear as text is a matter of the handle (Handle.h); the ring and the taps get every
// statement of every level. A statement that nobody reads costs one relaxed load and a branch;
// whatever is read, a value is formatted for a text only.
//
// Threads: statements may run on any thread at any time, and nothing here waits for another one.
// A statement leaves errno as it was.
#pragma once

#include <array>
#include <span>
#include <string_view>
#include <type_traits>

#include "Trace/Format.h"
#include "Trace/Handle.h"
#include "Trace/Levels.h"
#include "Trace/Value.h"
#include "VynExport.h"

namespace Trace {

// Hands one statement to its readers: the taps, then the ring, then the text trace.
VYN_EXPORT void emit(Handle const& handle, unsigned level, char const* format,
                     std::span<Value const> values);

// One trace statement. `level` is a constant from 0 to 9; `format` is a literal with one "%s" for
// each of `values`, checked when the statement is compiled; see Value.h for what a value can be.
// Errors: what a value's writer or a tap throws, and std::bad_alloc where a text is made.
template <class... Values>
inline void twinlog(Handle const& handle, Level level,
                    std::type_identity_t<Format<sizeof...(Values)>> format,
                    Values const&... values) {
    if (!handle.isRead(level)) [[likely]] {
        return;
    }
    std::array<Value, sizeof...(Values)> const list{traceValue(values)...};
    emit(handle, level.number(), format.text(), list);
}

}  // namespace Trace
