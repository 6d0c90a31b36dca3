// The framework's keyed collection: a hash map that keeps the order of insertion.
//
//   - Iteration goes in the order of insertion; a key that was removed and added again is last.
//   - Iteration tolerates changes: an entry removed before its turn is not visited, one added is
//     visited. The entry that is being visited may itself be removed; its reference then dangles.
//   - Lookup, insertion and removal take constant time, and no operation pauses: the hash table
//     grows by one bucket an insertion, entries never move and are never packed.
//   - Up to `unhashed` entries there is no hash table at all, only the list.
//
// Invariants: every entry is in the list once, and in exactly one bucket if there is a table;
// `order` rises along the list.
// Thread: one only. Nothing here publishes; the owner of the collection does.
#pragma once

#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>

#include "Grist/Grist.h"
#include "Kel/HashBuckets.h"

namespace Kel {

// A key with its hash, for several look-ups of one key, in one collection or in several with the
// same type of key. It refers to the key.
template <class Key, class Hash = std::hash<Key>>
class HashedKey {
  public:
    explicit HashedKey(Key const& key) : key_(key), hash_(hashOf(key)) {}

    // An equal key that is stored elsewhere; its hash is taken over.
    HashedKey(Key const& key, HashedKey const& equal) : key_(key), hash_(equal.hash_) {}

    Key const& key() const noexcept { return key_; }
    std::uint64_t hash() const noexcept { return hash_; }

    // The low bits choose the bucket, so weak hashes (identity for integers) are mixed. A hash
    // function that says that it chooses the buckets itself is used as it is.
    static std::uint64_t hashOf(Key const& key) {
        std::uint64_t const hash = Hash()(key);
        if constexpr (requires { typename Hash::ChoosesPlaces; }) {
            return hash;
        } else {
            std::uint64_t const mixed = hash * 0x9e3779b97f4a7c15ULL;
            return mixed ^ (mixed >> 32);
        }
    }

  private:
    Key const& key_;
    std::uint64_t hash_;
};

template <class Key, class Value, class Hash = std::hash<Key>>
class Collection {
  public:
    // One entry. Its address is stable until it is removed.
    struct Entry {
        template <class K, class... Args>
        Entry(K&& ownKey, Args&&... args)
            : key(std::forward<K>(ownKey)), value(std::forward<Args>(args)...) {}

        Entry* previous = nullptr;
        Entry* next = nullptr;
        ChainLink chain;          // to the next entry of the same bucket
        std::uint64_t order = 0;  // rises with every insertion into the collection
        Key const key;
        Value value;
    };

    class Iterator;

    Collection() noexcept = default;
    Collection(Collection const&) = delete;
    Collection& operator=(Collection const&) = delete;
    ~Collection() {
        clear();
        for (Iterator* iterator = iterators_; iterator != nullptr; iterator = iterator->outer_) {
            iterator->collection_ = nullptr;
        }
    }

    std::size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }
    bool has(Key const& key) const { return find(key) != nullptr; }

    using Hashed = HashedKey<Key, Hash>;

    // The entry of a key, or null.
    Entry* find(Key const& key) { return findEntry(key); }
    Entry const* find(Key const& key) const { return findEntry(key); }
    Entry* find(Hashed const& key) { return findHashed(key.key(), key.hash()); }
    Entry const* find(Hashed const& key) const { return findHashed(key.key(), key.hash()); }

    // The value of a key, or a default one (for pointers: null).
    Value get(Key const& key) const {
        Entry const* entry = find(key);
        return entry != nullptr ? entry->value : Value();
    }

