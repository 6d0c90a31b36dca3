// Publication of changes: a publisher tells its subscribers, synchronously and depth first.
//
// Rules of delivery:
//   1. Subscribers are called in the order in which they subscribed.
//   2. A subscriber that goes during delivery is not called any more.
//   3. A subscriber that arrives during delivery is not called for that publication.
//   4. The publisher may go during delivery; the rest of the subscribers are then not called.
//   5. A subscriber may publish again through the same publisher; the inner publication is
//      delivered whole before the outer one goes on.
//   6. The tap, if there is one, is told before any subscriber.
//   7. An exception that leaves a subscriber ends the process (Vanta/Assert.h).
//
// Neither publishing nor subscribing nor unsubscribing allocates or counts a reference. No
// subscriber is kept alive by its subscription, nor is the publisher.
// Thread: one only.
#pragma once

#include <cstdint>

#include "Vanta/ValueRef.h"
#include "VynExport.h"

namespace Vanta {

class Node;
class Publisher;
class Subscriber;

using AttributeNumber = unsigned;

// One change: which attribute, for a collection which key, and the value before, where there was
// one. The references are valid during the call only.
using Dispatch = void (*)(void* context, Publisher const& publisher, Subscriber& subscriber,
                          AttributeNumber attribute, ValueRef key, ValueRef oldValue);

// The process-wide listener that is told of every publication before any subscriber.
using Tap = void (*)(void* context, Publisher const& publisher, AttributeNumber attribute,
                     ValueRef key, ValueRef oldValue);

// Sets the tap, or removes it (null). It must not throw. Without one a publication costs a branch.
VYN_EXPORT void tapIs(Tap tap, void* context) noexcept;

// The source of changes of one object. It is a member of the object that it speaks for.
class VYN_EXPORT Publisher {
  public:
    // `owner` is the object that the publications are about, for the tap.
    explicit Publisher(Node const* owner) noexcept : owner_(owner) {}
    Publisher(Publisher const&) = delete;
    Publisher& operator=(Publisher const&) = delete;
    // Releases every subscription and stops the deliveries under way.
    ~Publisher();

    // Tells the tap, then every subscriber, of a change that has been stored already.
    void publish(AttributeNumber attribute, ValueRef key = {}, ValueRef oldValue = {}) const;

    Node const* owner() const noexcept { return owner_; }

  private:
    friend class Subscriber;
    struct Delivery;

    Node const* owner_;
    mutable Subscriber* first_ = nullptr;
    mutable Subscriber* last_ = nullptr;
    mutable Delivery* deliveries_ = nullptr;
    mutable std::uint64_t subscriptions_ = 0;
};

// One subscription, owned by whoever is to be called. Its destructor unsubscribes.
class VYN_EXPORT Subscriber {
  public:
    Subscriber() noexcept = default;
    Subscriber(Subscriber const&) = delete;
    Subscriber& operator=(Subscriber const&) = delete;
    ~Subscriber() { unsubscribe(); }

    // Subscribes `dispatch` to the publisher. A subscription that exists is given up first.
    void subscribe(Publisher const& publisher, Dispatch dispatch, void* context) noexcept;

    // The same with a member function:
    //     configSubscriber_.subscribe<&PacketTracerSm::configDispatch>(dir->publisher(), this);
    template <auto member, class T>
    void subscribe(Publisher const& publisher, T* object) noexcept {
        subscribe(
            publisher,
            [](void* context, Publisher const& source, Subscriber& self, AttributeNumber attribute,
               ValueRef key, ValueRef oldValue) {
                (static_cast<T*>(context)->*member)(source, self, attribute, key, oldValue);
            },
            object);
    }

    // Ends the subscription; nothing happens if there is none.
    void unsubscribe() noexcept;

    // True while subscribed. It becomes false by itself when the publisher goes.
    bool subscribed() const noexcept { return publisher_ != nullptr; }

  private:
    friend class Publisher;

    Publisher const* publisher_ = nullptr;
    Subscriber* previous_ = nullptr;
    Subscriber* next_ = nullptr;
    Dispatch dispatch_ = nullptr;
    void* context_ = nullptr;
    std::uint64_t number_ = 0;  // position in the order of subscription
};

}  // namespace Vanta
