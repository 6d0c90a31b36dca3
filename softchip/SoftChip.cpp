#include "softchip/SoftChip.h"

#include "Vanta/Assert.h"

namespace SoftChip {

using SdkSeam::SdkCall;

namespace {

bool portExists(std::uint32_t pipe, std::uint8_t portIndex) {
    return portIndex < portsPerPipe && pipe * portsPerPipe + portIndex <= maxDevicePort;
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

// A call takes effect on the chip's thread only after it was noted in the journal.
void SoftChip::call(SdkCall& call) {
    auto const refusal = check(call);
    auto const failure = faults_.failure(call.function);
    call.rc = failure ? *failure : static_cast<p4_pd_status_t>(refusal);
    call.count = 0;
    bool wakes = false;
    if (call.rc == 0) {
        wakes = accept(call);
    } else if (refusal == Status::ok && call.function == SdkFunction::digestDeregister) {
        static_cast<void>(channel_.deregister());
    }
    journal_.add(JournalEntry::of(call));
    if (wakes) {
        queue_.wake();
    } else if (call.rc == 0 && call.function == SdkFunction::genOnePkt) {
        generators_[call.pipe].enable();
        queue_.pushInjection({static_cast<std::uint8_t>(call.pipe), call.portIndex, call.pktId,
                              channel_.registration(), call.phase0, call.pkt});
    }
}

// Does what must be done before the call is noted. True if the chip's thread has something to do
// afterwards.
bool SoftChip::accept(SdkCall& call) {
    bool wakes = false;
    switch (call.function) {
        case SdkFunction::getPktCounters:
            call.count = generators_[call.pipe].counter();
            break;
        case SdkFunction::genOnePkt:
            break;
        case SdkFunction::disableAppId:
            generators_[call.pipe].disableApp();
            break;
        case SdkFunction::disablePktGen:
            generators_[call.pipe].disablePort();
            break;
        case SdkFunction::digestRegister:
            call.rc = static_cast<p4_pd_status_t>(channel_.registerCallback(call.receiver()));
            break;
        case SdkFunction::digestDeregister:
            call.rc = static_cast<p4_pd_status_t>(channel_.deregister());
            break;
        case SdkFunction::notifyAck:
            call.rc = static_cast<p4_pd_status_t>(channel_.acknowledge(call.message, wakes));
            break;
    }
    return wakes;
}

Status SoftChip::check(SdkCall const& call) const {
    switch (call.function) {
        case SdkFunction::getPktCounters:
        case SdkFunction::disableAppId:
            return checkApp(call);
        case SdkFunction::genOnePkt:
            return checkInjection(call);
        case SdkFunction::disablePktGen:
            return firstOf(checkPipe(call), call.genPort == generatorPort, Status::unknownGenPort);
        case SdkFunction::digestRegister:
        case SdkFunction::digestDeregister:
        case SdkFunction::notifyAck:
            break;
    }
    return checkDigest(call);
}

Status SoftChip::checkPipe(SdkCall const& call) const {
    return firstOf(firstOf(Status::ok, call.session == config_.session, Status::unknownSession),
                   call.pipe < pipeCount, Status::unknownPipe);
}

Status SoftChip::checkApp(SdkCall const& call) const {
    return firstOf(checkPipe(call), call.appId == generatorApp, Status::unknownApp);
}

Status SoftChip::checkInjection(SdkCall const& call) const {
    auto status = checkApp(call);
    status = firstOf(status, call.genPort == generatorPort, Status::unknownGenPort);
    status = firstOf(status, portExists(call.pipe, call.portIndex), Status::unknownPort);
    status = firstOf(status, !call.phase0.empty(), Status::noPhase0);
    bool const fits = !call.pkt.empty() && call.pkt.size() <= generatorBufferBytes;
    return firstOf(status, fits, Status::badPacketSize);
}

Status SoftChip::checkDigest(SdkCall const& call) const {
    return firstOf(firstOf(Status::ok, call.session == config_.session, Status::unknownSession),
                   call.handle == SdkSeam::digestHandle, Status::unknownDigest);
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
    channel_.add(command.pktId, entry.decision, command.registration);
}

}  // namespace SoftChip
