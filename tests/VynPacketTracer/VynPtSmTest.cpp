#include "VynPacketTracer/VynPtSm.h"

#include "TableRow.h"
#include "VynPacketTracer/TracerFixture.h"

namespace VynPacketTracer {
namespace {

Lines const registered{
    "VynPtPktGenSm/7 handleInitialized:",
    "VynPtPktGenSm/9 initSocket:PktGenSm initSocket",
    "VynPtPktGenSm/9 registerPktTracerDigest:",
    "sdk pipe_mgr_lrn_digest_notification_register session=1 device=0 handle=77 -> 0",
    "VynPtPktGenSm/4 registerPktTracerDigest:pktTracerDigest registered",
    "VynPtPktGenSm/7 doWork:",
    "VynPtPktGenSm/4 doWork:PktGen task not running"};
// An entity that is neither a client's configuration nor its status.
Vanta::Ptr<Vanta::Node> otherEntity() {
    return Kel::Dir::DirIs();
}

// ---- The beginning

class PacketTracerSmTest : public TracerTest {};

TEST_F(PacketTracerSmTest, BeginsWithTheEngineThenTheClients) {
    client("noc");
    EXPECT_EQ(after([&] { tracer = made(); }),
              Lines{"VynPtSm/7 handleInitialized:pktTracerSupported:true pktGenSupportedtrue"} +
                  registered + Lines{"VynPtSm/7 handleClients:"} + begun("noc"));
}

TEST_F(PacketTracerSmTest, WithoutTraceSupportTheEngineIsMadeAllTheSame) {
    EXPECT_EQ(
        after([&] { tracer = made(false, false); }),
        (Lines{"VynPtSm/7 handleInitialized:pktTracerSupported:false pktGenSupportedfalse",
               "VynPtPktGenSm/7 handleInitialized:", "VynPtPktGenSm/7 doWork:",
               "VynPtPktGenSm/4 doWork:PktGen task not running", "VynPtSm/7 handleClients:"}));
    ASSERT_TRUE(tracer->pktGenSm());
    EXPECT_FALSE(tracer->pktGenSm()->pktTracerSupported());
}

TEST_F(PacketTracerSmTest, WithoutGeneratorSupportTheDigestIsRegisteredAllTheSame) {
    tracer = made(true, false);
    EXPECT_TRUE(chip.hasCallback());
    EXPECT_FALSE(tracer->pktGenSupported());
}

TEST_F(PacketTracerSmTest, ClientsThatAreThereAlreadyAreAllFound) {
    client("noc");
    client("ops");
    tracer = made();
    EXPECT_TRUE(clientSm("noc"));
    EXPECT_TRUE(clientSm("ops"));
}

TEST_F(PacketTracerSmTest, EntriesWithoutAnEntityAreSkippedAtTheBeginning) {
    config->entryIs("night", nullptr);
    client("noc");
    tracer = made();
    EXPECT_EQ(happened("VynPtSm/7 handleClient:"), (Lines{handled("noc")}));
}

TEST_F(PacketTracerSmTest, ClientsAreFoundInTheOrderOfTheConfigurationDirectory) {
    clientStatus("a");
    clientStatus("b");
    clientConfig("b");
    clientConfig("a");
    tracer = made();
    EXPECT_EQ(happened("VynPtSm/7 handleClient:"), (Lines{handled("b"), handled("a")}));
}

TEST_F(PacketTracerSmTest, AStatusWithoutAConfigurationIsNotEvenLookedAt) {
    clientStatus("noc");
    tracer = made();
    EXPECT_EQ(happened("VynPtSm/7 handleClient:"), Lines{});
}

TEST_F(PacketTracerSmTest, ADirectoryThatChangesWhileItBeginsIsReactedToAtOnceAndInItsTurn) {
    client("noc");
    request(1, "Ethernet9");  // has no port, so its result comes while the tracer begins
    OnPublication const observer(statusOf("noc")->publisher(), [&](auto, auto) {
        if (!configOf("late")) {
            client("late");
        }
    });
    auto const lines = after([&] { tracer = made(); });
    EXPECT_EQ(beginning(handled("late"), lines).size(), 3u);  // its two entries, then the walk
}

TEST_F(PacketTracerSmTest, HoldsWhatItWasMadeOf) {
    tracer = made();
    EXPECT_EQ(tracer->config(), config);
    EXPECT_EQ(tracer->status(), status);
    EXPECT_EQ(tracer->phase0DataIntf(), chip.phase0Data());
    EXPECT_TRUE(tracer->pktGenSupported());
    EXPECT_TRUE(tracer->pktTracerSupported());
    EXPECT_EQ(tracer->sessionHandle(), 1u);
    EXPECT_EQ(tracer->deviceId(), 0);
    EXPECT_EQ(tracer->resourceInfoIntf(), chip.learnQuanta());
    EXPECT_EQ(tracer->vyPdIntf(), chip.digestLayout());
    EXPECT_EQ(tracer->rootScheduler(), loop);
    EXPECT_EQ(tracer->systemStatus(), systemStatus);
    EXPECT_EQ(tracer->fcsd(), fcsd);
    EXPECT_EQ(tracer->bridgingConfig(), bridgingConfig);
    EXPECT_EQ(tracer->chipStatus(), chipStatus);
}

TEST_F(PacketTracerSmTest, HasItsCollectionsAndEngineFromTheBeginning) {
    tracer = made();
    EXPECT_TRUE(tracer->initialized());
    EXPECT_EQ(tracer->pktGenSm()->config(), tracer->pktGenCfg());
    EXPECT_EQ(tracer->pktGenSm()->status(), tracer->pktGenStatus());
    EXPECT_TRUE(tracer->hasNotificationActive());
    EXPECT_TRUE(tracer->pktGenSm()->hasNotificationActive());
    EXPECT_FALSE(tracer->isZombie());
}

TEST_F(PacketTracerSmTest, TheCreatorDoesTheSameAsTheFactory) {
    tracer = PacketTracerSm::PacketTracerSmIs(
        config, status, chip.phase0Data(), true, true, 1, chip.device(), chip.learnQuanta(),
        chip.digestLayout(), loop, systemStatus, fcsd, bridgingConfig, chipStatus);
    EXPECT_EQ(after([&] { client("noc"); }), Lines{handled("noc")} + begun("noc"));
}

TEST_F(PacketTracerSmTest, WithoutDirectoriesThereAreNoClients) {
    tracer = packetTracerSmFactory(nullptr, nullptr, chip.phase0Data(), true, true, 1,
                                   chip.device(), chip.learnQuanta(), chip.digestLayout(), loop,
                                   systemStatus, fcsd, bridgingConfig, chipStatus);
    EXPECT_EQ(after([&] { tracer->handleClients(); }), (Lines{"VynPtSm/7 handleClients:"}));
    EXPECT_EQ(after([&] { tracer->handleClient("noc"); }), (Lines{handled("noc")}));
    tracer->hasNotificationActiveIs(false);
    EXPECT_EQ(after([&] { tracer = nullptr; }), deregistered);
}

template <class T>
concept Publishes = requires(T const& object) {
    object.publisher();
};

TEST_F(PacketTracerSmTest, StateMachinesPublishNothing) {
    EXPECT_TRUE(Publishes<PktGenStatusData>);
    EXPECT_FALSE(Publishes<PacketTracerSm>);
    EXPECT_FALSE(Publishes<PacketTracerClientSm>);
    EXPECT_FALSE(Publishes<PktGenSm>);
    EXPECT_FALSE(Publishes<PktGenCfgData>);
}

TEST_F(PacketTracerSmTest, NumbersItsAttributes) {
    tracer = made();
    std::string text;
    for (auto const& attribute : tracer->typeInfo().attributes) {
        text += std::to_string(attribute.number) + ":" + std::string(attribute.name) + " ";
    }
    EXPECT_EQ(text,
              "130:config 131:status 132:phase0DataIntf 133:pktGenSupported "
              "134:pktTracerSupported 135:sessionHandle 136:deviceId 137:resourceInfoIntf "
              "138:vyPdIntf 139:rootScheduler 140:systemStatus 141:fcsd 142:bridgingConfig "
              "143:chipStatus 146:pktGenCfg 147:pktGenStatus 149:localStatus 150:pktGenSm "
              "151:clientSm 152:initialized ");
}

TEST_F(PacketTracerSmTest, ItsWatchersAndClientsAreReadWithTheirKeys) {
    client("noc");
    tracer = made();
    EXPECT_EQ(tableRow(*tracer, 149), "localStatus=[]");
    answer(1);
    EXPECT_EQ(tableRow(*tracer, 149), "localStatus=[[[noc 1] object]]");
    EXPECT_EQ(tableRow(*tracer, 151), "clientSm=[[noc object]]");
    auto const watcher = tracer->localStatus(id("noc", 1));
    EXPECT_EQ(watcher->typeInfo().name, "NestedSm_LocalStatus");
    EXPECT_EQ(tableRow(*watcher, 0), "key=[noc 1]");
}

TEST_F(PacketTracerSmTest, ReactsToTheEntriesOfItsDirectoriesAlone) {
    client("noc");
    tracer = made();
    Vanta::String const name("noc");
    EXPECT_EQ(after([&] {
                  config->publisher().publish(7, Vanta::ValueRef::to(name));
                  status->publisher().publish(7, Vanta::ValueRef::to(name));
              }),
              Lines{});
}

// ---- What is called by hand

TEST_F(RunningTracerTest, InitializedAgainItLeavesAloneWhatIsThere) {
    client("noc");
    auto const engine = tracer->pktGenSm();
    auto const jobs = tracer->pktGenCfg();
    auto const answers = tracer->pktGenStatus();
    auto const noc = clientSm("noc");
    EXPECT_EQ(after([&] { tracer->handleInitialized(); }),
              (Lines{"VynPtSm/7 handleInitialized:pktTracerSupported:true pktGenSupportedtrue",
                     "VynPtSm/7 handleClients:", handled("noc")}));
    EXPECT_EQ(tracer->pktGenSm(), engine);
    EXPECT_EQ(tracer->pktGenCfg(), jobs);
    EXPECT_EQ(tracer->pktGenStatus(), answers);
    EXPECT_EQ(clientSm("noc"), noc);
    EXPECT_TRUE(tracer->initialized());
}

TEST_F(RunningTracerTest, InitializedAgainItMakesWhatIsMissing) {
    client("noc");
    tracer->clientSmDel("noc");
    tracer->pktGenSmDel();
    tracer->pktGenStatusDel();
    tracer->handleInitialized();
    ASSERT_TRUE(tracer->pktGenSm());
    EXPECT_TRUE(tracer->pktGenSm()->hasNotificationActive());
    EXPECT_EQ(tracer->pktGenSm()->status(), tracer->pktGenStatus());
    EXPECT_TRUE(clientSm("noc"));
}

TEST_F(RunningTracerTest, InitializedAgainWithOtherJobsItRaisesForAClientThatIsThere) {
    client("noc");
    tracer->pktGenCfgDel();
    EXPECT_THROW(tracer->handleInitialized(), Kel::ReinstantiationError);
}

TEST_F(RunningTracerTest, ItsNewEngineMayBeRemovedByWhoeverHearsThatTheJobsOfTheOldOneGo) {
    auto const jobs = tracer->pktGenCfg().get();
    jobs->cfgIs(id("noc", 1), {}, {}, {});
    OnPublication const observer(jobs->publisher(), [&](auto, auto) { tracer->pktGenSmDel(); });
    tracer->pktGenCfgDel();
    tracer->handleInitialized();
    EXPECT_FALSE(tracer->pktGenSm());
}

TEST_F(RunningTracerTest, ToldOfAClientByHandItHandlesTheClient) {
    Vanta::Subscriber nobody;
    Vanta::String const name("noc");
    auto const key = Vanta::ValueRef::to(name);
    EXPECT_EQ(after([&] { tracer->configDispatch(config->publisher(), nobody, 266, key, {}); }),
              (Lines{handled("noc")}));
    EXPECT_EQ(after([&] { tracer->statusDispatch(status->publisher(), nobody, 266, key, {}); }),
              (Lines{handled("noc")}));
    EXPECT_EQ(after([&] {
                  tracer->configDispatch(config->publisher(), nobody, 130, {}, {});
                  tracer->statusDispatch(status->publisher(), nobody, 130, {}, {});
              }),
              Lines{});
}

TEST_F(RunningTracerTest, ItsClientsAreReadInTheOrderInWhichTheyCame) {
    client("ops");
    client("noc");
    std::string names;
    for (auto const& entry : tracer->clientSm()) {
        names += std::string(entry.value->name().view()) + " ";
    }
    EXPECT_EQ(names, "ops noc ");
    EXPECT_TRUE(tracer->clientSmHas("noc"));
    EXPECT_FALSE(tracer->clientSmHas("dev"));
}

TEST_F(RunningTracerTest, SwitchedOffAndOnItDoesNotCatchUpWithTheClients) {
    client("ops");
    tracer->hasNotificationActiveIs(false);
    client("noc");
    config->entryDel("ops");
    EXPECT_EQ(after([&] { tracer->hasNotificationActiveIs(true); }).size(), 0u);
    EXPECT_TRUE(clientSm("ops"));
    EXPECT_FALSE(clientSm("noc"));
    tracer->handleClient("ops");
    EXPECT_FALSE(clientSm("ops"));
}

// ---- A beginning that fails

// Two clients have a request of the same id with different packets: the second one's job fails.
class FailedBeginningTest : public TracerTest {
  protected:
    FailedBeginningTest() {
        client("noc");
        client("ops");
        request(1);
        auto const other = makeRequest("noc", 1, "Ethernet1");
        other->frameIs({1, 2, 3});
        configOf("ops")->requestIs(other);
    }
};

TEST_F(FailedBeginningTest, RaisesTheErrorToItsCaller) {
    EXPECT_THROW(made(), Kel::ReinstantiationError);
}

TEST_F(FailedBeginningTest, LeavesNoSubscriptionBehind) {
    EXPECT_THROW(made(), Kel::ReinstantiationError);
    EXPECT_EQ(after([&] {
                  clientConfig("late");
                  clientStatus("late");
                  request(2);
              }),
              Lines{});
}

TEST_F(FailedBeginningTest, LeavesNoEngineBehind) {
    EXPECT_THROW(made(), Kel::ReinstantiationError);
    EXPECT_FALSE(chip.hasCallback());
    EXPECT_EQ(after([&] {
                  phase0("Ethernet1");
                  turn();
              }),
              Lines{});
}

TEST_F(FailedBeginningTest, ReleasesWhatItWasGiven) {
    auto const noc = configOf("noc");
    auto const held = noc->refCount();
    EXPECT_THROW(made(), Kel::ReinstantiationError);
    EXPECT_EQ(config->refCount(), 1u);
    EXPECT_EQ(status->refCount(), 1u);
    EXPECT_EQ(chip.phase0Data()->refCount(), 1u);
    EXPECT_EQ(systemStatus->refCount(), 1u);
    EXPECT_EQ(noc->refCount(), held);
}

// ---- Clients come and go

class ClientsTest : public RunningTracerTest {};

TEST_F(ClientsTest, AConfigurationWithoutAStatusGetsItsStateMachineWhenTheStatusComes) {
    EXPECT_EQ(after([&] { clientConfig("noc"); }), (Lines{handled("noc")}));
    EXPECT_FALSE(clientSm("noc"));
    EXPECT_EQ(after([&] { clientStatus("noc"); }), begun("noc"));
    EXPECT_TRUE(clientSm("noc"));
}

TEST_F(ClientsTest, AStatusWithoutAConfigurationGetsItsStateMachineWhenTheConfigurationComes) {
    EXPECT_EQ(after([&] { clientStatus("noc"); }), (Lines{handled("noc")}));
    EXPECT_FALSE(clientSm("noc"));
    EXPECT_EQ(after([&] { clientConfig("noc"); }), begun("noc"));
}

TEST_F(ClientsTest, TheStateMachineStandsOnTheDirectoriesEntities) {
    client("noc");
    auto const made = clientSm("noc");
    EXPECT_EQ(made->name(), "noc");
    EXPECT_EQ(made->clientConfig(), configOf("noc"));
    EXPECT_EQ(made->clientStatus(), statusOf("noc"));
    EXPECT_EQ(made->pktGenConfig(), tracer->pktGenCfg());
    EXPECT_EQ(made->systemStatus(), systemStatus);
    EXPECT_EQ(made->fcsd(), fcsd);
    EXPECT_EQ(made->bridgingConfig(), bridgingConfig);
    EXPECT_EQ(made->chipStatus(), chipStatus);
}

TEST_F(ClientsTest, RemovingTheStatusAloneDeletesTheStateMachine) {
    client("noc");
    EXPECT_EQ(after([&] { status->entryDel("noc"); }), (Lines{handled("noc")}));
    EXPECT_FALSE(clientSm("noc"));
    EXPECT_TRUE(configOf("noc"));
}

TEST_F(ClientsTest, RemovingTheConfigurationAloneDeletesTheStateMachine) {
    client("noc");
    config->entryDel("noc");
    EXPECT_FALSE(clientSm("noc"));
}

TEST_F(ClientsTest, ARemovedClientsJobsAndResultsStay) {
    client("noc");
    request(1);
    auto const results = statusOf("noc");
    results->resultIs(id("noc", 1));
    EXPECT_EQ(after([&] { config->entryDel("noc"); }), (Lines{handled("noc")}));
    EXPECT_TRUE(tracer->pktGenCfg()->cfgHas(id("noc", 1)));
    EXPECT_TRUE(results->result(id("noc", 1)));
}

TEST_F(ClientsTest, AnEntryThatIsPublishedUnchangedKeepsTheStateMachine) {
    client("noc");
    auto const before = clientSm("noc");
    EXPECT_EQ(after([&] { config->entryIs("noc", configOf("noc")); }), (Lines{handled("noc")}));
    EXPECT_EQ(clientSm("noc"), before);
}

TEST_F(ClientsTest, AnEntityOfAnotherTypeCountsAsAbsent) {
    config->entryIs("noc", otherEntity());
    clientStatus("noc");
    EXPECT_FALSE(clientSm("noc"));
}

TEST_F(ClientsTest, AnEntityThatIsReplacedByOneOfAnotherTypeDeletesTheStateMachine) {
    client("noc");
    status->entryIs("noc", otherEntity());
    EXPECT_FALSE(clientSm("noc"));
}

TEST_F(ClientsTest, AnEntityThatIsTakenOutOfItsEntryDeletesTheStateMachine) {
    client("noc");
    EXPECT_EQ(after([&] { config->entryIs("noc", nullptr); }), (Lines{handled("noc")}));
    EXPECT_FALSE(clientSm("noc"));
}

TEST_F(ClientsTest, ReplacingAConfigurationUnderAStateMachineEndsTheProcess) {
    client("noc");
    expectEnd([&] { clientConfig("noc"); }, {handled("noc")}, "ReinstantiationError",
              "PacketTracerClientSm::clientConfig (attribute 131) of client noc differs from the "
              "object that it was made with");
}

TEST_F(ClientsTest, ReplacingAStatusUnderAStateMachineEndsTheProcess) {
    client("noc");
    expectEnd([&] { clientStatus("noc"); }, {handled("noc")}, "ReinstantiationError",
              "PacketTracerClientSm::clientStatus (attribute 132) of client noc differs from the "
              "object that it was made with");
}

TEST_F(ClientsTest, AClientThatIsRemovedBeforeItIsReplacedIsMadeAnew) {
    client("noc");
    auto const before = clientSm("noc");
    config->entryDel("noc");
    clientConfig("noc");
    EXPECT_TRUE(clientSm("noc"));
    EXPECT_NE(clientSm("noc"), before);
}

TEST_F(ClientsTest, ARequestOfAClientWhoseStatusIsMissingIsNotHandled) {
    clientConfig("noc");
    EXPECT_EQ(after([&] { request(1); }), Lines{});
    EXPECT_EQ(beginning("cfg", after([&] { clientStatus("noc"); })), (Lines{"cfg add noc/1"}));
}

TEST_F(ClientsTest, AClientThatIsTouchedWhileItIsMadeIsThereOnce) {
    clientConfig("noc");
    request(1);
    bool touched = false;
    OnPublication const observer(tracer->pktGenCfg()->publisher(), [&](auto, auto) {
        if (!std::exchange(touched, true)) {
            config->entryIs("noc", configOf("noc"));
        }
    });
    clientStatus("noc");
    EXPECT_TRUE(tracer->clientSmDel("noc"));
    EXPECT_FALSE(clientSm("noc"));
}

}  // namespace
}  // namespace VynPacketTracer
