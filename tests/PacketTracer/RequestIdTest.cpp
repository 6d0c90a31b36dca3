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

TEST(RequestId, HashDependsOnTheSeed) {
    RequestId const id("a", 7);
    EXPECT_NE(id.hash(1), id.hash(2));
    EXPECT_EQ(id.hash(0), id.hash());
}

}  // namespace
