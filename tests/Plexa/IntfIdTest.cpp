#include "Plexa/IntfId.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <vector>

namespace {

using Plexa::CpuIntfId;
using Plexa::IntfId;
using Plexa::SubIntfId;
using Plexa::VlanIntfId;

IntfId intf(std::string_view name) {
    auto const id = IntfId::fromName(name);
    EXPECT_TRUE(id) << name;
    return id.value_or(IntfId());
}

struct WellFormedName : testing::TestWithParam<char const*> {};

TEST_P(WellFormedName, ComesBackAsItWas) {
    EXPECT_EQ(intf(GetParam()).stringValue(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Names, WellFormedName,
                         testing::Values("", "Ethernet0", "Ethernet1", "Ethernet65535",
                                         "Ethernet1/0", "Ethernet1/2/3", "Lag1", "Lag65535",
                                         "Ethernet65535/65535/65535.65535", "Lag7.1", "Vlan1",
                                         "Vlan4094", "Cpu"));

struct OtherText : testing::TestWithParam<char const*> {};

TEST_P(OtherText, IsNoName) {
    EXPECT_FALSE(IntfId::fromName(GetParam())) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Texts, OtherText,
                         testing::Values("Ethernet", "Ethernet01", "Ethernet65536", "Ethernet1/",
                                         "Ethernet1/2/3/4", "Ethernet-1", "Ethernet+1",
                                         "Ethernet1 ", " Ethernet1", "ethernet1", "Lag0",
                                         "Lag65536", "Lag1/2", "Lag", "Vlan0", "Vlan4095", "Vlan01",
                                         "Vlan1.1", "Cpu1", "Cpu.1", "cpu", "Ethernet1.0",
                                         "Ethernet1.65536", "Ethernet1.01", "Ethernet1.",
                                         "Ethernet1.1.1", "Ethernet99999999999999999999", "x"));

TEST(IntfId, LeavesItselfAloneWhenGivenATextThatIsNoName) {
    IntfId id = intf("Lag3");
    EXPECT_FALSE(id.nameIs("Lag"));
    EXPECT_EQ(id, intf("Lag3"));
}

TEST(IntfId, OrdersByKindThenNumberByValue) {
    std::vector<std::string> const names{
        "",      "Ethernet1", "Ethernet1/2", "Ethernet1/2/0", "Ethernet1/10", "Ethernet2",
        "Lag2",  "Lag10",     "Ethernet1.2", "Ethernet1.10",  "Ethernet2.1",  "Lag1.1",
        "Vlan2", "Vlan10",    "Cpu"};
    std::vector<IntfId> ids;
    for (auto const& name : names) {
        ids.push_back(intf(name));
    }
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
    EXPECT_EQ(std::adjacent_find(ids.begin(), ids.end()), ids.end());
}

TEST(IntfId, TellsAPortWithoutFurtherNumbersFromOneWithZero) {
    EXPECT_NE(intf("Ethernet1"), intf("Ethernet1/0"));
}

TEST(IntfId, HashesTheNumberOfASubInterface) {
    EXPECT_NE(intf("Ethernet1.1").hash(), intf("Ethernet1.2").hash());
}

TEST(SubIntfId, KnowsItsParent) {
    EXPECT_TRUE(SubIntfId::isSubIntfId(intf("Ethernet3/1.7")));
    EXPECT_EQ(SubIntfId::parentIntfId(intf("Ethernet3/1.7")), intf("Ethernet3/1"));
    EXPECT_EQ(SubIntfId::parentIntfId(intf("Lag4.7")), intf("Lag4"));
    EXPECT_EQ(SubIntfId::number(intf("Lag4.7")), 7U);
}

TEST(SubIntfId, HoldsForNothingElse) {
    EXPECT_FALSE(SubIntfId::isSubIntfId(intf("Ethernet3")));
    EXPECT_TRUE(SubIntfId::parentIntfId(intf("Ethernet3")).empty());
    EXPECT_TRUE(SubIntfId::subIntfId(intf("Vlan3"), 1).empty());
    EXPECT_TRUE(SubIntfId::subIntfId(intf("Lag3"), 0).empty());
}

TEST(VlanIntfId, MapsAVlanToItsInterfaceAndBack) {
    EXPECT_EQ(VlanIntfId::vlanIdToIntfId(10), intf("Vlan10"));
    EXPECT_EQ(VlanIntfId::vlanId(intf("Vlan10")), 10);
    EXPECT_TRUE(VlanIntfId::vlanIdToIntfId(4095).empty());
}

TEST(CpuIntfId, HoldsForCpuAlone) {
    EXPECT_TRUE(CpuIntfId::isCpuIntfId(intf("Cpu")));
    EXPECT_FALSE(CpuIntfId::isCpuIntfId(intf("Ethernet1")));
    EXPECT_FALSE(CpuIntfId::isCpuIntfId(IntfId()));
}

TEST(IntfId, PrintsItsName) {
    std::ostringstream out;
    out << intf("Ethernet2/1.100") << ',' << IntfId();
    EXPECT_EQ(out.str(), "Ethernet2/1.100,");
}

}  // namespace
