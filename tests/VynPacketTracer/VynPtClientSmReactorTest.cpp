// The reactors, one a request.
#include "VynPacketTracer/ClientFixture.h"

namespace VynPacketTracer {
namespace {

class RequestReactorTest : public RunningClientTest {};

TEST_F(RequestReactorTest, ThatIsGivenARequestOfAnotherIdHandlesThatOne) {
    request(1);
    auto const reactor = client->request(id("noc", 1));
    EXPECT_EQ(first(after([&] { reactor->notifierIs(makeRequest("noc", 2, "Ethernet1")); })),
              "VynPtClientSm/7 handleRequest:client:noc reqId:2");
}

TEST_F(RequestReactorTest, IsRegisteredWhenItHasHandledItsRequest) {
    auto const reactor = Vanta::makeNode<NestedSm_Request>(nullptr, client.get());
    bool registered = true;
    recorder.onTrace = [&] { registered = reactor->registered(); };
    reactor->notifierIs(makeRequest("noc", 1, "Ethernet1"));
    EXPECT_FALSE(registered);
    EXPECT_TRUE(reactor->registered());
}

TEST_F(RequestReactorTest, WithoutARequestIsSwitchedOffWhenItsRequestIsWithdrawn) {
    request(1);
    auto const reactor = client->request(id("noc", 1));
    reactor->notifierIs(nullptr);
    withdraw(1);
    EXPECT_FALSE(reactor->hasNotificationActive());
}

TEST_F(RequestReactorTest, ANullRequestIsRefusedAndChangesNothing) {
    request(1);
    try {
        client->requestIs(nullptr);
        FAIL() << "nothing was raised";
    } catch (Kel::NullArgumentError const& error) {
        EXPECT_EQ(error.typeName(), "PacketTracerClientSm");
        EXPECT_EQ(error.attribute(), "request");
    }
    EXPECT_TRUE(client->requestHas(id("noc", 1)));
}

TEST_F(RequestReactorTest, ANewReactorDoesNotReact) {
    EXPECT_EQ(after([&] { client->requestIs(makeRequest("noc", 1, "Ethernet1")); }), Lines{});
    EXPECT_TRUE(client->request(id("noc", 1))->registered());
    EXPECT_TRUE(client->request(id("noc", 1))->hasNotificationActive());
}

TEST_F(RequestReactorTest, TheSameRequestAgainDoesNotReact) {
    auto const made = request(1);
    EXPECT_EQ(after([&] { client->requestIs(made); }), Lines{});
}

TEST_F(RequestReactorTest, AnotherRequestOfTheSameIdIsHandledAtOnce) {
    request(1);
    EXPECT_EQ(after([&] { client->requestIs(makeRequest("noc", 1, "Ethernet1")); }),
              acceptedAgain(1));
}

TEST_F(RequestReactorTest, ATornDownReactorWatchesAnotherRequestWithoutReacting) {
    request(1);
    client->kelDoZombieReactors(true);
    auto const other = makeRequest("noc", 1, "Ethernet1");
    EXPECT_EQ(after([&] { client->requestIs(other); }), Lines{});
    EXPECT_EQ(client->request(id("noc", 1))->notifier(), other);
}

TEST_F(RequestReactorTest, TornDownIgnoresValid) {
    auto const watched = request(1);
    auto const reactor = client->request(id("noc", 1));
    reactor->kelDoZombieReactors(true);
    reactor->hasNotificationActiveIs(true);
    recorder.take();
    watched->validIs(false);
    EXPECT_EQ(happened(), Lines{});
}

TEST_F(RequestReactorTest, IsKeyedByItsRequestsId) {
    request(1);
    EXPECT_EQ(client->request(id("noc", 1))->key(), id("noc", 1));
    EXPECT_EQ(client->request(id("noc", 2)), nullptr);
}

TEST_F(RequestReactorTest, RequestDelSilencesAndRemovesIt) {
    auto const made = request(1);
    auto const reactor = client->request(id("noc", 1));
    client->requestDel(id("noc", 1));
    EXPECT_FALSE(reactor->hasNotificationActive());
    EXPECT_TRUE(reactor->isZombie());
    EXPECT_FALSE(client->requestHas(id("noc", 1)));
    EXPECT_EQ(after([&] { made->validIs(false); }), Lines{});
}

TEST_F(RequestReactorTest, RequestDelOfAnAbsentIdIsIgnored) {
    EXPECT_EQ(after([&] { client->requestDel(id("noc", 1)); }), Lines{});
}

TEST_F(RequestReactorTest, RequestDelMayBeGivenTheReactorsOwnKey) {
    request(1);
    client->requestDel(client->request(id("noc", 1))->notifier()->id());
    EXPECT_FALSE(client->requestHas(id("noc", 1)));
}

TEST_F(RequestReactorTest, RequestDelAllRemovesEachOne) {
    request(1);
    request(2);
    client->requestDelAll();
    EXPECT_FALSE(client->requestHas(id("noc", 1)));
    EXPECT_FALSE(client->requestHas(id("noc", 2)));
}

TEST_F(RequestReactorTest, WithoutItsOwnerItDoesNothing) {
    auto const made = request(1);
    auto const reactor = client->request(id("noc", 1));
    client = nullptr;
    EXPECT_EQ(after([&] {
                  reactor->kel_handleRequest_valid();
                  made->validIs(false);
              }),
              Lines{});
}

TEST_F(RequestReactorTest, KeepsItsOwnerWhileTheOwnerIsOnlyMarkedTornDown) {
    request(1);
    client->kelDoZombieReactors(true);
    EXPECT_EQ(after([&] { client->request(id("noc", 1))->kel_handleRequest_valid(); }),
              acceptedAgain(1));
}

TEST_F(RequestReactorTest, RemovedItDoesNothingWhenItsOwnerHasGone) {
    request(1);
    auto const reactor = client->request(id("noc", 1));
    withdraw(1);
    client = nullptr;
    EXPECT_EQ(after([&] { reactor->kel_handleRequest_valid(); }), Lines{});
}

TEST_F(RequestReactorTest, WithoutARequestItHandlesTheEmptyId) {
    auto const reactor = Vanta::makeNode<NestedSm_Request>(nullptr, client.get());
    EXPECT_EQ(reactor->key(), PacketTracer::RequestId());
    EXPECT_EQ(after([&] { reactor->kel_handleRequest_valid(); }),
              (Lines{"VynPtClientSm/7 handleRequest:client: reqId:0",
                     "VynPtClientSm/7 handleRequest:del client: reqId:0"}));
}

TEST_F(RequestReactorTest, PointedAtNoRequestItDoesNotReact) {
    request(1);
    auto const reactor = client->request(id("noc", 1));
    EXPECT_EQ(after([&] { reactor->notifierIs(nullptr); }), Lines{});
    EXPECT_TRUE(reactor->registered());
}

TEST_F(RequestReactorTest, IsRegisteredOnceItWatchesAnotherRequest) {
    auto const reactor = Vanta::makeNode<NestedSm_Request>(nullptr, client.get());
    EXPECT_FALSE(reactor->registered());
    EXPECT_EQ(after([&] { reactor->notifierIs(makeRequest("noc", 9, "Ethernet1")); }).size(), 2u);
    EXPECT_TRUE(reactor->registered());
}

TEST_F(RequestReactorTest, AreReadInTheOrderInWhichTheirRequestsCame) {
    request(2);
    request(1);
    std::string keys;
    for (HN_NestedSm_Request const& entry : client->request()) {
        EXPECT_EQ(RequestKeyFunktor()(*entry.value), entry.key);
        keys += keyText(entry.key) + " ";
    }
    EXPECT_EQ(keys, "noc/2 noc/1 ");
}

TEST_F(RequestReactorTest, RemovedInItsOwnCallByRequestIsStaysAsItWasRemoved) {
    request(1);
    auto const reactor = client->request(id("noc", 1));
    pktGenConfig->cfgDel(id("noc", 1));
    OnPublication const observer(pktGenConfig->publisher(),
                                 [&](auto, auto) { client->requestDel(id("noc", 1)); });
    auto const other = makeRequest("noc", 1, "Ethernet1");
    client->requestIs(other);
    EXPECT_TRUE(reactor->isZombie());
    EXPECT_FALSE(reactor->hasNotificationActive());
    EXPECT_EQ(after([&] {
                  other->validIs(false);
                  reactor->kel_handleRequest_valid();
              }),
              Lines{});
}

TEST_F(RequestReactorTest, RemovedInItsOwnCallByNotifierIsIsNotRegisteredAgain) {
    auto const reactor = Vanta::makeNode<NestedSm_Request>(nullptr, client.get());
    clientStatus->resultIs(id("noc", 1));
    OnPublication const observer(clientStatus->publisher(),
                                 [&](auto, auto) { reactor->ownerDel(); });
    reactor->notifierIs(makeRequest("noc", 1, "Ethernet1"));  // withdrawn, so the result goes
    EXPECT_FALSE(reactor->registered());
}

TEST_F(RequestReactorTest, WithoutAnOwnerIsRegisteredOnceItWatchesARequest) {
    auto const reactor = Vanta::makeNode<NestedSm_Request>(nullptr, nullptr);
    EXPECT_EQ(after([&] { reactor->notifierIs(makeRequest("noc", 1, "Ethernet1")); }), Lines{});
    EXPECT_TRUE(reactor->registered());
}

TEST_F(RequestReactorTest, LivesUntilTheEndOfTheCallThatRemovesIt) {
    request(1);
    NestedSm_Request& reactor = *client->request(id("noc", 1));
    pktGenConfig->cfgDel(id("noc", 1));
    auto const nodes = Vanta::Node::liveCount();
    OnPublication const observer(pktGenConfig->publisher(), [&](auto, auto) {
        client->requestDel(id("noc", 1));
        EXPECT_EQ(reactor.refCount(), 1u);
    });
    reactor.notifierIs(makeRequest("noc", 1, "Ethernet1"));
    // The reactor and the request that only it held have gone; a job has come.
    EXPECT_EQ(Vanta::Node::liveCount(), nodes);
}

}  // namespace
}  // namespace VynPacketTracer