    // Adds an entry at the end. The key must be absent. Errors: std::bad_alloc, nothing changed.
    template <class K, class... Args>
    Entry& insert(K&& key, Args&&... args) {
        makeRoom();
        Entry& entry = *makeEntry(std::forward<K>(key), std::forward<Args>(args)...).release();
        link(entry);
        if (buckets_) {
            pushToBucket(entry, Hashed::hashOf(entry.key));
        }
        return entry;
    }
    template <class... Args>
    Entry& insertHashed(Hashed const& key, Args&&... args) {
        makeRoom();
        Entry& entry = *makeEntry(key.key(), std::forward<Args>(args)...).release();
        link(entry);
        if (buckets_) {
            pushToBucket(entry, key.hash());
        }
        return entry;
    }

    // The entry of a key, added with a default value if it is absent.
    Entry& findOrInsert(Key const& key) {
        Entry* entry = find(key);
        return entry != nullptr ? *entry : insert(key);
    }

    // Removes an entry and returns its value; nothing if the key is absent. The collection is
    // whole again before the value is handed out.
    std::optional<Value> remove(Key const& key) {
        if (buckets_) {
            return remove(Hashed(key));
        }
        Entry* const entry = findInList(key);
        return entry != nullptr ? std::optional<Value>(take(*entry)) : std::nullopt;
    }
    std::optional<Value> remove(Hashed const& key) {
        Entry* const entry = find(key);
        if (entry == nullptr) {
            return std::nullopt;
        }
        if (buckets_) {
            popFromBucket(*entry, key.hash());
        }
        return take(*entry);
    }
    Value remove(Entry& entry) {
        if (buckets_) {
            popFromBucket(entry, Hashed::hashOf(entry.key));
        }
        return take(entry);
    }

    // Removes all entries, first to last.
    void clear() {
        while (first_ != nullptr) {
            static_cast<void>(remove(*first_));
        }
    }

    // Calls `visit` with the key of each entry up to the one that is last when this begins; entries
    // that are added meanwhile are not visited. The visit may remove any entry; the key then
    // dangles.
    template <class Visit>
    void eachKeyUntilLast(Visit const& visit) const {
        std::uint64_t const last = insertions_;
        for (Entry const& entry : *this) {
            if (entry.order > last) {
                return;
            }
            visit(entry.key);
        }
    }

    Iterator begin() const { return Iterator(*this); }
    std::default_sentinel_t end() const noexcept { return {}; }

    Entry* first() const noexcept { return first_; }

  private:
    // Below this size walking the list is faster than hashing.
    static constexpr std::size_t unhashed = 8;

    static void freeEntry(Entry* entry) noexcept {
        std::destroy_at(entry);
        Grist::deallocate(entry, sizeof(Entry));
    }
    struct EntryDeleter {
        void operator()(Entry* entry) const noexcept { freeEntry(entry); }
    };
    using EntryOwner = std::unique_ptr<Entry, EntryDeleter>;

    template <class... Args>
    static EntryOwner makeEntry(Args&&... args) {
        void* const block = Grist::allocate(sizeof(Entry));
        try {
            return EntryOwner(::new (block) Entry(std::forward<Args>(args)...));
        } catch (...) {
            Grist::deallocate(block, sizeof(Entry));
            throw;
        }
    }

    Entry* findEntry(Key const& key) const {
        return buckets_ ? findInBucket(key, Hashed::hashOf(key)) : findInList(key);
    }
    Entry* findHashed(Key const& key, std::uint64_t hash) const {
        return buckets_ ? findInBucket(key, hash) : findInList(key);
    }
    Entry* findInBucket(Key const& key, std::uint64_t hash) const {
        ChainLink link = buckets_->head(hash);
        while (link.mayHave(hash)) {
            auto* const entry = static_cast<Entry*>(link.entry());
            if (entry->key == key) {
                return entry;
            }
            link = entry->chain;
        }
        return nullptr;
    }
    Entry* findInList(Key const& key) const {
        Entry* entry = first_;
        while (entry != nullptr && !(entry->key == key)) {
            entry = entry->next;
        }
        return entry;
    }

    // Takes the value of an entry that is in no bucket any more.
    Value take(Entry& entry) {
        unlink(entry);
        Value value = std::move(entry.value);
        freeEntry(&entry);
        return value;
    }

