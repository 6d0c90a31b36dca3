// The records through which clients and engine talk: the jobs and the answers.
//
// The client state machines and the engine never call each other. A client state machine writes a
// PktGenCfgData into PktGenConfig for every request that it wants traced; the engine writes what
// became of it into a PktGenStatusData in PktGenStatus. Both collections are keyed by request.
//
// Thread: the event thread, for everything here.
#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>

#include "Kel/Collection.h"
#include "Kel/Object.h"
#include "PacketTracer/RequestId.h"
#include "Plexa/IntfId.h"
#include "Trace/Value.h"
#include "Vanta/Bytes.h"
#include "Vanta/CharRange.h"
#include "Vanta/Publisher.h"
#include "VynExport.h"
#include "VynPacketTracer/VynPtTypesIndex.h"
#include "VynSystem/PortInfo.h"

namespace VynPacketTracer {

// The engine's states. Names and numbers are fixed.
enum class PktGenState : std::uint8_t {
    init = 0,             // constructed, not yet running
    idle = 1,             // no request in work
    waitPhase0Data = 2,   // phase-0 data of the ingress port requested
    phase0DataReady = 3,  // phase-0 data received
    waitPktSent = 4,      // packet injected, its counter not yet seen to move
    reset = 5,            // packet confirmed sent, generator to be disabled
    error = 6,            // the current request failed
};

// The state of a number or a name. Errors: Kel::RangeError if there is none.
VYN_EXPORT PktGenState PktGenStateInstance(unsigned number);
VYN_EXPORT PktGenState PktGenStateInstance(Vanta::String const& name);

// The state's name.
VYN_EXPORT Vanta::String stringValue(PktGenState state);

// Takes a whole state name (followed by the range's end or by neither letter nor digit) from the
// front of the range. False, with the range and the state left alone, if there is none.
// Precondition: `state` is not null.
VYN_EXPORT bool sequenceToValue(Vanta::CharRange& range, PktGenState* state);

VYN_EXPORT std::ostream& operator<<(std::ostream& out, PktGenState const& state);
VYN_EXPORT Trace::Value traceValue(PktGenState state) noexcept;
VYN_EXPORT void reflectValue(Kel::AttributeSink& sink, PktGenState state);

class PktGenConfig;
class PktGenStatus;

using HashedId = Kel::HashedKey<PacketTracer::RequestId>;

// One job of the engine. It never changes and publishes nothing.
class VYN_EXPORT PktGenCfgData final : public Kel::Object, private PendingLink {
  public:
    static Vanta::Ptr<PktGenCfgData> PktGenCfgDataIs(PacketTracer::RequestId const& req,
                                                     Vanta::Bytes const& pkt,
                                                     VynSystem::PortInfo const& ingPortInfo,
                                                     Plexa::IntfId ingIntf);

    // The request; the key in PktGenConfig.
    PacketTracer::RequestId const& req() const noexcept { return req_; }
    // The complete packet to inject.
    Vanta::Bytes const& pkt() const noexcept { return pkt_; }
    // Where on the chip the packet is to enter: the pipe, and the port's index in the pipe.
    VynSystem::PortInfo const& ingPortInfo() const noexcept { return ingPortInfo_; }
    // The request's ingress interface.
    Plexa::IntfId const& ingIntf() const noexcept { return ingIntf_; }

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    friend class PktGenConfig;
    PktGenCfgData(PacketTracer::RequestId const& req, Vanta::Bytes const& pkt,
                  VynSystem::PortInfo const& ingPortInfo, Plexa::IntfId ingIntf);
    ~PktGenCfgData() override = default;

    PacketTracer::RequestId req_;
    Vanta::Bytes pkt_;
    VynSystem::PortInfo ingPortInfo_;
    Plexa::IntfId ingIntf_;
};

VYN_EXPORT Vanta::Ptr<PktGenCfgData> pktGenCfgDataFactory(PacketTracer::RequestId const& req,
                                                          Vanta::Bytes const& pkt,
                                                          VynSystem::PortInfo const& ingPortInfo,
                                                          Plexa::IntfId ingIntf);

// What became of one job. The outcome's fields mean something only once `ready` is true, which the
// engine sets last and only ever to true. A setter stores and publishes a change only when the
// value differs; the old value goes with the publication.
class VYN_EXPORT PktGenStatusData final : public Kel::Object, private PktIdLink {
  public:
    enum Attribute : Vanta::AttributeNumber {
        reqAttribute = Kel::firstAttribute,
        pktIdAttribute,
        readyAttribute,
        egrPortInfoAttribute,
        egrL2DomainAttribute,
        copyToCpuAttribute,
        routedAttribute,
        droppedAttribute,
    };

