// Slab allocator of the object framework.
//
// Blocks of one size class come from slabs and go back to that class's free list; a slab is never
// returned to the system, so a collection that shrinks and grows again costs no system call.
// Blocks larger than `largestBlock` bytes are the general allocator's.
//
// Threads: one thread only, the event thread. Under AddressSanitizer every block is the general
// allocator's, so that use after release is seen.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VynExport.h"

namespace Grist {

inline constexpr std::size_t largestBlock = 512;

// A block of at least `size` bytes, aligned for any type of that size. Never null.
// Errors: std::bad_alloc, with nothing changed.
VYN_EXPORT void* allocate(std::size_t size);

// Gives back a block of allocate(size). A null block is ignored. Never fails.
VYN_EXPORT void deallocate(void* block, std::size_t size) noexcept;

// A zeroed block of any size straight from the system, which fills its pages when they are first
// touched. Large tables are made of such blocks, so that making them does not pause.
// Errors: std::bad_alloc, with nothing changed.
VYN_EXPORT void* allocateZeroed(std::size_t size);

// Gives back a block of allocateZeroed(). A null block is ignored. Never fails.
VYN_EXPORT void deallocateZeroed(void* block) noexcept;

// For tests of failure: has the `count`-th allocation from now on throw std::bad_alloc, once; 0
// calls that off. Whatever this library hands out counts as one allocation, whether or not the
// block comes from a slab, so a number reaches every allocation that can fail.
VYN_EXPORT void failAfterIs(std::uint64_t count) noexcept;

// Counts one allocation that is not this library's and throws std::bad_alloc if it is the one that
// is to fail. A test's own operator new calls it, so that one count covers both allocators.
VYN_EXPORT void passFailurePoint();

// Allocations still to come up to the one that fails; 0 if none will.
VYN_EXPORT std::uint64_t failAfter() noexcept;

// Blocks that are handed out at this moment, large and zeroed ones included.
VYN_EXPORT std::uint64_t liveBlocks() noexcept;

// Bytes of slabs taken from the system so far.
VYN_EXPORT std::uint64_t slabBytes() noexcept;

// The standard library's allocator interface over allocate() and deallocate().
template <class T>
class Allocator {
  public:
    using value_type = T;

    Allocator() noexcept = default;
    template <class U>
    Allocator(Allocator<U> const&) noexcept {}

    T* allocate(std::size_t n) {
        static_assert(alignof(T) <= alignof(std::max_align_t));
        return static_cast<T*>(Grist::allocate(n * elementSize));
    }
    void deallocate(T* block, std::size_t n) noexcept { Grist::deallocate(block, n * elementSize); }

    friend bool operator==(Allocator, Allocator) noexcept { return true; }

  private:
    // Elements may be pointers, and then a pointer's size is what is meant.
    static constexpr std::size_t elementSize = sizeof(T);  // NOLINT(bugprone-sizeof-expression)
};

}  // namespace Grist
