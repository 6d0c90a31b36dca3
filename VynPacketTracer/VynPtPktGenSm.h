// The packet-generator engine: it turns jobs (PktGenConfig) into answers (PktGenStatus), one at a
// time, on its own cooperative task.
//
//   state             entered by                  what the task does   ways out
//   init              constructor                 waits                idle
//   idle              set-up, disablePktGen       processRequest       waitPhase0Data
//   waitPhase0Data    getPhase0Data               waits                phase0DataReady, error
//   phase0DataReady   processPhase0DataResponse   sendPkt              waitPktSent, error
//   waitPktSent       sendPkt                     checkPktCnt          reset, error
//   reset             checkPktCnt                 disablePktGen        idle, error
//   error             a failed step               processError         idle
//
// handleConfig forces any state but idle to error when the job in work is withdrawn, and a phase-0
// answer with status 0 forces any state to phase0DataReady. No wait has a limit and a job that
// failed is tried again for as long as it exists. The trace digest is handled whatever the state:
// it completes the answer that carries its packet id, whenever it comes.
//
// An engine that is released inside its own run (nobody but its dispatchers holds it any more) stops
// there: it calls the chip no more, asks for no phase-0 data, and changes, schedules and traces
// nothing. What it still does is to withdraw the phase-0 request of a job that it was sending. Its
// other reactors finish what they do. An engine that somebody else holds goes on.
//
// Threads: the event thread, but for rcvPktTracerLearningDigest, which runs on the SDK's thread and
// reads nothing but what was fixed before it was registered.
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
// the engine. Returns the acknowledgement's status. Thread: the SDK's.
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

    // A running engine. Without `pktTracerSupported` it has no digest channel. Ends the process if
    // the socket pair cannot be made or the digest cannot be registered.
    static Vanta::Ptr<PktGenSm> PktGenSmIs(
        Vanta::Ptr<PktGenConfig> const& config,
        Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf,
        Vanta::Ptr<PktGenStatus> const& status, std::uint32_t sessionHandle,
        VynId::VynDevId deviceId, bool pktTracerSupported,
        Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
        Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
        Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler);

    // Connects (true) or disconnects all four reactors: jobs, phase-0 answers, task, digest socket.
    void hasNotificationActiveIs(bool on);

    // Marks the engine as torn down (true) or not: torn down, its reactors ignore what they hear.
    void kelDoZombieReactors(bool on) noexcept { zombieFlagIs(on); }

    // Reactors.
    void handleConfig(PacketTracer::RequestId const& requestId);
    // Reads one message of the digest socket and completes the answers of its entries. Ends the
    // process at a field that has another width than it must have, or that does not lie inside its
    // entry. Entries of no bytes are passed over.
    void processPktTracerDigest();
    void processPhase0DataResponse(Plexa::IntfId const& intfId);
    void doWork();

    // The steps of one job. processRequest() is true when there is nothing to do.
    bool processRequest();
    void getPhase0Data();
    p4_pd_status_t getPktCounters(std::uint64_t& count);
    void sendPkt();
    void checkPktCnt();
    void disablePktGen();
    void processError();

    // The task of this scheduler and name, with this priority, made (and worked once) if the one
    // that is there is another. A replaced task is unscheduled and calls no one any more.
    Vanta::Ptr<Orb::Task> taskIs(Vanta::Ptr<Orb::TaskSchedulerRoot> const& scheduler,
                                 Orb::TaskPriority priority, Vanta::String const& name);
    // Takes the task out, unscheduled; the engine then does no work.
    Vanta::Ptr<Orb::Task> taskDel();

    Vanta::Ptr<PktGenConfig> const& config() const noexcept { return config_; }
    Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf() const noexcept {
        return phase0DataIntf_;
    }
    Vanta::Ptr<PktGenStatus> const& status() const noexcept { return status_; }
    std::uint32_t sessionHandle() const noexcept { return sessionHandle_; }
    VynId::VynDevId deviceId() const noexcept { return deviceId_; }
    bool pktTracerSupported() const noexcept { return pktTracerSupported_; }
    Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf() const noexcept {
        return resourceInfoIntf_;
    }
    Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf() const noexcept { return vyPdIntf_; }
    Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler() const noexcept {
        return rootScheduler_;
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
    std::uint32_t learnQuantaIndex() const noexcept { return learnQuantaIndex_; }
    std::uint32_t pktTracerDigestEntrySize() const noexcept { return pktTracerDigestEntrySize_; }
    bool initialized() const noexcept { return initialized_; }

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    friend p4_pd_status_t rcvPktTracerLearningDigest(p4_pd_sess_hdl_t session,
                                                     pipe_flow_lrn_msg_t* message, void* cookie);

    PktGenSm(Vanta::Ptr<PktGenConfig> const& config,
             Vanta::Ptr<VynSdk::Phase0DataIntf> const& phase0DataIntf,
             Vanta::Ptr<PktGenStatus> const& status, std::uint32_t sessionHandle,
             VynId::VynDevId deviceId, bool pktTracerSupported,
             Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const& resourceInfoIntf,
             Vanta::Ptr<VyPd::VyPdIntf> const& vyPdIntf,
             Vanta::Ptr<Orb::TaskSchedulerRoot> const& rootScheduler);
    ~PktGenSm() override;

    void handleInitialized();
    void initSocket();
    void doCleanup() noexcept;
    void registerPktTracerDigest();
    void deRegisterPktTracerDigest();

    void connectReactors();
    void connectTask();
    void disconnectReactors() noexcept;
    void jobChanged(Vanta::Change const& change);
    void phase0Answered(Vanta::Change const& change);
    void taskRuns();
    void digestReadable();

    // A dispatcher under way: it keeps the engine alive, since whoever hears of an answer may let the
    // tracer go.
    class Reaction {
      public:
        explicit Reaction(PktGenSm& engine) noexcept : engine_(&engine) { ++engine.reactions_; }
        Reaction(Reaction const&) = delete;
        Reaction& operator=(Reaction const&) = delete;
        ~Reaction() { --engine_->reactions_; }

      private:
        Vanta::Ptr<PktGenSm> const engine_;
    };
    // Whether nobody but the dispatchers under way holds the engine. The task's steps ask after
    // every call that leaves the engine; outside of a dispatcher its caller holds it.
    bool released() const noexcept { return refCount() == reactions_; }

    void stateIs(PktGenState state) noexcept { state_ = state; }
    void scheduleTask();
    // One step of the state that the engine is in; false when the task is to leave its loop.
    bool workOnState(bool& done);
    // Reads the counter, injects the packet of the job and makes its answer.
    void inject(PktGenCfgData const& job);
    // The request of the job in work; before the first one an empty id.
    PacketTracer::RequestId const& curReq() const noexcept;
    std::uint32_t curPipe() const noexcept { return curCfg_->ingPortInfo().pipe(); }

    struct DigestBytes;
    struct DigestEntry;
    void processDigestEntry(DigestBytes const& bytes);
    DigestEntry readDigestEntry(DigestBytes const& bytes) const;
    void completeStatus(PktGenStatusData& status, DigestEntry const& digest);
    template <class Unsigned>
    Unsigned digestField(DigestBytes const& bytes, std::string_view field,
                         std::string_view shortName) const;

    Vanta::Ptr<PktGenConfig> const config_;
    Vanta::Ptr<VynSdk::Phase0DataIntf> const phase0DataIntf_;
    Vanta::Ptr<PktGenStatus> const status_;
    std::uint32_t const sessionHandle_;
    VynId::VynDevId const deviceId_;
    bool const pktTracerSupported_;
    Vanta::Ptr<VyResourceInfo::VyResourceInfoIntf> const resourceInfoIntf_;
    Vanta::Ptr<VyPd::VyPdIntf> const vyPdIntf_;
    Vanta::Ptr<Orb::TaskSchedulerRoot> const rootScheduler_;
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
