#include "VynPacketTracer/VynPtSm.h"

#include "VynPacketTracer/TracerFixture.h"

namespace VynPacketTracer {
namespace {

std::string handled(std::string const& name) {
    return "VynPtSm/7 handleClient:client " + name;
}

// What a client without requests brings about when its state machine is made.
Lines begun(std::string const& name) {
    return {handled(name), "VynPtClientSm/7 handleInitialized:client " + name,
            "VynPtClientSm/7 handleResults:client " + name + " #status:0",
            "VynPtClientSm/7 handleRequests:client " + name + " #request:0"};
}

Lines const registered{
    "VynPtPktGenSm/7 handleInitialized:",
    "VynPtPktGenSm/9 initSocket:PktGenSm initSocket",
    "VynPtPktGenSm/9 registerPktTracerDigest:",
    "sdk pipe_mgr_lrn_digest_notification_register session=1 device=0 handle=77 -> 0",
    "VynPtPktGenSm/4 registerPktTracerDigest:pktTracerDigest registered",
    "VynPtPktGenSm/7 doWork:",
    "VynPtPktGenSm/4 doWork:PktGen task not running"};
Lines const deregistered{
    "sdk pipe_mgr_lrn_digest_notification_deregister session=1 device=0 handle=77 -> 0",
    "VynPtPktGenSm/4 deRegisterPktTracerDigest:pktTracerDigest deregistered:0"};

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

class ClientsTest : public TracerTest {
  protected:
    ClientsTest() { start(); }
};

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
              "PacketTracerClientSm::clientConfig cannot change from one object to another object");
}

