// The examples: every switch file is read, and the captures beside leaf.json meet in the chip's
// tables what examples/README.md promises.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <ostream>
#include <set>

#include "agent/DeriveState.h"
#include "agent/DeriveTables.h"
#include "softchip/Phase0.h"
#include "softchip/Pipeline.h"
#include "switchfile/JsonDocument.h"
#include "switchfile/SwitchFile.h"
#include "tests/SourceDir.h"

namespace Agent {
namespace {

std::filesystem::path const examples = sourcePath("examples");

using Frame = std::vector<std::uint8_t>;

// The frames of a pcap file in the byte order of this machine.
std::vector<Frame> framesOf(std::string const& name) {
    std::string const bytes =
        SwitchFile::readWholeFile((examples / "captures" / (name + ".pcap")).string());
    std::vector<Frame> frames;
    std::size_t at = 24;
    while (at + 16 <= bytes.size()) {
        std::uint32_t length = 0;
        std::memcpy(&length, bytes.data() + at + 8, sizeof length);
        at += 16;
        auto const start = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        frames.emplace_back(start, start + length);
        at += length;
    }
    return frames;
}

// What happens to all frames of a capture: the reason of the chip's last step, the interfaces that
// the frames leave by, and the egress domain.
struct Expected {
    char const* capture;
    char const* ingress;
    SoftChip::Reason reason;
    std::set<std::string> egress;
    unsigned domain;
    bool copyToCpu = false;
};

std::ostream& operator<<(std::ostream& out, Expected const& expected) {
    return out << expected.capture << " on " << expected.ingress;
}

// The codes of the steps that were taken and of their reasons, for a failure's message.
std::string road(SoftChip::Explanation const& explanation) {
    std::string text;
    for (auto const& entry : explanation.entries()) {
        text.append(SoftChip::code(entry.step)).append(" ");
        text.append(SoftChip::code(entry.reason)).append("; ");
    }
    return text;
}

class LeafExample : public testing::TestWithParam<Expected> {
  protected:
    static SwitchFile::SwitchModel const& model() {
        static SwitchFile::SwitchModel const leaf =
            SwitchFile::readSwitchFile((examples / "leaf.json").string());
        return leaf;
    }
    static SoftChip::Tables const& tables() {
        static SoftChip::Tables const derived = deriveTables(model());
        return derived;
    }
    static ForwardingState const& state() {
        static ForwardingState const derived = deriveForwardingState(model());
        return derived;
    }
    static SoftChip::Phase0Bytes phase0(std::string const& ingress) {
        auto const info =
            state().systemStatus->portInfo().get(Plexa::IntfId::fromName(ingress).value());
        return SoftChip::encodePhase0(
            static_cast<std::uint16_t>(info.pipe() * 128 + info.port().value()));
    }
};

TEST_P(LeafExample, GoesWhereTheReadmeSays) {
    Expected const& expected = GetParam();
    std::vector<Frame> const frames = framesOf(expected.capture);
    ASSERT_FALSE(frames.empty());
    std::set<std::string> egress;
    for (Frame const& frame : frames) {
        SoftChip::Explanation explanation;
        auto const decision =
            SoftChip::decide(tables(), phase0(expected.ingress), frame, &explanation);
        EXPECT_EQ(decision.reason, expected.reason) << road(explanation);
        EXPECT_EQ(decision.l2Domain, expected.domain) << road(explanation);
        EXPECT_EQ(decision.copyToCpu, expected.copyToCpu) << road(explanation);
        if (decision.egressPort != SoftChip::noEgressPort) {
            egress.insert(state()
                              .systemStatus->portToIntfId()
                              .get(VynPortTypes::PortIndex(decision.egressPort))
                              .stringValue());
        }
    }
    EXPECT_EQ(egress, expected.egress);
}

using SoftChip::Reason;
constexpr char const* cpu = "Ethernet65";

INSTANTIATE_TEST_SUITE_P(
    Captures, LeafExample,
    testing::Values(
        Expected{"arp-request", "Ethernet1", Reason::broadcastFlood, {}, 10, true},
        Expected{"l2-unicast", "Ethernet1", Reason::forwarded, {"Ethernet3"}, 10},
        Expected{"unknown-unicast", "Ethernet1", Reason::unknownUnicastFlood, {}, 10},
        Expected{"broadcast-trunk", "Ethernet43", Reason::broadcastFlood, {}, 20},
        Expected{"lag-egress", "Ethernet1", Reason::forwarded, {"Ethernet45", "Ethernet46"}, 10},
        Expected{"flood-lag-subinterface", "Ethernet29", Reason::unknownUnicastFlood, {}, 30},
        Expected{"subinterface-in", "Ethernet51/1.30", Reason::broadcastFlood, {}, 30},
        Expected{"routed-vlan", "Ethernet1", Reason::forwarded, {"Ethernet17"}, 20},
        Expected{"routed-vlan-flood", "Ethernet1", Reason::neighbourMacFlood, {}, 30},
        Expected{"routed-port", "Ethernet1", Reason::forwarded, {"Ethernet49/1"}, 4094},
        Expected{"routed-subinterface", "Ethernet1", Reason::forwarded, {"Ethernet51/1"}, 4091},
        Expected{"ipv6-routed", "Ethernet1", Reason::forwarded, {"Ethernet17"}, 20},
        Expected{"own-address", "Ethernet1", Reason::ownAddress, {cpu}, 10},
        Expected{"ttl-1", "Ethernet1", Reason::ttlExpired, {cpu}, 10},
        Expected{"glean", "Ethernet1", Reason::glean, {cpu}, 10},
        Expected{"neighbour-solicitation", "Ethernet1", Reason::multicastFlood, {}, 10, true},
        Expected{"cpu", "Ethernet1", Reason::linkLocalTrap, {cpu}, 10},
        Expected{"acl-drop", "Ethernet2", Reason::aclDrop, {}, 10},
        Expected{"acl-copy", "Ethernet2", Reason::forwarded, {"Ethernet3"}, 10, true},
        Expected{"port-down", "Ethernet1", Reason::egressPortDown, {}, 10},
        Expected{"port-down", "Ethernet16", Reason::portDown, {}, 0},
        Expected{"hairpin", "Ethernet1", Reason::hairpin, {}, 10},
        Expected{"vlan-not-on-port", "Ethernet1", Reason::vlanNotOnPort, {}, 20},
        Expected{"no-route", "Ethernet37", Reason::noRoute, {}, 40},
        Expected{"route-drop", "Ethernet1", Reason::routeDrops, {}, 10}),
    [](auto const& test) {
        std::string name = std::string(test.param.capture) + "_on_" + test.param.ingress;
        for (char& c : name) {
            c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
        }
        return name;
    });

TEST_F(LeafExample, EcmpUsesBothSpinesAndTheirInternalVlans) {
    std::set<std::pair<std::uint16_t, std::uint16_t>> seen;
    for (Frame const& frame : framesOf("ecmp")) {
        auto const decision = SoftChip::decide(tables(), phase0("Ethernet1"), frame);
        EXPECT_TRUE(decision.routed);
        seen.emplace(decision.egressPort, decision.l2Domain);
    }
    EXPECT_EQ(seen, (std::set<std::pair<std::uint16_t, std::uint16_t>>{{384, 4094}, {388, 4093}}));
}

TEST_F(LeafExample, IsALeafSwitchOfTheSizeThatItClaims) {
    auto const count = [](Plexa::IntfId::Kind kind) {
        return std::count_if(
            model().interfaces.begin(), model().interfaces.end(),
            [kind](SwitchFile::Interface const& intf) { return intf.id.kind() == kind; });
    };
    EXPECT_GE(count(Plexa::IntfId::Kind::physical), 48);
    EXPECT_EQ(count(Plexa::IntfId::Kind::lag), 2);
    EXPECT_EQ(count(Plexa::IntfId::Kind::subIntf), 3);
    EXPECT_EQ(count(Plexa::IntfId::Kind::vlan), 5);
    EXPECT_EQ(model().vlans.size(), 6U);
    EXPECT_EQ(model().vrfs.size(), 2U);
    EXPECT_GT(model().fdb.size(), 200U);
    EXPECT_GT(model().routes.size(), 200U);
}

TEST_F(LeafExample, FloodDomainOfVlan30HasLagsAndASubInterface) {
    auto const vlan = state().bridgingConfig->vlanConfig(Bridging::VlanId(30));
    for (char const* const name : {"Lag1", "Lag2", "Ethernet51/1.30", "Ethernet30", "Cpu"}) {
        EXPECT_TRUE(vlan->intf().has(Plexa::IntfId::fromName(name).value())) << name;
    }
}

TEST(Examples, EverySwitchFileIsRead) {
    int count = 0;
    for (auto const& entry : std::filesystem::directory_iterator(examples)) {
        if (entry.path().extension() == ".json") {
            EXPECT_NO_THROW(SwitchFile::readSwitchFile(entry.path().string())) << entry.path();
            ++count;
        }
    }
    EXPECT_GE(count, 3);
}

// The page opens with a whole file.
TEST(Examples, TheFirstTextOfTheFormatsPageIsRead) {
    std::string const page = SwitchFile::readWholeFile(sourcePath("docs/switch-file.md"));
    std::size_t const start = page.find("```json\n") + 8;
    std::string const text = page.substr(start, page.find("```", start) - start);
    EXPECT_NO_THROW(SwitchFile::parseSwitchFile(text, "docs/switch-file.md"));
}

}  // namespace
}  // namespace Agent
