// A limit to order for the digest socket: how much its reader may leave unread before a send fails.
//
// A process that links this has `sendmsg` replaced: a send that runs into the limit is short, or
// fails with EAGAIN where nothing fits, and no system's own limit comes into play. Other
// sockets are served by the system. Thread: one only.
#pragma once

#include <cstddef>

namespace Simulate::DigestSocket {

// So much that no run ever reaches it, and less than any system's own limit.
inline constexpr std::size_t plenty = 24000;

// From now on at most `bytes` are unread at `reader`, which is the other end of `writer`.
void limitIs(int writer, int reader, std::size_t bytes) noexcept;
// No socket is limited.
void limitDel() noexcept;
// Bytes that a reader has not read.
std::size_t unread(int reader) noexcept;

}  // namespace Simulate::DigestSocket
