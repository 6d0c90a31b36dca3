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

// Notes every call with its arguments and returns `status`.
struct NotingChip final : SdkSeam::Chip {
    p4_pd_status_t note(std::string const& call) {
        calls.push_back(call);
        return status;
    }
    static std::string text(std::uint64_t number) { return " " + std::to_string(number); }

    p4_pd_status_t getPktCounters(p4_pd_sess_hdl_t session, std::uint32_t pipe, std::uint32_t appId,
                                  std::uint64_t& count) override {
        count = 77;
        return note("getPktCounters" + text(session) + text(pipe) + text(appId));
    }
    p4_pd_status_t genOnePkt(p4_pd_sess_hdl_t session, std::uint32_t pipe, std::uint32_t genPort,
                             std::uint8_t portIndex, std::uint32_t appId,
                             std::span<std::uint8_t const> pkt,
                             std::span<std::uint8_t const> phase0, std::uint16_t pktId) override {
        return note("genOnePkt" + text(session) + text(pipe) + text(genPort) + text(portIndex) +
                    text(appId) + text(pkt.size()) + text(phase0.size()) + text(pktId));
    }
    p4_pd_status_t disableAppId(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                std::uint32_t appId) override {
        return note("disableAppId" + text(session) + text(pipe) + text(appId));
    }
    p4_pd_status_t disablePktGen(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                 std::uint32_t genPort) override {
        return note("disablePktGen" + text(session) + text(pipe) + text(genPort));
    }
    p4_pd_status_t digestRegister(p4_pd_sess_hdl_t session, std::uint32_t digestHandle,
                                  pipe_flow_lrn_notify_cb callback, void* cookie) override {
        bool const complete = callback == &onDigest && cookie == this;
        return note("digestRegister" + text(session) + text(digestHandle) + text(complete));
    }
    p4_pd_status_t digestDeregister(p4_pd_sess_hdl_t session, std::uint32_t digestHandle) override {
        return note("digestDeregister" + text(session) + text(digestHandle));
    }
    p4_pd_status_t notifyAck(p4_pd_sess_hdl_t session, std::uint32_t digestHandle,
                             pipe_flow_lrn_msg_t* message) override {
        return note("notifyAck" + text(session) + text(digestHandle) + text(message->num_entries));
    }
    static p4_pd_status_t onDigest(p4_pd_sess_hdl_t, pipe_flow_lrn_msg_t*, void*) { return 0; }

    Calls calls;
    p4_pd_status_t status = 0;
};

// Every function of the SDK with arguments that tell it from the others.
std::vector<p4_pd_status_t> callEverything(VynId::VynDevId device, NotingChip& cookie) {
    std::uint64_t count = 0;
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
    EXPECT_EQ(chip.calls,
              (Calls{"getPktCounters 1 2 4", "genOnePkt 1 2 68 7 4 60 16 9", "disableAppId 1 2 4",
                     "disablePktGen 1 2 68", "digestRegister 1 77 1", "digestDeregister 1 77",
                     "notifyAck 1 77 5"}));
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
    EXPECT_EQ(other.calls, (Calls{"disableAppId 1 0 4"}));
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
    EXPECT_EQ(other.calls, (Calls{"notifyAck 1 77 1"}));
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
