#include "VynPacketTracer/VynPtClientSm.h"

#include "TableRow.h"
#include "VynPacketTracer/ClientFixture.h"

namespace VynPacketTracer {
namespace {

// ---- The beginning

class PacketTracerClientSmTest : public ClientTest {};

TEST_F(PacketTracerClientSmTest, RequestsThatAreThereAtTheBeginningAreHandledOnceAfterTheResults) {
    request(1);
    request(2);
    clientStatus->resultIs(id("noc", 3));
    EXPECT_EQ(after([&] { start(); }), (Lines{
                                            "VynPtClientSm/7 handleInitialized:client noc",
                                            "VynPtClientSm/7 handleResults:client noc #status:1",
                                            "result del noc/3",
                                            "VynPtClientSm/7 handleRequests:client noc #request:2",
                                        } +
                                        accepted(1) + accepted(2)));
    EXPECT_TRUE(client->requestHas(id("noc", 1)));
    EXPECT_TRUE(client->requestHas(id("noc", 2)));
}

TEST_F(PacketTracerClientSmTest, ReactorsAreThereBeforeTheFirstRequestIsHandled) {
    request(1);
    auto const held = clientConfig->request(id("noc", 1))->refCount();
    std::uint32_t whileHandled = 0;
    OnPublication const observer(pktGenConfig->publisher(), [&](auto, auto) {
        whileHandled = clientConfig->request(id("noc", 1))->refCount();
    });
    start();
    // handleRequest() holds the request, and so does its reactor.
    EXPECT_EQ(whileHandled, held + 2);
}

TEST_F(PacketTracerClientSmTest, RequestsAreHandledInTheOrderInWhichTheyCame) {
    request(3);
    request(1);
    request(2);
    start();
    EXPECT_EQ(happened("cfg"), (Lines{"cfg add noc/3", "cfg add noc/1", "cfg add noc/2"}));
}

TEST_F(PacketTracerClientSmTest, TheCreatorDoesTheSameAsTheFactory) {
    auto const made = PacketTracerClientSm::PacketTracerClientSmIs(
        "noc", clientConfig, clientStatus, pktGenConfig, systemStatus, fcsd, bridgingConfig,
        chipStatus);
    EXPECT_EQ(made->name(), "noc");
    EXPECT_TRUE(made->hasNotificationActive());
}

TEST_F(PacketTracerClientSmTest, HoldsWhatItWasMadeOf) {
    start();
    EXPECT_EQ(client->name(), "noc");
    EXPECT_EQ(client->clientConfig(), clientConfig);
    EXPECT_EQ(client->clientStatus(), clientStatus);
    EXPECT_EQ(client->pktGenConfig(), pktGenConfig);
    EXPECT_EQ(client->systemStatus(), systemStatus);
    EXPECT_EQ(client->fcsd(), fcsd);
    EXPECT_EQ(client->bridgingConfig(), bridgingConfig);
    EXPECT_EQ(client->chipStatus(), chipStatus);
}

TEST_F(PacketTracerClientSmTest, IsActiveAfterItsCreation) {
    start();
    EXPECT_TRUE(client->hasNotificationActive());
    EXPECT_FALSE(client->isZombie());
}

TEST_F(PacketTracerClientSmTest, WithoutAConfigurationItHasNoRequestsAndLeavesNoResults) {
    clientConfig = nullptr;
    clientStatus->resultIs(id("noc", 1));
    EXPECT_EQ(after([&] { start(); }),
              (Lines{"VynPtClientSm/7 handleInitialized:client noc",
                     "VynPtClientSm/7 handleResults:client noc #status:1", "result del noc/1",
                     "VynPtClientSm/7 handleRequests:client noc #request:0"}));
    EXPECT_EQ(after([&] { client->handleRequest(id("noc", 2)); }),
              (Lines{"VynPtClientSm/7 handleRequest:client:noc reqId:2",
                     "VynPtClientSm/7 handleRequest:del client:noc reqId:2"}));
}

TEST_F(PacketTracerClientSmTest, AConstructionThatFailsLeavesNoSubscriptionBehind) {
    request(1);
    job(1);  // of another packet
    EXPECT_THROW(start(), Kel::ReinstantiationError);
    EXPECT_EQ(after([&] { request(2); }), Lines{});
}

TEST_F(PacketTracerClientSmTest, AConstructionThatFailsReleasesWhatItWasGiven) {
    request(1);
    job(1);
    EXPECT_THROW(start(), Kel::ReinstantiationError);
    EXPECT_EQ(clientConfig->refCount(), 1u);
    EXPECT_EQ(clientStatus->refCount(), 1u);
    EXPECT_EQ(pktGenConfig->refCount(), 1u);
    EXPECT_EQ(systemStatus->refCount(), 1u);
    EXPECT_EQ(clientConfig->request(id("noc", 1))->refCount(), 2u);  // the configuration's, ours
}

TEST_F(PacketTracerClientSmTest, ARequestThatComesWhileItBeginsIsHandledAtOnceAndInItsTurn) {
    request(1);
    OnPublication const observer(pktGenConfig->publisher(), [&](auto, auto) {
        if (!clientConfig->request(id("noc", 2))) {
            request(2);
        }
    });
    auto const lines = after([&] { start(); });
    Lines const expected = accepted(1) + accepted(2) + acceptedAgain(2);
    ASSERT_GT(lines.size(), expected.size());
    EXPECT_EQ(Lines(lines.end() - static_cast<std::ptrdiff_t>(expected.size()), lines.end()),
              expected);
}

// ---- Reactions to the configuration

class ClientReactionTest : public RunningClientTest {};

TEST_F(ClientReactionTest, ARequestThatIsAddedIsHandledOnce) {
    EXPECT_EQ(after([&] { request(1); }), accepted(1));
    EXPECT_TRUE(client->requestHas(id("noc", 1)));
}

TEST_F(ClientReactionTest, ARequestThatIsAddedIsHandledBeforeItsReactorIsMade) {
    bool reactor = true;
    OnPublication const observer(pktGenConfig->publisher(),
                                 [&](auto, auto) { reactor = client->requestHas(id("noc", 1)); });
    request(1);
    EXPECT_FALSE(reactor);
}

TEST_F(ClientReactionTest, ARequestThatIsWithdrawnLosesItsJobAndResultThenItsReactor) {
    request(1);
    clientStatus->resultIs(id("noc", 1));
    bool reactor = false;
    OnPublication const observer(pktGenConfig->publisher(),
                                 [&](auto, auto) { reactor = client->requestHas(id("noc", 1)); });
    EXPECT_EQ(after([&] { withdraw(1); }),
              (Lines{"VynPtClientSm/7 handleRequest:client:noc reqId:1",
                     "VynPtClientSm/7 handleRequest:del client:noc reqId:1", "cfg del noc/1",
                     "result del noc/1"}));
    EXPECT_TRUE(reactor);
    EXPECT_FALSE(client->requestHas(id("noc", 1)));
}

TEST_F(ClientReactionTest, ARequestWhoseValidChangesIsHandledThroughItsReactor) {
    auto const made = request(1, "Ethernet1", false);
    EXPECT_EQ(after([&] { made->validIs(true); }), accepted(1));
}

TEST_F(ClientReactionTest, ARequestThatBecomesInvalidAgainIsHandledToo) {
    auto const made = request(1);
    EXPECT_EQ(after([&] { made->validIs(false); }),
              (Lines{"VynPtClientSm/7 handleRequest:client:noc reqId:1",
                     "VynPtClientSm/7 handleRequest:client:noc reqId:1 not valid yet"}));
}

TEST_F(ClientReactionTest, AnyOtherAttributeOfARequestDoesNothing) {
    auto const made = request(1);
    EXPECT_EQ(after([&] {
                  made->etherTypeIs(0x8847);
                  made->mplsIs(true);
                  made->greIs(true);
                  made->intfIs(intf("Ethernet2"));
                  made->frameIs({});
              }),
              Lines{});
}

TEST_F(ClientReactionTest, ARequestThatIsReplacedIsHandledTwice) {
    request(1);
    EXPECT_EQ(after([&] { request(1); }), acceptedAgain(1) + acceptedAgain(1));
}

TEST_F(ClientReactionTest, ARequestThatIsReplacedIsWatchedInPlaceOfTheOldOne) {
    auto const old = request(1);
    auto const fresh = request(1);
    EXPECT_EQ(after([&] { old->validIs(false); }), Lines{});
    EXPECT_FALSE(after([&] { fresh->validIs(false); }).empty());
}

TEST_F(ClientReactionTest, ADescriptionOfTheConfigurationDoesNothing) {
    EXPECT_EQ(after([&] { clientConfig->descriptionIs("the night shift"); }), Lines{});
}

TEST_F(ClientReactionTest, ARequestOfAnotherClientsNameIsHandledUnderItsOwnId) {
    EXPECT_EQ(after([&] { clientConfig->requestIs(makeRequest("ops", 1, "Ethernet1")); }),
              (Lines{"VynPtClientSm/7 handleRequest:client:ops reqId:1",
                     "VynPtClientSm/7 isValidRequest:client:ops reqId:1", "cfg add ops/1"}));
}

TEST_F(ClientReactionTest, AClientNameThatLooksLikeAPlaceForAValueIsTracedAsItIs) {
    clientConfig->requestIs(makeRequest("%s", 1, "Ethernet1", false));
    EXPECT_EQ(happened("VynPtClientSm/7 handleRequest:client:%s reqId:1 not"),
              (Lines{"VynPtClientSm/7 handleRequest:client:%s reqId:1 not valid yet"}));
}

TEST_F(ClientReactionTest, DestroyingTheStateMachineLeavesItsJobsAndResults) {
    request(1);
    clientStatus->resultIs(id("noc", 1));
    EXPECT_EQ(after([&] { client = nullptr; }), Lines{});
    EXPECT_TRUE(pktGenConfig->cfgHas(id("noc", 1)));
    EXPECT_TRUE(result(1));
}

TEST_F(ClientReactionTest, ADestroyedStateMachineReactsToNothing) {
    auto const made = request(1);
    client = nullptr;
    EXPECT_EQ(after([&] {
                  made->validIs(false);
                  request(2);
                  withdraw(1);
              }),
              Lines{});
}

TEST_F(ClientReactionTest, ADestroyedStateMachineReleasesWhatItWasMadeOf) {
    request(1);
    client = nullptr;
    EXPECT_EQ(clientConfig->refCount(), 1u);
    EXPECT_EQ(clientStatus->refCount(), 1u);
    EXPECT_EQ(pktGenConfig->refCount(), 1u);
    EXPECT_EQ(systemStatus->refCount(), 1u);
    EXPECT_EQ(fcsd->refCount(), 1u);
    EXPECT_EQ(bridgingConfig->refCount(), 1u);
    EXPECT_EQ(chipStatus->refCount(), 1u);
    EXPECT_EQ(clientConfig->request(id("noc", 1))->refCount(), 2u);
}

TEST_F(ClientReactionTest, TheLastHolderOfTheJobsTakesThemAlong) {
    request(1);
    pktGenConfig = nullptr;
    EXPECT_EQ(after([&] { client = nullptr; }), (Lines{"cfg del noc/1"}));
}

// ---- Switching off and on, and tearing down

TEST_F(ClientReactionTest, SwitchedOffItReactsToNothing) {
    auto const made = request(1);
    client->hasNotificationActiveIs(false);
    EXPECT_FALSE(client->hasNotificationActive());
    EXPECT_EQ(after([&] {
                  request(2);
                  made->validIs(false);
              }),
              Lines{});
    EXPECT_FALSE(client->requestHas(id("noc", 2)));
}

TEST_F(ClientReactionTest, SwitchedOnAgainItReactsOnceToEachChange) {
    auto const made = request(1);
    client->hasNotificationActiveIs(false);
    client->hasNotificationActiveIs(true);
    EXPECT_EQ(after([&] { request(2); }), accepted(2));
    EXPECT_EQ(after([&] { made->validIs(false); }).size(), 2u);
}

TEST_F(ClientReactionTest, SwitchedOnTwiceItReactsOnceToEachChange) {
    client->hasNotificationActiveIs(true);
    EXPECT_EQ(after([&] { request(1); }), accepted(1));
}

TEST_F(ClientReactionTest, AReactorThatIsMadeWhileSwitchedOffFollows) {
    client->hasNotificationActiveIs(false);
    auto const made = makeRequest("noc", 1, "Ethernet1", false);
    client->requestIs(made);
    EXPECT_FALSE(client->request(id("noc", 1))->hasNotificationActive());
    EXPECT_EQ(after([&] { made->validIs(true); }), Lines{});
}

TEST_F(ClientReactionTest, TornDownItHandlesNothing) {
    auto const made = request(1);
    client->kelDoZombieReactors(true);
    EXPECT_TRUE(client->isZombie());
    EXPECT_TRUE(client->request(id("noc", 1))->isZombie());
    EXPECT_EQ(after([&] {
                  request(2);
                  made->validIs(false);
                  withdraw(1);
              }),
              Lines{});
}

TEST_F(ClientReactionTest, TornDownAllItsReactorsAre) {
    request(1);
    request(2);
    client->kelDoZombieReactors(true);
    EXPECT_TRUE(client->request(id("noc", 1))->isZombie());
    EXPECT_TRUE(client->request(id("noc", 2))->isZombie());
}

TEST_F(ClientReactionTest, MarkedAsItIsAlreadyItMarksItsReactorsAllTheSame) {
    request(1);
    auto const reactor = client->request(id("noc", 1));
    reactor->kelDoZombieReactors(true);
    client->kelDoZombieReactors(false);
    EXPECT_FALSE(reactor->isZombie());
}

TEST_F(ClientReactionTest, DestroyedItLeavesReactorsThatAreStillHeldTornDown) {
    request(1);
    auto const reactor = client->request(id("noc", 1));
    client = nullptr;
    EXPECT_TRUE(reactor->isZombie());
    EXPECT_FALSE(reactor->hasNotificationActive());
}

TEST_F(ClientReactionTest, DestroyedItLeavesNoReactorThatIsStillHeldAnOwner) {
    request(1);
    request(2);
    Vanta::Ptr<NestedSm_Request> const reactors[] = {client->request(id("noc", 1)),
                                                     client->request(id("noc", 2))};
    client = nullptr;
    for (auto const& reactor : reactors) {
        EXPECT_EQ(after([&] { reactor->kel_handleRequest_valid(); }), Lines{});
    }
}

TEST_F(ClientReactionTest, TornDownItStillKeepsItsReactorsInStep) {
    request(1);
    client->kelDoZombieReactors(true);
    request(2);
    withdraw(1);
    EXPECT_FALSE(client->requestHas(id("noc", 1)));
    ASSERT_TRUE(client->requestHas(id("noc", 2)));
    EXPECT_TRUE(client->request(id("noc", 2))->isZombie());
}

TEST_F(ClientReactionTest, NotTornDownAnyMoreItHandlesAgain) {
    auto const made = request(1);
    client->kelDoZombieReactors(true);
    client->kelDoZombieReactors(false);
    EXPECT_FALSE(client->request(id("noc", 1))->isZombie());
    EXPECT_EQ(after([&] { made->validIs(false); }).size(), 2u);
    EXPECT_EQ(after([&] { request(2); }), accepted(2));
}

// ---- What is called by hand

TEST_F(ClientReactionTest, InitializedAgainItRemovesStaleResultsAndHandlesEveryRequestAgain) {
    request(1);
    clientStatus->resultIs(id("noc", 2));
    EXPECT_EQ(after([&] { client->handleInitialized(); }),
              (Lines{"VynPtClientSm/7 handleInitialized:client noc",
                     "VynPtClientSm/7 handleResults:client noc #status:1", "result del noc/2",
                     "VynPtClientSm/7 handleRequests:client noc #request:1"} +
               acceptedAgain(1)));
    EXPECT_TRUE(client->requestHas(id("noc", 1)));
}

TEST_F(ClientReactionTest, ToldOfARequestByHandItHandlesItAndMakesItsReactor) {
    client->hasNotificationActiveIs(false);
    request(1);
    Vanta::Subscriber nobody;
    auto const key = id("noc", 1);
    EXPECT_EQ(after([&] {
                  client->clientConfigDispatch(clientConfig->publisher(), nobody, 130,
                                               Vanta::ValueRef::to(key), {});
              }),
              accepted(1));
    EXPECT_TRUE(client->requestHas(key));
}

TEST_F(ClientReactionTest, ToldOfAnotherAttributeByHandItDoesNothing) {
    Vanta::Subscriber nobody;
    EXPECT_EQ(after([&] {
                  client->clientConfigDispatch(clientConfig->publisher(), nobody, 131, {}, {});
              }),
              Lines{});
}

TEST_F(ClientReactionTest, SwitchedOffAndOnItDoesNotCatchUp) {
    auto const made = request(1, "Ethernet1", false);
    client->hasNotificationActiveIs(false);
    made->validIs(true);
    request(2);
    EXPECT_EQ(after([&] { client->hasNotificationActiveIs(true); }), Lines{});
    EXPECT_FALSE(client->requestHas(id("noc", 2)));
    EXPECT_EQ(after([&] { client->handleRequests(); }),
              (Lines{"VynPtClientSm/7 handleRequests:client noc #request:2"} + accepted(1) +
               accepted(2)));
}

TEST_F(ClientReactionTest, TheMarkTakenAwaySwitchesReactorsOnWhateverItsOwnNotificationsAre) {
    auto const made = request(1);
    client->hasNotificationActiveIs(false);
    client->kelDoZombieReactors(true);
    client->kelDoZombieReactors(false);
    EXPECT_FALSE(client->hasNotificationActive());
    EXPECT_EQ(after([&] { made->validIs(false); }).size(), 2u);
}

// ---- Reflection

TEST_F(PacketTracerClientSmTest, NumbersItsAttributesFrom130) {
    start();
    std::string text(client->typeInfo().name);
    for (auto const& attribute : client->typeInfo().attributes) {
        text += " " + std::to_string(attribute.number) + ":" + std::string(attribute.name);
    }
    EXPECT_EQ(text,
              "PacketTracerClientSm 130:name 131:clientConfig 132:clientStatus 133:pktGenConfig "
              "134:systemStatus 135:fcsd 136:bridgingConfig 137:chipStatus 138:request "
              "0:initialized");
}

TEST_F(PacketTracerClientSmTest, ItsReactorsAreReadWithTheirKeys) {
    start();
    request(1);
    EXPECT_EQ(tableRow(*client, 138), "request=[[[noc 1] object]]");
    auto const reactor = client->request(id("noc", 1));
    EXPECT_EQ(reactor->typeInfo().name, "NestedSm_Request");
    EXPECT_EQ(tableRow(*reactor, 0), "key=[noc 1]");
}

TEST_F(PacketTracerClientSmTest, ItsInitializedIsNamedAndHasNoValue) {
    start();
    EXPECT_EQ(tableRow(*client, 0), "initialized=null");
}

}  // namespace
}  // namespace VynPacketTracer
