// What the tests of the pipeline share: a small switch. Its ports:
//   1, 2 access VLAN 10      3 trunk of 10, 20, 30, native 10       4 access VLAN 20
//   5 routed, 4094           6 access VLAN 30 (not routed)          7 no domain of its own, its
//   8, 9, 10 LAG 1, access VLAN 20                                    sub-interface 100 is 4093
//   11, 12 LAG 2, routed, 4092                                        in VRF 1
//   13 no mode               14 trunk of 20 without native          15 access VLAN 10, down
//   192 CPU
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string_view>

#include "softchip/Phase0.h"
#include "softchip/Pipeline.h"
#include "softchip/Tables.h"
#include "tests/softchip/FrameBuilder.h"

namespace SoftChip {

// What the digest says of a frame, in the order of its columns.
struct Says {
    unsigned egressPort;
    unsigned domain;
    bool routed = false;
    bool copyToCpu = false;
    bool drop = false;
    bool operator==(Says const&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, Says const& says) {
    return out << "egress port " << says.egressPort << " domain " << says.domain
               << (says.routed ? " routed" : "") << (says.copyToCpu ? " copy" : "")
               << (says.drop ? " drop" : "");
}

inline void PrintTo(Reason reason, std::ostream* out) {
    *out << code(reason);
}

class PipelineFixture : public testing::Test {
  protected:
    PipelineFixture() {
        ports();
        vlans();
        interfaces();
        hosts();
        routes();
    }

    using Bytes = FrameBuilder::Bytes;
    static constexpr unsigned none = noEgressPort;
    static constexpr unsigned cpu = 192;

    static MacAddress mac(std::string_view text) { return FrameBuilder::mac(text); }
    static IpAddress ip(std::string_view text) { return FrameBuilder::ip(text); }
    static Prefix prefix(std::string_view text) { return FrameBuilder::prefix(text); }
    static LogicalPort port(DevicePort number) { return LogicalPort::port(number); }

    // Frames: from host A of VLAN 10 (port 1) to a MAC address, or to an IP address through the
    // router of the domain.
    Bytes to(MacAddress dst,
             Bytes const& rest = FrameBuilder::ipv4({}, FrameBuilder::udp())) const {
        return FrameBuilder::join({FrameBuilder::ethernet(dst, hostA), rest});
    }
    Bytes tagged(unsigned vlan, MacAddress dst) const {
        return to(dst, FrameBuilder::join(
                           {FrameBuilder::tag(vlan), FrameBuilder::ipv4({}, FrameBuilder::udp())}));
    }
    Bytes routedTo(std::string_view dst, unsigned ttl = 64) const {
        return to(router, FrameBuilder::ipv4({.dst = dst, .ttl = ttl}, FrameBuilder::udp()));
    }
    Bytes routedTo6(std::string_view dst, unsigned ttl = 64) const {
        return to(router, FrameBuilder::ipv6({.dst = dst, .ttl = ttl}, FrameBuilder::udp()));
    }

    Decision decision(DevicePort ingress, Bytes const& frame) {
        auto const quiet = decide(tables, encodePhase0(ingress), frame);
        auto const told = decide(tables, encodePhase0(ingress), frame, &explanation);
        EXPECT_EQ(quiet, told) << "an explanation changes nothing";
        return quiet;
    }
    Says in(DevicePort ingress, Bytes const& frame) {
        auto const d = decision(ingress, frame);
        return {d.egressPort, d.l2Domain, d.routed, d.copyToCpu, d.drop};
    }
    Reason why(DevicePort ingress, Bytes const& frame) { return decision(ingress, frame).reason; }

    Tables tables;
    Explanation explanation;  // of the last frame
    MacAddress const router = mac("02:00:00:00:ff:01");
    MacAddress const router20 = mac("02:00:00:00:ff:20");
    MacAddress const hostA = mac("02:00:00:00:00:0a");     // VLAN 10, port 1
    MacAddress const hostB = mac("02:00:00:00:00:0b");     // VLAN 10, port 2
    MacAddress const hostC = mac("02:00:00:00:00:0c");     // VLAN 20, port 4, 10.0.20.7
    MacAddress const hostL = mac("02:00:00:00:00:10");     // VLAN 20, LAG 1, 10.0.20.8
    MacAddress const silent = mac("02:00:00:00:00:5e");    // VLAN 20, not in the FDB, 10.0.20.9
    MacAddress const peer = mac("02:00:00:00:00:99");      // behind routed ports
    MacAddress const stranger = mac("02:00:00:00:00:77");  // nowhere
    MacAddress const everyone = mac("ff:ff:ff:ff:ff:ff");

