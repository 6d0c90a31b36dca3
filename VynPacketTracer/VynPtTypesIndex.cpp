#include "VynPacketTracer/VynPtTypesIndex.h"

namespace VynPacketTracer {
namespace {

using Where = PendingLink::Where;

constexpr std::size_t pktIds = 65536;

std::uint64_t priorityOf(PendingLink const& job) noexcept {
    std::uint64_t const mixed = job.order * 0x9e3779b97f4a7c15ULL;
    return (mixed ^ (mixed >> 32)) * 0xff51afd7ed558ccdULL;
}

// Cuts a tree in two: what is below `order`, and the rest.
void split(PendingLink* tree, std::uint64_t order, PendingLink*& below, PendingLink*& rest) {
    PendingLink** belowEnd = &below;
    PendingLink** restEnd = &rest;
    while (tree != nullptr) {
        if (tree->order < order) {
            *belowEnd = tree;
            belowEnd = &tree->right;
            tree = tree->right;
        } else {
            *restEnd = tree;
            restEnd = &tree->left;
            tree = tree->left;
        }
    }
    *belowEnd = nullptr;
    *restEnd = nullptr;
}

// Joins two trees, all of the first below all of the second.
PendingLink* join(PendingLink* first, PendingLink* second) noexcept {
    PendingLink* joined = nullptr;
    PendingLink** end = &joined;
    while (first != nullptr && second != nullptr) {
        if (priorityOf(*first) >= priorityOf(*second)) {
            *end = first;
            end = &first->right;
            first = first->right;
        } else {
            *end = second;
            end = &second->left;
            second = second->left;
        }
    }
    *end = first != nullptr ? first : second;
    return joined;
}

}  // namespace

void PendingJobs::freshIs(PendingLink& job) noexcept {
    job.where = Where::fresh;
    job.left = lastFresh_;
    job.right = nullptr;
    (lastFresh_ != nullptr ? lastFresh_->right : firstFresh_) = &job;
    lastFresh_ = &job;
}

void PendingJobs::returnedIs(PendingLink& job) noexcept {
    job.where = Where::returned;
    std::uint64_t const priority = priorityOf(job);
    PendingLink** place = &root_;
    while (*place != nullptr && priorityOf(**place) >= priority) {
        place = (*place)->order < job.order ? &(*place)->right : &(*place)->left;
    }
    split(*place, job.order, job.left, job.right);
    *place = &job;
}

void PendingJobs::del(PendingLink& job) noexcept {
    if (job.where == Where::fresh) {
        (job.left != nullptr ? job.left->right : firstFresh_) = job.right;
        (job.right != nullptr ? job.right->left : lastFresh_) = job.left;
    } else if (job.where == Where::returned) {
        PendingLink** place = &root_;
        while (*place != &job) {
            place = (*place)->order < job.order ? &(*place)->right : &(*place)->left;
        }
        *place = join(job.left, job.right);
    }
    job.where = Where::nowhere;
}

PendingLink* PendingJobs::first() const noexcept {
    PendingLink* returned = root_;
    while (returned != nullptr && returned->left != nullptr) {
        returned = returned->left;
    }
    bool const returnedIsFirst =
        returned != nullptr && (firstFresh_ == nullptr || returned->order < firstFresh_->order);
    return returnedIsFirst ? returned : firstFresh_;
}

void PktIdIndex::makeTable() {
    if (!table_) {
        table_.reset(static_cast<Bucket*>(Grist::allocateZeroed(pktIds * sizeof(Bucket))));
    }
}

void PktIdIndex::add(PktIdLink& entry, std::uint16_t pktId) noexcept {
    Bucket& bucket = table_[pktId];
    PktIdLink* before = bucket.last;
    while (before != nullptr && before->order > entry.order) {
        before = before->previous;
    }
    entry.previous = before;
    entry.next = before != nullptr ? before->next : bucket.first;
    (before != nullptr ? before->next : bucket.first) = &entry;
    (entry.next != nullptr ? entry.next->previous : bucket.last) = &entry;
}

void PktIdIndex::del(PktIdLink& entry, std::uint16_t pktId) noexcept {
    Bucket& bucket = table_[pktId];
    (entry.previous != nullptr ? entry.previous->next : bucket.first) = entry.next;
    (entry.next != nullptr ? entry.next->previous : bucket.last) = entry.previous;
}

PktIdLink* PktIdIndex::firstAfter(std::uint16_t pktId, std::uint64_t order) const noexcept {
    PktIdLink* entry = table_ ? table_[pktId].first : nullptr;
    while (entry != nullptr && entry->order <= order) {
        entry = entry->next;
    }
    return entry;
}

}  // namespace VynPacketTracer
