#include "softchip/Journal.h"

#include <algorithm>
#include <string_view>
#include <type_traits>

namespace SoftChip {
namespace {

using SdkSeam::SdkCall;
using Kind = JournalEntry::Kind;

void add(std::string& line, std::string_view name, std::uint64_t value) {
    line.append(" ").append(name).append(" ").append(std::to_string(value));
}

// The call without its bytes: an entry has only their sizes.
SdkCall callOf(JournalEntry const& entry) {
    return {.function = entry.function,
            .session = entry.session,
            .pipe = entry.pipe,
            .genPort = entry.genPort,
            .appId = entry.appId,
            .handle = entry.handle,
            .pktId = entry.pktId,
            .portIndex = entry.portIndex};
}

std::string callText(JournalEntry const& entry) {
    std::string line(sdkFunctionName(entry.function));
    eachArgument(callOf(entry), [&](std::string_view name, auto value) {
        if constexpr (std::is_integral_v<decltype(value)>) {
            if (name != "device") {
                add(line, name, value);
            }
        } else {
            bool const isPkt = name == "pkt";
            add(line, isPkt ? "pktBytes" : "phase0Bytes",
                isPkt ? entry.pktBytes : entry.phase0Bytes);
        }
    });
    if (entry.function == SdkFunction::getPktCounters) {
        add(line, "count", entry.count);
    }
    return line + " -> " + std::to_string(entry.result);
}

std::string injectionText(JournalEntry const& entry) {
    std::string line = "injection";
    add(line, "pktId", entry.pktId);
    add(line, "pipe", entry.pipe);
    add(line, "portIndex", entry.portIndex);
    add(line, "pktBytes", entry.pktBytes);
    add(line, "egressPort", entry.decision.egressPort);
    add(line, "l2Domain", entry.decision.l2Domain);
    add(line, "routed", entry.decision.routed);
    add(line, "copyToCpu", entry.decision.copyToCpu);
    add(line, "drop", entry.decision.drop);
    line.append(" step ").append(code(entry.decision.step));
    return line.append(" reason ").append(code(entry.decision.reason));
}

char const* digestText(Kind kind) {
    switch (kind) {
        case Kind::digestLost:
            return "digestLost pktId ";
        case Kind::digestDoubled:
            return "digestDoubled pktId ";
        case Kind::digestHeld:
            return "digestHeld pktId ";
        case Kind::digestUndelivered:
            return "digestUndelivered pktId ";
        case Kind::call:
        case Kind::tableChange:
        case Kind::injection:
        case Kind::digestMessage:
            break;
    }
    return "?";
}

}  // namespace

JournalEntry JournalEntry::of(SdkCall const& call) {
    JournalEntry entry{.kind = Kind::call, .function = call.function};
    entry.portIndex = call.portIndex;
    entry.pktId = call.pktId;
    entry.result = call.rc;
    entry.session = call.session;
    entry.pipe = call.pipe;
    entry.appId = call.appId;
    entry.genPort = call.genPort;
    entry.handle = call.handle;
    entry.pktBytes = static_cast<std::uint32_t>(call.pkt.size());
    entry.phase0Bytes = static_cast<std::uint32_t>(call.phase0.size());
    entry.count = call.count;
    return entry;
}

std::string JournalEntry::text() const {
    switch (kind) {
        case Kind::call:
            return callText(*this);
        case Kind::tableChange:
            return "tableChange";
        case Kind::injection:
            return injectionText(*this);
        case Kind::digestMessage:
            return "digestMessage entries " + std::to_string(entries);
        case Kind::digestLost:
        case Kind::digestDoubled:
        case Kind::digestHeld:
        case Kind::digestUndelivered:
            break;
    }
    return digestText(kind) + std::to_string(pktId);
}

Journal::Journal(std::size_t limit) : limit_(limit) {
    if (limit != unlimited) {
        calls_.entries.reserve(limit);
        chip_.entries.reserve(limit);
    }
}

void Journal::add(JournalEntry entry) {
    auto& lane = laneOf(entry);
    std::lock_guard const lock(lane.mutex);
    entry.number = numbers_.fetch_add(1, std::memory_order_acq_rel) + 1;
    count(lane.counters, entry);
    if (lane.entries.size() < limit_) {
        lane.entries.push_back(entry);
    } else if (limit_ > 0) {
        lane.entries[lane.oldest] = entry;
        lane.oldest = lane.oldest + 1 < limit_ ? lane.oldest + 1 : 0;
    }
}

Journal::Lane& Journal::laneOf(JournalEntry const& entry) {
    // Acknowledgements come from inside the callback, which is the chip's thread.
    bool const call = entry.kind == Kind::call && entry.function != SdkFunction::notifyAck;
    return call ? calls_ : chip_;
}

void Journal::count(Counters& counters, JournalEntry const& entry) {
    switch (entry.kind) {
        case Kind::call: {
            auto const function = static_cast<std::size_t>(entry.function);
            ++counters.calls[function];
            counters.failures[function] += entry.result != 0 ? 1 : 0;
            break;
        }
        case Kind::tableChange:
            ++counters.tableChanges;
            break;
        case Kind::injection:
            ++counters.injected[entry.pipe];
            break;
        case Kind::digestMessage:
            ++counters.digestMessages;
            counters.digestsSent += entry.entries;
            break;
        case Kind::digestLost:
            ++counters.digestsLost;
            break;
        case Kind::digestDoubled:
            ++counters.digestsDoubled;
            break;
        case Kind::digestHeld:
            ++counters.digestsHeld;
            break;
        case Kind::digestUndelivered:
            ++counters.digestsUndelivered;
            break;
    }
}

std::vector<JournalEntry> Journal::entries() const {
    std::scoped_lock const lock(calls_.mutex, chip_.mutex);
    std::vector<JournalEntry> all(calls_.entries.begin(), calls_.entries.end());
    all.insert(all.end(), chip_.entries.begin(), chip_.entries.end());
    std::ranges::sort(all, {}, &JournalEntry::number);
    return all;
}

// Each count is kept in one lane only, so the sum of both is the whole.
Counters Journal::counters() const {
    std::scoped_lock const lock(calls_.mutex, chip_.mutex);
    Counters sum = chip_.counters;
    for (std::size_t function = 0; function < Counters::functionCount; ++function) {
        sum.calls[function] += calls_.counters.calls[function];
        sum.failures[function] += calls_.counters.failures[function];
    }
    return sum;
}

}  // namespace SoftChip
