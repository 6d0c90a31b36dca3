#include "PacketTracer/ClientStatus.h"

#include <gtest/gtest.h>

#include <vector>

#include "PacketTracer/Publications.h"

namespace {

using PacketTracer::ClientStatus;
using PacketTracer::RequestId;
using PacketTracer::Result;
using Vanta::Ptr;

using Changes = Publications<RequestId, Ptr<Result>>;

RequestId id(std::uint32_t number) {
    return {"client", number};
}

struct Status : testing::Test {
    Ptr<ClientStatus> status = ClientStatus::ClientStatusIs();
};

TEST_F(Status, CreatesAResultAndPublishesItUnderItsId) {
    Changes changes(status->publisher());
    auto const result = status->resultIs(id(7));
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->id(), id(7));
    EXPECT_FALSE(result->valid());
    EXPECT_EQ(status->result(id(7)), result);
    ASSERT_EQ(changes.seen.size(), 1U);
    EXPECT_EQ(changes.seen[0].attribute, 130U);
    EXPECT_EQ(changes.seen[0].key, id(7));
}

TEST_F(Status, FetchesAResultThatIsThereWithoutAWord) {
    auto const result = status->resultIs(id(7));
    result->validIs(true);
    Changes changes(status->publisher());
    EXPECT_EQ(status->resultIs(id(7)), result);
    EXPECT_TRUE(result->valid());
    EXPECT_TRUE(changes.seen.empty());
}

TEST_F(Status, HasNullForAResultThatIsNotThere) {
    EXPECT_EQ(status->result(id(7)), nullptr);
    EXPECT_EQ(status->result().size(), 0U);
}

TEST_F(Status, HandsOutTheResultThatItRemovesWithOnePublication) {
    auto const result = status->resultIs(id(7));
    Changes changes(status->publisher());
    EXPECT_EQ(status->resultDel(id(7)), result);
    EXPECT_EQ(status->result(id(7)), nullptr);
    ASSERT_EQ(changes.seen.size(), 1U);
    EXPECT_EQ(changes.seen[0].key, id(7));
}

TEST_F(Status, RemovesByTheResultsOwnId) {
    status->resultIs(id(7));
    Changes changes(status->publisher());
    status->resultDel(status->result().begin()->key);
    EXPECT_EQ(status->result().size(), 0U);
    EXPECT_EQ(changes.seen.at(0).key, id(7));
}

// Adds a result as soon as another goes, so that its place in memory is used again at once.
struct Refill {
    explicit Refill(ClientStatus& owner) : status(owner) {
        subscriber.subscribe<&Refill::add>(status.publisher(), this);
    }
    void add(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber, Vanta::ValueRef,
             Vanta::ValueRef) {
        subscriber.unsubscribe();
        status.resultIs(id(9));
    }
    ClientStatus& status;
    Vanta::Subscriber subscriber;
};

TEST_F(Status, TellsTheIdThatWentEvenWhenItsPlaceIsUsedAgain) {
    status->resultIs(id(7));
    Refill refill(*status);
    Changes changes(status->publisher());
    status->resultDel(status->result().begin()->key);
    ASSERT_EQ(changes.seen.size(), 2U);
    EXPECT_EQ(changes.seen[1].key, id(7));
}

TEST_F(Status, PublishesNothingWhenThereIsNothingToRemove) {
    Changes changes(status->publisher());
    EXPECT_EQ(status->resultDel(id(7)), nullptr);
    EXPECT_TRUE(changes.seen.empty());
}

TEST_F(Status, ListsResultsInTheOrderOfTheirCreation) {
    for (std::uint32_t number : {3, 1, 2, 1}) {
        status->resultIs(id(number));
    }
    std::vector<std::uint32_t> found;
    for (auto const& entry : status->result()) {
        found.push_back(entry.key.number());
    }
    EXPECT_EQ(found, (std::vector<std::uint32_t>{3, 1, 2}));
}

TEST(ClientStatus, SaysNothingOfItsResultsWhenItGoes) {
    auto status = ClientStatus::ClientStatusIs();
    auto const result = status->resultIs(id(7));
    Changes ofStatus(status->publisher());
    Changes ofResult(result->publisher());
    status = nullptr;
    EXPECT_TRUE(ofStatus.seen.empty());
    EXPECT_TRUE(ofResult.seen.empty());
    EXPECT_EQ(result->refCount(), 1U);
}

}  // namespace
