// Reference-counted nodes and the pointer that counts.
//
// A node is born with count one, which its factory adopts (makeNode), so a constructor may hand
// out references to the node under construction. Only the last release destroys.
//
// Invariants of a node's count:
//   - it is at least one while anybody holds the node, and at most one after a constructor threw;
//   - during destruction references may be taken and dropped again, but none may be left: a node
//     whose destructor finishes with a reference outstanding stops the process.
//
// Threads: counts are plain until threadSafeCountsIs(true), atomic afterwards. The switch is set
// once, before the first node is shared.
#pragma once

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

#include "VynExport.h"

namespace Vanta {

class VYN_EXPORT Node {
  public:
    Node(Node const&) = delete;
    Node& operator=(Node const&) = delete;

    // Takes one reference. Never fails.
    void refIs() const noexcept {
        if (threadSafeCounts_) [[unlikely]] {
            std::atomic_ref(count_).fetch_add(1, std::memory_order_relaxed);
        } else {
            ++count_;
        }
    }

    // Drops one reference; the last one destroys the node. Never allocates.
    void refDel() const noexcept {
        std::uint32_t left;
        if (threadSafeCounts_) [[unlikely]] {
            left = std::atomic_ref(count_).fetch_sub(1, std::memory_order_acq_rel) - 1;
        } else {
            left = --count_;
        }
        if (left == 0) {
            destroy();
        }
    }

    // References held at this moment. Who knows which of them are its own can tell by it whether
    // anybody else holds the object. Thread: that of the object.
    std::uint32_t refCount() const noexcept { return count_; }

    // Makes counts atomic from now on. It cannot be switched off again.
    static void threadSafeCountsIs(bool on) noexcept;

    // Nodes that are alive at this moment.
    static std::uint64_t liveCount() noexcept;

    // Nodes come from the slab allocator. The size of the most derived type is handed back.
    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size) noexcept;

  protected:
    Node() noexcept;
    virtual ~Node();

  private:
    void destroy() const noexcept;

    static bool threadSafeCounts_;
    mutable std::uint32_t count_ = 1;
};

// A counted pointer to a node; may be null. The pointer itself belongs to one thread.
template <class T>
class Ptr {
  public:
    using element_type = T;

    Ptr() noexcept = default;
    Ptr(std::nullptr_t) noexcept {}
    explicit Ptr(T* node) noexcept : node_(node) { take(); }
    Ptr(Ptr const& other) noexcept : node_(other.node_) { take(); }
    Ptr(Ptr&& other) noexcept : node_(std::exchange(other.node_, nullptr)) {}
    template <class U>
    requires std::convertible_to<U*, T*> Ptr(Ptr<U> const& other)
    noexcept : node_(other.get()) { take(); }
    template <class U>
    requires std::convertible_to<U*, T*> Ptr(Ptr<U>&& other)
    noexcept : node_(other.release()) {}
    ~Ptr() { drop(node_); }

    Ptr& operator=(Ptr other) noexcept {
        std::swap(node_, other.node_);
        return *this;
    }

    // A pointer that takes over a reference which the caller holds.
    static Ptr adopt(T* node) noexcept {
        Ptr adopted;
        adopted.node_ = node;
        return adopted;
    }
    // Gives the reference to the caller; this pointer becomes null.
    [[nodiscard]] T* release() noexcept { return std::exchange(node_, nullptr); }

    T* get() const noexcept { return node_; }
    T* operator->() const noexcept { return node_; }
    T& operator*() const noexcept { return *node_; }
    explicit operator bool() const noexcept { return node_ != nullptr; }

    // Identity, never contents.
    template <class U>
    friend bool operator==(Ptr const& a, Ptr<U> const& b) noexcept {
        return a.get() == b.get();
    }
    friend bool operator==(Ptr const& a, std::nullptr_t) noexcept { return a.node_ == nullptr; }

  private:
    void take() const noexcept {
        if (node_ != nullptr) {
            node_->refIs();
        }
    }
    static void drop(T* node) noexcept {
        if (node != nullptr) {
            node->refDel();
        }
    }

    T* node_ = nullptr;
};

// A node class with a private constructor makes this its friend, so that makeNode() can make it.
struct NodeFactory {
    template <class T, class... Args>
    static Ptr<T> make(Args&&... args) {
        return Ptr<T>::adopt(new T(std::forward<Args>(args)...));
    }
};

// Makes a node and adopts its birth reference. Errors: whatever the constructor throws; the node
// is freed before the exception leaves.
template <class T, class... Args>
Ptr<T> makeNode(Args&&... args) {
    return NodeFactory::make<T>(std::forward<Args>(args)...);
}

// The same node as another type, or null if it is not of that type.
template <class T, class U>
Ptr<T> dynamicCast(Ptr<U> const& node) noexcept {
    return Ptr<T>(dynamic_cast<T*>(node.get()));
}

}  // namespace Vanta

template <class T>
struct std::hash<Vanta::Ptr<T>> {
    std::size_t operator()(Vanta::Ptr<T> const& p) const noexcept {
        return std::hash<T*>()(p.get());
    }
};
