#include "Grist/Grist.h"

#include <array>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define VYN_NO_SLABS
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VYN_NO_SLABS
#endif
#endif

namespace Grist {
namespace {

constexpr std::size_t granule = alignof(std::max_align_t);
constexpr std::size_t classes = largestBlock / granule;
constexpr std::size_t slabSize = std::size_t{64} * 1024;

#ifdef VYN_NO_SLABS
constexpr bool slabsInUse = false;
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

constexpr std::size_t classOf(std::size_t size) {
    return size == 0 ? 0 : (size - 1) / granule;
}

bool isSlabBlock(std::size_t size) {
    return slabsInUse && size <= largestBlock;
}

}  // namespace

void* allocate(std::size_t size) {
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

std::uint64_t liveBlocks() noexcept {
    return live;
}

std::uint64_t slabBytes() noexcept {
    return fromSystem;
}

}  // namespace Grist
