#include "PacketTracer/Result.h"

#include <gtest/gtest.h>

#include <vector>

#include "PacketTracer/Publications.h"
#include "TableRow.h"

namespace {

using PacketTracer::Result;
using PacketTracer::ResultEntry;
using PacketTracer::State;

Plexa::IntfId intf(char const* name) {
    return *Plexa::IntfId::fromName(name);
}

Vanta::Ptr<Result> newResult() {
    return Result::ResultIs({"client", 1});
}

std::vector<ResultEntry> entries(Result const& result) {
    std::vector<ResultEntry> found;
    for (auto const& entry : result.egressIntf()) {
        found.push_back(entry.key);
    }
    return found;
}

TEST(Result, IsInitialNotValidAndWithoutEgressAtFirst) {
    auto const result = newResult();
    EXPECT_EQ(result->state(), State::initial);
    EXPECT_EQ(static_cast<int>(result->state()), 0);
    EXPECT_FALSE(result->valid());
    EXPECT_TRUE(entries(*result).empty());
    EXPECT_EQ(result->id(), PacketTracer::RequestId("client", 1));
}

TEST(Result, PublishesItsStateOnlyWhenItChanges) {
    auto const result = newResult();
    Publications<int, State> publications(result->publisher());
    result->stateIs(State::noEgress);
    result->stateIs(State::noEgress);
    ASSERT_EQ(publications.seen.size(), 1U);
    EXPECT_EQ(publications.seen[0].attribute, 131U);
    EXPECT_EQ(publications.seen[0].old, State::initial);
}

TEST(Result, TakesEveryStateByNumber) {
    auto const result = newResult();
    result->stateIs(static_cast<State>(4));
    EXPECT_EQ(result->state(), State::egressFound);
}

TEST(Result, PublishesValidOnlyWhenItChanges) {
    auto const result = newResult();
    Publications<int, bool> publications(result->publisher());
    result->validIs(false);
    result->validIs(true);
    result->validIs(true);
    ASSERT_EQ(publications.seen.size(), 1U);
    EXPECT_EQ(publications.seen[0].attribute, 132U);
}

TEST(Result, HoldsAnEgressEntryOnce) {
    auto const result = newResult();
    auto const entry = ResultEntry::fromPhysicalIntf(intf("Ethernet1"));
    Publications<ResultEntry, int> publications(result->publisher());
    result->egressIntfIs(entry);
    result->egressIntfIs(ResultEntry::fromPhysicalAndLogicalIntf(intf("Ethernet1"), {}));
    EXPECT_EQ(entries(*result), std::vector{entry});
    ASSERT_EQ(publications.seen.size(), 1U);
    EXPECT_EQ(publications.seen[0].attribute, 133U);
    EXPECT_EQ(publications.seen[0].key, entry);
}

TEST(Result, TellsEntriesApartByBothInterfaces) {
    auto const result = newResult();
    std::vector const expected{
        ResultEntry::fromPhysicalAndLogicalIntf(intf("Ethernet1"), intf("Lag1")),
        ResultEntry::fromPhysicalAndLogicalIntf(intf("Ethernet2"), intf("Lag1")),
        ResultEntry::fromPhysicalAndLogicalIntf(intf("Ethernet1"), {}),
        ResultEntry::fromPhysicalAndLogicalIntf({}, intf("Ethernet1")),
        ResultEntry::fromPhysicalAndLogicalIntf({}, {})};
    for (auto const& entry : expected) {
        result->egressIntfIs(entry);
    }
    EXPECT_EQ(entries(*result), expected);
}

TEST(Result, ListsEntriesInTheOrderInWhichTheyWereFound) {
    auto const result = newResult();
    std::vector const expected{ResultEntry::fromPhysicalIntf(intf("Ethernet9")),
                               ResultEntry::fromPhysicalIntf(intf("Ethernet1")),
                               ResultEntry::fromPhysicalIntf(intf("Cpu"))};
    for (auto const& entry : expected) {
        result->egressIntfIs(entry);
    }
    result->egressIntfIs(expected[0]);
    EXPECT_EQ(entries(*result), expected);
}

TEST(ResultEntry, OfAPhysicalInterfaceHasNoLogicalOne) {
    auto const entry = ResultEntry::fromPhysicalIntf(intf("Ethernet1"));
    EXPECT_EQ(entry.physicalIntf(), intf("Ethernet1"));
    EXPECT_TRUE(entry.logicalIntf().empty());
}

TEST(ResultEntry, IsReadAsAPairOfInterfaces) {
    auto const result = newResult();
    result->egressIntfIs(ResultEntry::fromPhysicalIntf(intf("Ethernet1")));
    result->egressIntfIs(ResultEntry::fromPhysicalAndLogicalIntf({}, intf("Lag3")));
    EXPECT_EQ(tableRow(*result, 133), "egressIntf=[[Ethernet1 ][Lag3]]");
}

}  // namespace
