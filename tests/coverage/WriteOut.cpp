// Counters of what ran are written when a process leaves main. Many of these tests end a child
// elsewhere: by _exit or _Exit, or by abort, which is where a failed assertion leads. Loaded before
// everything else, this library's functions of these names write the counters first.

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>

#include "VynExport.h"

namespace {

// The one function, wherever it was linked in, writes the counters of every module.
void writeOut() noexcept {
    if (void* const dump = ::dlsym(RTLD_DEFAULT, "__gcov_dump")) {
        reinterpret_cast<void (*)()>(dump)();
    }
}

}  // namespace

extern "C" VYN_EXPORT void _exit(int status) {
    writeOut();
    reinterpret_cast<void (*)(int)>(::dlsym(RTLD_NEXT, "_exit"))(status);
    __builtin_unreachable();
}

extern "C" VYN_EXPORT void _Exit(int status) noexcept {
    _exit(status);
}

extern "C" VYN_EXPORT void abort() noexcept {
    writeOut();
    reinterpret_cast<void (*)()>(::dlsym(RTLD_NEXT, "abort"))();
    __builtin_unreachable();
}
