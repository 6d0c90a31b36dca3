#include "bench/Cost.h"

#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <new>

#include "Grist/Grist.h"
#include "Trace/Ringlog.h"

namespace {

std::atomic<std::uint64_t> generalAllocations = 0;

void* countedAllocation(std::size_t size) {
    generalAllocations.fetch_add(1, std::memory_order_relaxed);
    if (void* const block = std::malloc(size)) {
        return block;
    }
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
    return countedAllocation(size);
}
void* operator new[](std::size_t size) {
    return countedAllocation(size);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}

namespace Bench {
namespace {

constexpr std::uint64_t countedFrom = std::numeric_limits<std::uint64_t>::max();

// The allocator counts down to a failure that never comes.
std::uint64_t slabAllocations() {
    if (Grist::failAfter() == 0) {
        Grist::failAfterIs(countedFrom);
    }
    return countedFrom - Grist::failAfter();
}

}  // namespace

Allocations::Allocations() : slab_(slabAllocations()), general_(generalAllocations) {}

void Allocations::report(benchmark::State& state, double events) const {
    state.counters["slab"] = static_cast<double>(slabAllocations() - slab_) / events;
    state.counters["malloc"] = static_cast<double>(generalAllocations - general_) / events;
}

std::uint64_t residentBytes() {
    std::ifstream file("/proc/self/statm");
    std::uint64_t all = 0;
    std::uint64_t resident = 0;
    file >> all >> resident;
    return resident * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

bool runOnProcessor(unsigned number) {
    static cpu_set_t const allowed = [] {
        cpu_set_t set;
        ::sched_getaffinity(0, sizeof set, &set);
        return set;
    }();
    for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
        if (CPU_ISSET(cpu, &allowed) && number-- == 0) {
            cpu_set_t one;
            CPU_ZERO(&one);
            CPU_SET(cpu, &one);
            return ::sched_setaffinity(0, sizeof one, &one) == 0;
        }
    }
    return false;
}

std::string ringPath() {
    std::string const name = "/vyn-bench." + std::to_string(::getpid()) + ".ring";
    return (::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + name;
}

void traceIntoRing() {
    static bool const made = [] {
        Trace::ringIs(ringPath());
        // The mapping stays; nobody reads the file.
        ::unlink(ringPath().c_str());
        return true;
    }();
    static_cast<void>(made);
}

}  // namespace Bench
