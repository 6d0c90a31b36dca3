#include "Grist/Grist.h"

#include <array>
#include <cstdlib>
#include <new>

namespace Grist {
namespace {

// A block of a size that is no multiple of 16 need not be aligned to 16.
constexpr std::size_t granule = alignof(void*);
constexpr std::size_t classes = largestBlock / granule;
constexpr std::size_t slabSize = std::size_t{64} * 1024;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool slabsInUse = false;
#elif defined(__has_feature)
constexpr bool slabsInUse = !__has_feature(address_sanitizer);
#else
constexpr bool slabsInUse = true;
#endif

struct FreeBlock {
    FreeBlock* next;
};

// One size class: blocks given back, and the rest of the slab that is being handed out.
struct SizeClass {
    FreeBlock* free = nullptr;
    std::byte* next = nullptr;
    std::byte* end = nullptr;
};

std::array<SizeClass, classes> sizeClasses;
std::uint64_t live = 0;
std::uint64_t fromSystem = 0;
std::uint64_t leftUntilFailure = 0;

constexpr std::size_t classOf(std::size_t size) {
    return size == 0 ? 0 : (size - 1) / granule;
}

bool isSlabBlock(std::size_t size) {
    return slabsInUse && size <= largestBlock;
}

}  // namespace

// Every allocation calls this first, so nothing has changed yet when it fails because a test asked
// for it.
void passFailurePoint() {
    if (leftUntilFailure != 0 && --leftUntilFailure == 0) [[unlikely]] {
        throw std::bad_alloc();
    }
}

void* allocate(std::size_t size) {
    passFailurePoint();
    if (!isSlabBlock(size)) {
        void* block = ::operator new(size);
        ++live;
        return block;
    }
    SizeClass& sizeClass = sizeClasses[classOf(size)];
    if (FreeBlock* block = sizeClass.free) {
        sizeClass.free = block->next;
        ++live;
        return block;
    }
    std::size_t const blockSize = (classOf(size) + 1) * granule;
    if (static_cast<std::size_t>(sizeClass.end - sizeClass.next) < blockSize) {
        // The rest of the old slab, smaller than a block, stays unused.
        sizeClass.next = static_cast<std::byte*>(::operator new(slabSize));
        sizeClass.end = sizeClass.next + slabSize;
        fromSystem += slabSize;
    }
    void* block = sizeClass.next;
    sizeClass.next += blockSize;
    ++live;
    return block;
}

void deallocate(void* block, std::size_t size) noexcept {
    if (block == nullptr) {
        return;
    }
    --live;
    if (!isSlabBlock(size)) {
        ::operator delete(block, size);
        return;
    }
    SizeClass& sizeClass = sizeClasses[classOf(size)];
    sizeClass.free = ::new (block) FreeBlock{sizeClass.free};
}

void* allocateZeroed(std::size_t size) {
    passFailurePoint();
    void* const block = std::calloc(1, size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    ++live;
    return block;
}

void deallocateZeroed(void* block) noexcept {
    if (block != nullptr) {
        --live;
        std::free(block);
    }
}

void failAfterIs(std::uint64_t count) noexcept {
    leftUntilFailure = count;
}

std::uint64_t failAfter() noexcept {
    return leftUntilFailure;
}

std::uint64_t liveBlocks() noexcept {
    return live;
}

std::uint64_t slabBytes() noexcept {
    return fromSystem;
}

}  // namespace Grist
