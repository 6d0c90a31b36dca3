#include "faults/SystemCalls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <optional>

#include "VynExport.h"

namespace {

struct Script {
    unsigned count = 0;
    std::optional<unsigned> left;  // calls up to the one that differs
    std::optional<std::size_t> shortTo;
    int error = 0;
    int result = 0;
    std::array<SystemCalls::Arguments, 4> given{};  // a fixed room: calls must not allocate
};

std::array<Script, 5> scripts;

Script& scriptOf(SystemCall call) {
    return scripts[static_cast<std::size_t>(call)];
}

// Counts a call; its script, if this is the one that differs.
Script const* differs(SystemCall call, SystemCalls::Arguments const& arguments = {}) {
    Script& script = scriptOf(call);
    if (script.count < script.given.size()) {
        script.given[script.count] = arguments;
    }
    ++script.count;
    if (!script.left) {
        return nullptr;
    }
    if (*script.left > 0) {
        --*script.left;
        return nullptr;
    }
    script.left.reset();
    return &script;
}

int fail(Script const& script) {
    errno = script.error;
    return script.result;
}

template <class Function>
Function* systemsOwn(char const* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

void SystemCalls::reset() noexcept {
    scripts = {};
}

unsigned SystemCalls::count(SystemCall call) noexcept {
    return scriptOf(call).count;
}

SystemCalls::Arguments SystemCalls::arguments(SystemCall call, unsigned after) noexcept {
    auto const& given = scriptOf(call).given;
    return after < given.size() ? given[after] : Arguments{};
}

void SystemCalls::failsIs(SystemCall call, int error, unsigned after, int result) noexcept {
    Script& script = scriptOf(call);
    script.left = after;
    script.shortTo.reset();
    script.error = error;
    script.result = result;
}

void SystemCalls::isShort(SystemCall call, std::size_t bytes, unsigned after) noexcept {
    scriptOf(call).left = after;
    scriptOf(call).shortTo = bytes;
}

extern "C" {

VYN_EXPORT ssize_t sendmsg(int descriptor, msghdr const* message, int flags) {
    static auto* const own = systemsOwn<ssize_t(int, msghdr const*, int)>("sendmsg");
    Script const* const script = differs(SystemCall::sendmsg);
    if (script == nullptr) {
        return own(descriptor, message, flags);
    }
    if (!script->shortTo) {
        return fail(*script);
    }
    std::array<iovec, 8> parts;
    msghdr cut = *message;
    cut.msg_iov = parts.data();
    cut.msg_iovlen = std::min(message->msg_iovlen, parts.size());
    std::size_t left = *script->shortTo;
    for (std::size_t i = 0; i < cut.msg_iovlen; ++i) {
        parts[i] = message->msg_iov[i];
        parts[i].iov_len = std::min(parts[i].iov_len, left);
        left -= parts[i].iov_len;
    }
    return own(descriptor, &cut, flags);
}

VYN_EXPORT ssize_t read(int descriptor, void* buffer, std::size_t size) {
    static auto* const own = systemsOwn<ssize_t(int, void*, std::size_t)>("read");
    Script const* const script = differs(SystemCall::read);
    if (script == nullptr) {
        return own(descriptor, buffer, size);
    }
    return script->shortTo ? own(descriptor, buffer, std::min(size, *script->shortTo))
                           : fail(*script);
}

VYN_EXPORT int socketpair(int domain, int type, int protocol, int descriptors[2]) noexcept {
    static auto* const own = systemsOwn<int(int, int, int, int*)>("socketpair");
    Script const* const script = differs(SystemCall::socketpair, {domain, type, protocol});
    return script != nullptr ? fail(*script) : own(domain, type, protocol, descriptors);
}

VYN_EXPORT int fcntl(int descriptor, int command, ...) {
    static auto* const own = systemsOwn<int(int, int, ...)>("fcntl");
    va_list rest;
    va_start(rest, command);
    // Every argument that fcntl takes has a pointer's size at most.
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    auto const number = static_cast<int>(reinterpret_cast<std::intptr_t>(argument));
    Script const* const script = differs(SystemCall::fcntl, {descriptor, command, number});
    return script != nullptr ? fail(*script) : own(descriptor, command, argument);
}

VYN_EXPORT int setsockopt(int descriptor, int level, int option, void const* value,
                          socklen_t size) noexcept {
    static auto* const own = systemsOwn<int(int, int, int, void const*, socklen_t)>("setsockopt");
    int number = 0;
    std::memcpy(&number, value, std::min<std::size_t>(size, sizeof number));
    Script const* const script =
        differs(SystemCall::setsockopt, {descriptor, level, option, number});
    return script != nullptr ? fail(*script) : own(descriptor, level, option, value, size);
}

}  // extern "C"
