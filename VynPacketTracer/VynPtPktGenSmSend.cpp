// The engine's road through the chip: phase-0 data, injection, counter check, switching off.
#include "Trace/Trace.h"
#include "VynPacketTracer/VynPtPktGenSm.h"
#include "VynSdk/VynSdk.h"

namespace VynPacketTracer {
namespace {

Trace::Handle& trace = Trace::handle("VynPtPktGenSm");

}  // namespace

void PktGenSm::getPhase0Data() {
    auto const job = curJob();
    Trace::twinlog(trace, 7, "getPhase0Data:clientName:%s reqId:%s", job->req().clientName(),
                   job->req().number());
    stateIs(PktGenState::waitPhase0Data);
    // The answer to an outdated request for the interface would be taken for this one's.
    args_.phase0DataIntf->configDel(job->ingIntf());
    if (!released()) {
        args_.phase0DataIntf->configIs(job->ingIntf());
    }
}

void PktGenSm::processPhase0DataResponse(Plexa::IntfId const& intfId) {
    Trace::twinlog(trace, 7, "processPhase0DataResponse:clientName:%s reqId:%s intfId:%s",
                   curReq().clientName(), curReq().number(), intfId);
    auto const* response = args_.phase0DataIntf->response().find(intfId);
    if (response == nullptr) {
        Trace::twinlog(trace, 7, "processPhase0DataResponse:deletion of phase0 for intfId:%s",
                       intfId);
    } else if (!curCfg_) {
        // Nothing was asked yet: there is no job that this answer could make ready.
    } else if (response->value.status == 0 || state_ == PktGenState::waitPhase0Data) {
        stateIs(PktGenState::phase0DataReady);
    } else {
        Trace::twinlog(trace, 1,
                       "processPhase0DataResponse:error retrieving phase0Data for intfId:%s "
                       "state:%s phase0Status:%s",
                       intfId, state_, response->value.status);
        args_.phase0DataIntf->configDel(curCfg_->ingIntf());
        stateIs(PktGenState::error);
    }
    scheduleTask();
}

p4_pd_status_t PktGenSm::getPktCounters(std::uint64_t& count) {
    p4_pd_status_t const rval =
        VynSdk::getPktCounters(args_.sessionHandle, args_.deviceId, curPipe(), appId_, count);
    if (rval != 0 && !released()) {
        Trace::twinlog(trace, 1, "getPktCounters:error retrieving pktGen counters for pipeId:%s",
                       curPipe());
    }
    return rval;
}

void PktGenSm::sendPkt() {
    auto const job = curJob();
    Trace::twinlog(trace, 7, "sendPkt:clientName:%s reqId:%s", job->req().clientName(),
                   job->req().number());
    inject(*job);
    args_.phase0DataIntf->configDel(job->ingIntf());
}

void PktGenSm::inject(PktGenCfgData const& job) {
    std::uint64_t count = 0;
    bool const counted = getPktCounters(count) == 0;
    if (released()) {
        return;
    }
    if (!counted) {
        stateIs(PktGenState::error);
        return;
    }
    ++pktId_;
    curPktCounter_ = count;
    Trace::twinlog(trace, 7, "sendPkt:pktCnt:%s", count);

    auto const* response = args_.phase0DataIntf->response().find(job.ingIntf());
    Vanta::Bytes const phase0Data = response != nullptr ? response->value.data : Vanta::Bytes();
    auto const portIndex = static_cast<std::uint8_t>(job.ingPortInfo().port().value());
    p4_pd_status_t const rval =
        VynSdk::genOnePkt(args_.sessionHandle, args_.deviceId, curPipe(), genPort, portIndex,
                          appId_, job.pkt().view(), phase0Data.view(), pktId_);
    if (released()) {
        return;
    }
    if (rval != 0) {
        stateIs(PktGenState::error);
        Trace::twinlog(trace, 1, "sendPkt:Error sending pkt clientName:%s reqId:%s",
                       job.req().clientName(), job.req().number());
        return;
    }
    if (args_.config->cfgHas(job.req())) {
        auto const answer = args_.status->statusIs(job.req());
        if (!released()) {
            answer->pktIdIs(pktId_);
        }
    }
    if (!released()) {
        stateIs(PktGenState::waitPktSent);
    }
}

void PktGenSm::checkPktCnt() {
    auto const job = curJob();
    PacketTracer::RequestId const& req = job->req();
    Trace::twinlog(trace, 7, "checkPktCnt:clientName:%s reqId:%s", req.clientName(), req.number());
    std::uint64_t count = 0;
    bool const counted = getPktCounters(count) == 0;
    if (released()) {
        return;
    }
    if (counted && count != curPktCounter_) {
        Trace::twinlog(trace, 9, "checkPktCnt:Sent pkt for clientName:%s reqId:%s cnt:%s curCnt:%s",
                       req.clientName(), req.number(), count, curPktCounter_);
        if (!args_.pktTracerSupported && args_.config->cfgHas(req)) {
            // No digest will ever come, so this is the answer.
            auto const answer = args_.status->statusIs(req);
            if (!released()) {
                answer->readyIs(true);
            }
        }
        if (!released()) {
            stateIs(PktGenState::reset);
        }
    } else if (!args_.config->cfgHas(req)) {
        Trace::twinlog(trace, 9,
                       "checkPktCnt:Client %sdel cfg while waiting for pktCnt reqId:%s cnt:%s",
                       req.clientName(), req.number(), count);
        stateIs(PktGenState::error);
    } else {
        Trace::twinlog(trace, 9,
                       "checkPktCnt:Waiting on Sent pkt for clientName:%s reqId:%s cnt:%s",
                       req.clientName(), req.number(), count);
    }
}

void PktGenSm::disablePktGen() {
    p4_pd_status_t const app =
        VynSdk::disableAppId(args_.sessionHandle, args_.deviceId, curPipe(), appId_);
    if (released()) {
        return;
    }
    if (app != 0) {
        Trace::twinlog(trace, 1, "disablePktGen:Error disabling appId for pipe:%s deviceId:%s",
                       curPipe(), args_.deviceId);
        stateIs(PktGenState::error);
        return;
    }
    p4_pd_status_t const generator =
        VynSdk::disablePktGen(args_.sessionHandle, args_.deviceId, curPipe(), genPort);
    if (released()) {
        return;
    }
    if (generator != 0) {
        Trace::twinlog(trace, 1, "disablePktGen:Error disabling pktGen for pipe:%s deviceId",
                       curPipe());
        stateIs(PktGenState::error);
        return;
    }
    stateIs(PktGenState::idle);
}

}  // namespace VynPacketTracer
