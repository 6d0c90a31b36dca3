// The indexes of the two collections of shared records. Each replaces a walk:
//
//   index         replaces the walk that looks for
//   PendingJobs   the first job in the order of PktGenConfig without an entry in PktGenStatus
//   PktIdIndex    the entries, in the order of PktGenStatus, that have a packet id
//
// Their links are part of the records, so nothing here allocates but the table of packet ids, once.
// The collections keep them up to date before they publish. Thread: the event thread.
#pragma once

#include <cstdint>
#include <memory>

#include "Grist/Grist.h"
#include "VynExport.h"

namespace VynPacketTracer {

// A job's links in PendingJobs. `order` is its position in the collection.
struct PendingLink {
    enum class Where : std::uint8_t { nowhere, fresh, returned };

    std::uint64_t order = 0;
    PendingLink* left = nullptr;   // fresh: the one before; returned: the subtree before
    PendingLink* right = nullptr;  // the same after
    Where where = Where::nowhere;
};

// The pending jobs. New ones are kept in a list, because they come in order. Those that became
// pending again return to their old position, so they are kept in a tree (a treap, whose priorities
// are a mix of the order).
//
//   operation   cost
//   freshIs     constant
//   returnedIs  logarithmic in the number of returned jobs (expected)
//   del         constant for a fresh job, logarithmic for a returned one (expected)
//   first       constant, or logarithmic if there are returned jobs (expected)
//
// Expected, because a treap is as deep as its priorities make it: a single operation may take
// longer.
class VYN_EXPORT PendingJobs {
  public:
    // Adds a job whose order is higher than that of all fresh ones.
    void freshIs(PendingLink& job) noexcept;
    // Adds a job of any order.
    void returnedIs(PendingLink& job) noexcept;
    // Removes a job; nothing happens if it is not pending.
    void del(PendingLink& job) noexcept;
    // The pending job of the lowest order, or null.
    PendingLink* first() const noexcept;

  private:
    PendingLink* firstFresh_ = nullptr;
    PendingLink* lastFresh_ = nullptr;
    PendingLink* root_ = nullptr;
};

// A status entry's links in PktIdIndex. `order` is its position in the collection.
struct PktIdLink {
    std::uint64_t order = 0;
    PktIdLink* previous = nullptr;
    PktIdLink* next = nullptr;
};

// The status entries by packet id; those of one id in the collection's order. Adding the entry of
// the highest order takes constant time, any other is linear in the entries of its id.
//
// The table has room for every id: 65,536 times two pointers, a megabyte of addresses. The system
// fills a page of it, 256 ids, when one of them is used for the first time.
class PktIdIndex {
  public:
    // Makes the table if there is none; to be called before the first add(). Errors:
    // std::bad_alloc.
    void makeTable();
    void add(PktIdLink& entry, std::uint16_t pktId) noexcept;
    void del(PktIdLink& entry, std::uint16_t pktId) noexcept;
    // The first entry of an id whose order is higher than `order`, or null.
    PktIdLink* firstAfter(std::uint16_t pktId, std::uint64_t order) const noexcept;

  private:
    struct Bucket {
        PktIdLink* first;
        PktIdLink* last;
    };
    struct Free {
        void operator()(Bucket* table) const noexcept { Grist::deallocateZeroed(table); }
    };

    std::unique_ptr<Bucket[], Free> table_;
};

}  // namespace VynPacketTracer
