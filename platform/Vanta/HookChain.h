// The hooks of one kind in this process, newest first. A kind has one HookChain, an object of
// static storage. A hook is an object that adds itself to the chain when it is made and removes
// itself when it is destroyed.
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
    // Removes a hook from any position in the chain.
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