  private:
    void ports() {
        for (DevicePort number = 1; number <= 15; ++number) {
            tables.portIs(number, number != 15);
        }
        tables.portIs(cpu, true, true);
        tables.lagIs(1, {{8}, {9}, {10}});
        tables.lagIs(2, {{11}, {12}});
        for (DevicePort access : {1, 2, 15}) {
            tables.modeIs(port(access), PortMode::access(10));
        }
        tables.modeIs(port(3), PortMode::trunk(10));
        tables.modeIs(port(4), PortMode::access(20));
        tables.modeIs(port(5), PortMode::routed(4094));
        tables.modeIs(port(6), PortMode::access(30));
        tables.modeIs(port(7), PortMode::routed());
        tables.modeIs(port(14), PortMode::trunk());
        tables.modeIs(LogicalPort::lag(1), PortMode::access(20));
        tables.modeIs(LogicalPort::lag(2), PortMode::routed(4092));
        tables.subIntfIs(port(7), 100, 4093);
    }
    void vlans() {
        for (DevicePort member : {1, 2, 3, 15}) {
            tables.vlanMemberIs(10, port(member));
        }
        for (DevicePort member : {3, 4, 14}) {
            tables.vlanMemberIs(20, port(member));
        }
        tables.vlanMemberIs(20, LogicalPort::lag(1));
        tables.vlanMemberIs(30, port(3));
        tables.vlanMemberIs(30, port(6));
        tables.vlanIs(40);
    }
    void interfaces() {
        tables.l3IntfIs(10, {.vrf = 0, .routerMac = router});
        tables.l3IntfIs(20, {.vrf = 0, .routerMac = router20});
        tables.l3IntfIs(4094, {.vrf = 0, .routerMac = router, .out = port(5)});
        tables.l3IntfIs(4093, {.vrf = 1, .routerMac = router, .out = port(7), .tag = 100});
        tables.l3IntfIs(4092, {.vrf = 0, .routerMac = router, .out = LogicalPort::lag(2)});
        for (auto const* own : {"10.0.10.1", "10.0.20.1", "2001:db8:10::1", "fe80::1"}) {
            tables.ownAddressIs(0, ip(own));
        }
        tables.ownAddressIs(1, ip("10.8.0.1"));
    }
    void hosts() {
        tables.fdbIs(10, hostA, port(1));
        tables.fdbIs(10, hostB, port(2));
        tables.fdbIs(20, hostC, port(4));
        tables.fdbIs(20, hostL, LogicalPort::lag(1));
        tables.neighbourIs(10, ip("10.0.10.7"), hostA);
        tables.neighbourIs(20, ip("10.0.20.7"), hostC);
        tables.neighbourIs(20, ip("2001:db8:20::7"), hostC);
        tables.neighbourIs(20, ip("10.0.20.8"), hostL);
        tables.neighbourIs(20, ip("10.0.20.9"), silent);
        tables.neighbourIs(4094, ip("10.9.0.2"), peer);
        tables.neighbourIs(4094, ip("fe80::99"), peer);
        tables.neighbourIs(4093, ip("10.8.0.2"), peer);
        tables.neighbourIs(4092, ip("10.9.2.2"), peer);
    }
    void routes() {
        tables.nextHopSetIs(1, {{4094, ip("10.9.0.2")}});
        tables.nextHopSetIs(2, {{4094, ip("10.9.0.2")}, {4092, ip("10.9.2.2")}});
        tables.nextHopSetIs(3, {});
        tables.nextHopSetIs(4, {{4000, ip("10.7.0.2")}});
        tables.nextHopSetIs(5, {{4094, ip("10.9.0.3")}});
        tables.nextHopSetIs(6, {{4094, ip("fe80::99")}});
        tables.nextHopSetIs(7, {{4093, ip("10.8.0.2")}});
        tables.nextHopSetIs(8, {{4092, ip("10.9.2.2")}});
        tables.routeIs(0, prefix("10.0.10.0/24"), Route::connected(10));
        tables.routeIs(0, prefix("10.0.20.0/24"), Route::connected(20));
        tables.routeIs(0, prefix("2001:db8:20::/64"), Route::connected(20));
        tables.routeIs(0, prefix("192.0.2.0/24"), Route::via(1));
        tables.routeIs(0, prefix("198.51.100.0/24"), Route::via(2));
        tables.routeIs(0, prefix("172.16.3.0/24"), Route::via(3));
        tables.routeIs(0, prefix("172.16.4.0/24"), Route::via(4));
        tables.routeIs(0, prefix("172.16.5.0/24"), Route::via(5));
        tables.routeIs(0, prefix("172.16.8.0/24"), Route::via(8));
        tables.routeIs(0, prefix("172.16.9.0/24"), Route::via(99));
        tables.routeIs(0, prefix("2001:db8:6::/48"), Route::via(6));
        tables.routeIs(0, prefix("203.0.113.0/24"), Route::drop());
        tables.routeIs(0, prefix("203.0.113.128/25"), Route::toCpu());
        tables.routeIs(1, prefix("0.0.0.0/0"), Route::via(7));
    }
};

}  // namespace SoftChip
