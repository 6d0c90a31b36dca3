// The packet-generator engine: it turns jobs (PktGenConfig) into answers (PktGenStatus), one at a
// time, on its own cooperative task.
//
//   state             entered by                what the task does   ways out
//   init              constructor               waits                idle
//   idle              set-up, disablePktGen     processRequest       waitPhase0Data
//   waitPhase0Data    getPhase0Data             waits                phase0DataReady
//   phase0DataReady   a phase-0 answer          sendPkt              waitPktSent, error
//   waitPktSent       sendPkt                   checkPktCnt          reset, error
//   reset             checkPktCnt               disablePktGen        idle, error
//   error             a failed step             processError         idle
//
// These come in any state, as soon as there has been a job:
//
//   what comes                            next state        except
//   a phase-0 answer of status 0          phase0DataReady
//   a phase-0 answer of another status    error             phase0DataReady from waitPhase0Data
//   the withdrawal of the job in work     error             idle stays, and the answer is deleted
//
// No wait has a limit and a job that failed is tried again for as long as it exists. The trace
// digest is handled whatever the state: it completes the answer that carries its packet id,
// whenever it comes.
//
// An engine that is released inside its own run (nobody but its dispatchers holds it any more)
// stops there: it calls the chip no more, asks for no phase-0 data, and changes, schedules and
// traces nothing. What it still does is to withdraw the phase-0 request of a job that it was
// sending. Its other reactors finish what they do. An engine that somebody else holds goes on.
//
// Threads: the event thread, except for rcvPktTracerLearningDigest, which runs on the SDK's thread
// and reads only what does not change after its registration.
#pragma once

#include <cstdint>

#include "Kel/Object.h"
#include "Orb/FileDescriptor.h"
#include "Orb/Task.h"
#include "Orb/TaskSchedulerRoot.h"
#include "PacketTracer/RequestId.h"
#include "PipeMgr/PipeMgr.h"
#include "Vanta/Publisher.h"
#include "VyPd/VyPdIntf.h"
#include "VyResourceInfo/VyResourceInfoIntf.h"
#include "VynExport.h"
#include "VynId/VynDevId.h"
#include "VynPacketTracer/VynPtTypes.h"
#include "VynSdk/Phase0DataIntf.h"

namespace VynPacketTracer {

// The SDK's callback for the trace digest: relays one learn message to the event thread through the
// engine's socket pair, with one send, and acknowledges it also when the send failed. The cookie is
// the engine. Returns the acknowledgement's status. Preconditions: neither message nor cookie is
// null, and the engine has its digest registered. Thread: the SDK's.
VYN_EXPORT p4_pd_status_t rcvPktTracerLearningDigest(p4_pd_sess_hdl_t session,
                                                     pipe_flow_lrn_msg_t* message, void* cookie);

class VYN_EXPORT PktGenSm final : public Kel::Object {
  public:
    // What the trace digest is called in the data-plane program.
    static constexpr std::string_view digestName = "pktTracerDigest";
    // The generator's port, in every call.
    static constexpr std::uint32_t genPort = 68;
    // The most bytes of entries that one message may have.
    static constexpr std::uint32_t digestBufferSize = 4096;

    // What an engine is made of.
    struct Arguments {
        Vanta::Ptr<PktGenConfig> config;
        Vanta::Ptr<VynSdk::Phase0DataIntf> phase0DataIntf;
        Vanta::Ptr<PktGenStatus> status;
        std::uint32_t sessionHandle;
        VynId::VynDevId deviceId;
        bool pktTracerSupported;
        Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> resourceInfoIntf;
        Vanta::Ptr<VyPd::VyPdIntf> vyPdIntf;
        Vanta::Ptr<Orb::TaskSchedulerRoot> rootScheduler;

        // Objects are compared by identity.
        bool operator==(Arguments const&) const = default;
    };

    // A running engine. Without `pktTracerSupported` it has no digest channel. Ends the process if
    // the socket pair cannot be made or the digest cannot be registered. Errors: std::bad_alloc,
    // and what the layout or the resources raise; nothing is then left behind.
    // Preconditions: no argument is null but `resourceInfoIntf`, which only the digest channel
    // asks.
    static Vanta::Ptr<PktGenSm> PktGenSmIs(
        Vanta::Ptr<PktGenConfig> const& config,
        Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf,
        Vanta::Ptr<PktGenStatus> const& status, std::uint32_t sessionHandle,
        VynId::VynDevId deviceId, bool pktTracerSupported,
        Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
        Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
        Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler);
    static Vanta::Ptr<PktGenSm> PktGenSmIs(Arguments args);

    // Connects (true) or disconnects all four reactors: jobs, phase-0 answers, task, digest socket.
    // A new engine is connected. Connecting does not catch up with what was missed: a job that came
    // waits for a run that something else schedules, a withdrawn one keeps its answer, a phase-0
    // answer that was awaited stays awaited, and a run that was due is lost. Only digests are kept,
    // in the socket.
    void hasNotificationActiveIs(bool on);

