#include "cli/ChipNames.h"

#include <gtest/gtest.h>

namespace Cli {
namespace {

using SoftChip::Reason;
using SoftChip::Step;

class ChipNamesTest : public testing::Test {
  protected:
    std::string named(std::string const& detail, Step step = Step::fdb) const {
        SoftChip::Explanation explanation;
        explanation.entries.push_back({step, Reason::fdbHit, detail});
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
    EXPECT_EQ(named("port 16"), "Ethernet17");
    EXPECT_EQ(named("port 16, in port 0"), "Ethernet17, in Ethernet1");
    EXPECT_EQ(named("port 17"), "port 17");
}

TEST_F(ChipNamesTest, LagsListsAndVrfsHaveTheSwitchFilesNames) {
    EXPECT_EQ(named("LAG 3, members up: 2"), "Lag3, members up: 2");
    EXPECT_EQ(named("list 1 rule 10"), "edge on VLAN 10 rule 10");
    EXPECT_EQ(named("list 2 rule 10"), "edge on Ethernet17 rule 10");
    EXPECT_EQ(named("list 9 rule 10"), "list 9 rule 10");
    EXPECT_EQ(named("10.0.0.1 in VRF 1, TTL 3"), "10.0.0.1 in VRF blue, TTL 3");
}

TEST_F(ChipNamesTest, TheFrameItselfStaysAsItIs) {
    EXPECT_EQ(named("TCP port 16 to 80", Step::parse), "TCP port 16 to 80");
}

TEST_F(ChipNamesTest, OtherTextStaysAsItIs) {
    EXPECT_EQ(named("port x, LAG , VLAN 10"), "port x, LAG , VLAN 10");
}

}  // namespace
}  // namespace Cli
