#include "cli/SwitchDefaults.h"

#include <gtest/gtest.h>

#include <string>

#include "switchfile/SwitchFile.h"

namespace Cli {
namespace {

using PacketTracer::IpAddress;
using PacketTracer::PacketFields;

constexpr char const* switchFile = R"({
    "routerMac": "02:00:00:00:ff:01",
    "vlans": {"10": {}, "20": {}, "30": {}},
    "interfaces": {
        "Ethernet1": {"port": "0/0", "access": 10},
        "Ethernet2": {"port": "0/1", "access": 10},
        "Ethernet3": {"port": "0/2", "access": 20},
        "Ethernet4": {"port": "0/3", "trunk": "20,30"},
        "Ethernet5": {"port": "0/4"},
        "Lag1": {"members": ["Ethernet5"], "access": 10},
        "Ethernet6": {"port": "0/5", "addresses": ["10.6.0.0/31", "2001:db8:6::/127"]},
        "Ethernet6.5": {"addresses": ["10.65.0.1/24"]},
        "Ethernet6.10": {"vlan": 10},
        "Vlan10": {"addresses": ["10.0.10.1/24", "2001:db8:10::1/64"]},
        "Vlan30": {"addresses": ["10.0.30.254/24"]}
    },
    "neighbours": {
        "Vlan10": {
            "10.0.10.12": "02:00:00:00:02:01",
            "10.0.10.11": "02:00:00:00:01:01",
            "2001:db8:10::11": "02:00:00:00:01:01",
            "10.0.10.15": "02:00:00:00:05:01"
        },
        "Ethernet6": {"10.6.0.1": "02:00:00:00:06:01"}
    },
    "fdb": {
        "10": {
            "02:00:00:00:01:01": "Ethernet1",
            "02:00:00:00:02:01": "Ethernet2",
            "02:00:00:00:05:01": "Lag1",
            "02:00:00:00:0a:01": "Ethernet6.10"
        },
        "20": {"02:00:00:00:03:01": "Ethernet3"}
    }
})";

class SwitchDefaultsTest : public testing::Test {
  protected:
    PacketTracer::PacketHints hints(char const* ingress, PacketFields const& fields = {}) const {
        return packetHints(model_, *Plexa::IntfId::fromName(ingress), fields);
    }
    std::string filled(char const* ingress, PacketFields fields = {}, bool untagged = false) const {
        std::string text;
        for (auto const& field :
             fillFromSwitch(fields, 0, untagged, model_, *Plexa::IntfId::fromName(ingress))) {
            text += std::string(field.name) + "=" + field.value + " ";
        }
        return text;
    }
    static std::string text(auto const& address) { return address ? address->text() : "none"; }
    static PacketFields to(char const* address) {
        PacketFields fields;
        fields.ipDst = IpAddress::fromText(address);
        return fields;
    }
    static PacketFields tagged(std::uint16_t vlan) {
        PacketFields fields;
        fields.tags.push_back({.vlan = vlan});
        return fields;
    }

    SwitchFile::SwitchModel const model_ = SwitchFile::parseSwitchFile(switchFile, "test");
};

TEST_F(SwitchDefaultsTest, TheHostIsTheNeighbourBehindTheIngressInterface) {
    auto const found = hints("Ethernet1");
    EXPECT_EQ(text(found.hostMac), "02:00:00:00:01:01");
    EXPECT_EQ(text(found.hostIpv4), "10.0.10.11");
    EXPECT_EQ(text(found.hostIpv6), "2001:db8:10::11");
    EXPECT_EQ(text(found.routerIpv4), "10.0.10.1");
}

TEST_F(SwitchDefaultsTest, ARoutedVlanHasTheRoutersMac) {
    EXPECT_EQ(text(hints("Ethernet1").routerMac), "02:00:00:00:ff:01");
    EXPECT_EQ(text(hints("Ethernet3").routerMac), "none");
}

TEST_F(SwitchDefaultsTest, TheMembersOfALagHaveItsHosts) {
    EXPECT_EQ(text(hints("Ethernet5").hostIpv4), "10.0.10.15");
}

TEST_F(SwitchDefaultsTest, WhereNothingRoutesTheHostIsAStation) {
    auto const found = hints("Ethernet3");
    EXPECT_EQ(text(found.hostMac), "02:00:00:00:03:01");
    EXPECT_EQ(text(found.hostIpv4), "none");
}

TEST_F(SwitchDefaultsTest, ATagNamesTheVlan) {
    auto const found = hints("Ethernet4", tagged(30));
    EXPECT_EQ(text(found.routerIpv4), "10.0.30.254");
    EXPECT_EQ(text(found.hostMac), "none");
}

TEST_F(SwitchDefaultsTest, AHostThatNobodyKnowsHasAFreeAddressOfTheSubnet) {
    EXPECT_EQ(text(hints("Ethernet4", tagged(30)).hostIpv4), "10.0.30.253");
    EXPECT_EQ(text(hints("Ethernet6").hostIpv6), "2001:db8:6::1");
}

TEST_F(SwitchDefaultsTest, ARoutedPortsHostIsItsNeighbour) {
    auto const found = hints("Ethernet6");
    EXPECT_EQ(text(found.hostMac), "02:00:00:00:06:01");
    EXPECT_EQ(text(found.hostIpv4), "10.6.0.1");
    EXPECT_EQ(text(found.routerIpv4), "10.6.0.0");
    EXPECT_EQ(text(found.routerMac), "02:00:00:00:ff:01");
}

TEST_F(SwitchDefaultsTest, ATagOnARoutedPortNamesTheSubInterface) {
    EXPECT_EQ(text(hints("Ethernet6", tagged(5)).routerIpv4), "10.65.0.1");
    EXPECT_EQ(text(hints("Ethernet6", tagged(10)).routerIpv4), "10.0.10.1");
}

TEST_F(SwitchDefaultsTest, ABridgedSubInterfaceHasItsStations) {
    EXPECT_EQ(text(hints("Ethernet6.10").hostMac), "02:00:00:00:0a:01");
}

TEST_F(SwitchDefaultsTest, ANeighbourInTheHostsOwnSubnetIsAddressedItself) {
    EXPECT_EQ(text(hints("Ethernet1", to("10.0.10.12")).routerMac), "02:00:00:00:02:01");
    EXPECT_EQ(text(hints("Ethernet1", to("10.0.10.99")).routerMac), "02:00:00:00:ff:01");
    EXPECT_EQ(text(hints("Ethernet3", to("10.0.10.12")).routerMac), "none");
}

TEST_F(SwitchDefaultsTest, AnUnknownInterfaceGivesNoHints) {
    auto const found = hints("Ethernet99");
    EXPECT_EQ(text(found.hostMac), "none");
    EXPECT_EQ(text(found.routerMac), "none");
}

TEST_F(SwitchDefaultsTest, WhatTakesTaggedFramesAloneGetsATag) {
    EXPECT_TRUE(filled("Ethernet6.5").starts_with("vlan=5 "));
    EXPECT_TRUE(filled("Ethernet4").starts_with("vlan=30 ")) << "the one that routes";
    EXPECT_TRUE(filled("Ethernet1").starts_with("eth-dst=02:00:00:00:ff:01 "));
}

TEST_F(SwitchDefaultsTest, ATagThatIsGivenOrRefusedStays) {
    EXPECT_EQ(filled("Ethernet4", tagged(20)).find("vlan="), std::string::npos);
    EXPECT_EQ(filled("Ethernet4", {}, true).find("vlan="), std::string::npos);
}

}  // namespace
}  // namespace Cli
