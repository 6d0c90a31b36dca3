#include "VynPacketTracer/ClientFixture.h"
#include "VynPacketTracer/VynPtClientSm.h"

namespace VynPacketTracer {
namespace {

using PacketTracer::State;

class ClientResultTest : public ClientTest {
  protected:
    ClientResultTest() {
        egressPort(132, "Ethernet2");
        start();
    }
    // A result's egress entries, in their order.
    std::string entries(std::uint32_t number = 1) const {
        std::string text;
        for (auto const& entry : result(number)->egressIntf()) {
            text += "(" + entry.key.physicalIntf().stringValue() + "," +
                    entry.key.logicalIntf().stringValue() + ")";
        }
        return text;
    }
    State state(std::uint32_t number = 1) const { return result(number)->state(); }
};

// ---- handleResults

TEST_F(ClientResultTest, ResultsWithoutARequestAreDeletedAndTheOthersLeftAlone) {
    for (std::uint32_t const number : {1u, 2u, 3u}) {
        clientStatus->resultIs(id("noc", number));
    }
    request(2, "Ethernet1", false);
    result(2)->stateIs(State::egressFound);
    EXPECT_EQ(after([&] { client->handleResults(); }),
              (Lines{"VynPtClientSm/7 handleResults:client noc #status:3", "result del noc/1",
                     "result del noc/3"}));
    EXPECT_EQ(state(2), State::egressFound);
    EXPECT_FALSE(result(2)->valid());
}

TEST_F(ClientResultTest, NoResultsNothingIsDeleted) {
    EXPECT_EQ(after([&] { client->handleResults(); }),
              (Lines{"VynPtClientSm/7 handleResults:client noc #status:0"}));
}

TEST_F(ClientResultTest, HandleResultsToleratesAnObserverThatDeletesToo) {
    for (std::uint32_t const number : {1u, 2u, 3u}) {
        clientStatus->resultIs(id("noc", number));
    }
    OnPublication const observer(clientStatus->publisher(),
                                 [&](auto, auto) { clientStatus->resultDel(id("noc", 2)); });
    client->handleResults();
    EXPECT_TRUE(clientStatus->result().empty());
}

// ---- updateResult: what decides

TEST_F(ClientResultTest, AnAnswerThatIsNotReadyMakesNoResult) {
    job(1);
    auto const status = answer(1, {.port = 132}, false);
    EXPECT_EQ(after([&] { client->updateResult(status); }),
              (Lines{"VynPtClientSm/7 updateResult:client:noc reqId:1 ready:false"}));
    EXPECT_FALSE(result(1));
}

TEST_F(ClientResultTest, AnAnswerWithoutAJobIsState3AndSaysInvalidPortIndex) {
    auto const status = answer(1, {.port = 132});
    EXPECT_EQ(
        after([&] { client->updateResult(status); }),
        (Lines{"VynPtClientSm/7 updateResult:client:noc reqId:1 ready:true", "result add noc/1",
               "VynPtClientSm/9 updateResult:client:noc reqId:1 invalid portIndex:132",
               "result state noc/1 3", "result valid noc/1 true"}));
    EXPECT_EQ(entries(), "");
}

TEST_F(ClientResultTest, AnAnswerWithoutACollectionOfJobsIsState3Too) {
    pktGenConfig = nullptr;
    start();
    auto const status = answer(1, {.port = 132});
    recorder.take();
    client->updateResult(status);
    EXPECT_EQ(happened("VynPtClientSm/9"),
              (Lines{"VynPtClientSm/9 updateResult:client:noc reqId:1 invalid portIndex:132"}));
    EXPECT_EQ(state(), State::noEgress);
}

TEST_F(ClientResultTest, ADroppedPacketIsState3WhateverItsPort) {
    EXPECT_EQ(
        update({.port = 132, .dropped = true}),
        (Lines{"VynPtClientSm/7 updateResult:client:noc reqId:1 ready:true", "result add noc/1",
               "VynPtClientSm/9 updateResult:client:noc reqId:1 pkt dropped",
               "result state noc/1 3", "result valid noc/1 true"}));
    EXPECT_EQ(entries(), "");
}

TEST_F(ClientResultTest, ADroppedPacketIsNotFlooded) {
    vlan(10, {"Ethernet2"});
    EXPECT_EQ(beginning("VynPtClientSm/7 pktFlooded", update({.l2Domain = 10, .dropped = true})),
              Lines{});
    EXPECT_EQ(state(), State::noEgress);
}

TEST_F(ClientResultTest, PortIndex456IsFloodedWhateverRoutedSays) {
    vlan(10, {"Ethernet2"});
    EXPECT_EQ(beginning("VynPtClientSm/7 pktFlooded:client", update({.l2Domain = 10})),
              (Lines{"VynPtClientSm/7 pktFlooded:client:noc reqId:1 flooded:10 ingIntf:Ethernet1 "
                     "routed:false"}));
    EXPECT_EQ(
        beginning("VynPtClientSm/7 pktFlooded:client", update({.l2Domain = 10, .routed = true})),
        (Lines{"VynPtClientSm/7 pktFlooded:client:noc reqId:1 flooded:10 ingIntf:Ethernet1 "
               "routed:true"}));
}

TEST_F(ClientResultTest, AnUnknownPortIsState3) {
    EXPECT_EQ(
        update({.port = 133}),
        (Lines{"VynPtClientSm/7 updateResult:client:noc reqId:1 ready:true", "result add noc/1",
               "VynPtClientSm/9 updateResult:client:noc reqId:1 unknown port133",
               "result state noc/1 3", "result valid noc/1 true"}));
}

TEST_F(ClientResultTest, AKnownPortIsState4WithThePortsEntries) {
    EXPECT_EQ(
        update({.port = 132, .l2Domain = 10}),
        (Lines{"VynPtClientSm/7 updateResult:client:noc reqId:1 ready:true", "result add noc/1",
               "VynPtClientSm/7 updatePortInfoResult:client:noc reqId:1 intfId:Ethernet2",
               "VynPtClientSm/7 updatePortInfoResult:physical egress intf:Ethernet2",
               "result egressIntf noc/1 (Ethernet2,)",
               "VynPtClientSm/7 updateResult:portId:132 intfId:Ethernet2", "result state noc/1 4",
               "result valid noc/1 true"}));
}

TEST_F(ClientResultTest, AKnownPortNotRoutedHasNoVlanEntryWhateverCopyToCpuSays) {
    vlan(10, {"Ethernet2", "Cpu"});
    update({.port = 132, .l2Domain = 10, .copyToCpu = true});
    EXPECT_EQ(entries(), "(Ethernet2,)");
    EXPECT_EQ(state(), State::egressFound);
}

TEST_F(ClientResultTest, APortIndexOf455IsAPort) {
    egressPort(455, "Ethernet3");
    update({.port = 455});
    EXPECT_EQ(entries(), "(Ethernet3,)");
}

// ---- updateResult: routed to a port

TEST_F(ClientResultTest, RoutedIntoAVlanWithTheCpuAddsAVlanEntryAPhysicalInterface) {
    vlan(10, {"Ethernet2", "Cpu"});
    lagMember("Ethernet2", "Lag1");
    EXPECT_EQ(
        update({.port = 132, .l2Domain = 10, .routed = true}),
        (Lines{"VynPtClientSm/7 updateResult:client:noc reqId:1 ready:true", "result add noc/1",
               "VynPtClientSm/7 updatePortInfoResult:client:noc reqId:1 intfId:Ethernet2",
               "VynPtClientSm/7 updatePortInfoResult:physical egress intf:Ethernet2 lag "
               "intf:Lag1",
               "result egressIntf noc/1 (Ethernet2,Lag1)", "result egressIntf noc/1 (Ethernet2,)",
               "VynPtClientSm/7 updateResult:portId:132 intfId:Ethernet2",
               "VynPtClientSm/7 addVlanIntf:client:noc reqId:1 l2Domain:10",
               "result egressIntf noc/1 (Ethernet2,Vlan10)", "result state noc/1 4",
               "result valid noc/1 true"}));
}

TEST_F(ClientResultTest, RoutedIntoAVlanWithoutTheCpuAddsNoVlanEntry) {
    vlan(10, {"Ethernet2"});
    update({.port = 132, .l2Domain = 10, .routed = true});
    EXPECT_EQ(entries(), "(Ethernet2,)");
    EXPECT_EQ(state(), State::egressFound);
}

TEST_F(ClientResultTest, RoutedIntoAnInternalVlanAddsNoVlanEntry) {
    vlan(10, {"Ethernet2", "Cpu"})->internalIs(true);
    update({.port = 132, .l2Domain = 10, .routed = true});
    EXPECT_EQ(entries(), "(Ethernet2,)");
    EXPECT_EQ(state(), State::egressFound);
}

TEST_F(ClientResultTest, RoutedIntoAVlanThatIsNotConfiguredAddsNoVlanEntry) {
    update({.port = 132, .l2Domain = 10, .routed = true});
    EXPECT_EQ(entries(), "(Ethernet2,)");
    EXPECT_EQ(state(), State::egressFound);
}

TEST_F(ClientResultTest, ACpuPortThatIsAMemberIsNotTheCpu) {
    cpuPort("Ethernet3");
    vlan(10, {"Ethernet2", "Ethernet3"});
    update({.port = 132, .l2Domain = 10, .routed = true});
    EXPECT_EQ(entries(), "(Ethernet2,)");
}

TEST_F(ClientResultTest, RoutedOutOfASubInterfaceAddsNoVlanEntryForIt) {
    egressPort(133, "Ethernet3.7");
    vlan(10, {"Cpu"});
    update({.port = 133, .l2Domain = 10, .routed = true});
    EXPECT_EQ(entries(), "(Ethernet3,Ethernet3.7)");
    EXPECT_EQ(state(), State::egressFound);
}

// The error that leaves updateResult, and what the result is then.
class ClientRangeErrorTest : public ClientResultTest {
  protected:
    std::string raised(Outcome const& outcome) {
        try {
            update(outcome);
        } catch (Kel::RangeError const& error) {
            return error.what();
        }
        return "nothing";
    }
    std::string const vlanRange = "Bridging::VlanId::value < 1 or > 4094 not allowed";
};

TEST_F(ClientRangeErrorTest, RoutedInDomain0EscapesWithStateAndValidUnset) {
    EXPECT_EQ(raised({.port = 132, .l2Domain = 0, .routed = true}), vlanRange);
    EXPECT_EQ(state(), State::initial);
    EXPECT_FALSE(result(1)->valid());
    EXPECT_EQ(entries(), "(Ethernet2,)");
}

TEST_F(ClientRangeErrorTest, RoutedInDomain4095Escapes) {
    EXPECT_EQ(raised({.port = 132, .l2Domain = 4095, .routed = true}), vlanRange);
}

TEST_F(ClientRangeErrorTest, RoutedInDomain4094Does) {
    EXPECT_EQ(raised({.port = 132, .l2Domain = 4094, .routed = true}), "nothing");
}

TEST_F(ClientRangeErrorTest, NotRoutedTheDomainIsNotLookedAt) {
    EXPECT_EQ(raised({.port = 132, .l2Domain = 65535}), "nothing");
}

TEST_F(ClientRangeErrorTest, AFloodInDomain4095EscapesWithStateAndValidUnset) {
    EXPECT_EQ(raised({.l2Domain = 4095, .routed = true, .copyToCpu = true}), vlanRange);
    EXPECT_EQ(state(), State::initial);
    EXPECT_FALSE(result(1)->valid());
    EXPECT_EQ(entries(), "");
}

// ---- updateResult again

TEST_F(ClientResultTest, ASecondAnswerAddsToTheResultThatIsThere) {
    egressPort(133, "Ethernet3");
    update({.port = 132});
    EXPECT_EQ(updateResult({.port = 133}), (Lines{"result egressIntf noc/1 (Ethernet3,)"}));
    EXPECT_EQ(entries(), "(Ethernet2,)(Ethernet3,)");
}

TEST_F(ClientResultTest, TheSameAnswerAgainChangesNothing) {
    update({.port = 132});
    EXPECT_EQ(updateResult({.port = 132}), Lines{});
}

TEST_F(ClientResultTest, ADropAfterAnEgressKeepsTheEntries) {
    update({.port = 132});
    EXPECT_EQ(updateResult({.port = 132, .dropped = true}), (Lines{"result state noc/1 3"}));
    EXPECT_EQ(entries(), "(Ethernet2,)");
}

// ---- updatePortInfoResult

class PortInfoResultTest : public ClientResultTest {
  protected:
    Lines entriesOf(std::string_view name) {
        auto const made = clientStatus->resultIs(id("noc", 1));
        return after([&] { client->updatePortInfoResult(intf(name), made); });
    }
    static std::string entry(std::string_view name) {
        return "VynPtClientSm/7 updatePortInfoResult:client:noc reqId:1 intfId:" +
               std::string(name);
    }
};

TEST_F(PortInfoResultTest, ALagIsOneEntryWithoutAPhysicalInterface) {
    lag("Lag1");
    EXPECT_EQ(entriesOf("Lag1"),
              (Lines{entry("Lag1"), "VynPtClientSm/7 updatePortInfoResult:lag egress intf:Lag1",
                     "result egressIntf noc/1 (,Lag1)"}));
}

TEST_F(PortInfoResultTest, ALagNameThatIsNoLagIsAPlainPort) {
    EXPECT_EQ(last(entriesOf("Lag1")), "result egressIntf noc/1 (Lag1,)");
}

TEST_F(PortInfoResultTest, ASubInterfaceIsPairedWithItsParent) {
    EXPECT_EQ(entriesOf("Ethernet2.100"),
              (Lines{entry("Ethernet2.100"),
                     "VynPtClientSm/7 updatePortInfoResult:subintf egress intf:Ethernet2.100",
                     "result egressIntf noc/1 (Ethernet2,Ethernet2.100)"}));
}

TEST_F(PortInfoResultTest, ALagMemberIsPairedWithItsLagAndStandsAlone) {
    lagMember("Ethernet2", "Lag1");
    EXPECT_EQ(
        entriesOf("Ethernet2"),
        (Lines{entry("Ethernet2"),
               "VynPtClientSm/7 updatePortInfoResult:physical egress intf:Ethernet2 lag intf:Lag1",
               "result egressIntf noc/1 (Ethernet2,Lag1)",
               "result egressIntf noc/1 (Ethernet2,)"}));
}

TEST_F(PortInfoResultTest, ACpuPortOfTheChipIsTheCpuWhateverItsName) {
    cpuPort("Ethernet7");
    EXPECT_EQ(entriesOf("Ethernet7"),
              (Lines{entry("Ethernet7"),
                     "VynPtClientSm/7 updatePortInfoResult:physical egress intf:Ethernet7",
                     "result egressIntf noc/1 (Cpu,)"}));
}

TEST_F(PortInfoResultTest, APlainPortIsOneEntry) {
    EXPECT_EQ(entriesOf("Ethernet2"),
              (Lines{entry("Ethernet2"),
                     "VynPtClientSm/7 updatePortInfoResult:physical egress intf:Ethernet2",
                     "result egressIntf noc/1 (Ethernet2,)"}));
}

TEST_F(PortInfoResultTest, BeingALagComesBeforeBeingASubInterface) {
    lag("Ethernet2.100");
    EXPECT_EQ(last(entriesOf("Ethernet2.100")), "result egressIntf noc/1 (,Ethernet2.100)");
}

TEST_F(PortInfoResultTest, BeingASubInterfaceComesBeforeBeingAMember) {
    lagMember("Ethernet2.100", "Lag1");
    EXPECT_EQ(last(entriesOf("Ethernet2.100")),
              "result egressIntf noc/1 (Ethernet2,Ethernet2.100)");
}

TEST_F(PortInfoResultTest, BeingAMemberComesBeforeBeingACpuPort) {
    lagMember("Ethernet2", "Lag1");
    cpuPort("Ethernet2");
    EXPECT_EQ(last(entriesOf("Ethernet2")), "result egressIntf noc/1 (Ethernet2,)");
}

TEST_F(PortInfoResultTest, SetsNeitherStateNorValid) {
    entriesOf("Ethernet2");
    EXPECT_EQ(state(), State::initial);
    EXPECT_FALSE(result(1)->valid());
}

TEST_F(PortInfoResultTest, CpuIntfIdIsTheIdNamedCpu) {
    EXPECT_EQ(PacketTracerClientSm::cpuIntfId(), intf("Cpu"));
    EXPECT_TRUE(Plexa::CpuIntfId::isCpuIntfId(PacketTracerClientSm::cpuIntfId()));
}

// ---- pktFlooded

class FloodTest : public ClientResultTest {};

TEST_F(FloodTest, GoesToEveryMemberButTheIngressPortAndTheCpu) {
    vlan(10, {"Ethernet1", "Cpu", "Ethernet2", "Ethernet3"});
    EXPECT_EQ(
        update({.l2Domain = 10}),
        (Lines{"VynPtClientSm/7 updateResult:client:noc reqId:1 ready:true", "result add noc/1",
               "VynPtClientSm/7 pktFlooded:client:noc reqId:1 flooded:10 ingIntf:Ethernet1 "
               "routed:false",
               "VynPtClientSm/7 pktFlooded:vlan:10 intf:Ethernet1",
               "VynPtClientSm/7 pktFlooded:vlan:10 intf:Cpu",
               "VynPtClientSm/7 pktFlooded:vlan:10 intf:Ethernet2",
               "VynPtClientSm/7 updatePortInfoResult:client:noc reqId:1 intfId:Ethernet2",
               "VynPtClientSm/7 updatePortInfoResult:physical egress intf:Ethernet2",
               "result egressIntf noc/1 (Ethernet2,)",
               "VynPtClientSm/7 pktFlooded:vlan:10 intf:Ethernet3",
               "VynPtClientSm/7 updatePortInfoResult:client:noc reqId:1 intfId:Ethernet3",
               "VynPtClientSm/7 updatePortInfoResult:physical egress intf:Ethernet3",
               "result egressIntf noc/1 (Ethernet3,)", "result state noc/1 4",
               "result valid noc/1 true"}));
}

TEST_F(FloodTest, WithCopyToCpuAddsTheCpu) {
    vlan(10, {"Ethernet1", "Cpu", "Ethernet2", "Ethernet3"});
    update({.l2Domain = 10, .copyToCpu = true});
    EXPECT_EQ(entries(), "(Ethernet2,)(Ethernet3,)(Cpu,)");
    EXPECT_EQ(state(), State::egressFound);
}

TEST_F(FloodTest, ToNobodyIsState3) {
    vlan(10, {"Ethernet1", "Cpu"});
    update({.l2Domain = 10});
    EXPECT_EQ(entries(), "");
    EXPECT_EQ(state(), State::noEgress);
    EXPECT_TRUE(result(1)->valid());
}

TEST_F(FloodTest, ToNobodyButTheCpuIsState4) {
    vlan(10, {"Ethernet1", "Cpu"});
    update({.l2Domain = 10, .copyToCpu = true});
    EXPECT_EQ(entries(), "(Cpu,)");
    EXPECT_EQ(state(), State::egressFound);
}

TEST_F(FloodTest, InAVlanWithoutMembersIsState3) {
    vlan(10, {});
    update({.l2Domain = 10});
    EXPECT_EQ(state(), State::noEgress);
}

TEST_F(FloodTest, RoutedAddsAVlanEntryAPhysicalInterfaceThatIsNotOnASubInterface) {
    vlan(10, {"Ethernet3", "Lag1", "Ethernet4.7", "Ethernet2"});
    lag("Lag1");
    lagMember("Ethernet2", "Lag2");
    EXPECT_EQ(
        beginning("result egressIntf", update({.l2Domain = 10, .routed = true, .copyToCpu = true})),
        (Lines{"result egressIntf noc/1 (Ethernet3,)", "result egressIntf noc/1 (,Lag1)",
               "result egressIntf noc/1 (Ethernet4,Ethernet4.7)",
               "result egressIntf noc/1 (Ethernet2,Lag2)", "result egressIntf noc/1 (Ethernet2,)",
               "result egressIntf noc/1 (,Vlan10)", "result egressIntf noc/1 (Ethernet2,Vlan10)",
               "result egressIntf noc/1 (Ethernet3,Vlan10)", "result egressIntf noc/1 (Cpu,)"}));
}

TEST_F(FloodTest, RoutedAddsVlanEntriesAlsoForAnInternalVlanWithoutTheCpu) {
    vlan(10, {"Ethernet2"})->internalIs(true);
    update({.l2Domain = 10, .routed = true});
    EXPECT_EQ(entries(), "(Ethernet2,)(Ethernet2,Vlan10)");
}

TEST_F(FloodTest, InDomain0IsState3AndNothingIsAdded) {
    EXPECT_EQ(
        update({.l2Domain = 0, .routed = true, .copyToCpu = true}),
        (Lines{"VynPtClientSm/7 updateResult:client:noc reqId:1 ready:true", "result add noc/1",
               "VynPtClientSm/7 pktFlooded:client:noc reqId:1 flooded:0 ingIntf:Ethernet1 "
               "routed:true",
               "VynPtClientSm/9 pktFlooded:client:noc reqId:1 digest with invalid l2Domain0",
               "result state noc/1 3", "result valid noc/1 true"}));
}

TEST_F(FloodTest, InADomainThatIsNotConfiguredIsState3AndNothingIsAdded) {
    EXPECT_EQ(beginning("VynPtClientSm/9", update({.l2Domain = 11, .copyToCpu = true})),
              (Lines{"VynPtClientSm/9 pktFlooded:client:noc reqId:1 digest with invalid "
                     "l2Domain11"}));
    EXPECT_EQ(entries(), "");
    EXPECT_EQ(state(), State::noEgress);
}

TEST_F(FloodTest, SkipsTheIngressInterfaceItselfAlone) {
    job(1, "Ethernet2.5");
    vlan(10, {"Ethernet2", "Ethernet2.5"});
    update({.l2Domain = 10});
    EXPECT_EQ(entries(), "(Ethernet2,)");
}

TEST_F(FloodTest, ReportsACpuPortOfTheChipThatIsAMember) {
    cpuPort("Ethernet7");
    vlan(10, {"Ethernet7"});
    update({.l2Domain = 10});
    EXPECT_EQ(entries(), "(Cpu,)");
}

TEST_F(FloodTest, OfAResultThatHasEntriesAlreadyIsState4) {
    vlan(10, {"Ethernet1"});
    update({.port = 132});
    result(1)->stateIs(State::initial);
    update({.l2Domain = 10});
    EXPECT_EQ(state(), State::egressFound);
}

TEST_F(FloodTest, SetsTheStateAndLeavesValidToItsCaller) {
    vlan(10, {"Ethernet2"});
    auto const made = clientStatus->resultIs(id("noc", 1));
    client->pktFlooded(answer(1, {.l2Domain = 10}), made, intf("Ethernet1"));
    EXPECT_EQ(made->state(), State::egressFound);
    EXPECT_FALSE(made->valid());
}

// ---- addVlanIntf

class AddVlanIntfTest : public ClientResultTest {
  protected:
    using Entry = PacketTracer::ResultEntry;

