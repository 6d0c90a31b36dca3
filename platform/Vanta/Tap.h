// Listeners that are told of every publication in this process before any subscriber is.
#pragma once

#include "Vanta/HookChain.h"
#include "Vanta/Publisher.h"
#include "VynExport.h"

namespace Vanta {

// One such listener, as long as the object lives. Several may live at a time: the newest is told
// first, and they may be destroyed in any order. Without one a publication costs a branch.
// Thread: the publishers'. No tap is made or destroyed while a tap is being told.
class VYN_EXPORT Tap {
  public:
    // It must not throw.
    using Function = void (*)(void* context, Change const& change);

    [[nodiscard]] Tap(Function function, void* context) noexcept;
    // Has a member function told: Tap const tap_ = Tap::to<&Recorder::published>(this);
    template <auto member, class T>
    [[nodiscard]] static Tap to(T* object) noexcept {
        return {[](void* context, Change const& change) {
                    (static_cast<T*>(context)->*member)(change);
                },
                object};
    }
    Tap(Tap const&) = delete;
    Tap& operator=(Tap const&) = delete;
    ~Tap();

  private:
    friend class HookChain<Tap>;
    friend class Publisher;
    static void tell(Change const& change);

    static HookChain<Tap> chain_;

    Function const function_;
    void* const context_;
    Tap* older_ = nullptr;
};

}  // namespace Vanta
