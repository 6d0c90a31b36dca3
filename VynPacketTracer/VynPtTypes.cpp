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
    if (pktId_ == pktId) {
        return;
    }
    std::uint16_t const old = std::exchange(pktId_, pktId);
    if (collection_ != nullptr) {
        collection_->pktIds_.del(*this, old);
        collection_->pktIds_.add(*this, pktId);
    }
    publisher_.publish(pktIdAttribute, {}, ValueRef::to(old));
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

std::string textOf(RequestId const& req) {
    std::string text = "request " + std::to_string(req.number()) + " of client ";
    return text.append(req.clientName().view());
}

std::string textOf(VynSystem::PortInfo const& info) {
    return std::to_string(info.pipe()) + "/" + std::to_string(info.port().value());
}

// A job is made once; to get another one, delete it first.
void checkSameJob(PktGenCfgData const& stored, Vanta::Bytes const& pkt,
                  VynSystem::PortInfo const& ingPortInfo, Plexa::IntfId const& ingIntf) {
    Kel::TypeInfo const& type = stored.typeInfo();
    if (!(stored.pkt() == pkt)) {
        throw Kel::ReinstantiationError(type, "pkt", textOf(stored.req()),
                                        Vanta::hexText(stored.pkt().view()),
                                        Vanta::hexText(pkt.view()));
    }
    if (!stored.ingPortInfo().isEq(ingPortInfo)) {
        throw Kel::ReinstantiatingValueError(type, "ingPortInfo", textOf(stored.req()),
                                             textOf(stored.ingPortInfo()), textOf(ingPortInfo));
    }
    if (stored.ingIntf() != ingIntf) {
        throw Kel::ReinstantiatingValueError(type, "ingIntf", textOf(stored.req()),
                                             stored.ingIntf().stringValue(), ingIntf.stringValue());
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
    answersAre(nullptr);
}

Vanta::Ptr<PktGenCfgData> PktGenConfig::cfgIs(RequestId const& req, Vanta::Bytes const& pkt,
                                              VynSystem::PortInfo const& ingPortInfo,
                                              Plexa::IntfId ingIntf) {
    HashedId const hashed(req);
    if (auto const* entry = cfg_.find(hashed)) {
        checkSameJob(*entry->value, pkt, ingPortInfo, ingIntf);
        return entry->value;
    }
    auto const made = pktGenCfgDataFactory(req, pkt, ingPortInfo, ingIntf);
    made->order = cfg_.insertHashed(hashed, made).order;
    if (answers_ != nullptr && answers_->status_.find(hashed) == nullptr) {
        pending_.freshIs(*made);
    }
    publisher_.publish(cfgAttribute, ValueRef::to(made->req()));
    return made;
}

Vanta::Ptr<PktGenCfgData> PktGenConfig::cfgDel(RequestId const& req) {
    auto removed = cfg_.remove(req);
    if (!removed) {
        return nullptr;
    }
    pending_.del(**removed);
    // The caller's key may have been the entry's own, so the record's is published.
    publisher_.publish(cfgAttribute, ValueRef::to((*removed)->req()), ValueRef::to(*removed));
    return std::move(*removed);
}

void PktGenConfig::cfgDelAll() {
    cfg_.eachKeyUntilLast([this](RequestId const& req) { cfgDel(req); });
}

// ---- The pending jobs

Vanta::Ptr<PktGenCfgData> PktGenConfig::firstPending(PktGenStatus& status) {
    if (answers_ != &status) {
        answersAre(&status);
    }
    return Vanta::Ptr<PktGenCfgData>(static_cast<PktGenCfgData*>(pending_.first()));
}

void PktGenConfig::answersAre(PktGenStatus* status) noexcept {
    if (answers_ != nullptr) {
        answers_->jobs_ = nullptr;
    }
    if (status != nullptr && status->jobs_ != nullptr) {
        status->jobs_->answersAre(nullptr);
    }
    answers_ = status;
    pending_ = PendingJobs();
    if (status != nullptr) {
        status->jobs_ = this;
    }
    for (auto const& entry : cfg_) {
        PktGenCfgData& job = *entry.value;
        job.where = PendingLink::Where::nowhere;
        if (status != nullptr && !status->statusHas(entry.key)) {
            pending_.freshIs(job);
        }
    }
}

// Mostly it is the answer of the job that comes first, which the engine has just begun with.
void PktGenConfig::answerCame(HashedId const& req) noexcept {
    auto* const first = static_cast<PktGenCfgData*>(pending_.first());
    if (first == nullptr) {
        return;
    }
    if (first->req() == req.key()) {
        pending_.del(*first);
    } else if (auto const* entry = cfg_.find(req)) {
        pending_.del(*entry->value);
    }
}

void PktGenConfig::answerWent(HashedId const& req) noexcept {
    if (auto const* entry = cfg_.find(req)) {
        pending_.returnedIs(*entry->value);
    }
}

// ---- PktGenStatus

Vanta::Ptr<PktGenStatus> PktGenStatus::PktGenStatusIs() {
    return Vanta::makeNode<PktGenStatus>();
}

Vanta::Ptr<PktGenStatus> pktGenStatusFactory() {
    return PktGenStatus::PktGenStatusIs();
}

// Until the last removal is published, a subscriber that hears of one may ask for the next pending
// job.
PktGenStatus::~PktGenStatus() {
    statusDelAll();
    if (jobs_ != nullptr) {
        jobs_->answersAre(nullptr);
    }
    // Entries that were added meanwhile are removed without a publication, but may outlive the
    // collection.
    for (auto const& entry : status_) {
        entry.value->collection_ = nullptr;
    }
}

Vanta::Ptr<PktGenStatusData> PktGenStatus::statusIs(RequestId const& req) {
    HashedId const hashed(req);
    if (auto const* entry = status_.find(hashed)) {
        return entry->value;
    }
    pktIds_.makeTable();
    auto const made = pktGenStatusDataFactory(req);
    made->order = status_.insertHashed(hashed, made).order;
    made->collection_ = this;
    pktIds_.add(*made, made->pktId());
    if (jobs_ != nullptr) {
        jobs_->answerCame(hashed);
    }
    publisher_.publish(statusAttribute, ValueRef::to(made->req()));
    return made;
}

Vanta::Ptr<PktGenStatusData> PktGenStatus::statusDel(RequestId const& req) {
    HashedId const hashed(req);
    auto removed = status_.remove(hashed);
    if (!removed) {
        return nullptr;
    }
    PktGenStatusData& entry = **removed;
    entry.collection_ = nullptr;
    pktIds_.del(entry, entry.pktId());
    if (jobs_ != nullptr) {
        jobs_->answerWent({entry.req(), hashed});
    }
    publisher_.publish(statusAttribute, ValueRef::to(entry.req()), ValueRef::to(*removed));
    return std::move(*removed);
}

Vanta::Ptr<PktGenStatusData> PktGenStatus::PktIdWalk::next() {
    bool const inPlace =
        current_ && current_->collection_ == &status_ && current_->pktId() == pktId_;
    PktIdLink* const found = inPlace ? static_cast<PktIdLink*>(current_.get())->next
                                     : status_.pktIds_.firstAfter(pktId_, order_);
    current_ = Vanta::Ptr<PktGenStatusData>(static_cast<PktGenStatusData*>(found));
    if (current_) {
        order_ = current_->order;
    }
    return current_;
}

void PktGenStatus::statusDelAll() {
    status_.eachKeyUntilLast([this](RequestId const& req) { statusDel(req); });
}

}  // namespace VynPacketTracer