    static Vanta::Ptr<PktGenStatusData> PktGenStatusDataIs(PacketTracer::RequestId const& req);

    // The request; the key in PktGenStatus.
    PacketTracer::RequestId const& req() const noexcept { return req_; }

    // The id under which the packet was injected.
    std::uint16_t pktId() const noexcept { return pktId_; }
    void pktIdIs(std::uint16_t pktId);

    // Whether the outcome is complete.
    bool ready() const noexcept { return ready_; }
    void readyIs(bool ready);

    // The chip port where the packet left: its pipe, and the device port as index.
    VynSystem::PortInfo const& egrPortInfo() const noexcept { return egrPortInfo_; }
    void egrPortInfoIs(VynSystem::PortInfo const& egrPortInfo);

    // The VLAN in which it left.
    std::uint16_t egrL2Domain() const noexcept { return egrL2Domain_; }
    void egrL2DomainIs(std::uint16_t egrL2Domain);

    bool copyToCpu() const noexcept { return copyToCpu_; }
    void copyToCpuIs(bool copyToCpu);
    bool routed() const noexcept { return routed_; }
    void routedIs(bool routed);
    bool dropped() const noexcept { return dropped_; }
    void droppedIs(bool dropped);

    Vanta::Publisher const& publisher() const noexcept { return publisher_; }
    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    friend class PktGenStatus;
    explicit PktGenStatusData(PacketTracer::RequestId const& req) : req_(req) {}
    ~PktGenStatusData() override = default;

    template <class T>
    void set(T& stored, T const& value, Attribute attribute);

    PacketTracer::RequestId req_;
    PktGenStatus* collection_ = nullptr;  // that holds this entry
    VynSystem::PortInfo egrPortInfo_;
    std::uint16_t pktId_ = 0;
    std::uint16_t egrL2Domain_ = 0;
    bool ready_ = false;
    bool copyToCpu_ = false;
    bool routed_ = false;
    bool dropped_ = false;
    Vanta::Publisher publisher_{this};
};

VYN_EXPORT Vanta::Ptr<PktGenStatusData> pktGenStatusDataFactory(PacketTracer::RequestId const& req);

// The work queue: one job a request, in the order in which they came. An entry is never updated in
// place; its client deletes it and makes it anew. Every addition and removal is published with the
// request as key; a collection that is destroyed publishes the removal of each of its entries,
// except those that are added meanwhile.
class VYN_EXPORT PktGenConfig final : public Kel::Object {
  public:
    enum Attribute : Vanta::AttributeNumber { cfgAttribute = Kel::firstAttribute };
    using Cfgs = Kel::Collection<PacketTracer::RequestId, Vanta::Ptr<PktGenCfgData>>;

    static Vanta::Ptr<PktGenConfig> PktGenConfigIs();

    Cfgs const& cfg() const noexcept { return cfg_; }
    // The job of a request, or null.
    Vanta::Ptr<PktGenCfgData> cfg(PacketTracer::RequestId const& req) const {
        return cfg_.get(req);
    }
    bool cfgHas(PacketTracer::RequestId const& req) const { return cfg_.has(req); }

    // The job of a request, created if there is none. Errors: for a job that is there with another
    // packet Kel::ReinstantiationError, with another port or interface
    // Kel::ReinstantiatingValueError; the collection is then unchanged.
    Vanta::Ptr<PktGenCfgData> cfgIs(PacketTracer::RequestId const& req, Vanta::Bytes const& pkt,
                                    VynSystem::PortInfo const& ingPortInfo, Plexa::IntfId ingIntf);
    // Removes and returns a job; null, and no publication, if there is none.
    Vanta::Ptr<PktGenCfgData> cfgDel(PacketTracer::RequestId const& req);
    // Removes every job that is there when this begins, each with its own publication. A job that a
    // subscriber adds when it hears of a removal stays.
    void cfgDelAll();

