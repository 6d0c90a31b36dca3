#include "sdkseam/Interposition.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>

#include "VynSdk/VynSdk.h"

namespace {

using SdkSeam::Interposition;
using SdkSeam::Registration;

// A chip that answers everything with its own number.
struct NumberChip final : SdkSeam::Chip {
    explicit NumberChip(p4_pd_status_t ownNumber) : number(ownNumber) {}

    p4_pd_status_t getPktCounters(p4_pd_sess_hdl_t, std::uint32_t, std::uint32_t,
                                  std::uint64_t&) override {
        return number;
    }
    p4_pd_status_t genOnePkt(p4_pd_sess_hdl_t, std::uint32_t, std::uint32_t, std::uint8_t,
                             std::uint32_t, std::span<std::uint8_t const>,
                             std::span<std::uint8_t const>, std::uint16_t) override {
        return number;
    }
    p4_pd_status_t disableAppId(p4_pd_sess_hdl_t, std::uint32_t, std::uint32_t) override {
        return number;
    }
    p4_pd_status_t disablePktGen(p4_pd_sess_hdl_t, std::uint32_t, std::uint32_t) override {
        return number;
    }
    p4_pd_status_t digestRegister(p4_pd_sess_hdl_t, std::uint32_t, pipe_flow_lrn_notify_cb,
                                  void*) override {
        return number;
    }
    p4_pd_status_t digestDeregister(p4_pd_sess_hdl_t, std::uint32_t) override { return number; }
    p4_pd_status_t notifyAck(p4_pd_sess_hdl_t, std::uint32_t, pipe_flow_lrn_msg_t*) override {
        return number;
    }

    p4_pd_status_t number;
};

p4_pd_status_t answer(VynId::VynDevId device) {
    return VynSdk::disableAppId(1, device, 0, 4);
}

TEST(Interposition, TakesTheCallsOfItsDeviceWhileItLives) {
    NumberChip chip(1);
    NumberChip other(2);
    NumberChip front(3);
    Registration const registration(5, chip);
    Registration const otherRegistration(6, other);
    {
        Interposition const place(5, front);
        EXPECT_EQ(answer(5), 3);
        EXPECT_EQ(answer(6), 2);
        EXPECT_EQ(&place.behind(), &chip);
    }
    EXPECT_EQ(answer(5), 1);
}

TEST(Interposition, SeveralStandInFrontOfEachOther) {
    NumberChip chip(1);
    NumberChip near(2);
    NumberChip far(3);
    Registration const registration(5, chip);
    Interposition const nearPlace(5, near);
    std::optional<Interposition> farPlace(std::in_place, 5, far);
    EXPECT_EQ(&farPlace->behind(), &near);
    EXPECT_EQ(answer(5), 3);
    farPlace.reset();
    EXPECT_EQ(answer(5), 2);
}

TEST(Interposition, NeedsAChip) {
    NumberChip front(1);
    EXPECT_THROW(Interposition(7, front), std::logic_error);
    EXPECT_EQ(answer(7), SdkSeam::unknownDevice);
}

}  // namespace
