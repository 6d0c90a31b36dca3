#include "softchip/Pipeline.h"

#include <array>

#include "softchip/PipelineSteps.h"

namespace SoftChip {
namespace {

using PipelineSteps::Verdict;
using PipelineSteps::Walk;
using Run = Verdict (*)(Walk&);

// In the order of Step, the first at index 0.
constexpr std::array<Run, stepCount> steps{
    PipelineSteps::parse,           PipelineSteps::portUp,     PipelineSteps::vlanClassification,
    PipelineSteps::vlanAdmission,   PipelineSteps::ingressAcl, PipelineSteps::linkLocal,
    PipelineSteps::routerMac,       PipelineSteps::ownAddress, PipelineSteps::route,
    PipelineSteps::egressInterface, PipelineSteps::fdb,        PipelineSteps::lagMember,
    PipelineSteps::egressPortUp,
};

Verdict run(Step step, Walk& walk) {
    return steps[static_cast<std::size_t>(step) - 1](walk);
}

void note(Walk& walk, Step step, Reason reason) {
    if (walk.explain) [[unlikely]] {
        walk.explain->took(step, reason);
    }
}

Decision dropped(Walk const& walk) {
    Decision decision;
    decision.l2Domain = walk.domain;
    decision.drop = true;
    return decision;
}

Decision sentToCpu(Walk& walk, Step step, Reason& reason) {
    auto const port = walk.tables.cpuPort();
    if (!port) {
        reason = Reason::noCpuPort;
        note(walk, step, reason);
        return dropped(walk);
    }
    Decision decision;
    decision.egressPort = *port;
    decision.l2Domain = walk.domain;
    return decision;
}

Decision sent(Walk const& walk, DevicePort port) {
    Decision decision;
    decision.egressPort = port;
    decision.l2Domain = walk.outDomain;
    decision.routed = walk.routed;
    return decision;
}

Decision outcome(Walk& walk, Step step, Verdict& verdict) {
    switch (verdict.kind) {
        case Verdict::Kind::toCpu:
            return sentToCpu(walk, step, verdict.reason);
        case Verdict::Kind::flood:
            return sent(walk, noEgressPort);
        case Verdict::Kind::forward:
            return sent(walk, walk.egressPort);
        case Verdict::Kind::drop:
        case Verdict::Kind::goOn:
            break;
    }
    return dropped(walk);
}

Decision conclude(Walk& walk, Step step, Verdict verdict) {
    auto decision = outcome(walk, step, verdict);
    decision.copyToCpu = walk.copyToCpu;
    decision.step = step;
    decision.reason = verdict.reason;
    return decision;
}

}  // namespace

Decision decide(Tables const& tables, std::span<std::uint8_t const> phase0,
                std::span<std::uint8_t const> frame, Explanation* explain) {
    Walk walk{.tables = tables, .phase0 = phase0, .bytes = frame, .explain = explain};
    if (explain) {
        explain->clear();
    }
    auto step = Step::parse;
    auto verdict = run(step, walk);
    note(walk, step, verdict.reason);
    while (verdict.kind == Verdict::Kind::goOn) {
        step = verdict.next;
        verdict = run(step, walk);
        note(walk, step, verdict.reason);
    }
    return conclude(walk, step, verdict);
}

}  // namespace SoftChip
