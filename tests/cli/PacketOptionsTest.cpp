#include "cli/PacketOptions.h"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "cli/UsageError.h"

namespace Cli {
namespace {

using Fields = PacketTracer::PacketFields;

// The options as the command line gives them.
struct Parsed {
    explicit Parsed(std::vector<std::string> arguments) {
        CLI::App app;
        app.add_option("CAPTURE", capture);
        options.addTo(app);
        std::ranges::reverse(arguments);
        app.parse(arguments);
    }

    PacketOptions options;
    std::string capture;
};

std::string named(std::vector<std::string> const& arguments) {
    std::string text;
    for (auto const& field : PacketTracer::namedFields(Parsed(arguments).options.fields())) {
        text += (text.empty() ? "" : " ") + std::string(field.name) + "=" + field.value;
    }
    return text;
}

std::string problem(std::vector<std::string> const& arguments) {
    try {
        Parsed const parsed(arguments);
        parsed.options.fields();
        parsed.options.etherType();
    } catch (UsageError const& error) {
        return error.what();
    }
    return "";
}

TEST(PacketOptions, EveryFieldCanBeGivenByItsName) {
    EXPECT_EQ(named({"--eth-dst",      "02:00:00:00:00:02",
                     "--eth-src",      "02-00-00-00-00-01",
                     "--ip-dst",       "10.0.0.2",
                     "--ip-src",       "10.0.0.1",
                     "--ttl",          "3",
                     "--dscp",         "46",
                     "--proto",        "tcp",
                     "--sport",        "1",
                     "--dport",        "65535",
                     "--tcp-flags",    "syn,ack",
                     "--payload",      "01 02",
                     "--length",       "99",
                     "--dont-fragment"}),
              "eth-dst=02:00:00:00:00:02 eth-src=02:00:00:00:00:01 ip-dst=10.0.0.2 "
              "ip-src=10.0.0.1 ttl=3 dscp=46 dont-fragment=true proto=tcp sport=1 dport=65535 "
              "tcp-flags=syn,ack payload=0102 length=99");
    EXPECT_EQ(named({"--ip-dst", "2001:db8::1", "--proto", "icmpv6", "--icmp-type", "128",
                     "--icmp-code", "0"}),
              "ip-dst=2001:db8::1 proto=icmpv6 icmp-type=128 icmp-code=0");
    EXPECT_EQ(
        named({"--arp-op", "reply", "--arp-sender-mac", "02:00:00:00:00:01", "--arp-sender-ip",
               "10.0.0.1", "--arp-target-mac", "02:00:00:00:00:02", "--arp-target-ip", "10.0.0.2"}),
        "arp-op=reply arp-sender-mac=02:00:00:00:00:01 arp-sender-ip=10.0.0.1 "
        "arp-target-mac=02:00:00:00:00:02 arp-target-ip=10.0.0.2");
}

TEST(PacketOptions, TagsStandInTheOrderInWhichTheyAreGiven) {
    Parsed const parsed({"--vlan", "100,tpid=0x88a8,priority=5,dei", "--vlan", "20", "a.pcap"});
    auto const tags = parsed.options.fields().tags;
    ASSERT_EQ(tags.size(), 2U);
    EXPECT_EQ(tags[0], (PacketTracer::VlanTag{0x88a8, 100, 5, true}));
    EXPECT_EQ(tags[1], (PacketTracer::VlanTag{.vlan = 20}));
    EXPECT_EQ(parsed.capture, "a.pcap");
}

TEST(PacketOptions, NoTagCanBeAskedFor) {
    EXPECT_FALSE(Parsed({"--vlan", "20"}).options.untagged());
    Parsed const parsed({"--vlan", "none"});
    EXPECT_TRUE(parsed.options.untagged());
    EXPECT_TRUE(parsed.options.fields().tags.empty());
}

TEST(PacketOptions, KnowWhetherAnyIsGiven) {
    EXPECT_FALSE(Parsed({"a.pcap"}).options.given());
    EXPECT_TRUE(Parsed({"--ttl", "1"}).options.given());
    EXPECT_TRUE(Parsed({"--dont-fragment"}).options.given());
    EXPECT_TRUE(Parsed({"--ether-type", "arp"}).options.given());
}

TEST(PacketOptions, TheEtherTypeIsANameOrANumber) {
    EXPECT_EQ(Parsed({}).options.etherType(), 0);
    EXPECT_EQ(Parsed({"--ether-type", "ipv6"}).options.etherType(), 0x86dd);
    EXPECT_EQ(Parsed({"--ether-type", "0x88cc"}).options.etherType(), 0x88cc);
    EXPECT_EQ(Parsed({"--ether-type", "2048"}).options.etherType(), 0x0800);
}

TEST(PacketOptions, AWrongValueIsNamedWithWhatWasExpected) {
    EXPECT_EQ(problem({"--eth-dst", "02:00"}), "--eth-dst: expected a MAC address, got \"02:00\"");
    EXPECT_EQ(problem({"--ip-dst", "10.0.0.256"}),
              "--ip-dst: expected an IPv4 or IPv6 address, got \"10.0.0.256\"");
    EXPECT_EQ(problem({"--ttl", "256"}), "--ttl: expected a number from 0 to 255, got \"256\"");
    EXPECT_EQ(problem({"--dscp", "64"}), "--dscp: expected a number from 0 to 63, got \"64\"");
    EXPECT_EQ(problem({"--dport", "65536"}),
              "--dport: expected a port from 0 to 65535, got \"65536\"");
    EXPECT_EQ(problem({"--proto", "sctp"}),
              "--proto: expected tcp, udp, icmp or icmpv6, got \"sctp\"");
    EXPECT_EQ(problem({"--arp-sender-ip", "::1"}),
              "--arp-sender-ip: expected an IPv4 address, got \"::1\"");
    EXPECT_EQ(problem({"--tcp-flags", "syn,fun"}),
              "--tcp-flags: expected TCP flags such as syn,ack, or none, got \"syn,fun\"");
    EXPECT_EQ(problem({"--ether-type", "ipx"}),
              "--ether-type: expected ipv4, ipv6, arp or a number from 0 to 0xffff, got \"ipx\"");
    EXPECT_EQ(problem({"--payload", "0"}),
              "--payload: character 2: expected two hexadecimal digits a byte, got the end");
}

TEST(PacketOptions, AWrongTagIsRefused) {
    for (char const* text : {"4095", "", "20,", "20,priority=8", "20,tpid=0x10000", "20,what"}) {
        EXPECT_TRUE(problem({"--vlan", text}).starts_with("--vlan: expected a VLAN")) << text;
    }
}

TEST(PacketOptions, AFieldCannotBeGivenTwice) {
    EXPECT_THROW(Parsed({"--ttl", "1", "--ttl", "2"}), CLI::ParseError);
}

}  // namespace
}  // namespace Cli
