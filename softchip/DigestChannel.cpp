#include "softchip/DigestChannel.h"

#include <algorithm>
#include <utility>

namespace SoftChip {

using SdkSeam::DigestReceiver;
using SdkSeam::TraceDigest;
using Kind = JournalEntry::Kind;

namespace {

// The digest of a decision.
TraceDigest digestOf(std::uint16_t pktId, Decision const& decision) {
    return {.pktId = pktId,
            .copyToCpu = decision.copyToCpu,
            .l2Domain = decision.l2Domain,
            .egrPort = decision.egressPort,
            .routed = decision.routed,
            .dropCtl = decision.drop};
}

}  // namespace

Status DigestChannel::registerCallback(DigestReceiver const& receiver) {
    std::lock_guard const lock(mutex_);
    if (receiver_) {
        return Status::digestRegistered;
    }
    receiver_ = receiver;
    ++registrations_;
    return Status::ok;
}

Status DigestChannel::deregister() {
    std::unique_lock lock(mutex_);
    if (!receiver_) {
        return Status::digestUnregistered;
    }
    if (running_ != std::this_thread::get_id()) {
        closing_ = true;
        callbackEnded_.wait(lock, [this] { return !running_; });
        closing_ = false;
    }
    receiver_ = {};
    starved_ = false;
    free_.splice(free_.end(), outstanding_);
    return Status::ok;
}

Status DigestChannel::acknowledge(pipe_flow_lrn_msg_t const* message, bool& resume) {
    std::lock_guard const lock(mutex_);
    if (!receiver_) {
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

void DigestChannel::add(std::uint16_t pktId, Decision const& decision,
                        RegistrationNumber registration) {
    Ready const ready{digestOf(pktId, decision), registration};
    auto const fault = faults_.digest(pktId);
    switch (fault ? fault->fate : DigestFate::sent) {
        case DigestFate::sent:
            ready_.push_back(ready);
            overtakeHeld();
            break;
        case DigestFate::doubled:
            note(Kind::digestDoubled, pktId);
            ready_.insert(ready_.end(), 2, ready);
            overtakeHeld();
            break;
        case DigestFate::lost:
            note(Kind::digestLost, pktId);
            break;
        case DigestFate::held:
            note(Kind::digestHeld, pktId);
            held_.push_back({ready, fault->behind});
            break;
    }
}

// Another packet's digest is ready: held ones that have now waited for enough later ones follow it.
void DigestChannel::overtakeHeld() {
    if (held_.empty()) {
        return;
    }
    std::erase_if(held_, [this](Held& held) {
        if (held.behind == 0 || --held.behind > 0) {
            return false;
        }
        ready_.push_back(held.ready);
        return true;
    });
}

void DigestChannel::releaseHeld() {
    for (auto const& held : held_) {
        ready_.push_back(held.ready);
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

// Hands out, or drops, the first digests that are for one and the same receiver. Returns how many
// that were; 0 if no message is free.
std::size_t DigestChannel::sendSome(Digests digests) {
    DigestReceiver receiver;
    pipe_flow_lrn_msg_t* message = nullptr;
    auto const other = std::ranges::find_if(
        digests, [registration = digests.front().registration](Ready const& ready) {
            return ready.registration != registration;
        });
    digests = digests.first(static_cast<std::size_t>(other - digests.begin()));
    {
        std::lock_guard const lock(mutex_);
        if (closing_ || digests.front().registration == 0 ||
            digests.front().registration != registration()) {
            drop(digests);
            return digests.size();
        }
        if (outstanding_.size() == maxOutstanding) {
            starved_ = true;
            return 0;
        }
        digests = digests.first(std::min(digests.size(), SdkSeam::maxMessageEntries));
        receiver = receiver_;
        message = fill(digests);
        running_ = std::this_thread::get_id();
    }
    call(receiver, message);
    return digests.size();
}

void DigestChannel::call(DigestReceiver const& receiver, pipe_flow_lrn_msg_t* message) {
    JournalEntry entry{.kind = Kind::digestMessage};
    entry.session = receiver.session;
    entry.handle = SdkSeam::digestHandle;
    entry.entries = message->num_entries;
    journal_.add(entry);
    static_cast<void>(receiver(message));
    std::lock_guard const lock(mutex_);
    running_.reset();
    callbackEnded_.notify_all();
}

// Fills a free message, or a new one, and adds it to the outstanding ones.
pipe_flow_lrn_msg_t* DigestChannel::fill(Digests digests) {
    if (free_.empty()) {
        free_.emplace_back();
    }
    outstanding_.splice(outstanding_.end(), free_, free_.begin());
    auto& message = outstanding_.back();
    std::ranges::transform(digests, message.entries.begin(),
                           [](Ready const& ready) { return packed(ready.digest); });
    message.header = {};
    message.header.dev_tgt.device_id = device_;
    message.header.num_entries = static_cast<std::uint16_t>(digests.size());
    message.header.entries = message.entries.data();
    return &message.header;
}

void DigestChannel::drop(Digests digests) {
    for (auto const& ready : digests) {
        note(Kind::digestUndelivered, ready.digest.pktId);
    }
}

void DigestChannel::note(JournalEntry::Kind kind, std::uint16_t pktId) {
    JournalEntry line{.kind = kind};
    line.pktId = pktId;
    journal_.add(line);
}

}  // namespace SoftChip
