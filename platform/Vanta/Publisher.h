// Publication of changes: a publisher tells its subscribers, synchronously and depth first.
//
// Rules of delivery:
//   1. Subscribers are called in the order in which they subscribed.
//   2. A subscriber that unsubscribes during delivery is not called any more.
//   3. A subscriber that subscribes during delivery is not called for that publication.
//   4. The publisher may be destroyed during delivery; the rest of the subscribers are then not
//      called.
//   5. A subscriber may publish again through the same publisher; the inner publication is
//      delivered whole before the outer one goes on.
//   6. The taps (Vanta/Tap.h), if there are any, are told before any subscriber.
//   7. An exception that leaves a subscriber ends the process (Vanta/Assert.h).
//
// Publishing, subscribing and unsubscribing neither allocate nor count references. A subscription
// keeps neither its subscriber nor the publisher alive.
// Thread: one only.
#pragma once

#include <cstdint>
#include <type_traits>

#include "Vanta/ValueRef.h"
#include "VynExport.h"

namespace Vanta {

class Node;
class Publisher;
class Subscriber;

using AttributeNumber = unsigned;

// No attribute has this number.
inline constexpr AttributeNumber everyAttribute = 0;

// What is published: one change of one object. The references are valid during the call only.
struct Change {
    Publisher const& publisher;
    AttributeNumber attribute;
    ValueRef key;       // of the entry concerned, where the attribute is a collection
    ValueRef oldValue;  // the value before, where there was one
};

using Dispatch = void (*)(void* context, Subscriber& subscriber, Change const& change);

// The source of changes of one object, of which it is a member.
class VYN_EXPORT Publisher {
  public:
    // `owner` is the object that the publications are about, for the taps.
    explicit Publisher(Node const* owner) noexcept : owner_(owner) {}
    Publisher(Publisher const&) = delete;
    Publisher& operator=(Publisher const&) = delete;
    // Releases every subscription and stops the deliveries under way.
    ~Publisher();

    // Tells the taps, then every subscriber, of a change that has been stored already.
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

// One subscription, owned by the object that is to be called. Its destructor unsubscribes.
class VYN_EXPORT Subscriber {
  public:
    Subscriber() noexcept = default;
    Subscriber(Subscriber const&) = delete;
    Subscriber& operator=(Subscriber const&) = delete;
    ~Subscriber() { unsubscribe(); }

    // Subscribes `dispatch` to the publisher. An existing subscription is ended first.
    void subscribe(Publisher const& publisher, Dispatch dispatch, void* context) noexcept;

    // The same with a member function, called for changes of one attribute or of all:
    //     jobs_.subscribe<&PktGenSm::jobChanged, PktGenConfig::cfgAttribute>(
    //         config_->publisher(), this);
    // The function takes the change, or nothing, or, in the long form, what a change consists of:
    // (Publisher const&, Subscriber&, AttributeNumber, ValueRef key, ValueRef oldValue).
    template <auto member, AttributeNumber attribute = everyAttribute, class T>
    void subscribe(Publisher const& publisher, T* object) noexcept {
        subscribe(
            publisher,
            [](void* context, Subscriber& self, Change const& change) {
                if (attribute == everyAttribute || attribute == change.attribute) {
                    call<member>(*static_cast<T*>(context), self, change);
                }
            },
            object);
    }

    // Ends the subscription; nothing happens if there is none.
    void unsubscribe() noexcept;

    // True while subscribed. It becomes false by itself when the publisher is destroyed.
    bool subscribed() const noexcept { return publisher_ != nullptr; }

  private:
    friend class Publisher;

    template <auto member, class T>
    static void call(T& object, Subscriber& self, Change const& change) {
        using Member = decltype(member);
        if constexpr (std::is_invocable_v<Member, T&>) {
            (object.*member)();
        } else if constexpr (std::is_invocable_v<Member, T&, Change const&>) {
            (object.*member)(change);
        } else {
            (object.*member)(change.publisher, self, change.attribute, change.key, change.oldValue);
        }
    }

    Publisher const* publisher_ = nullptr;
    Subscriber* previous_ = nullptr;
    Subscriber* next_ = nullptr;
    Dispatch dispatch_ = nullptr;
    void* context_ = nullptr;
    std::uint64_t number_ = 0;  // position in the order of subscription
};

}  // namespace Vanta
