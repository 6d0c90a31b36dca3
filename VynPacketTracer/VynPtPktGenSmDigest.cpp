// The trace digest's channel: from the SDK's thread through a socket pair into the status entries.
//
// One message is one send and two reads: a header of 10 bytes (the learn message's first 8 bytes,
// then the number of entries), and the entries as the SDK gave them.
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <span>
#include <utility>

#include "Trace/Trace.h"
#include "Vanta/Assert.h"
#include "VynPacketTracer/VynPtPktGenSm.h"

namespace VynPacketTracer {
namespace {

Trace::Handle& trace = Trace::handle("VynPtPktGenSm");

constexpr int sendBufferSize = 8388608;
constexpr std::uint16_t noUnicastEgressPort = 0x1ff;

struct __attribute__((packed)) DigestHeader {
    std::uint8_t devTgt[8];
    std::uint16_t entries;
};
static_assert(sizeof(DigestHeader) == 10);

// A descriptor that is closed unless somebody else takes it over.
class OwnDescriptor {
  public:
    explicit OwnDescriptor(int number) noexcept : number_(number) {}
    OwnDescriptor(OwnDescriptor const&) = delete;
    OwnDescriptor& operator=(OwnDescriptor const&) = delete;
    ~OwnDescriptor() {
        if (number_ != -1) {
            ::close(number_);
        }
    }
    int release() noexcept { return std::exchange(number_, -1); }

  private:
    int number_;
};

// Set-up cannot go on without these calls: ends the process if one fails.
void checkSocketCall(int rval, Trace::Format<2> message) {
    if (rval != 0) {
        Trace::twinlog(trace, 1, message, rval, std::strerror(errno));
        Vanta::assertionFailed("rval == 0");
    }
}

}  // namespace

bool PktGenSm::hasSocket() const noexcept {
    return socketPairReadFileDesc_ && socketPairReadFileDesc_->descriptor() != -1;
}

void PktGenSm::initSocket() {
    Trace::twinlog(trace, 9, "initSocket:PktGenSm initSocket");
    if (hasSocket()) {
        return;
    }
    int descriptors[2];
    checkSocketCall(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, descriptors),
                    "initSocket:socketpairt rval:%s %s");
    OwnDescriptor writeEnd(descriptors[0]);
    OwnDescriptor readEnd(descriptors[1]);
    for (int const descriptor : descriptors) {
        checkSocketCall(::fcntl(descriptor, F_SETFL, O_NONBLOCK), "initSocket:fcntl rval:%s %s");
    }
    checkSocketCall(
        ::setsockopt(descriptors[0], SOL_SOCKET, SO_SNDBUF, &sendBufferSize, sizeof sendBufferSize),
        "initSocket:setsockopt rval:%s %s");
    auto const readable = Orb::FileDescriptor::FileDescriptorIs(args_.rootScheduler, descriptors[1],
                                                                "Packet tracer digest");
    readEnd.release();
    readable->nonBlockingIs(true);
    readable->notifyOnReadableIs(true);
    socketPairWriteDesc_ = writeEnd.release();
    socketPairReadFileDesc_ = readable;
    rSocketIn_ = readable;
    socketSubscriber_.unsubscribe();
    connectSocket();
}

void PktGenSm::registerPktTracerDigest() {
    Trace::twinlog(trace, 9, "registerPktTracerDigest:");
    if (digestRegistered_) {
        return;
    }
    Vanta::assertThat(args_.resourceInfoIntf != nullptr, "resourceInfoIntf != nullptr");
    learnQuantaIndex_ = args_.resourceInfoIntf->vyLearnQuantaIndex(digestName);
    Vanta::assertThat(learnQuantaIndex_ != VyResourceInfo::VyResourceInfoIndexInvalid,
                      "index != VyResourceInfoIndexInvalid");
    digestHandle_ = args_.resourceInfoIntf->vyLearnQuanta(learnQuantaIndex_);
    p4_pd_status_t const rval = pipe_mgr_lrn_digest_notification_register(
        args_.sessionHandle, args_.deviceId, digestHandle_, rcvPktTracerLearningDigest, this);
    if (rval != 0) {
        Trace::twinlog(trace, 1, "registerPktTracerDigest:failed to initialize digest, error: %s",
                       rval);
        Vanta::assertionFailed("false");
    }
    digestRegistered_ = true;
    Trace::twinlog(trace, 4, "registerPktTracerDigest:pktTracerDigest registered");
}

void PktGenSm::deRegisterPktTracerDigest() {
    if (!std::exchange(digestRegistered_, false)) {
        return;
    }
    p4_pd_status_t const rval = pipe_mgr_lrn_digest_notification_deregister(
        args_.sessionHandle, args_.deviceId, digestHandle_);
    Trace::twinlog(trace, 4, "deRegisterPktTracerDigest:pktTracerDigest deregistered:%s", rval);
}

