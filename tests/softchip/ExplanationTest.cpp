#include "softchip/Explanation.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace SoftChip {
namespace {

TEST(Explanation, AStepHasWhatWasMetSinceTheStepBefore) {
    Explanation explanation;
    explanation.took(Step::parse, Reason::parsed);
    explanation.met(LogicalPort::port(1));
    explanation.met(InLag{2});
    explanation.took(Step::portUp, Reason::portIsUp);
    explanation.met(InDomain{10});
    explanation.took(Step::vlanClassification, Reason::untaggedVlan);
    auto const entries = explanation.entries();
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_TRUE(explanation.details(entries[0]).empty());
    ASSERT_EQ(explanation.details(entries[1]).size(), 2U);
    EXPECT_EQ(explanation.details(entries[1])[1], Detail(InLag{2}));
    ASSERT_EQ(explanation.details(entries[2]).size(), 1U);
    EXPECT_EQ(explanation.details(entries[2])[0], Detail(InDomain{10}));
}

TEST(Explanation, BeginsAnewWhenItIsCleared) {
    Explanation explanation;
    explanation.met(InDomain{10});
    explanation.took(Step::parse, Reason::parsed);
    explanation.clear();
    explanation.met(InDomain{20});
    explanation.took(Step::portUp, Reason::portDown);
    ASSERT_EQ(explanation.entries().size(), 1U);
    EXPECT_EQ(explanation.entries()[0].reason, Reason::portDown);
    EXPECT_EQ(explanation.details(explanation.entries()[0])[0], Detail(InDomain{20}));
}

TEST(Explanation, ACopyTellsTheSame) {
    ParsedFrame frame;
    frame.srcPort = 7;
    Explanation explanation;
    explanation.metFrame(frame);
    explanation.took(Step::parse, Reason::parsed);
    Explanation const copy = explanation;
    explanation.clear();
    ASSERT_EQ(copy.entries().size(), 1U);
    EXPECT_EQ(copy.details(copy.entries()[0])[0], Detail(FrameItself()));
    EXPECT_EQ(copy.frame().srcPort, 7);
}

TEST(Explanation, DetailsAreValuesThatCopyAsBytes) {
    EXPECT_TRUE(std::is_trivially_copyable_v<Detail>);
    EXPECT_LE(sizeof(Detail), 40U);
}

}  // namespace
}  // namespace SoftChip
