// The pipeline's inside: what its steps share. Only the Pipeline sources include it.
#pragma once

#include <span>

#include "softchip/Frame.h"
#include "softchip/Pipeline.h"
#include "softchip/Tables.h"

namespace SoftChip::PipelineSteps {

// One frame on its way. Each step reads what the steps before it have found.
struct Walk {
    Tables const& tables;
    std::span<std::uint8_t const> phase0;
    std::span<std::uint8_t const> bytes;
    Explanation* explain;

    ParsedFrame frame{};            // 1
    DevicePort ingressPort = 0;     // 1
    LogicalPort ingress{};          // 2: the port or its LAG
    DomainId domain = noDomain;     // 3: the ingress domain
    bool internal = false;          // 3: that of a routed port or sub-interface
    bool copyToCpu = false;         // 5, 6
    NextHop hop{};                  // 9
    MacAddress hopMac{};            // 9
    bool routed = false;            // 10
    DomainId outDomain = noDomain;  // the domain it leaves on: 3, for routed frames 10
    LogicalPort target{};           // 10 or 11: the port or LAG it leaves by
    DevicePort egressPort = 0;      // 12

    // The step meets `value`, for the explanation if there is one.
    template <class Value>
    void met(Value const& value) {
        if (explain) [[unlikely]] {
            explain->met(value);
        }
    }
};

// How a step ends: with another step, or with one of the four outcomes.
struct Verdict {
    enum class Kind : std::uint8_t { goOn, drop, toCpu, flood, forward };
    Kind kind;
    Reason reason;
    Step next = Step::parse;  // for goOn
};

constexpr Verdict goOn(Reason reason, Step next) {
    return {Verdict::Kind::goOn, reason, next};
}
constexpr Verdict drop(Reason reason) {
    return {Verdict::Kind::drop, reason};
}
constexpr Verdict toCpu(Reason reason) {
    return {Verdict::Kind::toCpu, reason};
}
constexpr Verdict flood(Reason reason) {
    return {Verdict::Kind::flood, reason};
}
constexpr Verdict forward(Reason reason) {
    return {Verdict::Kind::forward, reason};
}

// The steps, one function each, in their order. Precondition: the steps that led here have run.
Verdict parse(Walk& walk);               // 1, here to 7 and 11 to 13 in PipelineL2.cpp
Verdict portUp(Walk& walk);              // 2
Verdict vlanClassification(Walk& walk);  // 3
Verdict vlanAdmission(Walk& walk);       // 4
Verdict ingressAcl(Walk& walk);          // 5
Verdict linkLocal(Walk& walk);           // 6
Verdict routerMac(Walk& walk);           // 7
Verdict ownAddress(Walk& walk);          // 8, here to 10 in PipelineL3.cpp
Verdict route(Walk& walk);               // 9
Verdict egressInterface(Walk& walk);     // 10
Verdict fdb(Walk& walk);                 // 11
Verdict lagMember(Walk& walk);           // 12
Verdict egressPortUp(Walk& walk);        // 13

}  // namespace SoftChip::PipelineSteps
