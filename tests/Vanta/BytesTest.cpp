#include "Vanta/Bytes.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <limits>
#include <new>
#include <span>

#include "Grist/Grist.h"

namespace {

using Vanta::Bytes;

TEST(Bytes, SharesItsContentsWithItsCopies) {
    Bytes const packet{1, 2, 3};
    Bytes const copy = packet;
    ASSERT_NE(packet.data(), nullptr);
    EXPECT_EQ(copy.data(), packet.data());
}

TEST(Bytes, ComparesByteByByte) {
    EXPECT_EQ((Bytes{1, 2}), (Bytes{1, 2}));
    EXPECT_FALSE((Bytes{1, 2}) == (Bytes{1, 3}));
    EXPECT_FALSE((Bytes{1, 2}) == (Bytes{1, 2, 0}));
}

TEST(Bytes, RefusesMoreThanASizeOf32BitsCounts) {
    std::size_t const size = std::size_t{1} << 32;
    void* const pages =
        ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    std::span const bytes(static_cast<std::uint8_t const*>(pages), size);
    EXPECT_THROW(Bytes{bytes}, std::bad_alloc);
    ::munmap(pages, size);
}

// Whether memory is asked for to hold `size` bytes. It is refused, so nothing is read.
bool isMemoryAskedFor(std::size_t size) {
    std::uint8_t const first = 0;
    Grist::failAfterIs(1);
    EXPECT_THROW((Bytes{std::span(&first, size)}), std::bad_alloc);
    bool const asked = Grist::failAfter() == 0;
    Grist::failAfterIs(0);
    return asked;
}

TEST(Bytes, AsksForMemoryForAsMuchAsASizeOf32BitsCounts) {
    EXPECT_TRUE(isMemoryAskedFor(std::numeric_limits<std::uint32_t>::max()));
}

TEST(Bytes, AsksForNoMemoryForMore) {
    EXPECT_FALSE(isMemoryAskedFor(std::size_t{1} << 32));
}

TEST(Bytes, ReadsNothingBehindWhatItCopies) {
    auto const page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    void* const pages =
        ::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    auto* const bytes = static_cast<std::uint8_t*>(pages);
    ASSERT_EQ(::mprotect(bytes + page, page, PROT_NONE), 0);
    bytes[page - 1] = 7;
    EXPECT_EQ((Bytes{std::span<std::uint8_t const>(bytes + page - 1, 1)}), (Bytes{7}));
    ::munmap(pages, 2 * page);
}

TEST(Bytes, PrintsAsLowerCaseHex) {
    EXPECT_EQ(Vanta::hexText(Bytes{0x0a, 0xFF, 0x00}.view()), "0aff00");
}

}  // namespace