TEST_F(ClientsTest, ReplacingAStatusUnderAStateMachineEndsTheProcess) {
    client("noc");
    expectEnd([&] { clientStatus("noc"); }, {handled("noc")}, "ReinstantiationError",
              "PacketTracerClientSm::clientStatus cannot change from one object to another object");
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

// ---- clientSmIs and clientSmDel

// The arguments of clientSmIs as the client "noc" was made of them; a test changes some.
class ClientSmIsTest : public ClientsTest {
  protected:
    ClientSmIsTest() {
        client("noc");
        existing = clientSm("noc");
        given = {existing->clientConfig(), existing->clientStatus(), existing->pktGenConfig(),
                 existing->systemStatus(), existing->fcsd(),         existing->bridgingConfig(),
                 existing->chipStatus()};
    }
    struct Given {
        Vanta::Ptr<PacketTracer::ClientConfig const> clientConfig;
        Vanta::Ptr<PacketTracer::ClientStatus> clientStatus;
        Vanta::Ptr<PktGenConfig> pktGenConfig;
        Vanta::Ptr<VynSystem::SystemStatus const> systemStatus;
        Vanta::Ptr<Fen::FenCommonSmData const> fcsd;
        Vanta::Ptr<Bridging::Config const> bridgingConfig;
        Vanta::Ptr<VynSlice::ChipStatus const> chipStatus;
    };
    Vanta::Ptr<PacketTracerClientSm> asGiven(std::string_view name = "noc") {
        return tracer->clientSmIs(name, given.clientConfig, given.clientStatus, given.pktGenConfig,
                                  given.systemStatus, given.fcsd, given.bridgingConfig,
                                  given.chipStatus);
    }
    // The attribute that the error names.
    std::string raised() {
        try {
            asGiven();
        } catch (Kel::ReinstantiationError const& error) {
            return error.typeName() + " " + error.attribute();
        }
        return "nothing";
    }
    // From the last argument on, one after the other becomes another object.
    void otherChipStatus() { given.chipStatus = VynSlice::ChipStatus::ChipStatusIs(); }
    void otherBridgingConfig() {
        otherChipStatus();
        given.bridgingConfig = Bridging::Config::ConfigIs();
    }
    void otherFcsd() {
        otherBridgingConfig();
        given.fcsd = Fen::FenCommonSmData::FenCommonSmDataIs();
    }
    void otherSystemStatus() {
        otherFcsd();
        given.systemStatus = VynSystem::SystemStatus::SystemStatusIs();
    }
    void otherPktGenConfig() {
        otherSystemStatus();
        given.pktGenConfig = pktGenConfigFactory();
    }
    void otherClientStatus() {
        otherPktGenConfig();
        given.clientStatus = PacketTracer::ClientStatus::ClientStatusIs();
    }
    void otherClientConfig() {
        otherClientStatus();
        given.clientConfig = PacketTracer::ClientConfig::ClientConfigIs();
    }

    Vanta::Ptr<PacketTracerClientSm> existing;
    Given given;
};

TEST_F(ClientSmIsTest, OfTheSameArgumentsReturnsTheStateMachineThatIsThere) {
    EXPECT_EQ(after([&] { EXPECT_EQ(asGiven(), existing); }), Lines{});
}

TEST_F(ClientSmIsTest, OfAnotherNameMakesAnotherStateMachine) {
    auto const made = asGiven("ops");
    EXPECT_NE(made, existing);
    EXPECT_EQ(clientSm("ops"), made);
}

TEST_F(ClientSmIsTest, NamesTheClientConfigFirst) {
    otherClientConfig();
    EXPECT_EQ(raised(), "PacketTracerClientSm clientConfig");
}

TEST_F(ClientSmIsTest, ThenTheClientStatus) {
    otherClientStatus();
    EXPECT_EQ(raised(), "PacketTracerClientSm clientStatus");
}

TEST_F(ClientSmIsTest, ThenThePktGenConfig) {
    otherPktGenConfig();
    EXPECT_EQ(raised(), "PacketTracerClientSm pktGenConfig");
}

TEST_F(ClientSmIsTest, ThenTheSystemStatus) {
    otherSystemStatus();
    EXPECT_EQ(raised(), "PacketTracerClientSm systemStatus");
}

TEST_F(ClientSmIsTest, ThenTheFcsd) {
    otherFcsd();
    EXPECT_EQ(raised(), "PacketTracerClientSm fcsd");
}

TEST_F(ClientSmIsTest, ThenTheBridgingConfig) {
    otherBridgingConfig();
    EXPECT_EQ(raised(), "PacketTracerClientSm bridgingConfig");
}

TEST_F(ClientSmIsTest, ThenTheChipStatus) {
    otherChipStatus();
    EXPECT_EQ(raised(), "PacketTracerClientSm chipStatus");
}

TEST_F(ClientSmIsTest, ThatRaisesLeavesEverythingAsItWas) {
    otherClientConfig();
    raised();
    EXPECT_EQ(clientSm("noc"), existing);
    EXPECT_EQ(existing->clientConfig(), configOf("noc"));
}

TEST_F(ClientSmIsTest, ClientSmDelReturnsTheStateMachineThenNull) {
    EXPECT_EQ(tracer->clientSmDel("noc"), existing);
    EXPECT_EQ(tracer->clientSmDel("noc"), nullptr);
    EXPECT_EQ(clientSm("noc"), nullptr);
}

TEST_F(ClientSmIsTest, ClientSmDelAllRemovesEveryStateMachine) {
    client("ops");
    tracer->clientSmDelAll();
    EXPECT_FALSE(clientSm("noc"));
    EXPECT_FALSE(clientSm("ops"));
}

// ---- The engine and the collections

class EngineOfTracerTest : public ClientsTest {
  protected:
    using Args = std::tuple<Vanta::Ptr<PktGenConfig>, Vanta::Ptr<VynSdk::Phase0DataIntf>,
                            Vanta::Ptr<PktGenStatus>, std::uint32_t, VynId::VynDevId, bool,
                            Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf>,
                            Vanta::Ptr<VyPd::VyPdIntf>, Vanta::Ptr<Orb::TaskSchedulerRoot>>;

    Vanta::Ptr<PktGenSm> asGiven() {
        return std::apply([&](auto const&... each) { return tracer->pktGenSmIs(each...); }, given);
    }
    // Expects that an engine of the arguments as they are now replaces the first one.
    void expectReplaced() {
        recorder.take();
        auto const made = asGiven();
        EXPECT_NE(made, engine);
        EXPECT_EQ(tracer->pktGenSm(), made);
        EXPECT_TRUE(made->hasNotificationActive());
    }
    Vanta::Ptr<PktGenSm> engine = tracer->pktGenSm();
    Args given{tracer->pktGenCfg(),
               chip.phase0Data(),
               tracer->pktGenStatus(),
               1,
               0,
               true,
               chip.learnQuanta(),
               chip.digestLayout(),
               loop};
};

TEST_F(EngineOfTracerTest, OfTheSameArgumentsIsKept) {
    EXPECT_EQ(after([&] { EXPECT_EQ(asGiven(), engine); }), Lines{});
}

TEST_F(EngineOfTracerTest, ThatIsKeptIsNotTouched) {
    engine->hasNotificationActiveIs(false);
    asGiven();
    EXPECT_FALSE(engine->hasNotificationActive());
}

TEST_F(EngineOfTracerTest, ThatIsReplacedGoesAfterTheNewOneIsMade) {
    engine = nullptr;
    std::get<3>(given) = 2;
    EXPECT_EQ(beginning("sdk", after([&] { asGiven(); })),
              (Lines{"sdk pipe_mgr_lrn_digest_notification_register session=2 device=0 handle=77 "
                     "-> 0",
                     "sdk pipe_mgr_lrn_digest_notification_deregister session=1 device=0 handle=77 "
                     "-> 0"}));
}

TEST_F(EngineOfTracerTest, OfAnotherPktGenConfigIsReplaced) {
    std::get<0>(given) = pktGenConfigFactory();
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherPhase0DataIntfIsReplaced) {
    std::get<1>(given) = ScriptChip::Phase0Data::Phase0DataIs(nullptr);
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherPktGenStatusIsReplaced) {
    std::get<2>(given) = pktGenStatusFactory();
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherSessionIsReplaced) {
    std::get<3>(given) = 2;
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherDeviceIsReplaced) {
    ScriptChip::ScriptChip const other(nullptr, 9);
    std::get<4>(given) = 9;
    expectReplaced();
    std::get<4>(given) = 0;
    asGiven();
}

TEST_F(EngineOfTracerTest, OfAnotherTraceSupportIsReplaced) {
    std::get<5>(given) = false;
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherResourceInfoIsReplaced) {
    std::get<6>(given) = ScriptChip::LearnQuanta::LearnQuantaIs();
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherDigestLayoutIsReplaced) {
    std::get<7>(given) = ScriptChip::DigestLayout::DigestLayoutIs();
    expectReplaced();
}

TEST_F(EngineOfTracerTest, OfAnotherSchedulerIsReplaced) {
    std::get<8>(given) = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    expectReplaced();
}

TEST_F(EngineOfTracerTest, IsReturnedSwitchedOffByPktGenSmDel) {
    EXPECT_EQ(tracer->pktGenSmDel(), engine);
    EXPECT_FALSE(engine->hasNotificationActive());
    EXPECT_EQ(tracer->pktGenSm(), nullptr);
    EXPECT_EQ(tracer->pktGenSmDel(), nullptr);
}

TEST_F(EngineOfTracerTest, KeepsItsJobsCollection) {
    EXPECT_EQ(tracer->pktGenCfgIs(), tracer->pktGenCfg());
}

TEST_F(EngineOfTracerTest, LosesTheTracersHoldOnTheJobsByPktGenCfgDel) {
    auto const jobs = tracer->pktGenCfg();
    EXPECT_EQ(tracer->pktGenCfgDel(), jobs);
    EXPECT_EQ(tracer->pktGenCfg(), nullptr);
    EXPECT_NE(tracer->pktGenCfgIs(), jobs);
}

// ---- Switching off and on, and tearing down

class TracerSwitchTest : public ClientsTest {
  protected:
    TracerSwitchTest() {
        client("noc");
        answered = answer(9);
        recorder.take();
    }
    Vanta::Ptr<PktGenStatusData> answered;
};

TEST_F(TracerSwitchTest, SwitchedOffNothingReacts) {
    tracer->hasNotificationActiveIs(false);
    EXPECT_FALSE(tracer->hasNotificationActive());
    EXPECT_EQ(after([&] {
                  client("ops");
                  request(1);
                  answer(8);
                  answered->readyIs(true);
                  phase0("Ethernet1");
                  turn();
              }),
              (Lines{"status add noc/8", "status ready noc/9 true"}));
}

TEST_F(TracerSwitchTest, SwitchedOffItSwitchesWatchersEngineAndClientsOff) {
    tracer->hasNotificationActiveIs(false);
    EXPECT_FALSE(tracer->localStatus(id("noc", 9))->hasNotificationActive());
    EXPECT_FALSE(tracer->pktGenSm()->hasNotificationActive());
    EXPECT_FALSE(clientSm("noc")->hasNotificationActive());
}

TEST_F(TracerSwitchTest, SwitchedOnAgainEachChangeIsReactedToOnce) {
    tracer->hasNotificationActiveIs(false);
    tracer->hasNotificationActiveIs(true);
    EXPECT_EQ(after([&] { clientConfig("ops"); }), (Lines{handled("ops")}));
    EXPECT_EQ(after([&] { answered->readyIs(true); }).size(), 7u);
    EXPECT_EQ(beginning("VynPtSm", after([&] { answer(8); })).size(), 1u);
    EXPECT_EQ(beginning("VynPtPktGenSm/7 handleConfig", after([&] { request(1); })).size(), 1u);
}

TEST_F(TracerSwitchTest, SwitchedToWhatItIsChangesNothing) {
    auto const watcher = tracer->localStatus(id("noc", 9));
    watcher->hasNotificationActiveIs(false);
    tracer->hasNotificationActiveIs(true);
    EXPECT_FALSE(watcher->hasNotificationActive());
}

TEST_F(TracerSwitchTest, SwitchedOffAnswersMadeAnewSubscribeToNothingElse) {
    tracer->hasNotificationActiveIs(false);
    tracer->pktGenStatusDel();
    tracer->pktGenStatusIs();
    EXPECT_EQ(after([&] { client("ops"); }), Lines{});
}

TEST_F(TracerSwitchTest, TornDownItIgnoresTheDirectories) {
    tracer->kelDoZombieReactors(true);
    EXPECT_TRUE(tracer->isZombie());
    EXPECT_EQ(after([&] {
                  client("ops");
                  status->entryDel("noc");
              }),
              Lines{});
    EXPECT_TRUE(clientSm("noc"));
}

TEST_F(TracerSwitchTest, TornDownItRelaysNothing) {
    tracer->kelDoZombieReactors(true);
    EXPECT_EQ(after([&] {
                  answered->readyIs(true);
                  answer(8);
              }),
              (Lines{"status ready noc/9 true", "status add noc/8"}));
}

TEST_F(TracerSwitchTest, TornDownItStillKeepsItsWatchersInStep) {
    tracer->kelDoZombieReactors(true);
    answer(8);
    tracer->pktGenStatus()->statusDel(id("noc", 9));
    ASSERT_TRUE(tracer->localStatusHas(id("noc", 8)));
    EXPECT_TRUE(tracer->localStatus(id("noc", 8))->isZombie());
    EXPECT_FALSE(tracer->localStatusHas(id("noc", 9)));
}

TEST_F(TracerSwitchTest, NotTornDownAnyMoreItReactsAgain) {
    tracer->kelDoZombieReactors(true);
    EXPECT_TRUE(tracer->localStatus(id("noc", 9))->isZombie());
    tracer->kelDoZombieReactors(false);
    EXPECT_FALSE(tracer->localStatus(id("noc", 9))->isZombie());
    EXPECT_EQ(beginning("VynPtSm", after([&] { answered->readyIs(true); })).size(), 1u);
    EXPECT_EQ(after([&] { clientConfig("ops"); }), (Lines{handled("ops")}));
}

// ---- The end

class TracerEndTest : public ClientsTest {
  protected:
    Lines stopped() {
        return after([&] { tracer = nullptr; });
    }
    // The engine has job 1 in work, with an answer; job 2 waits.
    void atWork() {
        client("noc");
        request(1);
        request(2);
        turn();
        phase0("Ethernet1");
        turn();
        EXPECT_TRUE(tracer->pktGenStatus()->statusHas(id("noc", 1)));
    }
};

TEST_F(TracerEndTest, WithoutClientsOnlyDeregistersTheDigest) {
    EXPECT_EQ(stopped(), deregistered);
}

TEST_F(TracerEndTest, TheEngineTakesTheAnswersAlongAndTheLastClientTheJobs) {
    atWork();
    client("ops");
    EXPECT_EQ(stopped(),
              deregistered + (Lines{"status del noc/1", "cfg del noc/1", "cfg del noc/2"}));
}

TEST_F(TracerEndTest, TheJobsGoWithTheClientsAfterTheEngine) {
    atWork();
    auto const kept = clientSm("noc");
    EXPECT_EQ(stopped(), deregistered + Lines{"status del noc/1"});
    EXPECT_TRUE(kept->pktGenConfig()->cfgHas(id("noc", 1)));
}

TEST_F(TracerEndTest, WithoutClientsTheEngineLetsTheAnswersGoBeforeTheJobs) {
    atWork();
    config->entryDel("noc");
    EXPECT_EQ(stopped(),
              deregistered + (Lines{"status del noc/1", "cfg del noc/1", "cfg del noc/2"}));
}

TEST_F(TracerEndTest, TheGeneratorIsNotDisabled) {
    atWork();
    EXPECT_EQ(beginning("sdk disable", stopped()), Lines{});
}

TEST_F(TracerEndTest, ResultsStay) {
    client("noc");
    request(1);
    statusOf("noc")->resultIs(id("noc", 1));
    stopped();
    EXPECT_TRUE(result(1));
}

TEST_F(TracerEndTest, ADirectoryChangeMeanwhileIsNotHandled) {
    recorder.onSdkCall = [&](auto const&) { client("ops"); };
    EXPECT_EQ(stopped(), deregistered);
}

TEST_F(TracerEndTest, AReadyAnswerMeanwhileIsNotRelayed) {
    client("noc");
    auto const answered = answer(9);
    recorder.onSdkCall = [&](auto const&) { answered->readyIs(true); };
    EXPECT_EQ(stopped(), (Lines{deregistered[0], "status ready noc/9 true", deregistered[1],
                                "status del noc/9"}));
}

TEST_F(TracerEndTest, ARequestMeanwhileIsNotHandled) {
    client("noc");
    recorder.onSdkCall = [&](auto const&) { request(1); };
    EXPECT_EQ(stopped(), deregistered);
}

TEST_F(TracerEndTest, AWatcherThatIsStillHeldHasNoOwnerAnyMore) {
    client("noc");
    auto const answered = answer(9);
    auto const watcher = tracer->localStatus(id("noc", 9));
    stopped();
    EXPECT_EQ(after([&] {
                  watcher->kel_handleLocalStatus_ready();
                  answered->readyIs(true);
              }),
              (Lines{"status ready noc/9 true"}));
    EXPECT_TRUE(watcher->isZombie());
}

TEST_F(TracerEndTest, AnEngineThatIsStillHeldReactsToNothing) {
    auto const engine = tracer->pktGenSm();
    EXPECT_EQ(stopped(), Lines{});
    EXPECT_EQ(after([&] {
                  engine->config()->cfgIs(id("noc", 1), {1}, {}, intf("Ethernet1"));
                  turn();
              }),
              (Lines{"cfg add noc/1"}));
}

TEST_F(TracerEndTest, ReleasesEveryNodeThatItMade) {
    stopped();
    auto const before = Vanta::Node::liveCount();
    start();
    atWork();
    config->entryDel("noc");
    status->entryDel("noc");
    stopped();
    EXPECT_EQ(Vanta::Node::liveCount(), before);
}

TEST_F(TracerEndTest, ReleasesWhatItWasMadeOf) {
    atWork();
    stopped();
    EXPECT_EQ(config->refCount(), 1u);
    EXPECT_EQ(status->refCount(), 1u);
    EXPECT_EQ(chip.phase0Data()->refCount(), 1u);
    EXPECT_EQ(chip.learnQuanta()->refCount(), 1u);
    EXPECT_EQ(chip.digestLayout()->refCount(), 1u);
    EXPECT_EQ(loop->refCount(), 1u);
    EXPECT_EQ(systemStatus->refCount(), 1u);
    EXPECT_EQ(fcsd->refCount(), 1u);
    EXPECT_EQ(bridgingConfig->refCount(), 1u);
    EXPECT_EQ(chipStatus->refCount(), 1u);
    EXPECT_EQ(loop->scheduledTasks(), 0u);
}

TEST_F(TracerEndTest, AnotherTracerCanFollow) {
    atWork();
    stopped();
    start();
    EXPECT_EQ(tracer->pktGenCfg()->cfg().size(), 2u);
    EXPECT_TRUE(chip.hasCallback());
}

// ---- Releasing the tracer from inside a notification

class TracerReleaseTest : public TracerEndTest {
  protected:
    OnPublication releaseAt(Vanta::Publisher const& publisher) {
        return OnPublication(publisher, [this](auto, auto) { tracer = nullptr; });
    }
    void expectGone() {
        EXPECT_EQ(config->refCount(), 1u);
        EXPECT_EQ(systemStatus->refCount(), 1u);
        EXPECT_FALSE(chip.hasCallback());
    }
};

TEST_F(TracerReleaseTest, MayHappenWhileAJobIsMade) {
    client("noc");
    auto const observer = releaseAt(tracer->pktGenCfg()->publisher());
    request(1);
    expectGone();
}

TEST_F(TracerReleaseTest, MayHappenWhileAClientIsMade) {
    clientConfig("noc");
    request(1, "Ethernet9");
    auto const results = PacketTracer::ClientStatus::ClientStatusIs();
    auto const observer = releaseAt(results->publisher());
    status->entryIs("noc", results);
    expectGone();
}

TEST_F(TracerReleaseTest, MayHappenAheadOfItsOwnReactionToADirectory) {
    start();  // it subscribes again, now behind the observer
    tracer = nullptr;
    auto const observer = releaseAt(config->publisher());
    start();
    clientConfig("noc");
    expectGone();
}

TEST_F(TracerReleaseTest, MayHappenWhileAnAnswerIsMade) {
    client("noc");
    request(1);
    turn();
    phase0("Ethernet1");
    auto const observer = releaseAt(tracer->pktGenStatus()->publisher());
    turn();
    expectGone();
}

TEST_F(TracerReleaseTest, MayHappenWhileAResultIsWritten) {
    atWork();
    auto const observer = releaseAt(statusOf("noc")->publisher());
    chip.digest({{.pktId = 1, .egrPort = 132}});
    turn();
    expectGone();
    EXPECT_TRUE(result(1)->valid());
}

TEST_F(TracerReleaseTest, MayHappenWhileAnAnswerIsDeleted) {
    atWork();
    auto const observer = releaseAt(tracer->pktGenStatus()->publisher());
    withdraw(1);
    turn();
    expectGone();
}

TEST_F(TracerReleaseTest, MayHappenWhileARequestIsRefused) {
    client("noc");
    auto const observer = releaseAt(statusOf("noc")->publisher());
    request(1, "Ethernet9");
    expectGone();
}

TEST_F(TracerReleaseTest, MayHappenInsideACallOfTheChip) {
    client("noc");
    request(1);
    turn();
    phase0("Ethernet1");
    recorder.onSdkCall = [&](auto const&) { tracer = nullptr; };
    turn();
    expectGone();
}

TEST_F(TracerReleaseTest, OfTheClientMayHappenWhileItsResultIsWritten) {
    atWork();
    OnPublication const observer(statusOf("noc")->publisher(),
                                 [&](auto, auto) { config->entryDel("noc"); });
    auto const results = statusOf("noc");
    chip.digest({{.pktId = 1, .egrPort = 132}});
    turn();
    EXPECT_FALSE(clientSm("noc"));
    EXPECT_TRUE(results->result(id("noc", 1))->valid());
}

}  // namespace
}  // namespace VynPacketTracer
