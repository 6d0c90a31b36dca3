// The hooks of one kind that stand in this process, newest first. A kind has one HookChain, an object
// of static storage; its hooks are objects of scopes, which put themselves in and take themselves out.
#pragma once

#include <atomic>

namespace Vanta {

// Hook has a member `Hook* older_`, which the chain sets. Threads: first() any; the others one at a
// time, while no other thread walks the chain.
template <class Hook>
class HookChain {
  public:
    // The newest hook, or null; older_ leads to the others.
    Hook* first() const noexcept { return newest_.load(std::memory_order_acquire); }

    void add(Hook& hook) noexcept {
        hook.older_ = first();
        newest_.store(&hook, std::memory_order_release);
    }
    // Takes a hook out, wherever in the chain it stands.
    void remove(Hook& hook) noexcept {
        if (first() == &hook) {
            newest_.store(hook.older_, std::memory_order_release);
            return;
        }
        Hook* newer = first();
        while (newer->older_ != &hook) {
            newer = newer->older_;
        }
        newer->older_ = hook.older_;
    }

  private:
    std::atomic<Hook*> newest_ = nullptr;
};

}  // namespace Vanta
