#include "softchip/Lpm.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <vector>

#include "tests/softchip/FrameBuilder.h"

namespace SoftChip {
namespace {

using FrameBuilder::ip;
using FrameBuilder::prefix;

struct Entry {
    std::uint16_t vrf;
    Prefix prefix;
    int value;
};

// What longest-prefix match means, literally.
Entry const* linearSearch(std::vector<Entry> const& entries, std::uint16_t vrf, IpAddress address) {
    Entry const* best = nullptr;
    for (auto const& entry : entries) {
        if (entry.vrf == vrf && entry.prefix.contains(address) &&
            (!best || entry.prefix.length > best->prefix.length)) {
            best = &entry;
        }
    }
    return best;
}

// Addresses that share their beginnings often, so that prefixes nest.
class RandomAddresses {
  public:
    IpAddress address() {
        auto const family = random_() % 2 ? Family::ipv4 : Family::ipv6;
        auto const few = [this] { return random_() & 0x8181818181818181; };
        return family == Family::ipv4 ? IpAddress::v4(static_cast<std::uint32_t>(few()))
                                      : IpAddress::v6(few(), few());
    }
    Prefix prefix() {
        auto const of = address();
        return Prefix::of(of, static_cast<unsigned>(random_() % (addressBits(of.family) + 1)));
    }
    std::uint16_t vrf() { return static_cast<std::uint16_t>(random_() % 3); }
    std::uint64_t number(std::uint64_t below) { return random_() % below; }

  private:
    std::mt19937_64 random_{7};
};

void expectSame(Lpm<int> const& lpm, std::vector<Entry> const& entries, RandomAddresses& random) {
    auto const vrf = random.vrf();
    auto const address = random.address();
    auto const found = lpm.longest(vrf, address);
    auto const* expected = linearSearch(entries, vrf, address);
    ASSERT_EQ(found.has_value(), expected != nullptr) << address.text();
    if (found) {
        ASSERT_EQ(found->prefix.text(), expected->prefix.text()) << address.text();
        ASSERT_EQ(*found->value, expected->value) << address.text();
    }
}

TEST(Lpm, AgreesWithALinearSearchOfRandomPrefixes) {
    RandomAddresses random;
    Lpm<int> lpm;
    std::vector<Entry> entries;
    for (int i = 0; i < 3000; ++i) {
        auto const vrf = random.vrf();
        auto const chosen = random.prefix();
        std::erase_if(entries, [&](Entry const& e) { return e.vrf == vrf && e.prefix == chosen; });
        entries.push_back({vrf, chosen, i});
        lpm.add(vrf, chosen, i);
        if (random.number(3) == 0) {
            auto const at = static_cast<std::ptrdiff_t>(random.number(entries.size()));
            EXPECT_TRUE(lpm.remove(entries[static_cast<std::size_t>(at)].vrf,
                                   entries[static_cast<std::size_t>(at)].prefix));
            entries.erase(entries.begin() + at);
        }
        expectSame(lpm, entries, random);
    }
    EXPECT_EQ(lpm.size(), entries.size());
}

TEST(Lpm, FindsTheDefaultRouteOfTheFamilyAlone) {
    Lpm<int> lpm;
    lpm.add(0, prefix("0.0.0.0/0"), 4);
    EXPECT_EQ(*lpm.longest(0, ip("192.0.2.1"))->value, 4);
    EXPECT_FALSE(lpm.longest(0, ip("2001:db8::1")));
}

TEST(Lpm, PrefersTheHostPrefix) {
    Lpm<int> lpm;
    lpm.add(0, prefix("::/0"), 0);
    lpm.add(0, prefix("2001:db8::/64"), 64);
    lpm.add(0, prefix("2001:db8::1"), 128);
    EXPECT_EQ(*lpm.longest(0, ip("2001:db8::1"))->value, 128);
    EXPECT_EQ(*lpm.longest(0, ip("2001:db8::2"))->value, 64);
    EXPECT_EQ(*lpm.longest(0, ip("2001:db9::"))->value, 0);
}

TEST(Lpm, KeepsVrfsApart) {
    Lpm<int> lpm;
    lpm.add(1, prefix("10.0.0.0/8"), 1);
    EXPECT_FALSE(lpm.longest(0, ip("10.1.1.1")));
    EXPECT_FALSE(lpm.remove(0, prefix("10.0.0.0/8")));
    EXPECT_EQ(*lpm.longest(1, ip("10.1.1.1"))->value, 1);
}

TEST(Lpm, ReplacesTheValueOfAPrefixAndForgetsItAtOneRemoval) {
    Lpm<int> lpm;
    lpm.add(0, prefix("10.0.0.0/8"), 1);
    lpm.add(0, prefix("10.0.0.0/8"), 2);
    EXPECT_EQ(*lpm.exact(0, prefix("10.0.0.0/8")), 2);
    EXPECT_TRUE(lpm.remove(0, prefix("10.0.0.0/8")));
    EXPECT_FALSE(lpm.longest(0, ip("10.1.1.1")));
}

TEST(Lpm, VisitsEveryPrefixWithItsVrfAndValue) {
    Lpm<int> lpm;
    lpm.add(513, prefix("2001:db8::/33"), 5);
    int visits = 0;
    lpm.forEach([&](std::uint16_t vrf, Prefix const& visited, int value) {
        ++visits;
        EXPECT_EQ(vrf, 513);
        EXPECT_EQ(visited, prefix("2001:db8::/33"));
        EXPECT_EQ(value, 5);
    });
    EXPECT_EQ(visits, 1);
}

}  // namespace
}  // namespace SoftChip
