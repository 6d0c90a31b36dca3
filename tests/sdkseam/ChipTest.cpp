#include "sdkseam/Chip.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "VynSdk/VynSdk.h"

namespace {

using Calls = std::vector<std::string>;
using SdkSeam::Registration;

// Notes every call and gives back a status and a count.
struct NotingChip final : SdkSeam::Chip {
    void call(SdkSeam::SdkCall& call) override {
        calls.push_back(SdkSeam::text(call));
        bool const complete = call.callback == &onDigest && call.cookie == this;
        registersThis = registersThis || complete;
        messages.push_back(call.message);
        call.rc = status;
        call.count = 77;
    }
    static p4_pd_status_t onDigest(p4_pd_sess_hdl_t, pipe_flow_lrn_msg_t*, void*) { return 0; }

    Calls calls;
    bool registersThis = false;
    std::vector<pipe_flow_lrn_msg_t*> messages;
    p4_pd_status_t status = 0;
};

// Every function of the SDK with arguments that tell it from the others.
std::vector<p4_pd_status_t> callEverything(VynId::VynDevId device, NotingChip& cookie) {
    std::uint64_t count = 5;
    std::vector<std::uint8_t> const pkt(60);
    std::vector<std::uint8_t> const phase0(16);
    pipe_flow_lrn_msg_t message{{device, {}}, 5, nullptr};
    return {
        VynSdk::getPktCounters(1, device, 2, 4, count),
        VynSdk::genOnePkt(1, device, 2, 68, 7, 4, pkt, phase0, 9),
        VynSdk::disableAppId(1, device, 2, 4),
        VynSdk::disablePktGen(1, device, 2, 68),
        pipe_mgr_lrn_digest_notification_register(1, device, 77, &NotingChip::onDigest, &cookie),
        pipe_mgr_lrn_digest_notification_deregister(1, device, 77),
        pipe_mgr_flow_lrn_notify_ack(1, 77, &message),
    };
}

TEST(SdkSeam, HandsEveryFunctionToTheChipOfItsDevice) {
    NotingChip chip;
    Registration const registration(3, chip);
    callEverything(3, chip);
    std::string const pkt(120, '0');
    std::string const phase0(32, '0');
    EXPECT_EQ(
        chip.calls,
        (Calls{"getPktCounters session=1 device=3 pipe=2 appId=4 -> 0 count=5",
               "genOnePkt session=1 device=3 pipe=2 genPort=68 portIndex=7 appId=4 pkt=" + pkt +
                   " phase0=" + phase0 + " pktId=9 -> 0",
               "disableAppId session=1 device=3 pipe=2 appId=4 -> 0",
               "disablePktGen session=1 device=3 pipe=2 genPort=68 -> 0",
               "pipe_mgr_lrn_digest_notification_register session=1 device=3 handle=77 -> 0",
               "pipe_mgr_lrn_digest_notification_deregister session=1 device=3 handle=77 -> 0",
               "pipe_mgr_flow_lrn_notify_ack session=1 handle=77 -> 0"}));
}

TEST(SdkSeam, HandsCallbackCookieAndMessageToTheChip) {
    NotingChip chip;
    Registration const registration(3, chip);
    pipe_mgr_lrn_digest_notification_register(1, 3, 77, &NotingChip::onDigest, &chip);
    EXPECT_TRUE(chip.registersThis);
    pipe_flow_lrn_msg_t message{{3, {}}, 5, nullptr};
    pipe_mgr_flow_lrn_notify_ack(1, 77, &message);
    EXPECT_EQ(chip.messages.back(), &message);
}

TEST(SdkSeam, ReturnsWhatTheChipReturns) {
    NotingChip chip;
    chip.status = -42;
    Registration const registration(3, chip);
    EXPECT_EQ(callEverything(3, chip), std::vector<p4_pd_status_t>(7, -42));
    std::uint64_t count = 0;
    VynSdk::getPktCounters(1, 3, 2, 4, count);
    EXPECT_EQ(count, 77U);
}

TEST(SdkSeam, LeavesACountAloneThatTheChipDoesNotSet) {
    struct RefusingChip final : SdkSeam::Chip {
        void call(SdkSeam::SdkCall& call) override { call.rc = -1; }
    };
    RefusingChip refusing;
    Registration const registration(3, refusing);
    std::uint64_t count = 5;
    VynSdk::getPktCounters(1, 3, 2, 4, count);
    EXPECT_EQ(count, 5U);
}

TEST(SdkSeam, RefusesEveryFunctionForAnUnknownDevice) {
    NotingChip chip;
    Registration const registration(3, chip);
    EXPECT_EQ(callEverything(4, chip), std::vector<p4_pd_status_t>(7, SdkSeam::unknownDevice));
    EXPECT_EQ(chip.calls, Calls{});
}

TEST(SdkSeam, RefusesADeviceWhoseChipHasLeft) {
    NotingChip chip;
    { Registration const registration(3, chip); }
    EXPECT_EQ(VynSdk::disableAppId(1, 3, 0, 4), SdkSeam::unknownDevice);
    EXPECT_EQ(chip.calls, Calls{});
}

TEST(SdkSeam, RefusesASecondChipForADevice) {
    NotingChip chip;
    NotingChip other;
    Registration const registration(3, chip);
    EXPECT_THROW(Registration(3, other), std::logic_error);
    EXPECT_THROW(Registration(3, chip), std::logic_error);
    VynSdk::disableAppId(1, 3, 0, 4);
    EXPECT_EQ(chip.calls.size(), 1U);
    EXPECT_EQ(other.calls.size(), 0U);
}

TEST(SdkSeam, TakesAnotherChipOnceTheFirstHasLeft) {
    NotingChip chip;
    NotingChip other;
    { Registration const registration(3, chip); }
    Registration const registration(3, other);
    EXPECT_EQ(registration.device(), 3);
    EXPECT_EQ(VynSdk::disableAppId(1, 3, 0, 4), 0);
    EXPECT_EQ(other.calls, (Calls{"disableAppId session=1 device=3 pipe=0 appId=4 -> 0"}));
}

TEST(SdkSeam, HandsTheAcknowledgementToTheChipOfTheMessagesFirstByte) {
    NotingChip chip;
    NotingChip other;
    Registration const registration(0, chip);
    Registration const otherRegistration(255, other);
    pipe_flow_lrn_msg_t message{{0, {}}, 1, nullptr};
    *reinterpret_cast<std::uint8_t*>(&message) = 255;
    EXPECT_EQ(pipe_mgr_flow_lrn_notify_ack(1, 77, &message), 0);
    EXPECT_EQ(chip.calls, Calls{});
    EXPECT_EQ(other.calls, (Calls{"pipe_mgr_flow_lrn_notify_ack session=1 handle=77 -> 0"}));
}

TEST(SdkSeam, GivesThePipeOfADevicePort) {
    EXPECT_EQ(dev_port_to_pipe_id(0), 0U);
    EXPECT_EQ(dev_port_to_pipe_id(127), 0U);
    EXPECT_EQ(dev_port_to_pipe_id(128), 1U);
    EXPECT_EQ(dev_port_to_pipe_id(455), 3U);
    EXPECT_EQ(dev_port_to_pipe_id(511), 3U);
}

// One chip acknowledges from its own thread while another comes and goes.
TEST(SdkSeam, TakesAcknowledgementsWhileAnotherChipRegisters) {
    constexpr int rounds = 1000;
    NotingChip chip;
    NotingChip other;
    Registration const registration(0, chip);
    std::thread acknowledger([] {
        pipe_flow_lrn_msg_t message{{0, {}}, 1, nullptr};
        for (int i = 0; i < rounds; ++i) {
            pipe_mgr_flow_lrn_notify_ack(1, 77, &message);
        }
    });
    for (int i = 0; i < rounds; ++i) {
        Registration const otherRegistration(1, other);
    }
    acknowledger.join();
    EXPECT_EQ(chip.calls.size(), static_cast<std::size_t>(rounds));
    EXPECT_EQ(other.calls.size(), 0U);
}

}  // namespace
