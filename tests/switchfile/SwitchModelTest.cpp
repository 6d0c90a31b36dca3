#include "switchfile/SwitchModel.h"

#include <gtest/gtest.h>

#include "switchfile/SwitchFile.h"

namespace SwitchFile {
namespace {

Plexa::IntfId id(std::string_view name) {
    return Plexa::IntfId::fromName(name).value();
}

class SwitchModelTest : public testing::Test {
  protected:
    SwitchModel const model = parseSwitchFile(R"({
        "routerMac": "02:00:00:00:00:01", "vlans": {"10": {}},
        "interfaces": {
            "Ethernet1": {"port": 1, "access": 10}, "Ethernet2": {"port": 2, "routed": true},
            "Ethernet2.100": {"tag": 100, "vlan": 10}, "Ethernet3": {"port": 3},
            "Lag1": {"members": ["Ethernet3"], "routed": true},
            "Lag1.200": {"tag": 200, "addresses": ["10.0.200.1/24"]},
            "Vlan10": {"addresses": ["10.0.10.1/24"]}}})",
                                              "test");

    // The name of the port that the interface's frames enter by, or "none".
    std::string entryPort(std::string_view name) const {
        Interface const* const port = model.entryPort(*model.interface(id(name)));
        return port != nullptr ? port->id.stringValue() : "none";
    }
};

TEST_F(SwitchModelTest, FindsInterfacesByName) {
    EXPECT_EQ(model.interface(id("Ethernet2"))->devicePort, 2);
    EXPECT_EQ(model.interface(id("Ethernet4")), nullptr);
}

TEST_F(SwitchModelTest, FramesOfAPortEnterByIt) {
    EXPECT_EQ(entryPort("Ethernet1"), "Ethernet1");
}

TEST_F(SwitchModelTest, FramesOfALagsMemberEnterByTheMember) {
    EXPECT_EQ(entryPort("Ethernet3"), "Ethernet3");
}

TEST_F(SwitchModelTest, FramesOfASubInterfaceEnterByItsParent) {
    EXPECT_EQ(entryPort("Ethernet2.100"), "Ethernet2");
}

TEST_F(SwitchModelTest, LagsTheirSubInterfacesAndVlanInterfacesHaveNoSuchPort) {
    EXPECT_EQ(entryPort("Lag1"), "none");
    EXPECT_EQ(entryPort("Lag1.200"), "none");
    EXPECT_EQ(entryPort("Vlan10"), "none");
}

TEST_F(SwitchModelTest, ALagsNumberIsThatOfItsName) {
    EXPECT_EQ(lagNumber(id("Lag1")), 1);
    EXPECT_EQ(lagNumber(id("Lag65535")), 65535);
}

}  // namespace
}  // namespace SwitchFile
