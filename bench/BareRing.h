// The least that a trace record can be: a slot taken by one addition, a format id, a time and three
// values, published last. The floor of everything that traces. Threads: any.
#pragma once

#include <x86intrin.h>

#include <atomic>
#include <cstdint>
#include <memory>

namespace Bench {

class BareRing {
  public:
    void write(std::uint64_t format, std::uint64_t a, std::uint64_t b, std::uint64_t c) noexcept {
        auto const position = next_.fetch_add(1, std::memory_order_relaxed);
        Record& record = records_[position % size];
        record.format = format;
        record.time = __rdtsc();
        record.values[0] = a;
        record.values[1] = b;
        record.values[2] = c;
        record.state.store(position, std::memory_order_release);
    }

  private:
    static constexpr std::size_t size = 16384;

    struct alignas(64) Record {
        std::uint64_t format;
        std::uint64_t time;
        std::uint64_t values[3];
        std::atomic<std::uint64_t> state;
    };

    std::atomic<std::uint64_t> next_ = 0;
    std::unique_ptr<Record[]> records_ = std::make_unique<Record[]>(size);
};

}  // namespace Bench
