#include "VynPacketTracer/VynPtTypes.h"

#include "TableRow.h"
#include "VynPacketTracer/Fixture.h"

namespace VynPacketTracer {
namespace {

using VynPortTypes::PortIndex;
using VynSystem::PortInfo;

Vanta::Bytes const packet{0xde, 0xad, 0xbe, 0xef};
PortInfo const port{1, PortIndex(4)};

// One publication as a subscriber is told of it: attribute, key and old value.
template <class Old>
struct Told {
    Vanta::AttributeNumber attribute = 0;
    std::optional<PacketTracer::RequestId> key;
    std::optional<Old> old;

    bool operator==(Told const&) const = default;
};

// Subscribes to an object and keeps what it is told.
template <class Old>
class Listener {
  public:
    explicit Listener(Vanta::Publisher const& publisher) {
        subscriber_.subscribe<&Listener::dispatch>(publisher, this);
    }
    std::vector<Told<Old>> told;

  private:
    void dispatch(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber attribute,
                  Vanta::ValueRef key, Vanta::ValueRef old) {
        told.push_back(
            {attribute,
             key.empty() ? std::nullopt : std::optional(key.get<PacketTracer::RequestId>()),
             old.empty() ? std::nullopt : std::optional(old.get<Old>())});
    }
    Vanta::Subscriber subscriber_;
};

template <class Old>
std::vector<Told<Old>> oneChange(Vanta::AttributeNumber attribute, Old const& old) {
    return {{attribute, std::nullopt, old}};
}

// ---- PktGenCfgData

TEST(PktGenCfgDataTest, HoldsWhatItWasMadeOf) {
    auto const job = pktGenCfgDataFactory(id("noc", 1), packet, port, intf("Ethernet1"));
    EXPECT_EQ(job->req(), id("noc", 1));
    EXPECT_EQ(job->pkt(), packet);
    EXPECT_TRUE(job->ingPortInfo().isEq(port));
    EXPECT_EQ(job->ingIntf(), intf("Ethernet1"));
}

TEST(PktGenCfgDataTest, TheCreatorDoesTheSameAsTheFactory) {
    auto const job = PktGenCfgData::PktGenCfgDataIs(id("noc", 1), packet, port, intf("Ethernet1"));
    EXPECT_EQ(job->refCount(), 1u);
    EXPECT_EQ(job->req(), id("noc", 1));
}

// ---- PktGenStatusData

class PktGenStatusDataTest : public testing::Test {
  protected:
    Vanta::Ptr<PktGenStatusData> data = pktGenStatusDataFactory(id("noc", 7));
};

TEST_F(PktGenStatusDataTest, BeginsWithDefaults) {
    EXPECT_EQ(data->req(), id("noc", 7));
    EXPECT_EQ(data->pktId(), 0);
    EXPECT_FALSE(data->ready());
    EXPECT_TRUE(data->egrPortInfo().isEq(PortInfo()));
    EXPECT_EQ(data->egrL2Domain(), 0);
    EXPECT_FALSE(data->copyToCpu());
    EXPECT_FALSE(data->routed());
    EXPECT_FALSE(data->dropped());
}

TEST_F(PktGenStatusDataTest, TheDefaultPortHasTheInvalidIndex) {
    EXPECT_EQ(data->egrPortInfo().port().value(), 456);
}

TEST_F(PktGenStatusDataTest, TheCreatorDoesTheSameAsTheFactory) {
    EXPECT_EQ(PktGenStatusData::PktGenStatusDataIs(id("noc", 7))->req(), id("noc", 7));
}

TEST_F(PktGenStatusDataTest, PktIdIsNumber131) {
    data->pktIdIs(3);
    Listener<std::uint16_t> listener(data->publisher());
    data->pktIdIs(65535);
    EXPECT_EQ(data->pktId(), 65535);
    EXPECT_EQ(listener.told, oneChange<std::uint16_t>(131, 3));
}

TEST_F(PktGenStatusDataTest, ReadyIsNumber132) {
    Listener<bool> listener(data->publisher());
    data->readyIs(true);
    EXPECT_TRUE(data->ready());
    EXPECT_EQ(listener.told, oneChange(132, false));
}

TEST_F(PktGenStatusDataTest, EgrPortInfoIsNumber133) {
    std::vector<std::pair<Vanta::AttributeNumber, std::uint16_t>> told;
    Vanta::Subscriber subscriber;
    subscriber.subscribe(
        data->publisher(),
        [](void* context, Vanta::Subscriber&, Vanta::Change const& change) {
            static_cast<decltype(told)*>(context)->emplace_back(
                change.attribute, change.oldValue.get<PortInfo>().port().value());
        },
        &told);
    data->egrPortInfoIs(PortInfo(1, PortIndex(132)));
    EXPECT_TRUE(data->egrPortInfo().isEq(PortInfo(1, PortIndex(132))));
    EXPECT_EQ(told, (decltype(told){{133, 456}}));
}

TEST_F(PktGenStatusDataTest, EgrL2DomainIsNumber134) {
    Listener<std::uint16_t> listener(data->publisher());
    data->egrL2DomainIs(10);
    EXPECT_EQ(data->egrL2Domain(), 10);
    EXPECT_EQ(listener.told, oneChange<std::uint16_t>(134, 0));
}

TEST_F(PktGenStatusDataTest, CopyToCpuIsNumber135) {
    Listener<bool> listener(data->publisher());
    data->copyToCpuIs(true);
    EXPECT_TRUE(data->copyToCpu());
    EXPECT_EQ(listener.told, oneChange(135, false));
}

TEST_F(PktGenStatusDataTest, RoutedIsNumber136) {
    Listener<bool> listener(data->publisher());
    data->routedIs(true);
    EXPECT_TRUE(data->routed());
    EXPECT_EQ(listener.told, oneChange(136, false));
}

TEST_F(PktGenStatusDataTest, DroppedIsNumber137) {
    Listener<bool> listener(data->publisher());
    data->droppedIs(true);
    EXPECT_TRUE(data->dropped());
    EXPECT_EQ(listener.told, oneChange(137, false));
}

TEST_F(PktGenStatusDataTest, AFlagThatGoesBackIsAChangeToo) {
    data->routedIs(true);
    Listener<bool> listener(data->publisher());
    data->routedIs(false);
    EXPECT_EQ(listener.told, oneChange(136, true));
}

TEST_F(PktGenStatusDataTest, ReadyOnAReadyRecordPublishesNothing) {
    data->readyIs(true);
    Recorder recorder;
    data->readyIs(true);
    EXPECT_EQ(recorder.take(), Lines{});
}

TEST_F(PktGenStatusDataTest, AnEgressPortThatIsEqPublishesNothing) {
    data->egrPortInfoIs(PortInfo(1, PortIndex(132)));
    Recorder recorder;
    data->egrPortInfoIs(PortInfo(1, PortIndex(132)));
    EXPECT_EQ(recorder.take(), Lines{});
}

TEST_F(PktGenStatusDataTest, AnEgressPortInAnotherPipeIsAChange) {
    data->egrPortInfoIs(PortInfo(1, PortIndex(132)));
    Recorder recorder;
    data->egrPortInfoIs(PortInfo(2, PortIndex(132)));
    EXPECT_EQ(recorder.take(), (Lines{"status egrPortInfo noc/7 2/132"}));
}

TEST_F(PktGenStatusDataTest, TheValuesThatItHasPublishNothing) {
    Recorder recorder;
    data->pktIdIs(0);
    data->readyIs(false);
    data->egrPortInfoIs(PortInfo());
    data->egrL2DomainIs(0);
    data->copyToCpuIs(false);
    data->routedIs(false);
    data->droppedIs(false);
    EXPECT_EQ(recorder.take(), Lines{});
}

// ---- PktGenConfig

class PktGenConfigTest : public testing::Test {
  protected:
    Vanta::Ptr<PktGenCfgData> job(std::uint32_t number) {
        return config->cfgIs(id("noc", number), packet, port, intf("Ethernet1"));
    }
    static std::string named(Kel::ReinstantiationError const& error) {
        EXPECT_EQ(error.entry(), "request 1 of client noc");
        return error.typeName() + " " + error.attribute() + " " +
               std::to_string(error.attributeNumber()) + " " + error.oldValue() + " " +
               error.newValue();
    }
    // The attribute of the error that cfgIs raises for job 1 with these arguments.
    std::string raised(Vanta::Bytes const& pkt, PortInfo const& info, std::string_view ingress) {
        try {
            config->cfgIs(id("noc", 1), pkt, info, intf(ingress));
        } catch (Kel::ReinstantiatingValueError const& error) {
            return "value " + named(error);
        } catch (Kel::ReinstantiationError const& error) {
            return named(error);
        }
        return "nothing";
    }
    Recorder recorder;
    Vanta::Ptr<PktGenConfig> config = pktGenConfigFactory();
    Vanta::Bytes const otherPacket{0xde, 0xad, 0xbe, 0xee};
    PortInfo const otherPort{1, PortIndex(5)};
};

TEST_F(PktGenConfigTest, IsMadeEmpty) {
    EXPECT_TRUE(config->cfg().empty());
    EXPECT_TRUE(PktGenConfig::PktGenConfigIs()->cfg().empty());
}

TEST_F(PktGenConfigTest, CfgIsMakesAJobUnderItsRequest) {
    auto const made = job(1);
    EXPECT_EQ(made->req(), id("noc", 1));
    EXPECT_EQ(made->pkt(), packet);
    EXPECT_EQ(config->cfg(id("noc", 1)), made);
}

TEST_F(PktGenConfigTest, CfgIsPublishesAttribute130WithTheRequest) {
    Listener<int> listener(config->publisher());
    job(1);
    ASSERT_EQ(listener.told.size(), 1u);
    EXPECT_EQ(listener.told[0].attribute, 130u);
    EXPECT_EQ(listener.told[0].key, id("noc", 1));
}

TEST_F(PktGenConfigTest, TheJobIsThereWhenItsAdditionIsPublished) {
    bool there = false;
    OnPublication const observer(config->publisher(),
                                 [&](auto, auto) { there = config->cfgHas(id("noc", 1)); });
    job(1);
    EXPECT_TRUE(there);
}

TEST_F(PktGenConfigTest, CfgIsWithEqualArgumentsReturnsTheSameRecordAndPublishesNothing) {
    auto const first = job(1);
    recorder.take();
    EXPECT_EQ(job(1), first);
    EXPECT_EQ(recorder.take(), Lines{});
}

TEST_F(PktGenConfigTest, APacketThatDiffersByOneByteIsAReinstantiationError) {
    auto const stored = job(1);
    recorder.take();
    EXPECT_EQ(raised(otherPacket, port, "Ethernet1"), "PktGenCfgData pkt 131 deadbeef deadbeee");
    EXPECT_EQ(config->cfg(id("noc", 1)), stored);
    EXPECT_EQ(stored->pkt(), packet);
    EXPECT_EQ(recorder.take(), Lines{});
}

TEST_F(PktGenConfigTest, AnotherPortIsAReinstantiatingValueError) {
    job(1);
    EXPECT_EQ(raised(packet, otherPort, "Ethernet1"),
              "value PktGenCfgData ingPortInfo 132 1/4 1/5");
}

TEST_F(PktGenConfigTest, AnotherInterfaceIsAReinstantiatingValueError) {
    job(1);
    EXPECT_EQ(raised(packet, port, "Ethernet2"),
              "value PktGenCfgData ingIntf 133 Ethernet1 Ethernet2");
}

TEST_F(PktGenConfigTest, ThePacketIsComparedBeforeThePort) {
    job(1);
    EXPECT_EQ(raised(otherPacket, otherPort, "Ethernet2").substr(0, 17), "PktGenCfgData pkt");
}

TEST_F(PktGenConfigTest, ThePortIsComparedBeforeTheInterface) {
    job(1);
    EXPECT_EQ(raised(packet, otherPort, "Ethernet2").substr(0, 31),
              "value PktGenCfgData ingPortInfo");
}

TEST_F(PktGenConfigTest, ReinstantiationLeavesTheCollectionAsItWas) {
    auto const stored = job(1);
    raised(packet, otherPort, "Ethernet2");
    EXPECT_EQ(config->cfg().size(), 1u);
    EXPECT_TRUE(config->cfg(id("noc", 1))->ingPortInfo().isEq(port));
}

TEST_F(PktGenConfigTest, AJobThatWasDeletedCanBeMadeAnewOtherwise) {
    job(1);
    config->cfgDel(id("noc", 1));
    EXPECT_EQ(raised(otherPacket, otherPort, "Ethernet2"), "nothing");
}

TEST_F(PktGenConfigTest, CfgDelReturnsTheJobAndPublishesItsRemoval) {
    auto const made = job(1);
    Listener<Vanta::Ptr<PktGenCfgData>> listener(config->publisher());
    recorder.take();
    EXPECT_EQ(config->cfgDel(id("noc", 1)), made);
    EXPECT_EQ(recorder.take(), (Lines{"cfg del noc/1"}));
    EXPECT_EQ(listener.told,
              (std::vector<Told<Vanta::Ptr<PktGenCfgData>>>{{130, id("noc", 1), made}}));
}

TEST_F(PktGenConfigTest, CfgDelOfAnAbsentKeyReturnsNullAndPublishesNothing) {
    EXPECT_EQ(config->cfgDel(id("noc", 1)), nullptr);
    EXPECT_EQ(recorder.take(), Lines{});
}

TEST_F(PktGenConfigTest, CfgDelMayBeGivenTheEntrysOwnKey) {
    job(1);
    recorder.take();
    config->cfgDel(config->cfg().first()->key);
    EXPECT_EQ(recorder.take(), (Lines{"cfg del noc/1"}));
}

TEST_F(PktGenConfigTest, CfgDelAllPublishesEachRemoval) {
    job(1);
    job(2);
    recorder.take();
    config->cfgDelAll();
    EXPECT_EQ(recorder.take(), (Lines{"cfg del noc/1", "cfg del noc/2"}));
    EXPECT_TRUE(config->cfg().empty());
}

TEST_F(PktGenConfigTest, CfgDelAllToleratesAnObserverThatDeletes) {
    job(1);
    job(2);
    job(3);
    recorder.take();
    OnPublication const observer(config->publisher(),
                                 [&](auto, auto) { config->cfgDel(id("noc", 2)); });
    config->cfgDelAll();
    EXPECT_EQ(recorder.take(), (Lines{"cfg del noc/1", "cfg del noc/2", "cfg del noc/3"}));
}

TEST_F(PktGenConfigTest, CfgDelAllEndsHoweverManyJobsAreAddedMeanwhile) {
    job(1);
    job(2);
    std::uint32_t last = 2;
    OnPublication const observer(config->publisher(), [&](auto, Vanta::ValueRef key) {
        if (!config->cfgHas(key.get<PacketTracer::RequestId>()) && last < 10) {
            job(++last);
        }
    });
    recorder.take();
    config->cfgDelAll();
    EXPECT_EQ(recorder.take(),
              (Lines{"cfg del noc/1", "cfg add noc/3", "cfg del noc/2", "cfg add noc/4"}));
    EXPECT_TRUE(config->cfgHas(id("noc", 3)));
    EXPECT_TRUE(config->cfgHas(id("noc", 4)));
}

TEST_F(PktGenConfigTest, CfgDelAllLeavesAJobThatComesBackMeanwhile) {
    job(1);
    job(2);
    unsigned times = 0;
    OnPublication const observer(config->publisher(), [&](auto, Vanta::ValueRef key) {
        if (key.get<PacketTracer::RequestId>() == id("noc", 1) && ++times < 10) {
            job(1);
        }
    });
    recorder.take();
    config->cfgDelAll();
    EXPECT_EQ(recorder.take(), (Lines{"cfg del noc/1", "cfg add noc/1", "cfg del noc/2"}));
    EXPECT_TRUE(config->cfgHas(id("noc", 1)));
}

TEST_F(PktGenConfigTest, AJobThatIsAddedDuringDestructionGoesWithoutAPublication) {
    job(1);
    Vanta::Ptr<PktGenCfgData> added;
    auto& dying = *config;
    OnPublication const observer(config->publisher(), [&](auto, Vanta::ValueRef key) {
        if (!added && !dying.cfgHas(key.get<PacketTracer::RequestId>())) {
            added = dying.cfgIs(id("noc", 2), packet, port, intf("Ethernet1"));
        }
    });
    recorder.take();
    config = nullptr;
    EXPECT_EQ(recorder.take(), (Lines{"cfg del noc/1", "cfg add noc/2"}));
    ASSERT_TRUE(added);
    EXPECT_EQ(added->refCount(), 1u);
}

TEST_F(PktGenConfigTest, DestroyingOneWithThreeJobsPublishesThreeRemovals) {
    job(1);
    job(2);
    job(3);
    recorder.take();
    config = nullptr;
    EXPECT_EQ(recorder.take(), (Lines{"cfg del noc/1", "cfg del noc/2", "cfg del noc/3"}));
}

TEST_F(PktGenConfigTest, SubscribersHearOfTheRemovalsByDestruction) {
    job(1);
    job(2);
    Listener<Vanta::Ptr<PktGenCfgData>> listener(config->publisher());
    config = nullptr;
    EXPECT_EQ(listener.told.size(), 2u);
}

TEST_F(PktGenConfigTest, AJobOutlivesItsRemoval) {
    auto const made = job(1);
    config->cfgDel(id("noc", 1));
    EXPECT_EQ(made->refCount(), 1u);
    EXPECT_EQ(made->pkt(), packet);
}

TEST_F(PktGenConfigTest, TheCollectionOwnsOneReference) {
    auto const made = job(1);
    EXPECT_EQ(made->refCount(), 2u);
}

TEST_F(PktGenConfigTest, JobsIterateInTheOrderInWhichTheyCame) {
    for (std::uint32_t const number : {3u, 1u, 2u}) {
        job(number);
    }
    config->cfgDel(id("noc", 3));
    job(3);
    std::string order;
    for (auto const& entry : config->cfg()) {
        order += keyText(entry.key) + " ";
    }
    EXPECT_EQ(order, "noc/1 noc/2 noc/3 ");
}

TEST_F(PktGenConfigTest, AnotherClientsRequestOfTheSameNumberIsAnotherJob) {
    job(1);
    EXPECT_EQ(config->cfg(id("ops", 1)), nullptr);
    EXPECT_FALSE(config->cfgHas(id("ops", 1)));
}

// ---- PktGenStatus

class PktGenStatusTest : public testing::Test {
  protected:
    Recorder recorder;
    Vanta::Ptr<PktGenStatus> status = pktGenStatusFactory();
};

TEST_F(PktGenStatusTest, IsMadeEmpty) {
    EXPECT_TRUE(status->status().empty());
    EXPECT_TRUE(PktGenStatus::PktGenStatusIs()->status().empty());
}

TEST_F(PktGenStatusTest, StatusIsMakesAnEntryWithDefaultsAndPublishesIt) {
    Listener<int> listener(status->publisher());
    auto const made = status->statusIs(id("noc", 1));
    EXPECT_FALSE(made->ready());
    EXPECT_EQ(status->status(id("noc", 1)), made);
    EXPECT_EQ(recorder.take(), (Lines{"status add noc/1"}));
    ASSERT_EQ(listener.told.size(), 1u);
    EXPECT_EQ(listener.told[0].attribute, 130u);
}

TEST_F(PktGenStatusTest, StatusIsOfAReadyEntryReturnsItStillReady) {
    auto const made = status->statusIs(id("noc", 1));
    made->readyIs(true);
    made->pktIdIs(9);
    recorder.take();
    EXPECT_EQ(status->statusIs(id("noc", 1)), made);
    EXPECT_TRUE(made->ready());
    EXPECT_EQ(made->pktId(), 9);
    EXPECT_EQ(recorder.take(), Lines{});
}

TEST_F(PktGenStatusTest, TheEntryThatGoesIsItsRemovalsOldValue) {
    auto const made = status->statusIs(id("noc", 1));
    using Entry = Vanta::Ptr<PktGenStatusData>;
    Listener<Entry> listener(status->publisher());
    status->statusDel(id("noc", 1));
    EXPECT_EQ(listener.told, (std::vector<Told<Entry>>{{130, id("noc", 1), made}}));
}

TEST_F(PktGenStatusTest, StatusDelReturnsTheEntryAndPublishesItsRemoval) {
    auto const made = status->statusIs(id("noc", 1));
    recorder.take();
    EXPECT_EQ(status->statusDel(id("noc", 1)), made);
    EXPECT_EQ(recorder.take(), (Lines{"status del noc/1"}));
    EXPECT_FALSE(status->statusHas(id("noc", 1)));
}

TEST_F(PktGenStatusTest, StatusDelOfAnAbsentKeyReturnsNullAndPublishesNothing) {
    EXPECT_EQ(status->statusDel(id("noc", 1)), nullptr);
    EXPECT_EQ(recorder.take(), Lines{});
}

TEST_F(PktGenStatusTest, StatusDelAllPublishesEachRemoval) {
    status->statusIs(id("noc", 2));
    status->statusIs(id("noc", 1));
    recorder.take();
    status->statusDelAll();
    EXPECT_EQ(recorder.take(), (Lines{"status del noc/2", "status del noc/1"}));
}

TEST_F(PktGenStatusTest, StatusDelAllEndsHoweverManyEntriesAreAddedMeanwhile) {
    status->statusIs(id("noc", 1));
    std::uint32_t last = 1;
    OnPublication const observer(status->publisher(), [&](auto, Vanta::ValueRef key) {
        if (!status->statusHas(key.get<PacketTracer::RequestId>()) && last < 10) {
            status->statusIs(id("noc", ++last));
        }
    });
    recorder.take();
    status->statusDelAll();
    EXPECT_EQ(recorder.take(), (Lines{"status del noc/1", "status add noc/2"}));
    EXPECT_TRUE(status->statusHas(id("noc", 2)));
}

TEST_F(PktGenStatusTest, AnEntryThatIsAddedDuringDestructionGoesWithoutAPublicationAndLivesOn) {
    status->statusIs(id("noc", 1));
    Vanta::Ptr<PktGenStatusData> added;
    auto& dying = *status;
    OnPublication const observer(status->publisher(), [&](auto, Vanta::ValueRef key) {
        if (!added && !dying.statusHas(key.get<PacketTracer::RequestId>())) {
            added = dying.statusIs(id("noc", 2));
        }
    });
    recorder.take();
    status = nullptr;
    EXPECT_EQ(recorder.take(), (Lines{"status del noc/1", "status add noc/2"}));
    ASSERT_TRUE(added);
    added->pktIdIs(7);
    EXPECT_EQ(recorder.take(), (Lines{"status pktId noc/2 7"}));
}

// Jobs follow the answers for as long as these publish, and no longer.
TEST_F(PktGenStatusTest, APendingJobMayBeLookedUpWhileTheAnswersGo) {
    auto const config = pktGenConfigFactory();
    config->cfgIs(id("noc", 1), packet, port, intf("Ethernet1"));
    config->cfgIs(id("noc", 2), packet, port, intf("Ethernet1"));
    status->statusIs(id("noc", 1));
    status->statusIs(id("noc", 2));
    auto& dying = *status;
    std::string found;
    OnPublication const observer(status->publisher(), [&](auto, auto) {
        found += keyText(config->firstPending(dying)->req()) + " ";
    });
    status = nullptr;
    EXPECT_EQ(found, "noc/1 noc/1 ");
    // Other answers, likely to be where these have been.
    status = pktGenStatusFactory();
    config->cfgIs(id("noc", 3), packet, port, intf("Ethernet1"));
    EXPECT_EQ(config->firstPending(*status)->req(), id("noc", 1));
    status->statusIs(id("noc", 1));
    EXPECT_EQ(config->firstPending(*status)->req(), id("noc", 2));
}

TEST_F(PktGenStatusTest, DestroyingOnePublishesTheRemovalOfEachEntry) {
    status->statusIs(id("noc", 1));
    status->statusIs(id("ops", 1));
    recorder.take();
    status = nullptr;
    EXPECT_EQ(recorder.take(), (Lines{"status del noc/1", "status del ops/1"}));
}

TEST_F(PktGenStatusTest, LookupOfAnAbsentKeyIsNull) {
    EXPECT_EQ(status->status(id("noc", 1)), nullptr);
}

TEST_F(PktGenStatusTest, AnEntryOutlivesItsRemoval) {
    auto const made = status->statusIs(id("noc", 1));
    status->statusDel(id("noc", 1));
    made->readyIs(true);
    EXPECT_TRUE(made->ready());
}

// ---- Reflection

// The numbers and names of a type's attributes.
std::string attributesOf(Kel::Object const& object) {
    std::string text(object.typeInfo().name);
    for (auto const& attribute : object.typeInfo().attributes) {
        text += " " + std::to_string(attribute.number) + ":" + std::string(attribute.name);
    }
    return text;
}

TEST(VynPtTypesReflectionTest, AttributesAreNumberedFrom130InTheOrderOfDeclaration) {
    auto const job = pktGenCfgDataFactory(id("noc", 1), packet, port, intf("Ethernet1"));
    EXPECT_EQ(attributesOf(*job), "PktGenCfgData 130:req 131:pkt 132:ingPortInfo 133:ingIntf");
    EXPECT_EQ(attributesOf(*pktGenStatusDataFactory(id("noc", 1))),
              "PktGenStatusData 130:req 131:pktId 132:ready 133:egrPortInfo 134:egrL2Domain "
              "135:copyToCpu 136:routed 137:dropped");
    EXPECT_EQ(attributesOf(*pktGenConfigFactory()), "PktGenConfig 130:cfg");
    EXPECT_EQ(attributesOf(*pktGenStatusFactory()), "PktGenStatus 130:status");
}

TEST(VynPtTypesReflectionTest, TheEntriesOfACollectionAreReadWithTheirKeys) {
    auto const jobs = pktGenConfigFactory();
    jobs->cfgIs(id("noc", 1), packet, port, intf("Ethernet1"));
    EXPECT_EQ(tableRow(*jobs, 130), "cfg=[[[noc 1] object]]");
    auto const answers = pktGenStatusFactory();
    EXPECT_EQ(tableRow(*answers, 130), "status=[]");
    answers->statusIs(id("noc", 2));
    EXPECT_EQ(tableRow(*answers, 130), "status=[[[noc 2] object]]");
}

}  // namespace
}  // namespace VynPacketTracer
