// A table of buckets that grows by one bucket at a time (linear hashing).
//
// Buckets live in segments that double in size. A segment's pages are filled by the system when
// they are first touched, so not even doubling a large table pauses.
// A bucket is a chain of entries, and each of its links says which hashes may follow, so that most
// look-ups of an absent key touch no entry.
// Thread: one only.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "Grist/Grist.h"
#include "Vanta/Assert.h"

namespace Kel {

// The link to the first entry of a chain, with a filter: for each entry of the chain the bit that
// its hash chooses is set. When an entry is removed from the middle of a chain, the links before it
// keep its bit. An empty link is all zeros.
//
// Both share one word: the system's addresses have 48 bits.
class ChainLink {
  public:
    void* entry() const noexcept {
        // The word is an address and, in the other bits, the filter.
        return reinterpret_cast<void*>(word_ >> filterBits);  // NOLINT(performance-no-int-to-ptr)
    }
    // Whether the chain may have an entry of this hash.
    bool mayHave(std::uint64_t hash) const noexcept { return (word_ & bitOf(hash)) != 0; }

    // A link to an entry of this hash whose own link is this one.
    ChainLink with(void* entry, std::uint64_t hash) const noexcept {
        auto const address = reinterpret_cast<std::uint64_t>(entry);
        Vanta::assertThat(address >> (64 - filterBits) == 0, "address >> 48 == 0");
        ChainLink link;
        link.word_ = address << filterBits | (word_ & filterMask) | bitOf(hash);
        return link;
    }

  private:
    static constexpr unsigned filterBits = 16;
    static constexpr std::uint64_t filterMask = (1U << filterBits) - 1;

    // Chosen by the high bits, since the entries of one bucket have the low ones in common.
    static std::uint64_t bitOf(std::uint64_t hash) noexcept { return 1ULL << (hash >> 60); }

    std::uint64_t word_ = 0;
};
static_assert(sizeof(ChainLink) == sizeof(void*));

class HashBuckets {
  public:
    HashBuckets() { segments_[0] = makeSegment(firstSegment); }

    static void* operator new(std::size_t size) { return Grist::allocate(size); }
    static void operator delete(void* block, std::size_t size) noexcept {
        Grist::deallocate(block, size);
    }

    std::size_t count() const noexcept { return base_ + splits_; }

    // The head of the bucket for a hash.
    ChainLink& head(std::uint64_t hash) const noexcept {
        std::size_t index = hash & (base_ - 1);
        if (index < splits_) {
            index = hash & (2 * base_ - 1);
        }
        return bucket(index);
    }

    // Adds a bucket and empties the one that shared its hashes until now; returns that one's
    // former head, whose entries are to be put in again. Errors: std::bad_alloc, nothing changed.
    ChainLink split() {
        if (splits_ == 0) {
            auto& segment = segments_[segmentOf(base_)];
            if (!segment) {
                segment = makeSegment(base_);
            }
        }
        ChainLink const moving = std::exchange(bucket(splits_), ChainLink());
        if (++splits_ == base_) {
            base_ *= 2;
            splits_ = 0;
        }
        return moving;
    }

  private:
    static constexpr std::size_t firstSegment = 16;

    struct Free {
        void operator()(ChainLink* segment) const noexcept { Grist::deallocateZeroed(segment); }
    };
    using Segment = std::unique_ptr<ChainLink[], Free>;

    static Segment makeSegment(std::size_t size) {
        return Segment(static_cast<ChainLink*>(Grist::allocateZeroed(size * sizeof(ChainLink))));
    }
    // Segment 0 holds the first 16 buckets, segment k the 16 * 2^(k-1) that follow.
    static std::size_t segmentOf(std::size_t index) noexcept {
        return static_cast<std::size_t>(std::bit_width(index / firstSegment));
    }
    ChainLink& bucket(std::size_t index) const noexcept {
        std::size_t const segment = segmentOf(index);
        std::size_t const start = segment == 0 ? 0 : firstSegment << (segment - 1);
        return segments_[segment][index - start];
    }

    std::size_t base_ = firstSegment;  // buckets before the round of splits under way
    std::size_t splits_ = 0;           // buckets split in this round
    std::array<Segment, 40> segments_;
};

}  // namespace Kel
