#include "softchip/DigestChannel.h"

#include <algorithm>
#include <utility>

namespace SoftChip {

using Kind = JournalEntry::Kind;

Status DigestChannel::registerCallback(Registration const& registration) {
    std::lock_guard const lock(mutex_);
    if (registration_) {
        return Status::digestRegistered;
    }
    registration_ = registration;
    ++registrations_;
    return Status::ok;
}

Status DigestChannel::deregister() {
    std::unique_lock lock(mutex_);
    if (!registration_) {
        return Status::digestUnregistered;
    }
    if (running_ != std::this_thread::get_id()) {
        closing_ = true;
        callbackEnded_.wait(lock, [this] { return !running_; });
        closing_ = false;
    }
    registration_.reset();
    starved_ = false;
    free_.splice(free_.end(), outstanding_);
    return Status::ok;
}

Status DigestChannel::acknowledge(pipe_flow_lrn_msg_t const* message, bool& resume) {
    std::lock_guard const lock(mutex_);
    if (!registration_) {
        return Status::digestUnregistered;
    }
    auto const found = std::ranges::find_if(
        outstanding_, [&](Message const& candidate) { return &candidate.header == message; });
    if (found == outstanding_.end()) {
        return Status::unknownMessage;
    }
    free_.splice(free_.end(), outstanding_, found);
    resume = std::exchange(starved_, false);
    return Status::ok;
}

std::size_t DigestChannel::outstanding() const {
    std::lock_guard const lock(mutex_);
    return outstanding_.size();
}

void DigestChannel::add(std::uint16_t pktId, Decision const& decision, Receiver receiver) {
    Ready const digest{packDigestEntry(pktId, decision), receiver};
    auto const fault = faults_.digest(pktId);
    switch (fault ? fault->fate : DigestFate::sent) {
        case DigestFate::sent:
            ready_.push_back(digest);
            overtakeHeld();
            break;
        case DigestFate::doubled:
            note(Kind::digestDoubled, digest.entry);
            ready_.insert(ready_.end(), 2, digest);
            overtakeHeld();
            break;
        case DigestFate::lost:
            note(Kind::digestLost, digest.entry);
            break;
        case DigestFate::held:
            note(Kind::digestHeld, digest.entry);
            held_.push_back({digest, fault->behind});
            break;
    }
}

// Another packet's digest is ready: those that have waited for enough of them follow it.
void DigestChannel::overtakeHeld() {
    if (held_.empty()) {
        return;
    }
    std::erase_if(held_, [this](Held& held) {
        if (held.behind == 0 || --held.behind > 0) {
            return false;
        }
        ready_.push_back(held.digest);
        return true;
    });
}

void DigestChannel::releaseHeld() {
    for (auto const& held : held_) {
        ready_.push_back(held.digest);
    }
    held_.clear();
}

void DigestChannel::send() {
    Digests rest(ready_);
    while (!rest.empty()) {
        auto const sent = sendSome(rest);
        if (sent == 0) {
            break;
        }
        rest = rest.subspan(sent);
    }
    ready_.erase(ready_.begin(), ready_.end() - static_cast<std::ptrdiff_t>(rest.size()));
}

// Hands out, or drops, what stands first and is for the same receiver. Returns how many digests are
// done with; none if no message is free.
std::size_t DigestChannel::sendSome(Digests digests) {
    Registration registration;
    pipe_flow_lrn_msg_t* message = nullptr;
    auto const other = std::ranges::find_if(
        digests, [&](Ready const& digest) { return digest.receiver != digests.front().receiver; });
    digests = digests.first(static_cast<std::size_t>(other - digests.begin()));
    {
        std::lock_guard const lock(mutex_);
        if (closing_ || digests.front().receiver == 0 || digests.front().receiver != receiver()) {
            drop(digests);
            return digests.size();
        }
        if (outstanding_.size() == maxOutstanding) {
            starved_ = true;
            return 0;
        }
        digests = digests.first(std::min(digests.size(), maxMessageEntries));
        registration = *registration_;
        message = fill(digests);
        running_ = std::this_thread::get_id();
    }
    call(registration, message);
    return digests.size();
}

void DigestChannel::call(Registration const& registration, pipe_flow_lrn_msg_t* message) {
    JournalEntry entry{.kind = Kind::digestMessage};
    entry.session = registration.session;
    entry.handle = digestHandle;
    entry.entries = message->num_entries;
    journal_.add(entry);
    static_cast<void>(registration.callback(registration.session, message, registration.cookie));
    std::lock_guard const lock(mutex_);
    running_.reset();
    callbackEnded_.notify_all();
}

// Takes a free message, or a new one, into the outstanding ones.
pipe_flow_lrn_msg_t* DigestChannel::fill(Digests digests) {
    if (free_.empty()) {
        free_.emplace_back();
    }
    outstanding_.splice(outstanding_.end(), free_, free_.begin());
    auto& message = outstanding_.back();
    auto* place = message.entries.data();
    for (auto const& digest : digests) {
        place = std::ranges::copy(digest.entry, place).out;
    }
    message.header = {};
    message.header.dev_tgt.device_id = device_;
    message.header.num_entries = static_cast<std::uint16_t>(digests.size());
    message.header.entries = message.entries.data();
    return &message.header;
}

void DigestChannel::drop(Digests digests) {
    for (auto const& digest : digests) {
        note(Kind::digestUndelivered, digest.entry);
    }
}

void DigestChannel::note(JournalEntry::Kind kind, DigestEntry const& entry) {
    JournalEntry line{.kind = kind};
    line.pktId = pktIdOf(entry);
    journal_.add(line);
}

}  // namespace SoftChip
