#include "PacketTracer/RequestId.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

using PacketTracer::RequestId;

TEST(RequestId, IsEmptyByDefault) {
    EXPECT_EQ(RequestId(), RequestId("", 0));
}

TEST(RequestId, ComparesByNameAndNumber) {
    EXPECT_EQ(RequestId("a", 7), RequestId("a", 7));
    EXPECT_NE(RequestId("a", 7), RequestId("b", 7));
    EXPECT_NE(RequestId("a", 7), RequestId("a", 8));
}

TEST(RequestId, OrdersByNameThenByNumber) {
    std::vector<RequestId> const ordered{{"", 9}, {"a", 2}, {"a", 10}, {"aa", 1}, {"b", 0}};
    EXPECT_TRUE(std::is_sorted(ordered.begin(), ordered.end()));
    EXPECT_EQ(std::set<RequestId>(ordered.rbegin(), ordered.rend()).size(), ordered.size());
}

TEST(RequestId, HashesEqualIdsAlikeWhoeverMadeTheName) {
    std::string const name = "a client with a name of its own";
    EXPECT_EQ(RequestId(name, 7).hash(), RequestId(name.c_str(), 7).hash());
    EXPECT_EQ(std::hash<RequestId>()(RequestId(name, 7)), RequestId(name, 7).hash());
}

TEST(RequestId, HashesDifferentIdsApart) {
    std::unordered_set<std::uint64_t> hashes;
    for (auto const* client : {"", "a", "b", "client"}) {
        for (std::uint32_t number = 0; number < 10000; ++number) {
            hashes.insert(RequestId(client, number).hash());
        }
    }
    EXPECT_EQ(hashes.size(), 40000U);
}

// How many of 4,096 places a client's requests of these numbers share at most.
std::size_t mostInOnePlace(std::uint32_t first, std::uint32_t stride) {
    constexpr std::uint32_t places = 4096;
    std::vector<std::size_t> requests(places);
    for (std::uint32_t i = 0; i < places; ++i) {
        ++requests[RequestId("client", first + i * stride).hash() % places];
    }
    return *std::max_element(requests.begin(), requests.end());
}

TEST(RequestId, HashSpreadsNumbersWhateverTheirDistance) {
    for (unsigned bits = 0; bits < 32; ++bits) {
        for (std::uint32_t const more : {0, 1}) {
            std::uint32_t const stride = (1U << bits) + more;
            if (std::uint64_t{stride} * 4096 <= std::uint64_t{1} << 32) {
                EXPECT_LT(mostInOnePlace(7, stride), 14u) << stride;
            }
        }
    }
}

TEST(RequestId, HashKeepsNumbersThatFollowOneAnotherTogether) {
    std::set<std::uint64_t> rows;
    for (std::uint32_t number = 128; number < 192; ++number) {
        rows.insert(RequestId("client", number).hash() / 64);
    }
    EXPECT_EQ(rows.size(), 1u);
}

TEST(RequestId, HashDependsOnTheSeed) {
    RequestId const id("a", 7);
    EXPECT_NE(id.hash(1), id.hash(2));
    EXPECT_EQ(id.hash(0), id.hash());
}

}  // namespace