void PktGenSm::doCleanup() noexcept try {
    deRegisterPktTracerDigest();
    if (socketPairReadFileDesc_) {
        socketPairReadFileDesc_->close();
    }
    if (socketPairWriteDesc_ != 0) {
        ::close(std::exchange(socketPairWriteDesc_, 0));
    }
} catch (...) {
    // Only tracing can fail, and the destructor cannot report it to anybody.
    Vanta::endProcessWithCurrentException();
}

// ---- The SDK's thread

p4_pd_status_t rcvPktTracerLearningDigest(p4_pd_sess_hdl_t session, pipe_flow_lrn_msg_t* message,
                                          void* cookie) try {
    Vanta::assertThat(message != nullptr, "message != nullptr");
    Vanta::assertThat(cookie != nullptr, "cookie != nullptr");
    auto const& engine = *static_cast<PktGenSm const*>(cookie);
    Vanta::assertThat(engine.learnQuantaIndex_ != VyResourceInfo::VyResourceInfoIndexInvalid,
                      "index != VyResourceInfoIndexInvalid");
    Trace::twinlog(trace, 5,
                   "rcvPktTracerLearningDigest:Received pkt tracer digest with #entries:%s",
                   message->num_entries);
    Trace::twinlog(trace, 5, "rcvPktTracerLearningDigest:Digest size:%s",
                   engine.pktTracerDigestEntrySize_);

    DigestHeader header;
    std::memcpy(header.devTgt, message, sizeof header.devTgt);
    header.entries = message->num_entries;
    std::size_t const entriesSize =
        std::size_t{message->num_entries} * engine.pktTracerDigestEntrySize_;
    // The gathered send only reads the entries; the system's interface just does not say so.
    iovec parts[] = {{&header, sizeof header}, {const_cast<void*>(message->entries), entriesSize}};
    msghdr gathered{};
    gathered.msg_iov = parts;
    gathered.msg_iovlen = 2;
    if (::sendmsg(engine.socketPairWriteDesc_, &gathered, 0) < 0) {
        Trace::twinlog(
            trace, 1,
            "rcvPktTracerLearningDigest:Failed to send pktGen digest of length %s error:%s",
            sizeof header + entriesSize, std::strerror(errno));
    }
    p4_pd_status_t const rval =
        pipe_mgr_flow_lrn_notify_ack(session, engine.digestHandle_, message);
    if (rval != 0) {
        Trace::twinlog(trace, 1, "rcvPktTracerLearningDigest:failed to notify ack");
    }
    return rval;
} catch (...) {
    // The SDK is C code: nothing may unwind through it.
    Vanta::endProcessWithCurrentException();
}

// ---- The event thread

// One entry, and the buffer of digestBufferSize bytes that its message was read into.
struct PktGenSm::DigestBytes {
    std::uint8_t const* buffer;
    std::span<std::uint8_t const> entry;

    std::uint32_t ofField(std::uint8_t const* field, std::uint32_t size) const;
};

// The fields of one digest entry, beside the packet id.
struct PktGenSm::DigestValues {
    std::uint8_t copyToCpu;
    std::uint16_t egrL2Domain;
    std::uint16_t ucastEgressPort;
    std::uint8_t routed;
    std::uint8_t dropCtl;
};

void PktGenSm::processPktTracerDigest() {
    Vanta::assertThat(socketPairReadFileDesc_ != nullptr, "socketPairReadFileDesc != nullptr");
    int const descriptor = socketPairReadFileDesc_->descriptor();
    DigestHeader header;
    ssize_t const headerRead = ::read(descriptor, &header, sizeof header);
    if (headerRead < static_cast<ssize_t>(sizeof header)) {
        Trace::twinlog(trace, 1,
                       "processPktTracerDigest:Failed to read digestHdr of size:%s actual read:%s",
                       sizeof header, headerRead);
        return;
    }
    std::uint16_t const entries = header.entries;
    std::uint64_t const len = std::uint64_t{entries} * pktTracerDigestEntrySize_;
    if (len > digestBufferSize) {
        // The entries stay in the stream: the reader is out of step from here on.
        Trace::twinlog(trace, 1, "processPktTracerDigest:Too many entries:%s bufSize:%s", entries,
                       digestBufferSize);
        return;
    }
    std::uint8_t buffer[digestBufferSize];
    ssize_t const entriesRead = ::read(descriptor, buffer, len);
    if (entriesRead < static_cast<ssize_t>(len)) {
        Trace::twinlog(
            trace, 1,
            "processPktTracerDigest:Failed to read %s digest entries size:%s actual read:%s",
            entries, len, entriesRead);
        return;
    }
    Trace::twinlog(trace, 7,
                   "processPktTracerDigest:Processing pktTracer learning digest with %s entries",
                   entries);
    if (pktTracerDigestEntrySize_ == 0) {
        return;  // such entries have no fields
    }
    std::span<std::uint8_t const> rest(buffer, len);
    while (rest.size() >= pktTracerDigestEntrySize_) {
        processDigestEntry({buffer, rest.first(pktTracerDigestEntrySize_)});
        rest = rest.subspan(pktTracerDigestEntrySize_);
    }
}

