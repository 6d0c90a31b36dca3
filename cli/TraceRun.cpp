#include "cli/TraceRun.h"

#include <utility>

#include "cli/UsageError.h"
#include "cli/Words.h"

namespace Cli {
namespace {

constexpr auto forever = Agent::TraceClient::Clock::duration::max();
// How often a source that was not ready is asked again.
constexpr std::chrono::milliseconds sourcePause{20};

double seconds(std::chrono::nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}

}  // namespace

TraceRun::TraceRun(Agent::ForwardingAgent& agent, FrameSource& source, TraceRunOptions options,
                   Report report, Pause pause)
    : agent_(agent),
      source_(source),
      options_(std::move(options)),
      report_(std::move(report)),
      pause_(std::move(pause)),
      client_(agent, "vynpt", options_.timeout) {
    agent_.chip().explanations().onIs(options_.road != nullptr);
}

TraceRun::Result TraceRun::run(std::function<bool()> const& stopped) {
    while (!stopped()) {
        while (wantsMore() && !stopped()) {
            addNext();
        }
        if (pending_.empty() || stopped()) {
            break;
        }
        if (auto answer = client_.poll(ended_ || source_.ready() ? forever : sourcePause)) {
            take(std::move(*answer));
            reportAnswered();
            client_.answerDelivered();
        } else {
            pause_();
        }
    }
    return std::exchange(result_, {});
}

// Waits for the source only while no request waits for an answer.
bool TraceRun::wantsMore() const {
    std::size_t const room = options_.road != nullptr ? 1 : window;
    return !ended_ && pending_.size() < room && (pending_.empty() || source_.ready());
}

void TraceRun::addNext() {
    if (pending_.empty()) {
        pause_();
    }
    try {
        if (auto packet = source_.next()) {
            add(std::move(*packet));
            return;
        }
    } catch (UsageError const& error) {
        result_.badInput = error.what();
    }
    ended_ = true;
}

void TraceRun::add(Packet packet) {
    auto const request = client_.request();
    packet.describeTo(*request);
    request->intfIs(options_.ingress);
    if (pending_.empty()) {
        firstNumber_ = request->id().number();
    }
    pending_.push_back({.packet = std::move(packet), .answer = {}, .road = {}, .steps = {}});
    if (options_.road != nullptr) {
        options_.road->start();
    }
    client_.add(request);
}

void TraceRun::take(Agent::Answer answer) {
    Pending& pending = pending_[answer.number - firstNumber_];
    pending.answer = std::move(answer);
    if (options_.road != nullptr) {
        explain(pending);
    }
}

void TraceRun::explain(Pending& pending) {
    pending.road = options_.road->take();
    auto const& injection = pending.answer->injection;
    auto const explanation =
        injection ? agent_.chip().explanations().find(injection->pktId) : std::nullopt;
    if (explanation) {
        pending.steps = options_.names->steps(*explanation);
    }
}

void TraceRun::reportAnswered() {
    while (!pending_.empty() && pending_.front().answer) {
        FrameReport const report = reportOf(std::move(pending_.front()));
        pending_.pop_front();
        ++firstNumber_;
        ++result_.frames;
        result_.unanswered |= report.answer.outcome == Agent::Outcome::noAnswer;
        result_.unexpected |= report.difference && !report.difference->none();
        report_(report);
    }
}

FrameReport TraceRun::reportOf(Pending pending) {
    FrameReport report;
    report.packet = std::move(pending.packet);
    report.ingress = options_.ingress;
    report.answer = std::move(*pending.answer);
    report.remark =
        remarkWords(report.packet, report.ingress, report.answer, seconds(options_.timeout));
    if (options_.expectation && report.answer.outcome != Agent::Outcome::noAnswer) {
        report.difference = options_.expectation->differenceTo(report.answer.egress);
    }
    report.explained = options_.road != nullptr;
    report.road = std::move(pending.road);
    report.steps = std::move(pending.steps);
    return report;
}

}  // namespace Cli
