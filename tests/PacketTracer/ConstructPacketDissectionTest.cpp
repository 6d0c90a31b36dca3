// What tshark, which knows nothing of this code, says of the frames: it dissects every one of them
// down to the last protocol, verifies each checksum, and has nothing to complain of.
#include "PacketTracer/ConstructPacket.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "PacketTracer/PacketDefaults.h"
#include "PacketTracer/PacketSize.h"
#include "PacketTracer/SomeFields.h"
#include "ScratchPath.h"

namespace {

using namespace SomeFields;

void writePcap(std::filesystem::path const& path, std::vector<Vanta::Bytes> const& frames) {
    std::ofstream file(path, std::ios::binary);
    auto const write = [&file](auto const&... words) {
        (file.write(reinterpret_cast<char const*>(&words), sizeof words), ...);
    };
    constexpr std::uint32_t magic = 0xa1b2c3d4;  // in this machine's byte order
    constexpr std::uint32_t ethernetLink = 1;
    write(magic, std::uint16_t{2}, std::uint16_t{4}, 0, 0, 65535, ethernetLink);
    for (std::uint32_t i = 0; i < frames.size(); ++i) {
        auto const view = frames[i].view();
        auto const size = static_cast<std::uint32_t>(view.size());
        write(i, std::uint32_t{0}, size, size);
        file.write(reinterpret_cast<char const*>(view.data()), size);
    }
}

std::string outputOf(std::string const& command) {
    std::unique_ptr<FILE, int (*)(FILE*)> const pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    std::array<char, 4096> buffer{};
    while (auto const size = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) {
        output.append(buffer.data(), size);
    }
    return output;
}

std::vector<std::string> split(std::string const& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

// What tshark says of one frame, by the name of its field; a field that is absent is empty.
using Dissection = std::map<std::string, std::string>;

std::vector<Dissection> dissected(std::vector<Vanta::Bytes> const& frames) {
    // A folder that has the capture and what tshark keeps of its settings.
    ScratchPath const scratch("dissection");
    std::filesystem::path const folder = scratch.string();
    std::filesystem::create_directory(folder);
    auto const capture = folder / "frames.pcap";
    writePcap(capture, frames);
    std::vector<std::string> const names{"frame.protocols",        "_ws.expert.severity",
                                         "_ws.expert.message",     "_ws.malformed",
                                         "ip.checksum.status",     "tcp.checksum.status",
                                         "udp.checksum.status",    "icmp.checksum.status",
                                         "icmpv6.checksum.status", "frame.len"};
    std::string command = "WIRESHARK_CONFIG_DIR='" + folder.string() + "' tshark -n -r '" +
                          capture.string() +
                          "' -o ip.check_checksum:TRUE -o tcp.check_checksum:TRUE"
                          " -o udp.check_checksum:TRUE -T fields";
    for (auto const& name : names) {
        command += " -e " + name;
    }
    std::vector<Dissection> found;
    for (auto const& line : split(outputOf(command + " 2>/dev/null"), '\n')) {
        auto const values = split(line, '\t');
        for (std::size_t i = 0; i < values.size(); ++i) {
            found.resize(found.size() + (i == 0 ? 1 : 0));
            found.back()[names.at(i)] = values[i];
        }
    }
    return found;
}

// A frame, and which protocols tshark is to find in it, as it names them.
struct Sample {
    std::string name;
    Vanta::Bytes frame;
    std::string protocols;
    std::string checksum;  // the field of the transport's checksum, if it has one
};

struct Dissected : testing::Test {
    void SetUp() override {
        if (outputOf("command -v tshark").empty()) {
            GTEST_SKIP() << "tshark is not installed";
        }
    }

    void add(std::string name, PacketFields const& fields, std::string const& protocols,
             std::string checksum = "", std::uint16_t etherType = 0) {
        auto const frame = constructFrame(fields, etherType, noLimit);
        ASSERT_FALSE(frame.empty()) << name;
        std::string layers = "eth:";
        for (VlanTag const& tag : fields.tags) {
            layers += tag.tpid == Net::EtherType::serviceVlan ? "ieee8021ad:" : "vlan:";
        }
        samples.push_back({std::move(name), frame, layers + protocols, std::move(checksum)});
    }

    // The protocols of a frame, without the layer that tshark counts for each EtherType.
    static std::string protocols(Dissection& dissection) {
        std::string found;
        for (auto const& protocol : split(dissection["frame.protocols"], ':')) {
            if (protocol != "ethertype") {
                found += (found.empty() ? "" : ":") + protocol;
            }
        }
        return found;
    }

    static void expectNoComplaint(Dissection& dissection) {
        constexpr unsigned long chat = 0x200000;  // what is normal, as a connection that begins
        for (auto const& severity : split(dissection["_ws.expert.severity"], ',')) {
            EXPECT_LE(std::stoul(severity), chat) << dissection["_ws.expert.message"];
        }
        EXPECT_EQ(dissection["_ws.malformed"], "");
    }

    static void expectGoodChecksums(Dissection& dissection, Sample const& sample) {
        for (auto const* field :
             {"ip.checksum.status", "tcp.checksum.status", "udp.checksum.status",
              "icmp.checksum.status", "icmpv6.checksum.status"}) {
            for (auto const& status : split(dissection[field], ',')) {
                EXPECT_EQ(status, "1") << field;
            }
        }
        if (!sample.checksum.empty()) {
            EXPECT_NE(dissection[sample.checksum + ".checksum.status"], "");
        }
    }

    void expectThatTsharkAgrees() const {
        std::vector<Vanta::Bytes> frames;
        for (Sample const& sample : samples) {
            frames.push_back(sample.frame);
        }
        auto dissections = dissected(frames);
        ASSERT_EQ(dissections.size(), samples.size());
        for (std::size_t i = 0; i < samples.size(); ++i) {
            SCOPED_TRACE(samples[i].name);
            EXPECT_EQ(protocols(dissections[i]), samples[i].protocols);
            expectNoComplaint(dissections[i]);
            expectGoodChecksums(dissections[i], samples[i]);
        }
    }

    std::vector<Sample> samples;
};

std::vector<std::vector<VlanTag>> const tagsOfAllKinds{
    {},
    {{.vlan = 10}},
    {{.tpid = Net::EtherType::serviceVlan, .vlan = 20, .priority = 5}},
    {{.vlan = 10}, {.vlan = 4094, .dropEligible = true}},
    {{.tpid = Net::EtherType::serviceVlan, .vlan = 20}, {.vlan = 10, .priority = 7}}};

std::string nameOf(std::vector<VlanTag> const& tags) {
    std::string name = " tags:";
    for (VlanTag const& tag : tags) {
        name += tag.tpid == Net::EtherType::serviceVlan ? " 88a8" : " 8100";
    }
    return name;
}

TEST_F(Dissected, IpOfEveryProtocolBehindUpToTwoTags) {
    std::uint16_t port = 50000;  // each frame a connection of its own
    for (auto const& tags : tagsOfAllKinds) {
        for (auto const& base : {ipv4(), ipv6()}) {
            bool const isV6 = base.ipDst->isV6();
            std::string const ipName = isV6 ? "ipv6" : "ip";
            std::string const icmpName = isV6 ? "icmpv6" : "icmp";
            for (std::size_t const size : {0, 1, 2, 31, 1000}) {
                PacketFields fields = base;
                fields.tags = tags;
                fields.payload = std::vector<std::uint8_t>(size, 0xa5);
                fields.srcPort = ++port;
                std::string const name = ipName + nameOf(tags) + " " + std::to_string(size);
                std::string const data = size == 0 ? "" : ":data";
                auto transport = udp(fields);
                transport.srcPort = transport.dstPort = port;
                add(name + " udp", transport, ipName + ":udp" + data, "udp");
                transport = tcp(fields);
                transport.srcPort = transport.dstPort = port;
                add(name + " tcp", transport, ipName + ":tcp" + data, "tcp");
                fields.srcPort.reset();
                add(name + " " + icmpName, echo(fields), ipName + ":" + icmpName + data, icmpName);
            }
        }
    }
    expectThatTsharkAgrees();
}

TEST_F(Dissected, ArpBehindUpToTwoTags) {
    for (auto const& tags : tagsOfAllKinds) {
        for (auto fields : {arpRequest(), arpReply()}) {
            fields.tags = tags;
            add("arp" + nameOf(tags), fields, "arp");
        }
    }
    expectThatTsharkAgrees();
}

TEST_F(Dissected, AnyOtherEtherTypeBehindUpToTwoTags) {
    for (auto const& tags : tagsOfAllKinds) {
        PacketFields fields = ethernet();
        fields.tags = tags;
        add("other" + nameOf(tags), fields, "data", "", 0x88b5);
    }
    expectThatTsharkAgrees();
}

TEST_F(Dissected, IcmpOfEveryTypeInUse) {
    for (std::uint8_t const type : {3, 4, 5, 11, 12}) {
        add("icmp " + std::to_string(type), icmp(ipv4(), type), "ip:icmp:ip:udp", "icmp");
    }
    for (std::uint8_t const type : {0, 8, 9, 10, 13, 14, 17, 18}) {
        add("icmp " + std::to_string(type), icmp(ipv4(), type), "ip:icmp", "icmp");
    }
    for (std::uint8_t const type : {1, 2, 3, 4}) {
        add("icmpv6 " + std::to_string(type), icmp(ipv6(), type), "ipv6:icmpv6:ipv6:udp", "icmpv6");
    }
    for (std::uint8_t type = 128; type <= 161; ++type) {
        add("icmpv6 " + std::to_string(type), icmp(ipv6(), type), "ipv6:icmpv6", "icmpv6");
    }
    expectThatTsharkAgrees();
}

TEST_F(Dissected, FramesOfEveryLength) {
    std::uint16_t port = 50000;
    for (std::uint32_t const length : {42, 50, 59, 60, 61, 64, 100, 1514, 9236}) {
        for (auto fields : {udp(ipv4()), tcp(ipv4()), udp(ipv6()), tcp(ipv6())}) {
            fields.length = length;
            fields.srcPort = fields.dstPort = ++port;
            std::uint64_t const headers = headerSize(fields);
            if (headers > length) {
                continue;
            }
            std::string const transport = fields.protocol == IpProtocol::udp ? "udp" : "tcp";
            add(transport + " " + std::to_string(length), fields,
                (fields.ipDst->isV6() ? "ipv6:" : "ip:") + transport +
                    (headers < length ? ":data" : ""),
                transport);
        }
        PacketFields fields = arpRequest();
        fields.length = length;
        add("arp " + std::to_string(length), fields, "arp");
    }
    expectThatTsharkAgrees();
}

TEST_F(Dissected, UdpWhoseChecksumComesOutAsZero) {
    for (auto fields : {udp(ipv4()), udp(ipv6())}) {
        fields.srcPort = fields.dstPort = 50000;
        fields.payload = Vanta::Bytes{0, 0};
        auto const frame = constructFrame(fields, 0, noLimit);
        std::size_t const checksum = fields.ipDst->isV6() ? 60 : 40;
        fields.payload = Vanta::Bytes{frame.view()[checksum], frame.view()[checksum + 1]};
        add("udp", fields, fields.ipDst->isV6() ? "ipv6:udp:data" : "ip:udp:data", "udp");
    }
    expectThatTsharkAgrees();
}

TEST_F(Dissected, DestinationsOfEveryKindCompletedByDefaults) {
    for (auto const* destination :
         {"10.0.0.1", "192.0.2.1", "224.0.0.5", "239.1.1.1", "255.255.255.255"}) {
        PacketFields fields;
        fields.ipDst = ip(destination);
        fillDefaults(fields, 0);
        add(destination, fields, "ip:udp", "udp");
    }
    for (auto const* destination : {"2001:db8:9::1", "fe80::1", "ff02::1", "ff05::2"}) {
        PacketFields fields;
        fields.ipDst = ip(destination);
        fillDefaults(fields, 0);
        add(destination, fields, "ipv6:udp", "udp");
    }
    expectThatTsharkAgrees();
}

}  // namespace
