#include "cli/Expectation.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/UsageError.h"

namespace Cli {
namespace {

using PacketTracer::ResultEntry;
using Plexa::IntfId;

IntfId intf(char const* name) {
    return *IntfId::fromName(name);
}
ResultEntry entry(char const* physical, char const* logical = "") {
    return ResultEntry::fromPhysicalAndLogicalIntf(intf(physical), intf(logical));
}

Difference difference(char const* expected, std::vector<ResultEntry> const& egress) {
    return Expectation::parse(expected).differenceTo(egress);
}

std::string problem(char const* text) {
    try {
        Expectation::parse(text);
    } catch (UsageError const& error) {
        return error.what();
    }
    return "";
}

TEST(Expectation, HoldsForTheSameSetInAnyOrder) {
    EXPECT_TRUE(
        difference("Ethernet3,Ethernet2,Ethernet3", {entry("Ethernet2"), entry("Ethernet3")})
            .none());
}

TEST(Expectation, LooksAtPhysicalInterfacesAlone) {
    EXPECT_TRUE(difference("Ethernet45", {entry("Ethernet45", "Lag1"), entry("Ethernet45"),
                                          entry("", "Lag2"), entry("", "Vlan10")})
                    .none());
}

TEST(Expectation, TellsWhatIsMissingAndWhatIsNotExpected) {
    auto const found =
        difference("Ethernet2,Ethernet10,Cpu", {entry("Ethernet9"), entry("Ethernet2")});
    EXPECT_EQ(found.missing, (std::vector{intf("Ethernet10"), intf("Cpu")}));
    EXPECT_EQ(found.unexpected, std::vector{intf("Ethernet9")});
}

TEST(Expectation, NothingCanBeExpected) {
    EXPECT_TRUE(difference("", {}).none());
    EXPECT_TRUE(difference("", {entry("", "Lag1")}).none());
    EXPECT_FALSE(difference("", {entry("Ethernet1")}).none());
}

TEST(Expectation, WhatIsNoInterfaceNameIsRefused) {
    EXPECT_EQ(problem("Ethernet1,Eth2"),
              "--expect: expected interface names joined by commas, got \"Eth2\"");
    EXPECT_EQ(problem("Ethernet1,"),
              "--expect: expected interface names joined by commas, got \"\"");
    EXPECT_EQ(problem(",Ethernet1"),
              "--expect: expected interface names joined by commas, got \"\"");
}

}  // namespace
}  // namespace Cli
