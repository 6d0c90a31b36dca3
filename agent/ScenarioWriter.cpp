#include "agent/ScenarioWriter.h"

#include <algorithm>
#include <utility>

#include "agent/ScenarioLines.h"

namespace Agent {

ScenarioWriter::Under::Under() = default;

void ScenarioWriter::event(std::string line) {
    close();
    under_.emplace().line = std::move(line);
}

void ScenarioWriter::stop(std::string line) {
    event(std::move(line));
    under_->isStop = true;
}

void ScenarioWriter::remark(std::string_view text) {
    if (!under_) {
        add(Line::comment(text));
        return;
    }
    under_->remarks.push_back(Line::comment(text));
}

// The turn as the event under way, which it may be already.
ScenarioWriter::Under& ScenarioWriter::turnUnder(TurnNumber turn) {
    if (!under_ || !under_->line.empty() || under_->turn != turn) {
        close();
        under_.emplace().turn = turn;
        if (closedTurn_ == turn) {
            under_->ahead.push_back(Line::comment(
                "one turn of the run: something came between its digest and its task"));
        }
    }
    return *under_;
}

void ScenarioWriter::digestAnnounced(TurnNumber turn) {
    Under& under = turnUnder(turn);
    if (!unread_.empty()) {
        under.messages.splice(under.messages.end(), unread_, unread_.begin());
    }
}

void ScenarioWriter::taskRuns(TurnNumber turn, std::uint32_t yieldAfter) {
    Under& under = turnUnder(turn);
    under.taskRan = true;
    if (std::exchange(yieldAfter_, yieldAfter) != yieldAfter) {
        under.ahead.push_back(Line::yieldAfter(yieldAfter));
    }
}

void ScenarioWriter::called(std::string_view call, std::int32_t rc) {
    if (!under_) {
        return;
    }
    auto found = std::ranges::find(under_->calls, call, &Calls::name);
    if (found == under_->calls.end()) {
        found = under_->calls.insert(found, {call, {}});
    }
    found->results.push_back(rc);
}

void ScenarioWriter::counterRead(std::uint32_t pipe, std::uint64_t count) {
    if (under_) {
        under_->counters[pipe].push_back(count);
    }
}

ScenarioWriter::Reception ScenarioWriter::received(std::span<std::uint8_t const> entries) {
    unread_.push_back({.number = ++receptions_, .line = Line::digest(entries)});
    return receptions_;
}

namespace {

// Where a message stands now: the lists that may have it, one after the other.
template <class Lists, class Use>
void useMessage(Lists const& lists, std::uint64_t number, Use const& use) {
    for (auto* const list : lists) {
        for (auto& message : *list) {
            if (message.number == number) {
                return use(message);
            }
        }
    }
}

}  // namespace

// One callback runs at a time, so what is acknowledged was received last.
void ScenarioWriter::acknowledged(std::int32_t rc) {
    std::vector<Messages*> lists{&unread_};
    if (under_) {
        lists.push_back(&under_->messages);
    }
    for (Item& item : items_) {
        lists.push_back(&item.message);
    }
    useMessage(lists, receptions_, [rc](Message& message) { message.rc = rc; });
}

void ScenarioWriter::done(Reception reception) {
    std::vector<Messages*> lists{&unread_};
    if (under_) {
        lists.push_back(&under_->messages);
    }
    for (Item& item : items_) {
        lists.push_back(&item.message);
    }
    useMessage(lists, reception, [](Message& message) { message.done = true; });
}

// ---- Writing

void ScenarioWriter::close() {
    if (!under_) {
        return;
    }
    Under under = *std::exchange(under_, std::nullopt);
    bool const isTurn = under.line.empty();
    if (under.isStop) {
        under.messages.splice(under.messages.end(), unread_);
    }
    addCounters(under);
    addCalls(under);
    if (!under.ahead.empty() || !under.messages.empty() || !isTurn) {
        addTurns();
    }
    for (std::string const& line : under.ahead) {
        add(line);
    }
    addMessages(std::move(under.messages));
    if (isTurn) {
        ++turns_;
        closedTurn_ = under.taskRan ? std::nullopt : std::optional(under.turn);
    } else {
        add(under.line);
    }
    if (!under.remarks.empty()) {
        addTurns();
    }
    for (std::string const& line : under.remarks) {
        add(line);
    }
    write(false);
}

void ScenarioWriter::addCounters(Under& under) {
    for (auto const& [pipe, values] : under.counters) {
        std::uint64_t& standing = counters_[pipe];
        if (std::ranges::any_of(values, [&](std::uint64_t v) { return v != standing; })) {
            under.ahead.push_back(Line::counter(pipe, values));
        }
        standing = values.back();
    }
}

// One instruction a function: so many calls that succeed, so many that fail alike, and no more.
void ScenarioWriter::addCalls(Under& under) {
    for (auto const& [name, results] : under.calls) {
        auto const first = std::ranges::find_if(results, [](std::int32_t rc) { return rc != 0; });
        if (first == results.end()) {
            continue;
        }
        auto const last =
            std::find_if(first, results.end(), [&](std::int32_t rc) { return rc != *first; });
        if (std::any_of(last, results.end(), [](std::int32_t rc) { return rc != 0; })) {
            under.ahead.push_back(Line::comment("a later call of " + std::string(name) +
                                                " in this event failed in another way"));
        }
        under.ahead.push_back(Line::sdkReturn(name, *first,
                                              static_cast<std::uint64_t>(last - first),
                                              static_cast<std::uint64_t>(first - results.begin())));
    }
}

void ScenarioWriter::add(std::string const& line) {
    if (items_.empty() || !items_.back().message.empty()) {
        items_.emplace_back();
    }
    items_.back().lines.append(line).push_back('\n');
}

void ScenarioWriter::addMessages(Messages&& messages) {
    while (!messages.empty()) {
        Item& item = items_.emplace_back();
        item.message.splice(item.message.end(), messages, messages.begin());
    }
}

void ScenarioWriter::addTurns() {
    while (turns_ > 0) {
        auto const times = std::min(turns_, mostTurns_);
        add(Line::turn(times));
        turns_ -= times;
    }
}

void ScenarioWriter::write(bool all) {
    std::string lines;
    for (; !items_.empty(); items_.pop_front()) {
        Item const& item = items_.front();
        if (item.message.empty()) {
            lines += item.lines;
            continue;
        }
        Message const& message = item.message.front();
        if (!message.done && !all) {
            break;
        }
        if (message.rc != 0) {
            lines += Line::sdkReturn("pipe_mgr_flow_lrn_notify_ack", message.rc, 1, 0) + '\n';
        }
        lines += message.line + '\n';
    }
    if (!lines.empty()) {
        file_.append(lines);
    }
}

void ScenarioWriter::finish() {
    close();
    addTurns();
    addMessages(std::move(unread_));
    write(true);
}

}  // namespace Agent