// How many bytes of a field belong to its entry: those that lie inside it. A field outside the
// buffer, which a layout may have decoded on its own, is taken as it is.
std::uint32_t PktGenSm::DigestBytes::ofField(std::uint8_t const* field, std::uint32_t size) const {
    auto const address = [](std::uint8_t const* byte) {
        return reinterpret_cast<std::uintptr_t>(byte);
    };
    auto const begin = address(field);
    if (begin < address(buffer) || begin >= address(buffer) + digestBufferSize) {
        return size;
    }
    auto const first = std::max(begin, address(entry.data()));
    auto const last = std::min(begin + size, address(entry.data()) + entry.size());
    return first < last ? static_cast<std::uint32_t>(last - first) : 0;
}

// One field of an entry. A data-plane program with a field of another width is the wrong program,
// and so is one with a field that does not lie inside its entry, because too few of its bytes
// belong to the entry. The field's short name begins the message: "pktId wrong size.  Expected:2
// got:4".
template <class Unsigned>
Unsigned PktGenSm::digestField(DigestBytes const& bytes, std::string_view field,
                               std::string_view shortName) const {
    std::uint32_t size = 0;
    std::uint8_t const* const found =
        args_.vyPdIntf->digestEntryField(bytes.entry.data(), digestName, field, size);
    if (size == sizeof(Unsigned)) {
        size = bytes.ofField(found, size);
    }
    if (size != sizeof(Unsigned)) {
        Trace::twinlog(trace, 1, "processPktTracerDigest:%s wrong size.  Expected:%s got:%s",
                       shortName, sizeof(Unsigned), size);
        Vanta::assertionFailed(sizeof(Unsigned) == 2 ? "size == sizeof( U16 )"
                                                     : "size == sizeof( U8 )");
    }
    Unsigned value;
    std::memcpy(&value, found, sizeof value);
    return value;
}

void PktGenSm::processDigestEntry(DigestBytes const& bytes) {
    auto const pktId = digestField<std::uint16_t>(bytes, "pktGen_pktId", "pktId");
    Trace::twinlog(trace, 7, "processPktTracerDigest:PktId:%s", pktId);
    std::optional<DigestValues> digest;  // read at the first match
    PktGenStatus::PktIdWalk walk(*args_.status, pktId);
    while (auto const matching = walk.next()) {
        if (!digest) {
            digest = readDigestEntry(bytes);
        }
        completeStatus(*matching, *digest);
    }
}

PktGenSm::DigestValues PktGenSm::readDigestEntry(DigestBytes const& bytes) const {
    using U8 = std::uint8_t;
    using U16 = std::uint16_t;
    DigestValues digest;
    digest.copyToCpu = digestField<U8>(bytes, "pktTracerMd_copy_to_cpu", "copyToCpu");
    digest.egrL2Domain = digestField<U16>(bytes, "egrMd_egrL2Domain", "egrL2Domain");
    digest.ucastEgressPort =
        digestField<U16>(bytes, "pktTracerMd_ucast_egress_port", "ucast_egress_port");
    digest.routed = digestField<U8>(bytes, "egrMd_routed", "egrMd_routed");
    digest.dropCtl =
        digestField<U8>(bytes, "ig_intr_md_for_dprsr_drop_ctl", "ig_intr_md_for_dprsr_drop_ctl");
    return digest;
}

void PktGenSm::completeStatus(PktGenStatusData& status, DigestValues const& digest) {
    bool const copyToCpu = digest.copyToCpu != 0;
    bool const routed = digest.routed != 0;
    bool const dropped = digest.dropCtl != 0;
    Trace::twinlog(trace, 7,
                   "processPktTracerDigest:clientName:%s reqId:%s egrPort:%s copyToCpu:%s "
                   "l2Domain:%s routed:%s dropped:%s",
                   status.req().clientName(), status.req().number(), digest.ucastEgressPort,
                   copyToCpu, digest.egrL2Domain, routed, dropped);
    status.copyToCpuIs(copyToCpu);
    status.egrL2DomainIs(digest.egrL2Domain);
    if (digest.ucastEgressPort != noUnicastEgressPort) {
        VynSystem::PortInfo egrPortInfo;
        egrPortInfo.pipeIs(static_cast<std::uint8_t>(dev_port_to_pipe_id(digest.ucastEgressPort)));
        egrPortInfo.portIs(VynPortTypes::PortIndex(digest.ucastEgressPort));
        status.egrPortInfoIs(egrPortInfo);
    }
    status.routedIs(routed);
    status.droppedIs(dropped);
    status.readyIs(true);
}

}  // namespace VynPacketTracer
