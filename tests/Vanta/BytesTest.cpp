#include "Vanta/Bytes.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <new>
#include <span>

namespace {

using Vanta::Bytes;

TEST(Bytes, SharesItsContentsWithItsCopies) {
    Bytes const packet{1, 2, 3};
    Bytes const copy = packet;
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

TEST(Bytes, PrintsAsLowerCaseHex) {
    EXPECT_EQ(Vanta::hexText(Bytes{0x0a, 0xFF, 0x00}.view()), "0aff00");
}

}  // namespace
