#include "Trace/Trace.h"

#include <cerrno>
#include <string>

#include "Trace/Ringlog.h"
#include "Trace/TapCall.h"
#include "Trace/Text.h"

namespace Trace {
namespace {

class ErrnoKept {
  public:
    ErrnoKept() noexcept = default;
    ~ErrnoKept() { errno = before_; }
    ErrnoKept(ErrnoKept const&) = delete;
    ErrnoKept& operator=(ErrnoKept const&) = delete;

  private:
    int const before_ = errno;
};

// For the readers of texts, besides the ring. A function of its own, so that a statement that only
// the ring reads needs no stack for it.
[[gnu::noinline]] void emitText(Handle const& handle, unsigned level, char const* format,
                                std::span<Value const> values) {
    bool const asText = handle.textLevels().has(level);
    if (!asText && !TapCall::anybodyListens()) {
        return writeRing(handle, level, format, values);
    }
    ErrnoKept const kept;
    std::string text;
    appendFormatted(text, format, values);
    TapCall::tell(handle.name(), level, text);
    writeRing(handle, level, format, values);
    if (asText) {
        writeText(handle.name(), level, text);
    }
}

}  // namespace

void emit(Handle const& handle, unsigned level, char const* format, std::span<Value const> values) {
    if (TapCall::isThereATap() || handle.textLevels().has(level)) [[unlikely]] {
        return emitText(handle, level, format, values);
    }
    writeRing(handle, level, format, values);
}

}  // namespace Trace
