#include "simulate/Run.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "Vanta/Assert.h"

namespace Simulate {
namespace {

std::size_t openDescriptors() {
    std::filesystem::directory_iterator const open("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(open), end(open)));
}

}  // namespace

Run::Run(Program const& program, std::function<void(Report const&)> finish)
    : program_(program),
      finish_(std::move(finish)),
      nodesBefore_(Vanta::Node::liveCount()),
      descriptorsBefore_(openDescriptors()) {
    world_.emplace(program.drawn);
}

Report Run::go() {
    for (auto const& event : program_.events) {
        ++report_.position;
        carryOut(event);
        if (failed()) {
            return report_;
        }
    }
    closing();
    if (!failed()) {
        world_.reset();
        if (Vanta::Node::liveCount() != nodesBefore_) {
            fail({"nodes",
                  joined(Vanta::Node::liveCount() - nodesBefore_, " nodes outlive everybody")});
        } else if (auto const open = openDescriptors(); open != descriptorsBefore_) {
            fail({"descriptors", joined(open, " descriptors are open where there were ",
                                        descriptorsBefore_, " before everybody")});
        }
    }
    return report_;
}

// Turns are carried out one by one, each a step of its own, and so is the chip's work between.
void Run::carryOut(Event const& event) {
    if (!model_.applies(event)) {
        return;
    }
    carried_ = event;
    auto const* const turns = std::get_if<Turns>(&event);
    if (turns == nullptr) {
        static_cast<void>(step(event));
        return;
    }
    Event const turn = Do::Turn();
    Event const chipStep = ChipStep();
    for (std::uint64_t i = 0; i < turns->times; ++i) {
        if (!step(turn) || (turns->chipWorks && !step(chipStep))) {
            return;
        }
    }
}

bool Run::step(Event const& event) {
    ++report_.step;
    report_.turns += scenarioEvent<Do::Turn>(event) != nullptr ? 1 : 0;
    event_ = &event;
    world_->carryOut(event);
    if (interfere_) {
        interfere_(*world_, event);
    }
    writeDown(event);
    report_.injections = world_->packets().injections();
    report_.messages = world_->board().messages();
    wasOrderly_ =
        scenarioEvent<Do::Start>(event) != nullptr || (wasOrderly_ && world_->packets().orderly());
    try {
        model_.apply(event, world_->logbook().wire());
    } catch (Fatal const& fatal) {
        return fail(
            {"end", joined("the process should have ended with ", fatal.type, " ", fatal.text)});
    }
    if (auto const breach = check()) {
        return fail(*breach);
    }
    return true;
}

void Run::writeDown(Event const& event) {
    if (transcript_ != nullptr) {
        transcript_->add(event, world_->logbook().wire(), model_);
    }
}

std::optional<Breach> Run::check() {
    auto const happened = world_->logbook().takeLog();
    world_->packets().checkJournal(world_->chip().journal(),
                                   std::holds_alternative<ChipStep>(*event_));
    if (auto const breach = world_->logbook().takeBreach()) {
        return breach;
    }
    if (auto const breach = compareLogs(happened)) {
        return breach;
    }
    auto const there = world_->content();
    auto const foretold = model_.content();
    auto const [real, model] = std::ranges::mismatch(there, foretold);
    if (real != there.end() || model != foretold.end()) {
        return Breach{"content",
                      joined("there is: ", real != there.end() ? *real : "nothing more",
                             "\n  foretold: ", model != foretold.end() ? *model : "nothing more")};
    }
    if (auto const breach = world_->unpublished()) {
        return breach;
    }
    if (auto const breach = world_->shrunkenResults(world_->logbook().takeAddedResults())) {
        return breach;
    }
    if (world_->nodes() != model_.nodes()) {
        return Breach{"nodes",
                      joined("there are ", world_->nodes(), " nodes, foretold ", model_.nodes())};
    }
    bool const listens = model_.running() && world_->board().registered();
    if (world_->board().registered() != listens) {
        return Breach{"silence", "the chip would call a tracer that is gone"};
    }
    return std::nullopt;
}

std::optional<Breach> Run::compareLogs(std::vector<std::string> const& happened) {
    auto const foretold = model_.takeLog();
    auto const [real, model] = std::ranges::mismatch(happened, foretold);
    if (real == happened.end() && model == foretold.end()) {
        return std::nullopt;
    }
    return Breach{"events",
                  joined("happened: ", real != happened.end() ? *real : "nothing more",
                         "\n  foretold: ", model != foretold.end() ? *model : "nothing more")};
}

bool Run::fail(Breach const& breach) {
    report_.failed = true;
    report_.invariant = breach.invariant;
    report_.detail = breach.detail;
    report_.event = carried_ ? text(*carried_) : "";
    return false;
}

// ---- The end of the process

// The event is not over, and never will be: what was seen of it must be the beginning of what the
// model foretells, and the model must end in the same way. The model is given only what the tracer
// got as far as asking for.
void Run::ended(std::string_view type, std::string_view text) {
    writeDown(*event_);
    auto const happened = world_->logbook().takeLog();
    Fatal foretold;
    try {
        model_.apply(*event_, world_->logbook().wire());
    } catch (Fatal const& fatal) {
        foretold = fatal;
    }
    if (auto const breach = compareLogs(happened)) {
        fail(*breach);
        report_.detail += joined("\n  and then the process ended with ", type, " ", text);
    } else if (foretold.type != type || (!foretold.text.empty() && foretold.text != text)) {
        fail({"end", joined("the process ended with ", type, " ", text, "\n  foretold: ",
                            foretold.type.empty() ? "no end" : foretold.type, " ", foretold.text)});
    }
    report_.end = std::string(type);
    finish_(report_);
}

// ---- The closing

void Run::turns(unsigned count) {
    carryOut(Turns{count, true});
}

void Run::closing() {
    ++report_.position;
    carryOut(FaultsEnd());
    carryOut(ReleaseHeld());
    carryOut(Do::YieldAfter{64});
    carryOut(Do::Start{.session = Model::session, .device = Model::device});
    if (failed() || !settle() || !pushThrough()) {
        return;
    }
    std::vector<Id> orphans;
    for (auto const& id : model_.jobs()) {
        if (!isAsked(id)) {
            orphans.push_back(id);
        }
    }
    for (unsigned client = 0; client < clientCount && !failed(); ++client) {
        carryOut(RequestDelAll{clientName(client)});
        carryOut(Do::ClientConfigDel{clientName(client)});
        carryOut(Do::ClientStatusDel{clientName(client)});
    }
    turns(turnsToBeFree);
    if (failed() || !checkLeft(orphans)) {
        return;
    }
    carryOut(Do::Stop());
    carryOut(ChipStep());
}

// What was late comes now; digests that wait are read one a turn.
bool Run::settle() {
    turns(12);
    for (unsigned i = 0; i < 3000 && model_.unread() > 0 && !failed(); ++i) {
        turns(1);
    }
    return !failed();
}

// Whether a job is still wanted: its client runs and has the request.
bool Run::isAsked(Id const& id) const {
    auto const requests = model_.requestsOf(id.first);
    return model_.clientRuns(id.first) && std::ranges::find(requests, id) != requests.end();
}

// Each job goes through within its turns unless it is held up: its phase-0 answer was lost, its
// counter has not moved, or the chip refuses its calls for good. Such a job is withdrawn, which
// must free the engine.
bool Run::pushThrough() {
    for (unsigned guard = 0; guard < 200; ++guard) {
        auto const pending = model_.pendingJobs();
        bool const busy = model_.state() != Model::State::idle;
        if (pending.empty() && !busy) {
            return true;
        }
        auto const injected = world_->packets().accepted();
        auto const job = model_.currentJob();
        auto const before = model_.state();
        turns(turnsPerJob);
        if (failed()) {
            return false;
        }
        bool const moved = world_->packets().accepted() > injected ||
                           (before != Model::State::idle && model_.state() == Model::State::idle);
        if (moved) {
            continue;
        }
        auto const stuck = model_.currentJob();
        if (!stuck || !world_->isHeldUp()) {
            return fail({"progress", joined("nothing was injected in ", turnsPerJob,
                                            " turns; the engine is in ", text(model_.state()))});
        }
        if (!withdraw(*stuck)) {
            return false;
        }
    }
    return fail({"progress", "jobs do not come to an end"});
}

bool Run::withdraw(Id const& id) {
    PacketTracer::RequestId const request(id.first, id.second);
    if (!model_.clientRuns(id.first)) {
        // Only the client itself can withdraw what it left behind.
        carryOut(Do::ClientConfig{id.first});
        carryOut(Do::ClientStatus{id.first});
    }
    if (!isAsked(id)) {
        carryOut(Do::Request{.id = request, .etherType = 0, .valid = false, .raw = {}});
    }
    carryOut(Do::RequestDel{request});
    turns(turnsToBeFree);
    if (failed()) {
        return false;
    }
    bool const freed = model_.state() == Model::State::idle || model_.currentJob() != id;
    return freed || fail({"progress",
                          joined("withdrawing ", id.first, "/", id.second,
                                 " did not free the engine, which is in ", text(model_.state()))});
}

bool Run::checkLeft(std::vector<Id> const& orphans) {
    for (auto const& id : model_.jobs()) {
        if (std::ranges::find(orphans, id) == orphans.end()) {
            return fail({"leaks", joined("the job ", id.first, "/", id.second, " is left over")});
        }
    }
    for (auto const& id : model_.answers()) {
        if (wasOrderly_ && std::ranges::find(orphans, id) == orphans.end()) {
            return fail(
                {"leaks", joined("the answer ", id.first, "/", id.second, " is left over")});
        }
    }
    return true;
}

}  // namespace Simulate
