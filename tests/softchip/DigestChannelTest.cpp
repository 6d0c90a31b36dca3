#include "softchip/DigestChannel.h"

#include <gtest/gtest.h>

#include <functional>

namespace SoftChip {
namespace {

// A channel and a callback that notes how many entries each message has.
class DigestChannelTest : public testing::Test {
  protected:
    static p4_pd_status_t callback(p4_pd_sess_hdl_t, pipe_flow_lrn_msg_t* message, void* cookie) {
        auto* const self = static_cast<DigestChannelTest*>(cookie);
        self->sizes.push_back(message->num_entries);
        self->messages.push_back(message);
        if (self->inside) {
            self->inside(message);
        }
        return 0;
    }
    Status registerCallback() { return channel.registerCallback({1, &callback, this}); }
    Status acknowledge(pipe_flow_lrn_msg_t const* message) {
        return channel.acknowledge(message, resume);
    }
    void add(unsigned count, DigestChannel::RegistrationNumber registration) {
        for (unsigned i = 0; i < count; ++i) {
            channel.add(1, {}, registration);
        }
    }

    Faults faults;
    Journal journal;
    DigestChannel channel{0, faults, journal};
    std::function<void(pipe_flow_lrn_msg_t*)> inside;
    std::vector<unsigned> sizes;
    std::vector<pipe_flow_lrn_msg_t*> messages;
    bool resume = false;
};

TEST_F(DigestChannelTest, NumbersItsRegistrations) {
    EXPECT_EQ(channel.registration(), 0u);
    registerCallback();
    EXPECT_EQ(channel.registration(), 1u);
    channel.deregister();
    EXPECT_EQ(channel.registration(), 0u);
    registerCallback();
    EXPECT_EQ(channel.registration(), 2u);
}

TEST_F(DigestChannelTest, SendsNothingWhenNothingIsReady) {
    registerCallback();
    channel.send();
    EXPECT_TRUE(sizes.empty());
}

TEST_F(DigestChannelTest, SendsEachDigestOnce) {
    registerCallback();
    add(3, 1);
    channel.send();
    channel.send();
    EXPECT_EQ(sizes, (std::vector<unsigned>{3}));
}

TEST_F(DigestChannelTest, DropsDigestsOfOtherReceiversAndKeepsTheRestInOrder) {
    registerCallback();
    add(2, 0);
    add(3, 1);
    add(1, 9);
    add(4, 1);
    channel.send();
    EXPECT_EQ(sizes, (std::vector<unsigned>{3, 4}));
    EXPECT_EQ(journal.counters().digestsUndelivered, 3u);
}

TEST_F(DigestChannelTest, UsesAnAcknowledgedMessageAgain) {
    registerCallback();
    inside = [this](auto* message) { EXPECT_EQ(acknowledge(message), Status::ok); };
    for (int i = 0; i < 3; ++i) {
        add(1, 1);
        channel.send();
    }
    EXPECT_EQ(messages[0], messages[2]);
    EXPECT_EQ(channel.outstanding(), 0u);
}

TEST_F(DigestChannelTest, AsksToBeResumedOnlyWhenDigestsWaitForAMessage) {
    registerCallback();
    for (std::size_t i = 0; i < DigestChannel::maxOutstanding; ++i) {
        add(1, 1);
        channel.send();
    }
    acknowledge(messages[0]);
    EXPECT_FALSE(resume);
    add(1, 1);
    channel.send();
    add(1, 1);
    channel.send();
    acknowledge(messages[1]);
    EXPECT_TRUE(resume);
    channel.send();
    EXPECT_EQ(sizes.size(), DigestChannel::maxOutstanding + 2);
}

TEST_F(DigestChannelTest, RefusesAnAcknowledgementWithoutARegistration) {
    registerCallback();
    add(1, 1);
    channel.send();
    channel.deregister();
    EXPECT_EQ(acknowledge(messages[0]), Status::digestUnregistered);
}

TEST_F(DigestChannelTest, TakesMessagesBackWhenTheirRegistrationEnds) {
    registerCallback();
    add(1, 1);
    channel.send();
    channel.deregister();
    registerCallback();
    EXPECT_EQ(channel.outstanding(), 0u);
    EXPECT_EQ(acknowledge(messages[0]), Status::unknownMessage);
}

}  // namespace
}  // namespace SoftChip
