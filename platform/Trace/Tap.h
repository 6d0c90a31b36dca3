// Listeners that are told of every trace statement in this process before any other reader.
#pragma once

#include <string_view>

#include "Vanta/HookChain.h"
#include "VynExport.h"

namespace Trace {

// One such listener, as long as the object lives. Several may live at a time: the newest is told
// first, and they may be destroyed in any order. It is told on the statement's thread, of all
// levels; a statement inside a tap reaches no tap. Thread: made and destroyed while no other thread
// traces, and not while a tap is being told.
class VYN_EXPORT Tap {
  public:
    // `text` is the whole message without time, handle and level; it ends with the call.
    using Function = void (*)(void* context, std::string_view handle, unsigned level,
                              std::string_view text);

    [[nodiscard]] Tap(Function function, void* context);
    // Has a member function told: Trace::Tap const tap_ = Trace::Tap::to<&Road::heard>(this);
    template <auto member, class T>
    [[nodiscard]] static Tap to(T* object) {
        return {[](void* context, std::string_view handle, unsigned level, std::string_view text) {
                    (static_cast<T*>(context)->*member)(handle, level, text);
                },
                object};
    }
    Tap(Tap const&) = delete;
    Tap& operator=(Tap const&) = delete;
    ~Tap();

  private:
    friend class Vanta::HookChain<Tap>;
    friend class TapCall;

    static Vanta::HookChain<Tap> chain_;

    Function const function_;
    void* const context_;
    Tap* older_ = nullptr;
};

}  // namespace Trace
