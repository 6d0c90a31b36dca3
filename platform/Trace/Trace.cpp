#include "Trace/Trace.h"

#include <atomic>
#include <cerrno>
#include <string>

#include "Trace/Registry.h"
#include "Trace/Ringlog.h"
#include "Trace/Text.h"

namespace Trace {
namespace {

std::atomic<TapFunction> tapFunction = nullptr;
std::atomic<void*> tapContext = nullptr;
thread_local bool insideTap = false;

class InsideTap {
  public:
    InsideTap() noexcept { insideTap = true; }
    ~InsideTap() { insideTap = false; }
    InsideTap(InsideTap const&) = delete;
    InsideTap& operator=(InsideTap const&) = delete;
};

class ErrnoKept {
  public:
    ErrnoKept() noexcept = default;
    ~ErrnoKept() { errno = before_; }
    ErrnoKept(ErrnoKept const&) = delete;
    ErrnoKept& operator=(ErrnoKept const&) = delete;

  private:
    int const before_ = errno;
};

TapFunction activeTap() noexcept {
    auto const tap = tapFunction.load(std::memory_order_acquire);
    return tap && !insideTap ? tap : nullptr;
}

void tell(TapFunction tap, Handle const& handle, unsigned level, std::string_view text) {
    InsideTap const inside;
    tap(tapContext.load(std::memory_order_relaxed), handle.name(), level, text);
}

}  // namespace

namespace {

// For who reads a text, besides the ring. Apart, so that the road to the ring alone needs no stack.
[[gnu::noinline]] void emitText(TapFunction tap, Handle const& handle, unsigned level,
                                char const* format, std::span<Value const> values) {
    bool const asText = handle.textLevels().has(level);
    ErrnoKept const kept;
    std::string text;
    appendFormatted(text, format, values);
    if (tap) {
        tell(tap, handle, level, text);
    }
    writeRing(handle, level, format, values);
    if (asText) {
        writeText(handle.name(), level, text);
    }
}

}  // namespace

void emit(Handle const& handle, unsigned level, char const* format, std::span<Value const> values) {
    auto const tap = activeTap();
    if (tap || handle.textLevels().has(level)) [[unlikely]] {
        return emitText(tap, handle, level, format, values);
    }
    writeRing(handle, level, format, values);
}

void tapIs(TapFunction function, void* context) {
    tapFunction.store(nullptr, std::memory_order_relaxed);
    tapContext.store(context, std::memory_order_relaxed);
    tapFunction.store(function, std::memory_order_release);
    Registry::instance().wholeIs(Whole::tap, function != nullptr);
}

}  // namespace Trace
