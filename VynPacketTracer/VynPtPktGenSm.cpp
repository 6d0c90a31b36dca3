#include "VynPacketTracer/VynPtPktGenSm.h"

#include <utility>

#include "Trace/Trace.h"
#include "Vanta/Assert.h"

namespace VynPacketTracer {

using PacketTracer::RequestId;

namespace {

Trace::Handle& trace = Trace::handle("VynPtPktGenSm");

constexpr std::uint32_t traceAppId = 4;
constexpr Orb::TaskPriority taskPriority = Orb::TaskPriority::p3;

}  // namespace

Vanta::Ptr<PktGenSm> PktGenSm::PktGenSmIs(
    Vanta::Ptr<PktGenConfig> const& config,
    Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf,
    Vanta::Ptr<PktGenStatus> const& status, std::uint32_t sessionHandle, VynId::VynDevId deviceId,
    bool pktTracerSupported, Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
    Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
    Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler) {
    return PktGenSmIs({config, phase0DataIntf, status, sessionHandle, deviceId, pktTracerSupported,
                       resourceInfoIntf, vyPdIntf, rootScheduler});
}

Vanta::Ptr<PktGenSm> PktGenSm::PktGenSmIs(Arguments args) {
    return Vanta::makeNode<PktGenSm>(std::move(args));
}

Vanta::Ptr<PktGenSm> pktGenSmFactory(
    Vanta::Ptr<PktGenConfig> const& config,
    Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf,
    Vanta::Ptr<PktGenStatus> const& status, std::uint32_t sessionHandle, VynId::VynDevId deviceId,
    bool pktTracerSupported, Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
    Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
    Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler) {
    return PktGenSm::PktGenSmIs(config, phase0DataIntf, status, sessionHandle, deviceId,
                                pktTracerSupported, resourceInfoIntf, vyPdIntf, rootScheduler);
}

PktGenSm::PktGenSm(Arguments args) : args_(std::move(args)) {
    Vanta::assertThat(args_.config != nullptr, "config != nullptr");
    Vanta::assertThat(args_.phase0DataIntf != nullptr, "phase0DataIntf != nullptr");
    Vanta::assertThat(args_.status != nullptr, "status != nullptr");
    Vanta::assertThat(args_.vyPdIntf != nullptr, "vyPdIntf != nullptr");
    Vanta::assertThat(args_.rootScheduler != nullptr, "rootScheduler != nullptr");
    connectReactors();
    try {
        handleInitialized();
    } catch (...) {
        // The chip must not call an engine whose construction failed.
        doCleanup();
        throw;
    }
}

PktGenSm::~PktGenSm() {
    hasNotificationActiveIs(false);
    kelDoZombieReactors(true);
    doCleanup();
    taskDel();
}

void PktGenSm::handleInitialized() {
    Trace::twinlog(trace, 7, "handleInitialized:");
    if (initialized_) {
        return;
    }
    initialized_ = true;
    pktId_ = 0;
    appId_ = traceAppId;
    taskName_ = "pktGenWorker";
    stateIs(PktGenState::idle);
    pktTracerDigestEntrySize_ = args_.vyPdIntf->digestEntrySize(digestName);
    learnQuantaIndex_ = VyResourceInfo::VyResourceInfoIndexInvalid;
    if (args_.pktTracerSupported) {
        initSocket();
        registerPktTracerDigest();
    }
    taskIs(args_.rootScheduler, taskPriority, taskName_);
    scheduleTask();
}

Vanta::Ptr<Orb::Task> PktGenSm::taskIs(Vanta::Ptr<Orb::TaskSchedulerRoot> const& scheduler,
                                       Orb::TaskPriority priority, Vanta::String const& name) {
    Vanta::assertThat(scheduler != nullptr, "scheduler != nullptr");
    if (task_) {
        task_->priorityIs(priority);
        if (task_->scheduler() == scheduler && task_->name() == name) {
            return task_;
        }
    }
    auto const replaced = taskDel();
    task_ = Orb::Task::TaskIs(scheduler, priority, name);
    connectTask();
    doWork();
    return task_;
}

Vanta::Ptr<Orb::Task> PktGenSm::taskDel() {
    taskSubscriber_.unsubscribe();
    if (task_) {
        task_->unschedule();
    }
    return std::exchange(task_, nullptr);
}

void PktGenSm::scheduleTask() {
    if (task_ && !task_->isScheduled()) {
        task_->schedule();
    }
}

// ---- The reactors

// Does not look at the old flag: a new engine reacts although nobody has switched it on.
void PktGenSm::hasNotificationActiveIs(bool on) {
    notificationActiveFlagIs(on);
    if (on) {
        connectReactors();
    } else {
        disconnectReactors();
    }
}

// Connects what has a source and is not connected.
void PktGenSm::connectReactors() {
    if (!configSubscriber_.subscribed()) {
        configSubscriber_.subscribe<&PktGenSm::jobChanged, PktGenConfig::cfgAttribute>(
            args_.config->publisher(), this);
    }
    if (!phase0Subscriber_.subscribed()) {
        phase0Subscriber_
            .subscribe<&PktGenSm::phase0Answered, VynSdk::Phase0DataIntf::responseAttribute>(
                args_.phase0DataIntf->publisher(), this);
    }
    connectTask();
    connectSocket();
}

void PktGenSm::connectTask() {
    if (task_ && !taskSubscriber_.subscribed()) {
        taskSubscriber_.subscribe<&PktGenSm::taskRuns, Orb::Task::runAttribute>(task_->publisher(),
                                                                                this);
    }
}

void PktGenSm::connectSocket() {
    if (rSocketIn_ && !socketSubscriber_.subscribed()) {
        socketSubscriber_
            .subscribe<&PktGenSm::digestReadable, Orb::FileDescriptor::readableAttribute>(
                rSocketIn_->publisher(), this);
    }
}

void PktGenSm::disconnectReactors() noexcept {
    configSubscriber_.unsubscribe();
    phase0Subscriber_.unsubscribe();
    taskSubscriber_.unsubscribe();
    socketSubscriber_.unsubscribe();
}

void PktGenSm::jobChanged(Vanta::Change const& change) {
    if (!isZombie()) {
        Reaction const alive(*this);
        handleConfig(change.key.get<RequestId>());
    }
}

void PktGenSm::phase0Answered(Vanta::Change const& change) {
    if (!isZombie()) {
        Reaction const alive(*this);
        processPhase0DataResponse(change.key.get<Plexa::IntfId>());
    }
}

void PktGenSm::taskRuns() {
    if (!isZombie()) {
        Reaction const alive(*this);
        doWork();
    }
}

void PktGenSm::digestReadable() {
    if (!isZombie()) {
        Reaction const alive(*this);
        processPktTracerDigest();
    }
}

// ---- Jobs

RequestId const& PktGenSm::curReq() const noexcept {
    static RequestId const none;
    return curCfg_ ? curCfg_->req() : none;
}

Vanta::Ptr<PktGenCfgData> const& PktGenSm::curJob() const noexcept {
    Vanta::assertThat(curCfg_ != nullptr, "curCfg != nullptr");
    return curCfg_;
}

void PktGenSm::handleConfig(RequestId const& requestId) {
    bool const present = args_.config->cfgHas(requestId);
    Trace::twinlog(trace, 7, "handleConfig:clientName:%s reqId:%s add:%s", requestId.clientName(),
                   requestId.number(), present);
    if (!present) {
        if (curCfg_ && curCfg_->req() == requestId && state_ != PktGenState::idle) {
            Trace::twinlog(trace, 2,
                           "handleConfig:removed config before it was done clientName:%s reqId:%s",
                           requestId.clientName(), requestId.number());
            stateIs(PktGenState::error);
        } else {
            args_.status->statusDel(requestId);
        }
    }
    scheduleTask();
}

void PktGenSm::doWork() {
    Trace::twinlog(trace, 7, "doWork:");
    if (!task_ || !task_->isRunning()) {
        Trace::twinlog(trace, 4, "doWork:PktGen task not running");
        return;
    }
    bool done = false;
    if (state_ != PktGenState::init) {
        while (!released() && task_ && !task_->shouldYield() && workOnState(done)) {
        }
    }
    if (!done && !released()) {
        scheduleTask();
    }
}

bool PktGenSm::workOnState(bool& done) {
    PktGenState const before = state_;
    switch (before) {
        case PktGenState::idle:
            done = processRequest();
            break;
        case PktGenState::phase0DataReady:
            sendPkt();
            break;
        case PktGenState::waitPktSent:
            checkPktCnt();
            break;
        case PktGenState::reset:
            disablePktGen();
            break;
        case PktGenState::error:
            // One attempt a run: a chip that keeps failing must not hold the thread.
            processError();
            return false;
        case PktGenState::init:
        case PktGenState::waitPhase0Data:
            return false;
    }
    return state_ != before;
}

bool PktGenSm::processRequest() {
    Trace::twinlog(trace, 7, "processRequest:");
    // The first of the jobs, in their order, that has no answer; found without a walk past the
    // others.
    auto const pending = args_.config->firstPending(*args_.status);
    if (!pending) {
        return true;
    }
    curCfg_ = pending;
    getPhase0Data();
    return false;
}

void PktGenSm::processError() {
    auto const job = curJob();
    Trace::twinlog(trace, 7, "processError:clientName:%s reqId:%s", job->req().clientName(),
                   job->req().number());
    args_.status->statusDel(job->req());
    if (!released()) {
        disablePktGen();
    }
}

}  // namespace VynPacketTracer
