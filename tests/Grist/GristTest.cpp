#include "Grist/Grist.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <set>
#include <vector>

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool slabsInUse = false;
#elif defined(__has_feature)
constexpr bool slabsInUse = !__has_feature(address_sanitizer);
#else
constexpr bool slabsInUse = true;
#endif

struct Block {
    std::byte* address;
    std::size_t size;
};

std::byte* allocateBytes(std::size_t size) {
    return static_cast<std::byte*>(Grist::allocate(size));
}

// No test leaves a failure behind for the next one.
struct GristFailure : testing::Test {
    ~GristFailure() override { Grist::failAfterIs(0); }
};

TEST(Grist, HandsOutBlocksThatDoNotOverlap) {
    std::vector<Block> blocks;
    for (std::size_t size = 0; size <= 1100; ++size) {
        blocks.push_back({allocateBytes(size), size});
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        std::memset(blocks[i].address, static_cast<int>(i % 251), blocks[i].size);
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        auto const [address, size] = blocks[i];
        EXPECT_TRUE(std::all_of(address, address + size, [&](std::byte byte) {
            return std::to_integer<std::size_t>(byte) == i % 251;
        })) << size;
        Grist::deallocate(address, size);
    }
}

// A type's size is a multiple of its alignment.
TEST(Grist, AlignsEveryBlockForAnyTypeOfItsSize) {
    for (std::size_t const size :
         {1, 8, 15, 16, 17, 24, 31, 32, 48, 56, 100, 496, 504, 512, 4000}) {
        std::vector<void*> blocks(3);
        for (void*& block : blocks) {
            block = Grist::allocate(size);
            std::size_t const needed = std::min(size & -size, alignof(std::max_align_t));
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % needed, 0U) << size;
        }
        for (void* const block : blocks) {
            Grist::deallocate(block, size);
        }
    }
}

TEST(Grist, GivesAnEmptyBlockAnAddressOfItsOwn) {
    void* const one = Grist::allocate(0);
    void* const other = Grist::allocate(0);
    EXPECT_NE(one, nullptr);
    EXPECT_NE(one, other);
    Grist::deallocate(one, 0);
    Grist::deallocate(other, 0);
}

TEST(Grist, HandsOutTheBlockThatWasGivenBackLast) {
    if (!slabsInUse) {
        GTEST_SKIP() << "AddressSanitizer keeps blocks apart that were given back";
    }
    void* const block = Grist::allocate(40);
    Grist::deallocate(block, 40);
    void* const again = Grist::allocate(33);
    EXPECT_EQ(again, block);
    Grist::deallocate(again, 33);
}

TEST(Grist, TakesNoSlabForACollectionThatShrinksAndGrowsAgain) {
    std::vector<void*> blocks(10000);
    for (void*& block : blocks) {
        block = Grist::allocate(64);
    }
    auto const taken = Grist::slabBytes();
    for (int round = 0; round < 3; ++round) {
        for (void* block : blocks) {
            Grist::deallocate(block, 64);
        }
        for (void*& block : blocks) {
            block = Grist::allocate(64);
        }
    }
    EXPECT_EQ(Grist::slabBytes(), taken);
    for (void* block : blocks) {
        Grist::deallocate(block, 64);
    }
}

TEST(Grist, TakesNoSlabForALargeBlock) {
    auto const taken = Grist::slabBytes();
    void* const block = Grist::allocate(Grist::largestBlock + 1);
    EXPECT_EQ(Grist::slabBytes(), taken);
    Grist::deallocate(block, Grist::largestBlock + 1);
}

TEST(Grist, CountsTheBlocksThatAreHandedOut) {
    auto const before = Grist::liveBlocks();
    void* const small = Grist::allocate(8);
    void* const large = Grist::allocate(8000);
    void* const zeroed = Grist::allocateZeroed(8);
    EXPECT_EQ(Grist::liveBlocks(), before + 3);
    Grist::deallocate(small, 8);
    Grist::deallocate(large, 8000);
    Grist::deallocateZeroed(zeroed);
    EXPECT_EQ(Grist::liveBlocks(), before);
}

TEST(Grist, IgnoresANullBlock) {
    auto const before = Grist::liveBlocks();
    Grist::deallocate(nullptr, 8);
    Grist::deallocateZeroed(nullptr);
    EXPECT_EQ(Grist::liveBlocks(), before);
}

TEST(Grist, ZeroesAZeroedBlock) {
    auto* const block = static_cast<std::byte*>(Grist::allocateZeroed(5000));
    EXPECT_TRUE(
        std::all_of(block, block + 5000, [](std::byte byte) { return byte == std::byte{0}; }));
    Grist::deallocateZeroed(block);
}

TEST(Grist, ServesTheStandardContainers) {
    auto const before = Grist::liveBlocks();
    {
        std::set<int, std::less<>, Grist::Allocator<int>> numbers;
        for (int number = 0; number < 1000; ++number) {
            numbers.insert(number);
        }
        EXPECT_EQ(Grist::liveBlocks(), before + 1000);
    }
    EXPECT_EQ(Grist::liveBlocks(), before);
}

TEST_F(GristFailure, ComesAtTheAllocationThatWasNamed) {
    Grist::failAfterIs(2);
    void* const block = Grist::allocate(8);
    EXPECT_EQ(Grist::failAfter(), 1U);
    EXPECT_THROW(Grist::allocate(8), std::bad_alloc);
    Grist::deallocate(block, 8);
}

TEST_F(GristFailure, ComesOnce) {
    Grist::failAfterIs(1);
    EXPECT_THROW(Grist::allocate(8), std::bad_alloc);
    Grist::deallocate(Grist::allocate(8), 8);
}

TEST_F(GristFailure, ComesForLargeAndZeroedBlocksToo) {
    Grist::failAfterIs(1);
    EXPECT_THROW(Grist::allocate(8000), std::bad_alloc);
    Grist::failAfterIs(1);
    EXPECT_THROW(Grist::allocateZeroed(8), std::bad_alloc);
}

TEST_F(GristFailure, LeavesTheCountOfBlocksAlone) {
    auto const before = Grist::liveBlocks();
    Grist::failAfterIs(1);
    EXPECT_THROW(Grist::allocate(8), std::bad_alloc);
    EXPECT_EQ(Grist::liveBlocks(), before);
}

TEST_F(GristFailure, CountsWhatPassesItsPointFromElsewhere) {
    Grist::failAfterIs(2);
    Grist::passFailurePoint();
    EXPECT_THROW(Grist::allocate(8), std::bad_alloc);
    Grist::failAfterIs(1);
    EXPECT_THROW(Grist::passFailurePoint(), std::bad_alloc);
    Grist::passFailurePoint();
}

TEST_F(GristFailure, CanBeCalledOff) {
    Grist::failAfterIs(1);
    Grist::failAfterIs(0);
    Grist::deallocate(Grist::allocate(8), 8);
    EXPECT_EQ(Grist::failAfter(), 0U);
}

}  // namespace
