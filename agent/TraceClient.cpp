#include "agent/TraceClient.h"

#include <algorithm>
#include <utility>

namespace Agent {

using PacketTracer::State;
using VynPortTypes::PortIndex;

// A request that was added. It listens to its result from the moment there is one.
struct TraceClient::Waiting {
    Waiting(TraceClient& client, std::uint32_t ownNumber, Clock::time_point ownAdded)
        : owner(client), number(ownNumber), added(ownAdded) {}

    void resultValid() {
        if (!answered) {
            answered = true;
            owner.lastEvent_ = owner.now_();
            owner.answered_.push_back(number);
        }
    }

    TraceClient& owner;
    std::uint32_t const number;
    Clock::time_point const added;
    bool answered = false;
    Vanta::Subscriber resultSubscriber;
};

std::string_view text(Outcome outcome) noexcept {
    switch (outcome) {
        case Outcome::refused:
            return "refused";
        case Outcome::unknownIngress:
            return "unknown ingress";
        case Outcome::dropped:
            return "dropped";
        case Outcome::flooded:
            return "flooded";
        case Outcome::forwarded:
            return "forwarded";
        case Outcome::noEgressPort:
            return "no egress port";
        case Outcome::noAnswer:
            return "no answer";
    }
    return "";
}

TraceClient::TraceClient(ForwardingAgent& agent, Vanta::String name, Clock::duration limit, Now now)
    : agent_(agent),
      name_(std::move(name)),
      limit_(limit),
      now_(std::move(now)),
      config_(PacketTracer::ClientConfig::ClientConfigIs()),
      status_(PacketTracer::ClientStatus::ClientStatusIs()),
      lastEvent_(now_()) {
    statusSubscriber_
        .subscribe<&TraceClient::resultChanged, PacketTracer::ClientStatus::resultAttribute>(
            status_->publisher(), this);
    agent_.clientConfigs().entryIs(name_, config_);
    agent_.clientStatuses().entryIs(name_, status_);
}

TraceClient::~TraceClient() {
    while (!waiting_.empty()) {
        withdraw(waiting_.front()->number);
    }
    agent_.clientConfigs().entryDel(name_);
    agent_.clientStatuses().entryDel(name_);
}

Vanta::Ptr<PacketTracer::Request> TraceClient::request() {
    return PacketTracer::Request::RequestIs(idOf(++lastNumber_));
}

void TraceClient::add(Vanta::Ptr<PacketTracer::Request> const& request) {
    waiting_.push_back(std::make_unique<Waiting>(*this, request->id().number(), now_()));
    // It is valid when it arrives, so it is handled once.
    request->validIs(true);
    config_->requestIs(request);
}

void TraceClient::resultChanged(Vanta::Change const& change) {
    auto const& id = change.key.get<PacketTracer::RequestId>();
    Waiting* const waiting = find(id.number());
    auto const result = status_->result(id);
    if (waiting != nullptr && result) {
        waiting->resultSubscriber
            .subscribe<&Waiting::resultValid, PacketTracer::Result::validAttribute>(
                result->publisher(), waiting);
    }
}

TraceClient::Waiting* TraceClient::find(std::uint32_t number) noexcept {
    auto const found = std::ranges::lower_bound(
        waiting_, number, {}, [](std::unique_ptr<Waiting> const& w) { return w->number; });
    bool const isThere = found != waiting_.end() && (*found)->number == number;
    return isThere ? found->get() : nullptr;
}

std::optional<Answer> TraceClient::poll(Clock::duration maxWait) {
    if (auto answer = takeAnswer()) {
        return answer;
    }
    Clock::duration const untilLimit = untilFirstLimit();
    bool const limitPassed = untilLimit <= Clock::duration::zero();
    agent_.loop().turn(std::clamp(untilLimit, Clock::duration::zero(), maxWait));
    auto answer = takeAnswer();
    return !answer && limitPassed ? takeLate() : std::move(answer);
}

// Requests are kept in the order of their addition, and the engine serves them in this order. So no
// request has an earlier limit than the first one. The first one may always be late: it is either
// injected, or the first of those that are not.
TraceClient::Clock::duration TraceClient::untilFirstLimit() const {
    if (waiting_.empty()) {
        return Clock::duration::max();
    }
    return std::max(waiting_.front()->added, lastEvent_) + limit_ - now_();
}

// ---- Answers

std::optional<Injection> TraceClient::injectionOf(PacketTracer::RequestId const& id) const {
    auto const status = agent_.tracer().pktGenStatus()->status(id);
    if (!status) {
        return std::nullopt;
    }
    auto const job = agent_.tracer().pktGenCfg()->cfg(id);
    return Injection{.frame = job ? job->pkt() : Vanta::Bytes(),
                     .pktId = status->pktId(),
                     .egressPort = status->egrPortInfo().port().value(),
                     .l2Domain = status->egrL2Domain(),
                     .routed = status->routed(),
                     .copyToCpu = status->copyToCpu(),
                     .dropped = status->dropped()};
}

namespace {

Outcome outcomeOf(State state, std::optional<Injection> const& injection) {
    if (state == State::notTraceable) {
        return Outcome::refused;
    }
    if (!injection) {
        return Outcome::unknownIngress;
    }
    if (injection->dropped) {
        return Outcome::dropped;
    }
    if (state != State::egressFound) {
        return Outcome::noEgressPort;
    }
    return injection->egressPort == PortIndex::invalid ? Outcome::flooded : Outcome::forwarded;
}

}  // namespace

std::optional<Answer> TraceClient::takeAnswer() {
    if (answered_.empty()) {
        return std::nullopt;
    }
    Answer answer;
    answer.number = answered_.front();
    answered_.pop_front();
    auto const id = idOf(answer.number);
    auto const result = status_->result(id);
    answer.state = result->state();
    answer.injection = injectionOf(id);
    answer.outcome = outcomeOf(*answer.state, answer.injection);
    for (auto const& entry : result->egressIntf()) {
        answer.egress.push_back(entry.key);
    }
    withdraw(answer.number);
    return answer;
}

Answer TraceClient::takeLate() {
    Answer answer;
    answer.number = waiting_.front()->number;
    answer.injection = injectionOf(idOf(answer.number));
    withdraw(answer.number);
    lastEvent_ = now_();
    return answer;
}

void TraceClient::withdraw(std::uint32_t number) {
    std::erase_if(waiting_, [number](auto const& waiting) { return waiting->number == number; });
    config_->requestDel(idOf(number));
}

}  // namespace Agent
