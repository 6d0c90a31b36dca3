#include "cli/ChipNames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

#include "agent/DeriveTables.h"
#include "softchip/Phase0.h"
#include "softchip/Pipeline.h"
#include "switchfile/SwitchFile.h"

namespace Cli {
namespace {

using SoftChip::LogicalPort;
using SoftChip::Reason;
using SoftChip::Step;

constexpr SoftChip::MacAddress mac{0x02000000000a};
constexpr SoftChip::IpAddress ip = SoftChip::IpAddress::v4(0x0a000001);

class ChipNamesTest : public testing::Test {
  protected:
    std::string told(std::initializer_list<SoftChip::Detail> details) const {
        SoftChip::Explanation explanation;
        for (auto const& detail : details) {
            explanation.met(detail);
        }
        explanation.took(Step::fdb, Reason::fdbHit);
        return names_.steps(explanation).at(0).detail;
    }

    SwitchFile::SwitchModel const model_ = SwitchFile::parseSwitchFile(R"({
        "vrfs": ["blue"],
        "vlans": {"10": {"acl": "edge"}},
        "interfaces": {
            "Ethernet1": {"port": "0/0", "access": 10},
            "Ethernet17": {"port": "0/16", "access": 10, "acl": "edge"}
        },
        "acls": {"edge": [{"action": "permit"}]}
    })",
                                                                       "test");
    ChipNames const names_{model_};
};

TEST_F(ChipNamesTest, DevicePortsAreInterfaces) {
    EXPECT_EQ(told({LogicalPort::port(16)}), "Ethernet17");
    EXPECT_EQ(told({LogicalPort::port(17)}), "port 17");
    EXPECT_EQ(told({LogicalPort()}), "no port");
}

TEST_F(ChipNamesTest, LagsHaveTheSwitchFilesNames) {
    EXPECT_EQ(told({LogicalPort::lag(3)}), "Lag3");
    EXPECT_EQ(told({SoftChip::InLag{3}}), "in Lag3");
}

TEST_F(ChipNamesTest, AccessListsAreToldWithTheirPlace) {
    EXPECT_EQ(told({SoftChip::RuleOfList{1, 10}}), "edge on VLAN 10 rule 10");
    EXPECT_EQ(told({SoftChip::RuleOfList{2, 20}}), "edge on Ethernet17 rule 20");
    EXPECT_EQ(told({SoftChip::RuleOfList{9, 10}}), "list 9 rule 10");
    EXPECT_EQ(told({SoftChip::RuleOfList{0, 10}}), "list 0 rule 10");
}

TEST_F(ChipNamesTest, VrfsHaveTheSwitchFilesNames) {
    EXPECT_EQ(told({SoftChip::IpInVrf{ip, 1}}), "10.0.0.1 in VRF blue");
    EXPECT_EQ(told({SoftChip::IpInVrf{ip, 2}}), "10.0.0.1 in VRF 2");
}

TEST_F(ChipNamesTest, WhatHasNoNameIsToldAsItIs) {
    EXPECT_EQ(told({SoftChip::OuterTag{4095}}), "tag 4095");
    EXPECT_EQ(told({SoftChip::InDomain{4094}}), "VLAN 4094");
    EXPECT_EQ(told({mac}), "02:00:00:00:00:0a");
    EXPECT_EQ(told({SoftChip::MacInDomain{mac, 10}}), "02:00:00:00:00:0a in VLAN 10");
    EXPECT_EQ(told({SoftChip::L3Fault::checksum}), "wrong header checksum");
    EXPECT_EQ(told({SoftChip::HopsLeft{64}}), "TTL 64");
    EXPECT_EQ(told({SoftChip::Prefix::of(ip, 8)}), "10.0.0.0/8");
    EXPECT_EQ(told({SoftChip::NextHopChoice{0, 2}}), "next hop 1 of 2");
    EXPECT_EQ(told({SoftChip::NextHop{10, ip}}), "10.0.0.1 on VLAN 10");
    EXPECT_EQ(told({SoftChip::MembersUp{0}}), "members up: 0");
}

TEST_F(ChipNamesTest, SeveralThingsStandInOrderWithCommasBetween) {
    EXPECT_EQ(told({}), "");
    EXPECT_EQ(told({LogicalPort::port(0), SoftChip::InLag{1}, SoftChip::OuterTag{7}}),
              "Ethernet1, in Lag1, tag 7");
}

TEST_F(ChipNamesTest, TheFrameIsToldAsTheParserReadIt) {
    SoftChip::ParsedFrame frame;
    frame.src = mac;
    frame.etherType = 0x88b5;
    SoftChip::Explanation explanation;
    explanation.metFrame(frame);
    explanation.took(Step::parse, Reason::parsed);
    EXPECT_EQ(names_.steps(explanation).at(0).detail,
              "02:00:00:00:00:0a to 00:00:00:00:00:00, EtherType 0x88b5");
}

TEST(ChipNames, AnAccessListKeepsItsNameWhateverThatLooksLike) {
    auto const model = SwitchFile::parseSwitchFile(R"({
        "vrfs": ["blue"],
        "vlans": {"10": {"acl": "guests of VRF 1"}},
        "interfaces": {"Ethernet1": {"port": "0/0", "access": 10}},
        "acls": {"guests of VRF 1": [{"action": "permit"}]}
    })",
                                                   "test");
    std::vector<std::uint8_t> frame(60);
    frame[0] = frame[6] = 0x02;
    SoftChip::Explanation explanation;
    SoftChip::decide(Agent::deriveTables(model), SoftChip::encodePhase0(0), frame, &explanation);
    auto const steps = ChipNames(model).steps(explanation);
    auto const acl = std::ranges::find(steps, Step::ingressAcl, &ChipStep::step);
    ASSERT_NE(acl, steps.end());
    EXPECT_EQ(acl->detail, "guests of VRF 1 on VLAN 10 rule 10");
}

}  // namespace
}  // namespace Cli
