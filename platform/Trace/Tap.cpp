#include "Trace/Tap.h"

#include "Trace/Registry.h"
#include "Trace/TapCall.h"

namespace Trace {

constinit Vanta::HookChain<Tap> Tap::chain_;

Tap::Tap(Function function, void* context) : function_(function), context_(context) {
    chain_.add(*this);
    Registry::instance().wholeIs(Whole::tap, true);
}

Tap::~Tap() {
    chain_.remove(*this);
    Registry::instance().wholeIs(Whole::tap, chain_.first() != nullptr);
}

void TapCall::tell(std::string_view handle, unsigned level, std::string_view text) {
    if (!anybodyListens()) {
        return;
    }
    TapCall const call;
    for (Tap const* tap = Tap::chain_.first(); tap != nullptr; tap = tap->older_) {
        tap->function_(tap->context_, handle, level, text);
    }
}

}  // namespace Trace
