#include "agent/DeriveState.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "switchfile/SwitchFile.h"

namespace Agent {
namespace {

Plexa::IntfId id(std::string_view name) {
    return Plexa::IntfId::fromName(name).value();
}

// Ports of every kind, two LAGs, sub-interfaces that route and that are bridged, VLAN interfaces.
class DeriveState : public testing::Test {
  protected:
    bool hasPortInfo(std::string_view name) const {
        return state.systemStatus->portInfo().has(id(name));
    }
    std::string pipeAndIndex(std::string_view name) const {
        VynSystem::PortInfo const info = state.systemStatus->portInfo().get(id(name));
        return std::to_string(info.pipe()) + "/" + std::to_string(info.port().value());
    }
    std::string intfOf(std::uint16_t devicePort) const {
        return state.systemStatus->portToIntfId()
            .get(VynPortTypes::PortIndex(devicePort))
            .stringValue();
    }
    std::set<std::string> members(std::uint16_t vlan) const {
        std::set<std::string> names;
        auto const config = state.bridgingConfig->vlanConfig(Bridging::VlanId(vlan));
        for (auto const& member : config->intf()) {
            names.insert(member.key.stringValue());
        }
        return names;
    }
    bool isInternal(std::uint16_t vlan) const {
        return state.bridgingConfig->vlanConfig(Bridging::VlanId(vlan))->internal();
    }

    SwitchFile::SwitchModel const model = SwitchFile::parseSwitchFile(R"({
        "routerMac": "02:00:00:00:00:01",
        "vlans": {"10": {}, "20": {}, "30": {}, "4093": {}},
        "interfaces": {
            "Ethernet1": {"port": "0/0", "access": 10},
            "Ethernet2": {"port": "1/127", "trunk": "10,20", "native": 30},
            "Ethernet3": {"port": "3/71", "up": false},
            "Ethernet4": {"port": "2/4"},
            "Ethernet5": {"port": "2/5"},
            "Ethernet6": {"port": "2/6"},
            "Ethernet7": {"port": "2/7", "addresses": ["10.0.7.1/24"]},
            "Ethernet7.100": {"addresses": ["10.0.100.1/24"]},
            "Ethernet7.200": {"vlan": 20},
            "Ethernet64": {"port": "1/64", "cpu": true},
            "Lag1": {"members": ["Ethernet4", "Ethernet5"], "trunk": "all"},
            "Lag2": {"members": ["Ethernet6"], "routed": true},
            "Lag2.5": {"addresses": ["10.0.5.1/24"]},
            "Vlan10": {"addresses": ["10.0.10.1/24"]}
        }})",
                                                                      "switch.json");
    ForwardingState const state = deriveForwardingState(model);
};

TEST_F(DeriveState, PhysicalPortsHavePipeAndIndexInThePipe) {
    EXPECT_EQ(pipeAndIndex("Ethernet1"), "0/0");
    EXPECT_EQ(pipeAndIndex("Ethernet2"), "1/127");
    EXPECT_EQ(pipeAndIndex("Ethernet3"), "3/71");
    EXPECT_EQ(pipeAndIndex("Ethernet64"), "1/64");
}

TEST_F(DeriveState, LagMembersHavePortInformationOfTheirOwn) {
    EXPECT_EQ(pipeAndIndex("Ethernet4"), "2/4");
    EXPECT_EQ(pipeAndIndex("Ethernet5"), "2/5");
}

TEST_F(DeriveState, SubInterfaceHasItsParentsPortInformation) {
    EXPECT_EQ(pipeAndIndex("Ethernet7.100"), "2/7");
    EXPECT_EQ(pipeAndIndex("Ethernet7.200"), "2/7");
}

TEST_F(DeriveState, LagsAndVlanInterfacesHaveNoPortInformation) {
    EXPECT_FALSE(hasPortInfo("Lag1"));
    EXPECT_FALSE(hasPortInfo("Vlan10"));
    EXPECT_FALSE(hasPortInfo("Cpu"));
}

TEST_F(DeriveState, SubInterfaceOfALagHasNoPortInformation) {
    EXPECT_FALSE(hasPortInfo("Lag2.5"));
}

