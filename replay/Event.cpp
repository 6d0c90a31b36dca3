#include "replay/Event.h"

#include <algorithm>
#include <array>
#include <limits>

#include "VynPortTypes/PortIndex.h"
#include "replay/JsonText.h"
#include "replay/Members.h"

namespace Replay {
namespace {

constexpr std::uint64_t u8Max = std::numeric_limits<std::uint8_t>::max();
constexpr std::uint64_t u16Max = std::numeric_limits<std::uint16_t>::max();
constexpr std::uint64_t u32Max = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint64_t u64Max = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t highestPipe = 3;
constexpr std::uint64_t highestPort = VynPortTypes::PortIndex::invalid - 1;
constexpr std::uint64_t mostTimes = 1'000'000;
constexpr std::size_t mostEntries = u16Max;
constexpr std::uint64_t ipv4 = 0x0800;
constexpr std::uint64_t noEgressPort = 511;
constexpr std::size_t defaultPacketSize = 64;

std::uint8_t pipeOf(Members& m) {
    return static_cast<std::uint8_t>(m.number("pipe", 0, highestPipe));
}

std::uint16_t portOf(Members& m) {
    return static_cast<std::uint16_t>(m.number("port", 0, highestPort));
}

std::uint32_t u32Of(Members& m, std::string_view name,
                    std::optional<std::uint64_t> byDefault = {}) {
    return static_cast<std::uint32_t>(m.number(name, 0, u32Max, byDefault));
}

std::uint32_t timesOf(Members& m) {
    return static_cast<std::uint32_t>(m.number("times", 0, mostTimes, 1));
}

Bridging::VlanId vlanOf(Members& m) {
    return Bridging::VlanId(
        static_cast<std::uint16_t>(m.number("id", Bridging::VlanId::min, Bridging::VlanId::max)));
}

Vanta::String clientOf(Members& m) {
    return Vanta::String(m.text("client"));
}

PacketTracer::RequestId requestIdOf(Members& m) {
    return {clientOf(m), u32Of(m, "req")};
}

Do::Entity entityOf(Members& m, std::string_view own) {
    std::array<std::string_view, 3> const words{own, "none", "other"};
    return static_cast<Do::Entity>(m.word("entity", words, 0));
}

Event readVlan(Members& m) {
    return Do::Vlan{vlanOf(m), m.intfs("intf"), m.flag("internal", false)};
}

Event readStart(Members& m) {
    return Do::Start{m.flag("pktTracerSupported", true), m.flag("pktGenSupported", true),
                     u32Of(m, "session", 1),
                     static_cast<std::uint8_t>(m.number("device", 0, u8Max, 0))};
}

Event readRequest(Members& m) {
    std::vector<std::uint8_t> const zeros(defaultPacketSize);
    return Do::Request{requestIdOf(m),
                       m.intf("intf"),
                       static_cast<std::uint16_t>(m.number("etherType", 0, u16Max, ipv4)),
                       m.flag("mpls", false),
                       m.flag("gre", false),
                       m.flag("valid", true),
                       m.bytes("raw", zeros)};
}

Event readRequestSet(Members& m) {
    using Attribute = Do::RequestAttribute;
    static constexpr std::array<std::string_view, 6> names{"valid", "etherType", "mpls",
                                                           "gre",   "intf",      "raw"};
    Do::RequestSet set{requestIdOf(m), static_cast<Attribute>(m.word("attr", names)), {}};
    switch (set.attribute) {
        case Attribute::valid:
        case Attribute::mpls:
        case Attribute::gre:
            set.value = m.flag("value");
            break;
        case Attribute::etherType:
            set.value = static_cast<std::uint16_t>(m.number("value", 0, u16Max));
            break;
        case Attribute::intf:
            set.value = m.intf("value");
            break;
        case Attribute::raw:
            set.value = Vanta::Bytes(m.bytes("value"));
            break;
    }
    return set;
}

Event readPhase0(Members& m) {
    return Do::Phase0{m.intf("intf"), u32Of(m, "status", 0), m.bytes("data", {})};
}

Event readCounter(Members& m) {
    Do::Counter counter{pipeOf(m), {}};
    if (m.has("value") == m.has("values")) {
        throw Refusal("exactly one of the members \"value\" and \"values\" must be there");
    }
    if (m.has("value")) {
        counter.values.push_back(m.number("value", 0, u64Max));
    } else {
        counter.values = m.numbers("values", 0, u64Max);
    }
    if (counter.values.empty()) {
        throw Refusal("the member \"values\" must have one number or more");
    }
    return counter;
}

Event readSdkReturn(Members& m) {
    std::array<std::string_view, ScriptChip::allSdkFunctions.size()> names;
    std::ranges::transform(ScriptChip::allSdkFunctions, names.begin(), ScriptChip::sdkFunctionName);
    using Rc = std::numeric_limits<std::int32_t>;
    return Do::SdkReturn{ScriptChip::allSdkFunctions[m.word("call", names)],
                         static_cast<std::int32_t>(m.signedNumber("rc", Rc::min(), Rc::max())),
                         timesOf(m), u32Of(m, "after", 0)};
}

Event readDigest(Members& m) {
    auto const u8 = [](Members& entry, std::string_view name) {
        return static_cast<std::uint8_t>(entry.number(name, 0, u8Max, 0));
    };
    auto const u16 = [](Members& entry, std::string_view name, std::uint64_t byDefault) {
        return static_cast<std::uint16_t>(entry.number(name, 0, u16Max, byDefault));
    };
    Do::Digest digest;
    m.objects("entries", mostEntries, [&](Members& entry) {
        digest.entries.push_back({.pktId = u16(entry, "pktId", 0),
                                  .copyToCpu = u8(entry, "copyToCpu"),
                                  .l2Domain = u16(entry, "l2Domain", 0),
                                  .egrPort = u16(entry, "egrPort", noEgressPort),
                                  .routed = u8(entry, "routed"),
                                  .dropCtl = u8(entry, "dropCtl")});
    });
    return digest;
}

Event readDigestField(Members& m) {
    auto const& names = ScriptChip::DigestLayout::fieldNames();
    return Do::DigestField{std::string(names[m.word("field", names)]), u32Of(m, "size")};
}

struct Reader {
    std::string_view name;
    Event (*read)(Members& members);
};

constexpr Reader readers[] = {
    {"port",
     [](Members& m) -> Event {
         return Do::Port{m.intf("intf"), pipeOf(m), portOf(m)};
     }},
    {"portDel", [](Members& m) -> Event { return Do::PortDel{m.intf("intf")}; }},
    {"portToIntfId",
     [](Members& m) -> Event {
         return Do::PortToIntfId{portOf(m), m.intf("intf")};
     }},
    {"portToIntfIdDel", [](Members& m) -> Event { return Do::PortToIntfIdDel{portOf(m)}; }},
    {"lagToPort", [](Members& m) -> Event { return Do::LagToPort{m.intf("lag")}; }},
    {"lagToPortDel", [](Members& m) -> Event { return Do::LagToPortDel{m.intf("lag")}; }},
    {"portToLag",
     [](Members& m) -> Event {
         return Do::PortToLag{m.intf("intf"), m.intf("lag")};
     }},
    {"portToLagDel", [](Members& m) -> Event { return Do::PortToLagDel{m.intf("intf")}; }},
    {"vlan", readVlan},
    {"vlanDel", [](Members& m) -> Event { return Do::VlanDel{vlanOf(m)}; }},
    {"cpuPort", [](Members& m) -> Event { return Do::CpuPort{m.intf("intf")}; }},
    {"cpuPortDel", [](Members& m) -> Event { return Do::CpuPortDel{m.intf("intf")}; }},
    {"start", readStart},
    {"stop", [](Members&) -> Event { return Do::Stop{}; }},
    {"turn", [](Members& m) -> Event { return Do::Turn{timesOf(m)}; }},
    {"yieldAfter", [](Members& m) -> Event { return Do::YieldAfter{u32Of(m, "checks")}; }},
    {"clientConfig",
     [](Members& m) -> Event {
         return Do::ClientConfig{clientOf(m), entityOf(m, "config")};
     }},
    {"clientConfigDel", [](Members& m) -> Event { return Do::ClientConfigDel{clientOf(m)}; }},
    {"clientStatus",
     [](Members& m) -> Event {
         return Do::ClientStatus{clientOf(m), entityOf(m, "status")};
     }},
    {"clientStatusDel", [](Members& m) -> Event { return Do::ClientStatusDel{clientOf(m)}; }},
    {"request", readRequest},
    {"requestSet", readRequestSet},
    {"requestDel", [](Members& m) -> Event { return Do::RequestDel{requestIdOf(m)}; }},
    {"result", [](Members& m) -> Event { return Do::Result{requestIdOf(m)}; }},
    {"phase0", readPhase0},
    {"phase0Del", [](Members& m) -> Event { return Do::Phase0Del{m.intf("intf")}; }},
    {"counter", readCounter},
    {"sdkReturn", readSdkReturn},
    {"digest", readDigest},
    {"digestField", readDigestField},
};

}  // namespace

Event readEvent(std::string_view line) {
    JsonValue::Members const parsed = parseJsonLine(line);
    Members members(parsed);
    std::string const name = members.text("do");
    auto const* const reader = std::ranges::find(readers, std::string_view(name), &Reader::name);
    if (reader == std::end(readers)) {
        throw Refusal("there is no event " + jsonText(name));
    }
    Event event = reader->read(members);
    members.end();
    return event;
}

}  // namespace Replay
