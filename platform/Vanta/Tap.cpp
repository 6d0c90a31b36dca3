#include "Vanta/Tap.h"

namespace Vanta {

constinit HookChain<Tap> Tap::chain_;

Tap::Tap(Function function, void* context) noexcept : function_(function), context_(context) {
    chain_.add(*this);
}

Tap::~Tap() {
    chain_.remove(*this);
}

void Tap::tell(Change const& change) {
    for (Tap const* tap = chain_.first(); tap != nullptr; tap = tap->older_) {
        tap->function_(tap->context_, change);
    }
}

}  // namespace Vanta