    // Marks the engine as torn down (true) or not: torn down, its reactors ignore what they hear.
    void kelDoZombieReactors(bool on) noexcept { zombieFlagIs(on); }

    // ---- The reactors

    // The job of a request came, or went. Deletes the answer of one that went, unless the job is in
    // work, which is an error. Schedules the task.
    void handleConfig(PacketTracer::RequestId const& requestId);
    // The phase-0 answer for an interface came, or went. Schedules the task.
    void processPhase0DataResponse(Plexa::IntfId const& intfId);
    // Reads one message of the digest socket and completes the answers of its entries. Ends the
    // process at a field that has another width than it must have, or that does not lie inside its
    // entry. Entries of no bytes are passed over. Precondition: there is a socket pair.
    void processPktTracerDigest();
    // One run of the task: takes steps until one changes no state or the task should yield, and
    // schedules the task unless there is nothing to do. Outside of a run it does nothing.
    void doWork();

    // ---- The steps of one job

    // Begins the first job without an answer; true when there is none.
    bool processRequest();

    // Precondition of each of these: there has been a job, `curCfg`.
    //
    // Asks for the phase-0 data of the job's interface.
    void getPhase0Data();
    // Reads the generator's counter in the job's pipe. Returns the chip's status, 0 on success.
    p4_pd_status_t getPktCounters(std::uint64_t& count);
    // Injects the job's packet, makes its answer, and withdraws the phase-0 request.
    void sendPkt();
    // Looks whether the counter has moved since the injection.
    void checkPktCnt();
    // Switches the generator off.
    void disablePktGen();
    // Deletes the job's answer and switches the generator off.
    void processError();

    // ---- Set-up and clean-up. The constructor and the destructor do all of it. What is made here or
    // by taskIs() is connected to its reactor, also while notifications are switched off.

    // Sets the engine up, once: a second call only traces that it was made.
    void handleInitialized();
    // Makes the digest's socket pair; an engine that has one keeps it. Ends the process if the
    // system refuses. Errors: std::bad_alloc, std::system_error; there is no socket pair then.
    void initSocket();
    // Has the chip call rcvPktTracerLearningDigest with the trace digest; a digest that is
    // registered stays so. Ends the process if the program does not have the digest or the chip
    // refuses. Preconditions: `resourceInfoIntf` is not null; there is a socket pair.
    void registerPktTracerDigest();
    // Ends the digest's registration; nothing happens if there is none.
    void deRegisterPktTracerDigest();
    // Ends the digest's registration, then closes both ends of the socket pair. A second call does
    // nothing. initSocket() and registerPktTracerDigest() make a new channel.
    void doCleanup() noexcept;

    // ---- The task

    // The task of this scheduler and name, with this priority. An existing task is kept, and gets
    // the priority, if it has this scheduler and this name. Otherwise a new one takes its place,
    // and doWork() is called, which outside of a run only traces that. A replaced task is
    // unscheduled and calls nobody any more. Precondition: the scheduler is not null. Errors:
    // std::bad_alloc; there is no task then.
    Vanta::Ptr<Orb::Task> taskIs(Vanta::Ptr<Orb::TaskSchedulerRoot> const& scheduler,
                                 Orb::TaskPriority priority, Vanta::String const& name);
    // Takes the task out, unscheduled, and returns it, or null; the engine then does no work.
    Vanta::Ptr<Orb::Task> taskDel();

    // ---- What it was made of, and how it stands

    Arguments const& arguments() const noexcept { return args_; }
    Vanta::Ptr<PktGenConfig> const& config() const noexcept { return args_.config; }
    Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf() const noexcept {
        return args_.phase0DataIntf;
    }
    Vanta::Ptr<PktGenStatus> const& status() const noexcept { return args_.status; }
    std::uint32_t sessionHandle() const noexcept { return args_.sessionHandle; }
    VynId::VynDevId deviceId() const noexcept { return args_.deviceId; }
    bool pktTracerSupported() const noexcept { return args_.pktTracerSupported; }
    Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf() const noexcept {
        return args_.resourceInfoIntf;
    }
    Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf() const noexcept { return args_.vyPdIntf; }
    Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler() const noexcept {
        return args_.rootScheduler;
    }
    Vanta::Ptr<Orb::Task> const& task() const noexcept { return task_; }
    Vanta::String const& taskName() const noexcept { return taskName_; }
    PktGenState state() const noexcept { return state_; }
    // The id of the last injected packet; it goes up by one before each injection and wraps.
    std::uint16_t pktId() const noexcept { return pktId_; }
    std::uint32_t appId() const noexcept { return appId_; }
    // The job in work, or the last one; null before the first.
    Vanta::Ptr<PktGenCfgData> const& curCfg() const noexcept { return curCfg_; }
    std::uint64_t curPktCounter() const noexcept { return curPktCounter_; }
    int socketPairWriteDesc() const noexcept { return socketPairWriteDesc_; }
    Vanta::Ptr<Orb::FileDescriptor> const& socketPairReadFileDesc() const noexcept {
        return socketPairReadFileDesc_;
    }
    Vanta::Ptr<Orb::FileDescriptor const> const& rSocketIn() const noexcept { return rSocketIn_; }
    // 0 until the set-up makes it VyResourceInfoIndexInvalid; a valid index as soon as the digest
    // is registered.
    std::uint32_t learnQuantaIndex() const noexcept { return learnQuantaIndex_; }
    std::uint32_t pktTracerDigestEntrySize() const noexcept { return pktTracerDigestEntrySize_; }
    bool initialized() const noexcept { return initialized_; }

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    friend p4_pd_status_t rcvPktTracerLearningDigest(p4_pd_sess_hdl_t session,
                                                     pipe_flow_lrn_msg_t* message, void* cookie);