    Lines added(std::initializer_list<Entry> before) {
        auto const made = clientStatus->resultIs(id("noc", 1));
        for (auto const& entry : before) {
            made->egressIntfIs(entry);
        }
        return after([&] { client->addVlanIntf(made, 10); });
    }
    static Entry both(std::string_view physical, std::string_view logical) {
        return Entry::fromPhysicalAndLogicalIntf(intf(physical), intf(logical));
    }
    std::string const trace = "VynPtClientSm/7 addVlanIntf:client:noc reqId:1 l2Domain:10";
};

TEST_F(AddVlanIntfTest, ALagEntryAloneGivesAVlanEntryWithoutAPhysicalInterface) {
    EXPECT_EQ(added({both("", "Lag1")}), (Lines{trace, "result egressIntf noc/1 (,Vlan10)"}));
}

TEST_F(AddVlanIntfTest, GoesUpThroughTheInterfacesInTheirOrder) {
    EXPECT_EQ(added({both("Ethernet10", ""), both("Ethernet2", ""), both("", "Lag1"),
                     both("Ethernet1/2", "")}),
              (Lines{trace, "result egressIntf noc/1 (,Vlan10)",
                     "result egressIntf noc/1 (Ethernet1/2,Vlan10)",
                     "result egressIntf noc/1 (Ethernet2,Vlan10)",
                     "result egressIntf noc/1 (Ethernet10,Vlan10)"}));
}

TEST_F(AddVlanIntfTest, AnInterfaceWithTwoEntriesGetsOneVlanEntry) {
    EXPECT_EQ(added({both("Ethernet2", "Lag1"), both("Ethernet2", "")}),
              (Lines{trace, "result egressIntf noc/1 (Ethernet2,Vlan10)"}));
}

TEST_F(AddVlanIntfTest, EntriesOnSubInterfacesAreLeftOut) {
    EXPECT_EQ(added({both("Ethernet2", "Ethernet2.5")}), (Lines{trace}));
}

TEST_F(AddVlanIntfTest, AnEmptyResultStaysEmpty) {
    EXPECT_EQ(added({}), (Lines{trace}));
}

}  // namespace
}  // namespace VynPacketTracer