    // The first job, in the order of the collection, without an entry in `status`; null if there is
    // none. It is more than a query: the first call with a collection of answers ties the two
    // together. From then on this collection follows those answers, and they report to it alone,
    // until one of the two is destroyed or is used in such a call with another. The first call is
    // linear in the jobs, both of this collection and of the one that the answers reported to
    // before. Each later call is constant or, if answers were removed, logarithmic in the jobs that
    // are pending again (expected; see PendingJobs).
    Vanta::Ptr<PktGenCfgData> firstPending(PktGenStatus& status);

    Vanta::Publisher const& publisher() const noexcept { return publisher_; }
    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    friend class PktGenStatus;
    PktGenConfig() = default;
    ~PktGenConfig() override;

    Cfgs const& allCfgs() const noexcept { return cfg_; }
    // Has the pending jobs follow a collection of answers, or (null) none.
    void answersAre(PktGenStatus* status) noexcept;
    void answerCame(HashedId const& req) noexcept;
    void answerWent(HashedId const& req) noexcept;

    Cfgs cfg_;
    PendingJobs pending_;              // the jobs without an answer in answers_
    PktGenStatus* answers_ = nullptr;  // whose jobs_ is this collection
    Vanta::Publisher publisher_{this};
};

VYN_EXPORT Vanta::Ptr<PktGenConfig> pktGenConfigFactory();

// The answers: one entry for each job that the engine has begun, in the order in which it did.
// Every addition and removal is published with the request as key, as in PktGenConfig.
class VYN_EXPORT PktGenStatus final : public Kel::Object {
  public:
    enum Attribute : Vanta::AttributeNumber { statusAttribute = Kel::firstAttribute };
    using Statuses = Kel::Collection<PacketTracer::RequestId, Vanta::Ptr<PktGenStatusData>>;

    static Vanta::Ptr<PktGenStatus> PktGenStatusIs();

    Statuses const& status() const noexcept { return status_; }
    // The entry of a request, or null.
    Vanta::Ptr<PktGenStatusData const> status(PacketTracer::RequestId const& req) const {
        return status_.get(req);
    }
    bool statusHas(PacketTracer::RequestId const& req) const { return status_.has(req); }

    // The entry of a request, created with defaults if there is none; one that is there keeps all
    // its fields. The first entry makes the index of packet ids, which reserves a megabyte of
    // addresses. Errors: std::bad_alloc.
    Vanta::Ptr<PktGenStatusData> statusIs(PacketTracer::RequestId const& req);
    // Removes and returns an entry; null, and no publication, if there is none.
    Vanta::Ptr<PktGenStatusData> statusDel(PacketTracer::RequestId const& req);
    // Removes every entry that is there when this begins, each with its own publication. An entry
    // that a subscriber adds when it hears of a removal stays.
    void statusDelAll();

    // A walk over the entries that have a packet id, in the order of the collection. Entries that
    // vanish, appear or change their id meanwhile are passed or met as in a walk over the whole
    // collection. The cost depends on the entries of that id only.
    class PktIdWalk {
      public:
        // Precondition: the collection outlives the walk.
        PktIdWalk(PktGenStatus& status, std::uint16_t pktId) noexcept
            : status_(status), pktId_(pktId) {}
        // The next entry, or null at the end.
        Vanta::Ptr<PktGenStatusData> next();

      private:
        PktGenStatus& status_;
        std::uint16_t const pktId_;
        std::uint64_t order_ = 0;               // of the entry given last
        Vanta::Ptr<PktGenStatusData> current_;  // the entry given last
    };

    Vanta::Publisher const& publisher() const noexcept { return publisher_; }
    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    friend class PktGenConfig;
    friend class PktGenStatusData;
    PktGenStatus() = default;
    ~PktGenStatus() override;

    Statuses const& allStatuses() const noexcept { return status_; }

    Statuses status_;
    PktIdIndex pktIds_;
    PktGenConfig* jobs_ = nullptr;  // whose answers_ is this collection
    Vanta::Publisher publisher_{this};
};

VYN_EXPORT Vanta::Ptr<PktGenStatus> pktGenStatusFactory();

}  // namespace VynPacketTracer