    explicit PktGenSm(Arguments args);
    ~PktGenSm() override;

    void connectReactors();
    void connectTask();
    void connectSocket();
    void disconnectReactors() noexcept;
    void jobChanged(Vanta::Change const& change);
    void phase0Answered(Vanta::Change const& change);
    void taskRuns();
    void digestReadable();

    // A dispatcher under way: it keeps the engine alive, since a subscriber that hears of an answer
    // may release the tracer.
    class Reaction {
      public:
        explicit Reaction(PktGenSm& engine) noexcept : engine_(&engine) { ++engine.reactions_; }
        Reaction(Reaction const&) = delete;
        Reaction& operator=(Reaction const&) = delete;
        ~Reaction() { --engine_->reactions_; }

      private:
        Vanta::Ptr<PktGenSm> const engine_;
    };
    // Whether only the dispatchers under way hold the engine. The task's steps ask this after every
    // call that leaves the engine; outside of a dispatcher the caller holds the engine.
    bool released() const noexcept { return refCount() == reactions_; }

    void stateIs(PktGenState state) noexcept { state_ = state; }
    void scheduleTask();
    // One step of the state that the engine is in; false when the task is to leave its loop.
    bool workOnState(bool& done);
    // Reads the counter, injects the packet of the job and makes its answer.
    void inject(PktGenCfgData const& job);
    // The request of the job in work; before the first one an empty id.
    PacketTracer::RequestId const& curReq() const noexcept;
    // The job in work. Precondition: there is one.
    Vanta::Ptr<PktGenCfgData> const& curJob() const noexcept;
    std::uint32_t curPipe() const noexcept { return curJob()->ingPortInfo().pipe(); }
    bool hasSocket() const noexcept;

    struct DigestBytes;
    struct DigestValues;
    void processDigestEntry(DigestBytes const& bytes);
    DigestValues readDigestEntry(DigestBytes const& bytes) const;
    void completeStatus(PktGenStatusData& status, DigestValues const& digest);
    template <class Unsigned>
    Unsigned digestField(DigestBytes const& bytes, std::string_view field,
                         std::string_view shortName) const;

    Arguments const args_;
    Vanta::Ptr<Orb::Task> task_;
    Vanta::String taskName_;
    PktGenState state_ = PktGenState::init;
    std::uint16_t pktId_ = 0;
    std::uint32_t appId_ = 0;
    Vanta::Ptr<PktGenCfgData> curCfg_;
    std::uint64_t curPktCounter_ = 0;
    int socketPairWriteDesc_ = 0;  // 0 is none
    Vanta::Ptr<Orb::FileDescriptor> socketPairReadFileDesc_;
    Vanta::Ptr<Orb::FileDescriptor const> rSocketIn_;
    std::uint32_t learnQuantaIndex_ = 0;
    std::uint32_t digestHandle_ = 0;
    std::uint32_t pktTracerDigestEntrySize_ = 0;
    bool initialized_ = false;
    bool digestRegistered_ = false;
    std::uint32_t reactions_ = 0;  // dispatchers under way

    Vanta::Subscriber configSubscriber_;
    Vanta::Subscriber phase0Subscriber_;
    Vanta::Subscriber taskSubscriber_;
    Vanta::Subscriber socketSubscriber_;
};

// The same as PktGenSm::PktGenSmIs.
VYN_EXPORT Vanta::Ptr<PktGenSm> pktGenSmFactory(
    Vanta::Ptr<PktGenConfig> const& config,
    Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf,
    Vanta::Ptr<PktGenStatus> const& status, std::uint32_t sessionHandle, VynId::VynDevId deviceId,
    bool pktTracerSupported, Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
    Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
    Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler);

}  // namespace VynPacketTracer
