// How an answer of the engine becomes a client's result.
#include <functional>
#include <set>

#include "Grist/Grist.h"
#include "Trace/Trace.h"
#include "Vanta/Assert.h"
#include "VynPacketTracer/VynPtClientSm.h"

namespace VynPacketTracer {

using PacketTracer::RequestId;
using PacketTracer::ResultEntry;
using PacketTracer::State;
using VynPortTypes::PortIndex;

namespace {

Trace::Handle& trace = Trace::handle("VynPtClientSm");

}  // namespace

void PacketTracerClientSm::handleResults() {
    Vanta::assertThat(made_.clientStatus != nullptr, "clientStatus != nullptr");
    Trace::twinlog(trace, 7, "handleResults:client %s #status:%s", made_.name,
                   made_.clientStatus->result().size());
    for (auto const& entry : made_.clientStatus->result()) {
        if (!made_.clientConfig || !made_.clientConfig->request().has(entry.key)) {
            made_.clientStatus->resultDel(entry.key);
        }
    }
}

void PacketTracerClientSm::updateResult(Vanta::Ptr<PktGenStatusData const> const& status) {
    Vanta::assertThat(status != nullptr, "status != nullptr");
    RequestId const& req = status->req();
    Trace::twinlog(trace, 7, "updateResult:client:%s reqId:%s ready:%s", req.clientName(),
                   req.number(), status->ready());
    if (!status->ready()) {
        return;
    }
    auto const result = made_.clientStatus->resultIs(req);
    std::uint16_t const portIndex = status->egrPortInfo().port().value();
    if (!made_.pktGenConfig || !made_.pktGenConfig->cfgHas(req)) {
        // What is missing is the job. The text, which says something else, must stay as it is.
        Trace::twinlog(trace, 9, "updateResult:client:%s reqId:%s invalid portIndex:%s",
                       req.clientName(), req.number(), portIndex);
        result->stateIs(State::noEgress);
    } else if (status->dropped()) {
        Trace::twinlog(trace, 9, "updateResult:client:%s reqId:%s pkt dropped", req.clientName(),
                       req.number());
        result->stateIs(State::noEgress);
    } else if (portIndex == PortIndex::invalid) {
        pktFlooded(status, result, made_.pktGenConfig->cfg(req)->ingIntf());
    } else {
        updateUnicastResult(*status, result);
    }
    result->validIs(true);
}

void PacketTracerClientSm::updateUnicastResult(PktGenStatusData const& status,
                                               Vanta::Ptr<PacketTracer::Result> const& result) {
    RequestId const& req = status.req();
    std::uint16_t const portIndex = status.egrPortInfo().port().value();
    Vanta::assertThat(made_.systemStatus != nullptr, "systemStatus != nullptr");
    auto const* egress = made_.systemStatus->portToIntfId().find(status.egrPortInfo().port());
    if (egress == nullptr) {
        Trace::twinlog(trace, 9, "updateResult:client:%s reqId:%s unknown port%s", req.clientName(),
                       req.number(), portIndex);
        result->stateIs(State::noEgress);
        return;
    }
    Plexa::IntfId const intfId = egress->value;
    updatePortInfoResult(intfId, result);
    Trace::twinlog(trace, 7, "updateResult:portId:%s intfId:%s", portIndex, intfId);
    if (status.routed() && isRoutedVlanReported(status.egrL2Domain())) {
        addVlanIntf(result, status.egrL2Domain());
    }
    result->stateIs(State::egressFound);
}

// A routed packet is reported on its VLAN interface if the VLAN has one (the CPU is then a member)
// and is not the internal VLAN of a routed port or sub-interface.
bool PacketTracerClientSm::isRoutedVlanReported(std::uint16_t egrL2Domain) const {
    Vanta::assertThat(made_.bridgingConfig != nullptr, "bridgingConfig != nullptr");
    auto const vlan = made_.bridgingConfig->vlanConfig(Bridging::VlanId(egrL2Domain));
    return vlan && vlan->intf().has(cpuIntfId()) && !vlan->internal();
}

Plexa::IntfId PacketTracerClientSm::cpuIntfId() {
    Plexa::IntfId id;
    id.nameIs("Cpu");
    return id;
}

void PacketTracerClientSm::updatePortInfoResult(Plexa::IntfId intfId,
                                                Vanta::Ptr<PacketTracer::Result> const& result) {
    Vanta::assertThat(result != nullptr, "result != nullptr");
    Trace::twinlog(trace, 7, "updatePortInfoResult:client:%s reqId:%s intfId:%s",
                   result->id().clientName(), result->id().number(), intfId);
    Vanta::assertThat(made_.fcsd != nullptr, "fcsd != nullptr");
    if (made_.fcsd->lagToPort().has(intfId)) {
        Trace::twinlog(trace, 7, "updatePortInfoResult:lag egress intf:%s", intfId);
        result->egressIntfIs(ResultEntry::fromPhysicalAndLogicalIntf(Plexa::IntfId(), intfId));
        return;
    }
    if (Plexa::SubIntfId::isSubIntfId(intfId)) {
        Trace::twinlog(trace, 7, "updatePortInfoResult:subintf egress intf:%s", intfId);
        result->egressIntfIs(ResultEntry::fromPhysicalAndLogicalIntf(
            Plexa::SubIntfId::parentIntfId(intfId), intfId));
        return;
    }
    if (auto const* member = made_.fcsd->portToLag().find(intfId)) {
        Plexa::IntfId const lag = member->value;
        Trace::twinlog(trace, 7, "updatePortInfoResult:physical egress intf:%s lag intf:%s", intfId,
                       lag);
        result->egressIntfIs(ResultEntry::fromPhysicalAndLogicalIntf(intfId, lag));
        result->egressIntfIs(ResultEntry::fromPhysicalIntf(intfId));
        return;
    }
    Trace::twinlog(trace, 7, "updatePortInfoResult:physical egress intf:%s", intfId);
    Vanta::assertThat(made_.chipStatus != nullptr, "chipStatus != nullptr");
    if (made_.chipStatus->isCpuIntf(intfId)) {
        intfId = cpuIntfId();
    }
    result->egressIntfIs(ResultEntry::fromPhysicalIntf(intfId));
}

void PacketTracerClientSm::pktFlooded(Vanta::Ptr<PktGenStatusData const> const& status,
                                      Vanta::Ptr<PacketTracer::Result> const& result,
                                      Plexa::IntfId ingIntf) {
    Vanta::assertThat(status != nullptr, "status != nullptr");
    Vanta::assertThat(result != nullptr, "result != nullptr");
    RequestId const& req = status->req();
    std::uint16_t const l2Domain = status->egrL2Domain();
    Trace::twinlog(trace, 7, "pktFlooded:client:%s reqId:%s flooded:%s ingIntf:%s routed:%s",
                   req.clientName(), req.number(), l2Domain, ingIntf, status->routed());
    Vanta::assertThat(l2Domain == 0 || made_.bridgingConfig != nullptr,
                      "l2Domain == 0 || bridgingConfig != nullptr");
    auto const vlan =
        l2Domain != 0 ? made_.bridgingConfig->vlanConfig(Bridging::VlanId(l2Domain)) : nullptr;
    if (!vlan) {
        Trace::twinlog(trace, 9, "pktFlooded:client:%s reqId:%s digest with invalid l2Domain%s",
                       req.clientName(), req.number(), l2Domain);
        result->stateIs(State::noEgress);
        return;
    }
    for (auto const& entry : vlan->intf()) {
        Plexa::IntfId const member = entry.key;
        Trace::twinlog(trace, 7, "pktFlooded:vlan:%s intf:%s", l2Domain, member);
        if (member != ingIntf && !Plexa::CpuIntfId::isCpuIntfId(member)) {
            updatePortInfoResult(member, result);
        }
    }
    if (status->routed()) {
        addVlanIntf(result, l2Domain);
    }
    if (status->copyToCpu()) {
        result->egressIntfIs(ResultEntry::fromPhysicalIntf(cpuIntfId()));
    }
    result->stateIs(result->egressIntf().empty() ? State::noEgress : State::egressFound);
}

void PacketTracerClientSm::addVlanIntf(Vanta::Ptr<PacketTracer::Result> const& result,
                                       std::uint16_t vlanId) {
    Vanta::assertThat(result != nullptr, "result != nullptr");
    Trace::twinlog(trace, 7, "addVlanIntf:client:%s reqId:%s l2Domain:%s",
                   result->id().clientName(), result->id().number(), vlanId);
    Plexa::IntfId const vlanIntf = Plexa::VlanIntfId::vlanIdToIntfId(vlanId);
    std::set<Plexa::IntfId, std::less<>, Grist::Allocator<Plexa::IntfId>> physicalIntfs;
    for (auto const& entry : result->egressIntf()) {
        if (!Plexa::SubIntfId::isSubIntfId(entry.key.logicalIntf())) {
            physicalIntfs.insert(entry.key.physicalIntf());
        }
    }
    for (Plexa::IntfId const& physical : physicalIntfs) {
        result->egressIntfIs(ResultEntry::fromPhysicalAndLogicalIntf(physical, vlanIntf));
    }
}

}  // namespace VynPacketTracer
