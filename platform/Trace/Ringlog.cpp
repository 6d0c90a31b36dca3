#include "Trace/Ringlog.h"

#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "Trace/Registry.h"
#include "Trace/RingWriter.h"

namespace Trace {
namespace {

std::atomic<RingWriter*> currentRing = nullptr;
std::atomic<bool> isDecided = false;  // a call, or the environment, was obeyed

// In a child process that was forked: it may go on with its parent's ring.
void ringIsInherited() noexcept {
    if (auto* const ring = currentRing.load(std::memory_order_acquire)) {
        ring->inherited();
    }
}

// The rings of the process. Those that were replaced stay mapped: a thread may be inside one.
struct Rings {
    std::mutex mutex;
    std::vector<std::unique_ptr<RingWriter>> all;

    Rings() { (void)::pthread_atfork(nullptr, nullptr, &ringIsInherited); }

    static Rings& instance() {
        static Rings* const rings = std::make_unique<Rings>().release();
        return *rings;
    }

    // Precondition: the mutex is held.
    void replace(std::unique_ptr<RingWriter> next) {
        all.reserve(all.size() + 1);
        auto* const old = currentRing.exchange(next.get(), std::memory_order_acq_rel);
        if (old) {
            old->retire();
        }
        if (next) {
            all.push_back(std::move(next));
        }
        isDecided.store(true, std::memory_order_release);
        Registry::instance().wholeIs(Whole::ring, currentRing.load() != nullptr);
    }
};

void openRingOfEnvironment() {
    auto& rings = Rings::instance();
    int const errorBefore = errno;
    std::lock_guard const lock(rings.mutex);
    if (isDecided.load(std::memory_order_relaxed)) {
        return;
    }
    std::unique_ptr<RingWriter> made;
    try {
        made = RingWriter::make(std::getenv("VYNPT_RING"), defaultRingRecords, nullptr);
    } catch (RingError const& error) {
        std::fprintf(stderr, "VYNPT_RING: %s\n", error.what());
    }
    rings.replace(std::move(made));
    errno = errorBefore;
}

}  // namespace

bool environmentNamesRing() noexcept {
    char const* const path = std::getenv("VYNPT_RING");
    return path && *path;
}

void ringIs(std::string const& path, std::size_t records) {
    auto& rings = Rings::instance();
    std::lock_guard const lock(rings.mutex);
    rings.replace(RingWriter::make(path, records, currentRing.load(std::memory_order_relaxed)));
}

void ringDel() {
    auto& rings = Rings::instance();
    std::lock_guard const lock(rings.mutex);
    rings.replace(nullptr);
}

namespace {

// While there is no ring: unless that is decided, the environment may name one.
[[gnu::noinline]] void writeToRingOfEnvironment(Handle const& handle, unsigned level,
                                                char const* format, std::span<Value const> values) {
    if (isDecided.load(std::memory_order_acquire) || !environmentNamesRing()) {
        return;
    }
    openRingOfEnvironment();
    if (auto* const ring = currentRing.load(std::memory_order_acquire)) {
        ring->write(handle, level, format, values);
    }
}

}  // namespace

void writeRing(Handle const& handle, unsigned level, char const* format,
               std::span<Value const> values) {
    if (auto* const ring = currentRing.load(std::memory_order_acquire)) [[likely]] {
        return ring->write(handle, level, format, values);
    }
    writeToRingOfEnvironment(handle, level, format, values);
}

}  // namespace Trace
