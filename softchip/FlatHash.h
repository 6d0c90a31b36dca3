// A hash table in one array, for the chip's exact-match tables: a hundred thousand entries load in
// milliseconds, a lookup touches one or two cache lines. Key and Value are plain default
// constructible values; Key compares with == and has `std::uint64_t hash() const`, all of whose
// bits are well mixed. Owned by one thread, as every table of the chip.
//
// Invariants: the number of slots is zero or a power of two; at most three quarters are used; from
// the slot that a key's hash names to the slot it is in, every slot is used.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace SoftChip {

template <class Key, class Value>
class FlatHash {
  public:
    std::size_t size() const { return size_; }

    // The value under `key`, or null. The pointer is good until the next change of the table.
    Value const* find(Key const& key) const {
        auto const at = slotOf(key);
        return at == none ? nullptr : &slots_[at].value;
    }
    Value* find(Key const& key) {
        auto const at = slotOf(key);
        return at == none ? nullptr : &slots_[at].value;
    }

    // The value under `key`, made with Value{} if there was none; good until the next change.
    Value& operator[](Key const& key) {
        if (auto* found = find(key)) {
            return *found;
        }
        reserve(size_ + 1);
        auto const at = freeSlot(key);
        slots_[at] = {key, Value{}, true};
        ++size_;
        return slots_[at].value;
    }

    // Removes the entry; false if there was none.
    bool erase(Key const& key) {
        auto const at = slotOf(key);
        if (at == none) {
            return false;
        }
        closeGap(at);
        --size_;
        return true;
    }

    // Makes room for `count` entries in all, so that loading them never copies the table.
    void reserve(std::size_t count) {
        if (count * 4 <= slots_.size() * 3) {
            return;
        }
        std::size_t slots = slots_.empty() ? 16 : slots_.size();
        while (slots * 3 < count * 4) {
            slots *= 2;
        }
        auto old = std::exchange(slots_, std::vector<Slot>(slots));
        for (auto& slot : old) {
            if (slot.used) {
                slots_[freeSlot(slot.key)] = std::move(slot);
            }
        }
    }

    // Calls visit(key, value) for every entry, in no stated order. `visit` must not change the
    // table.
    template <class Visit>
    void forEach(Visit&& visit) const {
        for (auto const& slot : slots_) {
            if (slot.used) {
                visit(slot.key, slot.value);
            }
        }
    }

  private:
    struct Slot {
        Key key{};
        Value value{};
        bool used = false;
    };
    static constexpr std::size_t none = ~std::size_t{0};

    std::size_t home(Key const& key) const { return key.hash() & (slots_.size() - 1); }
    std::size_t after(std::size_t at) const { return (at + 1) & (slots_.size() - 1); }

    std::size_t slotOf(Key const& key) const {
        if (slots_.empty()) {
            return none;
        }
        auto at = home(key);
        while (slots_[at].used && !(slots_[at].key == key)) {
            at = after(at);
        }
        return slots_[at].used ? at : none;
    }

    std::size_t freeSlot(Key const& key) const {
        auto at = home(key);
        while (slots_[at].used) {
            at = after(at);
        }
        return at;
    }

    // Moves entries back over the gap, so that no marker of removed entries is ever needed.
    void closeGap(std::size_t gap) {
        auto const mask = slots_.size() - 1;
        for (auto at = after(gap); slots_[at].used; at = after(at)) {
            auto const wandered = (at - home(slots_[at].key)) & mask;
            if (wandered >= ((at - gap) & mask)) {
                slots_[gap] = std::move(slots_[at]);
                gap = at;
            }
        }
        slots_[gap] = Slot{};
    }

    std::vector<Slot> slots_;
    std::size_t size_ = 0;
};

}  // namespace SoftChip
