// The one way in which the process ends on purpose.
//
// A failed assertion and an exception that reaches a dispatcher (notification, task, descriptor)
// both come to endProcess(). Its last step can be replaced: tests and the replay driver do so, to
// report the end instead of dumping core. Assertions are on in every build.
#pragma once

#include <string_view>

#include "VynExport.h"

namespace Vanta {

// What is done last. It is given the error's class name without namespace ("assert" for a failed
// assertion) and its text. It must not return; the process is aborted if it does.
using LastStep = void (*)(std::string_view errorClass, std::string_view text);

// Replaces the last step and returns the one it replaces. Null restores the default: one line on
// standard error, then abort(). Thread: before other threads run.
VYN_EXPORT LastStep lastStepIs(LastStep step) noexcept;

// Ends the process through the last step. Thread: any.
[[noreturn]] VYN_EXPORT void endProcess(std::string_view errorClass,
                                        std::string_view text) noexcept;

// Ends the process with the exception that is being handled. Call it only in a catch clause of a
// dispatcher: nothing above a dispatcher can know what the exception left undone.
[[noreturn]] VYN_EXPORT void endProcessWithCurrentException() noexcept;

// Writes "expression" to standard error and ends the process with class "assert".
[[noreturn]] VYN_EXPORT void assertionFailed(std::string_view expression) noexcept;

// Ends the process unless `holds`; `expression` is the text of the condition.
inline void assertThat(bool holds, std::string_view expression) noexcept {
    if (!holds) [[unlikely]] {
        assertionFailed(expression);
    }
}

}  // namespace Vanta
