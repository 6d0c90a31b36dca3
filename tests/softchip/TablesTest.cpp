#include "softchip/Tables.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/softchip/FrameBuilder.h"

namespace SoftChip {
namespace {

using FrameBuilder::ip;
using FrameBuilder::mac;
using FrameBuilder::prefix;

auto const host = mac("02:00:00:00:00:01");
auto const router = mac("02:00:00:00:ff:01");

TEST(Tables, AreEmptyAtFirst) {
    Tables const tables;
    EXPECT_EQ(tables.port(0), nullptr);
    EXPECT_FALSE(tables.cpuPort());
    EXPECT_EQ(tables.mode(LogicalPort::port(0)).kind, PortMode::Kind::none);
    EXPECT_EQ(tables.vlan(10), nullptr);
    EXPECT_EQ(tables.l3Intf(10), nullptr);
    EXPECT_FALSE(tables.route(0, ip("10.0.0.1")));
    EXPECT_TRUE(tables.fdb(10, host).isNone());
}

TEST(Tables, TakeEveryNumberForALookup) {
    Tables const tables;
    EXPECT_EQ(tables.port(511), nullptr);
    EXPECT_EQ(tables.vlan(65535), nullptr);
    EXPECT_EQ(tables.l3Intf(4095), nullptr);
    EXPECT_EQ(tables.mode(LogicalPort::port(65535)).kind, PortMode::Kind::none);
    EXPECT_EQ(tables.mode(LogicalPort()).kind, PortMode::Kind::none);
    EXPECT_EQ(tables.logicalPort(65535), LogicalPort::port(65535));
}

TEST(Tables, RefuseWhatIsOutOfRange) {
    Tables tables;
    EXPECT_THROW(tables.portIs(456, true), std::out_of_range);
    EXPECT_THROW(tables.vlanIs(0), std::out_of_range);
    EXPECT_THROW(tables.vlanIs(4095), std::out_of_range);
    EXPECT_THROW(tables.modeIs(LogicalPort(), PortMode::access(1)), std::out_of_range);
    EXPECT_THROW(tables.modeIs(LogicalPort::port(1), PortMode::access(4095)), std::out_of_range);
    EXPECT_THROW(tables.lagIs(1, {{456}}), std::out_of_range);
    EXPECT_THROW(tables.subIntfIs(LogicalPort::port(1), 0, 4094), std::out_of_range);
    EXPECT_THROW(tables.subIntfIs(LogicalPort::port(1), 4095, 4094), std::out_of_range);
    EXPECT_THROW(tables.fdbIs(10, host, LogicalPort()), std::out_of_range);
    EXPECT_THROW(tables.nextHopSetIs(1, {{0, ip("10.0.0.1")}}), std::out_of_range);
    EXPECT_THROW(tables.routeIs(0, {ip("10.0.0.0"), 33}, Route::drop()), std::out_of_range);
}

TEST(Tables, SayWhatTheyRefused) {
    Tables tables;
    try {
        tables.portIs(456, true);
        FAIL();
    } catch (std::out_of_range const& error) {
        EXPECT_STREQ(error.what(), "SoftChip::Tables: device port 456, expected 0 to 455");
    }
}

TEST(Tables, GiveTheLowestCpuPort) {
    Tables tables;
    tables.portIs(320, true, true);
    tables.portIs(192, true, true);
    tables.portIs(0, true);
    EXPECT_EQ(tables.cpuPort(), 192);
    EXPECT_TRUE(tables.portDel(192));
    EXPECT_FALSE(tables.portDel(192));
    EXPECT_EQ(tables.cpuPort(), 320);
}

TEST(Tables, ChangeTheStateOfAPortThatIsThere) {
    Tables tables;
    tables.portIs(1, true);
    tables.portUpIs(1, false);
    tables.portUpIs(2, true);
    EXPECT_FALSE(tables.port(1)->up);
    EXPECT_EQ(tables.port(2), nullptr);
}

TEST(Tables, TakeTheLagOfAMemberForThePort) {
    Tables tables;
    tables.lagIs(7, {{9}, {8}});
    EXPECT_EQ(tables.logicalPort(8), LogicalPort::lag(7));
    EXPECT_EQ(tables.logicalPort(10), LogicalPort::port(10));
    EXPECT_EQ(tables.lag(7)->members.front().port, 8);
}

TEST(Tables, KeepAPortInOneLagAtMost) {
    Tables tables;
    tables.lagIs(1, {{8}, {9}});
    tables.lagIs(2, {{9}});
    EXPECT_EQ(tables.lag(1)->members.size(), 1u);
    EXPECT_EQ(tables.logicalPort(9), LogicalPort::lag(2));
}

TEST(Tables, GiveMembersBackWhenALagGoesOrShrinks) {
    Tables tables;
    tables.lagIs(1, {{8}, {9}});
    tables.lagIs(1, {{8}});
    EXPECT_EQ(tables.logicalPort(9), LogicalPort::port(9));
    EXPECT_TRUE(tables.lagDel(1));
    EXPECT_FALSE(tables.lagDel(1));
    EXPECT_EQ(tables.logicalPort(8), LogicalPort::port(8));
}

TEST(Tables, KeepTheModeOfALagThatIsSetFirst) {
    Tables tables;
    tables.modeIs(LogicalPort::lag(1), PortMode::trunk(10));
    EXPECT_EQ(tables.lag(1), nullptr);
    tables.lagIs(1, {{8}});
    EXPECT_EQ(tables.mode(LogicalPort::lag(1)).untagged, 10);
}

TEST(Tables, FindASubInterfaceByParentAndTag) {
    Tables tables;
    tables.subIntfIs(LogicalPort::lag(1), 100, 4094);
    EXPECT_EQ(tables.subIntf(LogicalPort::lag(1), 100), 4094);
    EXPECT_EQ(tables.subIntf(LogicalPort::port(1), 100), noDomain);
    EXPECT_EQ(tables.subIntf(LogicalPort::lag(1), 101), noDomain);
    EXPECT_TRUE(tables.subIntfDel(LogicalPort::lag(1), 100));
    EXPECT_FALSE(tables.subIntfDel(LogicalPort::lag(1), 100));
}

TEST(Tables, KeepEachMemberOfAVlanOnce) {
    Tables tables;
    tables.vlanMemberIs(10, LogicalPort::port(2));
    tables.vlanMemberIs(10, LogicalPort::lag(1));
    tables.vlanMemberIs(10, LogicalPort::port(2));
    EXPECT_EQ(tables.vlan(10)->members.size(), 2u);
    EXPECT_TRUE(tables.vlan(10)->has(LogicalPort::port(2)));
    EXPECT_FALSE(tables.vlan(10)->has(LogicalPort::port(1)));
    EXPECT_TRUE(tables.vlanMemberDel(10, LogicalPort::port(2)));
    EXPECT_FALSE(tables.vlanMemberDel(10, LogicalPort::port(2)));
    EXPECT_FALSE(tables.vlanMemberDel(11, LogicalPort::port(2)));
}

TEST(Tables, KeepTheMembersOfAVlanThatIsSetAgain) {
    Tables tables;
    tables.vlanMemberIs(10, LogicalPort::port(2));
    tables.vlanIs(10);
    EXPECT_TRUE(tables.vlan(10)->has(LogicalPort::port(2)));
    EXPECT_TRUE(tables.vlanDel(10));
    EXPECT_EQ(tables.vlan(10), nullptr);
}

TEST(Tables, KnowTheRouterMacsOfEachDomain) {
    Tables tables;
    auto const virtualMac = mac("00:00:5e:00:01:01");
    tables.l3IntfIs(10, {.vrf = 0, .routerMac = router, .out = {}});
    tables.virtualMacIs(10, virtualMac);
    tables.virtualMacIs(20, virtualMac);
    EXPECT_TRUE(tables.isRouterMac(10, router));
    EXPECT_TRUE(tables.isRouterMac(10, virtualMac));
    EXPECT_FALSE(tables.isRouterMac(10, host));
    EXPECT_FALSE(tables.isRouterMac(20, virtualMac)) << "the domain does not route";
    EXPECT_TRUE(tables.virtualMacDel(10, virtualMac));
    EXPECT_FALSE(tables.isRouterMac(10, virtualMac));
    EXPECT_TRUE(tables.l3IntfDel(10));
    EXPECT_FALSE(tables.isRouterMac(10, router));
}

TEST(Tables, KeepOwnAddressesByVrf) {
    Tables tables;
    tables.ownAddressIs(1, ip("2001:db8::1"));
    EXPECT_TRUE(tables.isOwnAddress(1, ip("2001:db8::1")));
    EXPECT_FALSE(tables.isOwnAddress(0, ip("2001:db8::1")));
    EXPECT_TRUE(tables.ownAddressDel(1, ip("2001:db8::1")));
    EXPECT_FALSE(tables.isOwnAddress(1, ip("2001:db8::1")));
}

TEST(Tables, KeepNeighboursByInterfaceAndFamily) {
    Tables tables;
    tables.neighbourIs(10, IpAddress::v4(0), host);
    EXPECT_EQ(tables.neighbour(10, IpAddress::v4(0)), host);
    EXPECT_FALSE(tables.neighbour(10, IpAddress::v6(0, 0)));
    EXPECT_FALSE(tables.neighbour(20, IpAddress::v4(0)));
    EXPECT_TRUE(tables.neighbourDel(10, IpAddress::v4(0)));
    EXPECT_FALSE(tables.neighbour(10, IpAddress::v4(0)));
}

TEST(Tables, KeepTheFdbByVlan) {
    Tables tables;
    tables.fdbIs(10, host, LogicalPort::port(1));
    tables.fdbIs(20, host, LogicalPort::lag(1));
    EXPECT_EQ(tables.fdb(10, host), LogicalPort::port(1));
    EXPECT_EQ(tables.fdb(20, host), LogicalPort::lag(1));
    EXPECT_TRUE(tables.fdbDel(10, host));
    EXPECT_TRUE(tables.fdb(10, host).isNone());
    EXPECT_EQ(tables.fdbSize(), 1u);
}

TEST(Tables, KeepRoutesAndNextHopSets) {
    Tables tables;
    tables.nextHopSetIs(5, {{10, ip("10.0.0.2")}, {20, ip("10.0.1.2")}});
    tables.routeIs(0, prefix("192.0.2.0/24"), Route::via(5));
    EXPECT_EQ(*tables.route(0, ip("192.0.2.9"))->value, Route::via(5));
    EXPECT_EQ(tables.nextHopSet(5)->size(), 2u);
    EXPECT_EQ(tables.nextHopSet(6), nullptr);
    EXPECT_TRUE(tables.nextHopSetDel(5));
    EXPECT_TRUE(tables.routeDel(0, prefix("192.0.2.0/24")));
    EXPECT_EQ(tables.routeCount(), 0u);
}

TEST(Tables, TakeARouteWithHostBitsForItsPrefix) {
    Tables tables;
    tables.routeIs(0, {ip("192.0.2.77"), 24}, Route::toCpu());
    EXPECT_EQ(tables.route(0, ip("192.0.2.1"))->prefix, prefix("192.0.2.0/24"));
    EXPECT_TRUE(tables.routeDel(0, {ip("192.0.2.55"), 24}));
}

TEST(Tables, AreAValue) {
    Tables tables;
    tables.portIs(1, true);
    auto copy = tables;
    copy.portUpIs(1, false);
    EXPECT_TRUE(tables.port(1)->up);
    EXPECT_FALSE(copy.port(1)->up);
}

TEST(Tables, HoldAHundredThousandRoutes) {
    Tables tables;
    tables.reserve(100000, 0, 0);
    for (std::uint32_t i = 0; i < 100000; ++i) {
        tables.routeIs(0, Prefix::of(IpAddress::v4(i << 8), 24), Route::via(i));
    }
    EXPECT_EQ(tables.routeCount(), 100000u);
    for (std::uint32_t i = 0; i < 100000; ++i) {
        ASSERT_EQ(tables.route(0, IpAddress::v4(i << 8 | 9))->value->nextHopSet, i);
    }
}

}  // namespace
}  // namespace SoftChip
