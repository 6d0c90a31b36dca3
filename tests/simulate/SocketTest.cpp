#include "simulate/Socket.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace Simulate {
namespace {

class Socket : public testing::Test {
  protected:
    Socket() { EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends_), 0); }
    ~Socket() override {
        DigestSocket::limitDel();
        ::close(ends_[0]);
        ::close(ends_[1]);
    }
    // Sends a header and a body with one call.
    ssize_t send(std::string header, std::string body) {
        iovec parts[] = {{header.data(), header.size()}, {body.data(), body.size()}};
        msghdr message{};
        message.msg_iov = parts;
        message.msg_iovlen = 2;
        return ::sendmsg(ends_[0], &message, 0);
    }
    std::string receive() {
        char buffer[100];
        ssize_t const size = ::read(ends_[1], buffer, sizeof buffer);
        return size > 0 ? std::string(buffer, static_cast<std::size_t>(size)) : "";
    }
    void limit(std::size_t bytes) { DigestSocket::limitIs(ends_[0], ends_[1], bytes); }

    int ends_[2];
};

TEST_F(Socket, WhatFitsGoesThroughWhole) {
    limit(10);
    EXPECT_EQ(send("head", "body"), 8);
    EXPECT_EQ(receive(), "headbody");
}

TEST_F(Socket, WhatFitsInPartIsSentInPart) {
    limit(6);
    EXPECT_EQ(send("head", "body"), 6);
    EXPECT_EQ(receive(), "headbo");
}

TEST_F(Socket, AFullSocketTakesNothing) {
    limit(8);
    EXPECT_EQ(send("head", "body"), 8);
    EXPECT_EQ(send("head", "body"), -1);
    EXPECT_EQ(errno, EAGAIN);
}

TEST_F(Socket, ReadingMakesRoomAgain) {
    limit(8);
    EXPECT_EQ(send("head", "body"), 8);
    EXPECT_EQ(DigestSocket::unread(ends_[1]), 8U);
    receive();
    EXPECT_EQ(send("head", "body"), 8);
}

TEST_F(Socket, OtherSocketsAreNotLimited) {
    DigestSocket::limitIs(-2, -2, 0);
    EXPECT_EQ(send("head", "body"), 8);
}

}  // namespace
}  // namespace Simulate
