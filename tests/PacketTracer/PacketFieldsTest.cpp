#include "PacketTracer/PacketFields.h"

#include <gtest/gtest.h>

#include <string>

#include "PacketTracer/SomeFields.h"

namespace {

using namespace SomeFields;

std::string listed(PacketFields const& fields) {
    std::string text;
    for (auto const& [name, value] : namedFields(fields)) {
        text += std::string(name) + "=" + value + "\n";
    }
    return text;
}

TEST(PacketFields, ImplyTheEtherTypeOfTheirAddresses) {
    EXPECT_EQ(impliedEtherType(udp(ipv4())), 0x0800);
    EXPECT_EQ(impliedEtherType(udp(ipv6())), 0x86dd);
    EXPECT_EQ(impliedEtherType(arpRequest()), 0x0806);
    EXPECT_EQ(impliedEtherType(ethernet()), 0);
}

TEST(PacketFields, ImplyAnEtherTypeByOneAddressAlone) {
    PacketFields fields;
    fields.ipSrc = ip("::1");
    EXPECT_EQ(impliedEtherType(fields), 0x86dd);
}

TEST(PacketFields, CompareByEveryPart) {
    EXPECT_EQ(udp(ipv4()), udp(ipv4()));
    PacketFields other = udp(ipv4());
    other.tags = {{.vlan = 1}};
    EXPECT_NE(other, udp(ipv4()));
    other = udp(ipv4());
    other.payload = bytesOf("x");
    EXPECT_NE(other, udp(ipv4()));
}

TEST(PacketFields, NameNothingThatIsNotGiven) {
    EXPECT_EQ(listed(PacketFields()), "");
}

TEST(PacketFields, NameEverythingThatIsGivenInOrder) {
    PacketFields fields = tcp(ipv4());
    fields.tags = {{.tpid = 0x88a8, .vlan = 7}, {.vlan = 10, .priority = 3, .dropEligible = true}};
    fields.ttl = 9;
    fields.dscp = 46;
    fields.dontFragment = true;
    fields.tcpFlags = TcpFlag::syn | TcpFlag::ack;
    fields.payload = bytesOf("ab");
    fields.length = 1514;
    EXPECT_EQ(listed(fields),
              "eth-dst=02:00:00:00:00:02\n"
              "eth-src=02:00:00:00:00:01\n"
              "vlan=7 tpid 0x88a8 priority 0\n"
              "vlan=10 tpid 0x8100 priority 3 drop-eligible\n"
              "ip-dst=198.51.100.1\n"
              "ip-src=192.0.2.1\n"
              "ttl=9\n"
              "dscp=46\n"
              "dont-fragment=true\n"
              "proto=tcp\n"
              "sport=49152\n"
              "dport=443\n"
              "tcp-flags=syn,ack\n"
              "payload=6162\n"
              "length=1514\n");
}

TEST(PacketFields, NameArpsParts) {
    PacketFields fields = arpReply();
    fields.arp->senderMac = mac("02:00:00:00:00:0a");
    fields.arp->targetMac = mac("02:00:00:00:00:0b");
    EXPECT_EQ(listed(fields),
              "eth-dst=02:00:00:00:00:02\n"
              "eth-src=02:00:00:00:00:01\n"
              "arp-op=reply\n"
              "arp-sender-mac=02:00:00:00:00:0a\n"
              "arp-sender-ip=192.0.2.1\n"
              "arp-target-mac=02:00:00:00:00:0b\n"
              "arp-target-ip=192.0.2.2\n");
}

TEST(PacketFields, NameIcmpsTypeAndCode) {
    PacketFields fields;
    fields.protocol = IpProtocol::icmpv6;
    fields.icmpType = 0;
    fields.icmpCode = 255;
    EXPECT_EQ(listed(fields), "proto=icmpv6\nicmp-type=0\nicmp-code=255\n");
}

TEST(PacketFields, NameTheAbsenceOfEveryTcpFlag) {
    PacketFields fields;
    fields.tcpFlags = 0;
    EXPECT_EQ(listed(fields), "tcp-flags=none\n");
}

TEST(IpProtocol, IsReadFromItsText) {
    for (auto const protocol :
         {IpProtocol::tcp, IpProtocol::udp, IpProtocol::icmp, IpProtocol::icmpv6}) {
        EXPECT_EQ(ipProtocolFromText(text(protocol)), protocol);
    }
    EXPECT_EQ(ipProtocolFromText("gre"), std::nullopt);
    EXPECT_EQ(ipProtocolFromText(""), std::nullopt);
    EXPECT_EQ(ipProtocolFromText("TCP"), std::nullopt);
}

TEST(IpProtocol, OfAnotherNumberIsOther) {
    EXPECT_EQ(text(static_cast<IpProtocol>(47)), "other");
}

TEST(ArpOperation, IsReadFromItsText) {
    EXPECT_EQ(arpOperationFromText("request"), ArpOperation::request);
    EXPECT_EQ(arpOperationFromText("reply"), ArpOperation::reply);
    EXPECT_EQ(arpOperationFromText("rarp"), std::nullopt);
}

TEST(ArpOperation, OfAnotherNumberIsOther) {
    EXPECT_EQ(text(static_cast<ArpOperation>(3)), "other");
}

// Writes what it is sent as one line.
struct Line final : Kel::AttributeSink {
    void number(std::int64_t value) override { text_ += std::to_string(value); }
    void number(std::uint64_t value) override { text_ += std::to_string(value); }
    void boolean(bool value) override { text_ += value ? "true" : "false"; }
    void text(std::string_view value) override { text_ += std::string(value) + " "; }
    void object(Vanta::Node const*) override { text_ += "object"; }
    void listStart() override { text_ += "["; }
    void listEnd() override { text_ += "]"; }
    std::string text_;
};

TEST(PacketFields, ReflectAsAListOfNamesAndValues) {
    PacketFields fields;
    fields.ttl = 9;
    fields.dscp = 1;
    Line line;
    reflectValue(line, &fields);
    EXPECT_EQ(line.text_, "[[ttl 9 ][dscp 1 ]]");
}

TEST(PacketFields, ReflectAsAnEmptyListWhereThereAreNone) {
    Line line;
    reflectValue(line, static_cast<PacketFields const*>(nullptr));
    EXPECT_EQ(line.text_, "[]");
}

}  // namespace
