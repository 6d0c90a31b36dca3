// Longest-prefix match for both families in any number of VRFs: one hash table of prefixes for all,
// and for each VRF and family the set of lengths that are in use. A lookup tries these lengths from
// the longest to the shortest, so it costs a handful of hash lookups. Adding or removing a prefix
// costs one, however many prefixes there are. Owned by one thread.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "softchip/Addresses.h"
#include "softchip/FlatHash.h"
#include "softchip/Mix.h"

namespace SoftChip {

template <class Value>
class Lpm {
  public:
    struct Match {
        Prefix prefix;
        Value const* value = nullptr;  // good until the next change
    };

    std::size_t size() const { return prefixes_.size(); }
    void reserve(std::size_t count) { prefixes_.reserve(count); }

    // Adds the prefix or replaces its value. Precondition: no bit is set beyond the prefix's
    // length.
    void add(std::uint16_t vrf, Prefix const& prefix, Value value) {
        auto const before = prefixes_.size();
        prefixes_[key(vrf, prefix.address, prefix.length)] = std::move(value);
        if (prefixes_.size() != before) {
            lengths_[{vrf, prefix.address.family}].add(prefix.length);
        }
    }

    // Removes the prefix; false if it was not there.
    bool remove(std::uint16_t vrf, Prefix const& prefix) {
        if (!prefixes_.erase(key(vrf, prefix.address, prefix.length))) {
            return false;
        }
        lengths_[{vrf, prefix.address.family}].remove(prefix.length);
        return true;
    }

    // The value of exactly this prefix, or null.
    Value const* exact(std::uint16_t vrf, Prefix const& prefix) const {
        return prefixes_.find(key(vrf, prefix.address, prefix.length));
    }

    // The longest prefix of the VRF that contains `address`, or nothing.
    std::optional<Match> longest(std::uint16_t vrf, IpAddress const& address) const {
        auto const* lengths = lengths_.find({vrf, address.family});
        if (!lengths) {
            return std::nullopt;
        }
        for (int length = lengths->atMost(128); length >= 0; length = lengths->atMost(length - 1)) {
            auto const bits = static_cast<unsigned>(length);
            auto const candidate = address.masked(bits);
            if (auto const* value = prefixes_.find(key(vrf, candidate, bits))) {
                return Match{{candidate, static_cast<std::uint8_t>(bits)}, value};
            }
        }
        return std::nullopt;
    }

    // Calls visit(vrf, prefix, value) for every prefix, in no stated order.
    template <class Visit>
    void forEach(Visit&& visit) const {
        prefixes_.forEach([&](PrefixKey const& k, Value const& value) {
            auto const family = static_cast<Family>(k.meta >> 8 & 0xff);
            visit(static_cast<std::uint16_t>(k.meta >> 16),
                  Prefix{{k.hi, k.lo, family}, static_cast<std::uint8_t>(k.meta)}, value);
        });
    }

  private:
    struct PrefixKey {
        std::uint64_t hi = 0;
        std::uint64_t lo = 0;
        std::uint64_t meta = 0;  // VRF, family, length
        bool operator==(PrefixKey const&) const = default;
        std::uint64_t hash() const { return mix(mix(hi ^ meta) ^ lo); }
    };
    struct TableKey {
        std::uint16_t vrf = 0;
        Family family = Family::ipv4;
        bool operator==(TableKey const&) const = default;
        std::uint64_t hash() const {
            return mix(std::uint64_t{vrf} << 1 | (family == Family::ipv6));
        }
    };

    // How many prefixes have each length, and a bit for each length that has any.
    class Lengths {
      public:
        void add(unsigned length) {
            ++count_[length];
            used_[length / 64] |= std::uint64_t{1} << length % 64;
        }
        void remove(unsigned length) {
            if (--count_[length] == 0) {
                used_[length / 64] &= ~(std::uint64_t{1} << length % 64);
            }
        }
        // The greatest length in use that is not above `limit`, or -1.
        int atMost(int limit) const {
            for (int word = limit >> 6; limit >= 0 && word >= 0; --word) {
                auto const top = word == limit >> 6 ? limit & 63 : 63;
                auto const bits = used_[static_cast<unsigned>(word)] << (63 - top) >> (63 - top);
                if (bits) {
                    return word * 64 + 63 - std::countl_zero(bits);
                }
            }
            return -1;
        }

      private:
        std::array<std::uint32_t, 129> count_{};
        std::array<std::uint64_t, 3> used_{};
    };

    static PrefixKey key(std::uint16_t vrf, IpAddress const& address, unsigned length) {
        auto const family = static_cast<std::uint64_t>(address.family);
        return {address.hi, address.lo, std::uint64_t{vrf} << 16 | family << 8 | length};
    }

    FlatHash<PrefixKey, Value> prefixes_;
    FlatHash<TableKey, Lengths> lengths_;
};

}  // namespace SoftChip
