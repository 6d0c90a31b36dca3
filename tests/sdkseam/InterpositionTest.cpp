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

    void call(SdkSeam::SdkCall& call) override { call.rc = number; }

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
        Interposition const inFront(5, front);
        EXPECT_EQ(answer(5), 3);
        EXPECT_EQ(answer(6), 2);
        EXPECT_EQ(&inFront.behind(), &chip);
    }
    EXPECT_EQ(answer(5), 1);
}

TEST(Interposition, SeveralStandInFrontOfEachOther) {
    NumberChip chip(1);
    NumberChip near(2);
    NumberChip far(3);
    Registration const registration(5, chip);
    Interposition const nearOne(5, near);
    std::optional<Interposition> farOne(std::in_place, 5, far);
    EXPECT_EQ(&farOne->behind(), &near);
    EXPECT_EQ(answer(5), 3);
    farOne.reset();
    EXPECT_EQ(answer(5), 2);
}

TEST(Interposition, NeedsAChip) {
    NumberChip front(1);
    EXPECT_THROW(Interposition(7, front), std::logic_error);
    EXPECT_EQ(answer(7), SdkSeam::unknownDevice);
}

}  // namespace
