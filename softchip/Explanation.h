// How the pipeline came to its decision about one frame: the steps that it took, each with its
// reason and with what the frame met there.
//
// Everything is a value: which port, which rule of which list, which prefix. Words, and the names
// that people gave to these things, are added where an explanation is shown. Making an explanation
// neither allocates nor formats.
#pragma once

#include <cstdint>
#include <span>
#include <variant>

#include "softchip/Addresses.h"
#include "softchip/FixedList.h"
#include "softchip/Frame.h"
#include "softchip/PipelineReason.h"
#include "softchip/Ports.h"
#include "softchip/TableEntries.h"

namespace SoftChip {

// Types for what a frame meets, as far as the tables have none.
struct FrameItself {  // Explanation::frame()
    friend bool operator==(FrameItself, FrameItself) = default;
};
struct InLag {  // the port is a member of it
    LagId lag = 0;
    friend bool operator==(InLag, InLag) = default;
};
struct OuterTag {
    std::uint16_t vlan = 0;  // 0 to 4095
    friend bool operator==(OuterTag, OuterTag) = default;
};
struct InDomain {  // a VLAN or internal VLAN
    DomainId domain = noDomain;
    friend bool operator==(InDomain, InDomain) = default;
};
struct RuleOfList {  // AclRule's key
    std::uint16_t list = 0;
    std::uint32_t sequence = 0;
    friend bool operator==(RuleOfList, RuleOfList) = default;
};
struct MacInDomain {  // the FDB's key
    MacAddress mac{};
    DomainId domain = noDomain;
    friend bool operator==(MacInDomain const&, MacInDomain const&) = default;
};
struct IpInVrf {
    IpAddress address{};
    VrfId vrf = 0;
    friend bool operator==(IpInVrf const&, IpInVrf const&) = default;
};
struct HopsLeft {  // TTL or hop limit
    std::uint8_t ttl = 0;
    friend bool operator==(HopsLeft, HopsLeft) = default;
};
struct NextHopChoice {         // by the flow's hash
    std::uint32_t picked = 0;  // position in the set, from 0
    std::uint32_t candidates = 0;
    friend bool operator==(NextHopChoice, NextHopChoice) = default;
};
struct MembersUp {  // of the LAG before it
    std::uint32_t count = 0;
    friend bool operator==(MembersUp, MembersUp) = default;
};

// One thing that a frame met. A LogicalPort is a port or a LAG, a MacAddress the frame's
// destination or the neighbour's, a Prefix the route's, an L3Fault what is wrong with the header.
using Detail = std::variant<FrameItself, LogicalPort, InLag, OuterTag, InDomain, RuleOfList,
                            MacAddress, MacInDomain, IpInVrf, L3Fault, HopsLeft, Prefix,
                            NextHopChoice, NextHop, MembersUp>;

// A plain value. Threads: any, one at a time.
class Explanation {
  public:
    // One step. What the frame met there is details(entry).
    struct Entry {
        Step step{};
        Reason reason{};
        std::uint8_t firstDetail = 0;
        std::uint8_t detailCount = 0;
    };

    // In the order in which the steps were taken; the last one's reason is the decision's.
    std::span<Entry const> entries() const { return entries_.items(); }
    // In the order in which the step looked at them; valid until the explanation changes.
    std::span<Detail const> details(Entry const& entry) const {
        return details_.items().subspan(entry.firstDetail, entry.detailCount);
    }
    // What the parser made of the frame, if the first step met it (FrameItself).
    ParsedFrame const& frame() const { return frame_; }

    // An explanation is made with clear(), and then for each step with met() for each thing that it
    // meets, and took().
    void clear() {
        entries_.clear();
        details_.clear();
    }
    void met(Detail const& detail) { details_.add(detail); }
    void metFrame(ParsedFrame const& frame) {
        frame_ = frame;
        met(FrameItself());
    }
    void took(Step step, Reason reason) {
        auto const told = entries_.size() == 0 ? 0U : endOf(entries().back());
        entries_.add({step, reason, static_cast<std::uint8_t>(told),
                      static_cast<std::uint8_t>(details_.size() - told)});
    }

    // No step is taken twice, but a step that finds no CPU port has two entries. A routed frame
    // that comes in on one LAG with a tag and leaves by another meets the most, 20 things.
    static constexpr std::size_t maxEntries = stepCount + 1;
    static constexpr std::size_t maxDetails = 24;

  private:
    static unsigned endOf(Entry const& entry) {
        return unsigned{entry.firstDetail} + entry.detailCount;
    }

    ParsedFrame frame_;
    FixedList<Entry, maxEntries> entries_;
    FixedList<Detail, maxDetails> details_;
};

}  // namespace SoftChip
