#include "softchip/Explanations.h"

#include <gtest/gtest.h>

namespace SoftChip {
namespace {

Explanation explanation(std::uint16_t tag) {
    Explanation made;
    made.met(OuterTag{tag});
    made.took(Step::vlanClassification, Reason::taggedVlan);
    return made;
}

// The tag that tells explanations apart; -1 if there is none.
int tagOf(std::optional<Explanation> const& found) {
    return found ? std::get<OuterTag>(found->details(found->entries()[0])[0]).vlan : -1;
}

TEST(Explanations, KeepNothingWhileSwitchedOff) {
    Explanations explanations;
    explanations.add(1, explanation(10));
    EXPECT_FALSE(explanations.find(1));
}

TEST(Explanations, AreFoundByPacketId) {
    Explanations explanations;
    explanations.onIs(true);
    explanations.add(1, explanation(10));
    explanations.add(2, explanation(20));
    EXPECT_EQ(tagOf(explanations.find(1)), 10);
    EXPECT_FALSE(explanations.find(3));
}

TEST(Explanations, OfTheNewestPacketWithAnIdAreFound) {
    Explanations explanations;
    explanations.onIs(true);
    explanations.add(1, explanation(10));
    explanations.add(1, explanation(20));
    EXPECT_EQ(tagOf(explanations.find(1)), 20);
}

TEST(Explanations, OfTheOldestPacketsAreForgottenWhenThereAreTooMany) {
    Explanations explanations;
    explanations.onIs(true);
    for (std::uint16_t id = 0; id < 1500; ++id) {
        explanations.add(id, explanation(id));
    }
    EXPECT_FALSE(explanations.find(475));
    EXPECT_EQ(tagOf(explanations.find(476)), 476);
    EXPECT_EQ(tagOf(explanations.find(1499)), 1499);
}

TEST(Explanations, AreForgottenWhenSwitchedOff) {
    Explanations explanations;
    explanations.onIs(true);
    explanations.add(1, explanation(10));
    explanations.onIs(false);
    explanations.onIs(true);
    EXPECT_FALSE(explanations.find(1));
}

}  // namespace
}  // namespace SoftChip
