#include "softchip/SoftChip.h"

#include "Vanta/Assert.h"

namespace SoftChip {
namespace {

JournalEntry callEntry(Call call, p4_pd_sess_hdl_t session) {
    JournalEntry entry{.kind = JournalEntry::Kind::call, .call = call};
    entry.session = session;
    return entry;
}

JournalEntry pipeCall(Call call, p4_pd_sess_hdl_t session, std::uint32_t pipe) {
    auto entry = callEntry(call, session);
    entry.pipe = pipe;
    return entry;
}

JournalEntry digestCall(Call call, p4_pd_sess_hdl_t session, std::uint32_t handle) {
    auto entry = callEntry(call, session);
    entry.handle = handle;
    return entry;
}

bool portExists(std::uint32_t pipe, std::uint8_t portIndex) {
    return portIndex < 128 && pipe * 128 + portIndex <= maxDevicePort;
}

Status firstOf(Status first, bool holds, Status otherwise) {
    return first != Status::ok || holds ? first : otherwise;
}

}  // namespace

SoftChip::SoftChip(Config const& config)
    : config_(config),
      journal_(config.journalLimit),
      channel_(config.device, faults_, journal_),
      registration_(config.device, *this) {
    if (config.mode == Mode::threaded) {
        thread_ = std::thread([this] { run(); });
    }
}

SoftChip::~SoftChip() {
    queue_.stop();
    if (thread_.joinable()) {
        thread_.join();
    }
}

// Counts the call and settles its result: a fault's, the refusal's, or 0.
bool SoftChip::refused(JournalEntry& entry, Status refusal) {
    auto const failure = faults_.failure(entry.call);
    entry.result = failure ? *failure : static_cast<p4_pd_status_t>(refusal);
    return entry.result != 0;
}

p4_pd_status_t SoftChip::getPktCounters(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                        std::uint32_t appId, std::uint64_t& count) {
    auto entry = pipeCall(Call::getPktCounters, session, pipe);
    entry.appId = appId;
    if (!refused(entry, checkApp(session, pipe, appId))) {
        entry.count = generators_[pipe].counter();
    }
    count = entry.count;
    journal_.add(entry);
    return entry.result;
}

p4_pd_status_t SoftChip::genOnePkt(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                   std::uint32_t genPort, std::uint8_t portIndex,
                                   std::uint32_t appId, std::span<std::uint8_t const> pkt,
                                   std::span<std::uint8_t const> phase0, std::uint16_t pktId) {
    auto entry = pipeCall(Call::genOnePkt, session, pipe);
    entry.genPort = genPort;
    entry.portIndex = portIndex;
    entry.appId = appId;
    entry.pktBytes = static_cast<std::uint32_t>(pkt.size());
    entry.phase0Bytes = static_cast<std::uint32_t>(phase0.size());
    entry.pktId = pktId;
    auto check = checkApp(session, pipe, appId);
    check = firstOf(check, genPort == generatorPort, Status::unknownGenPort);
    check = firstOf(check, portExists(pipe, portIndex), Status::unknownPort);
    check = firstOf(check, !phase0.empty(), Status::noPhase0);
    check =
        firstOf(check, !pkt.empty() && pkt.size() <= generatorBufferBytes, Status::badPacketSize);
    bool const accepted = !refused(entry, check);
    journal_.add(entry);
    if (accepted) {
        generators_[pipe].enable();
        queue_.pushInjection(
            {static_cast<std::uint8_t>(pipe), portIndex, pktId, channel_.receiver(), phase0, pkt});
    }
    return entry.result;
}

p4_pd_status_t SoftChip::disableAppId(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                      std::uint32_t appId) {
    auto entry = pipeCall(Call::disableAppId, session, pipe);
    entry.appId = appId;
    if (!refused(entry, checkApp(session, pipe, appId))) {
        generators_[pipe].disableApp();
    }
    journal_.add(entry);
    return entry.result;
}

p4_pd_status_t SoftChip::disablePktGen(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                       std::uint32_t genPort) {
    auto entry = pipeCall(Call::disablePktGen, session, pipe);
    entry.genPort = genPort;
    auto const check =
        firstOf(checkPipe(session, pipe), genPort == generatorPort, Status::unknownGenPort);
    if (!refused(entry, check)) {
        generators_[pipe].disablePort();
    }
    journal_.add(entry);
    return entry.result;
}

p4_pd_status_t SoftChip::digestRegister(p4_pd_sess_hdl_t session, std::uint32_t handle,
                                        pipe_flow_lrn_notify_cb callback, void* cookie) {
    auto entry = digestCall(Call::digestRegister, session, handle);
    if (!refused(entry, checkDigest(session, handle))) {
        entry.result =
            static_cast<p4_pd_status_t>(channel_.registerCallback({session, callback, cookie}));
    }
    journal_.add(entry);
    return entry.result;
}

p4_pd_status_t SoftChip::digestDeregister(p4_pd_sess_hdl_t session, std::uint32_t handle) {
    auto entry = digestCall(Call::digestDeregister, session, handle);
    auto const check = checkDigest(session, handle);
    bool const fails = refused(entry, check);
    if (check == Status::ok) {
        auto const status = channel_.deregister();
        entry.result = fails ? entry.result : static_cast<p4_pd_status_t>(status);
    }
    journal_.add(entry);
    return entry.result;
}

p4_pd_status_t SoftChip::notifyAck(p4_pd_sess_hdl_t session, std::uint32_t handle,
                                   pipe_flow_lrn_msg_t* message) {
    auto entry = digestCall(Call::notifyAck, session, handle);
    bool resume = false;
    if (!refused(entry, checkDigest(session, handle))) {
        entry.result = static_cast<p4_pd_status_t>(channel_.acknowledge(message, resume));
    }
    journal_.add(entry);
    if (resume) {
        queue_.wake();
    }
    return entry.result;
}

Status SoftChip::checkPipe(p4_pd_sess_hdl_t session, std::uint32_t pipe) const {
    return firstOf(firstOf(Status::ok, session == config_.session, Status::unknownSession),
                   pipe < pipeCount, Status::unknownPipe);
}

Status SoftChip::checkApp(p4_pd_sess_hdl_t session, std::uint32_t pipe, std::uint32_t appId) const {
    return firstOf(checkPipe(session, pipe), appId == generatorApp, Status::unknownApp);
}

Status SoftChip::checkDigest(p4_pd_sess_hdl_t session, std::uint32_t handle) const {
    return firstOf(firstOf(Status::ok, session == config_.session, Status::unknownSession),
                   handle == digestHandle, Status::unknownDigest);
}

void SoftChip::change(std::function<void(Tables&)> change) {
    queue_.pushChange(std::move(change));
}

void SoftChip::drain() {
    if (config_.mode == Mode::threaded) {
        queue_.waitUntilDone();
        return;
    }
    while (step()) {
    }
}

bool SoftChip::step() {
    Vanta::assertThat(config_.mode == Mode::stepwise, "mode == Mode::stepwise");
    bool const pending = queue_.pending();
    carryOut(queue_.take());
    return pending;
}

void SoftChip::run() {
    while (auto const commands = queue_.waitAndTake()) {
        carryOut(*commands);
    }
}

void SoftChip::carryOut(std::span<Command> commands) {
    for (auto& command : commands) {
        carryOut(command);
    }
    channel_.send();
    queue_.done();
}

void SoftChip::carryOut(Command& command) {
    switch (command.kind) {
        case Command::Kind::inject:
            inject(command);
            break;
        case Command::Kind::change:
            changeTables(command);
            break;
        case Command::Kind::releaseHeld:
            channel_.releaseHeld();
            break;
    }
}

void SoftChip::changeTables(Command& command) {
    try {
        command.change(tables_);
    } catch (...) {
        Vanta::endProcessWithCurrentException();
    }
    command.change = nullptr;
    journal_.add({.kind = JournalEntry::Kind::tableChange});
}

void SoftChip::inject(Command const& command) {
    generators_[command.pipe].noteGenerated();
    bool const explain = explanations_.on();
    JournalEntry entry{.kind = JournalEntry::Kind::injection};
    entry.decision =
        decide(tables_, command.phase0(), command.pkt(), explain ? &explanation_ : nullptr);
    entry.pktId = command.pktId;
    entry.pipe = command.pipe;
    entry.portIndex = command.portIndex;
    entry.pktBytes = static_cast<std::uint32_t>(command.pkt().size());
    journal_.add(entry);
    if (explain) {
        explanations_.add(command.pktId, explanation_);
    }
    channel_.add(command.pktId, entry.decision, command.receiver);
}

}  // namespace SoftChip
