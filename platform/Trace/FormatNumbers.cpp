#include "Trace/FormatNumbers.h"

namespace Trace {

void FormatNumbers::add(Handle const& handle, unsigned level, char const* format,
                        unsigned number) noexcept {
    auto at = slotOf(handle, level, format);
    while (slots_[at].format.load(std::memory_order_relaxed)) {
        at = (at + 1) % slotCount;
    }
    auto& slot = slots_[at];
    slot.handle = &handle;
    slot.level = level;
    slot.number = number;
    slot.format.store(format, std::memory_order_release);
}

}  // namespace Trace
