#include "sdkseam/ForwardingChip.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "VynSdk/VynSdk.h"

namespace SdkSeam {
namespace {

constexpr VynId::VynDevId device = 5;

// Notes what reaches it, answers with a status, and keeps the registered receiver.
struct NotingChip final : Chip {
    void call(SdkCall& call) override {
        calls.push_back(text(call));
        call.rc = status;
        call.count = 7;
        if (call.function == SdkFunction::digestRegister && status == 0) {
            receiver = call.receiver();
        }
    }
    p4_pd_status_t deliver() { return receiver(&message); }

    std::vector<std::string> calls;
    p4_pd_status_t status = 0;
    DigestReceiver receiver;
    pipe_flow_lrn_msg_t message{{device, {}}, 3, nullptr};
    Registration registration{device, *this};
};

// Does what a test wants with each call and each message.
struct Hook final : CallHook, DigestHook {
    void called(SdkCall& call, Chip& behind) override {
        if (onCall) {
            onCall(call, behind);
        } else {
            behind.call(call);
        }
    }
    p4_pd_status_t received(pipe_flow_lrn_msg_t* message, DigestReceiver const& receiver) override {
        ++messages;
        return drops ? -9 : receiver(message);
    }

    std::function<void(SdkCall&, Chip&)> onCall;
    int messages = 0;
    bool drops = false;
};

// Who registers for digests, as a tracer would.
struct Tracer {
    static p4_pd_status_t onMessage(p4_pd_sess_hdl_t session, pipe_flow_lrn_msg_t* message,
                                    void* cookie) {
        auto& self = *static_cast<Tracer*>(cookie);
        self.sessions.push_back(session);
        return message->num_entries;
    }
    p4_pd_status_t registers(p4_pd_sess_hdl_t session = 1) {
        return pipe_mgr_lrn_digest_notification_register(session, device, 77, onMessage, this);
    }
    static p4_pd_status_t deregisters() {
        return pipe_mgr_lrn_digest_notification_deregister(1, device, 77);
    }

    std::vector<p4_pd_sess_hdl_t> sessions;  // one a message
};

class ForwardingChipTest : public testing::Test {
  protected:
    NotingChip chip;
    Hook hook;
    Tracer tracer;
    std::optional<ForwardingChip> front{std::in_place, device, hook, &hook};
};

TEST_F(ForwardingChipTest, HandsACallToTheChipBehindAndItsAnswerBack) {
    chip.status = -4;
    std::uint64_t count = 0;
    EXPECT_EQ(VynSdk::getPktCounters(1, device, 2, 4, count), -4);
    EXPECT_EQ(count, 7u);
    EXPECT_EQ(chip.calls, (std::vector<std::string>{
                              "getPktCounters session=1 device=5 pipe=2 appId=4 -> 0 count=0"}));
}

TEST_F(ForwardingChipTest, ShowsTheHookEveryCallWithItsOutcome) {
    std::vector<std::string> shown;
    hook.onCall = [&](SdkCall& call, Chip& behind) {
        behind.call(call);
        shown.push_back(text(call));
    };
    chip.status = -4;
    VynSdk::disablePktGen(1, device, 2, 68);
    pipe_mgr_flow_lrn_notify_ack(1, 77, &chip.message);
    EXPECT_EQ(shown,
              (std::vector<std::string>{"disablePktGen session=1 device=5 pipe=2 genPort=68 -> -4",
                                        "pipe_mgr_flow_lrn_notify_ack session=1 handle=77 -> -4"}));
}

TEST_F(ForwardingChipTest, LetsTheHookKeepACallFromTheChip) {
    hook.onCall = [](SdkCall& call, Chip&) { call.rc = -11; };
    EXPECT_EQ(VynSdk::disableAppId(1, device, 2, 4), -11);
    EXPECT_TRUE(chip.calls.empty());
}

TEST_F(ForwardingChipTest, LetsTheHookChangeWhatTheCallerGets) {
    hook.onCall = [](SdkCall& call, Chip& behind) {
        behind.call(call);
        call.rc = -12;
        call.count = 100;
    };
    std::uint64_t count = 0;
    EXPECT_EQ(VynSdk::getPktCounters(1, device, 2, 4, count), -12);
    EXPECT_EQ(count, 100u);
}

TEST_F(ForwardingChipTest, ShowsTheHookAMessageAheadOfItsReceiver) {
    EXPECT_EQ(tracer.registers(6), 0);
    EXPECT_EQ(chip.deliver(), 3);
    EXPECT_EQ(hook.messages, 1);
    EXPECT_EQ(tracer.sessions, std::vector<p4_pd_sess_hdl_t>{6});
}

TEST_F(ForwardingChipTest, LetsTheHookKeepAMessageFromItsReceiver) {
    tracer.registers();
    hook.drops = true;
    EXPECT_EQ(chip.deliver(), -9);
    EXPECT_TRUE(tracer.sessions.empty());
}

TEST_F(ForwardingChipTest, HasNoReceiverBeforeARegistrationAndAfterItsEnd) {
    EXPECT_FALSE(front->receiver());
    tracer.registers();
    EXPECT_TRUE(front->receiver());
    chip.status = -1;
    Tracer::deregisters();
    EXPECT_FALSE(front->receiver());
}

TEST_F(ForwardingChipTest, GivesAMessageToNobodyAfterTheRegistrationHasEnded) {
    tracer.registers();
    Tracer::deregisters();
    EXPECT_EQ(chip.deliver(), 0);
    EXPECT_EQ(hook.messages, 0);
    EXPECT_TRUE(tracer.sessions.empty());
}

TEST_F(ForwardingChipTest, KeepsTheReceiverWhenAnotherRegistrationFails) {
    tracer.registers();
    chip.status = -1;
    Tracer other;
    EXPECT_EQ(other.registers(), -1);
    chip.deliver();
    EXPECT_EQ(tracer.sessions.size(), 1u);
    EXPECT_TRUE(other.sessions.empty());
}

TEST_F(ForwardingChipTest, LeavesTheMessagesAloneWithoutADigestHook) {
    front.reset();
    front.emplace(device, hook);
    tracer.registers();
    EXPECT_EQ(chip.receiver.cookie, &tracer);
    EXPECT_EQ(chip.deliver(), 3);
    EXPECT_EQ(hook.messages, 0);
}

TEST_F(ForwardingChipTest, LeavesTheCallsToTheChipWhenItHasGone) {
    hook.onCall = [](SdkCall& call, Chip&) { call.rc = -11; };
    front.reset();
    EXPECT_EQ(VynSdk::disableAppId(1, device, 2, 4), 0);
    EXPECT_EQ(chip.calls.size(), 1u);
}

TEST_F(ForwardingChipTest, StandsInFrontOfAnotherOne) {
    Hook outerHook;
    std::vector<std::string> order;
    outerHook.onCall = [&](SdkCall& call, Chip& behind) {
        order.emplace_back("outer");
        behind.call(call);
    };
    hook.onCall = [&](SdkCall& call, Chip& behind) {
        order.emplace_back("inner");
        behind.call(call);
    };
    ForwardingChip const outer(device, outerHook);
    VynSdk::disableAppId(1, device, 2, 4);
    EXPECT_EQ(order, (std::vector<std::string>{"outer", "inner"}));
    EXPECT_EQ(chip.calls.size(), 1u);
}

}  // namespace
}  // namespace SdkSeam
