// The one way in which the process ends on purpose.
//
// A failed assertion and an exception that reaches a dispatcher (notification, task, descriptor)
// both come to endProcess(). What it does can be replaced or preceded (LastStep): tests and the
// replay driver report the end instead of dumping core. Assertions are on in every build.
#pragma once

#include <string_view>

#include "VynExport.h"

namespace Vanta {

// Ends the process through its last steps. Thread: any.
[[noreturn]] VYN_EXPORT void endProcess(std::string_view errorClass,
                                        std::string_view text) noexcept;

template <class Hook>
class HookChain;

// What is done when the process ends, as long as this object lives. Several may live at a time, and
// they may be destroyed in any order. The newest runs first; when it returns, the next one runs,
// and after the last of them the process writes one line to standard error (none for a failed
// assertion, which wrote its own) and aborts. Thread: made and destroyed before other threads run,
// or after; run on the thread that ends the process.
class VYN_EXPORT LastStep {
  public:
    // Is given the error's class name without namespace ("assert" for a failed assertion) and its
    // text.
    using Function = void (*)(void* context, std::string_view errorClass, std::string_view text);

    [[nodiscard]] explicit LastStep(Function function, void* context = nullptr) noexcept;
    // Has a member function run: LastStep const lastStep_ = LastStep::to<&Run::ended>(this);
    template <auto member, class T>
    [[nodiscard]] static LastStep to(T* object) noexcept {
        return LastStep(
            [](void* context, std::string_view errorClass, std::string_view text) {
                (static_cast<T*>(context)->*member)(errorClass, text);
            },
            object);
    }
    LastStep(LastStep const&) = delete;
    LastStep& operator=(LastStep const&) = delete;
    ~LastStep();

  private:
    friend class HookChain<LastStep>;
    friend void endProcess(std::string_view errorClass, std::string_view text) noexcept;

    Function const function_;
    void* const context_;
    LastStep* older_ = nullptr;
};

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
