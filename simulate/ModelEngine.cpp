// The engine's part of the model, step by step.
#include <cstring>

#include "simulate/Model.h"

namespace Simulate {
namespace {

constexpr std::string_view engine = "VynPtPktGenSm";
constexpr unsigned appId = 4;
constexpr unsigned genPort = 68;
constexpr unsigned digestHandle = 77;
constexpr std::size_t headerBytes = 10;
constexpr std::size_t entryBytes = 9;
constexpr std::size_t mostBytes = 4096;

std::uint16_t word(Bytes const& bytes, std::size_t at) {
    std::uint16_t value = 0;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

std::string named(Id const& id) {
    return joined("clientName:", id.first, " reqId:", id.second);
}

}  // namespace

char const* text(Model::State state) {
    static constexpr char const* names[] = {
        "init", "idle", "waitPhase0Data", "phase0DataReady", "waitPktSent", "reset", "error"};
    return names[static_cast<std::size_t>(state)];
}

// A call of the chip: the wire knows what it returned.
template <class... Parts>
Wire::Answer Model::call(Parts const&... parts) {
    Wire::Answer answer;
    if (!wire_->answers.empty()) {
        answer = wire_->answers.front();
        wire_->answers.pop_front();
    }
    note("sdk ", parts..., " -> ", answer.rc, " count ", answer.count);
    return answer;
}

void Model::configIs(IntfId const& intf) {
    note("phase0 configIs ", intf);
}

void Model::configDel(IntfId const& intf) {
    note("phase0 configDel ", intf);
    responses_.erase(intf);
}

void Model::makeEngine() {
    engine_ = {};
    trace(engine, 7, "handleInitialized:");
    engine_.state = State::idle;
    if (supported_) {
        trace(engine, 9, "initSocket:PktGenSm initSocket");
        trace(engine, 9, "registerPktTracerDigest:");
        auto const answer = call("pipe_mgr_lrn_digest_notification_register session ", session,
                                 " device ", device, " handle ", digestHandle);
        if (answer.rc != 0) {
            trace(engine, 1,
                  "registerPktTracerDigest:failed to initialize digest, error: ", answer.rc);
            throw Fatal{"assert", "false"};
        }
        trace(engine, 4, "registerPktTracerDigest:pktTracerDigest registered");
    }
    work();
    engine_.scheduled = true;
}

void Model::endEngine() {
    if (supported_) {
        auto const answer = call("pipe_mgr_lrn_digest_notification_deregister session ", session,
                                 " device ", device, " handle ", digestHandle);
        trace(engine, 4, "deRegisterPktTracerDigest:pktTracerDigest deregistered:", answer.rc);
    }
    stream_.clear();
}

// ---- Jobs and answers

void Model::jobIs(Job job) {
    if (auto const* const there = jobs_.find(job.id)) {
        Job const& old = **there;
        if (old.pkt != job.pkt) {
            throw Fatal{"ReinstantiationError", ""};
        }
        if (old.port != job.port || old.intf != job.intf) {
            throw Fatal{"ReinstantiatingValueError", ""};
        }
        return;
    }
    Id const id = job.id;
    jobs_.put(id, std::make_shared<Job const>(std::move(job)));
    note("cfg add ", id.first, "/", id.second);
    handleJob(id);
}

void Model::jobDel(Id const& id) {
    if (jobs_.remove(id)) {
        note("cfg del ", id.first, "/", id.second);
        handleJob(id);
    }
}

void Model::answerIs(Id const& id) {
    if (!answers_.has(id)) {
        answers_.put(id, {});
        note("status add ", id.first, "/", id.second);
        relayDispatch(id);
    }
}

void Model::answerDel(Id const& id) {
    if (answers_.remove(id)) {
        note("status del ", id.first, "/", id.second);
        relayDispatch(id);
    }
}

void Model::handleJob(Id const& id) {
    bool const there = jobs_.has(id);
    trace(engine, 7, "handleConfig:", named(id), " add:", there);
    if (!there) {
        if (engine_.current && engine_.current->id == id && engine_.state != State::idle) {
            trace(engine, 2, "handleConfig:removed config before it was done ", named(id));
            engine_.state = State::error;
        } else {
            answerDel(id);
        }
    }
    engine_.scheduled = true;
}

// ---- The task

void Model::work() {
    trace(engine, 7, "doWork:");
    if (!engine_.taskRuns) {
        trace(engine, 4, "doWork:PktGen task not running");
        return;
    }
    bool done = false;
    unsigned checks = 0;
    while (checks++ < yieldAfter_) {
        State const before = engine_.state;
        if (before == State::idle) {
            done = processRequest();
        } else if (before == State::phase0DataReady) {
            send();
        } else if (before == State::waitPktSent) {
            checkCount();
        } else if (before == State::reset) {
            disable();
        } else if (before == State::error) {
            processError();
            break;
        } else {
            break;
        }
        if (engine_.state == before) {
            break;
        }
    }
    if (!done) {
        engine_.scheduled = true;
    }
}

bool Model::processRequest() {
    trace(engine, 7, "processRequest:");
    for (auto const& [id, job] : jobs_) {
        if (!answers_.has(id)) {
            engine_.current = job;
            getPhase0();
            return false;
        }
    }
    return true;
}

void Model::getPhase0() {
    trace(engine, 7, "getPhase0Data:", named(currentId()));
    engine_.state = State::waitPhase0Data;
    configDel(engine_.current->intf);
    configIs(engine_.current->intf);
}

void Model::phase0Changed(Wire::Announcement const& announcement) {
    note("phase0 answer ", announcement.intf, announcement.present ? " there" : " gone");
    if (announcement.present) {
        responses_[announcement.intf] = {announcement.status, announcement.data};
    }
    if (!running_) {
        return;
    }
    trace(engine, 7, "processPhase0DataResponse:", named(currentId()),
          " intfId:", announcement.intf);
    auto const response = responses_.find(announcement.intf);
    if (response == responses_.end()) {
        trace(engine, 7,
              "processPhase0DataResponse:deletion of phase0 for intfId:", announcement.intf);
    } else if (!engine_.current) {
    } else if (response->second.status == 0 || engine_.state == State::waitPhase0Data) {
        engine_.state = State::phase0DataReady;
    } else {
        trace(engine, 1, "processPhase0DataResponse:error retrieving phase0Data for intfId:",
              announcement.intf, " state:", text(engine_.state),
              " phase0Status:", response->second.status);
        configDel(engine_.current->intf);
        engine_.state = State::error;
    }
    engine_.scheduled = true;
}

// ---- Through the chip

Wire::Answer Model::readCounter() {
    unsigned const pipe = engine_.current->port.pipe;
    auto const answer = call("getPktCounters session ", session, " device ", device, " pipe ", pipe,
                             " appId ", appId);
    if (answer.rc != 0) {
        trace(engine, 1, "getPktCounters:error retrieving pktGen counters for pipeId:", pipe);
    }
    return answer;
}

void Model::send() {
    Job const& job = *engine_.current;
    trace(engine, 7, "sendPkt:", named(job.id));
    auto const counter = readCounter();
    if (counter.rc != 0) {
        engine_.state = State::error;
        configDel(job.intf);
        return;
    }
    engine_.pktId = static_cast<std::uint16_t>((engine_.pktId + 1) % 65536);
    engine_.count = counter.count;
    trace(engine, 7, "sendPkt:pktCnt:", counter.count);
    auto const response = responses_.find(job.intf);
    Bytes const phase0 = response == responses_.end() ? Bytes() : response->second.data;
    auto const sent =
        call("genOnePkt session ", session, " device ", device, " pipe ", job.port.pipe,
             " genPort ", genPort, " portIndex ", job.port.port % 256, " appId ", appId, " pkt ",
             job.pkt.size(), ":", digestOf(job.pkt), " phase0 ", phase0.size(), ":",
             digestOf(phase0), " pktId ", engine_.pktId);
    if (sent.rc != 0) {
        engine_.state = State::error;
        trace(engine, 1, "sendPkt:Error sending pkt ", named(job.id));
    } else {
        if (jobs_.has(job.id)) {
            answerIs(job.id);
            auto* const answer = answers_.find(job.id);
            if (answer->pktId != engine_.pktId) {
                answer->pktId = engine_.pktId;
                note("status ", job.id.first, "/", job.id.second, " pktId ", engine_.pktId);
            }
        }
        engine_.state = State::waitPktSent;
    }
    configDel(job.intf);
}

void Model::checkCount() {
    Job const& job = *engine_.current;
    trace(engine, 7, "checkPktCnt:", named(job.id));
    auto const counter = readCounter();
    if (counter.rc == 0 && counter.count != engine_.count) {
        trace(engine, 9, "checkPktCnt:Sent pkt for ", named(job.id), " cnt:", counter.count,
              " curCnt:", engine_.count);
        if (!supported_ && jobs_.has(job.id)) {
            answerIs(job.id);
            auto* const answer = answers_.find(job.id);
            if (!answer->ready) {
                answer->ready = true;
                note("status ", job.id.first, "/", job.id.second, " ready true");
                handleAnswer(job.id);
            }
        }
        engine_.state = State::reset;
    } else if (!jobs_.has(job.id)) {
        trace(engine, 9, "checkPktCnt:Client ", job.id.first,
              "del cfg while waiting for pktCnt reqId:", job.id.second, " cnt:", counter.count);
        engine_.state = State::error;
    } else {
        trace(engine, 9, "checkPktCnt:Waiting on Sent pkt for ", named(job.id),
              " cnt:", counter.count);
    }
}

void Model::disable() {
    unsigned const pipe = engine_.current->port.pipe;
    auto const app = call("disableAppId session ", session, " device ", device, " pipe ", pipe,
                          " appId ", appId);
    if (app.rc != 0) {
        trace(engine, 1, "disablePktGen:Error disabling appId for pipe:", pipe,
              " deviceId:", device);
        engine_.state = State::error;
        return;
    }
    auto const generator = call("disablePktGen session ", session, " device ", device, " pipe ",
                                pipe, " genPort ", genPort);
    if (generator.rc != 0) {
        trace(engine, 1, "disablePktGen:Error disabling pktGen for pipe:", pipe, " deviceId");
        engine_.state = State::error;
        return;
    }
    engine_.state = State::idle;
}

void Model::processError() {
    trace(engine, 7, "processError:", named(currentId()));
    answerDel(currentId());
    disable();
}

// ---- The digest

void Model::receive(Wire::Message const& message) {
    note("message of ", message.entries, ":", digestOf(message.bytes));
    trace(engine, 5,
          "rcvPktTracerLearningDigest:Received pkt tracer digest with #entries:", message.entries);
    trace(engine, 5, "rcvPktTracerLearningDigest:Digest size:", entryBytes);
    Bytes sent = message.bytes;  // the first eight bytes, then the entries
    auto const* const count = reinterpret_cast<std::uint8_t const*>(&message.entries);
    sent.insert(sent.begin() + 8, count, count + 2);
    std::size_t const free = room_ > stream_.size() ? room_ - stream_.size() : 0;
    if (free == 0) {
        trace(engine, 1, "rcvPktTracerLearningDigest:Failed to send pktGen digest of length ",
              sent.size(), " error:", std::strerror(EAGAIN));
    } else {
        auto const part = static_cast<std::ptrdiff_t>(std::min(free, sent.size()));
        stream_.insert(stream_.end(), sent.begin(), sent.begin() + part);
    }
    auto const acknowledged =
        call("pipe_mgr_flow_lrn_notify_ack session ", session, " handle ", digestHandle);
    if (acknowledged.rc != 0) {
        trace(engine, 1, "rcvPktTracerLearningDigest:failed to notify ack");
    }
}

void Model::processDigest() {
    auto const take = [this](std::size_t size) {
        auto const end =
            stream_.begin() + static_cast<std::ptrdiff_t>(std::min(size, stream_.size()));
        Bytes const taken(stream_.begin(), end);
        stream_.erase(stream_.begin(), end);
        return taken;
    };
    // A read that asks for bytes and gets none fails: it would block.
    auto const readResult = [](Bytes const& taken, std::size_t asked) {
        return taken.empty() && asked > 0 ? -1 : static_cast<int>(taken.size());
    };
    Bytes const header = take(headerBytes);
    if (header.size() < headerBytes) {
        trace(engine, 1, "processPktTracerDigest:Failed to read digestHdr of size:", headerBytes,
              " actual read:", readResult(header, headerBytes));
        return;
    }
    unsigned const entries = word(header, 8);
    std::size_t const size = entries * entryBytes;
    if (size > mostBytes) {
        trace(engine, 1, "processPktTracerDigest:Too many entries:", entries,
              " bufSize:", mostBytes);
        return;
    }
    Bytes const body = take(size);
    if (body.size() < size) {
        trace(engine, 1, "processPktTracerDigest:Failed to read ", entries,
              " digest entries size:", size, " actual read:", readResult(body, size));
        return;
    }
    trace(engine, 7, "processPktTracerDigest:Processing pktTracer learning digest with ", entries,
          " entries");
    for (unsigned i = 0; i < entries; ++i) {
        auto const at = body.begin() + static_cast<std::ptrdiff_t>(i * entryBytes);
        processEntry(Bytes(at, at + entryBytes));
    }
}

void Model::processEntry(Bytes const& entry) {
    DigestEntry const digest{word(entry, 0), entry[2], word(entry, 3),
                             word(entry, 5), entry[7], entry[8]};
    trace(engine, 7, "processPktTracerDigest:PktId:", digest.pktId);
    std::vector<Id> matching;
    for (auto const& [id, answer] : answers_) {
        if (answer.pktId == digest.pktId) {
            matching.push_back(id);
        }
    }
    for (auto const& id : matching) {
        complete(id, digest);
    }
}

void Model::complete(Id const& id, DigestEntry const& entry) {
    Answer& answer = *answers_.find(id);
    bool const copyToCpu = entry.copyToCpu != 0;
    bool const routed = entry.routed != 0;
    bool const dropped = entry.dropCtl != 0;
    trace(engine, 7, "processPktTracerDigest:", named(id), " egrPort:", entry.egrPort,
          " copyToCpu:", copyToCpu, " l2Domain:", entry.l2Domain, " routed:", routed,
          " dropped:", dropped);
    auto const set = [&](auto& stored, auto value, std::string_view name) {
        if (stored != value) {
            stored = value;
            note("status ", id.first, "/", id.second, " ", name, " ", value);
        }
    };
    set(answer.copyToCpu, copyToCpu, "copyToCpu");
    set(answer.l2Domain, entry.l2Domain, "egrL2Domain");
    if (entry.egrPort != 511) {
        if (entry.egrPort > 456) {
            throw Fatal{"RangeError",
                        "VynPortTypes::PortIndex::value < VynPortTypes::PortIndex::min or > "
                        "VynPortTypes::PortIndex::invalid not allowed"};
        }
        PortInfo const egress{entry.egrPort / 128, entry.egrPort};
        if (answer.egress != egress) {
            answer.egress = egress;
            note("status ", id.first, "/", id.second, " egrPortInfo ", egress.pipe, ":",
                 egress.port);
        }
    }
    set(answer.routed, routed, "routed");
    set(answer.dropped, dropped, "dropped");
    if (!answer.ready) {
        answer.ready = true;
        note("status ", id.first, "/", id.second, " ready true");
        handleAnswer(id);
    }
}

}  // namespace Simulate
