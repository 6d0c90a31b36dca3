#include "simulate/Socket.h"

#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "Vanta/Assert.h"
#include "VynExport.h"

namespace Simulate::DigestSocket {
namespace {

struct Limit {
    int writer = -1;
    int reader = -1;
    std::size_t bytes = plenty;
} limit;

ssize_t systemSend(int descriptor, msghdr const* message, int flags) noexcept {
    return ::syscall(SYS_sendmsg, descriptor, message, flags);
}

// Sends no more than `room` bytes of a message.
ssize_t sendPart(int descriptor, msghdr message, int flags, std::size_t room) noexcept {
    iovec parts[4];
    std::size_t const count = std::min<std::size_t>(message.msg_iovlen, 4);
    std::size_t size = 0;
    for (std::size_t i = 0; i < count; ++i) {
        parts[i] = message.msg_iov[i];
        parts[i].iov_len = std::min(parts[i].iov_len, room);
        room -= parts[i].iov_len;
        size += parts[i].iov_len;
    }
    message.msg_iov = parts;
    ssize_t const sent = systemSend(descriptor, &message, flags);
    Vanta::assertThat(sent == static_cast<ssize_t>(size), "the system's own limit is out of reach");
    return sent;
}

}  // namespace

void limitIs(int writer, int reader, std::size_t bytes) noexcept {
    limit = {writer, reader, bytes};
}

void limitDel() noexcept {
    limit = {};
}

std::size_t unread(int reader) noexcept {
    int bytes = 0;
    return ::ioctl(reader, FIONREAD, &bytes) == 0 ? static_cast<std::size_t>(bytes) : 0;
}

}  // namespace Simulate::DigestSocket

extern "C" VYN_EXPORT ssize_t sendmsg(int descriptor, msghdr const* message, int flags) {
    using namespace Simulate::DigestSocket;
    if (descriptor != limit.writer) {
        return systemSend(descriptor, message, flags);
    }
    std::size_t const waiting = unread(limit.reader);
    if (waiting >= limit.bytes) {
        errno = EAGAIN;
        return -1;
    }
    return sendPart(descriptor, *message, flags, limit.bytes - waiting);
}
