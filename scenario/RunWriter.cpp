#include "scenario/RunWriter.h"

#include <algorithm>
#include <utility>

#include "scenario/Writer.h"
#include "sdkseam/TraceDigest.h"

namespace Scenario {
namespace {

using SdkSeam::SdkFunction;

std::string comment(std::string_view text) {
    return "# " + std::string(text);
}

Do::Digest digestOf(std::span<std::uint8_t const> bytes) {
    using SdkSeam::digestEntryBytes;
    Do::Digest digest;
    for (; bytes.size() >= digestEntryBytes; bytes = bytes.subspan(digestEntryBytes)) {
        digest.entries.push_back(SdkSeam::unpacked(bytes.first<digestEntryBytes>()));
    }
    return digest;
}

}  // namespace

RunWriter::Under::Under() = default;

void RunWriter::event(Event event) {
    close();
    under_.emplace().event = std::move(event);
}

void RunWriter::remark(std::string_view text) {
    if (!under_) {
        add(comment(text));
        return;
    }
    under_->remarks.push_back(comment(text));
}

// The turn as the event under way, which it may be already.
RunWriter::Under& RunWriter::turnUnder(TurnNumber turn) {
    if (!under_ || under_->event || under_->turn != turn) {
        close();
        under_.emplace().turn = turn;
        if (closedTurn_ == turn) {
            under_->ahead.push_back(
                comment("one turn of the run: something came between its digest and its task"));
        }
    }
    return *under_;
}

void RunWriter::digestAnnounced(TurnNumber turn) {
    Under& under = turnUnder(turn);
    if (!unread_.empty()) {
        under.messages.splice(under.messages.end(), unread_, unread_.begin());
    }
}

void RunWriter::taskRuns(TurnNumber turn, std::uint32_t yieldAfter) {
    Under& under = turnUnder(turn);
    under.taskRan = true;
    if (std::exchange(yieldAfter_, yieldAfter) != yieldAfter) {
        under.ahead.push_back(line(Do::YieldAfter{yieldAfter}));
    }
}

void RunWriter::called(SdkFunction call, std::int32_t rc) {
    if (under_) {
        under_->answers.called(call, rc);
    }
}

void RunWriter::counterRead(std::uint32_t pipe, std::uint64_t count) {
    if (under_) {
        under_->answers.counterRead(pipe, count);
    }
}

RunWriter::Reception RunWriter::received(std::span<std::uint8_t const> entries) {
    unread_.push_back({.number = ++receptions_, .line = line(digestOf(entries))});
    return receptions_;
}

namespace {

// Finds a message: walks the lists that may hold it, one after the other.
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

// One callback runs at a time, so the acknowledged message is the one that was received last.
void RunWriter::acknowledged(std::int32_t rc) {
    std::vector<Messages*> lists{&unread_};
    if (under_) {
        lists.push_back(&under_->messages);
    }
    for (Item& item : items_) {
        lists.push_back(&item.message);
    }
    useMessage(lists, receptions_, [rc](Message& message) { message.rc = rc; });
}

void RunWriter::done(Reception reception) {
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

void RunWriter::close() {
    if (!under_) {
        return;
    }
    Under under = *std::exchange(under_, std::nullopt);
    bool const isTurn = !under.event;
    if (under.event && std::holds_alternative<Do::Stop>(*under.event)) {
        under.messages.splice(under.messages.end(), unread_);
    }
    addAnswers(under);
    if (!under.ahead.empty() || !under.messages.empty() || !isTurn) {
        addTurns();
    }
    for (std::string const& ahead : under.ahead) {
        add(ahead);
    }
    addMessages(std::move(under.messages));
    if (isTurn) {
        ++turns_;
        closedTurn_ = under.taskRan ? std::nullopt : std::optional(under.turn);
    } else {
        add(line(*under.event));
    }
    if (!under.remarks.empty()) {
        addTurns();
    }
    for (std::string const& remark : under.remarks) {
        add(remark);
    }
    write(false);
}

void RunWriter::addAnswers(Under& under) {
    for (Do::Counter const& counter : under.answers.counters()) {
        std::uint64_t& standing = counters_[counter.pipe];
        if (std::ranges::any_of(counter.values, [&](std::uint64_t v) { return v != standing; })) {
            under.ahead.push_back(line(counter));
        }
        standing = counter.values.back();
    }
    for (auto const& [told, isAll] : under.answers.failures()) {
        if (!isAll) {
            under.ahead.push_back(comment("a later call of " +
                                          std::string(sdkFunctionName(told.call)) +
                                          " in this event failed in another way"));
        }
        under.ahead.push_back(line(told));
    }
}

void RunWriter::add(std::string const& text) {
    if (items_.empty() || !items_.back().message.empty()) {
        items_.emplace_back();
    }
    items_.back().lines.append(text).push_back('\n');
}

void RunWriter::addMessages(Messages&& messages) {
    while (!messages.empty()) {
        Item& item = items_.emplace_back();
        item.message.splice(item.message.end(), messages, messages.begin());
    }
}

void RunWriter::addTurns() {
    while (turns_ > 0) {
        auto const times = static_cast<std::uint32_t>(std::min(turns_, mostTurns_));
        add(line(Do::Turn{times}));
        turns_ -= times;
    }
}

void RunWriter::write(bool all) {
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
            lines += line(Do::SdkReturn{.call = SdkFunction::notifyAck, .rc = message.rc}) + '\n';
        }
        lines += message.line + '\n';
    }
    if (!lines.empty()) {
        file_.append(lines);
    }
}

void RunWriter::finish() {
    close();
    addTurns();
    addMessages(std::move(unread_));
    write(true);
}

}  // namespace Scenario