    void makeRoom() {
        if (size_ >= unhashed && (!buckets_ || size_ >= buckets_->count())) {
            growTable();
        }
    }
    // Makes room for one more entry: the table, with all entries so far, or one more bucket.
    void growTable() {
        if (!buckets_) {
            buckets_ = std::make_unique<HashBuckets>();
            for (Entry* entry = first_; entry != nullptr; entry = entry->next) {
                pushToBucket(*entry, Hashed::hashOf(entry->key));
            }
        }
        if (size_ < buckets_->count()) {
            return;
        }
        ChainLink moving = buckets_->split();
        while (auto* const entry = static_cast<Entry*>(moving.entry())) {
            moving = entry->chain;
            pushToBucket(*entry, Hashed::hashOf(entry->key));
        }
    }
    void pushToBucket(Entry& entry, std::uint64_t hash) {
        ChainLink& head = buckets_->head(hash);
        entry.chain = head;
        head = head.with(&entry, hash);
    }
    void popFromBucket(Entry& entry, std::uint64_t hash) {
        ChainLink* link = &buckets_->head(hash);
        while (link->entry() != &entry) {
            link = &static_cast<Entry*>(link->entry())->chain;
        }
        *link = entry.chain;
    }

    void link(Entry& entry) noexcept {
        entry.order = ++insertions_;
        entry.previous = last_;
        (last_ != nullptr ? last_->next : first_) = &entry;
        last_ = &entry;
        ++size_;
    }
    void unlink(Entry& entry) noexcept {
        for (Iterator* iterator = iterators_; iterator != nullptr; iterator = iterator->outer_) {
            iterator->entryGoes(entry);
        }
        (entry.previous != nullptr ? entry.previous->next : first_) = entry.next;
        (entry.next != nullptr ? entry.next->previous : last_) = entry.previous;
        --size_;
    }

    Entry* first_ = nullptr;
    Entry* last_ = nullptr;
    std::size_t size_ = 0;
    std::uint64_t insertions_ = 0;
    std::unique_ptr<HashBuckets> buckets_;
    mutable Iterator* iterators_ = nullptr;
};

// A walk through a collection. The collection knows the walk while it lives, so the walk survives
// the removal of its current entry. Walks nest.
template <class Key, class Value, class Hash>
class Collection<Key, Value, Hash>::Iterator {
  public:
    explicit Iterator(Collection const& collection) noexcept
        : collection_(&collection), current_(collection.first_), outer_(collection.iterators_) {
        collection.iterators_ = this;
    }
    Iterator(Iterator const&) = delete;
    Iterator& operator=(Iterator const&) = delete;
    ~Iterator() {
        if (collection_ == nullptr) {
            return;
        }
        Iterator** link = &collection_->iterators_;
        while (*link != this) {
            link = &(*link)->outer_;
        }
        *link = outer_;
    }

    Entry const& operator*() const noexcept { return *current_; }
    Entry const* operator->() const noexcept { return current_; }

    Iterator& operator++() noexcept {
        if (removed_) {
            removed_ = false;
            // The entries before the removed one have been visited; if there are none, the walk
            // goes on with the first entry.
            current_ = current_ != nullptr ? current_->next : front();
        } else {
            current_ = current_->next;
        }
        return *this;
    }
    friend bool operator==(Iterator const& it, std::default_sentinel_t) noexcept {
        return it.collection_ == nullptr || it.current_ == nullptr;
    }

  private:
    friend class Collection;

    Entry* front() const noexcept { return collection_ != nullptr ? collection_->first_ : nullptr; }
    void entryGoes(Entry const& entry) noexcept {
        if (current_ == &entry) {
            current_ = entry.previous;
            removed_ = true;
        }
    }

    Collection const* collection_;
    Entry* current_;
    Iterator* outer_;
    bool removed_ = false;
};

}  // namespace Kel
