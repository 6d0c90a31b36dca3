#include "cli/PacketOptions.h"

#include <CLI/CLI.hpp>
#include <array>
#include <optional>
#include <string_view>

#include "Net/Number.h"
#include "Net/TcpFlag.h"
#include "cli/HexBytes.h"
#include "cli/UsageError.h"

namespace Cli {
namespace {

using PacketTracer::ArpFields;
using PacketTracer::IpAddress;
using PacketTracer::MacAddress;
using PacketTracer::PacketFields;
using PacketTracer::VlanTag;

constexpr std::string_view noTag = "none";

template <class T>
std::optional<T> numberOf(std::string_view text, std::uint32_t most) {
    auto const value = Net::numberFromText(text, most);
    return value ? std::optional(static_cast<T>(*value)) : std::nullopt;
}

// The parts of "a,b,c".
std::vector<std::string_view> parts(std::string_view text) {
    std::vector<std::string_view> found;
    for (;;) {
        auto const comma = text.find(',');
        found.push_back(text.substr(0, comma));
        if (comma == std::string_view::npos) {
            return found;
        }
        text.remove_prefix(comma + 1);
    }
}

std::optional<std::uint8_t> tcpFlagsFromText(std::string_view text) {
    std::uint8_t flags = 0;
    for (std::string_view const part :
         text == "none" ? std::vector<std::string_view>() : parts(text)) {
        auto const bit = Net::TcpFlag::fromText(part);
        if (!bit) {
            return std::nullopt;
        }
        flags |= *bit;
    }
    return flags;
}

// Sets a member to what was parsed; false if that was nothing.
template <class T>
bool set(std::optional<T>& member, std::optional<T> const& value) {
    member = value;
    return value.has_value();
}

ArpFields& arp(PacketFields& fields) {
    return fields.arp ? *fields.arp : fields.arp.emplace();
}

struct Field {
    std::string_view name;
    std::string_view value;  // the value's name in the help
    std::string_view what;   // the value that it expects
    std::string_view help;
    bool (*set)(PacketFields& fields, std::string_view text);
};

using Text = std::string_view;

constexpr std::string_view macAddress = "a MAC address";
constexpr std::string_view ipAddress = "an IPv4 or IPv6 address";
constexpr std::string_view ipv4Address = "an IPv4 address";
constexpr std::string_view port = "a port from 0 to 65535";
constexpr std::string_view byte = "a number from 0 to 255";

bool setIpv4(std::optional<IpAddress>& member, Text text) {
    return set(member, IpAddress::fromText(text)) && member->isV4();
}

// In the order of namedFields().
constexpr std::array fieldTable{
    Field{"eth-dst", "MAC", macAddress, "Destination MAC address",
          [](PacketFields& f, Text t) { return set(f.ethDst, MacAddress::fromText(t)); }},
    Field{"eth-src", "MAC", macAddress, "Source MAC address",
          [](PacketFields& f, Text t) { return set(f.ethSrc, MacAddress::fromText(t)); }},
    Field{"vlan", "VLAN",
          "a VLAN from 0 to 4094, with ,priority=0..7 ,tpid=0x88a8 ,dei behind it if need be, or "
          "none",
          "Tag; twice for two, the outer one first; none for none at all",
          [](PacketFields& f, Text t) {
              auto const tag = VlanTag::fromText(t);
              if (tag) {
                  f.tags.push_back(*tag);
              }
              return tag || t == noTag;
          }},
    Field{"arp-op", "OPERATION", "request or reply", "ARP: request or reply",
          [](PacketFields& f, Text t) {
              return set(arp(f).operation, PacketTracer::arpOperationFromText(t));
          }},
    Field{"arp-sender-mac", "MAC", macAddress, "ARP: the sender's MAC address",
          [](PacketFields& f, Text t) { return set(arp(f).senderMac, MacAddress::fromText(t)); }},
    Field{"arp-sender-ip", "IP", ipv4Address, "ARP: the sender's IP address",
          [](PacketFields& f, Text t) { return setIpv4(arp(f).senderIp, t); }},
    Field{"arp-target-mac", "MAC", macAddress, "ARP: the target's MAC address",
          [](PacketFields& f, Text t) { return set(arp(f).targetMac, MacAddress::fromText(t)); }},
    Field{"arp-target-ip", "IP", ipv4Address, "ARP: the target's IP address",
          [](PacketFields& f, Text t) { return setIpv4(arp(f).targetIp, t); }},
    Field{"ip-dst", "IP", ipAddress, "Destination IP address",
          [](PacketFields& f, Text t) { return set(f.ipDst, IpAddress::fromText(t)); }},
    Field{"ip-src", "IP", ipAddress, "Source IP address",
          [](PacketFields& f, Text t) { return set(f.ipSrc, IpAddress::fromText(t)); }},
    Field{"ttl", "N", byte, "TTL or hop limit",
          [](PacketFields& f, Text t) { return set(f.ttl, numberOf<std::uint8_t>(t, 255)); }},
    Field{"dscp", "N", "a number from 0 to 63", "DSCP",
          [](PacketFields& f, Text t) { return set(f.dscp, numberOf<std::uint8_t>(t, 63)); }},
    Field{"proto", "PROTOCOL", "tcp, udp, icmp or icmpv6", "tcp, udp, icmp or icmpv6",
          [](PacketFields& f, Text t) {
              return set(f.protocol, PacketTracer::ipProtocolFromText(t));
          }},
    Field{
        "sport", "PORT", port, "Source port",
        [](PacketFields& f, Text t) { return set(f.srcPort, numberOf<std::uint16_t>(t, 65535)); }},
    Field{
        "dport", "PORT", port, "Destination port",
        [](PacketFields& f, Text t) { return set(f.dstPort, numberOf<std::uint16_t>(t, 65535)); }},
    Field{"tcp-flags", "FLAGS", "TCP flags such as syn,ack, or none", "TCP flags, as syn,ack",
          [](PacketFields& f, Text t) { return set(f.tcpFlags, tcpFlagsFromText(t)); }},
    Field{"icmp-type", "N", byte, "ICMP type",
          [](PacketFields& f, Text t) { return set(f.icmpType, numberOf<std::uint8_t>(t, 255)); }},
    Field{"icmp-code", "N", byte, "ICMP code",
          [](PacketFields& f, Text t) { return set(f.icmpCode, numberOf<std::uint8_t>(t, 255)); }},
    Field{"payload", "BYTES", "bytes in hexadecimal digits",
          "What follows the last header, in hexadecimal",
          [](PacketFields& f, Text t) {
              f.payload = parseHexBytes(t, "--payload");
              return true;
          }},
    Field{"length", "N", "a length in bytes", "Length of the frame in bytes, padding included",
          [](PacketFields& f, Text t) {
              return set(f.length, numberOf<std::uint32_t>(t, 1'000'000));
          }},
};

UsageError wrong(std::string_view option, std::string_view what, std::string_view text) {
    return UsageError("--" + std::string(option) + ": expected " + std::string(what) + ", got \"" +
                      std::string(text) + "\"");
}

constexpr char const* group = "Packet by fields (what is not given gets a default)";

}  // namespace

void PacketOptions::addTo(CLI::App& command) {
    command
        .add_option("--ether-type", etherType_,
                    "EtherType behind the tags: ipv4, ipv6, arp or a number")
        ->type_name("TYPE")
        ->group(group);
    for (Field const& field : fieldTable) {
        auto* const option =
            command.add_option("--" + std::string(field.name), texts_[std::string(field.name)],
                               std::string(field.help));
        option->group(group)->allow_extra_args(false);
        option->type_name(std::string(field.value));
        if (field.name != "vlan") {
            option->expected(1);
        }
    }
    command.add_flag("--dont-fragment", dontFragment_, "IPv4's don't-fragment flag")->group(group);
}

bool PacketOptions::given() const {
    return dontFragment_ || !etherType_.empty() ||
           std::ranges::any_of(texts_, [](auto const& entry) { return !entry.second.empty(); });
}

PacketFields PacketOptions::fields() const {
    PacketFields fields;
    fields.dontFragment = dontFragment_;
    for (Field const& field : fieldTable) {
        auto const given = texts_.find(std::string(field.name));
        for (std::string const& text : given->second) {
            if (!field.set(fields, text)) {
                throw wrong(field.name, field.what, text);
            }
        }
    }
    return fields;
}

std::uint16_t PacketOptions::etherType() const {
    auto const named = Net::EtherType::fromText(etherType_);
    auto const value = etherType_.empty() ? 0
                       : named            ? named
                                          : numberOf<std::uint16_t>(etherType_, 0xffff);
    return value ? *value
                 : throw wrong("ether-type", "ipv4, ipv6, arp or a number from 0 to 0xffff",
                               etherType_);
}

bool PacketOptions::untagged() const {
    auto const& tags = texts_.at("vlan");
    return std::ranges::find(tags, noTag) != tags.end();
}

}  // namespace Cli
