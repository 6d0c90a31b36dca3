#include "bench/BareTracer.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Bench {
namespace {

constexpr unsigned busyTurns = 200;
constexpr unsigned longestSpin = 2000;
constexpr unsigned checksOfARun = 64;
constexpr std::size_t mostEntries = 455;

}  // namespace

BareTracer::BareTracer(Books books, unsigned inFlight, Chip chip)
    : books_(books), chip_(chip), wakeDescriptor_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (wakeDescriptor_ < 0 ||
        ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, sockets_.data()) < 0) {
        throw std::runtime_error("the floor's descriptors cannot be made");
    }
    if (chip == Chip::threaded) {
        thread_ = std::thread([this] { runChip(); });
    }
    for (unsigned i = 0; i < inFlight; ++i) {
        add();
    }
}

BareTracer::~BareTracer() {
    {
        std::lock_guard const lock(mutex_);
        stopped_ = true;
        hint_ = true;
        toDo_.notify_one();
    }
    if (thread_.joinable()) {
        thread_.join();
    }
    for (int const descriptor : {wakeDescriptor_, sockets_[0], sockets_[1]}) {
        ::close(descriptor);
    }
}

void BareTracer::next() {
    while (answered_.empty()) {
        if (chip_ == Chip::stepwise) {
            stepChip();
        }
        turn();
    }
    withdraw(answered_.front());
    answered_.pop_front();
    add();
}

void BareTracer::trace(unsigned records) {
    for (; books_ == Books::kept && records > 0; --records) {
        ring_.write(records, current_, pktId_, counterBefore_);
    }
}

void BareTracer::add() {
    Number const number = ++lastNumber_;
    if (books_ == Books::kept) {
        maps_[0].try_emplace(number);
        maps_[1].try_emplace(number);
    }
    trace(5);
    pending_.push_back(number);
    scheduled_ = true;
    progress_ = true;
}

void BareTracer::withdraw(Number number) {
    if (books_ == Books::kept) {
        for (Map& map : maps_) {
            map.erase(number);
        }
    }
}

// ---- The loop

void BareTracer::turn() {
    wait();
    bool const readable = std::exchange(readable_, false);
    if (readable) {
        readDigests();
    }
    bool const ran = scheduled_ || phase0Asked_;
    if (std::exchange(phase0Asked_, false)) {
        state_ = State::phase0Ready;
        scheduled_ = true;
        progress_ = true;
    }
    if (std::exchange(scheduled_, false)) {
        work();
        progress_ = progress_ || !scheduled_;
    }
    progress_ = progress_ || readable;
    waitingTurns_ = ran && !progress_ ? std::min(waitingTurns_ + 1, busyTurns + 8) : 0;
    progress_ = false;
}

void BareTracer::wait() {
    std::array<pollfd, 2> polled{{{wakeDescriptor_, POLLIN, 0}, {sockets_[1], POLLIN, 0}}};
    timespec limit{};
    bool const forever = !scheduled_ && !phase0Asked_;
    if (waitingTurns_ > busyTurns && !progress_) {
        limit.tv_nsec = std::min(50'000L << (waitingTurns_ - busyTurns - 1), 1'000'000L);
    }
    ::ppoll(polled.data(), polled.size(), forever ? nullptr : &limit, nullptr);
    readable_ = polled[1].revents != 0;
}

void BareTracer::readDigests() {
    Header header;
    std::array<Entry, mostEntries> entries;
    if (::read(sockets_[1], &header, sizeof header) != sizeof header) {
        return;
    }
    auto const size = header.entries * sizeof(Entry);
    if (::read(sockets_[1], entries.data(), size) != static_cast<ssize_t>(size)) {
        return;
    }
    for (std::size_t i = 0; i < header.entries; ++i) {
        Number const number = injected_[entries[i].pktId];
        if (books_ == Books::kept) {
            maps_[3].try_emplace(number);
        }
        trace(9);
        answered_.push_back(number);
    }
}

void BareTracer::work() {
    for (unsigned checks = 0; checks < checksOfARun; ++checks) {
        if (!step()) {
            break;
        }
    }
}

// One step of the one trace in work; false when the loop has to turn first.
bool BareTracer::step() {
    switch (state_) {
        case State::idle:
            if (pending_.empty()) {
                return false;
            }
            current_ = pending_.front();
            pending_.pop_front();
            trace(3);
            phase0Asked_ = true;
            state_ = State::waitPhase0;
            return true;
        case State::waitPhase0:
            scheduled_ = true;
            return false;
        case State::phase0Ready:
            send();
            return true;
        case State::waitSent:
            if (counter_.load(std::memory_order_acquire) == counterBefore_) {
                scheduled_ = true;
                return false;
            }
            state_ = State::reset;
            return true;
        case State::reset:
            state_ = State::idle;
            return true;
    }
    return false;
}

void BareTracer::send() {
    counterBefore_ = counter_.load(std::memory_order_acquire);
    injected_[++pktId_] = current_;
    if (books_ == Books::kept) {
        maps_[2].try_emplace(current_);
    }
    trace(8);
    bool wakes = false;
    {
        std::lock_guard const lock(mutex_);
        pushed_.push_back({pktId_, {}});
        wakes = std::exchange(sleeping_, false);
    }
    hint_.store(true, std::memory_order_release);
    if (wakes) {
        toDo_.notify_one();
    }
    state_ = State::waitSent;
}

// ---- The chip's thread

void BareTracer::runChip() {
    while (takePackets()) {
        emitDigests();
    }
}

void BareTracer::stepChip() {
    std::unique_lock lock(mutex_);
    taken_.clear();
    std::swap(taken_, pushed_);
    lock.unlock();
    if (!taken_.empty()) {
        emitDigests();
    }
}

bool BareTracer::takePackets() {
    static unsigned const spins = std::thread::hardware_concurrency() > 1 ? longestSpin : 0;
    for (unsigned checks = spins; checks > 0 && !hint_.load(std::memory_order_acquire); --checks) {
        __builtin_ia32_pause();
    }
    std::unique_lock lock(mutex_);
    while (pushed_.empty() && !stopped_) {
        sleeping_ = true;
        toDo_.wait(lock);
    }
    sleeping_ = false;
    taken_.clear();
    std::swap(taken_, pushed_);
    hint_.store(false, std::memory_order_relaxed);
    return !stopped_;
}

void BareTracer::emitDigests() {
    Header header{};
    std::array<Entry, mostEntries> entries;
    for (Packet const& packet : taken_) {
        counter_.fetch_add(1, std::memory_order_release);
        entries[header.entries] = {packet.pktId, {}};
        ++header.entries;
    }
    iovec parts[] = {{&header, sizeof header}, {entries.data(), header.entries * sizeof(Entry)}};
    msghdr gathered{};
    gathered.msg_iov = parts;
    gathered.msg_iovlen = 2;
    static_cast<void>(::sendmsg(sockets_[0], &gathered, 0));
}

}  // namespace Bench