TEST_F(DeriveState, DevicePortGivesThePortsOwnInterface) {
    EXPECT_EQ(intfOf(0), "Ethernet1");
    EXPECT_EQ(intfOf(255), "Ethernet2");
    EXPECT_EQ(intfOf(455), "Ethernet3");
    EXPECT_EQ(intfOf(2 * 128 + 7), "Ethernet7");
    EXPECT_EQ(intfOf(192), "Ethernet64");
}

TEST_F(DeriveState, DevicePortOfALagMemberGivesTheMember) {
    EXPECT_EQ(intfOf(2 * 128 + 4), "Ethernet4");
    EXPECT_EQ(intfOf(2 * 128 + 6), "Ethernet6");
}

TEST_F(DeriveState, OnlyPhysicalPortsHaveADevicePort) {
    EXPECT_EQ(state.systemStatus->portToIntfId().size(), 8U);
}

TEST_F(DeriveState, LagsAreKnownAndTheirMembersNameThem) {
    EXPECT_TRUE(state.fcsd->lagToPort().has(id("Lag1")));
    EXPECT_TRUE(state.fcsd->lagToPort().has(id("Lag2")));
    EXPECT_EQ(state.fcsd->lagToPort().size(), 2U);
    EXPECT_EQ(state.fcsd->portToLag().get(id("Ethernet4")), id("Lag1"));
    EXPECT_EQ(state.fcsd->portToLag().get(id("Ethernet6")), id("Lag2"));
    EXPECT_EQ(state.fcsd->portToLag().size(), 3U);
}

TEST_F(DeriveState, LagsAreInVlansAndTheirMembersAreNot) {
    for (std::uint16_t const vlan : {10, 20, 30, 4093}) {
        EXPECT_TRUE(members(vlan).count("Lag1")) << vlan;
        EXPECT_FALSE(members(vlan).count("Ethernet4")) << vlan;
        EXPECT_FALSE(members(vlan).count("Ethernet5")) << vlan;
    }
}

TEST_F(DeriveState, AccessTrunkAndNativeVlansMakeMembers) {
    EXPECT_EQ(members(10), (std::set<std::string>{"Ethernet1", "Ethernet2", "Lag1", "Cpu"}));
    EXPECT_EQ(members(30), (std::set<std::string>{"Ethernet2", "Lag1"}));
}

TEST_F(DeriveState, BridgedSubInterfaceIsAMemberOfItsVlan) {
    EXPECT_EQ(members(20), (std::set<std::string>{"Ethernet2", "Ethernet7.200", "Lag1"}));
}

TEST_F(DeriveState, CpuIsAMemberOfExactlyTheVlansWithAVlanInterface) {
    for (auto const& vlan : state.bridgingConfig->vlanConfig()) {
        bool const hasCpu = vlan.value->intf().has(id("Cpu"));
        EXPECT_EQ(hasCpu, vlan.key.value() == 10) << vlan.key.value();
    }
}

TEST_F(DeriveState, RoutedPortsAndSubInterfacesAreAloneInTheirInternalVlans) {
    EXPECT_EQ(members(4094), std::set<std::string>{"Ethernet7"});
    EXPECT_EQ(members(4092), std::set<std::string>{"Ethernet7.100"});
    EXPECT_EQ(members(4091), std::set<std::string>{"Lag2"});
    EXPECT_EQ(members(4090), std::set<std::string>{"Lag2.5"});
    EXPECT_EQ(state.bridgingConfig->vlanConfig().size(), 8U);
}

TEST_F(DeriveState, InternalVlansAreMarkedAndConfiguredOnesAreNot) {
    for (std::uint16_t const vlan : {4094, 4092, 4091, 4090}) {
        EXPECT_TRUE(isInternal(vlan)) << vlan;
    }
    for (std::uint16_t const vlan : {10, 20, 30, 4093}) {
        EXPECT_FALSE(isInternal(vlan)) << vlan;
    }
}

TEST_F(DeriveState, CpuPortsAreTheMarkedOnes) {
    EXPECT_TRUE(state.chipStatus->isCpuIntf(id("Ethernet64")));
    EXPECT_EQ(state.chipStatus->cpuIntf().size(), 1U);
}

}  // namespace
}  // namespace Agent
