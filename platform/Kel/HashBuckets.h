// A table of buckets that grows by one bucket at a time (linear hashing).
//
// Buckets live in segments that double in size. A segment's pages are filled by the system when
// they are first touched, so not even doubling a large table pauses.
// Thread: one only.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "Grist/Grist.h"

namespace Kel {

class HashBuckets {
  public:
    HashBuckets() { segments_[0] = makeSegment(firstSegment); }

    static void* operator new(std::size_t size) { return Grist::allocate(size); }
    static void operator delete(void* block, std::size_t size) noexcept {
        Grist::deallocate(block, size);
    }

    std::size_t count() const noexcept { return base_ + splits_; }

    // The head of the bucket for a hash.
    void*& head(std::uint64_t hash) const noexcept {
        std::size_t index = hash & (base_ - 1);
        if (index < splits_) {
            index = hash & (2 * base_ - 1);
        }
        return bucket(index);
    }

    // Adds a bucket and empties the one that shared its hashes until now; returns that one's
    // former head, whose entries are to be put in again. Errors: std::bad_alloc, nothing changed.
    void* split() {
        if (splits_ == 0) {
            auto& segment = segments_[segmentOf(base_)];
            if (!segment) {
                segment = makeSegment(base_);
            }
        }
        void* const moving = std::exchange(bucket(splits_), nullptr);
        if (++splits_ == base_) {
            base_ *= 2;
            splits_ = 0;
        }
        return moving;
    }

  private:
    static constexpr std::size_t firstSegment = 16;

    struct Free {
        void operator()(void** segment) const noexcept { Grist::deallocateZeroed(segment); }
    };
    using Segment = std::unique_ptr<void*[], Free>;

    static Segment makeSegment(std::size_t size) {
        return Segment(static_cast<void**>(Grist::allocateZeroed(size * sizeof(void*))));
    }
    // Segment 0 holds the first 16 buckets, segment k the 16 * 2^(k-1) that follow.
    static std::size_t segmentOf(std::size_t index) noexcept {
        return static_cast<std::size_t>(std::bit_width(index / firstSegment));
    }
    void*& bucket(std::size_t index) const noexcept {
        std::size_t const segment = segmentOf(index);
        std::size_t const start = segment == 0 ? 0 : firstSegment << (segment - 1);
        return segments_[segment][index - start];
    }

    std::size_t base_ = firstSegment;  // buckets before the round of splits under way
    std::size_t splits_ = 0;           // buckets split in this round
    std::array<Segment, 40> segments_;
};

}  // namespace Kel
