#include "VynPacketTracer/VynPtTypes.h"

#include <algorithm>
#include <utility>

#include "Kel/Error.h"

namespace VynPacketTracer {

using PacketTracer::RequestId;
using Vanta::ValueRef;

// ---- PktGenCfgData

PktGenCfgData::PktGenCfgData(RequestId const& req, Vanta::Bytes const& pkt,
                             VynSystem::PortInfo const& ingPortInfo, Plexa::IntfId ingIntf)
    : req_(req), pkt_(pkt), ingPortInfo_(ingPortInfo), ingIntf_(ingIntf) {}

Vanta::Ptr<PktGenCfgData> PktGenCfgData::PktGenCfgDataIs(RequestId const& req,
                                                         Vanta::Bytes const& pkt,
                                                         VynSystem::PortInfo const& ingPortInfo,
                                                         Plexa::IntfId ingIntf) {
    return Vanta::makeNode<PktGenCfgData>(req, pkt, ingPortInfo, ingIntf);
}

Vanta::Ptr<PktGenCfgData> pktGenCfgDataFactory(RequestId const& req, Vanta::Bytes const& pkt,
                                               VynSystem::PortInfo const& ingPortInfo,
                                               Plexa::IntfId ingIntf) {
    return PktGenCfgData::PktGenCfgDataIs(req, pkt, ingPortInfo, ingIntf);
}

// ---- PktGenStatusData

namespace {

template <class T>
bool same(T const& a, T const& b) {
    return a == b;
}
bool same(VynSystem::PortInfo const& a, VynSystem::PortInfo const& b) {
    return a.isEq(b);
}

}  // namespace

Vanta::Ptr<PktGenStatusData> PktGenStatusData::PktGenStatusDataIs(RequestId const& req) {
    return Vanta::makeNode<PktGenStatusData>(req);
}

Vanta::Ptr<PktGenStatusData> pktGenStatusDataFactory(RequestId const& req) {
    return PktGenStatusData::PktGenStatusDataIs(req);
}

template <class T>
void PktGenStatusData::set(T& stored, T const& value, Attribute attribute) {
    if (same(stored, value)) {
        return;
    }
    T const old = std::exchange(stored, value);
    publisher_.publish(attribute, {}, ValueRef::to(old));
}

void PktGenStatusData::pktIdIs(std::uint16_t pktId) {
    set(pktId_, pktId, pktIdAttribute);
}

void PktGenStatusData::readyIs(bool ready) {
    set(ready_, ready, readyAttribute);
}

void PktGenStatusData::egrPortInfoIs(VynSystem::PortInfo const& egrPortInfo) {
    set(egrPortInfo_, egrPortInfo, egrPortInfoAttribute);
}

void PktGenStatusData::egrL2DomainIs(std::uint16_t egrL2Domain) {
    set(egrL2Domain_, egrL2Domain, egrL2DomainAttribute);
}

void PktGenStatusData::copyToCpuIs(bool copyToCpu) {
    set(copyToCpu_, copyToCpu, copyToCpuAttribute);
}

void PktGenStatusData::routedIs(bool routed) {
    set(routed_, routed, routedAttribute);
}

void PktGenStatusData::droppedIs(bool dropped) {
    set(dropped_, dropped, droppedAttribute);
}

// ---- PktGenConfig

namespace {

std::string textOf(VynSystem::PortInfo const& info) {
    return std::to_string(info.pipe()) + "/" + std::to_string(info.port().value());
}

// A job is made once; whoever wants another one deletes it first.
void checkSameJob(PktGenCfgData const& stored, Vanta::Bytes const& pkt,
                  VynSystem::PortInfo const& ingPortInfo, Plexa::IntfId const& ingIntf) {
    constexpr std::string_view type = "PktGenCfgData";
    if (!(stored.pkt() == pkt)) {
        throw Kel::ReinstantiationError(type, "pkt", Vanta::hexText(stored.pkt().view()),
                                        Vanta::hexText(pkt.view()));
    }
    if (!stored.ingPortInfo().isEq(ingPortInfo)) {
        throw Kel::ReinstantiatingValueError(type, "ingPortInfo", textOf(stored.ingPortInfo()),
                                             textOf(ingPortInfo));
    }
    if (stored.ingIntf() != ingIntf) {
        throw Kel::ReinstantiatingValueError(type, "ingIntf", stored.ingIntf().stringValue(),
                                             ingIntf.stringValue());
    }
}

}  // namespace

Vanta::Ptr<PktGenConfig> PktGenConfig::PktGenConfigIs() {
    return Vanta::makeNode<PktGenConfig>();
}

Vanta::Ptr<PktGenConfig> pktGenConfigFactory() {
    return PktGenConfig::PktGenConfigIs();
}

PktGenConfig::~PktGenConfig() {
    cfgDelAll();
}

Vanta::Ptr<PktGenCfgData> PktGenConfig::cfgIs(RequestId const& req, Vanta::Bytes const& pkt,
                                              VynSystem::PortInfo const& ingPortInfo,
                                              Plexa::IntfId ingIntf) {
    if (auto const* entry = cfg_.find(req)) {
        checkSameJob(*entry->value, pkt, ingPortInfo, ingIntf);
        return entry->value;
    }
    auto const made = pktGenCfgDataFactory(req, pkt, ingPortInfo, ingIntf);
    cfg_.insert(req, made);
    publisher_.publish(cfgAttribute, ValueRef::to(made->req()));
    return made;
}

Vanta::Ptr<PktGenCfgData> PktGenConfig::cfgDel(RequestId const& req) {
    auto removed = cfg_.remove(req);
    if (!removed) {
        return nullptr;
    }
    // The caller's key may have been the entry's own, so the record's is published.
    publisher_.publish(cfgAttribute, ValueRef::to((*removed)->req()), ValueRef::to(*removed));
    return std::move(*removed);
}

void PktGenConfig::cfgDelAll() {
    for (auto const& entry : cfg_) {
        cfgDel(entry.key);
    }
}

// ---- PktGenStatus

Vanta::Ptr<PktGenStatus> PktGenStatus::PktGenStatusIs() {
    return Vanta::makeNode<PktGenStatus>();
}

Vanta::Ptr<PktGenStatus> pktGenStatusFactory() {
    return PktGenStatus::PktGenStatusIs();
}

PktGenStatus::~PktGenStatus() {
    statusDelAll();
}

Vanta::Ptr<PktGenStatusData> PktGenStatus::statusIs(RequestId const& req) {
    if (auto const* entry = status_.find(req)) {
        return entry->value;
    }
    auto const made = pktGenStatusDataFactory(req);
    status_.insert(req, made);
    publisher_.publish(statusAttribute, ValueRef::to(made->req()));
    return made;
}

Vanta::Ptr<PktGenStatusData> PktGenStatus::statusDel(RequestId const& req) {
    auto removed = status_.remove(req);
    if (!removed) {
        return nullptr;
    }
    publisher_.publish(statusAttribute, ValueRef::to((*removed)->req()), ValueRef::to(*removed));
    return std::move(*removed);
}

void PktGenStatus::statusDelAll() {
    for (auto const& entry : status_) {
        statusDel(entry.key);
    }
}

}  // namespace VynPacketTracer
