#include "PacketTracer/ClientConfig.h"

#include <gtest/gtest.h>

#include <vector>

#include "Kel/Error.h"
#include "PacketTracer/Publications.h"

namespace {

using PacketTracer::ClientConfig;
using PacketTracer::Request;
using PacketTracer::RequestId;
using Vanta::Ptr;

using Changes = Publications<RequestId, Ptr<Request>>;

RequestId id(std::uint32_t number) {
    return {"client", number};
}

struct ClientConfigOfThree : testing::Test {
    ClientConfigOfThree() {
        for (std::uint32_t number : {3, 1, 2}) {
            config->requestIs(Request::RequestIs(id(number)));
        }
    }
    std::vector<std::uint32_t> numbers() const {
        std::vector<std::uint32_t> found;
        for (auto const& entry : config->request()) {
            found.push_back(entry.key.number());
        }
        return found;
    }
    Ptr<ClientConfig> config = ClientConfig::ClientConfigIs();
};

using Numbers = std::vector<std::uint32_t>;

TEST(ClientConfig, HasNoRequestsAtFirst) {
    auto const config = ClientConfig::ClientConfigIs();
    EXPECT_EQ(config->request().size(), 0U);
    EXPECT_EQ(config->request(id(1)), nullptr);
}

TEST(ClientConfig, PublishesANewRequestUnderItsId) {
    auto const config = ClientConfig::ClientConfigIs();
    Changes changes(config->publisher());
    auto const request = Request::RequestIs(id(7));
    config->requestIs(request);
    EXPECT_EQ(config->request(id(7)), request);
    ASSERT_EQ(changes.seen.size(), 1U);
    EXPECT_EQ(changes.seen[0].attribute, 130U);
    EXPECT_EQ(changes.seen[0].key, id(7));
}

TEST_F(ClientConfigOfThree, ReplacesARequestInItsPlaceWithOnePublication) {
    auto const old = config->request(id(1));
    auto const changed = Request::RequestIs(id(1));
    Changes changes(config->publisher());
    config->requestIs(changed);
    EXPECT_EQ(numbers(), (Numbers{3, 1, 2}));
    EXPECT_EQ(config->request(id(1)), changed);
    ASSERT_EQ(changes.seen.size(), 1U);
    EXPECT_EQ(changes.seen[0].key, id(1));
    EXPECT_EQ(changes.seen[0].old, old);
}

TEST_F(ClientConfigOfThree, PublishesNothingForTheRequestThatIsThere) {
    Changes changes(config->publisher());
    config->requestIs(config->request(id(1)));
    EXPECT_TRUE(changes.seen.empty());
}

TEST_F(ClientConfigOfThree, RefusesNull) {
    EXPECT_THROW(config->requestIs(nullptr), Kel::NullArgumentError);
    EXPECT_EQ(numbers(), (Numbers{3, 1, 2}));
}

TEST_F(ClientConfigOfThree, HandsOutTheRequestThatItRemovesWithOnePublication) {
    auto const request = config->request(id(1));
    Changes changes(config->publisher());
    EXPECT_EQ(config->requestDel(id(1)), request);
    EXPECT_EQ(numbers(), (Numbers{3, 2}));
    ASSERT_EQ(changes.seen.size(), 1U);
    EXPECT_EQ(changes.seen[0].key, id(1));
}

TEST_F(ClientConfigOfThree, RemovesByTheRequestsOwnId) {
    EXPECT_NE(config->requestDel(config->request(id(1))->id()), nullptr);
    EXPECT_EQ(numbers(), (Numbers{3, 2}));
}

TEST_F(ClientConfigOfThree, RemovesByTheKeyOfTheEntryThatGoes) {
    Changes changes(config->publisher());
    config->requestDel(config->request().begin()->key);
    EXPECT_EQ(numbers(), (Numbers{1, 2}));
    EXPECT_EQ(changes.seen.at(0).key, id(3));
}

// Adds a request as soon as another goes, so that its place in memory is used again at once.
struct Refill {
    explicit Refill(ClientConfig& owner) : config(owner) {
        subscriber.subscribe<&Refill::add>(config.publisher(), this);
    }
    void add(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber, Vanta::ValueRef,
             Vanta::ValueRef) {
        subscriber.unsubscribe();
        config.requestIs(Request::RequestIs(id(9)));
    }
    ClientConfig& config;
    Vanta::Subscriber subscriber;
};

TEST_F(ClientConfigOfThree, TellsTheIdThatWentEvenWhenItsPlaceIsUsedAgain) {
    Refill refill(*config);
    Changes changes(config->publisher());
    config->requestDel(config->request().begin()->key);
    ASSERT_EQ(changes.seen.size(), 2U);
    EXPECT_EQ(changes.seen[0].key, id(9));  // the inner publication is delivered first
    EXPECT_EQ(changes.seen[1].key, id(3));
}

TEST_F(ClientConfigOfThree, PublishesNothingWhenThereIsNothingToRemove) {
    Changes changes(config->publisher());
    EXPECT_EQ(config->requestDel(id(4)), nullptr);
    EXPECT_TRUE(changes.seen.empty());
}

TEST_F(ClientConfigOfThree, PutsARequestThatWasRemovedAndAddedAgainLast) {
    config->requestIs(config->requestDel(id(3)));
    EXPECT_EQ(numbers(), (Numbers{1, 2, 3}));
}

TEST(ClientConfig, PublishesItsDescriptionOnlyWhenItChanges) {
    auto const config = ClientConfig::ClientConfigIs();
    Publications<int, Vanta::String> changes(config->publisher());
    config->descriptionIs("vynpt");
    config->descriptionIs("vynpt");
    EXPECT_EQ(config->description(), "vynpt");
    ASSERT_EQ(changes.seen.size(), 1U);
    EXPECT_EQ(changes.seen[0].attribute, 131U);
}

}  // namespace
