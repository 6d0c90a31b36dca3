#include "softchip/Explanations.h"

#include <gtest/gtest.h>

namespace SoftChip {
namespace {

Explanation explanation(std::string detail) {
    return {{{Step::parse, Reason::parsed, std::move(detail)}}};
}

TEST(Explanations, KeepNothingWhileSwitchedOff) {
    Explanations explanations;
    explanations.add(1, explanation("one"));
    EXPECT_FALSE(explanations.find(1));
}

TEST(Explanations, AreFoundByPacketId) {
    Explanations explanations;
    explanations.onIs(true);
    explanations.add(1, explanation("one"));
    explanations.add(2, explanation("two"));
    EXPECT_EQ(explanations.find(1)->entries.at(0).detail, "one");
    EXPECT_FALSE(explanations.find(3));
}

TEST(Explanations, OfTheNewestPacketWithAnIdAreFound) {
    Explanations explanations;
    explanations.onIs(true);
    explanations.add(1, explanation("earlier"));
    explanations.add(1, explanation("later"));
    EXPECT_EQ(explanations.find(1)->entries.at(0).detail, "later");
}

TEST(Explanations, OfTheOldestPacketsAreForgottenWhenThereAreTooMany) {
    Explanations explanations;
    explanations.onIs(true);
    for (std::uint16_t id = 0; id < 1500; ++id) {
        explanations.add(id, explanation(std::to_string(id)));
    }
    EXPECT_FALSE(explanations.find(475));
    EXPECT_EQ(explanations.find(476)->entries.at(0).detail, "476");
    EXPECT_EQ(explanations.find(1499)->entries.at(0).detail, "1499");
}

TEST(Explanations, AreForgottenWhenSwitchedOff) {
    Explanations explanations;
    explanations.onIs(true);
    explanations.add(1, explanation("one"));
    explanations.onIs(false);
    explanations.onIs(true);
    EXPECT_FALSE(explanations.find(1));
}

}  // namespace
}  // namespace SoftChip
